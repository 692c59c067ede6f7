/// \file
/// The packed square matrix that stores one triangle, with a row table over the packed block.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnObject.h"
#include "tarn/serialization/TarnArchive.h"
#include "tarn/serialization/TarnSerializable.h"

#include <cstddef>
#include <cstdint>
#include <string>

class TarnMatrix;

/// A square matrix of doubles of order n that stores one triangle only: n x (n + 1) / 2 doubles
/// in one packed block, row by row, with a table of row pointers. Upper storage (storage 0) keeps
/// columns i to n - 1 of row i; lower storage (any other value) keeps columns 0 to i. Reads and
/// writes outside the stored triangle are mirrored into it. The matrix owns both arrays; it is
/// not copyable. It stores itself as a node named "TarnSymmetricMatrix" with "rows", "cols" and
/// the packed "data"; the storage form is not stored, so a node must be restored into a matrix of
/// the form that wrote it. The serializable base is not public: the protocol steps are members of
/// this class, and the archive classes do not take a packed matrix. Indices are not range-checked. `resize`
/// with unequal counts does nothing, and nothing here reports an error. One thread at a time per object.
class TARN_API TarnSymmetricMatrix : TarnSerializable {
public:
    /// Makes an empty matrix (order 0, no arrays) of the given storage form.
    explicit TarnSymmetricMatrix(int storage);
    /// Makes a matrix of order rows and copies n x (n + 1) / 2 doubles from `packed` in packed
    /// order. With rows different from cols the matrix stays empty and nothing is read.
    TarnSymmetricMatrix(const double *packed, int rows, int cols, int storage);
    TarnSymmetricMatrix(const TarnSymmetricMatrix &) = delete;
    TarnSymmetricMatrix &operator=(const TarnSymmetricMatrix &) = delete;
    /// Releases the packed block and the row table.
    ~TarnSymmetricMatrix() override;

    using TarnObject::isa;
    /// Returns true exactly for "TarnSymmetricMatrix", also in the triangular classes.
    bool isa(const std::string &name) const override;
    /// Returns "TarnSymmetricMatrix", also in the triangular classes.
    std::string getClassName() const override;
    /// Stores the base tokens, then "rows", "cols" and "data", the n x (n + 1) / 2 packed values
    /// in packed order.
    void serializeStore(TarnArchive &archive) override;
    /// Restores the base tokens, resizes to the stored order and reads the packed "data" in this
    /// matrix's storage form. Stored "rows" and "cols" that differ leave the shape and elements
    /// as they were, and no "data" is read.
    void serializeRestore(TarnArchive &archive) override;
    /// Makes this object's own address its identity again.
    void resetPointers() override;
    /// Returns false, whatever has happened to the matrix.
    bool isModified() override;

    // The rest of the restore sequence and the identity queries, public although the base is not.
    using TarnSerializable::get;
    using TarnSerializable::getBasePointer;
    using TarnSerializable::getOldPointer;
    using TarnSerializable::reconnectPointers;
    using TarnSerializable::setModified;

    /// Returns element (row, col) of the full square matrix, read from (col, row) when the
    /// position lies outside the stored triangle.
    virtual double getElement(int row, int col) const;
    /// Writes the one stored element that stands for both (row, col) and (col, row).
    virtual void setElement(int row, int col, double value);

    /// Reallocates to order rows with all elements 0.0; does nothing at all when rows differs
    /// from cols. A negative order is taken as 0. Strong guarantee: when the allocation throws
    /// (std::bad_alloc, also for a size beyond the address space), the matrix keeps its order and
    /// elements, as if the call had not been made.
    void resize(int rows, int cols);

    /// Returns the order.
    int nRows() const { return rows; }
    /// Returns the column count, equal to the order.
    int nCols() const { return cols; }
    /// Returns the storage form: 0 for upper storage, anything else for lower.
    int getStorage() const { return storage; }

    /// Returns true when the orders agree and `TarnMath::equals` holds for every packed element,
    /// in packed order. The storage forms are not compared.
    bool operator==(const TarnSymmetricMatrix &other) const;
    /// Writes the full n x n square, through `getElement`, to the debug text channel as
    /// `TarnMatrix::dump` does.
    void dump(int precision) const;

protected:
    /// Returns the number of packed elements of order n: n x (n + 1) / 2.
    static std::size_t packedCount(std::int32_t order) {
        return static_cast<std::size_t>(order) * (static_cast<std::size_t>(order) + 1) / 2;
    }
    /// Returns true when this matrix keeps the upper triangle.
    bool isUpperStorage() const { return storage == 0; }
    /// Returns the stored cell of (row, col), which must lie in the stored triangle: column col
    /// of row row sits at rowTable[row][col - row] in upper storage and at rowTable[row][col] in
    /// lower storage.
    double *storedCell(int row, int col) const {
        return rowTable[row] + (isUpperStorage() ? col - row : col);
    }

    /// The order n.
    std::int32_t rows = 0;
    /// Equal to rows in every sized matrix.
    std::int32_t cols = 0;
    /// The packed block of n x (n + 1) / 2 doubles; null until sized.
    double *elements = nullptr;
    /// n entries; entry i points at the first stored element of row i. Null until sized.
    double **rowTable = nullptr;
    /// 0 for upper storage, anything else for lower storage.
    std::int32_t storage = 0;

private:
    friend class TarnMatrix;
};
