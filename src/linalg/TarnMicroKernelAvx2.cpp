// The AVX2 micro-kernel: a 6 x 8 tile, two four-lane registers per row. Compiled with -mavx2.
#include "foundation/TarnProcessor.h"
#include "linalg/TarnMicroKernel.h"

#if TARN_X86_KERNELS
#include <immintrin.h>

namespace tarn {
namespace linalg {
namespace {

constexpr int kRows = 6;
constexpr int kCols = 8;

// Per step: the step's eight columns in two registers, and per row one broadcast, two multiplies
// and two adds into the row's own registers.
TARN_KERNEL_ENTRY void tileAvx2(std::ptrdiff_t depth, const double *a, const double *b, std::ptrdiff_t ldb,
                                double *c, std::ptrdiff_t ldc, bool accumulate) {
    __m256d low[kRows];
    __m256d high[kRows];
#pragma GCC unroll 6
    for (int r = 0; r < kRows; ++r) {
        low[r] = accumulate ? _mm256_loadu_pd(c + r * ldc) : _mm256_setzero_pd();
        high[r] = accumulate ? _mm256_loadu_pd(c + r * ldc + 4) : _mm256_setzero_pd();
    }
    for (std::ptrdiff_t k = 0; k < depth; ++k, a += kRows, b += ldb) {
        const __m256d bLow = _mm256_loadu_pd(b);
        const __m256d bHigh = _mm256_loadu_pd(b + 4);
#pragma GCC unroll 6
        for (int r = 0; r < kRows; ++r) {
            const __m256d factor = _mm256_broadcast_sd(a + r);
            low[r] = _mm256_add_pd(low[r], _mm256_mul_pd(factor, bLow));
            high[r] = _mm256_add_pd(high[r], _mm256_mul_pd(factor, bHigh));
        }
    }
#pragma GCC unroll 6
    for (int r = 0; r < kRows; ++r) {
        _mm256_storeu_pd(c + r * ldc, low[r]);
        _mm256_storeu_pd(c + r * ldc + 4, high[r]);
    }
}

} // namespace

const MicroKernel microKernelAvx2 = {kRows, kCols, tileAvx2};

} // namespace linalg
} // namespace tarn
#else
namespace tarn {
namespace linalg {
const MicroKernel microKernelAvx2 = {1, 1, nullptr};
} // namespace linalg
} // namespace tarn
#endif
