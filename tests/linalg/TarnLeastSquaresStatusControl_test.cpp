// Tests of the least-squares status record.
#include <tarn/tarn.h>

#include <gtest/gtest.h>

TEST(TarnLeastSquaresStatusControlTest, OutcomeFlagsStaySetAndTravelWithCopies) {
    TarnLeastSquaresStatusControl record;
    EXPECT_EQ(record.getMaxIters(), 100);
    EXPECT_EQ(record.getRejectionMultiplier(), 3.0);
    EXPECT_EQ(record.getRejectionLimit(), 100.0);
    // The abort request and the outcome flags are separate; no setter clears a flag.
    record.setAbort(true);
    EXPECT_FALSE(record.getStatusConverged());
    record.setStatusConverged();
    record.setStatusAborted();
    record.setStatusDone();
    record.setStatusMaxIterations();
    EXPECT_TRUE(record.getStatusConverged());
    // Copies carry request and flags; assigning a new record clears them.
    TarnLeastSquaresStatusControl assigned;
    assigned = record;
    TarnLeastSquaresStatusControl other(assigned);
    EXPECT_TRUE(other.getAbort());
    other.setAbort(false);
    EXPECT_TRUE(other.getStatusConverged()) << "clearing the request changed an outcome flag";
    record = TarnLeastSquaresStatusControl();
    EXPECT_FALSE(record.getStatusConverged() || record.getAbort());
}
