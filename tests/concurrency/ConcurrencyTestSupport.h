// Helpers of the concurrency tests: a counting signal to wait on with a generous deadline.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace tarntest {

/// The bound of every wait in these tests: long enough for a loaded machine and a sanitizer.
constexpr std::chrono::seconds kGenerous{30};
/// The same bound in milliseconds, for TarnThread::wait.
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

    /// Waits until the count is at least `count`, at most `timeout`; returns whether it is.
    bool waitFor(int count, std::chrono::milliseconds timeout = kGenerous) {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, timeout, [&] { return count_ >= count; });
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

} // namespace tarntest
