/// \file
/// The numeric constant pi and the tolerance comparison that the matrix family uses for equality.
#pragma once

#include "tarn/TarnExport.h"

/// Static numeric helpers: the constant `pi` and `equals`/`fequals`, the one meaning of equality
/// for matrix elements. The tolerance is one part in 1e10 of the operand with the larger binary
/// exponent, or the absolute 1e-10 when an operand is exactly zero. The class holds no state;
/// every operation is a pure function that any thread may call. Nothing fails.
class TARN_API TarnMath {
public:
    /// Constructs nothing: the class has no state.
    TarnMath() = default;
    /// Copies nothing: the class has no state.
    TarnMath(const TarnMath &) = default;
    /// Releases nothing.
    ~TarnMath() = default;
    /// Changes nothing and returns this object.
    TarnMath &operator=(const TarnMath &) = default;

    /// Returns 3.14159265358979 (15 significant digits), bit pattern 0x400921FB54442D11.
    static double pi();

    /// Returns true when `a` and `b` agree within the tolerance: 1e-10 when either is exactly zero,
    /// else |x| / 1e10 of the operand with the larger binary exponent (of `b` on a tie). The bound
    /// is inclusive. A NaN on either side gives false; two infinities give true.
    static bool equals(double &a, double &b);

    /// The float form of `equals`: exponents of the operands widened to double, the relative
    /// tolerance rounded to float, the float difference. False only when the tolerance is strictly
    /// below the difference, so a NaN operand gives true.
    static bool fequals(float &a, float &b);
};
