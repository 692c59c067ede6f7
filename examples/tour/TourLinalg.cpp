// Tour of the linear algebra: a small system solved by LU, its residual, and the self-tests.
#include "Tour.h"

#include <tarn/tarn.h>

#include <cmath>
#include <cstdio>

void tourLinalg() {
    std::printf("\n== Linear algebra\n");
    const double coefficients[] = {4, -2, 1, -2, 4, -2, 1, -2, 4};
    const double rightHandSide[] = {11, -16, 17};
    const TarnMatrix a(coefficients, 3, 3);
    const TarnMatrix b(rightHandSide, 3, 1);
    TarnMatrix x;
    const bool solved = a.solve(x, b);
    std::printf("solve 3 x 3: %s, x = (%g, %g, %g)\n", solved ? "true" : "false", x[0][0], x[1][0], x[2][0]);

    const TarnMatrix residual = a * x - b;
    double largest = 0.0;
    for (int i = 0; i < residual.nRows(); ++i) {
        largest = std::fmax(largest, std::fabs(residual[i][0]));
    }
    std::printf("largest residual |a x - b|: %g\n", largest);

    TarnVector<TarnString> results;
    TarnMatrix dense;
    TarnLowerTriangularMatrix lower;
    TarnUpperTriangularMatrix upper;
    const bool densePassed = dense.test(results);
    const bool lowerPassed = lower.test(results);
    const bool upperPassed = upper.test(results);
    const bool passed = densePassed && lowerPassed && upperPassed;
    for (unsigned i = 0; i < results.size(); ++i) {
        std::printf("%s\n", results[i].c_str());
    }
    std::printf("self-tests %s\n", passed ? "passed" : "FAILED");
}
