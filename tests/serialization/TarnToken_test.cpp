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

TEST(TarnTokenTest, EmptyTextReadsAsNothing) {
    TarnToken token;
    EXPECT_STREQ(token.getValue(), "");
    EXPECT_FALSE(token.getBoolValue());
    EXPECT_EQ(token.getDoubleValue(), 0.0);
    EXPECT_EQ(token.getFloatValue(), 0.0f);
    EXPECT_EQ(token.getIntValue(), 0);
    EXPECT_EQ(token.getULongValue(), 0ul);
    EXPECT_EQ(token.getUShortValue(), 0);
    EXPECT_EQ(token.getCharValue(), 0);
    EXPECT_EQ(token.getUCharValue(), 0);
    EXPECT_EQ(token.getPointerValue(), nullptr);
    double values[2] = {7.0, 8.0};
    token.getDoubles(values, 2);
    EXPECT_EQ(values[0], 7.0);
    EXPECT_EQ(values[1], 8.0);
    TarnArray<int> ints(2, 5);
    token.getInts(ints);
    EXPECT_EQ(ints[0], 5);
}

TEST(TarnTokenTest, NullTextKeepsTheOldTextButEmptyListsEmptyIt) {
    TarnToken token = tokenOf("kept");
    token.setValue(static_cast<const char *>(nullptr));
    EXPECT_STREQ(token.getValue(), "kept");
    token.setValue(static_cast<const double *>(nullptr), 0);
    EXPECT_STREQ(token.getValue(), "");
    token.setValue("again");
    token.setValue(TarnArray<double>());
    EXPECT_STREQ(token.getValue(), "");
}

TEST(TarnTokenTest, BoolIsTrueOnlyForTheExactText) {
    TarnToken token;
    token.setValue(true);
    EXPECT_STREQ(token.getValue(), "true");
    EXPECT_TRUE(token.getBoolValue());
    token.setValue(false);
    EXPECT_STREQ(token.getValue(), "false");
    for (const char *text : {"True", "1", " true", "true ", "TRUE", "tru"}) {
        EXPECT_FALSE(tokenOf(text).getBoolValue()) << text;
    }
}

TEST(TarnTokenTest, IntegersAre32BitPatterns) {
    TarnToken token;
    token.setValue(4294967295ul);
    EXPECT_STREQ(token.getValue(), "-1");
    EXPECT_EQ(token.getULongValue(), 4294967295ul);
    EXPECT_EQ(token.getIntValue(), -1);
    // Where unsigned long is wider, only its low 32 bits reach the text.
    token.setValue(static_cast<unsigned long>(std::numeric_limits<unsigned long>::max() & 0x80000005ul));
    EXPECT_STREQ(token.getValue(), "-2147483643");
    token.setValue(static_cast<unsigned char>(65));
    EXPECT_STREQ(token.getValue(), "65");
    token.setValue(static_cast<unsigned short>(65535));
    EXPECT_STREQ(token.getValue(), "65535");
    token.setValue(std::numeric_limits<int>::min());
    EXPECT_STREQ(token.getValue(), "-2147483648");
    EXPECT_EQ(token.getIntValue(), std::numeric_limits<int>::min());
}

TEST(TarnTokenTest, NarrowGettersKeepTheLowBits) {
    struct Case {
        const char *text;
        int charValue;
        unsigned ucharValue;
        unsigned ushortValue;
    };
    const Case cases[] = {
        {"200", -56, 200, 200}, {"300", 44, 44, 300},  {"70000", 112, 112, 4464},
        {"-1", -1, 255, 65535}, {"12abc", 12, 12, 12}, {"  +7", 7, 7, 7},
        {"abc", 0, 0, 0},       {"- 5", 0, 0, 0},      {"4294967296", 0, 0, 0},
    };
    for (const Case &c : cases) {
        const TarnToken token = tokenOf(c.text);
        EXPECT_EQ(static_cast<int>(token.getCharValue()), c.charValue) << c.text;
        EXPECT_EQ(token.getUCharValue(), c.ucharValue) << c.text;
        EXPECT_EQ(token.getUShortValue(), c.ushortValue) << c.text;
    }
}

