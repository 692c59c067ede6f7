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

// The chunk triangle of Columns columns side by side (independent chains that overlap), each with
// its kMaxChunkRows rows in local vectors. Step k makes row k final and adds its term to every
// vector that holds a later row: the rows up to k in that vector take the term too, but they are
// final already, and their values are kept in `former`, which is what both arrays receive at the
// end. Rows past the chunk's end (readable, never written) are worked out from whatever they hold
// and discarded.
template <int Columns>
void finishColumns(const ChunkTriangle &chunk, int first) {
    constexpr int kVectors = kMaxChunkRows / kLanes;
    const int rows = chunk.end - chunk.begin;
    double sums[Columns][kMaxChunkRows];
    double former[Columns][kMaxChunkRows];
    for (int c = 0; c < Columns; ++c) {
        for (int v = 0; v < kVectors; ++v) { // vector moves, not a string copy with its start-up cost
            store(sums[c] + v * kLanes, load(chunk.sums[first + c] + chunk.begin + v * kLanes));
            store(former[c] + v * kLanes, load(chunk.former[first + c] + chunk.begin + v * kLanes));
        }
    }
    for (int k = 0; k < rows; ++k) {
        const double *multipliers = chunk.multipliers[k] + chunk.begin;
        for (int c = 0; c < Columns; ++c) {
            const double value = former[c][k] - sums[c][k];
            former[c][k] = value;
            const Vec term = Vec{} + value;
            for (int v = (k + 1) / kLanes; v < kVectors; ++v) {
                store(sums[c] + v * kLanes,
                      load(sums[c] + v * kLanes) + load(multipliers + v * kLanes) * term);
            }
        }
    }
    for (int c = 0; c < Columns; ++c) {
        for (int k = 0; k < rows; ++k) {
            chunk.sums[first + c][chunk.begin + k] = former[c][k];
            chunk.former[first + c][chunk.begin + k] = former[c][k];
        }
    }
}

TARN_KERNEL_ENTRY void laneFinishChunk(const ChunkTriangle &chunk) {
    int first = 0;
    for (; first + 4 <= chunk.targets; first += 4) {
        finishColumns<4>(chunk, first);
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
