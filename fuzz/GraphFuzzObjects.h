// The object graph of the graph fuzz target: a Graph holds Nodes and Leaves, a Node holds Leaves,
// and Nodes and Leaves keep a stored pointer each besides the parent link.
#pragma once

#include "ArchiveFuzzSupport.h"

#include <tarn/tarn.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace graphfuzz {

/// The common part of the three classes: the stored identity and the stored pointers as the text
/// gave them, kept for the checks after the restore, and the walk over the contained objects.
class Member : public TarnSerializable {
public:
    using TarnObject::isa;
    bool isa(const std::string &name) const override { return name == getClassName(); }
    bool isModified() override { return modified; }

    void serializeRestore(TarnArchive &archive) override {
        TarnSerializable::serializeRestore(archive);
        storedThis = getOldPointer();
        storedParent = parent;
    }

    /// Appends this object and every object it contains, in store order.
    virtual void collect(std::vector<Member *> &all) { all.push_back(this); }
    /// True for the classes with a stored pointer besides the parent link.
    virtual bool hasLink() const { return false; }
    /// The stored pointer of the class besides the parent link, or null.
    virtual TarnSerializable *link() const { return nullptr; }
    /// The value that `link` held after the base restore, before it was reconnected.
    virtual TarnSerializable *storedLink() const { return nullptr; }

    TarnSerializable *storedThis = nullptr;
    TarnSerializable *storedParent = nullptr;
};

/// A leaf: one double and a stored pointer to any object of the graph.
class Leaf : public Member {
public:
    std::string getClassName() const override { return "Leaf"; }
    void serializeStore(TarnArchive &archive) override {
        TarnSerializable::serializeStore(archive);
        archive.addDoublesToken("weight", &weight, 1);
        TarnToken token;
        token.setPointerValue(owner);
        archive.addToken("owner", token);
    }
    void serializeRestore(TarnArchive &archive) override {
        Member::serializeRestore(archive);
        archive.getTokenDoubles("weight", &weight, 1);
        owner = archive.getTokenPointer("owner");
        storedOwner = owner;
    }
    void reconnectPointers() override {
        TarnSerializable::reconnectPointers();
        owner = handleManager.getNewPointer(owner);
    }
    bool hasLink() const override { return true; }
    TarnSerializable *link() const override { return owner; }
    TarnSerializable *storedLink() const override { return storedOwner; }

    double weight = 0.0;
    TarnSerializable *owner = nullptr;
    TarnSerializable *storedOwner = nullptr;
};

/// Restores one contained object of class T from `section` into `list`, then adds it to it.
template <class T>
void restoreInto(std::vector<std::unique_ptr<T>> &list, TarnArchive &section) {
    list.push_back(std::make_unique<T>());
    list.back()->serializeRestore(section);
}

/// A node: an int, a stored pointer, and the leaves of its child sections named "Leaf".
class Node : public Member {
public:
    std::string getClassName() const override { return "Node"; }
    void serializeStore(TarnArchive &archive) override {
        TarnSerializable::serializeStore(archive);
        archive.addIntToken("value", value);
        TarnToken token;
        token.setPointerValue(next);
        archive.addToken("next", token);
        for (auto &leaf : leaves) {
            leaf->serializeStore(archive.addChild());
        }
    }
    void serializeRestore(TarnArchive &archive) override {
        Member::serializeRestore(archive);
        value = archive.getTokenInt("value");
        next = archive.getTokenPointer("next");
        storedNext = next;
        for (unsigned int i = 0; i < archive.getChildren().size(); ++i) {
            if (archive.getChildren()[i].getName().compare("Leaf") == 0) {
                restoreInto(leaves, archive.getChildren()[i]);
            }
        }
    }
    void reconnectPointers() override {
        TarnSerializable::reconnectPointers();
        next = handleManager.getNewPointer(next);
        for (auto &leaf : leaves) {
            leaf->reconnectPointers();
        }
    }
    void resetPointers() override {
        TarnSerializable::resetPointers();
        for (auto &leaf : leaves) {
            leaf->resetPointers();
        }
    }
    void collect(std::vector<Member *> &all) override {
        all.push_back(this);
        for (auto &leaf : leaves) {
            leaf->collect(all);
        }
    }
    bool hasLink() const override { return true; }
    TarnSerializable *link() const override { return next; }
    TarnSerializable *storedLink() const override { return storedNext; }

    int value = 0;
    TarnSerializable *next = nullptr;
    TarnSerializable *storedNext = nullptr;
    std::vector<std::unique_ptr<Leaf>> leaves;
};

/// The root: the nodes and leaves of its child sections, in the order of the sections. Children
/// of other names are skipped.
class Graph : public Member {
public:
    std::string getClassName() const override { return "Graph"; }
    void serializeStore(TarnArchive &archive) override {
        TarnSerializable::serializeStore(archive);
        for (Member *member : members) {
            member->serializeStore(archive.addChild());
        }
    }
    void serializeRestore(TarnArchive &archive) override {
        Member::serializeRestore(archive);
        for (unsigned int i = 0; i < archive.getChildren().size(); ++i) {
            TarnArchive &section = archive.getChildren()[i];
            if (section.getName().compare("Node") == 0) {
                restoreInto(nodes, section);
                members.push_back(nodes.back().get());
            } else if (section.getName().compare("Leaf") == 0) {
                restoreInto(leaves, section);
                members.push_back(leaves.back().get());
            }
        }
    }
    void reconnectPointers() override {
        TarnSerializable::reconnectPointers();
        for (Member *member : members) {
            member->reconnectPointers();
        }
    }
    void resetPointers() override {
        TarnSerializable::resetPointers();
        for (Member *member : members) {
            member->resetPointers();
        }
    }
    void collect(std::vector<Member *> &all) override {
        all.push_back(this);
        for (Member *member : members) {
            member->collect(all);
        }
    }

    std::vector<std::unique_ptr<Node>> nodes;
    std::vector<std::unique_ptr<Leaf>> leaves;
    std::vector<Member *> members; ///< nodes and leaves in the order of their sections
};

} // namespace graphfuzz
