// The LU factorization with partial pivoting and the substitution passes against it.
#include "linalg/TarnLUDecomposition.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <numeric>

namespace {

// The pivot search of a column of at most kSmallOrder rows, inline: the same choice as
// `tarn::linalg::pivotRow`, without a call that would cost more than the search.
inline int smallPivotRow(const double *column, int from, int to) {
    int row = from;
    for (int i = from + 1; i < to; ++i) {
        row = std::fabs(column[row]) < std::fabs(column[i]) ? i : row;
    }
    return row;
}

} // namespace

TarnLUDecomposition::TarnLUDecomposition(const TarnMatrix &matrix)
    : m(matrix.nRows()), n(matrix.nCols()),
      pivots(new std::int32_t[static_cast<std::size_t>(matrix.nRows())]) {
    loadColumns(matrix);
    std::iota(pivots.get(), pivots.get() + m, 0);
    if (m <= kSmallOrder && n <= kSmallOrder) {
        factorSmall();
        return;
    }
    // One scratch block: the former values of the block's columns, each padded as a factor row is.
    const std::size_t height = static_cast<std::size_t>(m) + kRowPadding;
    std::unique_ptr<double[]> scratch(new double[height * kBlockColumns]());
    for (int first = 0; first < n; first += kBlockColumns) {
        ColumnBlock block;
        block.first = first;
        block.count = std::min(kBlockColumns, n - first);
        std::fill(std::begin(block.exchangedWith), std::end(block.exchangedWith), -1);
        // The sums start at 0.0 where no product writes them first: in the first group, or everywhere
        // when no row lies above the block.
        const int settled = std::min(first, m);
        const int unwritten = settled > 0 ? std::min(kGroupRows, settled) : m;
        for (int c = 0; c < block.count; ++c) {
            // The columns from this block on have seen no exchange yet: each takes them all at
            // once through the pivot table, in which row i holds input row pivots[i].
            double *column = columns[first + c];
            block.former[c] = scratch.get() + height * static_cast<std::size_t>(c);
            for (int i = 0; i < m; ++i) {
                block.former[c][i] = column[pivots[i]];
            }
            std::fill(column, column + unwritten, 0.0);
        }
        // The rows above the block, a group at a time: the terms of the rows above the group in
        // one product; then chunk by chunk, the terms of the group's rows above the chunk in a
        // product that continues those sums, and the chunk's own triangle, each row passing its
        // term to the later rows of the chunk. Every element receives its terms in rising order.
        for (int group = 0; group < settled; group += kGroupRows) {
            const int groupEnd = std::min(settled, group + kGroupRows);
            addProducts(block, {0, group}, group, groupEnd);
            for (int chunk = group; chunk < groupEnd; chunk += kChunkRows) {
                const int chunkEnd = std::min(groupEnd, chunk + kChunkRows);
                addProducts(block, {group, chunk}, chunk, chunkEnd, true);
                finishChunk(block, chunk, chunkEnd);
            }
        }
        // The rows from the block down have the terms of every row above the block in one product.
        addProducts(block, {0, settled}, settled, m);
        for (int c = 0; c < block.count; ++c) {
            finishColumn(block, c);
        }
        exchangeEarlierRows(block);
    }
}

void TarnLUDecomposition::loadColumns(const TarnMatrix &matrix) {
    // Column j of the input becomes row j of `columns`, whose rows are kRowPadding elements longer
    // than m: the products may read that far past a row's end, into zeros that they discard.
    columns.resize(n, m + kRowPadding);
    if (m > 0 && n > 0) {
        tarn::linalg::transpose(matrix[0], n, m, n, columns[0], columns.nCols());
    }
}

void TarnLUDecomposition::addProducts(const ColumnBlock &block, RowRange terms, int rowBegin, int rowEnd,
                                      bool accumulate) {
    // Row k of a block column holds U(k, j) once final, and row k of the factors L's column k:
    // the sum of element (i, j) over the terms' rows is the product of the block's rows (as a
    // left factor, from column terms.begin) with those factor rows, read at columns rowBegin and
    // on. The product adds k in rising order, from 0.0 or from the sums the rows hold.
    if (terms.end <= terms.begin || rowBegin >= rowEnd) {
        return;
    }
    const std::ptrdiff_t stride = columns.nCols();
    double *blockRows = columns[block.first];
    const tarn::linalg::StridedProduct product{blockRows + terms.begin,
                                               stride,
                                               columns[terms.begin] + rowBegin,
                                               stride,
                                               blockRows + rowBegin,
                                               stride,
                                               block.count,
                                               terms.end - terms.begin,
                                               rowEnd - rowBegin,
                                               accumulate,
                                               true};
    tarn::linalg::multiplyStrided(product);
}

