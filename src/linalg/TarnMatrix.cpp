// The dense matrix: storage, element-wise arithmetic, products, extraction, comparison and dump.
#include "tarn/linalg/TarnMatrix.h"

#include "linalg/TarnMatrixKernels.h"
#include "linalg/TarnMatrixStorage.h"
#include "linalg/TarnMatrixText.h"
#include "tarn/linalg/TarnMath.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace {

// Element count of a rows x cols block, in a width that cannot overflow for any int shape.
std::size_t elementCount(std::int32_t rows, std::int32_t cols) {
    return static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols);
}

// A count from an inclusive range; a range that would give a negative count gives 0.
int inclusiveCount(int first, int last) {
    return last >= first ? last - first + 1 : 0;
}

} // namespace

TarnMatrix::TarnMatrix() = default;

TarnMatrix::TarnMatrix(int rows, int cols) {
    resize(rows, cols);
}

TarnMatrix::TarnMatrix(const double *data, int rows, int cols) {
    resize(rows, cols);
    std::copy(data, data + elementCount(this->rows, this->cols), elements);
}

// The base parts are default-constructed: the copy is a new object, not a second identity.
TarnMatrix::TarnMatrix(const TarnMatrix &other) : TarnSerializable(), TarnTestable() {
    copy(other);
}

TarnMatrix::~TarnMatrix() {
    delete[] elements;
    delete[] rowTable;
}

bool TarnMatrix::isa(const std::string &name) const {
    return tarn::isClassName(name, "TarnMatrix");
}

std::string TarnMatrix::getClassName() const {
    return "TarnMatrix";
}

bool TarnMatrix::isModified() {
    return false;
}

void TarnMatrix::resetPointers() {
    TarnSerializable::resetPointers();
}

void TarnMatrix::serializeStore(TarnArchive &archive) {
    TarnSerializable::serializeStore(archive);
    tarn::linalg::addMatrixTokens(archive, rows, cols, elements, elementCount(rows, cols));
}

void TarnMatrix::serializeRestore(TarnArchive &archive) {
    TarnSerializable::serializeRestore(archive);
    const int storedRows = archive.getTokenInt("rows");
    const int storedCols = archive.getTokenInt("cols");
    resize(storedRows, storedCols);
    archive.getTokenDoubles("data", elements, static_cast<unsigned int>(elementCount(rows, cols)));
}

void TarnMatrix::resize(int rows, int cols) {
    // Negative counts are outside the contract; taking them as 0 keeps every loop in bounds. Both
    // arrays are made before anything of the matrix changes: when an allocation throws, the
    // matrix keeps its shape and its elements.
    const std::int32_t newRows = std::max(rows, 0);
    const std::int32_t newCols = std::max(cols, 0);
    tarn::linalg::MatrixArrays arrays = tarn::linalg::allocateArrays(
        static_cast<std::uint64_t>(newRows) * static_cast<std::uint64_t>(newCols), newRows);
    for (std::int32_t i = 0; i < newRows; ++i) {
        arrays.rowTable[i] = arrays.elements.get() + elementCount(i, newCols);
    }
    arrays.commit(elements, rowTable);
    this->rows = newRows;
    this->cols = newCols;
}

void TarnMatrix::copy(const TarnMatrix &other) {
    // Copying onto itself would resize away the source first; it is taken as no change instead.
    if (&other == this) {
        return;
    }
    resize(other.rows, other.cols);
    std::copy(other.elements, other.elements + elementCount(rows, cols), elements);
}

TarnMatrix &TarnMatrix::operator=(const TarnMatrix &other) {
    copy(other);
    return *this;
}

TarnMatrix &TarnMatrix::operator=(double value) {
    std::fill(elements, elements + elementCount(rows, cols), value);
    return *this;
}

void TarnMatrix::identity(int n) {
    resize(n, n);
    for (std::int32_t i = 0; i < rows; ++i) {
        rowTable[i][i] = 1.0;
    }
}

void TarnMatrix::swapContents(TarnMatrix &other) {
    std::swap(elements, other.elements);
    std::swap(rowTable, other.rowTable);
    std::swap(rows, other.rows);
    std::swap(cols, other.cols);
}

