// Tests of the thread base class: states, start and restart, priorities, waits and copies.
#include "ConcurrencyTestSupport.h"

#include <tarn/tarn.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

using tarntest::kGenerousMs;

// What a GatedThread reports, kept outside the thread object so that copies share it.
struct Probe {
    TarnSemaphore gate{1};
    tarntest::Signal begun;
    std::atomic<int> runs{0};
    std::atomic<bool> sawItselfRunning{false};
    std::atomic<bool> sawItselfFinished{true};
    std::thread::id runThread;

    Probe() { gate.tryAcquire(1); } // closed until the test opens it
    void open() { gate.release(1); }
};

// A thread whose run reports that it began, then waits until the test opens the gate.
class GatedThread : public TarnThread {
public:
    explicit GatedThread(Probe &probe) : probe_(&probe) {}

    void run() override {
        probe_->runThread = std::this_thread::get_id();
        probe_->sawItselfRunning = running();
        probe_->sawItselfFinished = finished();
        probe_->runs.fetch_add(1);
        probe_->begun.notify();
        probe_->gate.acquire(1);
    }

private:
    Probe *probe_;
};

// Starts `thread` at `priority` and waits until its run has begun for the `round`-th time.
::testing::AssertionResult startAndAwaitRun(GatedThread &thread, Probe &probe,
                                            TarnThread::Priority priority = TarnThread::Normal,
                                            int round = 1) {
    if (!thread.start(priority)) {
        return ::testing::AssertionFailure() << "start refused, priority " << priority;
    }
    if (!probe.begun.waitFor(round)) {
        return ::testing::AssertionFailure() << "run " << round << " did not begin, priority " << priority;
    }
    return ::testing::AssertionSuccess();
}

// A thread that does nothing but count its runs.
class CountingThread : public TarnThread {
public:
    void run() override { runs.fetch_add(1); }
    std::atomic<int> runs{0};
};

TEST(TarnThreadTest, NeverStartedIsFinishedAndWaitsReturnAtOnce) {
    CountingThread thread;
    thread.setPriority(TarnThread::Highest); // no thread yet: does nothing
    EXPECT_FALSE(thread.running());
    EXPECT_TRUE(thread.finished());
    EXPECT_TRUE(thread.wait(0));
    EXPECT_TRUE(thread.wait(0xFFFFFFFFul));
    EXPECT_EQ(thread.runs.load(), 0);
}

TEST(TarnThreadTest, SecondStartWhileActiveIsRefusedAndStartsNothing) {
    Probe probe;
    GatedThread thread(probe);
    ASSERT_TRUE(startAndAwaitRun(thread, probe));
    EXPECT_TRUE(thread.running());
    EXPECT_FALSE(thread.finished());
    EXPECT_FALSE(thread.wait(0)); // polls without blocking
    EXPECT_FALSE(thread.start(TarnThread::Normal));
    EXPECT_FALSE(thread.start(TarnThread::Highest));

    probe.open();
    ASSERT_TRUE(thread.wait(kGenerousMs));
    EXPECT_FALSE(thread.running());
    EXPECT_TRUE(thread.finished());
    EXPECT_TRUE(thread.wait(0));
    EXPECT_EQ(probe.runs.load(), 1);
}

TEST(TarnThreadTest, RunSeesItsHandleInPlaceAndRunsOnAThreadOfItsOwn) {
    Probe probe;
    GatedThread thread(probe);
    ASSERT_TRUE(startAndAwaitRun(thread, probe));
    probe.open();
    ASSERT_TRUE(thread.wait(kGenerousMs));
    EXPECT_TRUE(probe.sawItselfRunning.load()) << "run began before the handle was in place";
    EXPECT_FALSE(probe.sawItselfFinished.load());
    EXPECT_NE(probe.runThread, std::this_thread::get_id());
}

TEST(TarnThreadTest, RestartAfterTheEndRunsAgainOnTheSameObject) {
    Probe probe;
    GatedThread thread(probe);
    for (int round = 1; round <= 3; ++round) {
        ASSERT_TRUE(startAndAwaitRun(thread, probe, TarnThread::Normal, round));
        EXPECT_TRUE(thread.running());
        probe.open();
        ASSERT_TRUE(thread.wait(kGenerousMs));
        EXPECT_TRUE(thread.finished());
        EXPECT_EQ(probe.runs.load(), round);
    }
}

TEST(TarnThreadTest, PrioritiesTableHoldsTheSystemLevels) {
    const struct {
        TarnThread::Priority priority;
        int level;
    } table[] = {{TarnThread::Idle, -15},       {TarnThread::Lowest, -2},     {TarnThread::BelowNormal, -1},
                 {TarnThread::Normal, 0},       {TarnThread::AboveNormal, 1}, {TarnThread::Highest, 2},
                 {TarnThread::TimeCritical, 15}};
    for (const auto &row : table) {
        EXPECT_EQ(TarnThread::Priorities[row.priority], row.level) << "priority " << row.priority;
    }
}

