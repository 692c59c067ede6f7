/// \file
/// The dense row-major matrix of doubles, its solvers, and its products with the packed forms.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnObject.h"
#include "tarn/foundation/TarnString.h"
#include "tarn/foundation/TarnVector.h"
#include "tarn/serialization/TarnArchive.h"
#include "tarn/serialization/TarnSerializable.h"

#include <cstdint>
#include <string>

class TarnSymmetricMatrix;
class TarnUpperTriangularMatrix;
class TarnBlockDiagonalMatrix;

/// A dense rows x cols matrix of doubles in one contiguous row-major block, with a table of row
/// pointers so that callers write `m[i][j]`. The matrix owns both arrays; a pointer obtained from
/// `getArray` or `operator[]` stays valid until the next operation that resizes this matrix.
/// Element access is not range-checked. Operations that fill a target resize the target first;
/// a target that is the same object as an operand is computed through a temporary, so aliasing is
/// safe. Shape errors give false or an empty (0 x 0) result; nothing is thrown by the library
/// itself (allocation failure propagates). Summation order is fixed (rising k from 0.0), so every
/// result is the same bit for bit on every build. It stores itself as a node named "TarnMatrix"
/// with the tokens "rows", "cols" and "data" (row-major). One thread at a time per object.
class TARN_API TarnMatrix : public TarnSerializable, TarnTestable {
public:
    /// Makes an unsized 0 x 0 matrix with no arrays.
    TarnMatrix();
    /// Makes a rows x cols matrix of zeros.
    TarnMatrix(int rows, int cols);
    /// Makes a rows x cols matrix and copies rows x cols doubles from `data`, row-major. The
    /// matrix keeps no reference to `data`.
    TarnMatrix(const double *data, int rows, int cols);
    /// Copies shape and elements of `other`; the object identity is that of a new object.
    TarnMatrix(const TarnMatrix &other);
    /// Releases the element block and the row table.
    ~TarnMatrix() override;

    using TarnObject::isa;
    /// Returns true exactly for "TarnMatrix"; base class names do not match.
    bool isa(const std::string &name) const override;
    /// Returns "TarnMatrix".
    std::string getClassName() const override;
    /// Stores the base tokens, then "rows" and "cols" by "%d" and "data", the rows x cols
    /// elements in row-major order.
    void serializeStore(TarnArchive &archive) override;
    /// Restores the base tokens, resizes to the stored "rows" x "cols" (0 when absent) and reads
    /// "data"; elements that the text does not reach stay 0.0.
    void serializeRestore(TarnArchive &archive) override;
    /// Makes this object's own address its identity again.
    void resetPointers() override;
    /// Returns false, whatever has happened to the matrix.
    bool isModified() override;

    /// Reallocates to rows x cols and sets every element to 0.0; former contents are always lost,
    /// even when the shape does not change. A negative count is taken as 0. Strong guarantee: the
    /// new arrays are allocated before the old ones are released, so when the allocation throws
    /// (std::bad_alloc, also for a size beyond the address space) the matrix keeps its shape and
    /// elements, as if the call had not been made.
    void resize(int rows, int cols);
    /// Resizes to `other`'s shape and copies its elements. Copying a matrix onto itself changes
    /// nothing.
    void copy(const TarnMatrix &other);
    /// Does `copy` and returns this matrix.
    TarnMatrix &operator=(const TarnMatrix &other);
    /// Sets every element to `value`; the shape stays. Returns this matrix.
    TarnMatrix &operator=(double value);
    /// Resizes to n x n and puts 1.0 on the diagonal.
    void identity(int n);

    /// Returns the row count.
    int nRows() const { return rows; }
    /// Returns the column count.
    int nCols() const { return cols; }
    /// Returns the row table: entry i points at element (i, 0). Null in an unsized matrix.
    double **getArray() { return rowTable; }
    /// Returns the first element of `row`; not range-checked.
    double *operator[](int row) const { return rowTable[row]; }

    /// Returns the element sums, in a matrix of `other`'s shape. The operands must have the same
    /// shape (not checked beyond staying inside both).
    TarnMatrix operator+(const TarnMatrix &other) const;
    /// Returns this minus `other`, as `operator+`.
    TarnMatrix operator-(const TarnMatrix &other) const;
    /// Returns this matrix with each element multiplied by `factor`.
    TarnMatrix operator*(double factor) const;

