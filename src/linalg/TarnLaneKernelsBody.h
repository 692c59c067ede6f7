// The body of the lane kernels: included once by each TarnLaneKernels<Path>.cpp, after it defines
// TARN_LANES, the count of doubles per vector of its path. Everything here lies in an unnamed
// namespace, so that each path's file keeps its own copy, compiled with its own instructions.
#include "foundation/TarnProcessor.h"
#include "linalg/TarnLaneKernels.h"

namespace tarn {
namespace linalg {
namespace {

constexpr int kLanes = TARN_LANES;
typedef double Vec __attribute__((vector_size(kLanes * sizeof(double))));

inline Vec load(const double *source) {
    Vec value;
    __builtin_memcpy(&value, source, sizeof value);
    return value;
}

inline void store(double *target, Vec value) {
    __builtin_memcpy(target, &value, sizeof value);
}

// y[i] gets x[t][i] * factors[t] for t rising, a vector of elements at a time. The factors come
// in as a count of terms fixed at compile time, so that they stay in registers.
template <int Terms>
void addTermsTo(double *y, const double *const *x, const double *factors, int count) {
    Vec scaled[Terms];
    for (int t = 0; t < Terms; ++t) {
        scaled[t] = Vec{} + factors[t];
    }
    int i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        Vec sum = load(y + i);
        for (int t = 0; t < Terms; ++t) {
            sum = sum + load(x[t] + i) * scaled[t];
        }
        store(y + i, sum);
    }
    for (; i < count; ++i) {
        double sum = y[i];
        for (int t = 0; t < Terms; ++t) {
            sum = sum + x[t][i] * factors[t];
        }
        y[i] = sum;
    }
}

TARN_KERNEL_ENTRY void laneAddTerms(double *const *y, int targets, const double *const *x,
                                    const double *factors, int terms, int count) {
    using Form = void (*)(double *, const double *const *, const double *, int);
    static const Form forms[kMaxTerms] = {addTermsTo<1>, addTermsTo<2>, addTermsTo<3>, addTermsTo<4>};
    for (int c = 0; c < targets; ++c) {
        forms[terms - 1](y[c], x, factors + c * kMaxTerms, count);
    }
}

// The chunk triangle of Columns columns side by side (independent chains that overlap), each
// with its kMaxChunkRows running sums in vector registers. Step k makes row k final (its value
// goes straight to both arrays) and adds its term to every vector that holds a later row: the rows
// up to k in that vector take the term too, but they are final and never read again. Rows past
// the chunk's end (readable, never written) are worked out from whatever they hold and discarded.
constexpr int kChunkVectors = kMaxChunkRows / kLanes;
constexpr int kColumnsTogether = kChunkVectors >= 8 ? 1 : 8 / kChunkVectors;

template <int Columns>
void finishColumns(const ChunkTriangle &chunk, int first) {
    const int rows = chunk.end - chunk.begin;
    double *sumsOut[Columns];
    double *formerOut[Columns];
    Vec sums[Columns][kChunkVectors];
    for (int c = 0; c < Columns; ++c) {
        sumsOut[c] = chunk.sums[first + c] + chunk.begin;
        formerOut[c] = chunk.former[first + c] + chunk.begin;
        for (int v = 0; v < kChunkVectors; ++v) {
            sums[c][v] = load(sumsOut[c] + v * kLanes);
        }
    }
#pragma GCC unroll 16
    for (int k = 0; k < kMaxChunkRows; ++k) {
        if (k >= rows) {
            break;
        }
        const double *multipliers = chunk.multipliers[k] + chunk.begin;
        for (int c = 0; c < Columns; ++c) {
            const double value = formerOut[c][k] - sums[c][k / kLanes][k % kLanes];
            sumsOut[c][k] = value;
            formerOut[c][k] = value;
            const Vec term = Vec{} + value;
            for (int v = (k + 1) / kLanes; v < kChunkVectors; ++v) {
                sums[c][v] = sums[c][v] + load(multipliers + v * kLanes) * term;
            }
        }
    }
}

TARN_KERNEL_ENTRY void laneFinishChunk(const ChunkTriangle &chunk) {
    int first = 0;
    for (; first + kColumnsTogether <= chunk.targets; first += kColumnsTogether) {
        finishColumns<kColumnsTogether>(chunk, first);
    }
    for (; first < chunk.targets; ++first) {
        finishColumns<1>(chunk, first);
    }
}

// The pivot: the greatest magnitude first, in kLanes independent maxima (the maximum does not
// depend on the order of the comparisons), then the first row that has it. A NaN never wins, and
// a NaN in row `from` keeps that row.
TARN_KERNEL_ENTRY int lanePivotRow(const double *column, int from, int to) {
    const double start = __builtin_fabs(column[from]);
    if (start != start) {
        return from;
    }
    Vec best = Vec{} + start;
    int i = from + 1;
    for (; i + kLanes <= to; i += kLanes) {
        Vec magnitude = load(column + i);
        magnitude = magnitude < 0.0 ? -magnitude : magnitude;
        best = best < magnitude ? magnitude : best;
    }
    double greatest = start;
    for (int lane = 0; lane < kLanes; ++lane) {
        greatest = greatest < best[lane] ? best[lane] : greatest;
    }
    for (; i < to; ++i) {
        const double magnitude = __builtin_fabs(column[i]);
        greatest = greatest < magnitude ? magnitude : greatest;
    }
    int row = from;
    while (__builtin_fabs(column[row]) != greatest) {
        ++row;
    }
    return row;
}

} // namespace
} // namespace linalg
} // namespace tarn
