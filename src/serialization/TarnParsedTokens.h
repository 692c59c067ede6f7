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
/// block are linear, so the bound also keeps each lookup short.
constexpr std::size_t kMaxSpans = 16;
constexpr std::size_t kMaxSpanBytes = 256;

/// True when `span` is short enough for a block.
inline bool fitsBlock(const Span &span) {
    return span.nameLength <= kMaxSpanBytes && span.valueLength <= kMaxSpanBytes;
}

/// Makes a block of `count` (1 to kMaxSpans) short tokens, in order, each value followed by a NUL.
/// The block is one allocation of 32-bit words; the caller owns it and releases it by `release`.
std::uint32_t *makeBlock(const Span *spans, std::size_t count);
/// Releases a block made by makeBlock; null is allowed.
void release(std::uint32_t *block);

/// Returns the number of tokens in `block`.
std::uint32_t count(const std::uint32_t *block);
/// Returns the name of token `index` of `block`.
std::string_view nameAt(const std::uint32_t *block, std::uint32_t index);
/// Returns the NUL-terminated value of token `index` of `block`.
const char *valueAt(const std::uint32_t *block, std::uint32_t index);
/// Returns the value of the first token called `name`, or null when there is none: the first of
/// a repeated name is the one that counts.
const char *find(const std::uint32_t *block, std::string_view name);

/// True once the block's tokens have been moved into the node's token map; the block then only
/// keeps texts readable that lookups handed out before.
bool isMoved(const std::uint32_t *block);
/// Marks the block's tokens as moved into the token map.
void markMoved(std::uint32_t *block);

} // namespace parsed
} // namespace tarn
