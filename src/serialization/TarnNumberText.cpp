// Exact number formatting by std::to_chars and locale-free reading by std::from_chars.
#include "serialization/TarnNumberText.h"

#include "foundation/TarnAsciiBytes.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace tarn {
namespace numbertext {

namespace {

const char *skipSpace(const char *first, const char *last) {
    while (first != last && isAsciiSpace(*first)) {
        ++first;
    }
    return first;
}

bool isDecimalDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

// Tells whether the number text [first, last), which from_chars found out of range, is too
// large (true) or too small (false): the position of its first non-zero digit relative to the
// radix point, plus its exponent, is above 0 for a number of magnitude above 1.
bool exceedsRange(const char *first, const char *last, bool hexadecimal) {
    const char exponentMark = hexadecimal ? 'p' : 'e';
    std::int64_t leading = 0;
    bool seenPoint = false;
    bool seenNonZero = false;
    const char *p = first;
    for (; p != last && (*p | 0x20) != exponentMark; ++p) {
        if (*p == '.') {
            seenPoint = true;
        } else if (!seenNonZero && *p != '0') {
            seenNonZero = true;
            leading += seenPoint ? 0 : 1;
        } else if (seenNonZero && !seenPoint) {
            ++leading;
        } else if (!seenNonZero && seenPoint) {
            --leading;
        }
    }
    std::int64_t exponent = 0;
    if (p != last) {
        ++p;
        const bool negative = p != last && *p == '-';
        if (p != last && (*p == '-' || *p == '+')) {
            ++p;
        }
        for (; p != last && isDecimalDigit(*p); ++p) {
            if (exponent < (std::int64_t(1) << 40)) {
                exponent = exponent * 10 + (*p - '0');
            }
        }
        exponent = negative ? -exponent : exponent;
    }
    // A hexadecimal digit carries four bits of the binary exponent.
    return (hexadecimal ? leading * 4 : leading) + exponent > 0;
}

// The end of the hexadecimal number text in [first, last) as far as from_chars may see it: where
// the "p" behind the digits is not followed by an optional sign and a decimal digit, the number
// ends in front of the "p", as strtod reads it. (libstdc++'s from_chars takes "p+-5" as the
// exponent -5.)
const char *hexadecimalEnd(const char *first, const char *last) {
    const char *p = first;
    while (p != last && (isAsciiHexDigit(*p) || *p == '.')) {
        ++p;
    }
    if (p == last || (*p | 0x20) != 'p') {
        return last;
    }
    const char *exponent = p + 1;
    if (exponent != last && (*exponent == '+' || *exponent == '-')) {
        ++exponent;
    }
    return exponent != last && isDecimalDigit(*exponent) ? last : p;
}

// from_chars over [first, last) in the given format; out-of-range text gives an infinity or a
// zero. Returns false when no number starts at first.
bool readUnsignedDouble(const char *first, const char *last, std::chars_format format, double &value) {
    if (first == last || *first == '-' || *first == '+') {
        return false; // from_chars would take a second sign; strtod does not
    }
    if (format == std::chars_format::hex) {
        last = hexadecimalEnd(first, last);
    }
    double parsed = 0.0;
    const std::from_chars_result result = std::from_chars(first, last, parsed, format);
    if (result.ec == std::errc::result_out_of_range) {
        const bool hexadecimal = format == std::chars_format::hex;
        parsed = exceedsRange(first, result.ptr, hexadecimal) ? std::numeric_limits<double>::infinity() : 0.0;
    } else if (result.ec != std::errc()) {
        return false;
    }
    value = parsed;
    return true;
}

} // namespace

char *writeScientific(char *out, double value, int precision) {
    return std::to_chars(out, out + kMaxScientificLength, value, std::chars_format::scientific, precision)
        .ptr;
}

char *writeInt(char *out, std::int32_t value) {
    return std::to_chars(out, out + 11, value).ptr;
}

char *writePointer(char *out, std::uintptr_t value) {
    static const char digits[] = "0123456789ABCDEF";
    for (std::size_t i = kPointerDigits; i > 0; --i) {
        out[i - 1] = digits[value & 0xF];
        value >>= 4;
    }
    return out + kPointerDigits;
}

bool readDouble(const char *first, const char *last, double &value) {
    const char *p = skipSpace(first, last);
    const bool negative = p != last && *p == '-';
    if (p != last && (*p == '-' || *p == '+')) {
        ++p;
    }
    double magnitude = 0.0;
    bool found = false;
    // "0x" counts as a prefix only before a hexadecimal digit or a point, so that "0xinf" reads
    // as the 0 in front of it, as strtod reads it.
    const bool hexPrefix =
        last - p >= 3 && p[0] == '0' && (p[1] | 0x20) == 'x' && (isAsciiHexDigit(p[2]) || p[2] == '.');
    if (hexPrefix && readUnsignedDouble(p + 2, last, std::chars_format::hex, magnitude)) {
        found = true;
    } else {
        // Without hexadecimal digits behind "0x", strtod reads the "0" alone.
        found = readUnsignedDouble(p, last, std::chars_format::general, magnitude);
    }
    if (!found) {
        return false;
    }
    value = negative ? -magnitude : magnitude;
    return true;
}

bool readInt32(const char *first, const char *last, std::uint32_t &value) {
    const char *p = skipSpace(first, last);
    const bool negative = p != last && *p == '-';
    if (p != last && (*p == '-' || *p == '+')) {
        ++p;
    }
    if (p == last || !isDecimalDigit(*p)) {
        return false;
    }
    std::uint32_t number = 0;
    for (; p != last && isDecimalDigit(*p); ++p) {
        number = number * 10u + static_cast<std::uint32_t>(*p - '0');
    }
    value = negative ? 0u - number : number;
    return true;
}

bool readPointer(const char *first, const char *last, std::uintptr_t &value) {
    const char *p = skipSpace(first, last);
    if (last - p >= 2 && p[0] == '0' && (p[1] | 0x20) == 'x' && last - p >= 3 && isAsciiHexDigit(p[2])) {
        p += 2;
    }
    if (p == last || !isAsciiHexDigit(*p)) {
        return false;
    }
    std::uintptr_t number = 0;
    for (; p != last && isAsciiHexDigit(*p); ++p) {
        number = (number << 4) | hexDigitValue(*p);
    }
    value = number;
    return true;
}

} // namespace numbertext
} // namespace tarn
