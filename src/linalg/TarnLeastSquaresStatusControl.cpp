// Class identity of the least-squares status record; its accessors are inline.
#include "tarn/linalg/TarnLeastSquaresStatusControl.h"

// The out-of-line destructor anchors the vtable in the library.
TarnLeastSquaresStatusControl::~TarnLeastSquaresStatusControl() = default;

bool TarnLeastSquaresStatusControl::isa(const std::string &name) const {
    return tarn::isClassName(name, "TarnLeastSquaresStatusControl");
}

std::string TarnLeastSquaresStatusControl::getClassName() const {
    return "TarnLeastSquaresStatusControl";
}
