// The Eigen side of the matrix comparison, compiled twice: with default flags and for this
// processor. One thread: Eigen runs in parallel only with OpenMP, which these builds leave out.
#define EIGEN_DONT_PARALLELIZE
#include "TarnCompareMatrices.h"

#include <Eigen/Dense>
#include <benchmark/benchmark.h>

#include <string>

namespace tarn_compare {
namespace {

Eigen::MatrixXd toEigen(const std::vector<double> &rowMajor, int rows, int cols) {
    Eigen::MatrixXd matrix(rows, cols);
    for (int i = 0; i < rows; ++i) {
        for (int j = 0; j < cols; ++j) {
            matrix(i, j) = rowMajor[static_cast<std::size_t>(i) * cols + j];
        }
    }
    return matrix;
}

void reportFlops(benchmark::State &state, double flops) {
    state.counters["GFLOPS"] = benchmark::Counter(flops, benchmark::Counter::kIsIterationInvariantRate);
}

void eigenTimes(benchmark::State &state, int n) {
    const Eigen::MatrixXd a = toEigen(randomMatrix(n, n, false, 1), n, n);
    const Eigen::MatrixXd b = toEigen(randomMatrix(n, n, false, 2), n, n);
    Eigen::MatrixXd c(n, n);
    for (auto _ : state) {
        c.noalias() = a * b;
        benchmark::DoNotOptimize(c.data());
        benchmark::ClobberMemory();
    }
    reportFlops(state, productFlops(n));
}

// Factorization and substitution per call, as TarnMatrix::solve does.
void eigenSolve(benchmark::State &state, int n) {
    const Eigen::MatrixXd a = toEigen(randomMatrix(n, n, true, 3), n, n);
    const Eigen::VectorXd b = toEigen(randomMatrix(n, 1, false, 4), n, 1);
    Eigen::VectorXd x(n);
    for (auto _ : state) {
        const Eigen::PartialPivLU<Eigen::MatrixXd> lu(a);
        x = lu.solve(b);
        benchmark::DoNotOptimize(x.data());
        benchmark::ClobberMemory();
    }
    if ((a * x - b).norm() > 1e-9 * b.norm()) {
        state.SkipWithError("Eigen's solution has a large residual");
    }
    reportFlops(state, solveFlops(n));
}

void registerEigen(const std::string &side) {
    for (const int n : kProductSizes) {
        benchmark::RegisterBenchmark(("times n=" + std::to_string(n) + "/" + side).c_str(),
                                     [n](benchmark::State &s) { eigenTimes(s, n); })
            ->Unit(benchmark::kMicrosecond);
    }
    for (const int n : kSolveSizes) {
        benchmark::RegisterBenchmark(("solve n=" + std::to_string(n) + "/" + side).c_str(),
                                     [n](benchmark::State &s) { eigenSolve(s, n); })
            ->Unit(benchmark::kMicrosecond);
    }
}

} // namespace

#if defined(TARN_EIGEN_NATIVE)
void registerEigenNative() {
    registerEigen("Eigen -march=native");
}
#else
void registerEigenBaseline() {
    registerEigen("Eigen default flags");
}
#endif

} // namespace tarn_compare
