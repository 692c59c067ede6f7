// Tests of the thread base class: states, start and restart, priorities, waits and copies.
#include "ConcurrencyTestSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

using tarntest::kGenerousMs;

// A thread whose run reports that it began and whether it saw itself active, then waits until
// the test opens the gate (one unit per run). The report lives outside the object, so copies
// share it.
struct Probe {
    TarnSemaphore gate{1};
    tarntest::Signal begun;
    std::atomic<int> sawItselfActive{0};
    std::thread::id runThread;
    Probe() { gate.tryAcquire(1); }
};

class GatedThread : public TarnThread {
public:
    explicit GatedThread(Probe &probe) : probe_(&probe) {}

    void run() override {
        probe_->runThread = std::this_thread::get_id();
        if (running() && !finished()) {
            probe_->sawItselfActive.fetch_add(1);
        }
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

// Raising a priority may be refused to an unprivileged process; the thread must run all the same,
// whatever priority it starts at (7: in the enumeration's range, outside the table; the restart
// stress test starts at every priority of the table) or is set while it runs or after it ended.
TEST(TarnThreadTest, GoesFromNeverStartedToActiveToEndedAndRestartsAtAnyPriority) {
    Probe probe;
    GatedThread thread(probe);
    thread.setPriority(TarnThread::Highest); // no thread yet: does nothing
    EXPECT_FALSE(thread.running());
    EXPECT_TRUE(thread.finished());
    EXPECT_TRUE(thread.wait(0));
    EXPECT_TRUE(thread.wait(0xFFFFFFFFul));
    for (int round = 1; round <= 3; ++round) {
        const auto priority = static_cast<TarnThread::Priority>(round == 3 ? 7 : TarnThread::Normal);
        ASSERT_TRUE(startAndAwaitRun(thread, probe, priority, round));
        for (int other = 0; other <= 7; ++other) {
            thread.setPriority(static_cast<TarnThread::Priority>(other));
        }
        EXPECT_TRUE(thread.running());
        EXPECT_FALSE(thread.finished());
        EXPECT_FALSE(thread.wait(0)); // polls without blocking
        EXPECT_FALSE(thread.start(TarnThread::Highest)) << "a second start while active went ahead";
        probe.gate.release(1);
        ASSERT_TRUE(thread.wait(kGenerousMs));
        EXPECT_FALSE(thread.running());
        EXPECT_TRUE(thread.finished());
        EXPECT_EQ(probe.begun.count(), round);
    }
    thread.setPriority(TarnThread::Highest);
    EXPECT_TRUE(thread.finished());
    EXPECT_EQ(probe.sawItselfActive.load(), 3) << "run began before the handle was in place";
    EXPECT_NE(probe.runThread, std::this_thread::get_id());
}

TEST(TarnThreadTest, BeginThreadRunsRunOnTheCallingThreadAndReturnsZero) {
    std::thread::id ranOn;
    tarntest::FunctionThread thread([&] { ranOn = std::this_thread::get_id(); });
    EXPECT_EQ(TarnThread::beginThread(&thread), 0ul);
    EXPECT_EQ(ranOn, std::this_thread::get_id());
    EXPECT_TRUE(thread.finished()); // no system thread was made
}

// A thread that times its own sleeps, in milliseconds.
class SleepingThread : public TarnThread {
public:
    void run() override {
        const auto begin = std::chrono::steady_clock::now();
        msleep(20);
        const auto middle = std::chrono::steady_clock::now();
        sleep(0);
        sleep(4294968ul); // 4294968000 ms, which wraps round in 32 bits to 704 ms
        const auto end = std::chrono::steady_clock::now();
        msleepMs = std::chrono::duration_cast<std::chrono::milliseconds>(middle - begin).count();
        sleepMs = std::chrono::duration_cast<std::chrono::milliseconds>(end - middle).count();
    }
    long long msleepMs = 0;
    long long sleepMs = 0;
};

TEST(TarnThreadTest, SleepsLastAtLeastTheirTimeAndSecondsWrapIn32Bits) {
    SleepingThread thread;
    ASSERT_TRUE(thread.start(TarnThread::Normal));
    ASSERT_TRUE(thread.wait(kGenerousMs)) << "a sleep of seconds did not wrap in 32 bits";
    EXPECT_GE(thread.msleepMs, 20);
    EXPECT_GE(thread.sleepMs, 704);
}

TEST(TarnThreadTest, CopiesReferToTheSameSystemThreadAndAnyThreadMayWaitForIt) {
    Probe probe;
    GatedThread thread(probe);
    ASSERT_TRUE(startAndAwaitRun(thread, probe));
    {
        GatedThread copy(thread);
        EXPECT_TRUE(copy.running());
        EXPECT_FALSE(copy.start(TarnThread::Normal)); // the shared run is active
    } // the copy lets go of the thread; the original still refers to it
    Probe otherProbe;
    GatedThread assigned(otherProbe);
    assigned = thread;
    const GatedThread &alias = assigned;
    assigned = alias; // assigning to itself keeps the reference
    EXPECT_TRUE(assigned.running());
    std::atomic<int> ended{0};
    tarntest::FunctionThread waiters[] = {
        tarntest::FunctionThread([&] { ended += thread.wait(kGenerousMs); }),
        tarntest::FunctionThread([&] { ended += assigned.wait(kGenerousMs); })};
    for (auto &waiter : waiters) {
        ASSERT_TRUE(waiter.start(TarnThread::Normal));
    }
    probe.gate.release(1);
    for (auto &waiter : waiters) {
        ASSERT_TRUE(waiter.wait(kGenerousMs));
    }
    EXPECT_EQ(ended.load(), 2);
    EXPECT_TRUE(assigned.finished());
    EXPECT_EQ(probe.begun.count(), 1);
}

// Out of memory for the thread's record, or for the start of the system thread, is a thread that
// the system could not create: start still answers true, and the thread reads as ended at once.
TEST(TarnThreadTest, OutOfMemoryGivesAThreadThatEndedAtOnceWithoutAnException) {
    if (!tarntest::FailingAllocations::reachLibrary()) {
        GTEST_SKIP() << "the library's allocations do not come from this program's operator new";
    }
    for (int allowed : {0, 1}) {
        SCOPED_TRACE(testing::Message() << allowed << " allocations granted");
        std::atomic<int> runs{0};
        tarntest::FunctionThread thread([&runs] { ++runs; });
        bool started = false;
        EXPECT_NO_THROW({
            const tarntest::FailingAllocations failing(allowed);
            started = thread.start(TarnThread::Normal);
        });
        EXPECT_TRUE(started);
        EXPECT_FALSE(thread.running());
        EXPECT_TRUE(thread.finished());
        EXPECT_TRUE(thread.wait(0));
        EXPECT_EQ(runs.load(), 0);
    }
}

} // namespace
