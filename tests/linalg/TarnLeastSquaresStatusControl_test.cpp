// Tests of the least-squares status record.
#include <tarn/tarn.h>

#include <gtest/gtest.h>

TEST(TarnLeastSquaresStatusControlTest, DefaultsOutcomeFlagsAndCopies) {
    TarnLeastSquaresStatusControl record;
    EXPECT_EQ(record.getMaxIters(), 100);
    EXPECT_EQ(record.getRejectionMultiplier(), 3.0);
    EXPECT_EQ(record.getRejectionLimit(), 100.0);
    EXPECT_FALSE(record.getStatusConverged());
    EXPECT_EQ(record.getClassName(), "TarnLeastSquaresStatusControl");
    EXPECT_TRUE(record.isa("TarnLeastSquaresStatusControl"));
    EXPECT_FALSE(record.isa("TarnObject"));
    // The abort request and the outcome flags are separate; no setter clears a flag.
    record.setAbort(true);
    EXPECT_FALSE(record.getStatusConverged());
    record.setStatusConverged();
    record.setStatusAborted();
    record.setStatusDone();
    record.setStatusMaxIterations();
    record.setMaxIters(-1);
    EXPECT_TRUE(record.getStatusConverged());
    EXPECT_EQ(record.getMaxIters(), -1) << "limits are not clamped";
    // Copies carry request and flags; assigning a new record clears them.
    TarnLeastSquaresStatusControl assigned;
    assigned = record;
    const TarnLeastSquaresStatusControl copy(assigned);
    TarnLeastSquaresStatusControl other(copy);
    EXPECT_TRUE(other.getAbort());
    EXPECT_TRUE(other.getStatusConverged());
    other.setAbort(false);
    EXPECT_FALSE(other.getAbort());
    EXPECT_TRUE(other.getStatusConverged()) << "clearing the request changed an outcome flag";
    record = TarnLeastSquaresStatusControl();
    EXPECT_FALSE(record.getStatusConverged());
    EXPECT_FALSE(record.getAbort());
}
