// Helpers of the concurrency tests: a counting signal to wait on, and a thread that runs a function.
#pragma once

#include <tarn/tarn.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <utility>

namespace tarntest {

/// While an object of this class lives, operator new on the thread that made it grants `allowed`
/// more allocations and then fails with std::bad_alloc. (This test program replaces operator new;
/// see TarnSemaphore_test.cpp.)
class FailingAllocations {
public:
    explicit FailingAllocations(int allowed = 0);
    ~FailingAllocations();
    FailingAllocations(const FailingAllocations &) = delete;
    FailingAllocations &operator=(const FailingAllocations &) = delete;

    /// Whether the library's own allocations come from this program's operator new: not so where
    /// the library carries a runtime of its own (a Windows DLL linked statically).
    static bool reachLibrary();
};

/// The bound of every wait in these tests, in milliseconds: long enough for a loaded machine
/// under a sanitizer.
constexpr unsigned long kGenerousMs = 30000;

/// Counts notifications; a test waits until the count reaches a number, with a deadline, so
/// that events are ordered by what happened and never by sleeping.
class Signal {
public:
    /// Adds one to the count and wakes the waiters.
    void notify() {
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            ++count_;
        }
        changed_.notify_all();
    }

    /// Waits until the count is at least `count`, at most `timeoutMs`; returns whether it is.
    bool waitFor(int count, unsigned long timeoutMs = kGenerousMs) {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, std::chrono::milliseconds(timeoutMs), [&] { return count_ >= count; });
    }

    /// Returns the count now.
    int count() {
        const std::lock_guard<std::mutex> lock(mutex_);
        return count_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int count_ = 0;
};

/// A TarnThread whose run calls a function given by the test.
class FunctionThread : public TarnThread {
public:
    explicit FunctionThread(std::function<void()> body) : body_(std::move(body)) {}
    void run() override { body_(); }

private:
    std::function<void()> body_;
};

} // namespace tarntest
