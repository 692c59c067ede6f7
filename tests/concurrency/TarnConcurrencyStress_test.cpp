// Stress runs: many threads on one semaphore, many thread restarts, many timer start/stop cycles.
// Each run is bounded: every wait has a generous deadline, so a hang fails instead of blocking.
#include "ConcurrencyTestSupport.h"

#include <tarn/tarn.h>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <vector>

namespace {

using tarntest::kGenerousMs;

constexpr int kThreads = 8;
// Pairs are taken one unit at a time, so a waiting thread may hold one unit: with one unit more
// than there are threads, the pairs can never wedge one another.
constexpr int kUnits = kThreads + 1;

// Shared by the hammering threads: the semaphore guards `inside`, which must never pass its
// count.
struct Arena {
    TarnSemaphore semaphore{kUnits};
    std::atomic<int> inside{0};
    std::atomic<int> mostInside{0};
    std::atomic<long> entries{0};

    void enter(int units) {
        const int now = inside.fetch_add(units) + units;
        int most = mostInside.load();
        while (now > most && !mostInside.compare_exchange_weak(most, now)) {
        }
        entries.fetch_add(1);
        inside.fetch_sub(units);
    }
};

// One hammering thread: holds its own copy of the semaphore and alternates blocking single
// units, blocking pairs and polled pairs.
class Hammer : public TarnThread {
public:
    Hammer(Arena &arena, int rounds) : arena_(arena), semaphore_(arena.semaphore), rounds_(rounds) {}

    void run() override {
        for (int round = 0; round < rounds_; ++round) {
            switch (round % 3) {
            case 0:
                semaphore_.acquire(1);
                arena_.enter(1);
                semaphore_.release(1);
                break;
            case 1:
                semaphore_.acquire(2);
                arena_.enter(2);
                semaphore_.release(2);
                break;
            default:
                if (semaphore_.tryAcquire(2)) {
                    arena_.enter(2);
                    semaphore_.release(2);
                }
                break;
            }
        }
    }

private:
    Arena &arena_;
    TarnSemaphore semaphore_;
    int rounds_;
};

TEST(TarnSemaphoreTest, StressEightThreadsHammerOneSemaphore) {
    constexpr int kRounds = 3000;
    Arena arena;
    std::vector<std::unique_ptr<Hammer>> hammers;
    for (int i = 0; i < kThreads; ++i) {
        hammers.push_back(std::make_unique<Hammer>(arena, kRounds));
    }
    for (auto &hammer : hammers) {
        ASSERT_TRUE(hammer->start(TarnThread::Normal));
    }
    for (auto &hammer : hammers) {
        ASSERT_TRUE(hammer->wait(kGenerousMs)) << "a hammering thread did not finish";
    }
    EXPECT_LE(arena.mostInside.load(), kUnits);
    EXPECT_GE(arena.entries.load(), static_cast<long>(kThreads) * kRounds * 2 / 3);
    // Every unit came back, and the count cannot pass the maximum.
    EXPECT_TRUE(arena.semaphore.tryAcquire(kUnits));
    EXPECT_FALSE(arena.semaphore.tryAcquire(1));
}

// Counts its runs and checks that it sees itself running.
class Restarted : public TarnThread {
public:
    void run() override {
        runs.fetch_add(1);
        if (!running()) {
            sawItselfEnded.store(true);
        }
    }
    std::atomic<int> runs{0};
    std::atomic<bool> sawItselfEnded{false};
};

TEST(TarnThreadTest, StressOneThousandRestarts) {
    constexpr int kRestarts = 1000;
    Restarted thread;
    for (int i = 0; i < kRestarts; ++i) {
        ASSERT_TRUE(thread.start(static_cast<TarnThread::Priority>(i % 7))) << "restart " << i;
        ASSERT_TRUE(thread.wait(kGenerousMs)) << "restart " << i;
    }
    EXPECT_EQ(thread.runs.load(), kRestarts);
    EXPECT_FALSE(thread.sawItselfEnded.load());
    EXPECT_TRUE(thread.finished());
}

// Counts firings.
class Counter : public TarnTimerListener {
public:
    void timerElapsed(TarnTimer &) override { fired.notify(); }
    tarntest::Signal fired;
};

TEST(TarnTimerTest, StressOneHundredStartStopCycles) {
    constexpr int kCycles = 100;
    TarnTimer timer;
    Counter counter;
    timer.addListener(counter);
    for (int cycle = 0; cycle < kCycles; ++cycle) {
        timer.start(cycle % 3 * 10, TarnThread::Normal);
        switch (cycle % 3) {
        case 0: // stop at once, perhaps before the first tick
            timer.stop();
            break;
        case 1: // stop after a firing
            ASSERT_TRUE(counter.fired.waitFor(counter.fired.count() + 1)) << "cycle " << cycle;
            timer.stop();
            break;
        default: // ask without waiting, then wait
            timer.stopNoWait();
            ASSERT_TRUE(timer.wait(kGenerousMs)) << "cycle " << cycle;
            break;
        }
        ASSERT_TRUE(timer.finished()) << "cycle " << cycle;
    }
    EXPECT_GE(counter.fired.count(), kCycles / 3);
}

} // namespace
