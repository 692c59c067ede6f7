// Serializable classes and tree helpers for the serialization tests.
#pragma once

#include <tarn/tarn.h>

#include <cstdio>
#include <string>

namespace testobjects {

/// A serializable that takes only the base steps, under a class name chosen per object.
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

/// A serializable with a value, an extra stored pointer (`partner`) and contained parts whose
/// parent is their container.
class Probe : public Plain {
public:
    Probe() : Plain("Probe") {}
    double scale = 0.0;
    TarnSerializable *partner = nullptr;
    TarnVector<Probe> parts;

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
        partner = archive.getTokenPointer("partner");
        for (unsigned i = 0; i < archive.getChildren().size(); ++i) {
            parts.add().serializeRestore(archive.getChildren()[i]);
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
};

/// The text of `address` as the library writes pointers: upper-case hex, two digits per byte.
inline std::string pointerText(const void *address) {
    char buffer[2 * sizeof(void *) + 1];
    std::snprintf(buffer, sizeof buffer, "%0*llX", static_cast<int>(2 * sizeof(void *)),
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(address)));
    return buffer;
}

/// The tree below `node` in the string form (recursive: for the small trees of the tests).
inline std::string treeText(TarnArchive &node) {
    std::string result = std::string(node.getName()) + "{";
    for (auto &entry : node.getTokens()) {
        result += std::string(entry.first) + "=" + entry.second.getValue() + ";";
    }
    for (unsigned i = 0; i < node.getChildren().size(); ++i) {
        result += treeText(node.getChildren()[i]);
    }
    return result + "}";
}

} // namespace testobjects
