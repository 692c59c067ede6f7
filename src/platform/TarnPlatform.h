// The operating-system seam: every service the library takes from the platform, declared once.
#pragma once

// Exactly one implementation of these declarations is built: src/platform/posix/ or
// src/platform/win32/, chosen by CMake. Subsystems call only what is declared here and never test
// the platform themselves. No operating-system header may be included from this file. Each
// declaration states the contract that both implementations meet.

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <ctime>

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

// ---- Files and directories ---------------------------------------------------------------------
// Paths are whole texts handed to the platform unchanged; neither implementation splits them.

/// The attribute word of a path that names nothing (every bit set).
constexpr std::uint32_t kInvalidFileAttributes = 0xFFFFFFFFu;
/// The directory bit of an attribute word.
constexpr std::uint32_t kFileAttributeDirectory = 16u;
/// The attribute word that POSIX reports for anything that exists and is not a directory.
constexpr std::uint32_t kFileAttributeNormal = 128u;

/// The three times of a file, each in 100-ns ticks since 1601-01-01 00:00 UTC.
struct FileTimes {
    std::uint64_t creation = 0;   ///< Creation (POSIX: birth time where the file system keeps one,
                                  ///< else the last status change).
    std::uint64_t lastAccess = 0; ///< Last access.
    std::uint64_t lastWrite = 0;  ///< Last write.
};

/// Returns true when `path` names an existing file that opens for reading, with no sharing
/// restriction; the file is closed again at once. A directory never counts as such a file.
bool fileOpensForReading(const char *path);

/// Returns the attribute word of `path`, or kInvalidFileAttributes when it names nothing. Windows
/// reports the system's own word; POSIX reports exactly kFileAttributeDirectory for a directory
/// and exactly kFileAttributeNormal for anything else that exists.
std::uint32_t fileAttributes(const char *path);

/// Opens `path` for inspection (an existing file, read access, other readers allowed; a directory
/// does not open), stores the low 32 bits of its size in bytes in `size` and closes it again.
/// Returns false, leaving `size` alone, when the file does not open or its size is unknown.
bool inspectFileSize(const char *path, std::uint32_t &size);

/// Opens `path` for inspection as inspectFileSize does, stores its three times in `times` and
/// closes it again. Returns false, leaving `times` alone, when the file does not open or its times
/// cannot be read. POSIX times before 1601 read as 0 and times beyond the tick range as
/// 0x7FFFFFFFFFFFFFFF, the largest time Windows accepts.
bool inspectFileTimes(const char *path, FileTimes &times);

/// The receiver of directory entries: called once per entry with the bare entry name and its
/// attribute word (see fileAttributes).
using DirectoryVisitor = void (*)(const char *name, std::uint32_t attributes, void *context);

/// Calls `visit` with `context` for every entry that matches `pattern`, in the order the system
/// delivers them; the dot entries "." and ".." come as directories where the system lists them.
/// The one pattern both implementations understand is a directory text followed by "\*.*"
/// (backslash, star, dot, star), which lists that whole directory; POSIX refuses any other
/// pattern and an empty directory text. Returns false when the search does not start (no entry
/// is then visited). The search is closed on every path, also when `visit` throws.
bool listDirectory(const char *pattern, DirectoryVisitor visit, void *context);

/// Creates the one directory `path` with default security (POSIX: mode 0777 before the umask).
/// Returns true when it was created; false when it exists already, its parent is missing or the
/// system refuses.
bool createDirectory(const char *path);

// ---- System information ------------------------------------------------------------------------

/// Returns the number of processors the system reports (Windows: GetSystemInfo; POSIX: the
/// processors online). Never less than 1: a count the system does not give reads as 1.
int processorCount();

/// Stores the current time as local calendar time in `local` (the semantics of _time64 followed
/// by _localtime64). Safe to call from any thread. Returns false, leaving `local` alone, when the
/// clock or the conversion fails.
bool currentLocalTime(std::tm &local);

} // namespace platform
} // namespace tarn
