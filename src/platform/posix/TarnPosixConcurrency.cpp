// POSIX implementation of the semaphores, threads and sleep of the platform seam.
#include "platform/TarnPlatform.h"
#include "platform/TarnReferenceCount.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <sys/resource.h>
#include <system_error>
#include <thread>
#include <unistd.h>

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
// thread publishes its kernel id, then waits for `resumed`; `ended` and `exitCode` are set
// together once the entry has returned. Every field but `references` is read and written
// under `mutex`.
struct ThreadObject {
    std::mutex mutex;
    std::condition_variable changed;
    bool idKnown = false;
    pid_t id = 0;
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

// The body of every thread: publish the kernel id (so that a priority can be set before the
// entry runs), wait at the gate, run the entry, then record the end.
void threadBody(ThreadObject *thread, ThreadEntry entry, void *argument) {
    {
        std::unique_lock<std::mutex> lock(thread->mutex);
        thread->id = ::gettid();
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

// The nice value of the whole process, read once: thread levels are set relative to it, so that
// a program started with a lower priority keeps its place.
int processNice() {
    static const int nice = getpriority(PRIO_PROCESS, static_cast<id_t>(getpid()));
    return nice;
}

// Maps a Windows-family thread priority level onto a nice value: five nice steps per level,
// the idle and time-critical ends onto the ends of the nice range.
int niceForLevel(int level) {
    constexpr int kNiceSlowest = 19;
    constexpr int kNiceFastest = -20;
    int offset = 0;
    if (level <= -15) {
        offset = kNiceSlowest;
    } else if (level >= 15) {
        offset = kNiceFastest;
    } else {
        offset = std::max(kNiceFastest, std::min(kNiceSlowest, -5 * level));
    }
    return std::max(kNiceFastest, std::min(kNiceSlowest, processNice() + offset));
}

} // namespace

SemaphoreObject *createSemaphore(int count) {
    if (count < 1) {
        return nullptr;
    }
    return new SemaphoreObject(count);
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
    auto record = std::make_unique<ThreadObject>();
    ThreadObject *thread = record.get();
    try {
        std::thread(threadBody, thread, entry, argument).detach();
    } catch (const std::system_error &) {
        return nullptr;
    }
    // From here on the new thread holds its own reference.
    record.release();
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
    // Under the lock and before `ended` the thread is still alive, so its id names no other one.
    const std::lock_guard<std::mutex> lock(thread->mutex);
    if (thread->ended) {
        return false;
    }
    return setpriority(PRIO_PROCESS, static_cast<id_t>(thread->id), niceForLevel(level)) == 0;
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
