// The dense product and the scaled row update, in a portable form, an AVX2 form and an AVX-512 form.
#include "linalg/TarnMatrixKernels.h"

#include <algorithm>
#include <atomic>
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

// Where a panel kernel reads: `a` holds the kernel's rows of the left factor, lda apart, and
// `panel` the panel's p rows of Width columns, ldPanel apart (Width when packed).
struct PanelSource {
    const double *a;
    std::ptrdiff_t lda;
    const double *panel;
    std::ptrdiff_t ldPanel;
};

// Computes blockRows (1 to the row block) rows of one panel of Width columns: out[r * ldOut + q]
// becomes the sum over k rising from 0.0 of a[r * lda + k] * panel[k * ldPanel + q].
using PanelKernel = void (*)(const PanelSource &source, int blockRows, std::ptrdiff_t p, double *out,
                             std::ptrdiff_t ldOut);

template <int Rows>
void panelRowsPortable(const PanelSource &source, std::ptrdiff_t p, double *out, std::ptrdiff_t ldOut) {
    double sums[Rows][kPanelWidth] = {};
    for (std::ptrdiff_t k = 0; k < p; ++k) {
        const double *b = source.panel + k * source.ldPanel;
        for (int r = 0; r < Rows; ++r) {
            const double factor = source.a[r * source.lda + k];
            for (int q = 0; q < kPanelWidth; ++q) {
                sums[r][q] += factor * b[q];
            }
        }
    }
    for (int r = 0; r < Rows; ++r) {
        std::copy(sums[r], sums[r] + kPanelWidth, out + r * ldOut);
    }
}

void panelKernelPortable(const PanelSource &source, int blockRows, std::ptrdiff_t p, double *out,
                         std::ptrdiff_t ldOut) {
    // Pairs of rows keep the sixteen running sums within the registers of any 64-bit target.
    PanelSource rows = source;
    int r = 0;
    for (; r + 2 <= blockRows; r += 2) {
        rows.a = source.a + r * source.lda;
        panelRowsPortable<2>(rows, p, out + r * ldOut, ldOut);
    }
    if (r < blockRows) {
        rows.a = source.a + r * source.lda;
        panelRowsPortable<1>(rows, p, out + r * ldOut, ldOut);
    }
}

#if TARN_HAVE_AVX2_KERNELS
// Each of the eight columns of the panel is one lane of two 4-lane registers; each row keeps its
// own pair of registers. Per k: one broadcast of a[r][k], one multiply and one add per register.
template <int Rows>
TARN_TARGET_AVX2 void panelRowsAvx2(const PanelSource &source, std::ptrdiff_t p, double *out,
                                    std::ptrdiff_t ldOut) {
    const double *a = source.a;
    const std::ptrdiff_t lda = source.lda;
    __m256d low[Rows];
    __m256d high[Rows];
#pragma GCC unroll 4
    for (int r = 0; r < Rows; ++r) {
        low[r] = _mm256_setzero_pd();
        high[r] = _mm256_setzero_pd();
    }
    for (std::ptrdiff_t k = 0; k < p; ++k) {
        const double *b = source.panel + k * source.ldPanel;
        const __m256d bLow = _mm256_loadu_pd(b);
        const __m256d bHigh = _mm256_loadu_pd(b + 4);
#pragma GCC unroll 4
        for (int r = 0; r < Rows; ++r) {
            const __m256d factor = _mm256_broadcast_sd(a + r * lda + k);
            low[r] = _mm256_add_pd(low[r], _mm256_mul_pd(factor, bLow));
            high[r] = _mm256_add_pd(high[r], _mm256_mul_pd(factor, bHigh));
        }
    }
#pragma GCC unroll 4
    for (int r = 0; r < Rows; ++r) {
        _mm256_storeu_pd(out + r * ldOut, low[r]);
        _mm256_storeu_pd(out + r * ldOut + 4, high[r]);
    }
}

