// Tests of TarnToken: the text form of every value type and reading it back.
#include <tarn/tarn.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace {

using Limits = std::numeric_limits<double>;

TarnToken tokenOf(const char *text) {
    TarnToken token;
    token.setValue(text);
    return token;
}

std::string printfText(const char *format, double value) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, format, value);
    return buffer;
}

std::uint64_t bitsOf(double value) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

TEST(TarnTokenTest, EmptyTextReadsAsNothingAndNullSetsNothing) {
    TarnToken token;
    EXPECT_STREQ(token.getValue(), "");
    EXPECT_FALSE(token.getBoolValue());
    EXPECT_EQ(token.getDoubleValue(), 0.0);
    EXPECT_EQ(token.getIntValue() | token.getCharValue() | token.getUShortValue(), 0);
    EXPECT_EQ(token.getPointerValue(), nullptr);
    double values[1] = {7.0};
    token.getDoubles(values, 1);
    EXPECT_EQ(values[0], 7.0);
    token.setValue("kept");
    token.setValue(static_cast<const char *>(nullptr));
    EXPECT_STREQ(token.getValue(), "kept");
    token.setValue(TarnArray<double>());
    EXPECT_STREQ(token.getValue(), "");
    for (const char *text : {"True", "1", " true", "true "}) {
        EXPECT_FALSE(tokenOf(text).getBoolValue()) << text;
    }
}

// The archive's integers are 32-bit patterns whatever the width of long.
TEST(TarnTokenTest, IntegersAre32BitPatterns) {
    TarnToken token;
    token.setValue(4294967295ul);
    EXPECT_STREQ(token.getValue(), "-1");
    EXPECT_EQ(token.getULongValue(), 4294967295ul);
    EXPECT_EQ(token.getIntValue(), -1);
    token.setValue(static_cast<unsigned char>(65));
    EXPECT_STREQ(token.getValue(), "65");
    token.setValue(static_cast<unsigned short>(65535));
    EXPECT_STREQ(token.getValue(), "65535");
    token.setValue(true);
    EXPECT_STREQ(token.getValue(), "true");
    token.setValue(false);
    EXPECT_STREQ(token.getValue(), "false");
    struct Case {
        const char *text;
        int charValue;
        unsigned ucharValue, ushortValue;
    };
    const Case cases[] = {{"200", -56, 200, 200}, {"300", 44, 44, 300},   {"70000", 112, 112, 4464},
                          {"12abc", 12, 12, 12},  {"  +7", 7, 7, 7},      {"- 5", 0, 0, 0},
                          {"abc", 0, 0, 0},       {"4294967296", 0, 0, 0}};
    for (const Case &c : cases) {
        const TarnToken text = tokenOf(c.text);
        EXPECT_EQ(static_cast<int>(text.getCharValue()), c.charValue) << c.text;
        EXPECT_EQ(text.getUCharValue(), c.ucharValue) << c.text;
        EXPECT_EQ(text.getUShortValue(), c.ushortValue) << c.text;
    }
}

TEST(TarnTokenTest, DoubleReaderFollowsAtofInTheCLocale) {
    const double inf = Limits::infinity();
    // The grammar itself is the number reader's; these cases show the token's rules: a text
    // without a number reads as 0, one out of range as an infinity or a zero.
    const std::pair<const char *, double> cases[] = {{"12abc", 12.0},  {"0x1p3", 8.0}, {"0xinf", 0.0},
                                                     {"e5", 0.0},      {"+-1", 0.0},   {"1e400", inf},
                                                     {"-1e400", -inf}, {"1e-400", 0.0}};
    for (const auto &c : cases) {
        EXPECT_EQ(tokenOf(c.first).getDoubleValue(), c.second) << c.first;
    }
    EXPECT_TRUE(std::signbit(tokenOf("-1e-400").getDoubleValue()));
    EXPECT_TRUE(std::isnan(tokenOf("-nan").getDoubleValue()));
    EXPECT_TRUE(std::signbit(tokenOf("-nan").getDoubleValue()));
}

