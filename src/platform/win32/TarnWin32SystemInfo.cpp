// Win32 implementation of the system information services of the platform seam.
#include "platform/TarnPlatform.h"

#include <climits>
#include <time.h>
#include <windows.h>

namespace tarn {
namespace platform {

int processorCount() {
    SYSTEM_INFO info{};
    ::GetSystemInfo(&info);
    if (info.dwNumberOfProcessors < 1) {
        return 1;
    }
    return info.dwNumberOfProcessors > INT_MAX ? INT_MAX : static_cast<int>(info.dwNumberOfProcessors);
}

bool currentLocalTime(std::tm &local) {
    const __time64_t now = ::_time64(nullptr);
    if (now == static_cast<__time64_t>(-1)) {
        return false;
    }
    // _localtime64 returns the runtime's per-thread structure: it is copied out at once.
    const struct tm *converted = ::_localtime64(&now);
    if (converted == nullptr) {
        return false;
    }
    local = *converted;
    return true;
}

} // namespace platform
} // namespace tarn
