// Fuzz target: any bytes restored through TarnStringArchive into a record that reads tokens of
// every type and a child node, stored back, and restored again into an equal record.
#include "FuzzChecks.h"

#include <tarn/tarn.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

namespace {

using fuzzcheck::check;
using fuzzcheck::sameDouble;

/// A serializable with one field per token type and, at the top level, one contained record
/// restored from the first child node.
class Record : public TarnSerializable {
public:
    explicit Record(bool top) : takesChild(top) {}
    using TarnObject::isa;
    bool isa(const std::string &name) const override { return name == "Record"; }
    std::string getClassName() const override { return "Record"; }
    bool isModified() override { return modified; }

    void serializeStore(TarnArchive &archive) override {
        TarnSerializable::serializeStore(archive);
        TarnToken token;
        token.setValue(text.c_str());
        archive.addToken("s", token);
        token.setValue(flag);
        archive.addToken("b", token);
        token.setValue(real);
        archive.addToken("d", token);
        token.setValue(single);
        archive.addToken("f", token);
        archive.addIntToken("i", integer);
        token.setValue(wide);
        archive.addToken("l", token);
        token.setValue(half);
        archive.addToken("u", token);
        token.setValue(static_cast<int>(letter));
        archive.addToken("c", token);
        token.setValue(byte);
        archive.addToken("h", token);
        token.setPointerValue(partner);
        archive.addToken("p", token);
        archive.addDoublesToken("v", list, 3);
        const std::string numbers =
            std::to_string(ints[0]) + " " + std::to_string(ints[1]) + " " + std::to_string(ints[2]);
        token.setValue(numbers.c_str());
        archive.addToken("n", token);
        if (child) {
            child->serializeStore(archive.addChild());
        }
    }

    void serializeRestore(TarnArchive &archive) override {
        TarnSerializable::serializeRestore(archive);
        text = archive.getTokenText("s");
        TarnToken token;
        token.setValue(archive.getTokenText("b"));
        flag = token.getBoolValue();
        token.setValue(archive.getTokenText("d"));
        real = token.getDoubleValue();
        token.setValue(archive.getTokenText("f"));
        single = token.getFloatValue();
        integer = archive.getTokenInt("i");
        token.setValue(archive.getTokenText("l"));
        wide = token.getULongValue();
        token.setValue(archive.getTokenText("u"));
        half = token.getUShortValue();
        token.setValue(archive.getTokenText("c"));
        letter = token.getCharValue();
        token.setValue(archive.getTokenText("h"));
        byte = token.getUCharValue();
        partner = archive.getTokenPointer("p");
        archive.getTokenDoubles("v", list, 3);
        token.setValue(archive.getTokenText("n"));
        token.getInts(ints);
        if (takesChild && !archive.getChildren().empty()) {
            child = std::make_unique<Record>(false);
            child->serializeRestore(archive.getChildren()[0]);
        }
    }

    void reconnectPointers() override {
        TarnSerializable::reconnectPointers();
        partner = handleManager.getNewPointer(partner);
        if (child) {
            child->reconnectPointers();
        }
    }

    void resetPointers() override {
        TarnSerializable::resetPointers();
        if (child) {
            child->resetPointers();
        }
    }

    // What a pointer of the graph of `top` leads to: 0 nothing, 1 the top record, 2 its child.
    static int role(const TarnSerializable *pointer, const Record &top) {
        if (pointer == nullptr) {
            return 0;
        }
        check(pointer == &top || pointer == top.child.get()); // nothing outside the graph
        return pointer == &top ? 1 : 2;
    }

    // Checks that this record, in the graph of `top`, equals `other` in the graph of `otherTop`.
    void checkEqual(const Record &top, const Record &other, const Record &otherTop) const {
        check(text == other.text && flag == other.flag && sameDouble(real, other.real));
        check(sameDouble(static_cast<double>(single), static_cast<double>(other.single)));
        check(integer == other.integer && wide == other.wide && half == other.half);
        check(letter == other.letter && byte == other.byte && ints == other.ints);
        for (int i = 0; i < 3; ++i) {
            check(sameDouble(list[i], other.list[i]));
        }
        check(role(partner, top) == role(other.partner, otherTop));
        check(role(parent, top) == role(other.parent, otherTop));
        check(static_cast<bool>(child) == static_cast<bool>(other.child));
        if (child) {
            child->checkEqual(top, *other.child, otherTop);
        }
    }

private:
    bool takesChild;
    std::string text;
    bool flag = false;
    double real = 0.0;
    float single = 0.0f;
    int integer = 0;
    unsigned long wide = 0;
    unsigned short half = 0;
    char letter = 0;
    unsigned char byte = 0;
    TarnSerializable *partner = nullptr;
    double list[3] = {0.0, 0.0, 0.0};
    TarnArray<int> ints = TarnArray<int>(3, 0);
    std::unique_ptr<Record> child;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const TarnString input(std::string(reinterpret_cast<const char *>(data), size));
    Record first(true);
    {
        TarnStringArchive archive;
        check(archive.serializeRestore(first, input));
        static_cast<void>(archive.getClassName());
        TarnVector<TarnString> tokens;
        archive.getSimpleTokens(tokens);
    }
    TarnStringArchive store;
    check(store.serializeStore(first));
    Record second(true);
    TarnStringArchive restore;
    check(restore.serializeRestore(second, store.getText()));
    first.checkEqual(first, second, second);
    // The shared table keeps the class name of every restored object after its reset; a fresh
    // table per input keeps each run's allocations and releases in balance, so that libFuzzer's
    // leak check does not scan the whole heap after every input.
    TarnSerializable::handleManager = TarnHandleManager();
    return 0;
}
