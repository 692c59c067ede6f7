// Internal: the LU factorization with partial pivoting behind TarnMatrix::solve and invert.
#pragma once

#include "tarn/linalg/TarnMatrix.h"

#include <cstdint>
#include <memory>

/// The LU factorization of an m x n matrix with row pivoting, in the left-looking dot-product
/// order: element (i, j) receives the sum over k below min(i, j), rising from 0.0, of L(i, k) times
/// the already updated U(k, j), subtracted once. The pivot of column j is the first row at or
/// below j of strictly greatest magnitude; only an exact 0.0 pivot is singular, and it skips the
/// division of its column without stopping the factorization.
///
/// The factors are kept column by column: row j of `columns` is column j of the factorization (L's
/// multipliers below the diagonal, U on and above it), so that the column being updated and every
/// column of L that updates it are contiguous. A local object of one call; one thread.
class TarnLUDecomposition {
public:
    /// Factorizes `matrix`. Allocates the factors, m pivot indices, and one scratch column of m
    /// doubles that is released before the constructor returns.
    explicit TarnLUDecomposition(const TarnMatrix &matrix);

    /// Solves against the factors: `result` becomes the m x nx solution for the nx columns of
    /// `rhs`. Returns false, `result` untouched, when rhs has other than m rows, a diagonal
    /// element of U is exactly 0.0, or the factorized matrix was not square.
    bool solveFor(const TarnMatrix &rhs, TarnMatrix &result) const;

    /// Returns the pivot table: entry i is the input row that stands at row i of the factors.
    const std::int32_t *getPivots() const { return pivots.get(); }

private:
    // Element (row, col) of the factors.
    double factor(int row, int col) const { return columns[col][row]; }
    // Updates column j of the factors and leaves its new values in scratch.
    void updateColumn(int j, double *scratch);
    // Exchanges rows first and second of the factors over all columns, and their pivot entries.
    void exchangeRows(int first, int second);

    int m = 0;
    int n = 0;
    TarnMatrix columns;
    std::unique_ptr<std::int32_t[]> pivots;
};