void TarnLUDecomposition::factorSmall() {
    // sums[j][i] gathers the terms of element (i, j) as they become known, in rising k from 0.0:
    // once row k of U and column k of L are final, term k goes to every element below and right
    // of them in one independent multiply and add each. An element is final when it has all its
    // terms: its value is the input value minus its sum, as the dot-product form computes it.
    // The sums live on the stack: a small system allocates no scratch.
    double sums[kSmallOrder][kSmallOrder] = {};
    for (int k = 0; k < n && k < m; ++k) {
        double *column = columns[k];
        // Rows at and below k of column k are final: they have the terms of all k rows above.
        for (int i = k; i < m; ++i) {
            column[i] -= sums[k][i];
        }
        const int pivot = smallPivotRow(column, k, m);
        if (pivot != k) {
            for (int col = 0; col < n; ++col) {
                std::swap(columns[col][pivot], columns[col][k]);
                std::swap(sums[col][pivot], sums[col][k]);
            }
            std::swap(pivots[pivot], pivots[k]);
        }
        // Divide the column below the diagonal by the pivot; an exact zero pivot skips this.
        if (column[k] != 0.0) {
            for (int i = k + 1; i < m; ++i) {
                column[i] /= column[k];
            }
        }
        // Row k of every later column is final; its term goes to the rows below.
        for (int j = k + 1; j < n; ++j) {
            double *later = columns[j];
            const double value = later[k] - sums[j][k];
            later[k] = value;
            double *target = sums[j];
            for (int i = k + 1; i < m; ++i) {
                target[i] += column[i] * value;
            }
        }
    }
}

void TarnLUDecomposition::finishChunk(ColumnBlock &block, int begin, int end) {
    const double *multipliers[kChunkRows] = {};
    for (int k = begin; k < end; ++k) {
        multipliers[k - begin] = columns[k];
    }
    // The chunk triangle of each column is its own: the block's columns go a group at a time.
    for (int group = 0; group < block.count; group += tarn::linalg::kMaxChunkTargets) {
        const int targets = std::min(tarn::linalg::kMaxChunkTargets, block.count - group);
        double *sums[tarn::linalg::kMaxChunkTargets] = {};
        for (int c = 0; c < targets; ++c) {
            sums[c] = columns[block.first + group + c];
        }
        tarn::linalg::finishChunk({sums, block.former + group, multipliers, targets, begin, end});
    }
}

void TarnLUDecomposition::addTerms(const ColumnBlock &block, int index, int kBegin, int kEnd) {
    // Row k of the column is final once it has the terms of all rows above it: its new value is
    // its former value minus its running sum. Term k (L(i, k) times that value) then goes to every
    // row below, so that each row's sum grows in rising k from 0.0, exactly as the dot product of
    // the row with the updated column would. Terms go out in groups: the rows of a group are
    // finished one by one, each passing its term to the later rows of the group, and then the
    // group's terms reach all rows below it in one pass, in the same order.
    double *sums = columns[block.first + index];
    double *former = block.former[index];
    const double *sources[tarn::linalg::kMaxTerms] = {};
    double values[tarn::linalg::kMaxTerms] = {};
    for (int groupStart = kBegin; groupStart < kEnd; groupStart += tarn::linalg::kMaxTerms) {
        const int terms = std::min(tarn::linalg::kMaxTerms, kEnd - groupStart);
        const int below = groupStart + terms;
        for (int t = 0; t < terms; ++t) {
            const int k = groupStart + t;
            const double *multipliers = columns[k];
            const double value = former[k] - sums[k];
            former[k] = value;
            sums[k] = value;
            for (int i = k + 1; i < below; ++i) {
                sums[i] += multipliers[i] * value;
            }
            values[t] = value;
            sources[t] = multipliers + below;
        }
        double *target = sums + below;
        tarn::linalg::addScaledTerms(&target, 1, sources, values, terms, m - below);
    }
}

