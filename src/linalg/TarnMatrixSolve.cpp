// The solver members of TarnMatrix: LU solve and inverse, the fixed Cholesky outcomes,
// normalisation of a vector and the cross product.
#include "tarn/linalg/TarnMatrix.h"

#include "linalg/TarnLUDecomposition.h"

#include <cmath>

bool TarnMatrix::solve(TarnMatrix &x, const TarnMatrix &b) const {
    if (&x == this || &x == &b) {
        TarnMatrix solution;
        const bool solved = solve(solution, b);
        x.swapContents(solution);
        return solved;
    }
    x.resize(rows, 1);
    const TarnLUDecomposition decomposition(*this);
    return decomposition.solveFor(b, x);
}

bool TarnMatrix::invert(TarnMatrix &inverse) const {
    TarnMatrix result;
    const TarnLUDecomposition decomposition(*this);
    TarnMatrix unit;
    unit.identity(rows);
    if (!decomposition.solveFor(unit, result)) {
        return false;
    }
    inverse.swapContents(result);
    return true;
}

TarnMatrix TarnMatrix::i() const {
    TarnMatrix inverse;
    if (!invert(inverse)) {
        inverse.resize(1, 1);
        inverse.rowTable[0][0] = 1.0;
    }
    return inverse;
}

bool TarnMatrix::choleskySolve(TarnMatrix &x, TarnMatrix &b) const {
    // No factorization exists behind this member: it gives its fixed outcome.
    const int order = rows;
    x.resize(order, 1);
    b = 0.0;
    return false;
}

bool TarnMatrix::choleskyInvert(TarnMatrix &inverse) const {
    if (rows != cols) {
        return false;
    }
    const int order = rows;
    inverse.resize(order, 1);
    return false;
}

bool TarnMatrix::makeUnit() {
    int length = 0;
    if (rows == 1) {
        length = cols;
    } else if (cols == 1) {
        length = rows;
    } else {
        return false;
    }
    // A vector's elements are contiguous whichever way it stands.
    double sumOfSquares = 0.0;
    for (int index = 0; index < length; ++index) {
        sumOfSquares += elements[index] * elements[index];
    }
    const double norm = std::sqrt(sumOfSquares);
    for (int index = 0; index < length; ++index) {
        elements[index] /= norm;
    }
    return true;
}

TarnMatrix TarnMatrix::crossProduct(const TarnMatrix &a, const TarnMatrix &b) {
    TarnMatrix result(3, 1);
    if (a.rows != 3 || a.cols != 1 || b.rows != 3 || b.cols != 1) {
        return result;
    }
    const double *u = a.elements;
    const double *v = b.elements;
    result.elements[0] = u[1] * v[2] - u[2] * v[1];
    result.elements[1] = u[2] * v[0] - u[0] * v[2];
    result.elements[2] = u[0] * v[1] - u[1] * v[0];
    return result;
}
