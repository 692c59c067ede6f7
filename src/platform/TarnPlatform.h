// The operating-system seam: every service the library takes from the platform, declared once.
#pragma once

// Exactly one implementation of these declarations is built: src/platform/posix/ or
// src/platform/win32/, chosen by CMake. Subsystems call only what is declared here and never test
// the platform themselves. No operating-system header may be included from this file. Each
// declaration states the contract that both implementations meet.

#include <cstdarg>
#include <cstddef>
#include <cstdint>

namespace tarn {
namespace platform {

// ---- Text --------------------------------------------------------------------------------------

/// The result of formatBounded when the output did not fit the capacity.
constexpr int kFormatDidNotFit = -1;
/// The result of formatBounded when the formatter reported an error other than lack of room.
/// (The Win32 runtime does not tell the two apart and reports kFormatDidNotFit for both.)
constexpr int kFormatError = -2;

/// Formats `format` with `arguments` into `buffer`, which holds `capacity` + 1 bytes, writing at
/// most `capacity` characters and always a terminating NUL. Returns the number of characters of
/// the whole output when it fits in `capacity`, else kFormatDidNotFit (the buffer then holds the
/// first `capacity` characters) or kFormatError. `arguments` is consumed: pass a fresh copy.
/// When the output did not fit and the platform can tell the length of the whole output, that
/// length is stored through `needed` (when not null); otherwise 0 is stored there.
int formatBounded(char *buffer, std::size_t capacity, const char *format, va_list arguments,
                  std::size_t *needed);

/// Compares two NUL-terminated texts with the letters A-Z folded to a-z, bytes as unsigned
/// values. Returns a negative, zero or positive value; only the sign has a meaning.
int compareNoCase(const char *left, const char *right);

// ---- Debug text channel ------------------------------------------------------------------------

/// The receiver of debug text: called once per write with the whole text and the context that
/// was registered with it.
using DebugHandler = void (*)(const char *text, void *context);

/// Installs `handler` with `context` for every later debug write; a null handler restores the
/// platform's default channel (standard error on POSIX, OutputDebugStringA on Windows). Safe to
/// call from any thread.
void setDebugHandler(DebugHandler handler, void *context);

/// Writes `text` to the debug channel: exactly one call of the installed handler, or one write to
/// the default channel. Safe to call from any thread.
void writeDebugText(const char *text);

/// Writes `text` to the platform's own debug channel, bypassing any installed handler.
void writeDefaultDebugText(const char *text);

} // namespace platform
} // namespace tarn
