// The SSE2 micro-kernel: a 4 x 4 tile in two-lane registers. Compiled with -msse2.
#include "foundation/TarnProcessor.h"
#include "linalg/TarnMicroKernel.h"

#if TARN_X86_KERNELS
#include <emmintrin.h>

namespace tarn {
namespace linalg {
namespace {

constexpr int kRows = 4;
constexpr int kCols = 4;

// SSE2 has no broadcast load. Instead a register holds rows r and r + 1 of one step, and each
// pair of columns comes straight and swapped: straight[r/2][p] gathers (c[r][2p], c[r+1][2p+1]),
// swapped[r/2][p] gathers (c[r][2p+1], c[r+1][2p]). Every element still gets its own terms in
// order; only the lanes it lives in change.
TARN_KERNEL_ENTRY void tileSse2(std::ptrdiff_t depth, const double *a, const double *b, std::ptrdiff_t ldb,
                                double *c, std::ptrdiff_t ldc, bool accumulate) {
    __m128d straight[2][2];
    __m128d swapped[2][2];
#pragma GCC unroll 2
    for (int h = 0; h < 2; ++h) {
#pragma GCC unroll 2
        for (int p = 0; p < 2; ++p) {
            const __m128d upper = accumulate ? _mm_loadu_pd(c + 2 * h * ldc + 2 * p) : _mm_setzero_pd();
            const __m128d lower = accumulate ? _mm_loadu_pd(c + (2 * h + 1) * ldc + 2 * p) : _mm_setzero_pd();
            straight[h][p] = _mm_move_sd(lower, upper);
            swapped[h][p] = _mm_shuffle_pd(upper, lower, 1);
        }
    }
    for (std::ptrdiff_t k = 0; k < depth; ++k, a += kRows, b += ldb) {
        const __m128d b0 = _mm_loadu_pd(b);
        const __m128d b1 = _mm_loadu_pd(b + 2);
        const __m128d s0 = _mm_shuffle_pd(b0, b0, 1);
        const __m128d s1 = _mm_shuffle_pd(b1, b1, 1);
#pragma GCC unroll 2
        for (int h = 0; h < 2; ++h) {
            const __m128d rows = _mm_loadu_pd(a + 2 * h);
            straight[h][0] = _mm_add_pd(straight[h][0], _mm_mul_pd(rows, b0));
            swapped[h][0] = _mm_add_pd(swapped[h][0], _mm_mul_pd(rows, s0));
            straight[h][1] = _mm_add_pd(straight[h][1], _mm_mul_pd(rows, b1));
            swapped[h][1] = _mm_add_pd(swapped[h][1], _mm_mul_pd(rows, s1));
        }
    }
#pragma GCC unroll 2
    for (int h = 0; h < 2; ++h) {
#pragma GCC unroll 2
        for (int p = 0; p < 2; ++p) {
            _mm_storeu_pd(c + 2 * h * ldc + 2 * p, _mm_unpacklo_pd(straight[h][p], swapped[h][p]));
            _mm_storeu_pd(c + (2 * h + 1) * ldc + 2 * p, _mm_unpackhi_pd(swapped[h][p], straight[h][p]));
        }
    }
}

} // namespace

const MicroKernel microKernelSse2 = {kRows, kCols, tileSse2};

} // namespace linalg
} // namespace tarn
#else
namespace tarn {
namespace linalg {
const MicroKernel microKernelSse2 = {1, 1, nullptr};
} // namespace linalg
} // namespace tarn
#endif
