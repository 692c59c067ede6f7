// Stress runs: many threads on one semaphore, many thread restarts, many timer start/stop cycles.
// Every wait has a generous deadline, so a hang fails instead of blocking the suite.
#include "ConcurrencyTestSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <vector>

namespace {

using tarntest::kGenerousMs;

// Eight threads, each with its own copy of one semaphore, take single units, pairs (waiting) and
// pairs (polled) and note how many units are held at once, which must never pass the count.
TEST(TarnSemaphoreTest, StressEightThreadsHammerOneSemaphore) {
    constexpr int kThreads = 8;
    constexpr int kRounds = 3000;
    // A waiting pair holds one unit while it waits for the second: with one unit more than there
    // are threads, pairs can never wedge one another.
    constexpr int kUnits = kThreads + 1;
    TarnSemaphore semaphore(kUnits);
    std::atomic<int> held{0};
    std::atomic<int> mostHeld{0};
    auto hold = [&](int units) {
        const int now = held += units;
        int most = mostHeld.load();
        while (now > most && !mostHeld.compare_exchange_weak(most, now)) {
        }
        held -= units;
    };
    std::vector<std::unique_ptr<tarntest::FunctionThread>> hammers;
    for (int i = 0; i < kThreads; ++i) {
        hammers.push_back(std::make_unique<tarntest::FunctionThread>([&, copy = semaphore]() mutable {
            for (int round = 0; round < kRounds; ++round) {
                const int units = round % 3 == 0 ? 1 : 2;
                if (round % 3 == 2 && !copy.tryAcquire(units)) {
                    continue;
                }
                if (round % 3 != 2) {
                    copy.acquire(units);
                }
                hold(units);
                copy.release(units);
            }
        }));
    }
    for (auto &hammer : hammers) {
        ASSERT_TRUE(hammer->start(TarnThread::Normal));
    }
    for (auto &hammer : hammers) {
        ASSERT_TRUE(hammer->wait(kGenerousMs)) << "a hammering thread did not finish";
    }
    EXPECT_LE(mostHeld.load(), kUnits);
    EXPECT_TRUE(semaphore.tryAcquire(kUnits)) << "a unit was lost";
    EXPECT_FALSE(semaphore.tryAcquire(1));
}

TEST(TarnThreadTest, StressOneThousandRestarts) {
    constexpr int kRestarts = 1000;
    std::atomic<int> runs{0};
    std::atomic<int> sawItselfEnded{0};
    tarntest::FunctionThread *self = nullptr;
    tarntest::FunctionThread thread([&] {
        ++runs;
        sawItselfEnded += self->finished();
    });
    self = &thread;
    for (int i = 0; i < kRestarts; ++i) {
        ASSERT_TRUE(thread.start(static_cast<TarnThread::Priority>(i % 7))) << "restart " << i;
        ASSERT_TRUE(thread.wait(kGenerousMs)) << "restart " << i;
    }
    EXPECT_EQ(runs.load(), kRestarts);
    EXPECT_EQ(sawItselfEnded.load(), 0);
}

// Counts firings.
class Counter : public TarnTimerListener {
public:
    void timerElapsed(TarnTimer &) override { fired.notify(); }
    tarntest::Signal fired;
};

// Cycles stop at once (perhaps before the first tick), after a firing, or without waiting.
TEST(TarnTimerTest, StressOneHundredStartStopCycles) {
    constexpr int kCycles = 100;
    TarnTimer timer;
    Counter counter;
    timer.addListener(counter);
    for (int cycle = 0; cycle < kCycles; ++cycle) {
        timer.start(cycle % 3 * 10, TarnThread::Normal);
        if (cycle % 3 == 1) {
            ASSERT_TRUE(counter.fired.waitFor(counter.fired.count() + 1)) << "cycle " << cycle;
        }
        if (cycle % 3 == 2) {
            timer.stopNoWait();
            ASSERT_TRUE(timer.wait(kGenerousMs)) << "cycle " << cycle;
        }
        timer.stop();
        ASSERT_TRUE(timer.finished()) << "cycle " << cycle;
    }
}

} // namespace
