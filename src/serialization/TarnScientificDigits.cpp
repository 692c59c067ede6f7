// Exact "%.*e" digits of moderate doubles: value x 10^s is a 128-bit integer product shifted by the
// binary exponent, so its rounding to whole digits is exact and needs no multi-word arithmetic.
#include "serialization/TarnScientificDigits.h"

#include <cstdint>
#include <cstring>

namespace tarn {
namespace numbertext {

#if defined(__SIZEOF_INT128__)

namespace {

__extension__ typedef unsigned __int128 Wide;

constexpr int kMaxScale = 22; // 2^53 x 10^22 < 2^127: the product never overflows

// 10^0 to 10^(kMaxScale + 1), built at compile time.
struct PowerTable {
    Wide power[kMaxScale + 2];
};

constexpr PowerTable makePowerTable() {
    PowerTable table{};
    Wide power = 1;
    for (int i = 0; i < kMaxScale + 2; ++i) {
        table.power[i] = power;
        power *= 10;
    }
    return table;
}

constexpr PowerTable kPowersOfTen = makePowerTable();

Wide powerOfTen(int n) {
    return kPowersOfTen.power[n];
}

// floor(x log10(2)) for |x| below 1650, without shifting a negative number.
int floorLog10OfPowerOfTwo(int x) {
    const long long scaled = static_cast<long long>(x) * 78913;
    return static_cast<int>(scaled >= 0 ? scaled / 262144 : -((-scaled + 262143) / 262144));
}

// m x 2^e x 10^s rounded to an integer, half to even. 0 <= s <= kMaxScale; the caller keeps the
// result below 2^67, so a left shift cannot overflow.
Wide scaled(std::uint64_t m, int e, int s) {
    const Wide product = static_cast<Wide>(m) * powerOfTen(s);
    if (e >= 0) {
        return product << e;
    }
    const int shift = -e;
    if (shift >= 128) {
        return 0;
    }
    const Wide quotient = product >> shift;
    const Wide remainder = product - (quotient << shift);
    const Wide half = static_cast<Wide>(1) << (shift - 1);
    const bool roundUp = remainder > half || (remainder == half && (quotient & 1) != 0);
    return quotient + (roundUp ? 1 : 0);
}

const char kDigitPairs[] = "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
                           "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
                           "8081828384858687888990919293949596979899";

// Writes the two digits of `value` (below 100) at `out`.
void writePair(char *out, std::uint32_t value) {
    std::memcpy(out, kDigitPairs + 2 * value, 2);
}

// Writes the eight digits of `value` (below 10^8), zero-padded, at `out`: four independent pairs.
void writeEight(char *out, std::uint32_t value) {
    const std::uint32_t high = value / 10000;
    const std::uint32_t low = value % 10000;
    writePair(out, high / 100);
    writePair(out + 2, high % 100);
    writePair(out + 4, low / 100);
    writePair(out + 6, low % 100);
}

// Writes the `count` decimal digits of `digits`, zero-padded, ending at `end`: eight at a time
// from the right, then one at a time.
void writeDigits(char *end, std::uint64_t digits, int count) {
    for (; count >= 8; count -= 8) {
        end -= 8;
        writeEight(end, static_cast<std::uint32_t>(digits % 100000000));
        digits /= 100000000;
    }
    for (; count > 0; --count) {
        *--end = static_cast<char>('0' + digits % 10);
        digits /= 10;
    }
}

char *writeExponent(char *out, int exponent) {
    *out++ = 'e';
    *out++ = exponent < 0 ? '-' : '+';
    const int magnitude = exponent < 0 ? -exponent : exponent;
    const int count = magnitude >= 100 ? 3 : 2;
    writeDigits(out + count, static_cast<std::uint64_t>(magnitude), count);
    return out + count;
}

} // namespace

char *writeScientificFast(char *out, double value, int precision) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    const int biased = static_cast<int>((bits >> 52) & 0x7FF);
    if (biased == 0 || biased == 0x7FF || precision < 1 || precision > 18) {
        return nullptr; // zero, subnormal, infinite or NaN: the general path
    }
    const std::uint64_t m = (bits & ((std::uint64_t(1) << 52) - 1)) | (std::uint64_t(1) << 52);
    const int e = biased - 1075;
    const Wide low = powerOfTen(precision); // the digits lie in [10^precision, 10^(precision + 1))
    // The estimate of the decimal exponent from the binade is exact or one too small; a rounding
    // that carries into a new leading digit also moves the exponent up by one. Each scaling is
    // exact, so trying the next exponent loses nothing.
    int exponent = floorLog10OfPowerOfTwo(e + 52);
    Wide digits = 0;
    for (int attempt = 0; attempt < 3; ++attempt) {
        const int s = precision - exponent;
        if (s < 0 || s > kMaxScale) {
            return nullptr;
        }
        digits = scaled(m, e, s);
        if (digits < low * 10) {
            break;
        }
        ++exponent;
    }
    if (digits < low || digits >= low * 10) {
        return nullptr;
    }
    if ((bits >> 63) != 0) {
        *out++ = '-';
    }
    // All digits go behind the first byte; then the first digit moves in front of the point.
    char *const last = out + precision + 2;
    writeDigits(last, static_cast<std::uint64_t>(digits), precision + 1);
    out[0] = out[1];
    out[1] = '.';
    return writeExponent(last, exponent);
}

#else

char *writeScientificFast(char *, double, int) {
    return nullptr; // no 128-bit integers: the general path formats every value
}

#endif

} // namespace numbertext
} // namespace tarn
