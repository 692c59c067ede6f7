// Umbrella header: includes every public header of the Tarn library.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/version.h"

#include "tarn/foundation/TarnObject.h"
#include "tarn/foundation/TarnString.h"
#include "tarn/foundation/TarnVector.h"

#include "tarn/linalg/TarnBlockDiagonalMatrix.h"
#include "tarn/linalg/TarnLeastSquaresStatusControl.h"
#include "tarn/linalg/TarnLowerTriangularMatrix.h"
#include "tarn/linalg/TarnMath.h"
#include "tarn/linalg/TarnMatrix.h"
#include "tarn/linalg/TarnSymmetricMatrix.h"
#include "tarn/linalg/TarnUpperTriangularMatrix.h"
