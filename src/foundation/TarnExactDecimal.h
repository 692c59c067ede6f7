// Internal: the exact reading of short decimal numbers in exponent form by integer arithmetic.
#pragma once

namespace tarn {
namespace numberreader {

/// Reads the number at `first` when it has the form an optional "-", one digit, ".", 1 to 18
/// digits, "e" or "E", an optional sign and 1 to 4 digits, and the value is one that 128-bit
/// integer arithmetic rounds exactly (decimal scale within 22 places). The value is rounded to
/// nearest, ties to even, as strtod rounds it. Returns the end of the number, or null when the
/// text has another form or the value lies outside that range: the general reader then reads
/// it. Never reads at or past `last`.
const char *readShortScientific(const char *first, const char *last, double &value);

} // namespace numberreader
} // namespace tarn
