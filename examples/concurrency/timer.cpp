// Example: a worker thread, a semaphore shared between threads, and a periodic timer whose
// listener stops it.
#include <tarn/tarn.h>

#include <cstdio>

namespace {

// A thread that adds up 1 to 1000, then gives back the unit of the semaphore it was handed.
class Adder : public TarnThread {
public:
    explicit Adder(const TarnSemaphore &done) : done_(done) {}

    void run() override {
        for (int i = 1; i <= 1000; ++i) {
            sum += i;
        }
        done_.release(1);
    }

    long sum = 0;

private:
    TarnSemaphore done_; // a copy shares the count of the semaphore it was made from
};

// Counts the firings of a timer and asks it to stop after the third. Listeners run on the timer's
// thread; stopNoWait is the stop a listener may call.
class ThreeTicks final : public TarnTimerListener {
public:
    void timerElapsed(TarnTimer &timer) override {
        if (++firings == 3) {
            timer.stopNoWait();
        }
    }

    int firings = 0;
};

} // namespace

int main() {
    // A semaphore of one unit: taken here, given back by the thread when its work is done.
    TarnSemaphore done(1);
    done.acquire(1);
    Adder adder(done);
    adder.start(TarnThread::Normal);
    const bool ended = adder.wait(10000); // milliseconds; the sum is read only after the end
    const bool signalled = done.tryAcquire(1);
    std::printf("thread ended: %s, sum %ld, unit given back: %s\n", ended ? "true" : "false", adder.sum,
                signalled ? "true" : "false");

    // A timer of 20 ms; the listener stops it after three firings, and wait sees the thread end.
    TarnTimer timer;
    ThreeTicks ticks;
    timer.addListener(ticks);
    timer.start(20, TarnThread::Normal);
    const bool stopped = timer.wait(10000);
    timer.stop(); // ended already: returns at once, and the count may be read
    std::printf("timer stopped by its listener: %s after %d firings\n", stopped ? "true" : "false",
                ticks.firings);

    const bool ok = ended && adder.sum == 500500 && signalled && stopped && ticks.firings == 3;
    std::printf("%s\n", ok ? "ok" : "FAILED");
    return ok ? 0 : 1;
}