// The list form of the hot path must give exactly printf's "%.18e " for every value, specials,
// ties and random bit patterns of every exponent, and read back to the same bits; floats give
// "%.8e".
TEST(TarnTokenTest, NumberTextsEqualPrintfByteForByte) {
    const std::uint32_t seed = 20261123;
    std::mt19937_64 random(seed);
    const double tiny = Limits::denorm_min(), min = Limits::min(), max = Limits::max();
    const double inf = Limits::infinity(), nan = Limits::quiet_NaN();
    TarnArray<double> values = {0.0, -0.0,      1.5, 0.1,  1.0 / 3.0, tiny,   -tiny,
                                min, min / 3.0, max, -max, 1e100,     1e-100, 9.999999999999999999e99,
                                inf, -inf,      nan, -nan};
    // Few-bit values hold exact ties at the 19th and the 9th digit (2^-28 has 20 digits ending
    // in 5), which both printf and the token round half to even.
    for (int power = 0; power <= 40; ++power) {
        for (int odd = 1; odd < 64; odd += 2) {
            values.push_back(std::ldexp(static_cast<double>(odd), -power));
        }
    }
    while (values.size() < 200000) {
        std::uint64_t bits = random();
        if (values.size() % 2 == 0) {
            // Every other value of moderate magnitude, 2^-80 to 2^80, where the usual archive
            // values lie.
            bits = (bits & 0x800FFFFFFFFFFFFFu) | (static_cast<std::uint64_t>(943 + random() % 160) << 52);
        }
        double value;
        std::memcpy(&value, &bits, sizeof value);
        values.push_back(value);
    }
    TarnToken token;
    token.setValue(values);
    const std::string text = token.getValue();
    std::size_t offset = 0;
    for (double value : values) {
        // printf's text for a NaN differs between runtimes ("-nan", "nan", "-nan(ind)"); the
        // token writes "nan" or "-nan" by the sign everywhere.
        const std::string expected =
            std::isnan(value) ? (std::signbit(value) ? "-nan " : "nan ") : printfText("%.18e ", value);
        ASSERT_EQ(text.substr(offset, expected.size()), expected)
            << "seed " << seed << " value " << printfText("%a", value);
        offset += expected.size();
    }
    ASSERT_EQ(offset, text.size());
    TarnArray<double> back(values.size(), 42.0);
    token.getDoubles(back);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const bool nan = std::isnan(values[i]);
        ASSERT_EQ(nan ? std::signbit(back[i]) : bitsOf(back[i]),
                  nan ? std::signbit(values[i]) : bitsOf(values[i]))
            << "seed " << seed << " index " << i;
        const auto single = static_cast<float>(values[i]);
        token.setValue(single);
        if (!nan) {
            ASSERT_EQ(std::string(token.getValue()), printfText("%.8e", static_cast<double>(single)))
                << "seed " << seed;
            ASSERT_EQ(token.getFloatValue(), single) << token.getValue();
        }
    }
}

TEST(TarnTokenTest, ListReadingFillsOnlyWhatThePiecesReach) {
    struct Case {
        const char *text;
        unsigned count;
        double expected[4]; // -1: the element keeps its earlier value
    };
    const Case cases[] = {
        {"1 2  3", 4, {1, 2, 3, -1}}, {"1 2  3", 2, {1, 2, -1, -1}}, {"1 x 3", 3, {1, -1, 3, -1}},
        {"1,2", 2, {1, -1, -1, -1}},  {"1\t2 3", 3, {1, 3, -1, -1}}, {"   ", 3, {-1, -1, -1, -1}},
    };
    for (const Case &c : cases) {
        double values[4] = {-1, -1, -1, -1};
        tokenOf(c.text).getDoubles(values, c.count);
        for (int i = 0; i < 4; ++i) {
            EXPECT_EQ(values[i], c.expected[i]) << '"' << c.text << "\" index " << i;
        }
    }
    TarnArray<int> ints(4, 9);
    tokenOf(" 10 -20 x 4294967295 5").getInts(ints);
    EXPECT_EQ(ints, (TarnArray<int>{10, -20, 9, -1}));
}

TEST(TarnTokenTest, PointersAreUpperCaseHexAndReadInEveryForm) {
    TarnToken token;
    token.setPointerValue(nullptr);
    EXPECT_EQ(std::string(token.getValue()), std::string(2 * sizeof(void *), '0'));
    auto *address = reinterpret_cast<TarnSerializable *>(&token);
    token.setPointerValue(address);
    EXPECT_EQ(std::strspn(token.getValue(), "0123456789ABCDEF"), 2 * sizeof(void *));
    EXPECT_EQ(token.getPointerValue(), address);
    const std::pair<const char *, std::uintptr_t> cases[] = {{"00A42B10", 0xA42B10},
                                                             {"0x1f", 0x1F},
                                                             {"0X1F", 0x1F},
                                                             {"  ab;", 0xAB},
                                                             {"zz", 0},
                                                             {"0xg", 0},
                                                             {"-5", 0},
                                                             {"0x", 0}};
    for (const auto &c : cases) {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(tokenOf(c.first).getPointerValue()), c.second) << c.first;
    }
}

} // namespace