void TarnLUDecomposition::finishColumn(ColumnBlock &block, int index) {
    const int j = block.first + index;
    // The rows of the block above j are final by now: their terms complete the triangle.
    addTerms(block, index, std::min(block.first, m), std::min(j, m));
    double *column = columns[j];
    double *former = block.former[index];
    for (int i = j; i < m; ++i) {
        former[i] -= column[i];
        column[i] = former[i];
    }
    if (j >= m) {
        return;
    }
    const int pivot = tarn::linalg::pivotRow(column, j, m);
    if (pivot != j) {
        exchangeRows(block, j, pivot);
    }
    // Divide the column below the diagonal by the pivot; an exact zero pivot skips this.
    if (column[j] != 0.0) {
        for (int i = j + 1; i < m; ++i) {
            column[i] /= column[j];
        }
    }
}

void TarnLUDecomposition::exchangeRows(ColumnBlock &block, int step, int pivot) {
    // Only the block's columns exchange now. The columns before it take the block's exchanges
    // when it is finished (nothing reads them until then), those after it when their block starts.
    for (int c = 0; c < block.count; ++c) {
        double *column = columns[block.first + c];
        std::swap(column[step], column[pivot]);
        // The columns of the block still hold sums in their storage; their values move here.
        std::swap(block.former[c][step], block.former[c][pivot]);
    }
    std::swap(pivots[step], pivots[pivot]);
    block.exchangedWith[step - block.first] = pivot;
}

void TarnLUDecomposition::exchangeEarlierRows(const ColumnBlock &block) {
    // Each earlier column takes the block's exchanges in their order, all while it is at hand.
    for (int col = 0; col < block.first; ++col) {
        double *column = columns[col];
        for (int c = 0; c < block.count; ++c) {
            const int second = block.exchangedWith[c];
            if (second >= 0) {
                std::swap(column[block.first + c], column[second]);
            }
        }
    }
}

bool TarnLUDecomposition::solveFor(const TarnMatrix &rhs, TarnMatrix &result) const {
    // A non-square factorization has no square U to substitute against; refusing it keeps every
    // pass inside the factors.
    if (rhs.nRows() != m || m != n) {
        return false;
    }
    for (int j = 0; j < n; ++j) {
        if (factor(j, j) == 0.0) {
            return false;
        }
    }
    const int nx = rhs.nCols();
    rhs.getMatrix(result, pivots.get(), m, 0, nx - 1);
    if (nx == 1) {
        substituteColumn(result[0]);
        return true;
    }
    // Forward pass: L x Y = P x rhs, L with its unit diagonal.
    for (int k = 0; k < n; ++k) {
        const double *source = result[k];
        for (int i = k + 1; i < n; ++i) {
            const double multiplier = factor(i, k);
            double *target = result[i];
            for (int j = 0; j < nx; ++j) {
                target[j] -= source[j] * multiplier;
            }
        }
    }
    // Backward pass: U x X = Y.
    for (int k = n - 1; k >= 0; --k) {
        double *source = result[k];
        const double diagonal = factor(k, k);
        for (int j = 0; j < nx; ++j) {
            source[j] /= diagonal;
        }
        for (int i = 0; i < k; ++i) {
            const double multiplier = factor(i, k);
            double *target = result[i];
            for (int j = 0; j < nx; ++j) {
                target[j] -= source[j] * multiplier;
            }
        }
    }
    return true;
}

void TarnLUDecomposition::substituteColumn(double *x) const {
    // The passes of solveFor for one right-hand column, which lies contiguous in memory: each
    // element receives the same updates in the same order, and the updates of one pass step are
    // independent, in contiguous runs of a factor column.
    for (int k = 0; k < n; ++k) {
        const double source = x[k];
        const double *multipliers = columns[k];
        for (int i = k + 1; i < n; ++i) {
            x[i] -= source * multipliers[i];
        }
    }
    for (int k = n - 1; k >= 0; --k) {
        x[k] /= factor(k, k);
        const double source = x[k];
        const double *multipliers = columns[k];
        for (int i = 0; i < k; ++i) {
            x[i] -= source * multipliers[i];
        }
    }
}