// Raising a priority is refused to an unprivileged process on some systems; the thread must run
// all the same, and setting any priority on a running or ended thread must not disturb it.
TEST(TarnThreadTest, EveryPriorityStartsAThreadThatRuns) {
    // 7 lies within the enumeration's range of values but outside the table.
    const TarnThread::Priority priorities[] = {
        TarnThread::Idle,         TarnThread::Lowest,
        TarnThread::BelowNormal,  TarnThread::Normal,
        TarnThread::AboveNormal,  TarnThread::Highest,
        TarnThread::TimeCritical, static_cast<TarnThread::Priority>(7)};
    for (TarnThread::Priority priority : priorities) {
        Probe probe;
        GatedThread thread(probe);
        ASSERT_TRUE(startAndAwaitRun(thread, probe, priority));
        for (TarnThread::Priority other : priorities) {
            thread.setPriority(other);
        }
        probe.open();
        ASSERT_TRUE(thread.wait(kGenerousMs)) << "priority " << priority;
        thread.setPriority(TarnThread::Highest); // on an ended thread: no effect
        EXPECT_TRUE(thread.finished());
        EXPECT_EQ(probe.runs.load(), 1);
    }
}

TEST(TarnThreadTest, AnyThreadMayWaitForTheEnd) {
    Probe probe;
    GatedThread thread(probe);
    ASSERT_TRUE(startAndAwaitRun(thread, probe));
    std::atomic<int> ended{0};
    std::thread waiters[3];
    for (std::thread &waiter : waiters) {
        waiter = std::thread([&] {
            if (thread.wait(kGenerousMs)) {
                ended.fetch_add(1);
            }
        });
    }
    probe.open();
    for (std::thread &waiter : waiters) {
        waiter.join();
    }
    EXPECT_EQ(ended.load(), 3);
    EXPECT_TRUE(thread.finished());
}

TEST(TarnThreadTest, BeginThreadRunsRunOnTheCallingThreadAndReturnsZero) {
    CountingThread thread;
    EXPECT_EQ(TarnThread::beginThread(&thread), 0ul);
    EXPECT_EQ(thread.runs.load(), 1);
    EXPECT_TRUE(thread.finished()); // no system thread was made
}

// A thread that times its own sleeps.
class SleepingThread : public TarnThread {
public:
    void run() override {
        using Clock = std::chrono::steady_clock;
        const Clock::time_point begin = Clock::now();
        msleep(20);
        const Clock::time_point afterMsleep = Clock::now();
        sleep(0);
        // 4294968 seconds are 4294968000 ms, which wraps round in 32 bits to 704 ms.
        sleep(4294968ul);
        const Clock::time_point end = Clock::now();
        msleepMs = std::chrono::duration_cast<std::chrono::milliseconds>(afterMsleep - begin).count();
        sleepMs = std::chrono::duration_cast<std::chrono::milliseconds>(end - afterMsleep).count();
    }
    long long msleepMs = 0;
    long long sleepMs = 0;
};

TEST(TarnThreadTest, SleepsLastAtLeastTheirTimeAndSecondsWrapIn32Bits) {
    SleepingThread thread;
    ASSERT_TRUE(thread.start(TarnThread::Normal));
    ASSERT_TRUE(thread.wait(kGenerousMs)) << "sleep of seconds did not wrap in 32 bits";
    EXPECT_GE(thread.msleepMs, 20);
    EXPECT_GE(thread.sleepMs, 704);
}

TEST(TarnThreadTest, CopiesReferToTheSameSystemThread) {
    Probe probe;
    GatedThread thread(probe);
    ASSERT_TRUE(startAndAwaitRun(thread, probe));
    GatedThread kept(thread);
    {
        GatedThread copy(thread);
        EXPECT_TRUE(copy.running());
        EXPECT_FALSE(copy.start(TarnThread::Normal)); // the shared run is active
    } // the copy lets go of the thread; the others still refer to it

    Probe otherProbe;
    GatedThread assigned(otherProbe);
    assigned = thread;
    GatedThread &alias = assigned;
    assigned = alias; // assignment to itself keeps the reference
    EXPECT_TRUE(assigned.running());

    probe.open();
    ASSERT_TRUE(thread.wait(kGenerousMs));
    EXPECT_TRUE(kept.wait(0));
    EXPECT_TRUE(assigned.finished());
    EXPECT_EQ(probe.runs.load(), 1);
}

TEST(TarnThreadTest, HasItsClassIdentity) {
    const CountingThread thread;
    EXPECT_EQ(thread.getClassName(), "TarnThread");
    EXPECT_TRUE(thread.isa("TarnThread"));
    EXPECT_FALSE(thread.isa("TarnTimer"));
}

} // namespace