TEST(TarnTokenTest, DoubleReaderFollowsAtofInTheCLocale) {
    struct Case {
        const char *text;
        double expected;
    };
    const double inf = std::numeric_limits<double>::infinity();
    const Case cases[] = {
        {"12abc", 12.0},    {"  -3.5", -3.5}, {"+2", 2.0},  {"\t\n.5", 0.5},     {"5.", 5.0},
        {"0x1p3", 8.0},     {"-0X10", -16.0}, {"0xg", 0.0}, {"0xinf", 0.0},      {"1e400", inf},
        {"-1e400", -inf},   {"1e-400", 0.0},  {"inf", inf}, {"-Infinity", -inf}, {"e5", 0.0},
        {"-", 0.0},         {"+-1", 0.0},     {"1,5", 1.0}, {"1.5e", 1.5},       {"0.001e-400", 0.0},
        {"123.4e307", inf}, {"2.5E+1", 25.0},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(tokenOf(c.text).getDoubleValue(), c.expected) << c.text;
    }
    EXPECT_TRUE(std::signbit(tokenOf("-1e-400").getDoubleValue()));
    EXPECT_TRUE(std::isnan(tokenOf("nan").getDoubleValue()));
    EXPECT_TRUE(std::isnan(tokenOf("-nan").getDoubleValue()));
    EXPECT_TRUE(std::signbit(tokenOf("-nan").getDoubleValue()));
    EXPECT_EQ(tokenOf("1.5").getFloatValue(), 1.5f);
}

// The formatter must give exactly printf's digits: compared on special values and on random bit
// patterns of every exponent, with the seed in the failure message.
TEST(TarnTokenTest, DoubleAndFloatTextsEqualPrintfByteForByte) {
    const double specials[] = {0.0,
                               -0.0,
                               1.5,
                               -1.5,
                               0.1,
                               1.0 / 3.0,
                               std::numeric_limits<double>::denorm_min(),
                               -std::numeric_limits<double>::denorm_min(),
                               std::numeric_limits<double>::min(),
                               std::numeric_limits<double>::min() / 3.0,
                               std::numeric_limits<double>::max(),
                               -std::numeric_limits<double>::max(),
                               std::numeric_limits<double>::epsilon(),
                               1e100,
                               1e-100,
                               9.999999999999999999e99,
                               std::numeric_limits<double>::infinity(),
                               -std::numeric_limits<double>::infinity(),
                               std::numeric_limits<double>::quiet_NaN(),
                               -std::numeric_limits<double>::quiet_NaN()};
    TarnToken token;
    for (double value : specials) {
        token.setValue(value);
        EXPECT_EQ(std::string(token.getValue()), printfText("%.18e", value)) << printfText("%a", value);
        token.setValue(static_cast<float>(value));
        EXPECT_EQ(std::string(token.getValue()),
                  printfText("%.8e", static_cast<double>(static_cast<float>(value))));
    }
    const std::uint32_t seed = 20261123;
    std::mt19937_64 random(seed);
    for (int i = 0; i < 200000; ++i) {
        const std::uint64_t bits = random();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        token.setValue(value);
        ASSERT_EQ(std::string(token.getValue()), printfText("%.18e", value))
            << "seed " << seed << " case " << i;
        if (!std::isnan(value)) {
            ASSERT_EQ(bitsOf(token.getDoubleValue()), bits)
                << "seed " << seed << " text " << token.getValue();
        }
        const auto single = static_cast<float>(value);
        token.setValue(single);
        ASSERT_EQ(std::string(token.getValue()), printfText("%.8e", static_cast<double>(single)))
            << "seed " << seed << " case " << i;
        if (!std::isnan(single)) {
            ASSERT_EQ(token.getFloatValue(), single) << "seed " << seed << " text " << token.getValue();
        }
    }
}

TEST(TarnTokenTest, ListTextIsPrintfOfEveryValueWithATrailingBlank) {
    const std::uint32_t seed = 77;
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> spread(-1e6, 1e6);
    TarnArray<double> values(1000);
    for (double &value : values) {
        value = spread(random) * std::pow(10.0, static_cast<int>(random() % 600) - 300);
    }
    values[3] = -0.0;
    values[4] = std::numeric_limits<double>::denorm_min();
    std::string expected;
    for (double value : values) {
        expected += printfText("%.18e", value) + " ";
    }
    TarnToken token;
    token.setValue(values);
    ASSERT_EQ(std::string(token.getValue()), expected) << "seed " << seed;
    TarnArray<double> back(values.size(), 42.0);
    token.getDoubles(back);
    for (std::size_t i = 0; i < values.size(); ++i) {
        ASSERT_EQ(bitsOf(back[i]), bitsOf(values[i])) << "seed " << seed << " index " << i;
    }
}

