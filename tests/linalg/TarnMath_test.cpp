// Tests of the tolerance comparisons.
#include <tarn/tarn.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST(TarnMathTest, EqualsAppliesTheExponentScaledToleranceAndLeavesItsOperands) {
    const struct {
        double a, b;
        bool equal;
    } cases[] = {
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
    for (const auto &c : cases) {
        double a = c.a;
        double b = c.b;
        EXPECT_EQ(TarnMath::equals(a, b), c.equal) << c.a << " vs " << c.b;
        EXPECT_TRUE(std::memcmp(&a, &c.a, sizeof a) == 0 && std::memcmp(&b, &c.b, sizeof b) == 0)
            << "an operand changed: " << c.a << " vs " << c.b;
    }
}

TEST(TarnMathTest, FequalsUsesFloatArithmeticAndTreatsNaNAsEqual) {
    const float one = 1.0f;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const struct {
        float a, b;
        bool equal;
    } cases[] = {
        {one, one, true},     {one, std::nextafter(one, 2.0f), false}, // float spacing is far above 1e-10
        {0.0f, 1e-10f, true}, {0.0f, 2e-10f, false},
        {nan, one, true},     {one, nan, true},
        {0.0f, -0.0f, true},
    };
    for (const auto &c : cases) {
        float a = c.a;
        float b = c.b;
        EXPECT_EQ(TarnMath::fequals(a, b), c.equal) << c.a << " vs " << c.b;
    }
}
