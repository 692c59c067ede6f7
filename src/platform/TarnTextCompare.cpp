// The case-blind comparison of the platform seam, one implementation for every platform.
#include "platform/TarnPlatform.h"

namespace tarn {
namespace platform {

int compareNoCase(const char *left, const char *right) {
    // Folded by hand rather than by the runtime: this keeps the C locale's meaning whatever
    // locale the application selected, and bytes above 127 order as unsigned values everywhere.
    // Not every Windows runtime's _stricmp does so (Wine's orders them as signed values).
    const auto fold = [](unsigned char byte) -> int {
        return (byte >= 'A' && byte <= 'Z') ? byte + ('a' - 'A') : byte;
    };
    const auto *l = reinterpret_cast<const unsigned char *>(left);
    const auto *r = reinterpret_cast<const unsigned char *>(right);
    while (*l != 0 && fold(*l) == fold(*r)) {
        ++l;
        ++r;
    }
    return fold(*l) - fold(*r);
}

} // namespace platform
} // namespace tarn
