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

TEST(TarnHandleManagerTest, EmptyAndSinglePairTablesDoNotSort) {
    TarnHandleManager manager;
    EXPECT_EQ(manager.getNewPointer(nullptr), nullptr);
    EXPECT_FALSE(manager.isSorted());
    Plain object;
    EXPECT_TRUE(manager.registerPointers(address(0x100), &object));
    EXPECT_EQ(manager.getNewPointer(address(0x100)), &object);
    EXPECT_EQ(manager.getNewPointer(address(0x101)), nullptr);
    EXPECT_FALSE(manager.isSorted());
}

TEST(TarnHandleManagerTest, DescendingPairsAreSortedAtTheFirstLookup) {
    TarnHandleManager manager;
    Plain high;
    Plain low;
    manager.registerPointers(address(0x200), &high);
    manager.registerPointers(address(0x100), &low);
    EXPECT_FALSE(manager.isSorted());
    EXPECT_EQ(manager.getNewPointer(address(0x100)), &low);
    EXPECT_TRUE(manager.isSorted());
    EXPECT_EQ(manager.getNewPointer(address(0x200)), &high);
    EXPECT_EQ(manager.getNewPointer(address(0x50)), nullptr);
    EXPECT_EQ(manager.getNewPointer(address(0x300)), nullptr);
    EXPECT_EQ(manager.getNewPointer(nullptr), nullptr);
}

// Every count from 0 to 70 in shuffled order, plus a large one: each old address finds its own
// partner and the addresses between them find nothing.
TEST(TarnHandleManagerTest, AnyOrderAnyCountFindsEveryPair) {
    const std::uint32_t seed = 4242;
    std::mt19937 random(seed);
    std::vector<Plain> objects(5000);
    for (std::size_t count : {0, 1, 2, 3, 4, 5, 7, 16, 33, 70, 5000}) {
        std::vector<std::size_t> order(count);
        std::iota(order.begin(), order.end(), 0);
        std::shuffle(order.begin(), order.end(), random);
        TarnHandleManager manager;
        for (std::size_t index : order) {
            manager.registerPointers(address(16 * (index + 1)), &objects[index]);
        }
        for (std::size_t index = 0; index < count; ++index) {
            ASSERT_EQ(manager.getNewPointer(address(16 * (index + 1))), &objects[index])
                << "seed " << seed << " count " << count << " index " << index;
            ASSERT_EQ(manager.getNewPointer(address(16 * (index + 1) + 8)), nullptr);
        }
        EXPECT_EQ(manager.isSorted(), count >= 2);
    }
}

TEST(TarnHandleManagerTest, NullIsFoundOnlyWhenRegistered) {
    TarnHandleManager manager;
    Plain first;
    Plain second;
    manager.registerPointers(address(0x30), &first);
    manager.registerPointers(nullptr, &second);
    EXPECT_EQ(manager.getNewPointer(nullptr), &second);
    EXPECT_EQ(manager.getNewPointer(address(0x30)), &first);
}

TEST(TarnHandleManagerTest, DuplicateOldAddressGivesOneOfItsPartners) {
    TarnHandleManager manager;
    std::vector<Plain> objects(9);
    for (std::size_t i = 0; i < objects.size(); ++i) {
        manager.registerPointers(address(i % 3 == 0 ? 0x500 : 0x100 * (i + 1)), &objects[i]);
    }
    TarnSerializable *found = manager.getNewPointer(address(0x500));
    EXPECT_TRUE(found == &objects[0] || found == &objects[3] || found == &objects[6]);
    EXPECT_EQ(manager.getNewPointer(address(0x200)), &objects[1]);
}

TEST(TarnHandleManagerTest, RegistrationAfterALookupSortsAgain) {
    TarnHandleManager manager;
    Plain a;
    Plain b;
    Plain c;
    manager.registerPointers(address(0x300), &a);
    manager.registerPointers(address(0x100), &b);
    EXPECT_EQ(manager.getNewPointer(address(0x300)), &a);
    manager.registerPointers(address(0x200), &c);
    EXPECT_FALSE(manager.isSorted());
    EXPECT_EQ(manager.getNewPointer(address(0x200)), &c);
    EXPECT_EQ(manager.getNewPointer(address(0x100)), &b);
    EXPECT_TRUE(manager.isSorted());
}

TEST(TarnHandleManagerTest, ResetEmptiesPairsButKeepsClassNames) {
    TarnHandleManager manager;
    Plain first("First");
    Plain second("Second");
    manager.registerPointers(address(0x10), &first);
    manager.registerPointers(address(0x20), &second);
    manager.getNewPointer(address(0x10));
    manager.reset();
    EXPECT_EQ(manager.getCount(), 0u);
    EXPECT_EQ(manager.getNewPointer(address(0x10)), nullptr);
    EXPECT_TRUE(manager.isSorted());
    ASSERT_EQ(manager.getClassNames().size(), 2u);
    EXPECT_EQ(std::string(manager.getClassNames()[0]), "First");
    EXPECT_EQ(std::string(manager.getClassNames()[1]), "Second");
}

// Addresses are unsigned: one with the top bit set sorts above every other.
TEST(TarnHandleManagerTest, TopBitAddressesSortAsUnsigned) {
    TarnHandleManager manager;
    Plain top;
    Plain small;
    Plain middle;
    const std::uintptr_t topBit = std::uintptr_t(1) << (8 * sizeof(void *) - 1);
    manager.registerPointers(address(topBit | 0x10), &top);
    manager.registerPointers(address(0x10), &small);
    manager.registerPointers(address(topBit >> 1), &middle);
    EXPECT_EQ(manager.getNewPointer(address(topBit | 0x10)), &top);
    EXPECT_EQ(manager.getNewPointer(address(0x10)), &small);
    EXPECT_EQ(manager.getNewPointer(address(topBit >> 1)), &middle);
}

TEST(TarnHandleManagerTest, CopyAndDisposeKeepPairsApart) {
    auto *manager = new TarnHandleManager();
    Plain object;
    manager->registerPointers(address(0x10), &object);
    TarnHandleManager copy(*manager);
    manager->dispose();
    EXPECT_EQ(copy.getNewPointer(address(0x10)), &object);
}

} // namespace