TARN_TARGET_AVX2 void panelKernelAvx2(const PanelSource &source, int blockRows, std::ptrdiff_t p, double *out,
                                      std::ptrdiff_t ldOut) {
    switch (blockRows) {
    case 4:
        panelRowsAvx2<4>(source, p, out, ldOut);
        break;
    case 3:
        panelRowsAvx2<3>(source, p, out, ldOut);
        break;
    case 2:
        panelRowsAvx2<2>(source, p, out, ldOut);
        break;
    default:
        panelRowsAvx2<1>(source, p, out, ldOut);
        break;
    }
}
#endif

// Copies columns firstCol .. firstCol + width - 1 of b (p rows, ldb apart) into the k-major panel
// of Width lanes per k, padding the lanes beyond width with 0.0.
template <int Width>
void packPanel(const double *b, std::ptrdiff_t p, std::ptrdiff_t ldb, std::ptrdiff_t firstCol, int width,
               double *panel) {
    for (std::ptrdiff_t k = 0; k < p; ++k) {
        const double *source = b + k * ldb + firstCol;
        double *target = panel + k * Width;
        std::copy(source, source + width, target);
        std::fill(target + width, target + Width, 0.0);
    }
}

// The product panel by panel: Width result columns at a time, RowBlock rows per kernel call. Each
// panel is packed into `packed` (p x Width doubles) when that is given; otherwise the kernel reads
// it where it lies, ldb apart, past n for a narrow one. A full panel's sums go straight into c, a
// narrow one's through a local block.
template <int Width, int RowBlock>
void multiplyWith(PanelKernel kernel, const StridedProduct &product, double *packed) {
    if (product.m <= 0 || product.n <= 0) {
        return;
    }
    const std::ptrdiff_t depth = std::max(product.p, 0);
    double block[RowBlock * Width];
    for (std::ptrdiff_t firstCol = 0; firstCol < product.n; firstCol += Width) {
        const int panelCols = static_cast<int>(std::min<std::ptrdiff_t>(Width, product.n - firstCol));
        PanelSource source{product.a, product.lda, product.b + firstCol, product.ldb};
        if (packed != nullptr) {
            packPanel<Width>(product.b, depth, product.ldb, firstCol, panelCols, packed);
            source.panel = packed;
            source.ldPanel = Width;
        }
        for (int firstRow = 0; firstRow < product.m; firstRow += RowBlock) {
            const int blockRows = std::min(RowBlock, product.m - firstRow);
            source.a = product.a + firstRow * product.lda;
            double *target = product.c + firstRow * product.ldc + firstCol;
            if (panelCols == Width) {
                kernel(source, blockRows, depth, target, product.ldc);
                continue;
            }
            kernel(source, blockRows, depth, block, Width);
            for (int r = 0; r < blockRows; ++r) {
                const double *row = block + r * Width;
                std::copy(row, row + panelCols, target + r * product.ldc);
            }
        }
    }
}

// `multiply` through multiplyWith: contiguous operands, every panel packed into one allocation.
template <int Width, int RowBlock>
void multiplyPacked(PanelKernel kernel, const double *a, const double *b, double *c, int m, int p, int n) {
    if (m <= 0 || n <= 0) {
        return;
    }
    const std::ptrdiff_t depth = std::max(p, 0);
    std::unique_ptr<double[]> panel(new double[static_cast<std::size_t>(depth) * Width]);
    const StridedProduct product{a, depth, b, n, c, n, m, p, n};
    multiplyWith<Width, RowBlock>(kernel, product, panel.get());
}

