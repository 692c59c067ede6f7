// Example: a linear system solved by LU, checked by its residual; a normal-equations product into
// packed storage; the matrix self-tests.
#include <tarn/tarn.h>

#include <cmath>
#include <cstdio>

int main() {
    // Solve a x = b for three right-hand sides at once; the matrices own their elements and are
    // read and written as m[row][col].
    const double coefficients[] = {2, 1, 1, 1, 3, 2, 1, 0, 0};
    const double rightHandSides[] = {4, 5, 6, 5, 6, 7, 6, 7, 8};
    const TarnMatrix a(coefficients, 3, 3);
    const TarnMatrix b(rightHandSides, 3, 3);
    TarnMatrix x;
    const bool solved = a.solve(x, b); // false for a singular matrix (an exact zero pivot)

    // Equality of elements is TarnMath::equals, a relative tolerance of 1e-10.
    const TarnMatrix product = a * x;
    const bool residualOk = product == b;
    std::printf("solved: %s, x[0] = (%g, %g, %g), a x == b: %s\n", solved ? "true" : "false", x[0][0],
                x[0][1], x[0][2], residualOk ? "true" : "false");

    // The inverse, and a product that must give the identity.
    TarnMatrix inverse;
    const bool inverted = a.invert(inverse);
    TarnMatrix unit;
    unit.identity(3);
    const bool inverseOk = inverted && a * inverse == unit;

    // A singular matrix is reported, not thrown.
    const double singularValues[] = {1, 2, 2, 4};
    TarnMatrix singular(singularValues, 2, 2);
    TarnMatrix ignored;
    const bool singularRefused = !singular.invert(ignored);

    // The transpose of a times a, kept as one packed triangle; reads mirror into it.
    TarnSymmetricMatrix normal(0);
    a.AtA(normal);
    const bool symmetricOk = normal.nRows() == 3 && normal.getElement(2, 0) == normal.getElement(0, 2) &&
                             normal.getElement(0, 0) == 6.0;

    // Self-tests append one report line per check; nothing prints them but the caller.
    TarnVector<TarnString> report;
    TarnMatrix dense;
    const bool selfTestsPassed = dense.test(report);
    std::printf("self-tests: %u lines, %s\n", static_cast<unsigned>(report.size()),
                selfTestsPassed ? "passed" : "FAILED");

    const bool ok = solved && residualOk && inverseOk && singularRefused && symmetricOk && selfTestsPassed;
    std::printf("%s\n", ok ? "ok" : "FAILED");
    return ok ? 0 : 1;
}
