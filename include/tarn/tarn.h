/// \file
/// Umbrella header: includes every public header of the Tarn library.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/version.h"

#include "tarn/foundation/TarnObject.h"
#include "tarn/foundation/TarnString.h"
#include "tarn/foundation/TarnVector.h"

#include "tarn/serialization/TarnArchive.h"
#include "tarn/serialization/TarnFileArchive.h"
#include "tarn/serialization/TarnHandleManager.h"
#include "tarn/serialization/TarnSerializable.h"
#include "tarn/serialization/TarnStringArchive.h"
#include "tarn/serialization/TarnToken.h"

#include "tarn/linalg/TarnBlockDiagonalMatrix.h"
#include "tarn/linalg/TarnLeastSquaresStatusControl.h"
#include "tarn/linalg/TarnLowerTriangularMatrix.h"
#include "tarn/linalg/TarnMath.h"
#include "tarn/linalg/TarnMatrix.h"
#include "tarn/linalg/TarnSymmetricMatrix.h"
#include "tarn/linalg/TarnUpperTriangularMatrix.h"

#include "tarn/config/TarnINIFile.h"
#include "tarn/config/TarnINIToken.h"

#include "tarn/system/TarnFileName.h"
#include "tarn/system/TarnSystem.h"
#include "tarn/system/TarnTextFile.h"

#include "tarn/concurrency/TarnSemaphore.h"
#include "tarn/concurrency/TarnThread.h"
#include "tarn/concurrency/TarnTimer.h"
#include "tarn/concurrency/TarnTimerListener.h"

#include "tarn/crypt/TarnCrypt.h"
