// Shared inputs of the matrix comparison: the same random matrices for every side, row-major.
#pragma once

#include <random>
#include <vector>

namespace tarn_compare {

/// A rows x cols row-major matrix of uniform values in [-1, 1) from a fixed seed; with `dominant`,
/// rows is added to the diagonal so that the system is well conditioned.
inline std::vector<double> randomMatrix(int rows, int cols, bool dominant, unsigned seed) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    std::vector<double> matrix(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols));
    for (int i = 0; i < rows; ++i) {
        for (int j = 0; j < cols; ++j) {
            matrix[static_cast<std::size_t>(i) * cols + j] =
                uniform(generator) + (dominant && i == j ? rows : 0.0);
        }
    }
    return matrix;
}

/// Floating-point operations of an n x n product and of an n x n solve with one right-hand side.
inline double productFlops(int n) {
    return 2.0 * n * n * n;
}
inline double solveFlops(int n) {
    const double order = n;
    return 2.0 / 3.0 * order * order * order + 2.0 * order * order;
}

/// The sizes each workload is measured at.
constexpr int kProductSizes[] = {64, 256, 512};
constexpr int kSolveSizes[] = {10, 100, 500};

/// Registers the Eigen side, compiled with default flags (SSE2 only on x86-64) or for this
/// processor (-march=native, with FMA).
__attribute__((visibility("default"))) void registerEigenBaseline();
__attribute__((visibility("default"))) void registerEigenNative();

} // namespace tarn_compare
