// Tests of the counting semaphore: its count, its maximum, shared copies and blocking.
#include "ConcurrencyTestSupport.h"

#include <tarn/tarn.h>

#include <gtest/gtest.h>

#include <climits>
#include <thread>

namespace {

// Counts the units free now by taking them all without waiting, then gives them back.
int freeUnits(TarnSemaphore &semaphore) {
    int free = 0;
    while (semaphore.tryAcquire(1)) {
        ++free;
    }
    if (free > 0) {
        semaphore.release(free);
    }
    return free;
}

TEST(TarnSemaphoreTest, StartsFullAndCountsUnitsTakenAndGivenBack) {
    TarnSemaphore semaphore(3);
    EXPECT_TRUE(semaphore.tryAcquire(3));
    EXPECT_FALSE(semaphore.tryAcquire(1));
    semaphore.release(1);
    EXPECT_TRUE(semaphore.tryAcquire(1));
    EXPECT_FALSE(semaphore.tryAcquire(1));
    semaphore.release(3);
    EXPECT_EQ(freeUnits(semaphore), 3);
}

TEST(TarnSemaphoreTest, DefaultConstructedIsAMutex) {
    TarnSemaphore semaphore;
    EXPECT_TRUE(semaphore.tryAcquire(1));
    EXPECT_FALSE(semaphore.tryAcquire(1));
    semaphore.release(1);
    EXPECT_TRUE(semaphore.tryAcquire(1));
}

TEST(TarnSemaphoreTest, ReleaseBeyondMaximumChangesNothing) {
    struct Case {
        int taken;   // units taken before the release
        int release; // units given back
        int freeAfter;
    };
    const Case cases[] = {
        {0, 1, 3},       // at the maximum already
        {1, 2, 2},       // would pass the maximum by one: fails as a whole, not in part
        {2, 2, 3},       // exactly back to the maximum
        {2, 0, 1},       // nothing to give
        {2, -1, 1},      // a negative count gives nothing
        {3, INT_MAX, 0}, // a sum that would overflow
    };
    for (const Case &c : cases) {
        TarnSemaphore semaphore(3);
        ASSERT_TRUE(semaphore.tryAcquire(c.taken));
        semaphore.release(c.release);
        EXPECT_EQ(freeUnits(semaphore), c.freeAfter) << "taken " << c.taken << ", released " << c.release;
    }
}

TEST(TarnSemaphoreTest, CountBelowOneGivesADeadSemaphoreThatNeverBlocks) {
    for (int count : {0, -1, INT_MIN}) {
        TarnSemaphore semaphore(count);
        semaphore.acquire(1); // must return at once, having taken nothing
        semaphore.acquire(INT_MAX);
        EXPECT_FALSE(semaphore.tryAcquire(1)) << count;
        semaphore.release(1);
        EXPECT_FALSE(semaphore.tryAcquire(1)) << "a dead semaphore took a release, count " << count;
        EXPECT_TRUE(semaphore.tryAcquire(0));
    }
}

TEST(TarnSemaphoreTest, NonPositiveRequestsTakeNothing) {
    TarnSemaphore semaphore(2);
    semaphore.acquire(0);
    semaphore.acquire(-1);
    semaphore.acquire(INT_MIN);
    EXPECT_TRUE(semaphore.tryAcquire(0));
    EXPECT_TRUE(semaphore.tryAcquire(-5));
    EXPECT_EQ(freeUnits(semaphore), 2);
}

TEST(TarnSemaphoreTest, FailedTryAcquireGivesBackWhatItTook) {
    TarnSemaphore semaphore(3);
    ASSERT_TRUE(semaphore.tryAcquire(2));
    EXPECT_FALSE(semaphore.tryAcquire(2)); // takes the last unit, then fails on the next
    EXPECT_EQ(freeUnits(semaphore), 1);
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
    assigned.release(2);
    EXPECT_EQ(freeUnits(copy), 2);

    // Assigning a semaphore to itself keeps it.
    TarnSemaphore &alias = copy;
    copy = alias;
    EXPECT_EQ(freeUnits(assigned), 2);
    EXPECT_EQ(freeUnits(copy), 2);
}

TEST(TarnSemaphoreTest, AssignmentFromADeadSemaphoreMakesItDead) {
    TarnSemaphore semaphore(2);
    semaphore = TarnSemaphore(0);
    EXPECT_FALSE(semaphore.tryAcquire(1));
    semaphore.acquire(1);
}

TEST(TarnSemaphoreTest, AcquireWaitsUntilAnotherThreadReleases) {
    TarnSemaphore semaphore(2);
    semaphore.acquire(2);
    tarntest::Signal acquired;
    TarnSemaphore shared(semaphore);
    std::thread waiter([&] {
        shared.acquire(2);
        acquired.notify();
    });
    semaphore.release(1);
    // One unit of two is free: the waiter must still be waiting for the second.
    EXPECT_FALSE(acquired.waitFor(1, std::chrono::milliseconds(50)));
    semaphore.release(1);
    EXPECT_TRUE(acquired.waitFor(1));
    waiter.join();
    EXPECT_EQ(freeUnits(semaphore), 0);
}

TEST(TarnSemaphoreTest, HasItsClassIdentity) {
    const TarnSemaphore semaphore;
    const TarnObject &object = semaphore;
    EXPECT_EQ(object.getClassName(), "TarnSemaphore");
    EXPECT_TRUE(object.isa("TarnSemaphore"));
    EXPECT_FALSE(object.isa("TarnObject"));
    EXPECT_FALSE(object.isa("TarnThread"));
}

} // namespace
