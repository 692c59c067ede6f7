// POSIX implementation of the semaphores, threads and sleep of the platform seam.
//
// Portable POSIX throughout, with one Linux extra: there a thread's priority is the nice value of
// that one thread (setpriority on its kernel thread id), which needs the id. Elsewhere POSIX
// offers no per-thread nice value, and the priority goes to the thread's scheduling parameter
// instead (pthread_setschedparam within the range of its policy).
#include "platform/TarnPlatform.h"
#include "platform/TarnReferenceCount.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <new>
#include <pthread.h>
#include <sched.h>
#include <thread>
#include <unistd.h>

#if defined(__linux__)
#include <sys/resource.h>
#include <sys/syscall.h>
#define TARN_PER_THREAD_NICE 1
#else
#define TARN_PER_THREAD_NICE 0
#endif

namespace tarn {
namespace platform {

// A count and its maximum under one mutex; waiters sleep on the condition variable until a
// unit is free. `references` counts the handles (copies of a semaphore) that still point here.
struct SemaphoreObject {
    explicit SemaphoreObject(int initial) : count(initial), maximum(initial) {}

    std::mutex mutex;
    std::condition_variable available;
    int count;
    const int maximum;
    std::atomic<int> references{1};
};

// The record of one thread, shared by the handles and by the thread itself (`references`). The
// thread publishes its ids, then waits for `resumed`; `ended` and `exitCode` are set together
// once the entry has returned. Every field but `references` is read and written under `mutex`.
struct ThreadObject {
    std::mutex mutex;
    std::condition_variable changed;
    bool idKnown = false;
    pthread_t self{};
#if TARN_PER_THREAD_NICE
    pid_t kernelId = 0;
#endif
    bool resumed = false;
    bool ended = false;
    std::uint32_t exitCode = kStillActive;
    std::atomic<int> references{2};
};

namespace {

// Waits on `condition` under `lock` until `ready()` holds, at most `timeoutMs` milliseconds
// (kWaitForever: no limit). Returns what `ready()` gives at the end.
template <class Ready>
bool waitUntil(std::condition_variable &condition, std::unique_lock<std::mutex> &lock,
               std::uint32_t timeoutMs, Ready ready) {
    if (timeoutMs == kWaitForever) {
        condition.wait(lock, ready);
        return true;
    }
    return condition.wait_for(lock, std::chrono::milliseconds(timeoutMs), ready);
}

// Drops one reference of a thread record; the last one deletes it.
void dropThread(ThreadObject *thread) {
    if (dropReference(thread)) {
        delete thread;
    }
}

// The body of every thread: publish the ids (so that a priority can be set before the entry
// runs), wait at the gate, run the entry, then record the end.
void threadBody(ThreadObject *thread, ThreadEntry entry, void *argument) {
    {
        std::unique_lock<std::mutex> lock(thread->mutex);
        thread->self = ::pthread_self();
#if TARN_PER_THREAD_NICE
        // The system call rather than the C library's gettid, which older C libraries lack.
        thread->kernelId = static_cast<pid_t>(::syscall(SYS_gettid));
#endif
        thread->idKnown = true;
        thread->changed.notify_all();
        thread->changed.wait(lock, [thread] { return thread->resumed; });
    }
    const auto code = static_cast<std::uint32_t>(entry(argument));
    {
        const std::lock_guard<std::mutex> lock(thread->mutex);
        thread->exitCode = code;
        thread->ended = true;
    }
    thread->changed.notify_all();
    dropThread(thread);
}

constexpr int kNiceSlowest = 19;
constexpr int kNiceFastest = -20;

// Maps a Windows-family thread priority level onto an offset of the nice value: five nice steps
// per level, the idle and time-critical ends onto the ends of the nice range.
int niceOffsetForLevel(int level) {
    if (level <= -15) {
        return kNiceSlowest;
    }
    if (level >= 15) {
        return kNiceFastest;
    }
    return std::max(kNiceFastest, std::min(kNiceSlowest, -5 * level));
}

#if TARN_PER_THREAD_NICE
// The nice value of the whole process, read once: thread levels are set relative to it, so that
// a program started with a lower priority keeps its place.
int processNice() {
    static const int nice = getpriority(PRIO_PROCESS, static_cast<id_t>(getpid()));
    return nice;
}

// Sets the nice value of the one thread `kernelId` for `level`.
bool applyLevel(const ThreadObject &thread, int level) {
    const int nice =
        std::max(kNiceFastest, std::min(kNiceSlowest, processNice() + niceOffsetForLevel(level)));
    return setpriority(PRIO_PROCESS, static_cast<id_t>(thread.kernelId), nice) == 0;
}
#else
// Sets the scheduling priority of the thread within the range of its present policy: the nice
// offset of the level, from 19 (slowest) to -20 (fastest), spread linearly over that range. A
// policy whose range is one value leaves nothing to set.
bool applyLevel(const ThreadObject &thread, int level) {
    int policy = 0;
    sched_param parameter{};
    if (::pthread_getschedparam(thread.self, &policy, &parameter) != 0) {
        return false;
    }
    const int lowest = ::sched_get_priority_min(policy);
    const int highest = ::sched_get_priority_max(policy);
    if (lowest == -1 || highest == -1 || highest < lowest) { // -1: the policy is unknown
        return false;
    }
    const long steps = static_cast<long>(kNiceSlowest - niceOffsetForLevel(level)); // 0 to 39
    parameter.sched_priority =
        lowest + static_cast<int>(steps * (highest - lowest) / (kNiceSlowest - kNiceFastest));
    return ::pthread_setschedparam(thread.self, policy, &parameter) == 0;
}
#endif

} // namespace

// Out of memory, like any other lack of a system resource, gives null here and never an
// exception: the callers report failure by their results and throw nothing.
SemaphoreObject *createSemaphore(int count) {
    if (count < 1) {
        return nullptr;
    }
    try {
        return new (std::nothrow) SemaphoreObject(count);
    } catch (const std::exception &) {
        // The mutex or the condition variable could not be set up.
        return nullptr;
    }
}

SemaphoreObject *shareSemaphore(SemaphoreObject *semaphore) {
    return addReference(semaphore);
}

void dropSemaphore(SemaphoreObject *semaphore) {
    if (dropReference(semaphore)) {
        delete semaphore;
    }
}

bool waitSemaphore(SemaphoreObject *semaphore, std::uint32_t timeoutMs) {
    if (semaphore == nullptr) {
        return false;
    }
    std::unique_lock<std::mutex> lock(semaphore->mutex);
    if (!waitUntil(semaphore->available, lock, timeoutMs, [semaphore] { return semaphore->count > 0; })) {
        return false;
    }
    --semaphore->count;
    return true;
}

bool releaseSemaphore(SemaphoreObject *semaphore, int n) {
    if (semaphore == nullptr || n < 1) {
        return false;
    }
    {
        const std::lock_guard<std::mutex> lock(semaphore->mutex);
        // Written as a difference so that a huge n cannot overflow the sum.
        if (n > semaphore->maximum - semaphore->count) {
            return false;
        }
        semaphore->count += n;
    }
    if (n == 1) {
        semaphore->available.notify_one();
    } else {
        semaphore->available.notify_all();
    }
    return true;
}

ThreadObject *createSuspendedThread(ThreadEntry entry, void *argument) {
    ThreadObject *thread = nullptr;
    try {
        thread = new (std::nothrow) ThreadObject;
        if (thread == nullptr) {
            return nullptr;
        }
        // No thread (std::system_error) or no memory for its start (std::bad_alloc): null.
        std::thread(threadBody, thread, entry, argument).detach();
    } catch (const std::exception &) {
        delete thread;
        return nullptr;
    }
    // From here on the new thread holds its own reference.
    std::unique_lock<std::mutex> lock(thread->mutex);
    thread->changed.wait(lock, [thread] { return thread->idKnown; });
    return thread;
}

ThreadObject *shareThread(ThreadObject *thread) {
    return addReference(thread);
}

void closeThread(ThreadObject *thread) {
    dropThread(thread);
}

bool setThreadPriority(ThreadObject *thread, int level) {
    if (thread == nullptr) {
        return false;
    }
    // Under the lock and before `ended` the thread is still alive, so its ids name no other one.
    const std::lock_guard<std::mutex> lock(thread->mutex);
    if (thread->ended) {
        return false;
    }
    return applyLevel(*thread, level);
}

bool resumeThread(ThreadObject *thread) {
    if (thread == nullptr) {
        return false;
    }
    {
        const std::lock_guard<std::mutex> lock(thread->mutex);
        thread->resumed = true;
    }
    thread->changed.notify_all();
    return true;
}

bool getThreadExitCode(ThreadObject *thread, std::uint32_t *code) {
    if (thread == nullptr || code == nullptr) {
        return false;
    }
    const std::lock_guard<std::mutex> lock(thread->mutex);
    *code = thread->exitCode;
    return true;
}

bool waitThread(ThreadObject *thread, std::uint32_t timeoutMs) {
    if (thread == nullptr) {
        return false;
    }
    std::unique_lock<std::mutex> lock(thread->mutex);
    return waitUntil(thread->changed, lock, timeoutMs, [thread] { return thread->ended; });
}

void sleepMilliseconds(std::uint32_t milliseconds) {
    if (milliseconds == 0) {
        std::this_thread::yield();
        return;
    }
    if (milliseconds == kWaitForever) {
        for (;;) {
            std::this_thread::sleep_for(std::chrono::hours(24));
        }
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

} // namespace platform
} // namespace tarn