#if TARN_HAVE_AVX2_KERNELS
// Each of the sixteen columns of the wide panel is one lane of two 8-lane registers; each row
// keeps its own pair. Per k: one broadcast of a[r][k], one multiply and one add per register,
// exactly the operations of the AVX2 kernel in wider lanes.
template <int Rows>
TARN_TARGET_AVX512 void panelRowsAvx512(const PanelSource &source, std::ptrdiff_t p, double *out,
                                        std::ptrdiff_t ldOut) {
    const double *a = source.a;
    const std::ptrdiff_t lda = source.lda;
    __m512d low[Rows];
    __m512d high[Rows];
#pragma GCC unroll 8
    for (int r = 0; r < Rows; ++r) {
        low[r] = _mm512_setzero_pd();
        high[r] = _mm512_setzero_pd();
    }
    for (std::ptrdiff_t k = 0; k < p; ++k) {
        const double *b = source.panel + k * source.ldPanel;
        const __m512d bLow = _mm512_loadu_pd(b);
        const __m512d bHigh = _mm512_loadu_pd(b + 8);
#pragma GCC unroll 8
        for (int r = 0; r < Rows; ++r) {
            const __m512d factor = _mm512_set1_pd(a[r * lda + k]);
            low[r] = _mm512_add_pd(low[r], _mm512_mul_pd(factor, bLow));
            high[r] = _mm512_add_pd(high[r], _mm512_mul_pd(factor, bHigh));
        }
    }
#pragma GCC unroll 8
    for (int r = 0; r < Rows; ++r) {
        _mm512_storeu_pd(out + r * ldOut, low[r]);
        _mm512_storeu_pd(out + r * ldOut + 8, high[r]);
    }
}

TARN_TARGET_AVX512 void panelKernelAvx512(const PanelSource &source, int blockRows, std::ptrdiff_t p,
                                          double *out, std::ptrdiff_t ldOut) {
    switch (blockRows) {
    case 8:
        panelRowsAvx512<8>(source, p, out, ldOut);
        break;
    case 7:
        panelRowsAvx512<7>(source, p, out, ldOut);
        break;
    case 6:
        panelRowsAvx512<6>(source, p, out, ldOut);
        break;
    case 5:
        panelRowsAvx512<5>(source, p, out, ldOut);
        break;
    case 4:
        panelRowsAvx512<4>(source, p, out, ldOut);
        break;
    case 3:
        panelRowsAvx512<3>(source, p, out, ldOut);
        break;
    case 2:
        panelRowsAvx512<2>(source, p, out, ldOut);
        break;
    default:
        panelRowsAvx512<1>(source, p, out, ldOut);
        break;
    }
}
#endif

} // namespace

void multiplyPortable(const double *a, const double *b, double *c, int m, int p, int n) {
    multiplyPacked<kPanelWidth, kRowBlock>(panelKernelPortable, a, b, c, m, p, n);
}

void multiplyStridedPortable(const StridedProduct &product) {
    multiplyWith<kPanelWidth, kRowBlock>(panelKernelPortable, product, nullptr);
}

void transpose(const double *source, std::ptrdiff_t ldSource, int rows, int cols, double *target,
               std::ptrdiff_t ldTarget) {
    // Tiles of kTile x kTile elements: the rows read and the rows written by one tile stay in the
    // nearest cache, where a whole-row walk would write each target row once per source row.
    constexpr int kTile = 16;
    for (int firstRow = 0; firstRow < rows; firstRow += kTile) {
        const int lastRow = std::min(rows, firstRow + kTile);
        for (int firstCol = 0; firstCol < cols; firstCol += kTile) {
            const int lastCol = std::min(cols, firstCol + kTile);
            for (int j = firstCol; j < lastCol; ++j) {
                double *column = target + j * ldTarget;
                for (int i = firstRow; i < lastRow; ++i) {
                    column[i] = source[i * ldSource + j];
                }
            }
        }
    }
}

void finishChunkPortable(const ChunkTriangle &chunk) {
    for (int c = 0; c < chunk.targets; ++c) {
        double *sums = chunk.sums[c];
        double *former = chunk.former[c];
        for (int k = chunk.begin; k < chunk.end; ++k) {
            const double value = former[k] - sums[k];
            sums[k] = value;
            former[k] = value;
            const double *multipliers = chunk.multipliers[k - chunk.begin];
            for (int i = k + 1; i < chunk.end; ++i) {
                sums[i] += multipliers[i] * value;
            }
        }
    }
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
    multiplyPacked<kPanelWidth, kRowBlock>(panelKernelAvx2, a, b, c, m, p, n);
}

