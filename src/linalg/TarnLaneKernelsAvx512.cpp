// The lane kernels of the AVX-512 path: vectors of 8 doubles. Compiled with -mavx512f.
#include "foundation/TarnProcessor.h"

#if TARN_X86_KERNELS
#define TARN_LANES 8
#include "linalg/TarnLaneKernelsBody.h"

namespace tarn {
namespace linalg {
const LaneKernels laneKernelsAvx512 = {laneAddTerms, laneFinishChunk, lanePivotRow};
} // namespace linalg
} // namespace tarn
#else
#include "linalg/TarnLaneKernels.h"

namespace tarn {
namespace linalg {
const LaneKernels laneKernelsAvx512 = {nullptr, nullptr, nullptr};
} // namespace linalg
} // namespace tarn
#endif
