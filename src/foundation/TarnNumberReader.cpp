// The one reader of number text: decimal and hexadecimal integers by hand, reals by from_chars.
#include "foundation/TarnNumberReader.h"

#include "foundation/TarnAsciiBytes.h"
#include "foundation/TarnExactDecimal.h"

#include <charconv>
#include <limits>
#include <system_error>

namespace tarn {
namespace numberreader {

namespace {

// Saturation point of an exponent, far beyond the order of any text that fits in memory.
constexpr std::int64_t kExponentLimit = std::int64_t(1) << 40;

// Leading white space skipped and an optional sign read.
struct NumberStart {
    const char *at;
    bool negative;
};

NumberStart skipSpaceAndSign(const char *at, const char *last, bool signAllowed) {
    while (at != last && isAsciiSpace(*at)) {
        ++at;
    }
    bool negative = false;
    if (signAllowed && at != last && (*at == '+' || *at == '-')) {
        negative = *at == '-';
        ++at;
    }
    return {at, negative};
}

// The value of each byte as a digit, or 16 for a byte that is no hexadecimal digit: one load
// tells both whether a byte is a digit of a base and what it is worth.
struct DigitValues {
    unsigned char of[256];
    constexpr DigitValues() : of() {
        for (int byte = 0; byte < 256; ++byte) {
            of[byte] = 16;
        }
        for (int digit = 0; digit < 10; ++digit) {
            of['0' + digit] = static_cast<unsigned char>(digit);
        }
        for (int digit = 0; digit < 6; ++digit) {
            of['a' + digit] = static_cast<unsigned char>(10 + digit);
            of['A' + digit] = static_cast<unsigned char>(10 + digit);
        }
    }
};
constexpr DigitValues kDigitValues;

// Accumulates the digits of `Base` (10 or 16) from `at` into the low 64 bits of the magnitude,
// noting a magnitude beyond 64 bits. The base is a constant, so that its products are shifts or
// small multiplications in the digit loop.
template <unsigned Base>
IntegerRead readDigits(const char *at, const char *last, bool negative) {
    const char *const start = at;
    std::uint64_t magnitude = 0;
    bool beyond = false;
    constexpr std::uint64_t headroom = std::numeric_limits<std::uint64_t>::max() / Base;
    for (; at != last; ++at) {
        const unsigned digit = kDigitValues.of[static_cast<unsigned char>(*at)];
        if (digit >= Base) {
            break;
        }
        beyond = beyond || magnitude > headroom ||
                 magnitude * Base > std::numeric_limits<std::uint64_t>::max() - digit;
        magnitude = magnitude * Base + digit;
    }
    if (at == start) {
        return {nullptr, ReadStatus::noNumber, 0, false};
    }
    return {at, beyond ? ReadStatus::outOfRange : ReadStatus::exact, magnitude, negative};
}

IntegerRead noInteger(const char *first) {
    return {first, ReadStatus::noNumber, 0, false};
}

// Tells whether a number text that the conversion found out of range is too large rather than
// too close to zero: the power of the radix of its first non-zero digit plus its exponent is
// positive. `hex` selects hexadecimal digits (4 bits each) and the binary exponent mark "p".
bool exceedsRange(const char *at, const char *end, bool hex) {
    std::int64_t integerDigits = 0;
    std::int64_t leadingFractionZeros = 0;
    bool seenPoint = false;
    bool seenNonZero = false;
    std::int64_t exponent = 0;
    for (; at < end; ++at) {
        const char byte = *at;
        if (byte == '.') {
            seenPoint = true;
        } else if (hex ? isAsciiHexDigit(byte) : isAsciiDigit(byte)) {
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
            for (; digit < end && isAsciiDigit(*digit); ++digit) {
                if (exponent < kExponentLimit) {
                    exponent = exponent * 10 + (*digit - '0');
                }
            }
            exponent = negative ? -exponent : exponent;
            break;
        }
    }
    const std::int64_t order = integerDigits > 0 ? integerDigits : -leadingFractionZeros;
    return (hex ? 4 * order : order) + exponent > 0;
}

// The end of the hexadecimal number text in [at, last) as far as from_chars may see it: where
// the "p" behind the digits is not followed by an optional sign and a decimal digit, the number
// ends in front of the "p", as strtod reads it. (libstdc++'s from_chars takes "p+-5" as the
// exponent -5.)
const char *hexadecimalEnd(const char *at, const char *last) {
    while (at != last && (isAsciiHexDigit(*at) || *at == '.')) {
        ++at;
    }
    if (at == last || (*at != 'p' && *at != 'P')) {
        return last;
    }
    const char *exponent = at + 1;
    if (exponent != last && (*exponent == '+' || *exponent == '-')) {
        ++exponent;
    }
    return exponent != last && isAsciiDigit(*exponent) ? last : at;
}

// Converts the unsigned number at `at` with from_chars in `format`; a result out of range
// becomes an infinity or 0.
template <class T>
RealRead<T> convert(const char *at, const char *last, std::chars_format format) {
    // from_chars would accept a second sign; strtod does not.
    if (at == last || *at == '+' || *at == '-') {
        return {nullptr, ReadStatus::noNumber, T(0)};
    }
    const bool hex = format == std::chars_format::hex;
    T value = T(0);
    const std::from_chars_result result =
        std::from_chars(at, hex ? hexadecimalEnd(at, last) : last, value, format);
    if (result.ec == std::errc::invalid_argument) {
        return {nullptr, ReadStatus::noNumber, T(0)};
    }
    if (result.ec == std::errc::result_out_of_range) {
        value = exceedsRange(at, result.ptr, hex) ? std::numeric_limits<T>::infinity() : T(0);
        return {result.ptr, ReadStatus::outOfRange, value};
    }
    return {result.ptr, ReadStatus::exact, value};
}

template <class T>
RealRead<T> readReal(const char *first, const char *last) {
    const NumberStart start = skipSpaceAndSign(first, last, true);
    const char *const at = start.at;
    // "0x" is a prefix only in front of a hexadecimal digit or a point that convert: otherwise
    // the "0" in front of it is the number ("0xinf" reads as 0).
    RealRead<T> read{nullptr, ReadStatus::noNumber, T(0)};
    if (last - at >= 3 && at[0] == '0' && (at[1] | 0x20) == 'x' && (isAsciiHexDigit(at[2]) || at[2] == '.')) {
        read = convert<T>(at + 2, last, std::chars_format::hex);
    }
    if (read.status == ReadStatus::noNumber) {
        read = convert<T>(at, last, std::chars_format::general);
    }
    if (read.status == ReadStatus::noNumber) {
        return {first, ReadStatus::noNumber, T(0)};
    }
    read.value = start.negative ? -read.value : read.value;
    return read;
}

} // namespace

IntegerRead readDecimal(const char *first, const char *last) {
    const NumberStart start = skipSpaceAndSign(first, last, true);
    const IntegerRead read = readDigits<10>(start.at, last, start.negative);
    return read.status == ReadStatus::noNumber ? noInteger(first) : read;
}

IntegerRead readHexadecimal(const char *first, const char *last, bool signAllowed) {
    NumberStart start = skipSpaceAndSign(first, last, signAllowed);
    const char *at = start.at;
    if (last - at >= 3 && at[0] == '0' && (at[1] | 0x20) == 'x' && isAsciiHexDigit(at[2])) {
        at += 2;
    }
    const IntegerRead read = readDigits<16>(at, last, start.negative);
    return read.status == ReadStatus::noNumber ? noInteger(first) : read;
}

RealRead<double> readDouble(const char *first, const char *last) {
    // The exponent form that archives hold has an exact integer path; the rest goes by from_chars.
    double value = 0.0;
    const char *const end = readShortScientific(first, last, value);
    if (end != nullptr) {
        return {end, ReadStatus::exact, value};
    }
    return readReal<double>(first, last);
}

RealRead<float> readFloat(const char *first, const char *last) {
    return readReal<float>(first, last);
}

} // namespace numberreader
} // namespace tarn
