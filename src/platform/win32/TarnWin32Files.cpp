// Win32 implementation of the file and directory services of the platform seam.
#include "platform/TarnPlatform.h"

#include <fstream>
#include <windows.h>

namespace tarn {
namespace platform {
namespace {

// Closes a handle on every path out of the function that holds it, exceptions included. `Closer`
// names the one call that releases this kind of handle.
template <class Closer>
class ScopedHandle {
public:
    explicit ScopedHandle(HANDLE handle) : handle_(handle) {}
    ~ScopedHandle() {
        if (isOpen()) {
            Closer::close(handle_);
        }
    }
    ScopedHandle(const ScopedHandle &) = delete;
    ScopedHandle &operator=(const ScopedHandle &) = delete;

    bool isOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return handle_; }

private:
    HANDLE handle_;
};

struct FileCloser {
    static void close(HANDLE handle) { ::CloseHandle(handle); }
};
struct SearchCloser {
    static void close(HANDLE handle) { ::FindClose(handle); }
};
using InspectedFile = ScopedHandle<FileCloser>;
using FindSearch = ScopedHandle<SearchCloser>;

// Opens a file for inspection: read access, other readers allowed, an existing file only.
// CreateFileA refuses a directory here, which is what the seam promises.
HANDLE openForInspection(const char *path) {
    return ::CreateFileA(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                         nullptr);
}

std::uint64_t ticksOf(const FILETIME &time) {
    return (static_cast<std::uint64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
}

} // namespace

bool fileOpensForReading(const char *path) {
    // The runtime's stream opens with no sharing restriction; a directory does not open.
    std::ifstream stream(path, std::ios::in | std::ios::binary);
    return stream.is_open() && stream.good();
}

std::uint32_t fileAttributes(const char *path) {
    return static_cast<std::uint32_t>(::GetFileAttributesA(path));
}

bool inspectFileSize(const char *path, std::uint32_t &size) {
    const InspectedFile file(openForInspection(path));
    if (!file.isOpen()) {
        return false;
    }
    // The high part is not asked for: only the low 32 bits of the size are reported.
    size = static_cast<std::uint32_t>(::GetFileSize(file.get(), nullptr));
    return true;
}

bool inspectFileTimes(const char *path, FileTimes &times) {
    const InspectedFile file(openForInspection(path));
    if (!file.isOpen()) {
        return false;
    }
    FILETIME creation{};
    FILETIME lastAccess{};
    FILETIME lastWrite{};
    if (!::GetFileTime(file.get(), &creation, &lastAccess, &lastWrite)) {
        return false;
    }
    times.creation = ticksOf(creation);
    times.lastAccess = ticksOf(lastAccess);
    times.lastWrite = ticksOf(lastWrite);
    return true;
}

bool listDirectory(const char *pattern, DirectoryVisitor visit, void *context) {
    WIN32_FIND_DATAA entry{};
    const FindSearch search(::FindFirstFileA(pattern, &entry));
    if (!search.isOpen()) {
        return false;
    }
    do {
        visit(entry.cFileName, static_cast<std::uint32_t>(entry.dwFileAttributes), context);
    } while (::FindNextFileA(search.get(), &entry));
    return true;
}

bool createDirectory(const char *path) {
    return ::CreateDirectoryA(path, nullptr) != 0;
}

} // namespace platform
} // namespace tarn
