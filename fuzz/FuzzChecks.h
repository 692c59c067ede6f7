// Checks shared by the fuzz targets: a failed check stops the run as a finding.
#pragma once

#include <cmath>
#include <cstring>

namespace fuzzcheck {

/// Stops the process with a trap, which libFuzzer reports as a crash with the input, when
/// `condition` is false.
inline void check(bool condition) {
    if (!condition) {
        __builtin_trap();
    }
}

/// Two doubles are the same value when their bits match, or when both are NaN of one sign.
inline bool sameDouble(double left, double right) {
    if (std::isnan(left) || std::isnan(right)) {
        return std::isnan(left) && std::isnan(right) && std::signbit(left) == std::signbit(right);
    }
    return std::memcmp(&left, &right, sizeof left) == 0;
}

} // namespace fuzzcheck
