// Tour of concurrency: a semaphore, a thread, and a timer that runs for a short while.
#include "Tour.h"

#include <tarn/tarn.h>

#include <cstdio>

namespace {

// Counts the firings of a timer and asks it to stop after the last one wanted.
class FiringCounter final : public TarnTimerListener {
public:
    explicit FiringCounter(int wanted) : wanted_(wanted) {}

    void timerElapsed(TarnTimer &timer) override {
        ++firings_;
        if (firings_ == wanted_) {
            timer.stopNoWait(); // the stop a listener may use: the loop ends before its next tick
        }
    }

    int firings() const { return firings_; }

private:
    int wanted_;
    int firings_ = 0;
};

// A thread that adds up the numbers 1 to 100 and hands the sum over.
class Summer : public TarnThread {
public:
    void run() override {
        for (int i = 1; i <= 100; ++i) {
            sum += i;
        }
    }
    int sum = 0;
};

} // namespace

void tourConcurrency() {
    std::printf("\n== Concurrency\n");
    TarnSemaphore semaphore(2);
    const bool both = semaphore.tryAcquire(2);
    const bool third = semaphore.tryAcquire(1);
    semaphore.release(1);
    std::printf("semaphore of 2: took 2: %s, a third: %s, after release(1) one more: %s\n",
                both ? "true" : "false", third ? "true" : "false",
                semaphore.tryAcquire(1) ? "true" : "false");

    Summer summer;
    summer.start(TarnThread::Normal);
    const bool ended = summer.wait(5000); // the sum is read only once the thread has ended
    std::printf("thread: ended %s, sum of 1..100 = %d, running: %s\n", ended ? "true" : "false", summer.sum,
                summer.running() ? "true" : "false");

    // A timer of 20 ms that its listener stops after five firings, about a tenth of a second.
    TarnTimer timer;
    FiringCounter counter(5);
    timer.addListener(counter);
    timer.start(20, TarnThread::Normal);
    const bool stopped = timer.wait(5000);
    timer.stop(); // returns at once once the loop has ended; the count is read after it
    std::printf("timer (%s) every 20 ms: stopped by its listener %s after %d firings\n",
                timer.getClassName().c_str(), stopped ? "true" : "false", counter.firings());
}
