// The lane kernels of the portable path: vectors of one double, that is plain scalar code.
#define TARN_LANES 1
#include "linalg/TarnLaneKernelsBody.h"

namespace tarn {
namespace linalg {

const LaneKernels laneKernelsPortable = {laneAddTerms, laneFinishChunk, lanePivotRow};

} // namespace linalg
} // namespace tarn
