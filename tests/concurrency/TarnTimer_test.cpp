// Tests of the periodic timer: firing, listener order, stopping and restarting.
#include "ConcurrencyTestSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>

namespace {

using tarntest::kGenerousMs;

// A listener that runs an optional piece of test code, then signals the firing.
class Listener : public TarnTimerListener {
public:
    explicit Listener(std::function<void(TarnTimer &)> action = nullptr) : action_(std::move(action)) {}
    void timerElapsed(TarnTimer &timer) override {
        if (action_) {
            action_(timer);
        }
        fired.notify();
    }
    tarntest::Signal fired;

private:
    std::function<void(TarnTimer &)> action_;
};

TEST(TarnTimerTest, FiresOnItsOwnThreadUntilStoppedRestartsAndIsDisposedWithoutItsListeners) {
    TarnTimer &timer = *new TarnTimer; // deleted by dispose at the end
    std::thread::id firingThread;
    TarnTimer *firingTimer = nullptr;
    Listener listener([&](TarnTimer &firing) {
        firingThread = std::this_thread::get_id();
        firingTimer = &firing;
    });
    timer.addListener(listener);
    timer.stop(); // never started: only sets the request
    EXPECT_TRUE(timer.finished());

    timer.start(5, TarnThread::Normal);
    ASSERT_TRUE(listener.fired.waitFor(3));
    EXPECT_TRUE(timer.running());
    timer.stop(); // returns once the thread has ended
    EXPECT_TRUE(timer.finished());
    EXPECT_NE(firingThread, std::this_thread::get_id());
    EXPECT_EQ(firingTimer, &timer);

    timer.start(30, TarnThread::AboveNormal);
    ASSERT_TRUE(listener.fired.waitFor(listener.fired.count() + 2)) << "no firing after a restart";
    timer.stop();
    EXPECT_FALSE(timer.running());
    timer.dispose(); // deletes the timer; deleting the listener on the stack would be caught by the sanitizer
    TarnTimer other;
    listener.timerElapsed(other); // the listener is still alive
}

// The first firing comes one whole period after the start: the tick count times at least
// 10 ms. Only this lower bound is checked; a loaded machine may stretch any sleep. A stopNoWait
// from a listener ends the loop before the next tick; the listeners after it are still called.
TEST(TarnTimerTest, FirstFiringComesAfterTheWholeRoundedPeriodAndAListenerMayEndTheLoop) {
    const struct {
        int interval;
        long long atLeastMs;
    } cases[] = {{-50, 10}, {0, 10}, {19, 10}, {25, 20}, {100, 100}};
    for (const auto &c : cases) {
        TarnTimer timer;
        Listener stopper([](TarnTimer &firing) { firing.stopNoWait(); });
        Listener later;
        timer.addListener(stopper);
        timer.addListener(later);
        const auto begin = std::chrono::steady_clock::now();
        timer.start(c.interval, TarnThread::Normal);
        ASSERT_TRUE(stopper.fired.waitFor(1)) << "interval " << c.interval;
        const auto elapsed = std::chrono::steady_clock::now() - begin;
        ASSERT_TRUE(timer.wait(kGenerousMs)) << "the loop did not end by itself";
        EXPECT_GE(std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count(), c.atLeastMs)
            << "interval " << c.interval;
        EXPECT_EQ(later.fired.count(), 1) << "interval " << c.interval;
    }
}

TEST(TarnTimerTest, ElapseCallsListenersInOrderOnTheCallingThread) {
    TarnTimer timer;
    std::string order;
    const std::thread::id caller = std::this_thread::get_id();
    bool elsewhere = false;
    auto note = [&](char name) {
        return [&, name](TarnTimer &) {
            order += name;
            elsewhere = elsewhere || std::this_thread::get_id() != caller;
        };
    };
    Listener a(note('a')), b(note('b')), c(note('c'));
    bool added = false;
    Listener adder([&](TarnTimer &firing) {
        order += 'd';
        if (!added) {
            added = true;
            firing.addListener(c); // called in this same firing, after all the others
        }
    });
    timer.elapse(); // no listeners: nothing happens
    timer.addListener(a);
    timer.addListener(b);
    timer.addListener(a); // a second place in the order
    timer.addListener(adder);
    timer.elapse();
    timer.elapse();
    EXPECT_EQ(order, "abadcabadc");
    EXPECT_FALSE(elsewhere);
}

// While a listener holds the loop, a stopNoWait is pending; a start then clears it, so the old
// loop goes on firing. Meanwhile the application fires the timer from its own thread.
TEST(TarnTimerTest, StartWhileRunningCancelsAPendingStopNoWait) {
    TarnTimer timer;
    TarnSemaphore gate(1);
    gate.tryAcquire(1);
    std::atomic<bool> holdOnce{true};
    tarntest::Signal held;
    Listener holder([&](TarnTimer &) {
        if (holdOnce.exchange(false)) {
            held.notify();
            gate.acquire(1);
        }
    });
    Listener counter;
    timer.addListener(holder);
    timer.addListener(counter);
    timer.start(10, TarnThread::Normal);
    ASSERT_TRUE(held.waitFor(1));
    timer.stopNoWait();
    timer.start(10, TarnThread::Normal); // refused by the thread, but clears the request
    EXPECT_TRUE(timer.running());
    timer.elapse(); // on this thread, while the loop is held
    EXPECT_EQ(counter.fired.count(), 1);
    gate.release(1);
    ASSERT_TRUE(counter.fired.waitFor(3)) << "the cleared stop request still ended the loop";
    timer.stop();
    EXPECT_TRUE(timer.finished());
}

} // namespace
