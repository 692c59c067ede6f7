// Tests of TarnSerializable: base steps, pointer reconnection, clone and get.
#include "serialization/SerializationTestObjects.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using testobjects::Plain;
using testobjects::pointerText;
using testobjects::Probe;

// A container, two parts and partner links across them come back at new addresses with every
// link pointing into the new graph; a link that leads outside the graph becomes null.
TEST(TarnSerializableTest, RestoreReconnectsEveryPointerIntoTheNewGraph) {
    Probe outside;
    Probe original;
    original.scale = 2.5;
    Probe &left = original.addPart();
    Probe &right = original.addPart();
    left.partner = &right;
    right.partner = &original;
    original.partner = &outside;
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
    EXPECT_EQ(&copy.parts[0].getParent(), &copy);
    EXPECT_EQ(copy.parts[0].partner, &copy.parts[1]);
    EXPECT_EQ(copy.parts[1].partner, &copy);
    EXPECT_EQ(copy.partner, nullptr);
    EXPECT_FALSE(copy.hasParent());
    EXPECT_EQ(copy.parts[1].getOldPointer(), &copy.parts[1]);
    EXPECT_EQ(std::string(copy.get("this")), pointerText(&copy));
    EXPECT_EQ(std::string(copy.get("missing")), "");
    EXPECT_EQ(TarnSerializable::handleManager.getCount(), 0u);
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

TEST(TarnSerializableTest, CloneCopiesOnlyBetweenEqualClassNames) {
    Probe source;
    source.scale = -1.25;
    source.addPart().scale = 4.0;
    source.setModified();
    Probe target;
    target.clone(source);
    EXPECT_FALSE(source.isModified());
    EXPECT_EQ(target.scale, -1.25);
    ASSERT_EQ(target.parts.size(), 1u);
    EXPECT_EQ(&target.parts[0].getParent(), &target);

    Plain outside;
    Plain other("Other");
    Plain sameName("Other");
    Plain differentName("Different");
    other.setParent(outside);
    other.setModified();
    differentName.setModified();
    differentName.clone(other);
    EXPECT_TRUE(other.isModified());
    EXPECT_TRUE(differentName.isModified());
    sameName.clone(other); // the parent outside the stored graph is dropped
    EXPECT_FALSE(other.isModified());
    EXPECT_EQ(sameName.rawParent(), nullptr);
}

TEST(TarnSerializableTest, CopyCarriesTheOtherIdentityUntilReset) {
    Plain original;
    Plain assigned;
    assigned = original;
    EXPECT_EQ(std::string(assigned.get("this")), pointerText(&original));
    assigned.resetPointers();
    EXPECT_EQ(std::string(assigned.get("this")), pointerText(&assigned));
}

} // namespace
