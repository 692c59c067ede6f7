// Tests of the library's one number reader: what it reads, where it stops and what it reports.
#include "foundation/TarnNumberReader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace nr = tarn::numberreader;
using Status = nr::ReadStatus;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr std::uint64_t kMax64 = ~std::uint64_t(0);

// The text is copied into a buffer of exactly its length, so that a read past the end is seen by
// AddressSanitizer; `used` is the count of bytes the number takes (0 when there is none).
struct RealCase {
    std::string text;
    Status status;
    double value;
    std::size_t used;
};

struct IntegerCase {
    const char *text;
    Status status;
    std::uint64_t magnitude;
    bool negative;
    std::size_t used;
};

std::vector<char> exactCopy(const std::string &text) {
    return std::vector<char>(text.begin(), text.end());
}

TEST(TarnNumberReaderTest, RealsFollowStrtodInTheCLocaleAndStopWhereItStops) {
    const RealCase cases[] = {
        {"  +2.5xyz", Status::exact, 2.5, 6},
        {"1,5", Status::exact, 1.0, 1},
        {"1e", Status::exact, 1.0, 1},
        {"1.5e+", Status::exact, 1.5, 3},
        {".5", Status::exact, 0.5, 2},
        {"5.", Status::exact, 5.0, 2},
        {"-0X10", Status::exact, -16.0, 5},
        {"0x1.8p+-5", Status::exact, 1.5, 5}, // no exponent without a digit behind its sign
        {"0x1p", Status::exact, 1.0, 3},
        {"0x.8p1", Status::exact, 1.0, 6},
        {"0x", Status::exact, 0.0, 1}, // the "0" in front of a prefix without digits
        {"0xg", Status::exact, 0.0, 1},
        {"0x.g", Status::exact, 0.0, 1},
        {"0xinf", Status::exact, 0.0, 1},
        {"-Infinity", Status::exact, -kInf, 9},
        {"INFx", Status::exact, kInf, 3},
        {"1e400", Status::outOfRange, kInf, 5},
        {"-1e400", Status::outOfRange, -kInf, 6},
        {"0.0001e-400", Status::outOfRange, 0.0, 11},
        {"123.4e307", Status::outOfRange, kInf, 9},
        {"1" + std::string(400, '0'), Status::outOfRange, kInf, 401},
        {"1e99999999999999999999", Status::outOfRange, kInf, 22},
        {"0x1p99999", Status::outOfRange, kInf, 9},
        {"-0x1p-99999", Status::outOfRange, 0.0, 11},
        {"", Status::noNumber, 0.0, 0},
        {"   ", Status::noNumber, 0.0, 0},
        {"e5", Status::noNumber, 0.0, 0},
        {".", Status::noNumber, 0.0, 0},
        {"+-1", Status::noNumber, 0.0, 0},
        {"--1", Status::noNumber, 0.0, 0},
        {"-", Status::noNumber, 0.0, 0},
    };
    for (const RealCase &c : cases) {
        const std::vector<char> bytes = exactCopy(c.text);
        const char *first = bytes.data();
        const nr::RealRead<double> read = nr::readDouble(first, first + bytes.size());
        EXPECT_EQ(read.status, c.status) << c.text;
        EXPECT_EQ(read.value, c.value) << c.text;
        EXPECT_EQ(read.end - first, static_cast<std::ptrdiff_t>(c.used)) << c.text;
    }
}

TEST(TarnNumberReaderTest, RealsKeepTheSignOfZeroAndNaNAndRoundOnceToFloat) {
    const std::string underflow = "-1e-400";
    const nr::RealRead<double> zero = nr::readDouble(underflow.data(), underflow.data() + underflow.size());
    EXPECT_TRUE(zero.value == 0.0 && std::signbit(zero.value));
    const std::string nan = "-nan(1)";
    const nr::RealRead<double> notANumber = nr::readDouble(nan.data(), nan.data() + nan.size());
    EXPECT_TRUE(std::isnan(notANumber.value) && std::signbit(notANumber.value));
    EXPECT_EQ(notANumber.end, nan.data() + nan.size());

    // Beyond float's range although a double holds it; a float rounded from the decimal text,
    // not from the double nearest to it.
    const std::string big = "1e39";
    EXPECT_EQ(nr::readFloat(big.data(), big.data() + big.size()).status, Status::outOfRange);
    const std::string halfway = "1.00000005960464477539062500001";
    const float once = nr::readFloat(halfway.data(), halfway.data() + halfway.size()).value;
    EXPECT_EQ(once, std::nextafter(1.0f, 2.0f));
}

