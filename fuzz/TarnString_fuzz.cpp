// Fuzz target: TarnString's numeric reads, hexadecimal read, split, trim and substrings.
#include <tarn/tarn.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace {

// Reads a 32-bit number from the front of the input, so that the fuzzer steers the indices.
unsigned takeIndex(const std::uint8_t *&data, std::size_t &size) {
    unsigned value = 0;
    const std::size_t count = size < sizeof value ? size : sizeof value;
    std::memcpy(&value, data, count);
    data += count;
    size -= count;
    return value;
}

void checkSubstrings(const TarnString &text, unsigned first, unsigned count) {
    // A substring is either empty or exactly the bytes asked for: never a clipped one.
    const TarnString piece = text.mid(first, count);
    if (!piece.isempty() && static_cast<const std::string &>(piece) != text.substr(first, count)) {
        __builtin_trap();
    }
    const TarnString head = text.left(first);
    const TarnString tail = text.right(count);
    if ((!head.isempty() && head.length() != first) || (!tail.isempty() && tail.length() != count)) {
        __builtin_trap();
    }
}

void checkSplit(const TarnString &text, const TarnString &delimiters) {
    TarnVector<TarnString> parts;
    text.split(delimiters, parts);
    for (unsigned i = 0; i < parts.size(); ++i) {
        // No element is empty and none holds a delimiter.
        if (parts[i].isempty() ||
            (!delimiters.isempty() && parts[i].find_first_of(delimiters) != std::string::npos)) {
            __builtin_trap();
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const unsigned first = takeIndex(data, size);
    const unsigned count = takeIndex(data, size);
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    const std::size_t cut = bytes.find('\0');
    const TarnString text(cut == std::string::npos ? bytes : bytes.substr(0, cut));
    const TarnString delimiters(cut == std::string::npos ? std::string(",; ") : bytes.substr(cut + 1, 4));

    static_cast<void>(static_cast<int>(text));
    static_cast<void>(static_cast<double>(text));
    static_cast<void>(static_cast<float>(text));
    static_cast<void>(static_cast<bool>(text));
    bool ok = false;
    static_cast<void>(text.toUIntBase16(&ok));

    checkSubstrings(text, first, count);
    checkSplit(text, delimiters);

    TarnString trimmed(text);
    trimmed.trim();
    TarnString upper(text);
    upper.toUpper();
    if (upper.length() != text.length() || text.compareNoCase(upper) != 0) {
        __builtin_trap();
    }
    return 0;
}