TEST(TarnTokenTest, TwoValuesEndInABlankAndReadBackExactly) {
    const double values[] = {1.0, 2.0};
    TarnToken token;
    token.setValue(values, 2);
    EXPECT_STREQ(token.getValue(), "1.000000000000000000e+00 2.000000000000000000e+00 ");
    double back[2] = {0.0, 0.0};
    token.getDoubles(back, 2);
    EXPECT_EQ(back[0], 1.0);
    EXPECT_EQ(back[1], 2.0);
}

TEST(TarnTokenTest, ListReadingFillsOnlyWhatThePiecesReach) {
    struct Case {
        const char *text;
        unsigned count;
        double expected[5];
    };
    // -1 marks an element that must keep its earlier value.
    const Case cases[] = {
        {"1 2  3", 5, {1, 2, 3, -1, -1}}, {"1 2  3", 2, {1, 2, -1, -1, -1}},
        {"1 x 3", 3, {1, -1, 3, -1, -1}}, {"1,2", 2, {1, -1, -1, -1, -1}},
        {"  4 ", 2, {4, -1, -1, -1, -1}}, {"1\t2 3", 3, {1, 3, -1, -1, -1}},
        {"", 3, {-1, -1, -1, -1, -1}},    {"   ", 3, {-1, -1, -1, -1, -1}},
        {"5e 6", 2, {5, 6, -1, -1, -1}},
    };
    for (const Case &c : cases) {
        double values[5] = {-1, -1, -1, -1, -1};
        tokenOf(c.text).getDoubles(values, c.count);
        for (int i = 0; i < 5; ++i) {
            EXPECT_EQ(values[i], c.expected[i]) << '"' << c.text << "\" index " << i;
        }
    }
}

TEST(TarnTokenTest, IntListReadsDecimalPiecesIntoTheArraysSize) {
    TarnArray<int> values(4, 9);
    tokenOf(" 10 -20 x 4294967295 5").getInts(values);
    EXPECT_EQ(values, (TarnArray<int>{10, -20, 9, -1}));
}

TEST(TarnTokenTest, PointerTextIsZeroPaddedUpperCaseHex) {
    TarnToken token;
    token.setPointerValue(nullptr);
    EXPECT_EQ(std::string(token.getValue()), std::string(2 * sizeof(void *), '0'));
    EXPECT_EQ(token.getPointerValue(), nullptr);
    int anything = 0;
    auto *address = reinterpret_cast<TarnSerializable *>(&anything);
    token.setPointerValue(address);
    EXPECT_EQ(std::strlen(token.getValue()), 2 * sizeof(void *));
    EXPECT_EQ(std::strspn(token.getValue(), "0123456789ABCDEF"), 2 * sizeof(void *));
    EXPECT_EQ(token.getPointerValue(), address);
}

TEST(TarnTokenTest, PointerReaderTakesEveryHexForm) {
    struct Case {
        const char *text;
        std::uintptr_t expected;
    };
    const Case cases[] = {
        {"00A42B10", 0x00A42B10},
        {"a42b10", 0xA42B10},
        {"0x1f", 0x1F},
        {"0X1F", 0x1F},
        {"  ab;", 0xAB},
        {"zz", 0},
        {"0x", 0},
        {"0xg", 0},
        {"", 0},
        {"-5", 0},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(tokenOf(c.text).getPointerValue()), c.expected) << c.text;
    }
    // Digits beyond the width of a pointer shift the leading ones out.
    const std::string tooLong = "1" + std::string(2 * sizeof(void *), '0') + "7";
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(tokenOf(tooLong.c_str()).getPointerValue()), 7u);
}

TEST(TarnTokenTest, CopiesAreIndependent) {
    TarnToken first = tokenOf("one");
    TarnToken second(first);
    second.setValue("two");
    EXPECT_STREQ(first.getValue(), "one");
    first = second;
    EXPECT_STREQ(first.getValue(), "two");
}

} // namespace
