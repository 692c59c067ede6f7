// POSIX implementation of the system information services of the platform seam.
#include "platform/TarnPlatform.h"

#include <climits>
#include <ctime>
#include <unistd.h>

namespace tarn {
namespace platform {

int processorCount() {
#if defined(_SC_NPROCESSORS_ONLN)
    const long count = ::sysconf(_SC_NPROCESSORS_ONLN);
#else
    // A system without the query (it is not in POSIX, though nearly every one has it).
    const long count = 1;
#endif
    if (count < 1) {
        return 1;
    }
    return count > INT_MAX ? INT_MAX : static_cast<int>(count);
}

bool currentLocalTime(std::tm &local) {
    const std::time_t now = std::time(nullptr);
    if (now == static_cast<std::time_t>(-1)) {
        return false;
    }
    // localtime_r fills a caller's structure, so that no thread sees another one's result.
    std::tm result{};
    if (::localtime_r(&now, &result) == nullptr) {
        return false;
    }
    local = result;
    return true;
}

} // namespace platform
} // namespace tarn
