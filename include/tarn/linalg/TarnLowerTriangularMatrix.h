/// \file
/// The lower triangular matrix in packed lower storage.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnObject.h"
#include "tarn/foundation/TarnString.h"
#include "tarn/foundation/TarnVector.h"
#include "tarn/linalg/TarnSymmetricMatrix.h"

class TarnUpperTriangularMatrix;

/// A lower triangular matrix: the packed lower triangle of `TarnSymmetricMatrix`, with zeros
/// above the diagonal that are neither stored nor writable. It answers to its base's class name,
/// also in an archive. One thread at a time per object; nothing here reports an error.
class TARN_API TarnLowerTriangularMatrix : public TarnSymmetricMatrix, public TarnTestable {
public:
    /// Makes an empty matrix with lower storage.
    TarnLowerTriangularMatrix();
    /// Makes a matrix of order rows from `packed`, in lower packed order; rows different from
    /// cols leave it empty.
    TarnLowerTriangularMatrix(const double *packed, int rows, int cols);
    /// Releases nothing of its own; the base releases the packed block and the row table.
    ~TarnLowerTriangularMatrix() override;

    /// Returns 0.0 above the diagonal (col > row), otherwise the stored element.
    double getElement(int row, int col) const override;
    /// Writes on and below the diagonal (col <= row); above it nothing happens.
    void setElement(int row, int col, double value) override;

    /// Resizes `target` to this order and fills its stored triangle with the transpose.
    void transpose(TarnUpperTriangularMatrix &target) const;

    /// Runs the self-test of the lower triangular form, appending a heading and one line to
    /// `results`. Reads nothing of this object. Returns true when the check passed.
    bool test(TarnVector<TarnString> &results) override;
};
