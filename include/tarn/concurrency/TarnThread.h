/// \file
/// The base class of threads: a derived class implements run, and start runs it on a new thread.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnObject.h"

#include <string>

namespace tarn {
namespace platform {
struct ThreadObject;
} // namespace platform
} // namespace tarn

/// A system thread that runs the derived class's `run`. `start` creates the thread with a
/// priority; the object can be started again once `run` has returned, as often as wanted. What
/// the thread is doing is always asked of the system, never remembered. The object has no lock:
/// `start`, `setPriority`, assignment and the destructor belong to one thread at a time, while
/// `running`, `finished` and `wait` may be called from any thread as long as none of those runs.
/// The destructor neither stops nor waits for the thread, so the owner calls `wait` first. A
/// copy refers to the same system thread as the original (each holds its own reference to it).
/// Nothing throws; `start` answers false only when a run is still active.
class TARN_API TarnThread : public TarnObject {
public:
    /// The seven priority levels, indexes into `Priorities`.
    enum Priority { Idle, Lowest, BelowNormal, Normal, AboveNormal, Highest, TimeCritical };

    /// The system priority level of each `Priority`: -15, -2, -1, 0, 1, 2, 15.
    static const int Priorities[7];

    /// Makes a thread object that was never started; creates no thread.
    TarnThread();
    /// Makes an object that refers to the same system thread as `other`.
    TarnThread(const TarnThread &other);
    /// Gives up this object's thread reference and refers to `other`'s system thread instead.
    TarnThread &operator=(const TarnThread &other);
    /// Gives up this object's reference to its thread; the thread itself goes on running.
    ~TarnThread() override;

    using TarnObject::isa;
    /// Returns true for "TarnThread" only.
    bool isa(const std::string &name) const override;
    /// Returns "TarnThread".
    std::string getClassName() const override;

    /// Starts a new system thread at `priority` that runs `run`. The thread does not begin before
    /// its priority is set and this object refers to it. Returns false, changing nothing, while
    /// an earlier run is still active; otherwise true, even when the system could not create a
    /// thread (the object then reads as ended at once). A `priority` outside the seven sets no
    /// priority: the thread keeps the one it inherits.
    bool start(Priority priority);

    /// Returns true while the latest thread has not ended; false when never started.
    bool running();
    /// Returns the opposite of `running`: true when never started or ended.
    bool finished();

    /// Waits until the latest thread has ended, at most `timeoutMs` milliseconds (0 polls;
    /// 0xFFFFFFFF and anything larger wait without limit). Returns true at once when never
    /// started, true when the thread ended, false at the time-out or when the wait fails.
    bool wait(unsigned long timeoutMs);

    /// Sets the priority of the latest thread; without one, does nothing, and on an ended thread
    /// it has no effect, nor has a value outside the seven. Not remembered for a later `start`.
    /// Best effort: a raise that the system refuses is ignored.
    void setPriority(Priority priority);

    /// The entry of every new thread: calls `run` of the TarnThread that `thread` points to, then
    /// returns 0 (so the exit code of a thread never reads as still active).
    static unsigned long beginThread(void *thread);

    /// The work of the thread, executed on the new thread; the thread ends when it returns.
    virtual void run() = 0;

protected:
    /// Suspends the calling thread for `seconds` times 1000 milliseconds, the product taken in 32
    /// bits.
    static void sleep(unsigned long seconds);
    /// Suspends the calling thread for `milliseconds` milliseconds (0xFFFFFFFF and anything
    /// larger: without limit).
    static void msleep(unsigned long milliseconds);

    /// True from the first `start` that went ahead.
    bool started;
    /// The latest system thread; null until the first `start`, and after a failed creation.
    tarn::platform::ThreadObject *handle;
};
