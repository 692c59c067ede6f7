// The thread base class over the platform's threads.
#include "tarn/concurrency/TarnThread.h"

#include "platform/TarnPlatform.h"

#include <cstdint>
#include <limits>

namespace {

// Narrows a time in milliseconds to the platform's 32 bits. Values at or above 0xFFFFFFFF (which
// a 64-bit unsigned long can hold) mean no limit rather than wrapping round to a short time.
std::uint32_t clampMilliseconds(unsigned long milliseconds) {
    if (milliseconds >= tarn::platform::kWaitForever) {
        return tarn::platform::kWaitForever;
    }
    return static_cast<std::uint32_t>(milliseconds);
}

// Returns true while `thread` has not ended; a failed query counts as ended.
bool isActive(tarn::platform::ThreadObject *thread) {
    std::uint32_t code = 0;
    return tarn::platform::getThreadExitCode(thread, &code) && code == tarn::platform::kStillActive;
}

// Sets the priority of `thread` from the table. A value outside the seven levels would read past
// the table, so it is ignored and the thread keeps the priority it has.
void applyPriority(tarn::platform::ThreadObject *thread, TarnThread::Priority priority) {
    if (priority >= TarnThread::Idle && priority <= TarnThread::TimeCritical) {
        tarn::platform::setThreadPriority(thread, TarnThread::Priorities[priority]);
    }
}

} // namespace

const int TarnThread::Priorities[7] = {-15, -2, -1, 0, 1, 2, 15};

TarnThread::TarnThread() : started(false), handle(nullptr) {}

TarnThread::TarnThread(const TarnThread &other)
    : TarnObject(other), started(other.started), handle(tarn::platform::shareThread(other.handle)) {}

TarnThread &TarnThread::operator=(const TarnThread &other) {
    // Take the new reference before giving up the old one, so self-assignment keeps the thread.
    tarn::platform::ThreadObject *shared = tarn::platform::shareThread(other.handle);
    tarn::platform::closeThread(handle);
    handle = shared;
    started = other.started;
    return *this;
}

TarnThread::~TarnThread() {
    tarn::platform::closeThread(handle);
}

bool TarnThread::isa(const std::string &name) const {
    return tarn::isClassName(name, "TarnThread");
}

std::string TarnThread::getClassName() const {
    return "TarnThread";
}

bool TarnThread::start(Priority priority) {
    if (started && handle != nullptr && isActive(handle)) {
        return false;
    }
    started = true;
    tarn::platform::closeThread(handle);
    // The thread waits at its gate until resumed: `handle` and the priority are in place before
    // `run` begins. A failed creation leaves `handle` null, and the two calls then do nothing.
    handle = tarn::platform::createSuspendedThread(&TarnThread::beginThread, this);
    applyPriority(handle, priority);
    tarn::platform::resumeThread(handle);
    return true;
}

bool TarnThread::running() {
    return handle != nullptr && isActive(handle);
}

bool TarnThread::finished() {
    return !running();
}

bool TarnThread::wait(unsigned long timeoutMs) {
    if (handle == nullptr) {
        return true;
    }
    return tarn::platform::waitThread(handle, clampMilliseconds(timeoutMs));
}

void TarnThread::setPriority(Priority priority) {
    if (handle != nullptr) {
        applyPriority(handle, priority);
    }
}

unsigned long TarnThread::beginThread(void *thread) {
    static_cast<TarnThread *>(thread)->run();
    return 0;
}

void TarnThread::sleep(unsigned long seconds) {
    // The product wraps in 32 bits, as the platform's millisecond count does.
    const std::uint32_t milliseconds = static_cast<std::uint32_t>(seconds) * 1000u;
    tarn::platform::sleepMilliseconds(milliseconds);
}

void TarnThread::msleep(unsigned long milliseconds) {
    tarn::platform::sleepMilliseconds(clampMilliseconds(milliseconds));
}