void multiplyAvx512(const double *a, const double *b, double *c, int m, int p, int n) {
    multiplyPacked<kWidePanelWidth, kWideRowBlock>(panelKernelAvx512, a, b, c, m, p, n);
}

void multiplyStridedAvx2(const StridedProduct &product) {
    multiplyWith<kPanelWidth, kRowBlock>(panelKernelAvx2, product, nullptr);
}

void multiplyStridedAvx512(const StridedProduct &product) {
    multiplyWith<kWidePanelWidth, kWideRowBlock>(panelKernelAvx512, product, nullptr);
}

namespace {

// Transposes the 8 x 8 block held in eight registers, one row each: afterwards rows[i] holds what
// was column i.
TARN_TARGET_AVX512 inline __attribute__((always_inline)) void transpose8x8(__m512d *rows) {
    const __m512i evenColumns = _mm512_setr_epi64(0, 8, 2, 10, 4, 12, 6, 14);
    const __m512i oddColumns = _mm512_setr_epi64(1, 9, 3, 11, 5, 13, 7, 15);
    __m512d pairs[8];
#pragma GCC unroll 4
    for (int i = 0; i < 8; i += 2) {
        // Columns 0, 2, 4, 6 of rows i and i + 1, interleaved; then columns 1, 3, 5, 7.
        pairs[i] = _mm512_permutex2var_pd(rows[i], evenColumns, rows[i + 1]);
        pairs[i + 1] = _mm512_permutex2var_pd(rows[i], oddColumns, rows[i + 1]);
    }
    const __m512i lowPairs = _mm512_setr_epi64(0, 1, 8, 9, 4, 5, 12, 13);
    const __m512i highPairs = _mm512_setr_epi64(2, 3, 10, 11, 6, 7, 14, 15);
    __m512d quads[8];
#pragma GCC unroll 2
    for (int half = 0; half < 8; half += 4) {
        // Rows half .. half + 3: quads[half + q] holds columns q' and q' + 4 of those four rows,
        // with q' = 0, 2, 1, 3 for q = 0, 1, 2, 3.
        quads[half] = _mm512_permutex2var_pd(pairs[half], lowPairs, pairs[half + 2]);
        quads[half + 1] = _mm512_permutex2var_pd(pairs[half], highPairs, pairs[half + 2]);
        quads[half + 2] = _mm512_permutex2var_pd(pairs[half + 1], lowPairs, pairs[half + 3]);
        quads[half + 3] = _mm512_permutex2var_pd(pairs[half + 1], highPairs, pairs[half + 3]);
    }
    const __m512i lowQuads = _mm512_setr_epi64(0, 1, 2, 3, 8, 9, 10, 11);
    const __m512i highQuads = _mm512_setr_epi64(4, 5, 6, 7, 12, 13, 14, 15);
    const int columnOf[4] = {0, 2, 1, 3};
#pragma GCC unroll 4
    for (int q = 0; q < 4; ++q) {
        rows[columnOf[q]] = _mm512_permutex2var_pd(quads[q], lowQuads, quads[q + 4]);
        rows[columnOf[q] + 4] = _mm512_permutex2var_pd(quads[q], highQuads, quads[q + 4]);
    }
}

// Loads rows begin + first .. begin + first + 7 of up to eight columns as eight row registers,
// one lane per column; the lanes of missing columns are 0.0.
TARN_TARGET_AVX512 void loadRows(double *const *columns, int targets, int row, __m512d *rows) {
#pragma GCC unroll 8
    for (int c = 0; c < 8; ++c) {
        rows[c] = c < targets ? _mm512_loadu_pd(columns[c] + row) : _mm512_setzero_pd();
    }
    transpose8x8(rows);
}

// Stores eight row registers back into the columns (lane c into column c), rows row and on, but
// only the first `count` of them.
TARN_TARGET_AVX512 void storeRows(double *const *columns, int targets, int row, int count, __m512d *rows) {
    transpose8x8(rows);
    const __mmask8 mask = static_cast<__mmask8>(count >= 8 ? 0xFF : (1u << count) - 1u);
    for (int c = 0; c < targets; ++c) {
        _mm512_mask_storeu_pd(columns[c] + row, mask, rows[c]);
    }
}

} // namespace

