// Tests of TarnString: substrings, comparison, splitting, trimming, case, formatting, numeric reads.
#include <tarn/tarn.h>

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

namespace {

std::string text(const TarnString &value) {
    return value;
}

std::vector<std::string> texts(const TarnVector<TarnString> &parts) {
    std::vector<std::string> result;
    for (unsigned i = 0; i < parts.size(); ++i) {
        result.push_back(parts[i]);
    }
    return result;
}

TEST(TarnStringTest, SubstringsGiveEmptyForAnyRequestPastTheEndNeverAClippedOne) {
    const TarnString word("hello");
    const struct {
        unsigned first, count;
        const char *mid, *left, *right; // left and right take `count` bytes
    } cases[] = {
        {1, 3, "ell", "hel", "llo"}, {3, 2, "lo", "he", "lo"},  {3, 3, "", "hel", "llo"},
        {5, 1, "", "h", "o"},        {0, 0, "", "", ""},        {0, 5, "hello", "hello", "hello"},
        {0, 6, "", "", ""},          {2, UINT_MAX, "", "", ""}, {UINT_MAX, 2, "", "he", "lo"},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(text(word.mid(c.first, c.count)), c.mid) << "mid " << c.first << "," << c.count;
        EXPECT_EQ(text(word.left(c.count)), c.left) << "left " << c.count;
        EXPECT_EQ(text(word.right(c.count)), c.right) << "right " << c.count;
        EXPECT_EQ(text(TarnString().left(c.count)) + text(TarnString().right(c.count)), "");
    }
}

TEST(TarnStringTest, CompareIsExactlyMinusOneZeroOrOneOnUnsignedBytesAndCompareNoCaseFoldsLetters) {
    const struct {
        const char *a, *b;
        int exact, noCase; // noCase: only the sign counts
    } cases[] = {
        {"ab", "ab", 0, 0},
        {"ab", "abc", -1, -1},
        {"ab", "a", 1, 1},
        {"ab", "zz", -1, -1},
        {"a\x80", "a\x7f", 1, 1},
        {"a\x7f", "a\xff", -1, -1},
        {"ABC", "abc", -1, 0},
        {"abc", "ABD", 1, -1},
        {"b", "A", 1, 1},
        // '[' lies between 'Z' and 'a': folding to lower case puts it below the letters.
        {"[", "A", 1, -1},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(TarnString(c.a).compare(c.b), c.exact) << c.a << " vs " << c.b;
        EXPECT_EQ(TarnString(c.a).compare(TarnString(c.b)), c.exact) << c.a << " vs " << c.b;
        const int noCase = TarnString(c.a).compareNoCase(TarnString(c.b));
        EXPECT_EQ((noCase > 0) - (noCase < 0), c.noCase) << c.a << " vs " << c.b;
    }
    for (const TarnString &any : {TarnString(), TarnString("x")}) {
        EXPECT_EQ(any.compare(static_cast<const char *>(nullptr)), 1);
        EXPECT_EQ(any.compareNoCase(static_cast<const char *>(nullptr)), 1);
    }
}

TEST(TarnStringTest, SplitAppendsNonEmptyRunsBetweenAnyDelimiterByteAfterEarlierElements) {
    const struct {
        const char *input, *delimiters;
        std::vector<std::string> expected;
    } cases[] = {
        {"a,,b", ",", {"a", "b"}},
        {",a,,b,", ",", {"a", "b"}},
        {"x y,z", " ,", {"x", "y", "z"}},
        {"", ",", {}},
        {",,,", ",", {}},
        {"whole text", "", {"whole text"}},
        {"single", ",", {"single"}},
    };
    for (const auto &c : cases) {
        TarnVector<TarnString> parts;
        TarnString(c.input).split(c.delimiters, parts);
        EXPECT_EQ(texts(parts), c.expected) << c.input << " by [" << c.delimiters << "]";
    }
    TarnVector<TarnString> parts;
    parts.add() = "kept";
    TarnString("a b").split(TarnString(" "), parts);
    EXPECT_EQ(texts(parts), (std::vector<std::string>{"kept", "a", "b"}));
}

TEST(TarnStringTest, TrimAndCaseChangesTouchCLocaleBytesOnly) {
    TarnString padded(" \t\n\v\f\rcore \xa0\r\n");
    EXPECT_EQ(text(padded.trim()), "core \xa0");
    TarnString blanks("   ");
    EXPECT_EQ(text(blanks.trim()), "");
    const TarnString both("  x  ");
    EXPECT_EQ(text(TarnString(both).trimLeft()), "x  ");
    EXPECT_EQ(text(TarnString(both).trimRight()), "  x");
    TarnString mixed("aZ\xe4\xc4-1");
    mixed.toUpper();
    EXPECT_EQ(text(mixed), "AZ\xe4\xc4-1");
    mixed.toLower();
    EXPECT_EQ(text(mixed), "az\xe4\xc4-1");
}

TEST(TarnStringFormatTest, ReplacesTheTextAndMayReadFromIt) {
    TarnString value("old text");
    value.format("%d-%s", 12, "ab");
    EXPECT_EQ(text(value), "12-ab");
    value.format("[%s]", value.c_str());
    EXPECT_EQ(text(value), "[12-ab]");
}

TEST(TarnStringFormatTest, OutputAroundEveryBufferSizeComesOutWholeUpToTheLastCapacity) {
    for (std::size_t length : {159u, 160u, 161u, 320u, 321u, 5000u, 1310720u, 1310821u}) {
        const std::string expected(std::min<std::size_t>(length, 1310720u), 'q');
        TarnString value;
        value.format("%s", std::string(length, 'q').c_str());
        EXPECT_EQ(text(value), expected) << length;
    }
}

TEST(TarnStringReadTest, NumericReadsTakeTheLeadingNumber) {
    EXPECT_EQ(static_cast<int>(TarnString("  42abc")), 42);
    EXPECT_EQ(static_cast<int>(TarnString("-7")), -7);
    EXPECT_EQ(static_cast<int>(TarnString("0x10")), 0);
    EXPECT_EQ(static_cast<int>(TarnString("abc")), 0);
    EXPECT_DOUBLE_EQ(static_cast<double>(TarnString(" 2.5e3x")), 2500.0);
    EXPECT_FLOAT_EQ(static_cast<float>(TarnString("0.25")), 0.25f);
    for (const char *input : {"1", "0", "2", "true"}) {
        EXPECT_EQ(static_cast<bool>(TarnString(input)), input[0] == '1' && input[1] == '\0') << input;
    }
}

TEST(TarnStringReadTest, HexadecimalRead) {
    const struct {
        const char *input;
        unsigned expected;
        bool ok;
    } cases[] = {
        {"ff", 255, true},        {"0xFF", 255, true},
        {"  0Xff zz", 255, true}, {"xyz", 0, false},
        {"", 0, false},           {"-1", 0xFFFFFFFFu, true},
        {"+10", 16, true},        {"123456789", 0xFFFFFFFFu, true},
        {"0x", 0, true},          {"FFFFFFFF", 0xFFFFFFFFu, true},
    };
    for (const auto &c : cases) {
        bool ok = !c.ok;
        EXPECT_EQ(TarnString(c.input).toUIntBase16(&ok), c.expected) << c.input;
        EXPECT_EQ(ok, c.ok) << c.input;
        EXPECT_EQ(TarnString(c.input).toUIntBase16(nullptr), c.expected) << c.input;
    }
}

} // namespace
