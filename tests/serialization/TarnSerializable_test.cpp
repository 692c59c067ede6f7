// Tests of TarnSerializable: base steps, pointer reconnection, clone and get.
#include "serialization/SerializationTestObjects.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using testobjects::Plain;
using testobjects::pointerText;
using testobjects::Probe;
using testobjects::tokenNames;

TEST(TarnSerializableTest, StoreWritesIdentityAndNullParent) {
    Probe probe;
    probe.setModified();
    TarnArchive node;
    probe.serializeStore(node);
    EXPECT_FALSE(probe.isModified());
    EXPECT_EQ(std::string(node.getName()), "Probe");
    EXPECT_EQ(std::string(node.getTokenText("this")), pointerText(&probe));
    EXPECT_EQ(std::string(node.getTokenText("parent")), std::string(2 * sizeof(void *), '0'));
    EXPECT_EQ(tokenNames(node), (std::vector<std::string>{"label", "parent", "partner", "scale", "this"}));
}

// A graph with a container, two parts and a partner link across the parts comes back at new
// addresses with every link pointing into the new graph.
TEST(TarnSerializableTest, RestoreReconnectsParentsAndStoredPointers) {
    Probe original;
    original.scale = 2.5;
    Probe &left = original.addPart();
    Probe &right = original.addPart();
    left.partner = &right;
    right.partner = &original;
    right.label = "right";
    TarnStringArchive store;
    store.serializeStore(original);

    const int countBefore = TarnSerializable::restoreCount;
    Probe copy;
    copy.setModified();
    TarnStringArchive restore;
    EXPECT_TRUE(restore.serializeRestore(copy, store.getText()));
    EXPECT_EQ(TarnSerializable::restoreCount, countBefore + 3);
    EXPECT_FALSE(copy.isModified());
    EXPECT_EQ(copy.scale, 2.5);
    ASSERT_EQ(copy.parts.size(), 2u);
    Probe &newLeft = copy.parts[0];
    Probe &newRight = copy.parts[1];
    EXPECT_EQ(&newLeft.getParent(), &copy);
    EXPECT_EQ(&newRight.getParent(), &copy);
    EXPECT_EQ(newLeft.partner, &newRight);
    EXPECT_EQ(newRight.partner, &copy);
    EXPECT_EQ(newRight.label, "right");
    EXPECT_FALSE(copy.hasParent());
    EXPECT_EQ(&copy.getParent(), &copy);
    for (TarnSerializable *object :
         {static_cast<TarnSerializable *>(&copy), static_cast<TarnSerializable *>(&newLeft)}) {
        EXPECT_EQ(object->getOldPointer(), object->getBasePointer());
    }
    EXPECT_EQ(std::string(copy.get("this")), pointerText(&copy));
    EXPECT_EQ(TarnSerializable::handleManager.getCount(), 0u);
}

TEST(TarnSerializableTest, ParentOutsideTheRestoredGraphBecomesNull) {
    Probe outside;
    Probe child;
    child.setParent(outside);
    child.partner = &outside;
    TarnStringArchive store;
    store.serializeStore(child);
    Probe copy;
    TarnStringArchive restore;
    restore.serializeRestore(copy, store.getText());
    EXPECT_EQ(copy.rawParent(), nullptr);
    EXPECT_EQ(copy.partner, nullptr);
}

// An empty text gives a node without "this": the object registers null as its old address, and
// its null parent then finds that entry.
TEST(TarnSerializableTest, EmptyTextMakesTheObjectItsOwnParent) {
    Plain object;
    TarnStringArchive archive;
    archive.serializeRestore(object, TarnString(""));
    EXPECT_EQ(object.rawParent(), &object);
    EXPECT_EQ(object.getOldPointer(), &object);
}

TEST(TarnSerializableTest, CloneCopiesThroughATreeOnlyBetweenEqualClassNames) {
    Probe source;
    source.scale = -1.25;
    source.addPart().label = "part";
    source.setModified();
    Probe target;
    target.clone(source);
    EXPECT_FALSE(source.isModified());
    EXPECT_EQ(target.scale, -1.25);
    ASSERT_EQ(target.parts.size(), 1u);
    EXPECT_EQ(target.parts[0].label, "part");
    EXPECT_EQ(&target.parts[0].getParent(), &target);
    EXPECT_EQ(target.getOldPointer(), &target);

    Plain other("Other");
    Plain sameName("Other");
    Plain differentName("Different");
    other.setModified();
    differentName.setModified();
    differentName.setParent(other);
    differentName.clone(other);
    EXPECT_TRUE(other.isModified());
    EXPECT_TRUE(differentName.isModified());
    EXPECT_EQ(differentName.rawParent(), &other);
    // Same class name counts as same class; the parent link outside the graph is dropped.
    Plain outside;
    other.setParent(outside);
    sameName.setParent(differentName);
    sameName.clone(other);
    EXPECT_FALSE(other.isModified());
    EXPECT_EQ(sameName.rawParent(), nullptr);
}

TEST(TarnSerializableTest, CopyCarriesTheOtherIdentityUntilReset) {
    Plain original;
    Plain copy(original);
    EXPECT_EQ(copy.getOldPointer(), &original);
    Plain assigned;
    assigned = original;
    EXPECT_EQ(std::string(assigned.get("this")), pointerText(&original));
    assigned.resetPointers();
    EXPECT_EQ(std::string(assigned.get("this")), pointerText(&assigned));
}

TEST(TarnSerializableTest, GetStoresAndReadsOneToken) {
    Probe probe;
    probe.scale = 0.5;
    probe.addPart();
    probe.setModified();
    EXPECT_EQ(std::string(probe.get("scale")), "5.000000000000000000e-01");
    EXPECT_FALSE(probe.isModified());
    EXPECT_EQ(std::string(probe.get("missing")), "");
}

} // namespace
