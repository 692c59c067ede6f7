// The periodic timer and its loop.
#include "tarn/concurrency/TarnTimer.h"

namespace {

// The length of one tick of the loop, in milliseconds.
constexpr int kTickMilliseconds = 10;

} // namespace

TarnTimer::TarnTimer() : stopRequested(false), interval(0) {}

TarnTimer::~TarnTimer() = default;

bool TarnTimer::isa(const std::string &name) const {
    return tarn::isClassName(name, "TarnTimer");
}

std::string TarnTimer::getClassName() const {
    return "TarnTimer";
}

void TarnTimer::start(int newInterval, TarnThread::Priority priority) {
    interval.store(newInterval);
    stopRequested.store(false);
    // A refusal means the loop is still running; that loop keeps its period.
    static_cast<void>(TarnThread::start(priority));
}

void TarnTimer::stop() {
    stopRequested.store(true);
    wait(0xFFFFFFFFul);
}

void TarnTimer::stopNoWait() {
    stopRequested.store(true);
}

void TarnTimer::addListener(TarnTimerListener &listener) {
    listeners.add() = &listener;
}

void TarnTimer::elapse() {
    // The size is read anew after every call, so a listener added by a listener is called too.
    for (unsigned int index = 0; index < listeners.size(); ++index) {
        listeners[index]->timerElapsed(*this);
    }
}

void TarnTimer::run() {
    // The tick count is fixed for the whole life of this thread.
    int ticks = interval.load() / kTickMilliseconds;
    if (ticks < 1) {
        ticks = 1;
    }
    for (;;) {
        for (int tick = 0; tick < ticks; ++tick) {
            if (stopRequested.load()) {
                return;
            }
            msleep(kTickMilliseconds);
        }
        elapse();
    }
}

void TarnTimer::dispose() {
    delete this;
}
