// Tests of the tolerance comparison and the constant pi.
#include <tarn/tarn.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace {

struct DoublePair {
    double a;
    double b;
    bool equal;
};

struct FloatPair {
    float a;
    float b;
    bool equal;
};

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST(TarnMathTest, PiHasTheFifteenDigitBitPattern) {
    const double pi = TarnMath::pi();
    std::uint64_t bits = 0;
    std::memcpy(&bits, &pi, sizeof bits);
    EXPECT_EQ(bits, 0x400921FB54442D11u);
}

TEST(TarnMathTest, EqualsAppliesTheExponentScaledTolerance) {
    const DoublePair cases[] = {
        {0.0, 1e-10, true}, // the absolute bound is inclusive
        {0.0, 2e-10, false},       {0.0, -0.0, true},
        {1e-20, 0.0, true},    // an exact zero brings the absolute tolerance
        {1e-20, 2e-20, false}, // near zero but non-zero: relative only
        {1e10, 1e10 + 1, true},    {1e10, 1e10 + 2, false},
        {3.0, 3.0000000002, true}, {3.0, 3.0000000004, false},
        {1.0, -1.0, false},        {kNaN, 1.0, false},
        {1.0, kNaN, false},        {kNaN, kNaN, false},
        {kInf, kInf, true}, // the tolerance is infinite
        {kInf, -kInf, true},       {-kInf, -kInf, true},
    };
    for (const DoublePair &pair : cases) {
        double a = pair.a;
        double b = pair.b;
        EXPECT_EQ(TarnMath::equals(a, b), pair.equal) << a << " vs " << b;
    }
}

TEST(TarnMathTest, EqualsLeavesItsOperandsAsTheyWere) {
    double a = 2.0;
    double b = 2.0 + 1e-12;
    EXPECT_TRUE(TarnMath::equals(a, b));
    EXPECT_EQ(a, 2.0);
    EXPECT_EQ(b, 2.0 + 1e-12);
}

TEST(TarnMathTest, FequalsUsesFloatArithmeticAndTreatsNaNAsEqual) {
    const float one = 1.0f;
    const float nextAbove = std::nextafter(one, 2.0f);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const FloatPair cases[] = {
        {one, one, true},     {one, nextAbove, false}, // float spacing is far above one part in 1e10
        {0.0f, 1e-10f, true}, {0.0f, 2e-10f, false},   {nan, one, true},
        {one, nan, true},     {0.0f, -0.0f, true},
    };
    for (const FloatPair &pair : cases) {
        float a = pair.a;
        float b = pair.b;
        EXPECT_EQ(TarnMath::fequals(a, b), pair.equal) << a << " vs " << b;
    }
}
