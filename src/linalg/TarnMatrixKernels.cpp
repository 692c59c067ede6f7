// The dense product and the scaled row update, in a portable form, an AVX2 form and an AVX-512 form.
#include "linalg/TarnMatrixKernels.h"

#include "foundation/TarnProcessor.h"

#include <algorithm>
#include <cstddef>

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

#else
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

#endif

namespace {

bool useAvx512() {
    return kernelPath() == KernelPath::avx512;
}

bool useAvx2() {
    return kernelPath() >= KernelPath::avx2;
}

} // namespace

void finishChunk(const ChunkTriangle &chunk) {
    if (useAvx512()) {
        finishChunkAvx512(chunk);
    } else {
        finishChunkPortable(chunk);
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