// Decimal reads give the low 64 bits and tell when they lost more; a hexadecimal prefix counts
// only in front of a digit.
TEST(TarnNumberReaderTest, IntegersGiveTheLow64BitsAndTellWhenTheyLostMore) {
    const std::vector<IntegerCase> decimals = {
        {"12abc", Status::exact, 12, false, 2},
        {" \t-7", Status::exact, 7, true, 4},
        {"+3", Status::exact, 3, false, 2},
        {"0x10", Status::exact, 0, false, 1},
        {"18446744073709551615", Status::exact, kMax64, false, 20},
        {"18446744073709551616", Status::outOfRange, 0, false, 20},
        {"-99999999999999999999", Status::outOfRange, 7766279631452241919u, true, 21},
        {"- 1", Status::noNumber, 0, false, 0},
        {"", Status::noNumber, 0, false, 0},
        {"+", Status::noNumber, 0, false, 0},
    };
    const std::vector<IntegerCase> hexadecimals = {
        {"  0Xff zz", Status::exact, 255, false, 6},
        {"-0x10", Status::exact, 16, true, 5},
        {"0x", Status::exact, 0, false, 1},
        {"0xg", Status::exact, 0, false, 1},
        {"FFFFFFFFFFFFFFFF", Status::exact, kMax64, false, 16},
        {"1FFFFFFFFFFFFFFFF", Status::outOfRange, kMax64, false, 17},
        {"xyz", Status::noNumber, 0, false, 0},
    };
    for (bool hex : {false, true}) {
        for (const IntegerCase &c : hex ? hexadecimals : decimals) {
            const std::vector<char> bytes = exactCopy(c.text);
            const char *first = bytes.data(), *last = first + bytes.size();
            const nr::IntegerRead read =
                hex ? nr::readHexadecimal(first, last, true) : nr::readDecimal(first, last);
            EXPECT_EQ(read.status, c.status) << c.text;
            EXPECT_EQ(read.magnitude, c.magnitude) << c.text;
            EXPECT_EQ(read.negative, c.negative) << c.text;
            EXPECT_EQ(read.end - first, static_cast<std::ptrdiff_t>(c.used)) << c.text;
        }
    }
    const std::string minus = "-5";
    EXPECT_EQ(nr::readHexadecimal(minus.data(), minus.data() + 2, false).status, Status::noNumber);
}

TEST(TarnNumberReaderTest, ARangeEndsTheNumberWhateverFollowsInMemory) {
    // The bytes behind the range would continue each number: the reader must not look at them.
    const std::string text = "12345e10 0x1fp3";
    const nr::RealRead<double> real = nr::readDouble(text.data(), text.data() + 3);
    EXPECT_EQ(real.value, 123.0);
    EXPECT_EQ(nr::readDouble(text.data(), text.data() + 6).value, 12345.0); // "e" without digits
    EXPECT_EQ(nr::readDecimal(text.data(), text.data() + 2).magnitude, 12u);
    EXPECT_EQ(nr::readHexadecimal(text.data() + 9, text.data() + 12, false).magnitude, 0x1u);
    EXPECT_EQ(nr::readDouble(text.data() + 9, text.data() + 14).value, 31.0); // "0x1fp" ends before p
}

} // namespace

namespace {

// Texts of the short exponent form that the exact integer path reads: ties between two doubles
// (integers past 2^53, with trailing zeros so that the first estimate lands on the odd side of
// the tie), texts one digit either side of them, the ends of the decimal scale it
// takes, and values at the bottom of a binade. Each must give strtod's bits and end.
TEST(TarnNumberReaderTest, ShortExponentFormRoundsAsStrtodAtTiesAndBinadeEnds) {
    // Separated by spaces.
    std::istringstream texts(
        "9.0071992547409930e+15 9.00719925474099300e+15 9.00719925474099500e+15 9.0071992547409950e+15 "
        "9.007199254740993e+15 9.007199254740995e+15 9.0071992547409931e+15 9.0071992547409929e+15 "
        "1.8014398509481986e+16 1.8014398509481990e+16 4.503599627370496e+15 4.5035996273704965e+15 "
        "1.000000000000000000e-22 9.999999999999999999e-05 1.0e0 -2.5e+1 "
        "1.7976931348623157e+3 2.2250738585072014e-10 1.000000000000000111e+00 1.000000000000000110e+00 "
        "9.999999999999999999e+18 1.5e+19 1.5e-23 1.5ex");
    for (std::string copy; texts >> copy;) {
        const char *text = copy.c_str();
        char *strtodEnd = nullptr;
        const double expected = std::strtod(copy.c_str(), &strtodEnd);
        const nr::RealRead<double> read = nr::readDouble(copy.data(), copy.data() + copy.size());
        EXPECT_EQ(std::memcmp(&read.value, &expected, sizeof expected), 0) << text;
        EXPECT_EQ(read.end, strtodEnd) << text;
    }
}

} // namespace
