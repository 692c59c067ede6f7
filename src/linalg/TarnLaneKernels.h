// Internal: the LU's row update, chunk triangle and pivot search, written once over vectors of
// doubles and compiled for each kernel path with that path's vector width.
#pragma once

#include "linalg/TarnMatrixKernels.h"

namespace tarn {
namespace linalg {

/// The kernels of one path; see `addScaledTerms`, `finishChunk` and `pivotRow` in
/// TarnMatrixKernels.h for what each computes.
struct LaneKernels {
    void (*addTerms)(double *const *y, int targets, const double *const *x, const double *factors, int terms,
                     int count);
    void (*finishChunk)(const ChunkTriangle &chunk);
    int (*pivotRow)(const double *column, int from, int to);
};

/// The kernels of each path. Those of an instruction set the build lacks are null: the processor
/// check never picks them.
extern const LaneKernels laneKernelsPortable;
extern const LaneKernels laneKernelsSse2;
extern const LaneKernels laneKernelsAvx2;
extern const LaneKernels laneKernelsAvx512;

} // namespace linalg
} // namespace tarn
