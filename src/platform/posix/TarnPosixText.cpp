// POSIX implementation of the text services of the platform seam.
#include "platform/TarnPlatform.h"

#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace tarn {
namespace platform {

int formatBounded(char *buffer, std::size_t capacity, const char *format, va_list arguments,
                  std::size_t *needed) {
    if (needed != nullptr) {
        *needed = 0;
    }
    const int written = std::vsnprintf(buffer, capacity + 1, format, arguments);
    if (written < 0) {
        buffer[0] = '\0';
        return kFormatError;
    }
    if (static_cast<std::size_t>(written) > capacity) {
        if (needed != nullptr) {
            *needed = static_cast<std::size_t>(written);
        }
        return kFormatDidNotFit;
    }
    return written;
}

const char *textLineEnd() {
    return "\n";
}

void writeDefaultDebugText(const char *text) {
    // One write call per text, so that texts from several threads do not interleave mid-line.
    std::size_t remaining = std::strlen(text);
    while (remaining > 0) {
        const ssize_t written = ::write(STDERR_FILENO, text, remaining);
        if (written <= 0) {
            return;
        }
        text += written;
        remaining -= static_cast<std::size_t>(written);
    }
}

} // namespace platform
} // namespace tarn
