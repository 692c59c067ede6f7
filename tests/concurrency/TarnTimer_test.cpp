// Tests of the periodic timer: firing, listener order, stopping and restarting.
#include "ConcurrencyTestSupport.h"

#include <tarn/tarn.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace {

using tarntest::kGenerousMs;
using Clock = std::chrono::steady_clock;

// A listener that counts its firings, notes the thread they come on and signals each one.
class CountingListener : public TarnTimerListener {
public:
    void timerElapsed(TarnTimer &timer) override {
        lastTimer = &timer;
        {
            const std::lock_guard<std::mutex> lock(mutex);
            lastThread = std::this_thread::get_id();
        }
        fired.notify();
    }

    std::thread::id thread() {
        const std::lock_guard<std::mutex> lock(mutex);
        return lastThread;
    }

    tarntest::Signal fired;
    std::atomic<TarnTimer *> lastTimer{nullptr};

private:
    std::mutex mutex;
    std::thread::id lastThread;
};

// A listener that runs a piece of test code on every firing.
class ActionListener : public TarnTimerListener {
public:
    explicit ActionListener(std::function<void(TarnTimer &)> action) : action_(std::move(action)) {}
    void timerElapsed(TarnTimer &timer) override { action_(timer); }

private:
    std::function<void(TarnTimer &)> action_;
};

TEST(TarnTimerTest, FiresRepeatedlyOnItsOwnThreadUntilStopped) {
    TarnTimer timer;
    CountingListener listener;
    timer.addListener(listener);
    timer.start(5, TarnThread::Normal);
    ASSERT_TRUE(listener.fired.waitFor(3));
    EXPECT_TRUE(timer.running());
    EXPECT_EQ(listener.lastTimer.load(), &timer);
    EXPECT_NE(listener.thread(), std::this_thread::get_id());

    timer.stop();
    EXPECT_FALSE(timer.running());
    EXPECT_TRUE(timer.finished());
    // The thread has ended, so no firing can come after stop returned.
    const int firings = listener.fired.count();
    EXPECT_TRUE(timer.wait(0));
    EXPECT_EQ(listener.fired.count(), firings);
}

TEST(TarnTimerTest, RunsWithoutListenersAndStops) {
    TarnTimer timer;
    timer.start(100, TarnThread::Normal);
    EXPECT_TRUE(timer.running());
    timer.elapse(); // nothing to call
    timer.stop();
    EXPECT_TRUE(timer.finished());
}

// The first firing comes one whole period after the start: the tick count times at least
// 10 ms. Only the lower bound is checked; a loaded machine may stretch any sleep.
TEST(TarnTimerTest, FirstFiringComesAfterTheWholeRoundedPeriod) {
    const struct {
        int interval;
        long long atLeastMs;
    } cases[] = {{-50, 10}, {0, 10}, {5, 10}, {19, 10}, {25, 20}, {100, 100}};
    for (const auto &c : cases) {
        TarnTimer timer;
        CountingListener counter;
        ActionListener stopper([](TarnTimer &firing) { firing.stopNoWait(); });
        timer.addListener(counter);
        timer.addListener(stopper);
        const Clock::time_point begin = Clock::now();
        timer.start(c.interval, TarnThread::Normal);
        ASSERT_TRUE(counter.fired.waitFor(1)) << "interval " << c.interval;
        const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
        ASSERT_TRUE(timer.wait(kGenerousMs));
        EXPECT_GE(elapsed.count(), c.atLeastMs) << "interval " << c.interval;
    }
}

TEST(TarnTimerTest, StopNoWaitFromAListenerEndsTheLoopBeforeTheNextTick) {
    TarnTimer timer;
    CountingListener counter;
    ActionListener stopper([](TarnTimer &firing) { firing.stopNoWait(); });
    timer.addListener(stopper);
    timer.addListener(counter); // still called in the firing that asked to stop
    timer.start(10, TarnThread::Normal);
    ASSERT_TRUE(timer.wait(kGenerousMs)) << "the loop did not end by itself";
    EXPECT_EQ(counter.fired.count(), 1);
    EXPECT_TRUE(timer.finished());
}