    /// Puts this x `other` into `target`, resized to rows x other's cols. Returns false and leaves
    /// `target` alone when this column count differs from other's row count.
    bool times(TarnMatrix &target, const TarnMatrix &other) const;
    /// Returns this x `other`; a 0 x 0 matrix when the inner dimensions differ.
    TarnMatrix operator*(const TarnMatrix &other) const;
    /// Puts the cols x rows transpose into `target`. Always true.
    bool transpose(TarnMatrix &target) const;
    /// Returns the transpose.
    TarnMatrix t() const;

    /// Returns rows firstRow..lastRow and columns firstCol..lastCol, both inclusive. Not
    /// range-checked; a range that gives a negative count gives a zero count.
    TarnMatrix subMatrix(int firstRow, int lastRow, int firstCol, int lastCol) const;
    /// Puts into `target` rowCount rows, row r being this matrix's row rowIndices[r] (rows may be
    /// permuted and repeated), columns firstCol..lastCol inclusive. Not range-checked. Always true.
    bool getMatrix(TarnMatrix &target, const int *rowIndices, int rowCount, int firstCol, int lastCol) const;

    /// Returns true when the shapes agree and `TarnMath::equals` holds for every element pair.
    bool operator==(const TarnMatrix &other) const;
    /// Writes each row to the debug text channel, elements by "%.<precision>e" and a tab, then
    /// "\n" as a separate write.
    void dump(int precision) const;

    /// Solves this x `x` = `b` for a square matrix by LU factorization with partial pivoting; `b`
    /// may have several columns. `x` is first made a rows x 1 zero column; it keeps that and the
    /// result is false when b's row count differs or a pivot is exactly 0.0.
    bool solve(TarnMatrix &x, const TarnMatrix &b) const;
    /// Puts the inverse of this square matrix into `inverse`. False, `inverse` untouched, when a
    /// pivot is exactly 0.0.
    bool invert(TarnMatrix &inverse) const;
    /// Returns the inverse; the 1 x 1 matrix 1.0 when the matrix is singular.
    TarnMatrix i() const;
    /// Performs no factorization: makes `x` a rows x 1 zero column, zeroes `b`, returns false.
    bool choleskySolve(TarnMatrix &x, TarnMatrix &b) const;
    /// Performs no factorization and returns false; a square matrix makes `inverse` a rows x 1
    /// zero column, a non-square one leaves it alone.
    bool choleskyInvert(TarnMatrix &inverse) const;
    /// Scales a one-row or one-column matrix to Euclidean length 1 and returns true (a zero vector
    /// becomes NaN). Any other shape gives false and no change.
    bool makeUnit();
    /// Returns a x b as a 3 x 1 matrix; the zero 3 x 1 matrix unless both are 3 x 1.
    static TarnMatrix crossProduct(const TarnMatrix &a, const TarnMatrix &b);

    /// Puts the transpose of this matrix times this matrix into the stored triangle of `target`,
    /// resized to cols x cols. Always true.
    bool AtA(TarnSymmetricMatrix &target) const;
    /// Puts this x `other` into `target`, reading only the stored triangle of `other`. Returns
    /// false and leaves `target` alone when this column count differs from other's order.
    bool times(TarnMatrix &target, const TarnUpperTriangularMatrix &other) const;
    /// Returns this x `other`; a 0 x 0 matrix when the dimensions do not match.
    TarnMatrix operator*(const TarnUpperTriangularMatrix &other) const;
    /// Adds the blocks of `blocks` corner to corner from element (0, 0). The blocks must fit
    /// inside this matrix (not checked).
    void plusEquals(const TarnBlockDiagonalMatrix &blocks);
    /// Does `plusEquals`.
    void operator+=(const TarnBlockDiagonalMatrix &blocks);

    /// Runs the dense-matrix self-tests, appending a heading and one line per check to
    /// `results`. Reads nothing of this object. Returns true when every check passed.
    bool test(TarnVector<TarnString> &results) override;

private:
    // Exchanges arrays and shape with `other`: how an aliased target receives a result.
    void swapContents(TarnMatrix &other);

    double *elements = nullptr;  // rows x cols, row-major
    double **rowTable = nullptr; // rowTable[i] == elements + i * cols
    std::int32_t rows = 0;
    std::int32_t cols = 0;
};
