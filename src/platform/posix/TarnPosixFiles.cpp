// POSIX implementation of the file and directory services of the platform seam.
//
// Portable POSIX throughout, with Linux extras where Linux tells more: file times to the
// nanosecond (the st_*tim fields) and the birth time (statx). Elsewhere the times are whole
// seconds and the creation time is the last status change. Directory entries use the entry type
// where the system's readdir gives one, and ask the file system otherwise.
#include "platform/TarnPlatform.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <limits>
#include <string>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace tarn {
namespace platform {
namespace {

// Seconds from 1601-01-01 to 1970-01-01, both 00:00 UTC, and the tick rate of file times.
constexpr std::int64_t kSecondsFrom1601To1970 = 11644473600;
constexpr std::int64_t kTicksPerSecond = 10000000;
constexpr std::int64_t kNanosecondsPerTick = 100;
constexpr std::int64_t kNanosecondsPerSecond = 1000000000;
// The largest file time Windows accepts; later POSIX times are clamped to it.
constexpr std::int64_t kLargestTicks = std::numeric_limits<std::int64_t>::max();

// The pattern suffix that asks for a whole directory: backslash, star, dot, star.
constexpr char kAllEntriesSuffix[] = "\\*.*";
constexpr std::size_t kAllEntriesSuffixLength = sizeof(kAllEntriesSuffix) - 1;

// Converts a POSIX time (seconds and nanoseconds since 1970) to 100-ns ticks since 1601,
// clamping times before 1601 to 0 and times beyond the 63-bit tick range to kLargestTicks.
std::uint64_t ticksSince1601(std::int64_t seconds, std::int64_t nanoseconds) {
    if (nanoseconds < 0 || nanoseconds >= kNanosecondsPerSecond) {
        nanoseconds = 0;
    }
    if (seconds < -kSecondsFrom1601To1970) {
        return 0;
    }
    if (seconds > (kLargestTicks / kTicksPerSecond) - kSecondsFrom1601To1970 - 1) {
        return static_cast<std::uint64_t>(kLargestTicks);
    }
    const std::int64_t ticks =
        (seconds + kSecondsFrom1601To1970) * kTicksPerSecond + nanoseconds / kNanosecondsPerTick;
    return static_cast<std::uint64_t>(ticks);
}

// The three times of a status record, to the nanosecond where the system keeps them so.
struct StatusTimes {
    std::uint64_t access;
    std::uint64_t modification;
    std::uint64_t statusChange;
};

StatusTimes statusTimes(const struct stat &status) {
#if defined(__linux__)
    const auto ticks = [](const struct timespec &time) {
        return ticksSince1601(static_cast<std::int64_t>(time.tv_sec),
                              static_cast<std::int64_t>(time.tv_nsec));
    };
    return {ticks(status.st_atim), ticks(status.st_mtim), ticks(status.st_ctim)};
#else
    return {ticksSince1601(static_cast<std::int64_t>(status.st_atime), 0),
            ticksSince1601(static_cast<std::int64_t>(status.st_mtime), 0),
            ticksSince1601(static_cast<std::int64_t>(status.st_ctime), 0)};
#endif
}

// A file opened for inspection: read-only, never blocking (a FIFO without a writer would
// otherwise hang the caller), closed by the destructor. A directory is refused, as Windows
// refuses to open one for reading.
class InspectedFile {
public:
    explicit InspectedFile(const char *path)
        : descriptor_(::open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {
        if (descriptor_ >= 0 && (::fstat(descriptor_, &status_) != 0 || S_ISDIR(status_.st_mode))) {
            ::close(descriptor_);
            descriptor_ = -1;
        }
    }
    ~InspectedFile() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }
    InspectedFile(const InspectedFile &) = delete;
    InspectedFile &operator=(const InspectedFile &) = delete;

