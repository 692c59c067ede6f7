// Internal: the register-tile micro-kernels of the matrix products, one per kernel path.
#pragma once

#include <cstddef>

namespace tarn {
namespace linalg {

/// Computes one tile of rows x cols result elements: `a` holds `depth` packed steps of `rows`
/// values (a[k * rows + r] is row r at step k), `b` holds `depth` steps of `cols` values, ldb apart
/// (b[k * ldb + q]; ldb is cols for a packed panel). Element (r, q) of the tile, at
/// c[r * ldc + q], becomes its start value plus a[k * rows + r] * b[k * ldb + q] for k rising from
/// 0, one multiply and one add per term, never fused. The start value is 0.0, or with `accumulate`
/// the value c holds: a sum split over k continues from the partial sum stored before.
using MicroKernelRun = void (*)(std::ptrdiff_t depth, const double *a, const double *b, std::ptrdiff_t ldb,
                                double *c, std::ptrdiff_t ldc, bool accumulate);

/// A micro-kernel with its tile shape.
struct MicroKernel {
    int rows;
    int cols;
    MicroKernelRun run;
};

/// The tile of every path fits in this many elements.
constexpr int kMaxTileElements = 8 * 16;

/// The micro-kernels. Those of an instruction set the build lacks have no `run`: the processor
/// check never picks them.
extern const MicroKernel microKernelPortable;
extern const MicroKernel microKernelSse2;
extern const MicroKernel microKernelAvx2;
extern const MicroKernel microKernelAvx512;

} // namespace linalg
} // namespace tarn
