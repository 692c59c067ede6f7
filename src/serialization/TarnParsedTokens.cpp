// The compact token block of a parsed archive node: one allocation for a few short tokens.
#include "serialization/TarnParsedTokens.h"

#include <cstring>

namespace tarn {
namespace parsed {

namespace {

// Layout in 32-bit words: the count, the moved mark, then per token the byte offsets and lengths
// of its name and value from the start of the byte area, then the byte area itself. Offsets stay
// far below 2^32, since a block holds at most kMaxSpans tokens of at most kMaxSpanBytes each.
constexpr std::size_t kHeaderWords = 2;
constexpr std::size_t kEntryWords = 4;

const char *bytesOf(const std::uint32_t *block) {
    return reinterpret_cast<const char *>(block + kHeaderWords + kEntryWords * block[0]);
}

const std::uint32_t *entryOf(const std::uint32_t *block, std::uint32_t index) {
    return block + kHeaderWords + kEntryWords * index;
}

} // namespace

std::uint32_t *makeBlock(const Span *spans, std::size_t count) {
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < count; ++i) {
        bytes += spans[i].nameLength + spans[i].valueLength + 1;
    }
    const std::size_t words = kHeaderWords + kEntryWords * count + (bytes + 3) / 4;
    auto *block = new std::uint32_t[words];
    block[0] = static_cast<std::uint32_t>(count);
    block[1] = 0;
    char *area = reinterpret_cast<char *>(block + kHeaderWords + kEntryWords * count);
    std::size_t at = 0;
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t *entry = block + kHeaderWords + kEntryWords * i;
        entry[0] = static_cast<std::uint32_t>(at);
        entry[1] = static_cast<std::uint32_t>(spans[i].nameLength);
        std::memcpy(area + at, spans[i].name, spans[i].nameLength);
        at += spans[i].nameLength;
        entry[2] = static_cast<std::uint32_t>(at);
        entry[3] = static_cast<std::uint32_t>(spans[i].valueLength);
        std::memcpy(area + at, spans[i].value, spans[i].valueLength);
        at += spans[i].valueLength;
        area[at++] = '\0';
    }
    return block;
}

void release(std::uint32_t *block) {
    delete[] block;
}

std::uint32_t count(const std::uint32_t *block) {
    return block[0];
}

std::string_view nameAt(const std::uint32_t *block, std::uint32_t index) {
    const std::uint32_t *entry = entryOf(block, index);
    return std::string_view(bytesOf(block) + entry[0], entry[1]);
}

const char *valueAt(const std::uint32_t *block, std::uint32_t index) {
    return bytesOf(block) + entryOf(block, index)[2];
}

const char *find(const std::uint32_t *block, std::string_view name) {
    for (std::uint32_t index = 0; index < block[0]; ++index) {
        if (nameAt(block, index) == name) {
            return valueAt(block, index);
        }
    }
    return nullptr;
}

bool isMoved(const std::uint32_t *block) {
    return block[1] != 0;
}

void markMoved(std::uint32_t *block) {
    block[1] = 1;
}

} // namespace parsed
} // namespace tarn
