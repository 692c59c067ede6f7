// Internal: the LU factorization with partial pivoting behind TarnMatrix::solve and invert.
#pragma once

#include "linalg/TarnMatrixKernels.h"
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
/// column of L that updates it are contiguous. Columns are updated a block at a time: the terms
/// that all columns of the block need come from products of the block with L (group by group and
/// chunk by chunk down the rows above the block, and in one product below it), and each column is
/// then finished in order. A column's storage holds its running sums while its former values wait in the
/// scratch block, one run of m doubles per column of the block. A local object of one call; one thread.
class TarnLUDecomposition {
public:
    /// Factorizes `matrix`. Allocates the factors, m pivot indices, and (above kSmallOrder rows or
    /// columns) one scratch block of kBlockColumns x (m + 15) doubles that is released before the
    /// constructor returns.
    explicit TarnLUDecomposition(const TarnMatrix &matrix);

    /// Solves against the factors: `result` becomes the m x nx solution for the nx columns of
    /// `rhs`. Returns false, `result` untouched, when rhs has other than m rows, a diagonal
    /// element of U is exactly 0.0, or the factorized matrix was not square.
    bool solveFor(const TarnMatrix &rhs, TarnMatrix &result) const;

    /// Returns the pivot table: entry i is the input row that stands at row i of the factors.
    const std::int32_t *getPivots() const { return pivots.get(); }

private:
    /// Columns per block: the rows of the products' left factor, enough for the packed factor
    /// rows to serve many tiles.
    static constexpr int kBlockColumns = 48;
    /// Rows per chunk of the rows above a block: the rows of one chunk triangle.
    static constexpr int kChunkRows = tarn::linalg::kMaxChunkRows;
    /// Rows per group of chunks: the terms of the rows above a group come in one product.
    static constexpr int kGroupRows = 4 * kChunkRows;

    /// The columns first .. first + count - 1 under way: their storage holds running sums, and
    /// former[c] the values of column first + c that are not final yet.
    struct ColumnBlock {
        int first = 0;
        int count = 0;
        double *former[kBlockColumns] = {};
        // exchangedWith[c]: the row that row first + c exchanged with, or -1 for none.
        int exchangedWith[kBlockColumns] = {};
    };
    /// How far past m each row of `columns` reaches: the widest tile of the products, less one, so
    /// that the products read the factor rows in place.
    static constexpr int kRowPadding = tarn::linalg::kMaxPanelWidth - 1;

    /// Matrices of at most this many rows and columns are factorized by `factorSmall`.
    static constexpr int kSmallOrder = 16;

    // Element (row, col) of the factors.
    double factor(int row, int col) const { return columns[col][row]; }
    // Factorizes a matrix of at most kSmallOrder rows and columns with each term added as soon as
    // it is known: the same operations in the same order per element as the blocked path, without
    // its per-block calls and heap scratch, and with independent updates that overlap.
    void factorSmall();
    /// Rows begin .. end - 1.
    struct RowRange {
        int begin;
        int end;
    };
    // Puts into rows rowBegin .. rowEnd - 1 of the block's columns the sums of the terms of the
    // rows in `terms`, which must be final there: replacing what those rows held, or with
    // `accumulate` continuing the sums they hold.
    void addProducts(const ColumnBlock &block, RowRange terms, int rowBegin, int rowEnd,
                     bool accumulate = false);
    // Makes rows begin .. end - 1 (one chunk) final in every column of the block, each passing its
    // term to the later rows of the chunk; the rows hold the terms of every row above begin.
    void finishChunk(ColumnBlock &block, int begin, int end);
    // Makes rows kBegin .. kEnd - 1 final in column block.first + index, each row passing its term
    // to every later row of the column.
    void addTerms(const ColumnBlock &block, int index, int kBegin, int kEnd);
    // Finishes column block.first + index: its own terms, pivot, exchange and division.
    void finishColumn(ColumnBlock &block, int index);
    // The forward and backward passes of solveFor on one contiguous column x of n doubles.
    void substituteColumn(double *x) const;
    // Exchanges rows step and pivot of the block's columns, of its former values and of the pivot
    // table, and records the exchange for the earlier columns.
    void exchangeRows(ColumnBlock &block, int step, int pivot);
    // Applies the block's recorded exchanges, in order, to every column before the block.
    void exchangeEarlierRows(const ColumnBlock &block);
    // Fills `columns` with the transpose of `matrix`, each row padded by kRowPadding zeros.
    void loadColumns(const TarnMatrix &matrix);

    int m = 0;
    int n = 0;
    TarnMatrix columns;
    std::unique_ptr<std::int32_t[]> pivots;
};
