// The constant pi and the tolerance comparisons of the matrix family.
#include "tarn/linalg/TarnMath.h"

#include <cmath>

namespace {

// One part in this divisor of the deciding operand is the relative tolerance.
constexpr double kRelativeDivisor = 1e10;
// Used instead when an operand is exactly zero.
constexpr double kAbsoluteTolerance = 1e-10;
constexpr float kAbsoluteToleranceFloat = 1e-10f;

// Returns the binary exponent of `value` as frexp gives it.
int binaryExponent(double value) {
    int exponent = 0;
    static_cast<void>(std::frexp(value, &exponent));
    return exponent;
}

} // namespace

double TarnMath::pi() {
    return 3.14159265358979;
}

bool TarnMath::equals(double &a, double &b) {
    const int exponentA = binaryExponent(a);
    const int exponentB = binaryExponent(b);
    if (std::isnan(a) || std::isnan(b)) {
        return false;
    }
    double tolerance = kAbsoluteTolerance;
    if (a != 0.0 && b != 0.0) {
        // The operand with the larger exponent decides, not the one of larger magnitude.
        tolerance = std::fabs(exponentA > exponentB ? a : b) / kRelativeDivisor;
    }
    // Written as "not greater" so that an unordered result (two equal infinities) counts as equal.
    return !(std::fabs(a - b) > tolerance);
}

bool TarnMath::fequals(float &a, float &b) {
    const int exponentA = binaryExponent(static_cast<double>(a));
    const int exponentB = binaryExponent(static_cast<double>(b));
    float tolerance = kAbsoluteToleranceFloat;
    if (a != 0.0f && b != 0.0f) {
        const float decider = exponentA > exponentB ? a : b;
        tolerance = std::fabs(static_cast<float>(static_cast<double>(decider) / kRelativeDivisor));
    }
    const float difference = std::fabs(a - b);
    return !(tolerance < difference);
}
