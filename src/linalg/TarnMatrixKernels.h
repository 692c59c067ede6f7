// Internal numeric kernels of the matrix family: the dense product and the scaled row update.
#pragma once

#include <cstddef>

// Every kernel gives, element for element, the bits of the plain loop it replaces: each result
// element is summed over k in rising order from an accumulator of 0.0, one multiply and one add
// per term, never fused and never regrouped. Speed comes only from working on several result
// elements at once (vector lanes or registers) and from walking memory contiguously. The AVX-512
// and AVX2 forms are chosen at run time, the widest the processor has; the portable forms run
// everywhere. Only the count of lanes differs between them, never an operation or its order.

namespace tarn {
namespace linalg {

/// Puts a (m x p) times b (p x n) into c (m x n); all three are contiguous row-major blocks and c
/// must not overlap a or b. c[i][j] is the sum over k rising from 0.0 of a[i][k] * b[k][j]. Uses
/// one scratch allocation of at most p x 8 doubles per call.
void multiply(const double *a, const double *b, double *c, int m, int p, int n);

/// `multiply` on the portable path, whatever the processor.
void multiplyPortable(const double *a, const double *b, double *c, int m, int p, int n);

/// `multiply` on the AVX2 path; call it only when `hasAvx2` is true.
void multiplyAvx2(const double *a, const double *b, double *c, int m, int p, int n);

/// `multiply` on the AVX-512 path (panels of 16 columns, 8 rows at a time); call it only when
/// `hasAvx512` is true.
void multiplyAvx512(const double *a, const double *b, double *c, int m, int p, int n);

/// A product c = a x b of blocks that lie inside larger row-major matrices: a is m x p with rows
/// lda apart, b is p x n with rows ldb apart, c is m x n with rows ldc apart. c must not overlap
/// the elements of a or b that the product reads. Each row of b must be readable up to
/// kMaxPanelWidth - 1 elements past its n-th: a last narrow panel is read in place, and the
/// values past n are read and discarded.
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
};

/// The widest panel of any path.
constexpr int kMaxPanelWidth = 16;

/// `multiply` on strided blocks: each element of c gets the same sum, in the same order, as
/// `multiply` gives. Reads b where it lies; allocates nothing.
void multiplyStrided(const StridedProduct &product);

/// `multiplyStrided` on the portable, AVX2 and AVX-512 paths; the wider ones only when `hasAvx2` or
/// `hasAvx512` is true.
void multiplyStridedPortable(const StridedProduct &product);
void multiplyStridedAvx2(const StridedProduct &product);
void multiplyStridedAvx512(const StridedProduct &product);

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

/// `finishChunk` on the portable path and (only when `hasAvx512` is true) the AVX-512 path.
void finishChunkPortable(const ChunkTriangle &chunk);
void finishChunkAvx512(const ChunkTriangle &chunk);

/// Puts the transpose of the rows x cols block `source` (rows ldSource apart) into `target` (rows
/// ldTarget apart): target[j * ldTarget + i] becomes source[i * ldSource + j]. The blocks must
/// not overlap. One portable form: the copy is bound by memory, not by instructions.
void transpose(const double *source, std::ptrdiff_t ldSource, int rows, int cols, double *target,
               std::ptrdiff_t ldTarget);

/// The kernel paths, narrowest first.
enum class KernelPath { portable, avx2, avx512 };

/// Makes every dispatching function above take no path wider than `widest` (the processor's own
/// limit still holds), so that tests can run each path through the callers; `avx512` lifts the
/// limit. Not meant to change while kernels run on other threads.
void limitKernelPath(KernelPath widest);

/// The most terms and the most targets that one `addScaledTerms` call takes.
constexpr int kMaxTerms = 4;
constexpr int kMaxTargets = 4;

/// For each target c below `targets` and each i below count, adds x[t][i] * factors[c * kMaxTerms
/// + t] to y[c][i] for t from 0 to terms - 1 in that order: per element one multiply and one add
/// per term, exactly as terms x targets successive plain passes would do, but with each x[t] read
/// once for all targets and each y[c] read and written once. terms lies in 1 .. kMaxTerms and
/// targets in 1 .. kMaxTargets; the y rows must not overlap the x rows.
void addScaledTerms(double *const *y, int targets, const double *const *x, const double *factors, int terms,
                    int count);

/// `addScaledTerms` on the portable path.
void addScaledTermsPortable(double *const *y, int targets, const double *const *x, const double *factors,
                            int terms, int count);

/// `addScaledTerms` on the AVX2 path; call it only when `hasAvx2` is true.
void addScaledTermsAvx2(double *const *y, int targets, const double *const *x, const double *factors,
                        int terms, int count);

/// `addScaledTerms` on the AVX-512 path; call it only when `hasAvx512` is true.
void addScaledTermsAvx512(double *const *y, int targets, const double *const *x, const double *factors,
                          int terms, int count);

/// Adds x[i] * factor to y[i] for i below count: `addScaledTerms` with one target and one term.
void addScaled(double *y, const double *x, double factor, int count);

/// Returns true when the AVX2 kernels can run on this processor (and the build has them).
bool hasAvx2();

/// Returns true when the AVX-512 kernels can run on this processor (and the build has them).
bool hasAvx512();

} // namespace linalg
} // namespace tarn
