// The members of TarnMatrix and TarnUpperTriangularMatrix that meet the packed forms: the normal
// matrix, the products with an upper triangular factor, and the block diagonal sum.
#include "tarn/linalg/TarnBlockDiagonalMatrix.h"
#include "tarn/linalg/TarnMatrix.h"
#include "tarn/linalg/TarnSymmetricMatrix.h"
#include "tarn/linalg/TarnUpperTriangularMatrix.h"

#include "linalg/TarnMatrixKernels.h"

// Each product below walks rows: a result row is the accumulator, and a run of contiguous
// elements of a factor is added to it, scaled, once per k in rising order. Every result element
// therefore receives its terms in rising k from the 0.0 that resize left in it, the same sum as
// the dot product over k, while the inner loop runs over contiguous memory.

bool TarnMatrix::AtA(TarnSymmetricMatrix &target) const {
    const int order = cols;
    target.resize(order, order);
    for (int p = 0; p < order; ++p) {
        // Row p of the target's stored triangle: columns p .. n-1 (upper) or 0 .. p (lower).
        const int first = target.isUpperStorage() ? p : 0;
        const int count = target.isUpperStorage() ? order - p : p + 1;
        double *sums = target.rowTable[p];
        for (int r = 0; r < rows; ++r) {
            tarn::linalg::addScaled(sums, rowTable[r] + first, rowTable[r][p], count);
        }
    }
    return true;
}

bool TarnMatrix::times(TarnMatrix &target, const TarnUpperTriangularMatrix &other) const {
    if (cols != other.nRows()) {
        return false;
    }
    if (&target == this) {
        TarnMatrix product;
        times(product, other);
        target.swapContents(product);
        return true;
    }
    const int order = other.nCols();
    target.resize(rows, order);
    for (int i = 0; i < rows; ++i) {
        // Row k of the factor holds columns k .. n-1 contiguously: the sum for column j stops at
        // k = j, so no element below the diagonal is read.
        for (int k = 0; k < order; ++k) {
            tarn::linalg::addScaled(target.rowTable[i] + k, other.rowTable[k], rowTable[i][k], order - k);
        }
    }
    return true;
}

TarnMatrix TarnMatrix::operator*(const TarnUpperTriangularMatrix &other) const {
    TarnMatrix product;
    times(product, other);
    return product;
}

void TarnMatrix::plusEquals(const TarnBlockDiagonalMatrix &blocks) {
    int rowCursor = 0;
    int colCursor = 0;
    const int count = blocks.getBlockCount();
    for (int index = 0; index < count; ++index) {
        const TarnMatrix &block = blocks.getBlock(index);
        for (int p = 0; p < block.rows; ++p) {
            for (int q = 0; q < block.cols; ++q) {
                rowTable[rowCursor + p][colCursor + q] += block.rowTable[p][q];
            }
        }
        rowCursor += block.rows;
        colCursor += block.cols;
    }
}

void TarnMatrix::operator+=(const TarnBlockDiagonalMatrix &blocks) {
    plusEquals(blocks);
}

bool TarnUpperTriangularMatrix::times(TarnMatrix &target, const TarnMatrix &other) const {
    if (cols != other.nRows()) {
        return false;
    }
    if (&target == &other) {
        TarnMatrix product;
        times(product, other);
        target = product;
        return true;
    }
    const int width = other.nCols();
    target.resize(rows, width);
    for (int i = 0; i < rows; ++i) {
        // The sum for row i starts at the diagonal: the zeros below it cost nothing.
        for (int k = i; k < other.nRows(); ++k) {
            tarn::linalg::addScaled(target[i], other[k], *storedCell(i, k), width);
        }
    }
    return true;
}

TarnMatrix TarnUpperTriangularMatrix::operator*(const TarnMatrix &other) const {
    TarnMatrix product;
    times(product, other);
    return product;
}
