// The kernels' dispatch: each call goes to the kernel of the path that the processor check gives.
#include "linalg/TarnMatrixKernels.h"

#include "foundation/TarnProcessor.h"
#include "linalg/TarnLaneKernels.h"

#include <algorithm>
#include <cstddef>

namespace tarn {
namespace linalg {
namespace {

const LaneKernels &activeLaneKernels() {
    switch (kernelPath()) {
    case KernelPath::avx512:
        return laneKernelsAvx512;
    case KernelPath::avx2:
        return laneKernelsAvx2;
    case KernelPath::sse2:
        return laneKernelsSse2;
    default:
        return laneKernelsPortable;
    }
}

} // namespace

void transpose(const double *source, std::ptrdiff_t ldSource, int rows, int cols, double *target,
               std::ptrdiff_t ldTarget) {
    // Tiles of kTile x kTile elements: the rows read and the rows written by one tile stay in the
    // nearest cache, where a whole-row walk would write each target row once per source row.
    constexpr int kTile = 16;
    for (int firstRow = 0; firstRow < rows; firstRow += kTile) {
        const int lastRow = std::min(rows, firstRow + kTile);
        for (int firstCol = 0; firstCol < cols; firstCol += kTile) {
            const int lastCol = std::min(cols, firstCol + kTile);
            for (int j = firstCol; j < lastCol; ++j) {
                double *column = target + j * ldTarget;
                for (int i = firstRow; i < lastRow; ++i) {
                    column[i] = source[i * ldSource + j];
                }
            }
        }
    }
}

void finishChunk(const ChunkTriangle &chunk) {
    activeLaneKernels().finishChunk(chunk);
}

int pivotRow(const double *column, int from, int to) {
    return activeLaneKernels().pivotRow(column, from, to);
}

void addScaledTerms(double *const *y, int targets, const double *const *x, const double *factors, int terms,
                    int count) {
    activeLaneKernels().addTerms(y, targets, x, factors, terms, count);
}

void addScaled(double *y, const double *x, double factor, int count) {
    const double factors[kMaxTerms] = {factor};
    addScaledTerms(&y, 1, &x, factors, 1, count);
}

} // namespace linalg
} // namespace tarn
