/// \file
/// The counting semaphore whose copies share one count.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnObject.h"

#include <string>

namespace tarn {
namespace platform {
struct SemaphoreObject;
} // namespace platform
} // namespace tarn

/// A counting semaphore over a system semaphore whose initial count is also its maximum. Copies
/// share one count: the copy constructor and assignment share the system semaphore and create
/// none, and it lives until the last copy is destroyed. Any number of threads may use a
/// semaphore, or copies of it, at the same time. A count below 1 gives a dead semaphore: it
/// never blocks, takes nothing and gives nothing back. Failures are reported only by
/// `tryAcquire`'s result; nothing throws.
class TARN_API TarnSemaphore : public TarnObject {
public:
    /// Creates a semaphore with `count` units, which is also the most it can hold. Below 1 the
    /// semaphore is dead (see the class comment).
    explicit TarnSemaphore(int count = 1);
    /// Makes a semaphore that shares `other`'s count.
    TarnSemaphore(const TarnSemaphore &other);
    /// Gives up this object's share of its semaphore and shares `other`'s count instead.
    TarnSemaphore &operator=(const TarnSemaphore &other);
    /// Gives up this object's share; the semaphore goes when its last copy does.
    ~TarnSemaphore() override;

    /// Takes `n` units, one at a time, waiting without limit for each. `n` below 1 does nothing;
    /// a dead semaphore returns at once having taken nothing. Not atomic: two callers may each
    /// hold part of what they asked for, and may then wait for each other for good.
    void acquire(int n);

    /// Takes `n` units, one at a time, without waiting. Returns true when all `n` were taken, and
    /// at once for `n` below 1. Returns false at the first unit that is not free; the units taken
    /// before it are given back, so a failed call leaves the count as another caller left it.
    bool tryAcquire(int n);

    /// Gives `n` units back in one step. When that would pass the maximum, when `n` is below 1,
    /// or on a dead semaphore, nothing changes and nothing is reported.
    void release(int n);

protected:
    using TarnObject::isa;
    /// Returns true for "TarnSemaphore" only.
    bool isa(const std::string &name) const override;
    /// Returns "TarnSemaphore".
    std::string getClassName() const override;

private:
    // The shared system semaphore; null for a dead one.
    tarn::platform::SemaphoreObject *handle;
};
