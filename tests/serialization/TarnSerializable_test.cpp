// Tests of TarnSerializable: base steps, pointer reconnection, clone and get.
#include "serialization/SerializationTestObjects.h"

#include "TarnLibraryExceptions.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
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
    Plain copied(original);
    EXPECT_EQ(std::string(assigned.get("this")), pointerText(&original));
    EXPECT_EQ(copied.getOldPointer(), &original);
    assigned.resetPointers();
    EXPECT_EQ(std::string(assigned.get("this")), pointerText(&assigned));
    EXPECT_EQ(&assigned.getParent(), &assigned) << "without a parent an object answers itself";
}

// A link of a chain in which each link contains the next. The library's store and restore path
// (tree building, text writing, parsing, the handle table, node destruction) never descends one
// call per level; the contained-object protocol would, so this class walks its chain in loops and
// gives the same tree and text as the recursive form: its own tokens, then the next link as the
// node's one child.
class Link : public testobjects::Plain {
public:
    Link() : Plain("Link") {}
    Link(const Link &) = delete;
    Link &operator=(const Link &) = delete;
    ~Link() override {
        while (Link *doomed = next) {
            next = doomed->next;
            doomed->next = nullptr;
            delete doomed;
        }
    }
    int index = 0;
    Link *next = nullptr; // owned

    void serializeStore(TarnArchive &archive) override {
        TarnArchive *node = &archive;
        for (Link *link = this; link != nullptr; link = link->next) {
            link->TarnSerializable::serializeStore(*node);
            node->addIntToken("index", link->index);
            node = link->next != nullptr ? &node->addChild() : node;
        }
    }
    void serializeRestore(TarnArchive &archive) override {
        TarnArchive *node = &archive;
        for (Link *link = this;; link = link->next) {
            link->TarnSerializable::serializeRestore(*node);
            link->index = node->getTokenInt("index");
            if (node->getChildren().empty()) {
                break;
            }
            node = &node->getChildren()[0];
            link->next = new Link;
        }
    }
    void reconnectPointers() override {
        for (Link *link = this; link != nullptr; link = link->next) {
            link->TarnSerializable::reconnectPointers();
        }
    }
    void resetPointers() override {
        for (Link *link = this; link != nullptr; link = link->next) {
            link->TarnSerializable::resetPointers();
        }
    }
};

// A chain of a million contained objects stores to exactly the text of the recursive form and
// restores with every parent link in the new chain, in constant stack.
TEST(TarnSerializableTest, HugeChainOfAMillionContainedObjectsStoresAndRestores) {
    const int length = 1000000;
    TarnString text;
    {
        Link head;
        std::string expected;
        Link *link = &head;
        for (int i = 0; i < length; ++i) {
            link->index = i;
            expected += "Link{index=" + std::to_string(i) +
                        ";parent=" + pointerText(i == 0 ? nullptr : link->rawParent()) +
                        ";this=" + pointerText(link) + ";";
            if (i + 1 < length) {
                link->next = new Link;
                link->next->setParent(*link);
                link = link->next;
            }
        }
        expected += std::string(length, '}');
        TarnStringArchive store;
        store.serializeStore(head);
        // Compared as one bool: a failure must not print 60 megabytes.
        ASSERT_TRUE(static_cast<const std::string &>(store.getText()) == expected);
        text = std::move(store.getText());
    }
    auto copy = std::make_unique<Link>();
    TarnStringArchive restore;
    restore.serializeRestore(*copy, text);
    int count = 0;
    const Link *previous = nullptr;
    for (Link *link = copy.get(); link != nullptr; previous = link, link = link->next, ++count) {
        ASSERT_EQ(link->index, count);
        ASSERT_EQ(link->rawParent(), previous);
        ASSERT_EQ(link->getOldPointer(), link);
    }
    EXPECT_EQ(count, length);
    EXPECT_EQ(TarnSerializable::handleManager.getCount(), 0u);
}

// The step of a restore at which a Thrower fails.
enum class FailingStep { Restore, Reconnect, Reset };

// A Probe that throws std::bad_alloc in one step of the restore sequence, after its base restore
// step has registered it, as an allocation failure inside a class's own step would.
class Thrower : public Probe {
public:
    explicit Thrower(FailingStep step) : step(step) {}
    void serializeRestore(TarnArchive &archive) override {
        Probe::serializeRestore(archive);
        failAt(FailingStep::Restore);
    }
    void reconnectPointers() override {
        Probe::reconnectPointers();
        failAt(FailingStep::Reconnect);
    }
    void resetPointers() override {
        Probe::resetPointers();
        failAt(FailingStep::Reset);
    }

private:
    void failAt(FailingStep at) const {
        if (at == step) {
            throw std::bad_alloc();
        }
    }
    FailingStep step;
};

// After a failed restore the table must be empty: a later restore whose "parent" text names an
// object of the failed one must not be reconnected to it (the object may be destroyed by then).
void expectNothingOfTheFailedRestoreReachable() {
    EXPECT_EQ(TarnSerializable::handleManager.getCount(), 0u);
    Plain item("Item");
    TarnStringArchive archive;
    archive.serializeRestore(item, TarnString("Item{parent=0ABCDEF0;this=00000100;}"));
    EXPECT_FALSE(item.hasParent());
}

// Whatever step throws, through a string restore and through clone, the exception reaches the
// caller and the shared table is empty afterwards.
TEST(TarnSerializableTest, ThrowingRestoreStepLeavesTheTableEmpty) {
    TARN_SKIP_UNLESS_LIBRARY_EXCEPTIONS_REACH_THE_CALLER();
    const TarnString text("Probe{parent=00000000;this=0ABCDEF0;Probe{parent=0ABCDEF0;this=0ABCDEF8;}}");
    for (FailingStep step : {FailingStep::Restore, FailingStep::Reconnect, FailingStep::Reset}) {
        SCOPED_TRACE(static_cast<int>(step));
        {
            auto failed = std::make_unique<Thrower>(step);
            TarnStringArchive archive;
            EXPECT_THROW(archive.serializeRestore(*failed, text), std::bad_alloc);
        }
        expectNothingOfTheFailedRestoreReachable();
        {
            Probe source;
            source.addPart();
            auto failed = std::make_unique<Thrower>(step);
            EXPECT_THROW(failed->clone(source), std::bad_alloc);
        }
        EXPECT_EQ(TarnSerializable::handleManager.getCount(), 0u);
    }
}

} // namespace
