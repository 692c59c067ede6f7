// The operating-system seam: every service the library takes from the platform, declared once.
#pragma once

// Exactly one implementation of these declarations is built: src/platform/posix/ or
// src/platform/win32/, chosen by CMake. Subsystems call only what is declared here and never test
// the platform themselves. No operating-system header may be included from this file. Each
// declaration states the contract that both implementations meet. The POSIX implementation uses
// portable POSIX interfaces; where Linux offers more (file times to the nanosecond, birth times,
// a nice value per thread) it takes that behind a check inside the implementation, with the
// portable form elsewhere. The semaphore and thread functions of both never throw: a lack of
// memory there is reported like any other lack of a system resource, by a null result.

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

/// The line end of the platform's text files, as its text mode writes a line feed: "\r\n" on
/// Windows, "\n" on POSIX.
const char *textLineEnd();

/// Compares two NUL-terminated texts with the letters A-Z folded to a-z, bytes as unsigned
/// values. Returns a negative, zero or positive value; only the sign has a meaning.
/// (One implementation serves every platform: src/platform/TarnTextCompare.cpp.)
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
    std::uint64_t creation = 0;   ///< Creation (Linux: birth time where the file system keeps one;
                                  ///< else, and on other POSIX systems, the last status change).
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
/// cannot be read. POSIX times are exact to the nanosecond on Linux and to the second elsewhere;
/// times before 1601 read as 0 and times beyond the tick range as 0x7FFFFFFFFFFFFFFF, the largest
/// time Windows accepts.
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

// ---- Semaphores, threads and sleep -------------------------------------------------------------

/// The time-out of waitSemaphore and waitThread, and the length of sleepMilliseconds, that means
/// no limit.
constexpr std::uint32_t kWaitForever = 0xFFFFFFFFu;
/// The exit code that getThreadExitCode reports while a thread has not ended yet.
constexpr std::uint32_t kStillActive = 259u;

/// A counting semaphore. Opaque: known only to the implementation. A handle is a counted
/// reference: createSemaphore gives the first, shareSemaphore one more, and dropSemaphore gives
/// one back; the semaphore lives as long as any reference does. Every function below may be
/// called from any thread at the same time, as long as the caller's reference is not dropped
/// meanwhile. Every function accepts null and then fails without effect.
struct SemaphoreObject;

/// Creates an unnamed semaphore whose initial count and maximum count are both `count`. Returns
/// null when `count` is below 1 or the system has no semaphore to give, out of memory included;
/// it never throws.
SemaphoreObject *createSemaphore(int count);

/// Adds a reference to `semaphore` and returns it (null gives null).
SemaphoreObject *shareSemaphore(SemaphoreObject *semaphore);

/// Gives back one reference; the last one destroys the semaphore. A thread still waiting on it
/// must hold a reference of its own.
void dropSemaphore(SemaphoreObject *semaphore);

/// Takes one unit, waiting at most `timeoutMs` milliseconds for one to be free: 0 polls,
/// kWaitForever waits without limit. Returns true when a unit was taken, false at the time-out
/// or for null.
bool waitSemaphore(SemaphoreObject *semaphore, std::uint32_t timeoutMs);

/// Adds `n` units and wakes as many waiters. Returns false and changes nothing when `n` is below
/// 1, when the count would pass the maximum, or for null.
bool releaseSemaphore(SemaphoreObject *semaphore, int n);

/// A system thread. Opaque: known only to the implementation. A handle is a counted reference to
/// the thread's record, not the thread itself: dropping the last one (closeThread) never stops
/// or waits for the thread, which keeps its own reference until it ends. Every function below
/// may be called from any thread; every one accepts null and then fails without effect.
struct ThreadObject;

/// The code that a new thread runs; its result becomes the thread's exit code (in 32 bits).
using ThreadEntry = unsigned long (*)(void *argument);

/// Creates a thread, with the platform's default stack size, that stands suspended at a gate:
/// `entry(argument)` begins only after resumeThread. Returns null when the system cannot create
/// a thread, out of memory included; it never throws. So that the caller can set a priority
/// first, the thread exists in full when this returns. A created thread must be resumed: one that
/// is never resumed waits for good.
ThreadObject *createSuspendedThread(ThreadEntry entry, void *argument);

/// Adds a reference to `thread` and returns it (null gives null).
ThreadObject *shareThread(ThreadObject *thread);

/// Gives back one reference. Does not affect the thread.
void closeThread(ThreadObject *thread);

/// Sets the scheduling priority of `thread` to `level`, one of the thread priority levels of the
/// Windows family (-15 idle, -2 to 2, 15 time-critical). Best effort: on Linux the level maps
/// onto the nice value of that one thread (-15 to 19, -2 to 10, -1 to 5, 0 to 0, 1 to -5, 2 to
/// -10, 15 to -20, relative to the process's nice value); on other POSIX systems, which have no
/// nice value per thread, the same scale (19 slowest to -20 fastest) is spread over the range of
/// the thread's scheduling policy. A raise that the system refuses an unprivileged process is
/// ignored. On a thread that has ended the call has no effect. Returns false when the system
/// refused the level, and for null.
bool setThreadPriority(ThreadObject *thread, int level);

/// Opens the gate of a suspended thread so that its entry begins. Returns false for null.
bool resumeThread(ThreadObject *thread);

/// Stores the thread's exit code through `code`: kStillActive until the entry has returned
/// (while suspended too), then the entry's result. Returns false, storing nothing, for null.
bool getThreadExitCode(ThreadObject *thread, std::uint32_t *code);

/// Waits until the thread's entry has returned, at most `timeoutMs` milliseconds: 0 polls,
/// kWaitForever waits without limit. Any number of threads may wait at once. Returns true when
/// the thread has ended; false at the time-out or for null. What the thread did before it ended
/// is visible to the caller after a true result.
bool waitThread(ThreadObject *thread, std::uint32_t timeoutMs);

/// Suspends the calling thread for at least `milliseconds` milliseconds; kWaitForever suspends
/// it without limit, and 0 only gives up the rest of its time slice.
void sleepMilliseconds(std::uint32_t milliseconds);

} // namespace platform
} // namespace tarn
