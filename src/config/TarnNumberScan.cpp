// Reads of a number at the start of a text, in the C locale and with defined results out of range.
#include "config/TarnNumberScan.h"

#include "foundation/TarnAsciiBytes.h"

#include <charconv>
#include <climits>
#include <cstdint>
#include <limits>
#include <system_error>

namespace {

// Saturation point of a decimal magnitude: anything above it is beyond 32 bits either way.
constexpr std::uint64_t kMagnitudeLimit = 0x100000000ULL;
// Saturation point of an exponent, far beyond any exponent that a double can hold.
constexpr long long kExponentLimit = 1000000000LL;

// The start of a number: leading white space skipped and an optional sign read.
struct NumberStart {
    const char *at;
    bool negative;
};

NumberStart skipSpaceAndSign(const char *at, const char *end) {
    while (at < end && tarn::isAsciiSpace(*at)) {
        ++at;
    }
    bool negative = false;
    if (at < end && (*at == '+' || *at == '-')) {
        negative = *at == '-';
        ++at;
    }
    return {at, negative};
}

bool isDecimalDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

// Reads sign and decimal digits; the magnitude saturates at kMagnitudeLimit. False if no digit.
bool readDecimal(const std::string &text, bool &negative, std::uint64_t &magnitude) {
    const char *const end = text.data() + text.size();
    NumberStart start = skipSpaceAndSign(text.data(), end);
    const char *at = start.at;
    magnitude = 0;
    for (; at < end && isDecimalDigit(*at); ++at) {
        magnitude = magnitude * 10 + static_cast<std::uint64_t>(*at - '0');
        if (magnitude > kMagnitudeLimit) {
            magnitude = kMagnitudeLimit;
        }
    }
    negative = start.negative;
    return at != start.at;
}

// Tells whether a number text that the conversion found out of range is too large rather than too
// close to zero: the power of the radix of its first non-zero digit plus its exponent is positive.
// `hex` selects hexadecimal digits (4 bits each) and the binary exponent mark "p".
bool exceedsRange(const char *at, const char *end, bool hex) {
    long long integerDigits = 0;
    long long leadingFractionZeros = 0;
    bool seenPoint = false;
    bool seenNonZero = false;
    long long exponent = 0;
    for (; at < end; ++at) {
        const char byte = *at;
        if (byte == '.') {
            seenPoint = true;
        } else if (hex ? tarn::isAsciiHexDigit(byte) : isDecimalDigit(byte)) {
            seenNonZero = seenNonZero || byte != '0';
            if (!seenPoint && seenNonZero) {
                ++integerDigits;
            } else if (seenPoint && !seenNonZero) {
                ++leadingFractionZeros;
            }
        } else {
            // The exponent mark: the conversion has vouched for an optional sign and digits.
            const char *digit = at + 1;
            const bool negative = digit < end && *digit == '-';
            if (digit < end && (*digit == '+' || *digit == '-')) {
                ++digit;
            }
            for (; digit < end && isDecimalDigit(*digit); ++digit) {
                if (exponent < kExponentLimit) {
                    exponent = exponent * 10 + (*digit - '0');
                }
            }
            exponent = negative ? -exponent : exponent;
            break;
        }
    }
    const long long order = integerDigits > 0 ? integerDigits : -leadingFractionZeros;
    return (hex ? 4 * order : order) + exponent > 0;
}

// The end of the hexadecimal number text in [at, end) as far as from_chars may see it: where the
// "p" behind the digits is not followed by an optional sign and a decimal digit, the number ends
// in front of the "p", as the standard scan reads it. (libstdc++'s from_chars takes "p+-5" as the
// exponent -5.)
const char *hexadecimalEnd(const char *at, const char *end) {
    while (at < end && (tarn::isAsciiHexDigit(*at) || *at == '.')) {
        ++at;
    }
    if (at == end || (*at != 'p' && *at != 'P')) {
        return end;
    }
    const char *exponent = at + 1;
    if (exponent < end && (*exponent == '+' || *exponent == '-')) {
        ++exponent;
    }
    return exponent < end && isDecimalDigit(*exponent) ? end : at;
}

// Converts the number at `at` (sign already read) with from_chars in `format`; a result out of
// range becomes an infinity or 0. Returns false when no number starts at `at`.
template <class T>
bool convertReal(const char *at, const char *end, std::chars_format format, T &value) {
    // from_chars would accept a second sign; the scan does not.
    if (at == end || *at == '+' || *at == '-') {
        return false;
    }
    if (format == std::chars_format::hex) {
        end = hexadecimalEnd(at, end);
    }
    const std::from_chars_result result = std::from_chars(at, end, value, format);
    if (result.ec == std::errc::invalid_argument) {
        return false;
    }
    if (result.ec == std::errc::result_out_of_range) {
        value = exceedsRange(at, result.ptr, format == std::chars_format::hex)
                    ? std::numeric_limits<T>::infinity()
                    : T(0);
    }
    return true;
}

template <class T>
bool scanReal(const std::string &text, T &out) {
    const char *const end = text.data() + text.size();
    const NumberStart start = skipSpaceAndSign(text.data(), end);
    const char *at = start.at;
    T value = T(0);
    if (end - at >= 2 && at[0] == '0' && (at[1] == 'x' || at[1] == 'X')) {
        // The hexadecimal form: without digits behind the prefix, the 0 alone is the number.
        if (!convertReal(at + 2, end, std::chars_format::hex, value)) {
            value = T(0);
        }
    } else if (!convertReal(at, end, std::chars_format::general, value)) {
        return false;
    }
    out = start.negative ? -value : value;
    return true;
}

} // namespace

namespace tarn {
namespace config {

bool scanInt(const std::string &text, int &out) {
    bool negative = false;
    std::uint64_t magnitude = 0;
    if (!readDecimal(text, negative, magnitude)) {
        return false;
    }
    const std::uint64_t limit = negative ? 0x80000000ULL : static_cast<std::uint64_t>(INT_MAX);
    if (magnitude >= limit) {
        out = negative ? INT_MIN : INT_MAX;
    } else {
        const auto value = static_cast<int>(magnitude);
        out = negative ? -value : value;
    }
    return true;
}

bool scanUInt(const std::string &text, unsigned int &out) {
    bool negative = false;
    std::uint64_t magnitude = 0;
    if (!readDecimal(text, negative, magnitude)) {
        return false;
    }
    if (magnitude > 0xFFFFFFFFULL) {
        out = 0xFFFFFFFFU;
    } else {
        const auto value = static_cast<std::uint32_t>(magnitude);
        out = negative ? static_cast<std::uint32_t>(0U - value) : value;
    }
    return true;
}

bool scanDouble(const std::string &text, double &out) {
    return scanReal(text, out);
}

bool scanFloat(const std::string &text, float &out) {
    return scanReal(text, out);
}

} // namespace config
} // namespace tarn
