// Internal: reading a token's text in place, by the rules of TarnToken's getters.
#pragma once

#include <cstddef>

class TarnSerializable;

namespace tarn {

/// Returns the address that TarnToken::getPointerValue gives for a token holding the `length`
/// bytes at `text`; the bytes are read where they stand, without a copy.
TarnSerializable *readTokenPointer(const char *text, std::size_t length);
/// Returns the number that TarnToken::getIntValue gives for a token holding the `length` bytes
/// at `text`, read in place.
int readTokenInt(const char *text, std::size_t length);

} // namespace tarn
