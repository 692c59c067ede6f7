// The packed symmetric matrix and its upper and lower triangular forms.
#include "tarn/linalg/TarnSymmetricMatrix.h"

#include "linalg/TarnMatrixStorage.h"
#include "linalg/TarnMatrixText.h"
#include "tarn/linalg/TarnLowerTriangularMatrix.h"
#include "tarn/linalg/TarnMath.h"
#include "tarn/linalg/TarnUpperTriangularMatrix.h"

#include <algorithm>

TarnSymmetricMatrix::TarnSymmetricMatrix(int storage) : storage(storage) {}

TarnSymmetricMatrix::TarnSymmetricMatrix(const double *packed, int rows, int cols, int storage)
    : storage(storage) {
    resize(rows, cols);
    if (elements != nullptr) {
        std::copy(packed, packed + packedCount(this->rows), elements);
    }
}

TarnSymmetricMatrix::~TarnSymmetricMatrix() {
    delete[] elements;
    delete[] rowTable;
}

bool TarnSymmetricMatrix::isa(const std::string &name) const {
    return tarn::isClassName(name, "TarnSymmetricMatrix");
}

std::string TarnSymmetricMatrix::getClassName() const {
    return "TarnSymmetricMatrix";
}

bool TarnSymmetricMatrix::isModified() {
    return false;
}

void TarnSymmetricMatrix::resetPointers() {
    TarnSerializable::resetPointers();
}

void TarnSymmetricMatrix::serializeStore(TarnArchive &archive) {
    TarnSerializable::serializeStore(archive);
    tarn::linalg::addMatrixTokens(archive, rows, cols, elements, packedCount(rows));
}

void TarnSymmetricMatrix::serializeRestore(TarnArchive &archive) {
    TarnSerializable::serializeRestore(archive);
    const int storedRows = archive.getTokenInt("rows");
    const int storedCols = archive.getTokenInt("cols");
    // Unequal counts leave no block sized for the stored data, so none is read.
    if (storedRows != storedCols) {
        return;
    }
    resize(storedRows, storedCols);
    archive.getTokenDoubles("data", elements, static_cast<unsigned int>(packedCount(rows)));
}

double TarnSymmetricMatrix::getElement(int row, int col) const {
    const bool stored = isUpperStorage() ? col >= row : col <= row;
    return stored ? *storedCell(row, col) : *storedCell(col, row);
}

void TarnSymmetricMatrix::setElement(int row, int col, double value) {
    const bool stored = isUpperStorage() ? col >= row : col <= row;
    *(stored ? storedCell(row, col) : storedCell(col, row)) = value;
}

void TarnSymmetricMatrix::resize(int rows, int cols) {
    if (rows != cols) {
        return;
    }
    // A negative order is outside the contract; taking it as 0 keeps every loop in bounds. Both
    // arrays are made before anything of the matrix changes: when an allocation throws, the
    // matrix keeps its order and its elements.
    const std::int32_t order = std::max(rows, 0);
    const auto wide = static_cast<std::uint64_t>(order);
    tarn::linalg::MatrixArrays arrays = tarn::linalg::allocateArrays(wide * (wide + 1) / 2, order);
    double *rowStart = arrays.elements.get();
    for (std::int32_t i = 0; i < order; ++i) {
        arrays.rowTable[i] = rowStart;
        rowStart += isUpperStorage() ? order - i : i + 1;
    }
    arrays.commit(elements, rowTable);
    this->rows = order;
    this->cols = order;
}

bool TarnSymmetricMatrix::operator==(const TarnSymmetricMatrix &other) const {
    if (rows != other.rows) {
        return false;
    }
    const std::size_t count = packedCount(rows);
    for (std::size_t index = 0; index < count; ++index) {
        double mine = elements[index];
        double theirs = other.elements[index];
        if (!TarnMath::equals(mine, theirs)) {
            return false;
        }
    }
    return true;
}

void TarnSymmetricMatrix::dump(int precision) const {
    tarn::linalg::dumpRows(rows, cols, precision, [this](int i, int j) { return getElement(i, j); });
}

TarnUpperTriangularMatrix::TarnUpperTriangularMatrix() : TarnSymmetricMatrix(0) {}

TarnUpperTriangularMatrix::TarnUpperTriangularMatrix(const double *packed, int rows, int cols)
    : TarnSymmetricMatrix(packed, rows, cols, 0) {}

TarnUpperTriangularMatrix::~TarnUpperTriangularMatrix() = default;

double TarnUpperTriangularMatrix::getElement(int row, int col) const {
    return col < row ? 0.0 : *storedCell(row, col);
}

void TarnUpperTriangularMatrix::setElement(int row, int col, double value) {
    if (col >= row) {
        *storedCell(row, col) = value;
    }
}

void TarnUpperTriangularMatrix::transpose(TarnLowerTriangularMatrix &target) const {
    target.resize(rows, cols);
    for (int i = 0; i < rows; ++i) {
        for (int j = i; j < cols; ++j) {
            target.setElement(j, i, getElement(i, j));
        }
    }
}

TarnLowerTriangularMatrix::TarnLowerTriangularMatrix() : TarnSymmetricMatrix(1) {}

TarnLowerTriangularMatrix::TarnLowerTriangularMatrix(const double *packed, int rows, int cols)
    : TarnSymmetricMatrix(packed, rows, cols, 1) {}

TarnLowerTriangularMatrix::~TarnLowerTriangularMatrix() = default;

double TarnLowerTriangularMatrix::getElement(int row, int col) const {
    return col > row ? 0.0 : *storedCell(row, col);
}

void TarnLowerTriangularMatrix::setElement(int row, int col, double value) {
    if (col <= row) {
        *storedCell(row, col) = value;
    }
}

void TarnLowerTriangularMatrix::transpose(TarnUpperTriangularMatrix &target) const {
    target.resize(rows, cols);
    for (int i = 0; i < rows; ++i) {
        for (int j = 0; j <= i; ++j) {
            target.setElement(j, i, getElement(i, j));
        }
    }
}
