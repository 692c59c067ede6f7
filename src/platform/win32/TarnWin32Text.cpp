// Win32 implementation of the text services of the platform seam.
#include "platform/TarnPlatform.h"

#include <windows.h>

#include <stdio.h>

namespace tarn {
namespace platform {

int formatBounded(char *buffer, std::size_t capacity, const char *format, va_list arguments,
                  std::size_t *needed) {
    // The runtime's _vsnprintf writes at most `capacity` characters and adds the NUL only when
    // there is room for it, so the NUL at buffer[capacity] is always set here. It returns -1 both
    // when the output did not fit and on a format error, and never tells the whole length.
    if (needed != nullptr) {
        *needed = 0;
    }
    const int written = ::_vsnprintf(buffer, capacity, format, arguments);
    buffer[capacity] = '\0';
    if (written < 0 || static_cast<std::size_t>(written) > capacity) {
        return kFormatDidNotFit;
    }
    return written;
}

const char *textLineEnd() {
    return "\r\n";
}

void writeDefaultDebugText(const char *text) {
    ::OutputDebugStringA(text);
}

} // namespace platform
} // namespace tarn
