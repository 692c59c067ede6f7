// The compact token block of a parsed archive node: a few short tokens in one run of bytes.
#include "serialization/TarnParsedTokens.h"

#include <cstring>

namespace tarn {
namespace parsed {

namespace {

// Layout in 16-bit fields, read and written by memcpy so that any alignment of the bytes does:
// the count, the moved mark, then per token the offsets (from the start of the text area) and
// the lengths of its name and value, then the text area. Offsets stay below 2^16, since a block
// holds at most kMaxSpans tokens of at most kMaxSpanBytes bytes of name and of value each.
constexpr std::size_t kField = sizeof(std::uint16_t);
constexpr std::size_t kHeaderFields = 2;
constexpr std::size_t kEntryFields = 4;

std::uint16_t field(const unsigned char *block, std::size_t index) {
    std::uint16_t value = 0;
    std::memcpy(&value, block + index * kField, kField);
    return value;
}

void setField(unsigned char *block, std::size_t index, std::size_t value) {
    const auto narrow = static_cast<std::uint16_t>(value);
    std::memcpy(block + index * kField, &narrow, kField);
}

const char *textArea(const unsigned char *block) {
    return reinterpret_cast<const char *>(block + (kHeaderFields + kEntryFields * field(block, 0)) * kField);
}

} // namespace

std::size_t blockSize(const Span *spans, std::size_t count) {
    std::size_t bytes = (kHeaderFields + kEntryFields * count) * kField;
    for (std::size_t i = 0; i < count; ++i) {
        bytes += spans[i].nameLength + spans[i].valueLength + 1;
    }
    return bytes;
}

void writeBlock(unsigned char *out, const Span *spans, std::size_t count) {
    setField(out, 0, count);
    setField(out, 1, 0);
    char *area = reinterpret_cast<char *>(out + (kHeaderFields + kEntryFields * count) * kField);
    std::size_t at = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t entry = kHeaderFields + kEntryFields * i;
        setField(out, entry, at);
        setField(out, entry + 1, spans[i].nameLength);
        std::memcpy(area + at, spans[i].name, spans[i].nameLength);
        at += spans[i].nameLength;
        setField(out, entry + 2, at);
        setField(out, entry + 3, spans[i].valueLength);
        std::memcpy(area + at, spans[i].value, spans[i].valueLength);
        at += spans[i].valueLength;
        area[at++] = '\0';
    }
}

std::size_t count(const unsigned char *block) {
    return field(block, 0);
}

std::string_view nameAt(const unsigned char *block, std::size_t index) {
    const std::size_t entry = kHeaderFields + kEntryFields * index;
    return std::string_view(textArea(block) + field(block, entry), field(block, entry + 1));
}

const char *valueAt(const unsigned char *block, std::size_t index) {
    return textArea(block) + field(block, kHeaderFields + kEntryFields * index + 2);
}

const char *find(const unsigned char *block, std::string_view name) {
    const std::size_t tokens = count(block);
    for (std::size_t index = 0; index < tokens; ++index) {
        if (nameAt(block, index) == name) {
            return valueAt(block, index);
        }
    }
    return nullptr;
}

bool isMoved(const unsigned char *block) {
    return field(block, 1) != 0;
}

void markMoved(unsigned char *block) {
    setField(block, 1, 1);
}

} // namespace parsed
} // namespace tarn
