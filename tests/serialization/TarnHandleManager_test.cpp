// Tests of TarnHandleManager: registration, the single sort, lookups and duplicates.
#include "serialization/SerializationTestObjects.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <random>
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
}

// Addresses are unsigned: one with the top bit set sorts above every other.
TEST(TarnHandleManagerTest, TopBitAddressesSortAsUnsigned) {
    TarnHandleManager manager;
    Plain objects[3];
    const std::uintptr_t topBit = std::uintptr_t(1) << (8 * sizeof(void *) - 1);
    const std::uintptr_t olds[3] = {topBit | 0x10, 0x10, topBit >> 1};
    for (int i = 0; i < 3; ++i) {
        manager.registerPointers(address(olds[i]), &objects[i]);
    }
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(manager.getNewPointer(address(olds[i])), &objects[i]);
    }
}

} // namespace
