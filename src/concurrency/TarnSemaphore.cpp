// The counting semaphore over the platform's semaphore.
#include "tarn/concurrency/TarnSemaphore.h"

#include "platform/TarnPlatform.h"

TarnSemaphore::TarnSemaphore(int count) : handle(tarn::platform::createSemaphore(count)) {}

TarnSemaphore::TarnSemaphore(const TarnSemaphore &other)
    : TarnObject(other), handle(tarn::platform::shareSemaphore(other.handle)) {}

TarnSemaphore &TarnSemaphore::operator=(const TarnSemaphore &other) {
    // Share the new semaphore before dropping the old one, so that assigning a semaphore to
    // itself (or to a copy of itself) never destroys it.
    tarn::platform::SemaphoreObject *shared = tarn::platform::shareSemaphore(other.handle);
    tarn::platform::dropSemaphore(handle);
    handle = shared;
    return *this;
}

TarnSemaphore::~TarnSemaphore() {
    tarn::platform::dropSemaphore(handle);
}

bool TarnSemaphore::isa(const std::string &name) const {
    return tarn::isClassName(name, "TarnSemaphore");
}

std::string TarnSemaphore::getClassName() const {
    return "TarnSemaphore";
}

void TarnSemaphore::acquire(int n) {
    // A wait without limit fails only when there is no semaphore: a dead one takes nothing.
    for (int taken = 0; taken < n; ++taken) {
        if (!tarn::platform::waitSemaphore(handle, tarn::platform::kWaitForever)) {
            return;
        }
    }
}

bool TarnSemaphore::tryAcquire(int n) {
    for (int taken = 0; taken < n; ++taken) {
        if (!tarn::platform::waitSemaphore(handle, 0)) {
            // Give back what this call took: holding units that the caller cannot know of would
            // shrink the semaphore for good.
            if (taken > 0) {
                tarn::platform::releaseSemaphore(handle, taken);
            }
            return false;
        }
    }
    return true;
}

void TarnSemaphore::release(int n) {
    // A release beyond the maximum fails as a whole in the platform, which is all that is asked.
    static_cast<void>(tarn::platform::releaseSemaphore(handle, n));
}
