// The object root, the self-test interface and getInt.
#include "tarn/foundation/TarnObject.h"

// Out-of-line destructors anchor the two vtables in the library.
TarnObject::~TarnObject() = default;
TarnTestable::~TarnTestable() = default;

bool TarnObject::isa(const char *name) const {
    return isa(std::string(name));
}

int getInt() {
    return 3;
}
