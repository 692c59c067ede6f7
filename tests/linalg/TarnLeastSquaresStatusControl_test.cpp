// Tests of the least-squares status record.
#include <tarn/tarn.h>

#include <gtest/gtest.h>

TEST(TarnLeastSquaresStatusControlTest, NewRecordHoldsTheDefaults) {
    TarnLeastSquaresStatusControl record;
    EXPECT_EQ(record.getIter(), 0);
    EXPECT_EQ(record.getRejectionCount(), 0);
    EXPECT_EQ(record.getDOF(), 0);
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

TEST(TarnLeastSquaresStatusControlTest, AccessorsStoreValuesUnchanged) {
    TarnLeastSquaresStatusControl record;
    record.setIter(7);
    record.setRejectionCount(3);
    record.setDOF(-4);
    record.setRMS(0.125);
    record.setDoReject(true);
    record.setRejectionMultiplier(2.5);
    record.setRejectionAdd(-1.0);
    record.setRejectionLimit(0.0);
    record.setMaxIters(-1);
    EXPECT_EQ(record.getIter(), 7);
    EXPECT_EQ(record.getRejectionCount(), 3);
    EXPECT_EQ(record.getDOF(), -4);
    EXPECT_EQ(record.getRMS(), 0.125);
    EXPECT_TRUE(record.getDoReject());
    EXPECT_EQ(record.getRejectionMultiplier(), 2.5);
    EXPECT_EQ(record.getRejectionAdd(), -1.0);
    EXPECT_EQ(record.getRejectionLimit(), 0.0);
    EXPECT_EQ(record.getMaxIters(), -1) << "limits are not clamped";
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
    EXPECT_FALSE(record.getAbort());
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
