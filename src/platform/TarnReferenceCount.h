// The counted references of the seam's shared handles, the same on every platform.
#pragma once

#include <atomic>

namespace tarn {
namespace platform {

/// Adds a reference to `object`, whose `references` member is an atomic count, and returns it.
/// Null gives null. Safe from any thread that already holds a reference.
template <class Object>
Object *addReference(Object *object) {
    if (object != nullptr) {
        object->references.fetch_add(1, std::memory_order_relaxed);
    }
    return object;
}

/// Gives back one reference to `object` and returns true when it was the last one: the caller
/// then destroys the object, and everything the other holders did to it is visible. Null gives
/// false.
template <class Object>
bool dropReference(Object *object) {
    return object != nullptr && object->references.fetch_sub(1, std::memory_order_acq_rel) == 1;
}

} // namespace platform
} // namespace tarn
