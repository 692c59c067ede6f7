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

TEST(TarnStringTest, LeftAndRightNeverClip) {
    const TarnString word("hello");
    EXPECT_EQ(text(word.left(5)), "hello");
    EXPECT_EQ(text(word.left(6)), "");
    EXPECT_EQ(text(word.left(0)), "");
    EXPECT_EQ(text(word.left(2)), "he");
    EXPECT_EQ(text(word.right(5)), "hello");
    EXPECT_EQ(text(word.right(6)), "");
    EXPECT_EQ(text(word.right(0)), "");
    EXPECT_EQ(text(word.right(3)), "llo");
    for (unsigned n : {0u, 1u, 2u, UINT_MAX}) {
        EXPECT_EQ(text(TarnString().left(n)), "");
        EXPECT_EQ(text(TarnString().right(n)), "");
    }
}

TEST(TarnStringTest, MidGivesEmptyForAnyRequestPastTheEnd) {
    const TarnString word("hello");
    struct Case {
        unsigned first, count;
        const char *expected;
    };
    const Case cases[] = {
        {1, 3, "ell"},   {3, 2, "lo"},      {3, 3, ""},        {5, 1, ""}, {0, 0, ""},
        {0, 5, "hello"}, {2, UINT_MAX, ""}, {UINT_MAX, 2, ""}, {6, 0, ""},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(text(word.mid(c.first, c.count)), c.expected) << c.first << "," << c.count;
    }
}

TEST(TarnStringTest, CompareIsExactlyMinusOneZeroOrOneOnUnsignedBytes) {
    const TarnString ab("ab");
    EXPECT_EQ(ab.compare("ab"), 0);
    EXPECT_EQ(ab.compare("abc"), -1);
    EXPECT_EQ(ab.compare("a"), 1);
    EXPECT_EQ(ab.compare("zz"), -1);
    EXPECT_EQ(ab.compare(TarnString("aa")), 1);
    EXPECT_EQ(TarnString("a\x80").compare("a\x7f"), 1);
    EXPECT_EQ(TarnString("a\x7f").compare("a\xff"), -1);
    EXPECT_EQ(ab.compare(static_cast<const char *>(nullptr)), 1);
    EXPECT_EQ(TarnString().compare(static_cast<const char *>(nullptr)), 1);
}

TEST(TarnStringTest, CompareNoCaseFoldsLettersOnly) {
    EXPECT_EQ(TarnString("ABC").compareNoCase("abc"), 0);
    EXPECT_EQ(TarnString("abc").compareNoCase(TarnString("AbC")), 0);
    EXPECT_LT(TarnString("abc").compareNoCase("ABD"), 0);
    EXPECT_GT(TarnString("b").compareNoCase("A"), 0);
    // '[' lies between 'Z' and 'a': folding to lower case puts it below the letters.
    EXPECT_LT(TarnString("[").compareNoCase("a"), 0);
    EXPECT_LT(TarnString("[").compareNoCase("A"), 0);
    EXPECT_EQ(TarnString("x").compareNoCase(static_cast<const char *>(nullptr)), 1);
}

TEST(TarnStringTest, SplitAppendsNonEmptyRunsBetweenAnyDelimiterByte) {
    struct Case {
        const char *input, *delimiters;
        std::vector<std::string> expected;
    };
    const Case cases[] = {
        {"a,,b", ",", {"a", "b"}},
        {",a,,b,", ",", {"a", "b"}},
        {"x y,z", " ,", {"x", "y", "z"}},
        {"a, b", ", ", {"a", "b"}},
        {"", ",", {}},
        {",,,", ",", {}},
        {"whole text", "", {"whole text"}},
        {"single", ",", {"single"}},
    };
    for (const Case &c : cases) {
        TarnVector<TarnString> parts;
        TarnString(c.input).split(c.delimiters, parts);
        EXPECT_EQ(texts(parts), c.expected) << c.input << " by [" << c.delimiters << "]";
    }
}

TEST(TarnStringTest, SplitKeepsEarlierElementsInFront) {
    TarnVector<TarnString> parts;
    parts.add() = "kept";
    TarnString("a b").split(TarnString(" "), parts);
    EXPECT_EQ(texts(parts), (std::vector<std::string>{"kept", "a", "b"}));
}

