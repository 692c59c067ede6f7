// Tests of TarnHandleManager: registration, the single sort, lookups and duplicates.
#include "serialization/SerializationTestObjects.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using testobjects::Plain;

TarnSerializable *address(std::uintptr_t value) {
    return reinterpret_cast<TarnSerializable *>(value);
}

// Every count in shuffled order: each old address finds its own partner, the addresses between
// and around them find nothing, and only a table of two or more pairs is sorted.
TEST(TarnHandleManagerTest, AnyOrderAnyCountFindsEveryPair) {
    const std::uint32_t seed = 4242;
    std::mt19937 random(seed);
    std::vector<Plain> objects(5000);
    for (std::size_t count : {0, 1, 2, 3, 4, 5, 16, 33, 5000}) {
        std::vector<std::size_t> order(count);
        std::iota(order.begin(), order.end(), 0);
        std::shuffle(order.begin(), order.end(), random);
        TarnHandleManager manager;
        for (std::size_t index : order) {
            manager.registerPointers(address(16 * (index + 1)), &objects[index]);
        }
        EXPECT_EQ(manager.getNewPointer(nullptr), nullptr);
        for (std::size_t index = 0; index < count; ++index) {
            ASSERT_EQ(manager.getNewPointer(address(16 * (index + 1))), &objects[index])
                << "seed " << seed << " count " << count << " index " << index;
            ASSERT_EQ(manager.getNewPointer(address(16 * (index + 1) + 8)), nullptr);
        }
        EXPECT_EQ(manager.isSorted(), count >= 2);
    }
}

TEST(TarnHandleManagerTest, DuplicatesNullAndLateRegistrationsAreFound) {
    TarnHandleManager manager;
    std::vector<Plain> objects(9);
    for (std::size_t i = 0; i < 8; ++i) {
        manager.registerPointers(address(i % 3 == 0 ? 0x500 : 0x100 * (i + 1)), &objects[i]);
    }
    TarnSerializable *found = manager.getNewPointer(address(0x500));
    EXPECT_TRUE(found == &objects[0] || found == &objects[3] || found == &objects[6]);
    manager.registerPointers(nullptr, &objects[8]);
    EXPECT_FALSE(manager.isSorted());
    EXPECT_EQ(manager.getNewPointer(nullptr), &objects[8]);
    EXPECT_EQ(manager.getNewPointer(address(0x200)), &objects[1]);
    // Addresses are unsigned: one with the top bit set sorts above every other.
    const std::uintptr_t topBit = std::uintptr_t(1) << (8 * sizeof(void *) - 1);
    Plain high, middle;
    manager.registerPointers(address(topBit | 0x10), &high);
    manager.registerPointers(address(topBit >> 1), &middle);
    EXPECT_EQ(manager.getNewPointer(address(topBit | 0x10)), &high);
    EXPECT_EQ(manager.getNewPointer(address(topBit >> 1)), &middle);
    EXPECT_EQ(manager.getNewPointer(address(0x200)), &objects[1]);
}

TEST(TarnHandleManagerTest, ResetEmptiesPairsButKeepsClassNames) {
    TarnHandleManager manager;
    Plain first("First");
    Plain second("Second");
    manager.registerPointers(address(0x20), &first);
    manager.registerPointers(address(0x10), &second);
    manager.registerPointers(address(0x30), nullptr);
    manager.getNewPointer(address(0x10));
    manager.reset();
    EXPECT_EQ(manager.getNewPointer(address(0x10)), nullptr);
    EXPECT_EQ(manager.getCount(), 0u);
    ASSERT_EQ(manager.getClassNames().size(), 3u);
    EXPECT_EQ(std::string(manager.getClassNames()[1]), "Second");
    EXPECT_EQ(std::string(manager.getClassNames()[2]), "");
    manager.registerPointers(address(0x40), &second);
    manager.registerPointers(address(0x50), &first);
    ASSERT_EQ(manager.getClassNames().size(), 5u);
    EXPECT_EQ(std::string(manager.getClassNames()[3]), "Second");
    EXPECT_EQ(std::string(manager.getClassNames()[4]), "First");
    TarnHandleManager copy(manager);
    EXPECT_EQ(copy.getClassNames().size(), 5u);
    manager = TarnHandleManager(); // how a long-running program empties the record
    EXPECT_EQ(manager.getClassNames().size(), 0u);
}

