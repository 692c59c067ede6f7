// The lane kernels of the SSE2 path: vectors of 2 doubles. Compiled with -msse2.
#include "foundation/TarnProcessor.h"

#if TARN_X86_KERNELS
#define TARN_LANES 2
#include "linalg/TarnLaneKernelsBody.h"

namespace tarn {
namespace linalg {
const LaneKernels laneKernelsSse2 = {laneAddTerms, laneFinishChunk, lanePivotRow};
} // namespace linalg
} // namespace tarn
#else
#include "linalg/TarnLaneKernels.h"

namespace tarn {
namespace linalg {
const LaneKernels laneKernelsSse2 = {nullptr, nullptr, nullptr};
} // namespace linalg
} // namespace tarn
#endif