TarnMatrix TarnMatrix::operator+(const TarnMatrix &other) const {
    TarnMatrix sum(other.rows, other.cols);
    const std::int32_t sumRows = std::min(rows, other.rows);
    const std::int32_t sumCols = std::min(cols, other.cols);
    for (std::int32_t i = 0; i < sumRows; ++i) {
        for (std::int32_t j = 0; j < sumCols; ++j) {
            sum.rowTable[i][j] = rowTable[i][j] + other.rowTable[i][j];
        }
    }
    return sum;
}

TarnMatrix TarnMatrix::operator-(const TarnMatrix &other) const {
    TarnMatrix difference(other.rows, other.cols);
    const std::int32_t differenceRows = std::min(rows, other.rows);
    const std::int32_t differenceCols = std::min(cols, other.cols);
    for (std::int32_t i = 0; i < differenceRows; ++i) {
        for (std::int32_t j = 0; j < differenceCols; ++j) {
            difference.rowTable[i][j] = rowTable[i][j] - other.rowTable[i][j];
        }
    }
    return difference;
}

TarnMatrix TarnMatrix::operator*(double factor) const {
    TarnMatrix product(rows, cols);
    const std::size_t count = elementCount(rows, cols);
    for (std::size_t index = 0; index < count; ++index) {
        product.elements[index] = elements[index] * factor;
    }
    return product;
}

bool TarnMatrix::times(TarnMatrix &target, const TarnMatrix &other) const {
    if (cols != other.rows) {
        return false;
    }
    if (&target == this || &target == &other) {
        TarnMatrix product;
        times(product, other);
        target.swapContents(product);
        return true;
    }
    target.resize(rows, other.cols);
    tarn::linalg::multiply(elements, other.elements, target.elements, rows, cols, other.cols);
    return true;
}

TarnMatrix TarnMatrix::operator*(const TarnMatrix &other) const {
    TarnMatrix product;
    times(product, other);
    return product;
}

bool TarnMatrix::transpose(TarnMatrix &target) const {
    if (&target == this) {
        TarnMatrix transposed;
        transpose(transposed);
        target.swapContents(transposed);
        return true;
    }
    target.resize(cols, rows);
    if (rows > 0 && cols > 0) {
        tarn::linalg::transpose(elements, cols, rows, cols, target.elements, rows);
    }
    return true;
}

TarnMatrix TarnMatrix::t() const {
    TarnMatrix transposed;
    transpose(transposed);
    return transposed;
}

TarnMatrix TarnMatrix::subMatrix(int firstRow, int lastRow, int firstCol, int lastCol) const {
    const int countRows = inclusiveCount(firstRow, lastRow);
    const int countCols = inclusiveCount(firstCol, lastCol);
    TarnMatrix part(countRows, countCols);
    for (int r = 0; r < countRows; ++r) {
        const double *source = rowTable[firstRow + r] + firstCol;
        std::copy(source, source + countCols, part.rowTable[r]);
    }
    return part;
}

bool TarnMatrix::getMatrix(TarnMatrix &target, const int *rowIndices, int rowCount, int firstCol,
                           int lastCol) const {
    if (&target == this) {
        TarnMatrix picked;
        getMatrix(picked, rowIndices, rowCount, firstCol, lastCol);
        target.swapContents(picked);
        return true;
    }
    const int countCols = inclusiveCount(firstCol, lastCol);
    target.resize(rowCount, countCols);
    for (std::int32_t r = 0; r < target.rows; ++r) {
        const double *source = rowTable[rowIndices[r]] + firstCol;
        std::copy(source, source + countCols, target.rowTable[r]);
    }
    return true;
}

bool TarnMatrix::operator==(const TarnMatrix &other) const {
    if (rows != other.rows || cols != other.cols) {
        return false;
    }
    const std::size_t count = elementCount(rows, cols);
    for (std::size_t index = 0; index < count; ++index) {
        double mine = elements[index];
        double theirs = other.elements[index];
        if (!TarnMath::equals(mine, theirs)) {
            return false;
        }
    }
    return true;
}

void TarnMatrix::dump(int precision) const {
    tarn::linalg::dumpRows(rows, cols, precision, [this](int i, int j) { return rowTable[i][j]; });
}
