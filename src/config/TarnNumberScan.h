// The configuration's reads of a number at the start of a text, with defined results out of range.
#pragma once

#include <string>

namespace tarn {
namespace config {

// Each read skips leading white space (space and the bytes 9 to 13), converts the longest valid
// prefix and ignores what follows. It returns false and leaves `out` untouched when the text
// holds no number at its start. The grammar is that of the standard formatted scan; the results
// that the scan leaves undefined are fixed here, so any text reads without undefined behaviour.

/// "%d": a sign and decimal digits. Out of range gives INT_MIN or INT_MAX.
bool scanInt(const std::string &text, int &out);

/// "%u": a sign and decimal digits. A minus sign negates modulo 2^32; a magnitude beyond 32 bits
/// gives 0xFFFFFFFF.
bool scanUInt(const std::string &text, unsigned int &out);

/// "%lf": a sign, then a decimal number with optional exponent, a 0x hexadecimal number with
/// optional "p" exponent, or inf, infinity, nan, nan(...) in any case. A number too large gives
/// an infinity, one too close to zero gives 0, both with the sign read. Independent of the
/// decimal point of any locale.
bool scanDouble(const std::string &text, double &out);

/// "%f": as scanDouble, rounded once to float (never through double).
bool scanFloat(const std::string &text, float &out);

} // namespace config
} // namespace tarn
