// Helpers of the archive fuzz targets: size probes, address texts and the restore checks.
#pragma once

#include "FuzzChecks.h"

#include <tarn/tarn.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

namespace fuzzcheck {

/// Reads "rows" and "cols" of the root and of its first child and nothing else, so that a target
/// can refuse a shape whose block would not fit the fuzzer's memory limit before the real restore
/// allocates it.
class ShapeProbe : public TarnSerializable {
public:
    int rows = 0;
    int cols = 0;
    int childRows = 0;
    int childCols = 0;
    using TarnObject::isa;
    bool isa(const std::string &name) const override { return name == "ShapeProbe"; }
    std::string getClassName() const override { return "ShapeProbe"; }
    bool isModified() override { return modified; }
    void serializeRestore(TarnArchive &archive) override {
        TarnSerializable::serializeRestore(archive);
        rows = archive.getTokenInt("rows");
        cols = archive.getTokenInt("cols");
        if (!archive.getChildren().empty()) {
            childRows = archive.getChildren()[0].getTokenInt("rows");
            childCols = archive.getChildren()[0].getTokenInt("cols");
        }
    }
};

/// The largest element block and row table a target lets a restore allocate: 2 MB of doubles,
/// whose stored text of about 7 MB a target copies a few times.
constexpr std::int64_t kMaxElements = std::int64_t(1) << 18;

/// True when a block of rows x cols elements (negative counts taken as 0) and its row table stay
/// within kMaxElements.
inline bool fitsMemory(int rows, int cols) {
    const std::int64_t r = rows > 0 ? rows : 0;
    const std::int64_t c = cols > 0 ? cols : 0;
    return r <= kMaxElements && c <= kMaxElements && r * c <= kMaxElements;
}

/// The text a token writes for `address`: what "this" and the pointer tokens hold.
inline std::string addressText(const void *address) {
    TarnToken token;
    token.setPointerValue(static_cast<const TarnSerializable *>(address));
    return token.getValue();
}

/// Replaces every whole occurrence of `from` in `text` by `to`.
inline void replaceAll(std::string &text, const std::string &from, const std::string &to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
}

/// Restores `object` from `text` through a new string archive and checks what every restore must
/// leave: a true result and an empty handle table. Returns the number of base steps that ran,
/// one per restored object.
inline int restoreChecked(TarnSerializable &object, const TarnString &text) {
    const int countBefore = TarnSerializable::restoreCount;
    TarnStringArchive archive;
    check(archive.serializeRestore(object, text));
    check(TarnSerializable::handleManager.getCount() == 0);
    return TarnSerializable::restoreCount - countBefore;
}

/// Stores `object` through a new string archive and returns the text.
inline std::string storedText(TarnSerializable &object) {
    TarnStringArchive archive;
    check(archive.serializeStore(object));
    return archive.getText();
}

/// Empties the shared table and its record of class names, so that each input starts afresh and
/// libFuzzer's leak check does not scan a growing record after every input.
inline void freshHandleTable() {
    TarnSerializable::handleManager = TarnHandleManager();
}

} // namespace fuzzcheck