TEST(TarnTimerTest, ListenersAreCalledInOrderOfAdditionOnTheCallingThread) {
    TarnTimer timer;
    std::string order;
    ActionListener a([&](TarnTimer &) { order += 'a'; });
    ActionListener b([&](TarnTimer &) { order += 'b'; });
    CountingListener counter;
    timer.addListener(a);
    timer.addListener(b);
    timer.addListener(a); // a second place in the order
    timer.addListener(counter);
    timer.elapse();
    timer.elapse();
    EXPECT_EQ(order, "abaaba");
    EXPECT_EQ(counter.fired.count(), 2);
    EXPECT_EQ(counter.thread(), std::this_thread::get_id());
}

TEST(TarnTimerTest, ListenerAddedDuringAFiringIsCalledInThatFiring) {
    TarnTimer timer;
    std::string order;
    ActionListener late([&](TarnTimer &) { order += 'c'; });
    bool added = false;
    ActionListener adder([&](TarnTimer &firing) {
        order += 'a';
        if (!added) {
            added = true;
            firing.addListener(late);
        }
    });
    ActionListener b([&](TarnTimer &) { order += 'b'; });
    timer.addListener(adder);
    timer.addListener(b);
    timer.elapse();
    EXPECT_EQ(order, "abc");
    timer.elapse();
    EXPECT_EQ(order, "abcabc");
}

TEST(TarnTimerTest, RestartsAfterStopWithANewInterval) {
    TarnTimer timer;
    CountingListener listener;
    timer.addListener(listener);
    timer.start(10, TarnThread::Normal);
    ASSERT_TRUE(listener.fired.waitFor(2));
    timer.stop();
    const int firstRun = listener.fired.count();
    EXPECT_TRUE(timer.finished());

    timer.start(30, TarnThread::AboveNormal);
    EXPECT_TRUE(timer.running());
    ASSERT_TRUE(listener.fired.waitFor(firstRun + 2));
    timer.stop();
    EXPECT_TRUE(timer.finished());
}

// While a listener holds the loop, a stopNoWait is pending; a start then clears it, so the
// loop (still the old one) goes on firing.
TEST(TarnTimerTest, StartWhileRunningCancelsAPendingStopNoWait) {
    TarnTimer timer;
    TarnSemaphore gate(1);
    gate.tryAcquire(1);
    tarntest::Signal inListener;
    std::atomic<bool> holdOnce{true};
    ActionListener holder([&](TarnTimer &) {
        if (holdOnce.exchange(false)) {
            inListener.notify();
            gate.acquire(1);
        }
    });
    CountingListener counter;
    timer.addListener(holder);
    timer.addListener(counter);
    timer.start(10, TarnThread::Normal);
    ASSERT_TRUE(inListener.waitFor(1));

    timer.stopNoWait();
    timer.start(10, TarnThread::Normal); // refused by the thread, but clears the request
    EXPECT_TRUE(timer.running());
    gate.release(1);
    ASSERT_TRUE(counter.fired.waitFor(2)) << "the cleared stop request still ended the loop";
    timer.stop();
    EXPECT_TRUE(timer.finished());
}

TEST(TarnTimerTest, ElapseFromTheApplicationWhileTheTimerRuns) {
    TarnTimer timer;
    CountingListener listener;
    timer.addListener(listener);
    timer.start(10, TarnThread::Normal);
    ASSERT_TRUE(listener.fired.waitFor(1));
    const int before = listener.fired.count();
    timer.elapse();
    EXPECT_GE(listener.fired.count(), before + 1);
    timer.stop();
}

TEST(TarnTimerTest, StopOnATimerNeverStartedReturnsAtOnce) {
    TarnTimer timer;
    timer.stop();
    timer.stopNoWait();
    EXPECT_TRUE(timer.finished());
    EXPECT_TRUE(timer.wait(0));
}

TEST(TarnTimerTest, DisposeDeletesTheTimerButNotItsListeners) {
    CountingListener listener; // on the stack: deleting it would be caught by the sanitizer
    auto *timer = new TarnTimer;
    timer->addListener(listener);
    timer->addListener(listener);
    timer->start(0, TarnThread::Normal);
    ASSERT_TRUE(listener.fired.waitFor(2));
    timer->stop();
    timer->dispose();
    TarnTimer other; // the listener is still alive and usable
    listener.timerElapsed(other);
    EXPECT_EQ(listener.lastTimer.load(), &other);
}

TEST(TarnTimerTest, HasItsClassIdentity) {
    const TarnTimer timer;
    EXPECT_EQ(timer.getClassName(), "TarnTimer");
    EXPECT_TRUE(timer.isa("TarnTimer"));
    EXPECT_FALSE(timer.isa("TarnThread"));
}

} // namespace