    bool isOpen() const { return descriptor_ >= 0; }
    int descriptor() const { return descriptor_; }
    const struct stat &status() const { return status_; }

private:
    int descriptor_;
    struct stat status_ {};
};

// The creation time: the birth time where the file system keeps one, else the status change.
std::uint64_t creationTicks(const InspectedFile &file) {
#if defined(__linux__) && defined(STATX_BTIME)
    struct statx extended {};
    if (::statx(file.descriptor(), "", AT_EMPTY_PATH, STATX_BTIME, &extended) == 0 &&
        (extended.stx_mask & STATX_BTIME) != 0) {
        return ticksSince1601(static_cast<std::int64_t>(extended.stx_btime.tv_sec),
                              static_cast<std::int64_t>(extended.stx_btime.tv_nsec));
    }
#endif
    return statusTimes(file.status()).statusChange;
}

std::uint32_t attributesOfMode(mode_t mode) {
    return S_ISDIR(mode) ? kFileAttributeDirectory : kFileAttributeNormal;
}

// The attribute word of one directory entry. The entry type usually answers where readdir gives
// one (not a POSIX field); a symbolic link is followed (it lists as what it points to), and an
// unknown type, or any entry where there is no type, is asked of the file system. A link that
// leads nowhere lists as a plain file.
std::uint32_t entryAttributes(DIR *directory, const struct dirent &entry) {
#if defined(DT_DIR) && defined(DT_LNK) && defined(DT_UNKNOWN)
    if (entry.d_type == DT_DIR) {
        return kFileAttributeDirectory;
    }
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN) {
        return kFileAttributeNormal;
    }
#endif
    struct stat status {};
    if (::fstatat(::dirfd(directory), entry.d_name, &status, 0) != 0) {
        return kFileAttributeNormal;
    }
    return attributesOfMode(status.st_mode);
}

// Closes a directory stream on every path out of listDirectory, exceptions included.
class DirectoryStream {
public:
    explicit DirectoryStream(const char *path) : stream_(::opendir(path)) {}
    ~DirectoryStream() {
        if (stream_ != nullptr) {
            ::closedir(stream_);
        }
    }
    DirectoryStream(const DirectoryStream &) = delete;
    DirectoryStream &operator=(const DirectoryStream &) = delete;

    DIR *get() const { return stream_; }

private:
    DIR *stream_;
};

} // namespace

bool fileOpensForReading(const char *path) {
    return InspectedFile(path).isOpen();
}

std::uint32_t fileAttributes(const char *path) {
    struct stat status {};
    if (::stat(path, &status) != 0) {
        return kInvalidFileAttributes;
    }
    return attributesOfMode(status.st_mode);
}

bool inspectFileSize(const char *path, std::uint32_t &size) {
    const InspectedFile file(path);
    if (!file.isOpen() || file.status().st_size < 0) {
        return false;
    }
    // Only the low 32 bits are reported, as GetFileSize without its high part does.
    size = static_cast<std::uint32_t>(static_cast<std::uint64_t>(file.status().st_size) & 0xFFFFFFFFu);
    return true;
}

bool inspectFileTimes(const char *path, FileTimes &times) {
    const InspectedFile file(path);
    if (!file.isOpen()) {
        return false;
    }
    const StatusTimes status = statusTimes(file.status());
    times.creation = creationTicks(file);
    times.lastAccess = status.access;
    times.lastWrite = status.modification;
    return true;
}

bool listDirectory(const char *pattern, DirectoryVisitor visit, void *context) {
    // Only "<directory>\*.*" is understood: the part in front of the suffix is the directory.
    const std::size_t length = std::strlen(pattern);
    if (length <= kAllEntriesSuffixLength || std::memcmp(pattern + length - kAllEntriesSuffixLength,
                                                         kAllEntriesSuffix, kAllEntriesSuffixLength) != 0) {
        return false;
    }
    const std::string directoryPath(pattern, length - kAllEntriesSuffixLength);
    const DirectoryStream directory(directoryPath.c_str());
    if (directory.get() == nullptr) {
        return false;
    }
    while (const struct dirent *entry = ::readdir(directory.get())) {
        visit(entry->d_name, entryAttributes(directory.get(), *entry), context);
    }
    return true;
}

bool createDirectory(const char *path) {
    return ::mkdir(path, 0777) == 0;
}

} // namespace platform
} // namespace tarn
