// Exact reading of short decimal numbers: a first estimate by one double multiplication, then at most a
// few steps of one unit in the last place, each decided by comparing 128-bit integers exactly.
#include "foundation/TarnExactDecimal.h"

#include "foundation/TarnAsciiBytes.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace tarn {
namespace numberreader {

#if defined(__SIZEOF_INT128__)

namespace {

__extension__ typedef unsigned __int128 Wide;

constexpr int kMaxScale = 22; // 10^22 is the largest power of ten that a double holds exactly

struct PowerTable {
    Wide power[kMaxScale + 1];
    double inverse[kMaxScale + 1]; // 10^-n, rounded: the first estimate needs no more
};

constexpr PowerTable makePowerTable() {
    PowerTable table{};
    Wide power = 1;
    double real = 1.0;
    for (int i = 0; i <= kMaxScale; ++i) {
        table.power[i] = power;
        table.inverse[i] = 1.0 / real; // 10^i is exact, its inverse rounded once
        power *= 10;
        real *= 10.0;
    }
    return table;
}

constexpr PowerTable kPowers = makePowerTable();

// The parts of a number text of the short exponent form.
struct ShortDecimal {
    std::uint64_t digits; // all significant digits as one integer, below 10^19
    int scale;            // the value is digits / 10^scale
    bool negative;
    const char *end;
};

// The eight bytes at `at` as one word, the first byte lowest.
std::uint64_t loadEight(const char *at) {
    std::uint64_t word;
    std::memcpy(&word, at, sizeof word);
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    word = __builtin_bswap64(word);
#endif
    return word;
}

// True when all eight bytes of `word` are decimal digits: no byte below "0" or above "9".
bool allDigits(std::uint64_t word) {
    return (((word + 0x4646464646464646u) | (word - 0x3030303030303030u)) & 0x8080808080808080u) == 0;
}

// The value of the eight digits of `word`, the first byte the most significant digit: pairs,
// then quadruples, then the whole, each by one multiplication.
std::uint64_t eightDigitsValue(std::uint64_t word) {
    word = ((word & 0x0F0F0F0F0F0F0F0Fu) * 2561) >> 8;
    word = ((word & 0x00FF00FF00FF00FFu) * 6553601) >> 16;
    return ((word & 0x0000FFFF0000FFFFu) * 42949672960001u) >> 32;
}

// Reads up to 18 fraction digits into `value`, eight at a time while they last; returns the
// position behind them and their count in `count`.
const char *readFraction(const char *at, const char *last, std::uint64_t &value, int &count) {
    count = 0;
    while (count <= 10 && last - at >= 8 && allDigits(loadEight(at))) {
        value = value * 100000000 + eightDigitsValue(loadEight(at));
        at += 8;
        count += 8;
    }
    for (; at != last && isAsciiDigit(*at) && count < 18; ++at, ++count) {
        value = value * 10 + static_cast<std::uint64_t>(*at - '0');
    }
    return at;
}

// Reads up to 4 exponent digits into `value`; returns the position behind them and their count.
const char *readExponentDigits(const char *at, const char *last, int &value, int &count) {
    count = 0;
    for (; at != last && isAsciiDigit(*at) && count < 4; ++at, ++count) {
        value = value * 10 + (*at - '0');
    }
    return at;
}

// Takes the text apart; false for any other form, or a scale beyond what the caller handles.
bool parseShortDecimal(const char *at, const char *last, ShortDecimal &out) {
    out.negative = at != last && *at == '-';
    at += out.negative ? 1 : 0;
    if (last - at < 4 || !isAsciiDigit(at[0]) || at[1] != '.') {
        return false;
    }
    std::uint64_t digits = static_cast<std::uint64_t>(at[0] - '0');
    int fraction = 0;
    at = readFraction(at + 2, last, digits, fraction);
    if (fraction == 0 || at == last || (*at | 0x20) != 'e') {
        return false;
    }
    ++at;
    const bool negativeExponent = at != last && *at == '-';
    at += (at != last && (*at == '+' || *at == '-')) ? 1 : 0;
    int exponent = 0;
    int exponentDigits = 0;
    at = readExponentDigits(at, last, exponent, exponentDigits);
    if (exponentDigits == 0 || (at != last && isAsciiDigit(*at))) {
        return false;
    }
    const int signedExponent = negativeExponent ? -exponent : exponent;
    out.digits = digits;
    out.scale = fraction - signedExponent;
    out.end = at;
    return out.scale >= 0 && out.scale <= kMaxScale;
}

// Compares digits / 10^scale with m x 2^k, where k may be negative: -1, 0 or 1 by sign of the
// difference. Both sides are scaled to integers below 2^128 for the scales and magnitudes here.
int compareWith(const ShortDecimal &number, std::uint64_t m, int k) {
    Wide left = number.digits;
    Wide right = static_cast<Wide>(m) * kPowers.power[number.scale];
    if (k < 0) {
        left <<= -k;
    } else {
        right <<= k;
    }
    return left < right ? -1 : (left > right ? 1 : 0);
}

// The double of the given bits: one step from a positive normal estimate is its neighbour.
double neighbour(std::uint64_t bits) {
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

// Corrects `estimate`, within a few units in the last place of digits / 10^scale, to the value
// rounded to nearest with ties to even. Each step compares the number with the midpoint between
// the estimate and a neighbour, exactly. False when no step settles it.
bool roundExactly(const ShortDecimal &number, double &estimate) {
    for (int step = 0; step < 4; ++step) {
        std::uint64_t bits;
        std::memcpy(&bits, &estimate, sizeof bits);
        const std::uint64_t m = (bits & ((std::uint64_t(1) << 52) - 1)) | (std::uint64_t(1) << 52);
        const int k = static_cast<int>(bits >> 52) - 1075; // estimate = m x 2^k, a positive normal
        // Above the upper midpoint (2m + 1) x 2^(k - 1), or on it with m odd: one step up.
        const int upper = compareWith(number, 2 * m + 1, k - 1);
        if (upper > 0 || (upper == 0 && (m & 1) != 0)) {
            estimate = neighbour(bits + 1);
            continue;
        }
        // Below the lower midpoint, whose distance halves at the bottom of a binade.
        const bool bottom = m == (std::uint64_t(1) << 52);
        const int lower =
            bottom ? compareWith(number, 4 * m - 1, k - 2) : compareWith(number, 2 * m - 1, k - 1);
        if (lower < 0 || (lower == 0 && (m & 1) != 0)) {
            estimate = neighbour(bits - 1);
            continue;
        }
        return true;
    }
    return false;
}

} // namespace

const char *readShortScientific(const char *first, const char *last, double &value) {
    ShortDecimal number{};
    if (!parseShortDecimal(first, last, number) || number.digits == 0) {
        return nullptr; // zero keeps the general reader's sign handling
    }
    // Within two units in the last place: one rounding of the digits, one of the inverse, one of
    // the product.
    double estimate = static_cast<double>(number.digits) * kPowers.inverse[number.scale];
    if (!std::isnormal(estimate) || !roundExactly(number, estimate)) {
        return nullptr;
    }
    value = number.negative ? -estimate : estimate;
    return number.end;
}

#else

const char *readShortScientific(const char *, const char *, double &) {
    return nullptr; // no 128-bit integers: the general reader reads every number
}

#endif

} // namespace numberreader
} // namespace tarn
