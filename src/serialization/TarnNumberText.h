// The text forms of numbers in archive tokens: exact formatting and locale-free reading.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn {
namespace numbertext {

/// The longest text appendScientific writes: sign, 1 digit, point, 18 digits, "e", sign and 3
/// exponent digits, with room to spare.
constexpr std::size_t kMaxScientificLength = 32;
/// The longest text appendPointer writes: two hexadecimal digits per byte of a pointer.
constexpr std::size_t kPointerDigits = 2 * sizeof(void *);

/// Writes `value` as printf's "%.*e" with `precision` digits behind the point writes it in the C
/// locale (exponent of at least two digits; "inf", "-inf", "nan", "-nan" for the special values)
/// to `out`, which holds at least kMaxScientificLength bytes. Returns the end of what was
/// written; no NUL is added. `precision` is at most 18.
char *writeScientific(char *out, double value, int precision);

/// Writes `value` as "%d" writes it to `out`, which holds at least 11 bytes. Returns the end.
char *writeInt(char *out, std::int32_t value);

/// Writes `value` as kPointerDigits upper-case hexadecimal digits, zero-padded, to `out`.
/// Returns the end.
char *writePointer(char *out, std::uintptr_t value);

/// Reads a floating-point number at the start of [first, last) as strtod reads it in the C
/// locale: leading white space, an optional sign, decimal or 0x-prefixed hexadecimal text,
/// "inf", "infinity" and "nan" in any case. A number too large for a double gives an infinity of
/// its sign, one too small a zero of its sign. Returns false, leaving `value`, when there is no
/// number.
bool readDouble(const char *first, const char *last, double &value);

/// Reads a decimal integer at the start of [first, last) as "%d" reads it: leading white space,
/// an optional sign, digits. The number is taken modulo 2^32 (a minus sign negates modulo
/// 2^32), so that "4294967295" and "-1" both give 0xFFFFFFFF. Returns false, leaving `value`,
/// when there is no digit.
bool readInt32(const char *first, const char *last, std::uint32_t &value);

/// Reads a hexadecimal number at the start of [first, last): leading white space, an optional
/// 0x or 0X prefix, any number of digits, taken modulo 2 to the power of the pointer width.
/// Returns false, leaving `value`, when there is no digit.
bool readPointer(const char *first, const char *last, std::uintptr_t &value);

} // namespace numbertext
} // namespace tarn
