// Tests of the least-squares status record.
#include <tarn/tarn.h>

#include <gtest/gtest.h>

TEST(TarnLeastSquaresStatusControlTest, NewRecordHoldsTheDefaults) {
    TarnLeastSquaresStatusControl record;
    EXPECT_EQ(record.getMaxIters(), 100);
    EXPECT_EQ(record.getRejectionMultiplier(), 3.0);
    EXPECT_EQ(record.getRejectionAdd(), 0.0);
    EXPECT_EQ(record.getRejectionLimit(), 100.0);
    EXPECT_EQ(record.getRMS(), 0.0);
    EXPECT_FALSE(record.getDoReject());
    EXPECT_FALSE(record.getAbort());
    EXPECT_FALSE(record.getStatusConverged());
    EXPECT_EQ(record.getClassName(), "TarnLeastSquaresStatusControl");
    EXPECT_TRUE(record.isa("TarnLeastSquaresStatusControl"));
    EXPECT_FALSE(record.isa("TarnObject"));
}

TEST(TarnLeastSquaresStatusControlTest, AbortRequestAndOutcomeAreSeparate) {
    TarnLeastSquaresStatusControl record;
    record.setAbort(true);
    EXPECT_TRUE(record.getAbort());
    EXPECT_FALSE(record.getStatusConverged());
    record.setStatusConverged();
    record.setStatusAborted();
    record.setStatusDone();
    record.setStatusMaxIterations();
    record.setAbort(false);
    record.setMaxIters(-1);
    EXPECT_FALSE(record.getAbort());
    EXPECT_EQ(record.getMaxIters(), -1) << "limits are not clamped";
    EXPECT_TRUE(record.getStatusConverged()) << "no setter clears an outcome flag";
}

TEST(TarnLeastSquaresStatusControlTest, CopiesCarryRequestAndFlagsAndAssignmentClearsThem) {
    TarnLeastSquaresStatusControl record;
    record.setAbort(true);
    record.setStatusConverged();
    record.setMaxIters(5);
    const TarnLeastSquaresStatusControl copy(record);
    TarnLeastSquaresStatusControl assigned;
    assigned = record;
    for (const TarnLeastSquaresStatusControl *target :
         {&copy, static_cast<const TarnLeastSquaresStatusControl *>(&assigned)}) {
        TarnLeastSquaresStatusControl other(*target);
        EXPECT_TRUE(other.getAbort());
        EXPECT_TRUE(other.getStatusConverged());
        EXPECT_EQ(other.getMaxIters(), 5);
    }
    record = TarnLeastSquaresStatusControl();
    EXPECT_FALSE(record.getStatusConverged());
    EXPECT_FALSE(record.getAbort());
}
