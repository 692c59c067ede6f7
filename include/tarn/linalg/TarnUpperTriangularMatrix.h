/// \file
/// The upper triangular matrix in packed upper storage.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnObject.h"
#include "tarn/foundation/TarnString.h"
#include "tarn/foundation/TarnVector.h"
#include "tarn/linalg/TarnMatrix.h"
#include "tarn/linalg/TarnSymmetricMatrix.h"

class TarnLowerTriangularMatrix;

/// An upper triangular matrix: the packed upper triangle of `TarnSymmetricMatrix`, with zeros
/// below the diagonal that are neither stored nor writable. It answers to its base's class name,
/// also in an archive. Products loop over the stored triangle only. Shape mismatches give false or
/// an empty result. One thread at a time per object.
class TARN_API TarnUpperTriangularMatrix : public TarnSymmetricMatrix, public TarnTestable {
public:
    /// Makes an empty matrix with upper storage.
    TarnUpperTriangularMatrix();
    /// Makes a matrix of order rows from `packed`, in upper packed order; rows different from
    /// cols leave it empty.
    TarnUpperTriangularMatrix(const double *packed, int rows, int cols);
    /// Releases nothing of its own; the base releases the packed block and the row table.
    ~TarnUpperTriangularMatrix() override;

    /// Returns 0.0 below the diagonal (col < row), otherwise the stored element.
    double getElement(int row, int col) const override;
    /// Writes on and above the diagonal (col >= row); below it nothing happens.
    void setElement(int row, int col, double value) override;

    /// Resizes `target` to this order and fills its stored triangle with the transpose.
    void transpose(TarnLowerTriangularMatrix &target) const;
    /// Puts this x `other` into `target`, resized to rows x other's cols; each sum starts at the
    /// diagonal. Returns false, `target` untouched, when this order differs from other's rows.
    bool times(TarnMatrix &target, const TarnMatrix &other) const;
    /// Returns this x `other`; a 0 x 0 matrix on a dimension mismatch.
    TarnMatrix operator*(const TarnMatrix &other) const;

    /// Runs the self-tests of the upper triangular form, appending a heading and one line per
    /// check to `results`. Reads nothing of this object. Returns true when every check passed.
    bool test(TarnVector<TarnString> &results) override;
};