// The chunk with its rows in registers, one lane per column: each row's step is one operation
// over every column, the same operations per element as the portable form.
TARN_TARGET_AVX512 void finishChunkAvx512(const ChunkTriangle &chunk) {
    const int rows = chunk.end - chunk.begin;
    __m512d sums[kMaxChunkRows];
    __m512d former[kMaxChunkRows];
    for (int half = 0; half < kMaxChunkRows; half += 8) {
        loadRows(chunk.sums, chunk.targets, chunk.begin + half, sums + half);
        loadRows(chunk.former, chunk.targets, chunk.begin + half, former + half);
    }
    // Rows from `rows` on are worked out too, from values read past the chunk, and never stored.
#pragma GCC unroll 16
    for (int k = 0; k < kMaxChunkRows; ++k) {
        if (k >= rows) {
            break;
        }
        const __m512d value = _mm512_sub_pd(former[k], sums[k]);
        sums[k] = value;
        const double *multipliers = chunk.multipliers[k] + chunk.begin;
#pragma GCC unroll 16
        for (int i = k + 1; i < kMaxChunkRows; ++i) {
            sums[i] = _mm512_add_pd(sums[i], _mm512_mul_pd(_mm512_set1_pd(multipliers[i]), value));
        }
    }
    for (int half = 0; half < kMaxChunkRows && half < rows; half += 8) {
        __m512d copy[8];
        std::copy(sums + half, sums + half + 8, copy);
        storeRows(chunk.sums, chunk.targets, chunk.begin + half, rows - half, sums + half);
        storeRows(chunk.former, chunk.targets, chunk.begin + half, rows - half, copy);
    }
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

void multiplyStridedAvx2(const StridedProduct &product) {
    multiplyStridedPortable(product);
}

void multiplyStridedAvx512(const StridedProduct &product) {
    multiplyStridedPortable(product);
}

void finishChunkAvx512(const ChunkTriangle &chunk) {
    finishChunkPortable(chunk);
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

namespace {

// The widest path that the dispatching functions may take, as a KernelPath value.
std::atomic<int> widestAllowed{static_cast<int>(KernelPath::avx512)};

bool useAvx512() {
    return hasAvx512() &&
           widestAllowed.load(std::memory_order_relaxed) >= static_cast<int>(KernelPath::avx512);
}

bool useAvx2() {
    return hasAvx2() && widestAllowed.load(std::memory_order_relaxed) >= static_cast<int>(KernelPath::avx2);
}

} // namespace

void limitKernelPath(KernelPath widest) {
    widestAllowed.store(static_cast<int>(widest), std::memory_order_relaxed);
}

void finishChunk(const ChunkTriangle &chunk) {
    if (useAvx512()) {
        finishChunkAvx512(chunk);
    } else {
        finishChunkPortable(chunk);
    }
}

void multiply(const double *a, const double *b, double *c, int m, int p, int n) {
    if (useAvx512()) {
        multiplyAvx512(a, b, c, m, p, n);
    } else if (useAvx2()) {
        multiplyAvx2(a, b, c, m, p, n);
    } else {
        multiplyPortable(a, b, c, m, p, n);
    }
}

void multiplyStrided(const StridedProduct &product) {
    if (useAvx512()) {
        multiplyStridedAvx512(product);
    } else if (useAvx2()) {
        multiplyStridedAvx2(product);
    } else {
        multiplyStridedPortable(product);
    }
}

void addScaledTerms(double *const *y, int targets, const double *const *x, const double *factors, int terms,
                    int count) {
    if (useAvx512()) {
        addScaledTermsAvx512(y, targets, x, factors, terms, count);
    } else if (useAvx2()) {
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
