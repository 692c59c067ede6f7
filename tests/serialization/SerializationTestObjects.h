// Serializable classes for the serialization tests: a node with contained objects and a link.
#pragma once

#include <tarn/tarn.h>

#include <cstdio>
#include <string>
#include <vector>

namespace testobjects {

/// A serializable with a value, an extra stored pointer (`partner`) and contained objects of its
/// own class, each contained object's parent being its container.
class Probe : public TarnSerializable {
public:
    double scale = 0.0;
    std::string label;
    TarnSerializable *partner = nullptr;
    TarnVector<Probe> parts;

    using TarnObject::isa;
    bool isa(const std::string &name) const override { return tarn::isClassName(name, "Probe"); }
    std::string getClassName() const override { return "Probe"; }
    bool isModified() override { return modified; }

    Probe &addPart() {
        Probe &part = parts.add();
        part.setParent(*this);
        return part;
    }

    void serializeStore(TarnArchive &archive) override {
        TarnSerializable::serializeStore(archive);
        TarnToken token;
        token.setValue(scale);
        archive.addToken("scale", token);
        token.setValue(label.c_str());
        archive.addToken("label", token);
        token.setPointerValue(partner);
        archive.addToken("partner", token);
        for (unsigned i = 0; i < parts.size(); ++i) {
            parts[i].serializeStore(archive.addChild());
        }
    }

    void serializeRestore(TarnArchive &archive) override {
        TarnSerializable::serializeRestore(archive);
        TarnToken token;
        token.setValue(archive.getTokenText("scale"));
        scale = token.getDoubleValue();
        label = archive.getTokenText("label");
        partner = archive.getTokenPointer("partner");
        parts.removeAll();
        TarnVector<TarnArchive> &children = archive.getChildren();
        for (unsigned i = 0; i < children.size(); ++i) {
            parts.add().serializeRestore(children[i]);
        }
    }

    void reconnectPointers() override {
        TarnSerializable::reconnectPointers();
        partner = handleManager.getNewPointer(partner);
        for (unsigned i = 0; i < parts.size(); ++i) {
            parts[i].reconnectPointers();
        }
    }

    void resetPointers() override {
        TarnSerializable::resetPointers();
        for (unsigned i = 0; i < parts.size(); ++i) {
            parts[i].resetPointers();
        }
    }

    TarnSerializable *rawParent() const { return parent; }
    bool rawModified() const { return modified; }
};

/// A serializable that only takes the base steps, under a class name chosen per object.
class Plain : public TarnSerializable {
public:
    explicit Plain(std::string name = "Plain") : className(std::move(name)) {}
    using TarnObject::isa;
    bool isa(const std::string &name) const override { return name == className; }
    std::string getClassName() const override { return className; }
    bool isModified() override { return modified; }
    TarnSerializable *rawParent() const { return parent; }

    std::string className;
};

/// The text of `address` as the library writes pointers: upper-case hexadecimal, two digits per
/// byte, zero-padded.
inline std::string pointerText(const void *address) {
    char buffer[2 * sizeof(void *) + 1];
    std::snprintf(buffer, sizeof buffer, "%0*llX", static_cast<int>(2 * sizeof(void *)),
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(address)));
    return buffer;
}

/// The names of a node's tokens in map order.
inline std::vector<std::string> tokenNames(TarnArchive &node) {
    std::vector<std::string> names;
    for (auto &entry : node.getTokens()) {
        names.push_back(entry.first);
    }
    return names;
}

} // namespace testobjects
