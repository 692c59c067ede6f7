// Helpers of the linear algebra tests: matrix elements as plain vectors, a limit on kernel paths.
#pragma once

#include "foundation/TarnProcessor.h"

#include <tarn/tarn.h>

#include <vector>

namespace tarntest {

/// The elements of `matrix` in row-major order.
inline std::vector<double> valuesOf(const TarnMatrix &matrix) {
    std::vector<double> values;
    for (int i = 0; i < matrix.nRows(); ++i) {
        values.insert(values.end(), matrix[i], matrix[i] + matrix.nCols());
    }
    return values;
}

/// The full square of a packed matrix, read through getElement.
inline std::vector<double> squareOf(const TarnSymmetricMatrix &matrix) {
    std::vector<double> values;
    for (int i = 0; i < matrix.nRows(); ++i) {
        for (int j = 0; j < matrix.nCols(); ++j) {
            values.push_back(matrix.getElement(i, j));
        }
    }
    return values;
}

/// Runs a scope's kernels on no path wider than the one given, and lifts the limit at its end.
class KernelPathLimit {
public:
    explicit KernelPathLimit(tarn::KernelPath widest) { tarn::limitKernelPath(widest); }
    ~KernelPathLimit() { tarn::limitKernelPath(tarn::KernelPath::avx512); }
    KernelPathLimit(const KernelPathLimit &) = delete;
    KernelPathLimit &operator=(const KernelPathLimit &) = delete;
};

} // namespace tarntest
