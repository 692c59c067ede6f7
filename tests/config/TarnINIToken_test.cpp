// Tests of TarnINIToken: typed reads of the text and the texts the setters make.
#include "config/TarnINITestSupport.h"

#include <climits>
#include <cmath>
#include <limits>
#include <string>

namespace {

TarnINIToken tokenOf(const char *text) {
    TarnINIToken token;
    token.setValue(text);
    return token;
}

TEST(TarnINITokenTest, BoolValueLooksOnlyAtTheFirstByte) {
    for (const char *yes : {"t", "T", "true", "Tomorrow"}) {
        EXPECT_TRUE(tokenOf(yes).getBoolValue()) << yes;
    }
    for (const char *no : {"", " true", "1", "yes", "f"}) {
        EXPECT_FALSE(tokenOf(no).getBoolValue()) << no;
    }
}

TEST(TarnINITokenTest, NumberReadsTakeTheLeadingNumberOrZero) {
    EXPECT_EQ(tokenOf(" -42abc").getIntValue(), -42);
    EXPECT_EQ(tokenOf("abc").getIntValue(), 0);
    EXPECT_EQ(tokenOf("2147483648").getIntValue(), INT_MAX);
    EXPECT_EQ(tokenOf("-2147483649").getIntValue(), INT_MIN);
    EXPECT_EQ(tokenOf("-2147483648").getIntValue(), INT_MIN);
    EXPECT_DOUBLE_EQ(tokenOf("  2.5e3x").getDoubleValue(), 2500.0);
    EXPECT_EQ(tokenOf("x1").getDoubleValue(), 0.0);
    EXPECT_EQ(tokenOf("1e999").getDoubleValue(), std::numeric_limits<double>::infinity());
}

TEST(TarnINITokenTest, SettersMakeTheirTextForms) {
    struct Case {
        double number;
        const char *text;
    };
    const Case doubles[] = {
        {0.1, "0.1"}, {1.5, "1.5"}, {1e20, "1e+20"}, {123456789.0, "1.23457e+08"}, {-0.0, "-0"}};
    for (const Case &c : doubles) {
        TarnINIToken token;
        token.setValue(c.number);
        EXPECT_EQ(token.getStringValue(), c.text);
    }
    TarnINIToken token;
    token.setValue(-17);
    EXPECT_EQ(token.getStringValue(), "-17");
    token.setValue(true);
    EXPECT_EQ(token.getStringValue(), "true");
    token.setValue(false);
    EXPECT_EQ(token.getStringValue(), "false");
    token.setValue(std::string("a\0b", 3));
    EXPECT_EQ(token.getStringValue(), std::string("a\0b", 3));
    token.setValue(static_cast<const char *>(nullptr));
    EXPECT_EQ(token.getStringValue(), "");
}

} // namespace
