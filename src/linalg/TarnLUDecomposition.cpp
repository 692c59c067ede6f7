// The LU factorization with partial pivoting and the substitution passes against it.
#include "linalg/TarnLUDecomposition.h"

#include "linalg/TarnMatrixKernels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>

TarnLUDecomposition::TarnLUDecomposition(const TarnMatrix &matrix)
    : m(matrix.nRows()), n(matrix.nCols()),
      pivots(new std::int32_t[static_cast<std::size_t>(matrix.nRows())]) {
    matrix.transpose(columns);
    std::iota(pivots.get(), pivots.get() + m, 0);
    std::unique_ptr<double[]> scratch(new double[static_cast<std::size_t>(m)]);
    for (int j = 0; j < n; ++j) {
        updateColumn(j, scratch.get());
        if (j >= m) {
            continue;
        }
        // Find the pivot: the first row of strictly greatest magnitude; a NaN never wins.
        int pivot = j;
        for (int i = j + 1; i < m; ++i) {
            if (std::fabs(scratch[pivot]) < std::fabs(scratch[i])) {
                pivot = i;
            }
        }
        if (pivot != j) {
            exchangeRows(pivot, j);
        }
        // Divide the column below the diagonal by the pivot; an exact zero pivot skips this.
        double *column = columns[j];
        if (column[j] != 0.0) {
            for (int i = j + 1; i < m; ++i) {
                column[i] /= column[j];
            }
        }
    }
}

void TarnLUDecomposition::updateColumn(int j, double *scratch) {
    // The column's own storage holds the running sums while scratch holds its former values.
    // Term k reaches every row below k as soon as row k is final, so each row's sum still grows
    // in rising k from 0.0, exactly as a dot product of the row with the updated column would.
    // Terms go out in groups: the rows of a group are finished one by one, each passing its term
    // to the later rows of the group, and then the group's terms reach all rows below it in one
    // pass, in the same order.
    double *column = columns[j];
    std::copy(column, column + m, scratch);
    std::fill(column, column + m, 0.0);
    const int triangle = std::min(j, m);
    const double *sources[tarn::linalg::kMaxTerms];
    double values[tarn::linalg::kMaxTerms];
    for (int first = 0; first < triangle; first += tarn::linalg::kMaxTerms) {
        const int terms = std::min(tarn::linalg::kMaxTerms, triangle - first);
        const int below = first + terms;
        for (int t = 0; t < terms; ++t) {
            const int k = first + t;
            const double value = scratch[k] - column[k];
            scratch[k] = value;
            column[k] = value;
            for (int i = k + 1; i < below; ++i) {
                column[i] += columns[k][i] * value;
            }
            sources[t] = columns[k] + below;
            values[t] = value;
        }
        tarn::linalg::addScaledTerms(column + below, sources, values, terms, m - below);
    }
    for (int i = j; i < m; ++i) {
        scratch[i] -= column[i];
        column[i] = scratch[i];
    }
}

void TarnLUDecomposition::exchangeRows(int first, int second) {
    for (int col = 0; col < n; ++col) {
        std::swap(columns[col][first], columns[col][second]);
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
