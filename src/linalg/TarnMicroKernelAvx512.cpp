// The AVX-512 micro-kernel: an 8 x 16 tile, two eight-lane registers per row. Compiled with -mavx512f.
#include "foundation/TarnProcessor.h"
#include "linalg/TarnMicroKernel.h"

#if TARN_X86_KERNELS
#include <immintrin.h>

namespace tarn {
namespace linalg {
namespace {

constexpr int kRows = 8;
constexpr int kCols = 16;

// Per step: the step's sixteen columns in two registers, and per row one broadcast, two multiplies
// and two adds into the row's own registers.
TARN_KERNEL_ENTRY void tileAvx512(std::ptrdiff_t depth, const double *a, const double *b, std::ptrdiff_t ldb,
                                  double *c, std::ptrdiff_t ldc, bool accumulate) {
    __m512d low[kRows];
    __m512d high[kRows];
#pragma GCC unroll 8
    for (int r = 0; r < kRows; ++r) {
        low[r] = accumulate ? _mm512_loadu_pd(c + r * ldc) : _mm512_setzero_pd();
        high[r] = accumulate ? _mm512_loadu_pd(c + r * ldc + 8) : _mm512_setzero_pd();
    }
    for (std::ptrdiff_t k = 0; k < depth; ++k, a += kRows, b += ldb) {
        const __m512d bLow = _mm512_loadu_pd(b);
        const __m512d bHigh = _mm512_loadu_pd(b + 8);
#pragma GCC unroll 8
        for (int r = 0; r < kRows; ++r) {
            const __m512d factor = _mm512_set1_pd(a[r]);
            low[r] = _mm512_add_pd(low[r], _mm512_mul_pd(factor, bLow));
            high[r] = _mm512_add_pd(high[r], _mm512_mul_pd(factor, bHigh));
        }
    }
#pragma GCC unroll 8
    for (int r = 0; r < kRows; ++r) {
        _mm512_storeu_pd(c + r * ldc, low[r]);
        _mm512_storeu_pd(c + r * ldc + 8, high[r]);
    }
}

} // namespace

const MicroKernel microKernelAvx512 = {kRows, kCols, tileAvx512};

} // namespace linalg
} // namespace tarn
#else
namespace tarn {
namespace linalg {
const MicroKernel microKernelAvx512 = {1, 1, nullptr};
} // namespace linalg
} // namespace tarn
#endif
