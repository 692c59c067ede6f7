// The lane kernels of the AVX2 path: vectors of 4 doubles. Compiled with -mavx2.
#include "foundation/TarnProcessor.h"

#if TARN_X86_KERNELS
#define TARN_LANES 4
#include "linalg/TarnLaneKernelsBody.h"

namespace tarn {
namespace linalg {
const LaneKernels laneKernelsAvx2 = {laneAddTerms, laneFinishChunk, lanePivotRow};
} // namespace linalg
} // namespace tarn
#else
#include "linalg/TarnLaneKernels.h"

namespace tarn {
namespace linalg {
const LaneKernels laneKernelsAvx2 = {nullptr, nullptr, nullptr};
} // namespace linalg
} // namespace tarn
#endif
