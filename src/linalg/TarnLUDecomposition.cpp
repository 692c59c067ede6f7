// The LU factorization with partial pivoting and the substitution passes against it.
#include "linalg/TarnLUDecomposition.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>

TarnLUDecomposition::TarnLUDecomposition(const TarnMatrix &matrix)
    : m(matrix.nRows()), n(matrix.nCols()),
      pivots(new std::int32_t[static_cast<std::size_t>(matrix.nRows())]) {
    matrix.transpose(columns);
    std::iota(pivots.get(), pivots.get() + m, 0);
    if (m <= kSmallOrder && n <= kSmallOrder) {
        factorSmall();
        return;
    }
    const std::size_t height = static_cast<std::size_t>(m);
    std::unique_ptr<double[]> scratch(new double[height * tarn::linalg::kMaxTargets]);
    for (int first = 0; first < n; first += tarn::linalg::kMaxTargets) {
        ColumnBlock block;
        block.first = first;
        block.count = std::min(tarn::linalg::kMaxTargets, n - first);
        for (int c = 0; c < block.count; ++c) {
            double *column = columns[first + c];
            block.former[c] = scratch.get() + height * static_cast<std::size_t>(c);
            std::copy(column, column + m, block.former[c]);
            std::fill(column, column + m, 0.0);
        }
        // The terms of the rows above the block are final for every column of it.
        addTerms(block, 0, block.count, 0, std::min(first, m));
        for (int c = 0; c < block.count; ++c) {
            finishColumn(block, c);
        }
    }
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
        // Find the pivot: the first row of strictly greatest magnitude; a NaN never wins.
        int pivot = k;
        for (int i = k + 1; i < m; ++i) {
            if (std::fabs(column[pivot]) < std::fabs(column[i])) {
                pivot = i;
            }
        }
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

void TarnLUDecomposition::addTerms(const ColumnBlock &block, int firstTarget, int targets, int kBegin,
                                   int kEnd) {
    // Row k of a column is final once it has the terms of all rows above it: its new value is its
    // former value minus its running sum. Term k (L(i, k) times that value) then goes to every row
    // below, so that each row's sum grows in rising k from 0.0, exactly as the dot product of the
    // row with the updated column would. Terms go out in groups: the rows of a group are finished
    // one by one, each passing its term to the later rows of the group, and then the group's
    // terms reach all rows below it in one pass, in the same order.
    double *sums[tarn::linalg::kMaxTargets] = {};
    for (int c = 0; c < targets; ++c) {
        sums[c] = columns[block.first + firstTarget + c];
    }
    const double *sources[tarn::linalg::kMaxTerms] = {};
    double values[tarn::linalg::kMaxTargets * tarn::linalg::kMaxTerms] = {};
    for (int groupStart = kBegin; groupStart < kEnd; groupStart += tarn::linalg::kMaxTerms) {
        const int terms = std::min(tarn::linalg::kMaxTerms, kEnd - groupStart);
        const int below = groupStart + terms;
        for (int t = 0; t < terms; ++t) {
            const int k = groupStart + t;
            const double *multipliers = columns[k];
            for (int c = 0; c < targets; ++c) {
                double *former = block.former[firstTarget + c];
                const double value = former[k] - sums[c][k];
                former[k] = value;
                sums[c][k] = value;
                for (int i = k + 1; i < below; ++i) {
                    sums[c][i] += multipliers[i] * value;
                }
                values[c * tarn::linalg::kMaxTerms + t] = value;
            }
            sources[t] = multipliers + below;
        }
        double *targetRows[tarn::linalg::kMaxTargets] = {};
        for (int c = 0; c < targets; ++c) {
            targetRows[c] = sums[c] + below;
        }
        tarn::linalg::addScaledTerms(targetRows, targets, sources, values, terms, m - below);
    }
}

void TarnLUDecomposition::finishColumn(ColumnBlock &block, int index) {
    const int j = block.first + index;
    // The rows of the block above j are final by now: their terms complete the triangle.
    addTerms(block, index, 1, std::min(block.first, m), std::min(j, m));
    double *column = columns[j];
    double *former = block.former[index];
    for (int i = j; i < m; ++i) {
        former[i] -= column[i];
        column[i] = former[i];
    }
    if (j >= m) {
        return;
    }
    // Find the pivot: the first row of strictly greatest magnitude; a NaN never wins.
    int pivot = j;
    for (int i = j + 1; i < m; ++i) {
        if (std::fabs(column[pivot]) < std::fabs(column[i])) {
            pivot = i;
        }
    }
    if (pivot != j) {
        exchangeRows(block, pivot, j);
    }
    // Divide the column below the diagonal by the pivot; an exact zero pivot skips this.
    if (column[j] != 0.0) {
        for (int i = j + 1; i < m; ++i) {
            column[i] /= column[j];
        }
    }
}

void TarnLUDecomposition::exchangeRows(ColumnBlock &block, int first, int second) {
    for (int col = 0; col < n; ++col) {
        std::swap(columns[col][first], columns[col][second]);
    }
    // The columns of the block still hold sums in their storage; their values move here.
    for (int c = 0; c < block.count; ++c) {
        std::swap(block.former[c][first], block.former[c][second]);
    }
    std::swap(pivots[first], pivots[second]);
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