TEST(TarnStringTest, TrimRemovesCLocaleWhiteSpaceOnly) {
    TarnString padded(" \t\n\v\f\rcore \xa0\r\n");
    EXPECT_EQ(text(padded.trim()), "core \xa0");
    TarnString blanks("   ");
    EXPECT_EQ(text(blanks.trim()), "");
    TarnString empty;
    EXPECT_EQ(text(empty.trim()), "");
    TarnString both("  x  ");
    EXPECT_EQ(text(TarnString(both).trimLeft()), "x  ");
    EXPECT_EQ(text(TarnString(both).trimRight()), "  x");
}

TEST(TarnStringTest, CaseChangesLeaveHighBytesAlone) {
    TarnString mixed("aZ\xe4\xc4-1");
    mixed.toUpper();
    EXPECT_EQ(text(mixed), "AZ\xe4\xc4-1");
    mixed.toLower();
    EXPECT_EQ(text(mixed), "az\xe4\xc4-1");
}

TEST(TarnStringTest, AssignmentAndIndexing) {
    TarnString value("long text");
    value = 'x';
    EXPECT_EQ(value.length(), 1u);
    EXPECT_EQ(value[0u], 'x');
    EXPECT_EQ(value[1u], '\0');
    EXPECT_TRUE(TarnString().isempty());
    value = std::string("std");
    EXPECT_EQ(text(value), "std");
}

TEST(TarnStringFormatTest, ReplacesTheTextAndMayReadFromIt) {
    TarnString value("old text");
    value.format("%d-%s", 12, "ab");
    EXPECT_EQ(text(value), "12-ab");
    value.format("[%s]", value.c_str());
    EXPECT_EQ(text(value), "[12-ab]");
}

TEST(TarnStringFormatTest, OutputAroundTheLocalBufferComesOutWhole) {
    for (std::size_t length : {159u, 160u, 161u, 320u, 321u, 5000u}) {
        const std::string expected(length, 'q');
        TarnString value;
        value.format("%s", expected.c_str());
        EXPECT_EQ(text(value), expected) << length;
    }
}

TEST(TarnStringFormatTest, OutputIsCutAtTheLastCapacity) {
    const std::string fits(1310720, 'a');
    TarnString value;
    value.format("%s", fits.c_str());
    EXPECT_EQ(value.length(), 1310720u);
    const std::string tooLong(1310721 + 100, 'b');
    value.format("%s", tooLong.c_str());
    EXPECT_EQ(text(value), std::string(1310720, 'b'));
}

TEST(TarnStringReadTest, NumericReadsTakeTheLeadingNumber) {
    EXPECT_EQ(static_cast<int>(TarnString("  42abc")), 42);
    EXPECT_EQ(static_cast<int>(TarnString("-7")), -7);
    EXPECT_EQ(static_cast<int>(TarnString("0x10")), 0);
    EXPECT_EQ(static_cast<int>(TarnString("abc")), 0);
    EXPECT_DOUBLE_EQ(static_cast<double>(TarnString(" 2.5e3x")), 2500.0);
    EXPECT_FLOAT_EQ(static_cast<float>(TarnString("0.25")), 0.25f);
    EXPECT_TRUE(static_cast<bool>(TarnString("1")));
    EXPECT_FALSE(static_cast<bool>(TarnString("0")));
    EXPECT_FALSE(static_cast<bool>(TarnString("2")));
    EXPECT_FALSE(static_cast<bool>(TarnString("true")));
}

TEST(TarnStringReadTest, HexadecimalRead) {
    struct Case {
        const char *input;
        unsigned expected;
        bool ok;
    };
    const Case cases[] = {
        {"ff", 255, true},        {"0xFF", 255, true},
        {"  0Xff zz", 255, true}, {"xyz", 0, false},
        {"", 0, false},           {"-1", 0xFFFFFFFFu, true},
        {"+10", 16, true},        {"123456789", 0xFFFFFFFFu, true},
        {"0x", 0, true},          {"FFFFFFFF", 0xFFFFFFFFu, true},
    };
    for (const Case &c : cases) {
        bool ok = !c.ok;
        EXPECT_EQ(TarnString(c.input).toUIntBase16(&ok), c.expected) << c.input;
        EXPECT_EQ(ok, c.ok) << c.input;
        EXPECT_EQ(TarnString(c.input).toUIntBase16(nullptr), c.expected) << c.input;
    }
}

} // namespace