// Old addresses chosen so that all of them hash to one slot: the index gives up and lookups still
// find every pair, by binary search. (The addresses need 64 bits.)
TEST(TarnHandleManagerTest, AddressesThatCollideInTheIndexAreStillFound) {
    if (sizeof(void *) < 8) {
        GTEST_SKIP() << "colliding addresses need 64 bits";
    }
    // The inverse of the index's odd multiplier modulo 2^64, by Newton's iteration.
    const std::uint64_t multiplier = 0x9E3779B97F4A7C15ull;
    std::uint64_t inverse = multiplier;
    for (int step = 0; step < 6; ++step) {
        inverse *= 2 - multiplier * inverse;
    }
    std::vector<Plain> objects(200);
    TarnHandleManager manager;
    for (std::uint64_t i = 0; i < objects.size(); ++i) {
        // address x multiplier == i: the top bits, the home slot, are the same for all.
        manager.registerPointers(address(static_cast<std::uintptr_t>(i * inverse)), &objects[i]);
    }
    for (std::uint64_t i = 0; i < objects.size(); ++i) {
        ASSERT_EQ(manager.getNewPointer(address(static_cast<std::uintptr_t>(i * inverse))), &objects[i]) << i;
    }
    EXPECT_EQ(manager.getNewPointer(address(static_cast<std::uintptr_t>(objects.size() * inverse))), nullptr);
}

// The keys 0 to count - 1 in the order that makes a quicksort around the middle element
// quadratic: each partition of [first, last] finds the smallest key left at its middle, swaps it
// to the front and goes on with [first + 1, last]. Built by running that sequence of swaps on
// the positions.
std::vector<std::size_t> middlePivotKillerOrder(std::size_t count) {
    std::vector<std::size_t> positions(count);
    std::iota(positions.begin(), positions.end(), 0);
    std::vector<std::size_t> keys(count);
    for (std::size_t first = 0; first < count; ++first) {
        const std::size_t middle = first + (count - 1 - first) / 2;
        keys[positions[middle]] = first;
        std::swap(positions[first], positions[middle]);
    }
    return keys;
}

// A text that registers 100,000 objects in that order restores in bounded time (a plain
// middle-pivot quicksort takes tens of seconds), and every stored pointer still finds its object.
TEST(TarnHandleManagerTest, HostileAddressOrderRestoresInBoundedTime) {
    const std::size_t parts = 100000;
    const std::vector<std::size_t> keys = middlePivotKillerOrder(parts + 1);
    auto addressText = [&keys](std::size_t index) {
        return testobjects::pointerText(address(16 * (keys[index] + 1)));
    };
    std::string text = "Probe{parent=" + testobjects::pointerText(nullptr) + ";this=" + addressText(0) + ";";
    for (std::size_t part = 1; part <= parts; ++part) {
        text += "Probe{parent=" + addressText(0) + ";partner=" + addressText(part % parts + 1) +
                ";this=" + addressText(part) + ";}";
    }
    text += "}";
    testobjects::Probe root;
    TarnStringArchive archive;
    const auto start = std::chrono::steady_clock::now();
    archive.serializeRestore(root, TarnString(text));
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    EXPECT_LT(seconds.count(), 20.0);
    ASSERT_EQ(root.parts.size(), parts);
    for (unsigned part = 0; part < parts; ++part) {
        ASSERT_EQ(root.parts[part].rawParent(), &root) << part;
        ASSERT_EQ(root.parts[part].partner, &root.parts[(part + 1) % parts]) << part;
    }
}

} // namespace
