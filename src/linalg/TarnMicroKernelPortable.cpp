// The portable micro-kernel: a 4 x 4 tile in plain C++.
#include "linalg/TarnMicroKernel.h"

namespace tarn {
namespace linalg {
namespace {

constexpr int kRows = 4;
constexpr int kCols = 4;

void tilePortable(std::ptrdiff_t depth, const double *a, const double *b, std::ptrdiff_t ldb, double *c,
                  std::ptrdiff_t ldc, bool accumulate) {
    double sums[kRows][kCols] = {};
    for (int r = 0; r < kRows && accumulate; ++r) {
        for (int q = 0; q < kCols; ++q) {
            sums[r][q] = c[r * ldc + q];
        }
    }
    for (std::ptrdiff_t k = 0; k < depth; ++k, a += kRows, b += ldb) {
#pragma GCC unroll 4
        for (int r = 0; r < kRows; ++r) {
#pragma GCC unroll 4
            for (int q = 0; q < kCols; ++q) {
                sums[r][q] += a[r] * b[q];
            }
        }
    }
    for (int r = 0; r < kRows; ++r) {
        for (int q = 0; q < kCols; ++q) {
            c[r * ldc + q] = sums[r][q];
        }
    }
}

} // namespace

const MicroKernel microKernelPortable = {kRows, kCols, tilePortable};

} // namespace linalg
} // namespace tarn
