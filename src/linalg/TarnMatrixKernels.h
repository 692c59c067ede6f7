// Internal numeric kernels of the matrix family: the dense product and the scaled row update.
#pragma once

#include <cstddef>

// Every kernel gives, element for element, the bits of the plain loop it replaces: each result
// element is summed over k in rising order from an accumulator of 0.0, one multiply and one add
// per term, never fused and never regrouped. Speed comes only from working on several result
// elements at once (vector lanes or registers) and from walking memory contiguously. The path is
// the one the processor check gives (foundation/TarnProcessor.h); only the count of lanes differs
// between paths, never an operation or its order.

namespace tarn {
namespace linalg {

/// Puts a (m x p) times b (p x n) into c (m x n); all three are contiguous row-major blocks and c
/// must not overlap a or b. c[i][j] is the sum over k rising from 0.0 of a[i][k] * b[k][j]. Uses
/// one scratch allocation for the packed panels per call.
void multiply(const double *a, const double *b, double *c, int m, int p, int n);

/// A product c = a x b of blocks that lie inside larger row-major matrices: a is m x p with rows
/// lda apart, b is p x n with rows ldb apart, c is m x n with rows ldc apart. c must not overlap
/// the elements of a or b that the product reads. With `accumulate`, each sum continues from the
/// value c holds instead of 0.0. With `bPadded`, each row of b is readable up to kMaxPanelWidth - 1
/// elements past its n-th, and the tiles read b in place (the values past n are discarded).
struct StridedProduct {
    const double *a;
    std::ptrdiff_t lda;
    const double *b;
    std::ptrdiff_t ldb;
    double *c;
    std::ptrdiff_t ldc;
    int m;
    int p;
    int n;
    bool accumulate = false;
    bool bPadded = false;
};

/// The widest tile of any path.
constexpr int kMaxPanelWidth = 16;

/// `multiply` on strided blocks: each element of c gets the same sum, in the same order, as
/// `multiply` gives.
void multiplyStrided(const StridedProduct &product);

/// The most rows and the most columns that one `finishChunk` call takes.
constexpr int kMaxChunkRows = 16;
constexpr int kMaxChunkTargets = 8;

/// Rows begin .. end - 1 (at most kMaxChunkRows) of `targets` columns (at most kMaxChunkTargets)
/// of an LU factorization in progress, all indexed by row number: sums[c] holds column c's
/// running sums, which have the terms of every row above begin, former[c] its values before any
/// term, and multipliers[k - begin] the factor column of row k. Every one of these may be read
/// (never written) up to row begin + kMaxChunkRows - 1, whatever end is.
struct ChunkTriangle {
    double *const *sums;
    double *const *former;
    const double *const *multipliers;
    int targets;
    int begin;
    int end;
};

/// Makes the chunk's rows final in order: row k becomes its former value less its sum (written to
/// both sums and former) and passes its term, multipliers[k - begin][i] times that value, to each
/// later row i of the chunk. Each element receives its terms in rising row order, one multiply
/// and one add each, as the plain loop does. Writes rows begin .. end - 1 only.
void finishChunk(const ChunkTriangle &chunk);

/// The pivot of rows from .. to - 1 of a column: the first row whose magnitude is strictly
/// greater than that of every row before it, starting with row `from`; a NaN never wins, and a
/// NaN in row `from` keeps that row.
int pivotRow(const double *column, int from, int to);

/// Puts the transpose of the rows x cols block `source` (rows ldSource apart) into `target` (rows
/// ldTarget apart): target[j * ldTarget + i] becomes source[i * ldSource + j]. The blocks must
/// not overlap. One portable form: the copy is bound by memory, not by instructions.
void transpose(const double *source, std::ptrdiff_t ldSource, int rows, int cols, double *target,
               std::ptrdiff_t ldTarget);

/// The most terms and the most targets that one `addScaledTerms` call takes.
constexpr int kMaxTerms = 4;
constexpr int kMaxTargets = 4;

/// For each target c below `targets` and each i below count, adds x[t][i] * factors[c * kMaxTerms
/// + t] to y[c][i] for t from 0 to terms - 1 in that order: per element one multiply and one add
/// per term, exactly as terms x targets successive plain passes would do, but with each y[c] read
/// and written once. terms lies in 1 .. kMaxTerms and targets in 1 .. kMaxTargets; the y rows must
/// not overlap the x rows.
void addScaledTerms(double *const *y, int targets, const double *const *x, const double *factors, int terms,
                    int count);

/// Adds x[i] * factor to y[i] for i below count: `addScaledTerms` with one target and one term.
void addScaled(double *y, const double *x, double factor, int count);

} // namespace linalg
} // namespace tarn
