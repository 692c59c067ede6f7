// The compact form in which a parsed archive node holds a few short tokens.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tarn {
namespace parsed {

/// One token as the parser found it in the text: its name and its value, neither terminated.
struct Span {
    const char *name;
    std::size_t nameLength;
    const char *value;
    std::size_t valueLength;
};

/// At most this many tokens, each with a name and a value of at most kMaxSpanBytes bytes, go
/// into one block; a node with more or longer tokens holds them in its token map. Lookups in a
/// block are linear, so the bound also keeps each lookup short, and every offset in a block fits
/// 16 bits.
constexpr std::size_t kMaxSpans = 16;
constexpr std::size_t kMaxSpanBytes = 256;

/// True when `span` is short enough for a block.
inline bool fitsBlock(const Span &span) {
    return span.nameLength <= kMaxSpanBytes && span.valueLength <= kMaxSpanBytes;
}

/// Returns the bytes that a block of `count` (1 to kMaxSpans) tokens takes.
std::size_t blockSize(const Span *spans, std::size_t count);
/// Writes the block of `count` tokens, in order, each value followed by a NUL, to `out`, which
/// holds blockSize bytes.
void writeBlock(unsigned char *out, const Span *spans, std::size_t count);

/// Returns the number of tokens in `block`.
std::size_t count(const unsigned char *block);
/// Returns the name of token `index` of `block`.
std::string_view nameAt(const unsigned char *block, std::size_t index);
/// Returns the NUL-terminated value of token `index` of `block`.
const char *valueAt(const unsigned char *block, std::size_t index);
/// Returns the value of the first token called `name`, or null when there is none: the first of
/// a repeated name is the one that counts.
const char *find(const unsigned char *block, std::string_view name);

/// True once the block's tokens have been moved into the node's token map; the block then only
/// keeps texts readable that lookups handed out before.
bool isMoved(const unsigned char *block);
/// Marks the block's tokens as moved into the token map.
void markMoved(unsigned char *block);

} // namespace parsed
} // namespace tarn
