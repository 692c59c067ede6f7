// The dense product and the scaled row update, in a portable form, an AVX2 form and an AVX-512 form.
#include "linalg/TarnMatrixKernels.h"

#include <algorithm>
#include <cstddef>
#include <memory>

#if defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__))
#define TARN_HAVE_AVX2_KERNELS 1
#include <immintrin.h>
#define TARN_TARGET_AVX2 __attribute__((target("avx2")))
#define TARN_TARGET_AVX512 __attribute__((target("avx512f")))
#else
#define TARN_HAVE_AVX2_KERNELS 0
#endif

namespace tarn {
namespace linalg {
namespace {

// The product works on a panel of this many result columns at a time: the right factor's columns
// are copied into a contiguous scratch panel, k-major, so that the inner loop reads one short
// contiguous run per k. Columns beyond the matrix are padded with 0.0 and their lanes discarded.
constexpr int kPanelWidth = 8;
// Rows of the left factor that one call of a panel kernel handles.
constexpr int kRowBlock = 4;
// The AVX-512 kernel's panel (two 8-lane registers per row) and row block: sixteen running sums
// in registers, and each pass over the left factor serves twice as many columns.
constexpr int kWidePanelWidth = 16;
constexpr int kWideRowBlock = 8;

// Computes blockRows (1 to kRowBlock) rows of one panel: out[r * kPanelWidth + q] becomes the sum
// over k rising from 0.0 of a[r * p + k] * panel[k * kPanelWidth + q].
using PanelKernel = void (*)(const double *a, int blockRows, std::ptrdiff_t p, const double *panel,
                             double *out);

template <int Rows>
void panelRowsPortable(const double *a, std::ptrdiff_t p, const double *panel, double *out) {
    double sums[Rows][kPanelWidth] = {};
    for (std::ptrdiff_t k = 0; k < p; ++k) {
        const double *b = panel + k * kPanelWidth;
        for (int r = 0; r < Rows; ++r) {
            const double factor = a[r * p + k];
            for (int q = 0; q < kPanelWidth; ++q) {
                sums[r][q] += factor * b[q];
            }
        }
    }
    std::copy(&sums[0][0], &sums[0][0] + Rows * kPanelWidth, out);
}

void panelKernelPortable(const double *a, int blockRows, std::ptrdiff_t p, const double *panel, double *out) {
    // Pairs of rows keep the sixteen running sums within the registers of any 64-bit target.
    int r = 0;
    for (; r + 2 <= blockRows; r += 2) {
        panelRowsPortable<2>(a + r * p, p, panel, out + r * kPanelWidth);
    }
    if (r < blockRows) {
        panelRowsPortable<1>(a + r * p, p, panel, out + r * kPanelWidth);
    }
}

#if TARN_HAVE_AVX2_KERNELS
// Each of the eight columns of the panel is one lane of two 4-lane registers; each row keeps its
// own pair of registers. Per k: one broadcast of a[r][k], one multiply and one add per register.
template <int Rows>
TARN_TARGET_AVX2 void panelRowsAvx2(const double *a, std::ptrdiff_t p, const double *panel, double *out) {
    __m256d low[Rows];
    __m256d high[Rows];
#pragma GCC unroll 4
    for (int r = 0; r < Rows; ++r) {
        low[r] = _mm256_setzero_pd();
        high[r] = _mm256_setzero_pd();
    }
    for (std::ptrdiff_t k = 0; k < p; ++k) {
        const __m256d bLow = _mm256_loadu_pd(panel + k * kPanelWidth);
        const __m256d bHigh = _mm256_loadu_pd(panel + k * kPanelWidth + 4);
#pragma GCC unroll 4
        for (int r = 0; r < Rows; ++r) {
            const __m256d factor = _mm256_broadcast_sd(a + r * p + k);
            low[r] = _mm256_add_pd(low[r], _mm256_mul_pd(factor, bLow));
            high[r] = _mm256_add_pd(high[r], _mm256_mul_pd(factor, bHigh));
        }
    }
#pragma GCC unroll 4
    for (int r = 0; r < Rows; ++r) {
        _mm256_storeu_pd(out + r * kPanelWidth, low[r]);
        _mm256_storeu_pd(out + r * kPanelWidth + 4, high[r]);
    }
}

TARN_TARGET_AVX2 void panelKernelAvx2(const double *a, int blockRows, std::ptrdiff_t p, const double *panel,
                                      double *out) {
    switch (blockRows) {
    case 4:
        panelRowsAvx2<4>(a, p, panel, out);
        break;
    case 3:
        panelRowsAvx2<3>(a, p, panel, out);
        break;
    case 2:
        panelRowsAvx2<2>(a, p, panel, out);
        break;
    default:
        panelRowsAvx2<1>(a, p, panel, out);
        break;
    }
}
#endif

// Copies columns firstCol .. firstCol + width - 1 of b (p x n) into the k-major panel of Width
// lanes per k, padding the lanes beyond width with 0.0.
template <int Width>
void packPanel(const double *b, std::ptrdiff_t p, std::ptrdiff_t n, std::ptrdiff_t firstCol, int width,
               double *panel) {
    for (std::ptrdiff_t k = 0; k < p; ++k) {
        const double *source = b + k * n + firstCol;
        double *target = panel + k * Width;
        std::copy(source, source + width, target);
        std::fill(target + width, target + Width, 0.0);
    }
}

// The product panel by panel: Width result columns at a time, RowBlock rows per kernel call.
template <int Width, int RowBlock>
void multiplyWith(PanelKernel kernel, const double *a, const double *b, double *c, int m, int p, int n) {
    if (m <= 0 || n <= 0) {
        return;
    }
    const std::ptrdiff_t depth = std::max(p, 0);
    const std::ptrdiff_t width = n;
    std::unique_ptr<double[]> panel(new double[static_cast<std::size_t>(depth) * Width]);
    double block[RowBlock * Width];
    for (std::ptrdiff_t firstCol = 0; firstCol < width; firstCol += Width) {
        const int panelCols = static_cast<int>(std::min<std::ptrdiff_t>(Width, width - firstCol));
        packPanel<Width>(b, depth, width, firstCol, panelCols, panel.get());
        for (int firstRow = 0; firstRow < m; firstRow += RowBlock) {
            const int blockRows = std::min(RowBlock, m - firstRow);
            kernel(a + firstRow * depth, blockRows, depth, panel.get(), block);
            for (int r = 0; r < blockRows; ++r) {
                const double *source = block + r * Width;
                std::copy(source, source + panelCols, c + (firstRow + r) * width + firstCol);
            }
        }
    }
}

#if TARN_HAVE_AVX2_KERNELS
// Each of the sixteen columns of the wide panel is one lane of two 8-lane registers; each row
// keeps its own pair. Per k: one broadcast of a[r][k], one multiply and one add per register,
// exactly the operations of the AVX2 kernel in wider lanes.
template <int Rows>
TARN_TARGET_AVX512 void panelRowsAvx512(const double *a, std::ptrdiff_t p, const double *panel, double *out) {
    __m512d low[Rows];
    __m512d high[Rows];
#pragma GCC unroll 8
    for (int r = 0; r < Rows; ++r) {
        low[r] = _mm512_setzero_pd();
        high[r] = _mm512_setzero_pd();
    }
    for (std::ptrdiff_t k = 0; k < p; ++k) {
        const __m512d bLow = _mm512_loadu_pd(panel + k * kWidePanelWidth);
        const __m512d bHigh = _mm512_loadu_pd(panel + k * kWidePanelWidth + 8);
#pragma GCC unroll 8
        for (int r = 0; r < Rows; ++r) {
            const __m512d factor = _mm512_set1_pd(a[r * p + k]);
            low[r] = _mm512_add_pd(low[r], _mm512_mul_pd(factor, bLow));
            high[r] = _mm512_add_pd(high[r], _mm512_mul_pd(factor, bHigh));
        }
    }
#pragma GCC unroll 8
    for (int r = 0; r < Rows; ++r) {
        _mm512_storeu_pd(out + r * kWidePanelWidth, low[r]);
        _mm512_storeu_pd(out + r * kWidePanelWidth + 8, high[r]);
    }
}

TARN_TARGET_AVX512 void panelKernelAvx512(const double *a, int blockRows, std::ptrdiff_t p,
                                          const double *panel, double *out) {
    switch (blockRows) {
    case 8:
        panelRowsAvx512<8>(a, p, panel, out);
        break;
    case 7:
        panelRowsAvx512<7>(a, p, panel, out);
        break;
    case 6:
        panelRowsAvx512<6>(a, p, panel, out);
        break;
    case 5:
        panelRowsAvx512<5>(a, p, panel, out);
        break;
    case 4:
        panelRowsAvx512<4>(a, p, panel, out);
        break;
    case 3:
        panelRowsAvx512<3>(a, p, panel, out);
        break;
    case 2:
        panelRowsAvx512<2>(a, p, panel, out);
        break;
    default:
        panelRowsAvx512<1>(a, p, panel, out);
        break;
    }
}
#endif

} // namespace

void multiplyPortable(const double *a, const double *b, double *c, int m, int p, int n) {
    multiplyWith<kPanelWidth, kRowBlock>(panelKernelPortable, a, b, c, m, p, n);
}

void addScaledTermsPortable(double *const *y, int targets, const double *const *x, const double *factors,
                            int terms, int count) {
    for (int c = 0; c < targets; ++c) {
        double *row = y[c];
        const double *rowFactors = factors + c * kMaxTerms;
        for (int i = 0; i < count; ++i) {
            double sum = row[i];
            for (int t = 0; t < terms; ++t) {
                sum += x[t][i] * rowFactors[t];
            }
            row[i] = sum;
        }
    }
}

#if TARN_HAVE_AVX2_KERNELS
void multiplyAvx2(const double *a, const double *b, double *c, int m, int p, int n) {
    multiplyWith<kPanelWidth, kRowBlock>(panelKernelAvx2, a, b, c, m, p, n);
}

void multiplyAvx512(const double *a, const double *b, double *c, int m, int p, int n) {
    multiplyWith<kWidePanelWidth, kWideRowBlock>(panelKernelAvx512, a, b, c, m, p, n);
}

namespace {

// Four elements of each target per register: each x[t] run is loaded once and used for every
// target, and each target's register receives the terms in order. The counts are template
// arguments, so that the loops unroll and the small arrays below live in registers only.
template <int Targets, int Terms>
TARN_TARGET_AVX2 void addTermsAvx2(double *const *y, const double *const *x, const double *factors,
                                   int count) {
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        __m256d sources[Terms];
#pragma GCC unroll 4
        for (int t = 0; t < Terms; ++t) {
            sources[t] = _mm256_loadu_pd(x[t] + i);
        }
#pragma GCC unroll 4
        for (int c = 0; c < Targets; ++c) {
            __m256d sum = _mm256_loadu_pd(y[c] + i);
#pragma GCC unroll 4
            for (int t = 0; t < Terms; ++t) {
                const __m256d factor = _mm256_broadcast_sd(factors + c * kMaxTerms + t);
                sum = _mm256_add_pd(sum, _mm256_mul_pd(sources[t], factor));
            }
            _mm256_storeu_pd(y[c] + i, sum);
        }
    }
    if (i < count) {
        const double *tails[kMaxTerms] = {};
        double *tailTargets[kMaxTargets] = {};
        for (int t = 0; t < Terms; ++t) {
            tails[t] = x[t] + i;
        }
        for (int c = 0; c < Targets; ++c) {
            tailTargets[c] = y[c] + i;
        }
        addScaledTermsPortable(tailTargets, Targets, tails, factors, Terms, count - i);
    }
}

// The same in eight lanes per register; runs shorter than eight go through the AVX2 form.
template <int Targets, int Terms>
TARN_TARGET_AVX512 void addTermsAvx512(double *const *y, const double *const *x, const double *factors,
                                       int count) {
    // The factors are broadcast once, into registers: the stores to y could otherwise, for all the
    // compiler knows, change them, and each step would load them again.
    __m512d broadcast[Targets][Terms];
#pragma GCC unroll 4
    for (int c = 0; c < Targets; ++c) {
#pragma GCC unroll 4
        for (int t = 0; t < Terms; ++t) {
            broadcast[c][t] = _mm512_set1_pd(factors[c * kMaxTerms + t]);
        }
    }
    int i = 0;
    for (; i + 8 <= count; i += 8) {
        __m512d sources[Terms];
#pragma GCC unroll 4
        for (int t = 0; t < Terms; ++t) {
            sources[t] = _mm512_loadu_pd(x[t] + i);
        }
#pragma GCC unroll 4
        for (int c = 0; c < Targets; ++c) {
            __m512d sum = _mm512_loadu_pd(y[c] + i);
#pragma GCC unroll 4
            for (int t = 0; t < Terms; ++t) {
                sum = _mm512_add_pd(sum, _mm512_mul_pd(sources[t], broadcast[c][t]));
            }
            _mm512_storeu_pd(y[c] + i, sum);
        }
    }
    if (i < count) {
        const double *tails[kMaxTerms] = {};
        double *tailTargets[kMaxTargets] = {};
        for (int t = 0; t < Terms; ++t) {
            tails[t] = x[t] + i;
        }
        for (int c = 0; c < Targets; ++c) {
            tailTargets[c] = y[c] + i;
        }
        addTermsAvx2<Targets, Terms>(tailTargets, tails, factors, count - i);
    }
}

using TermsKernel = void (*)(double *const *y, const double *const *x, const double *factors, int count);

// The kernel of one vector width for a count of targets and terms: Wide picks AVX-512.
template <bool Wide, int Targets, int Terms>
constexpr TermsKernel termsKernelOf() {
    if constexpr (Wide) {
        return addTermsAvx512<Targets, Terms>;
    } else {
        return addTermsAvx2<Targets, Terms>;
    }
}

template <bool Wide, int Targets>
constexpr TermsKernel termsKernel(int terms) {
    return terms == 1   ? termsKernelOf<Wide, Targets, 1>()
           : terms == 2 ? termsKernelOf<Wide, Targets, 2>()
           : terms == 3 ? termsKernelOf<Wide, Targets, 3>()
                        : termsKernelOf<Wide, Targets, 4>();
}

template <bool Wide>
TermsKernel termsKernel(int targets, int terms) {
    return targets == 1   ? termsKernel<Wide, 1>(terms)
           : targets == 2 ? termsKernel<Wide, 2>(terms)
           : targets == 3 ? termsKernel<Wide, 3>(terms)
                          : termsKernel<Wide, 4>(terms);
}

} // namespace

void addScaledTermsAvx2(double *const *y, int targets, const double *const *x, const double *factors,
                        int terms, int count) {
    termsKernel<false>(targets, terms)(y, x, factors, count);
}

void addScaledTermsAvx512(double *const *y, int targets, const double *const *x, const double *factors,
                          int terms, int count) {
    termsKernel<true>(targets, terms)(y, x, factors, count);
}

bool hasAvx2() {
    static const bool available = [] {
        __builtin_cpu_init();
        return __builtin_cpu_supports("avx2") != 0;
    }();
    return available;
}

bool hasAvx512() {
    // The AVX-512 forms hand their tails to the AVX2 forms, so they need both.
    static const bool available = [] {
        __builtin_cpu_init();
        return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx2") != 0;
    }();
    return available;
}
#else
void multiplyAvx2(const double *a, const double *b, double *c, int m, int p, int n) {
    multiplyPortable(a, b, c, m, p, n);
}

void multiplyAvx512(const double *a, const double *b, double *c, int m, int p, int n) {
    multiplyPortable(a, b, c, m, p, n);
}

void addScaledTermsAvx2(double *const *y, int targets, const double *const *x, const double *factors,
                        int terms, int count) {
    addScaledTermsPortable(y, targets, x, factors, terms, count);
}

void addScaledTermsAvx512(double *const *y, int targets, const double *const *x, const double *factors,
                          int terms, int count) {
    addScaledTermsPortable(y, targets, x, factors, terms, count);
}

bool hasAvx2() {
    return false;
}

bool hasAvx512() {
    return false;
}
#endif

void multiply(const double *a, const double *b, double *c, int m, int p, int n) {
    if (hasAvx512()) {
        multiplyAvx512(a, b, c, m, p, n);
    } else if (hasAvx2()) {
        multiplyAvx2(a, b, c, m, p, n);
    } else {
        multiplyPortable(a, b, c, m, p, n);
    }
}

void addScaledTerms(double *const *y, int targets, const double *const *x, const double *factors, int terms,
                    int count) {
    if (hasAvx512()) {
        addScaledTermsAvx512(y, targets, x, factors, terms, count);
    } else if (hasAvx2()) {
        addScaledTermsAvx2(y, targets, x, factors, terms, count);
    } else {
        addScaledTermsPortable(y, targets, x, factors, terms, count);
    }
}

void addScaled(double *y, const double *x, double factor, int count) {
    const double factors[kMaxTerms] = {factor};
    addScaledTerms(&y, 1, &x, factors, 1, count);
}

} // namespace linalg
} // namespace tarn
