// Internal: the one reader of number text (decimal, hexadecimal and real) over a byte range.
#pragma once

#include <cstdint>

namespace tarn {
namespace numberreader {

/// What a read found at the start of the range.
enum class ReadStatus {
    noNumber,   ///< no number starts the range; `end` is the range's start
    exact,      ///< the number fits the result
    outOfRange, ///< integer: magnitude beyond 64 bits; real: beyond the type's range
};

/// An integer read: the magnitude and the sign separately, so that each caller applies its own
/// wrap or saturation. Beyond 64 bits `magnitude` holds the low 64 bits of the true magnitude.
struct IntegerRead {
    const char *end;
    ReadStatus status;
    std::uint64_t magnitude;
    bool negative;
};

/// A real read: `value` carries the sign; beyond the range it is an infinity or a zero of the
/// sign read.
template <class T>
struct RealRead {
    const char *end;
    ReadStatus status;
    T value;
};

/// Reads leading white space (blank and the bytes 9 to 13), an optional sign and decimal digits
/// from [first, last), never reading at or past `last`. Without a digit the status is noNumber.
IntegerRead readDecimal(const char *first, const char *last);

/// Reads leading white space, an optional sign where `signAllowed`, an optional "0x" or "0X"
/// and hexadecimal digits from [first, last). The prefix counts only in front of a hexadecimal
/// digit: otherwise its "0" is the whole number.
IntegerRead readHexadecimal(const char *first, const char *last, bool signAllowed);

/// Reads a real number from [first, last) as strtod reads it in the C locale: leading white
/// space, an optional sign, then decimal text with an optional exponent, "0x" hexadecimal text
/// with an optional "p" exponent, or "inf", "infinity", "nan", "nan(...)" in any case. The value
/// is rounded once to T. Beyond T's range it is an infinity, too close to zero a zero, both of
/// the sign read, with the status outOfRange.
RealRead<double> readDouble(const char *first, const char *last);
/// As readDouble, rounded once to float (never through double).
RealRead<float> readFloat(const char *first, const char *last);

} // namespace numberreader
} // namespace tarn
