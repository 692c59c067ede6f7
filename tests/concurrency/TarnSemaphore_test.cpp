// Tests of the counting semaphore: its count, its maximum, shared copies and blocking.
#include "ConcurrencyTestSupport.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <new>
#include <sstream>
#include <string>

// This program's operator new, so that tests can make allocations fail: each thread may be given a
// number of allocations after which they fail (-1: no limit).
namespace {
thread_local int allocationsLeft = -1;
} // namespace

// Every form of plain new and delete is replaced, so that all of them pair malloc with free (a
// sanitizer's own forms would otherwise meet these). None is inlined, so that a memory checker
// that takes the place of a program's own allocation functions takes the place of all of them.
[[gnu::noinline]] void *operator new(std::size_t size) {
    if (allocationsLeft == 0) {
        throw std::bad_alloc();
    }
    if (allocationsLeft > 0) {
        --allocationsLeft;
    }
    if (void *memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}

[[gnu::noinline]] void *operator new[](std::size_t size) {
    return operator new(size);
}

[[gnu::noinline]] void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
    try {
        return operator new(size);
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}

[[gnu::noinline]] void *operator new[](std::size_t size, const std::nothrow_t &) noexcept {
    return operator new(size, std::nothrow);
}

// GCC takes free inside the replacement of operator delete for a mismatch with operator new.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
#endif
[[gnu::noinline]] void operator delete(void *memory) noexcept {
    std::free(memory);
}
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif

[[gnu::noinline]] void operator delete[](void *memory) noexcept {
    operator delete(memory);
}

[[gnu::noinline]] void operator delete(void *memory, std::size_t) noexcept {
    operator delete(memory);
}

[[gnu::noinline]] void operator delete[](void *memory, std::size_t) noexcept {
    operator delete(memory);
}

[[gnu::noinline]] void operator delete(void *memory, const std::nothrow_t &) noexcept {
    operator delete(memory);
}

[[gnu::noinline]] void operator delete[](void *memory, const std::nothrow_t &) noexcept {
    operator delete(memory);
}

tarntest::FailingAllocations::FailingAllocations(int allowed) {
    allocationsLeft = allowed;
}

tarntest::FailingAllocations::~FailingAllocations() {
    allocationsLeft = -1;
}

bool tarntest::FailingAllocations::reachLibrary() {
    const FailingAllocations failing;
    try {
        const TarnMatrix probe(2, 2);
        return false;
    } catch (const std::bad_alloc &) {
        return true;
    }
}

namespace {

// Counts the units free now by taking them all without waiting, then gives them back.
int freeUnits(TarnSemaphore &semaphore) {
    int free = 0;
    while (semaphore.tryAcquire(1)) {
        ++free;
    }
    semaphore.release(free);
    return free;
}

// Runs `script` on a new semaphore of `count` units; returns the first step that failed, or "".
// Steps: tN+ / tN- tryAcquire(N) gives true / false; rN release(N); aN acquire(N), where it
// cannot block; =N exactly N units are free.
std::string runScript(int count, const std::string &script) {
    TarnSemaphore semaphore(count);
    std::istringstream steps(script);
    std::string step;
    while (steps >> step) {
        const char expected = step.back();
        const bool withResult = expected == '+' || expected == '-';
        const int n = std::stoi(step.substr(1, step.size() - (withResult ? 2 : 1)));
        bool ok = true;
        switch (step[0]) {
        case 't':
            ok = semaphore.tryAcquire(n) == (expected == '+');
            break;
        case 'r':
            semaphore.release(n);
            break;
        case 'a':
            semaphore.acquire(n);
            break;
        default:
            ok = freeUnits(semaphore) == n;
            break;
        }
        if (!ok) {
            return step;
        }
    }
    return "";
}

TEST(TarnSemaphoreTest, CountsUnitsUpToItsMaximum) {
    const struct {
        int count;
        const char *script;
    } cases[] = {
        {3, "t3+ t1- r1 t1+ t1- r3 =3"},         // starts full, counts down and up
        {3, "r1 =3"},                            // a release at the maximum changes nothing
        {3, "t1+ r2 =2"},                        // one past the maximum fails as a whole
        {3, "t3+ r2147483647 =0"},               // a sum that would overflow
        {3, "t2+ r0 r-1 =1"},                    // nothing to give back
        {3, "a0 a-1 a-2147483648 t0+ t-5+ =3"},  // requests below 1 take nothing
        {3, "t2+ t2- =1"},                       // a failed tryAcquire gives back what it took
        {0, "a1 a2147483647 t1- r1 t1- t0+ =0"}, // dead: never blocks, takes and gives nothing
        {-1, "a1 t1- r1 t1-"},                   // as dead below 0
        {INT_MIN, "a1 r1 =0"},                   // and at the lowest count
    };
    for (const auto &c : cases) {
        EXPECT_EQ(runScript(c.count, c.script), "") << "count " << c.count << ": " << c.script;
    }
    TarnSemaphore mutex; // one unit by default
    EXPECT_TRUE(mutex.tryAcquire(1));
    EXPECT_FALSE(mutex.tryAcquire(1));
}

TEST(TarnSemaphoreTest, CopiesShareOneCountAndOutliveTheOriginal) {
    auto *original = new TarnSemaphore(2);
    TarnSemaphore copy(*original);
    TarnSemaphore assigned(5);
    assigned = copy;
    EXPECT_TRUE(original->tryAcquire(1));
    EXPECT_TRUE(copy.tryAcquire(1));
    EXPECT_FALSE(assigned.tryAcquire(1));
    delete original; // the copies keep the semaphore alive
    const TarnSemaphore &alias = assigned;
    assigned = alias; // and so does assigning a semaphore to itself
    assigned.release(2);
    EXPECT_EQ(freeUnits(copy), 2);
    copy = TarnSemaphore(0); // a copy of a dead semaphore is dead
    EXPECT_FALSE(copy.tryAcquire(1));
    EXPECT_EQ(freeUnits(assigned), 2);
}

TEST(TarnSemaphoreTest, AcquireWaitsUntilAnotherThreadReleases) {
    TarnSemaphore semaphore(2);
    semaphore.acquire(2);
    tarntest::Signal acquired;
    tarntest::FunctionThread waiter([&] {
        semaphore.acquire(2);
        acquired.notify();
    });
    ASSERT_TRUE(waiter.start(TarnThread::Normal));
    semaphore.release(1);
    // One unit of two is free: the waiter must still be waiting for the second.
    EXPECT_FALSE(acquired.waitFor(1, 50));
    semaphore.release(1);
    EXPECT_TRUE(acquired.waitFor(1));
    ASSERT_TRUE(waiter.wait(tarntest::kGenerousMs));
    EXPECT_EQ(freeUnits(semaphore), 0);
}

// Out of memory is one more way for the system to have no semaphore to give: the semaphore is
// dead (nothing to take, releases ignored), and nothing is thrown.
TEST(TarnSemaphoreTest, OutOfMemoryGivesADeadSemaphoreWithoutAnException) {
    if (!tarntest::FailingAllocations::reachLibrary()) {
        GTEST_SKIP() << "the library's allocations do not come from this program's operator new";
    }
    bool tookAUnit = true;
    EXPECT_NO_THROW({
        const tarntest::FailingAllocations failing;
        TarnSemaphore semaphore(2);
        semaphore.release(1);
        semaphore.acquire(1); // returns at once: there is nothing to wait on
        tookAUnit = semaphore.tryAcquire(1);
    });
    EXPECT_FALSE(tookAUnit);
}

} // namespace
