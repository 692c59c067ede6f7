// TarnSystem: debug output, processor count, directory listing, copying and scratch names.
#include "tarn/system/TarnSystem.h"

#include "platform/TarnPlatform.h"

#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <string>

namespace {

// The search pattern that lists a whole directory: backslash, star, dot, star.
constexpr char kAllEntriesPattern[] = "\\*.*";
constexpr char kScratchPrefix[] = "scratch-";

// Closes a C stream on every path out of cp, exceptions from the buffer allocation included.
struct StreamCloser {
    void operator()(std::FILE *stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, StreamCloser>;

// Appends one directory entry to the caller's vector unless it is a directory.
void addFileEntry(const char *name, std::uint32_t attributes, void *context) {
    if ((attributes & tarn::platform::kFileAttributeDirectory) != 0) {
        return;
    }
    static_cast<TarnVector<TarnString> *>(context)->add() = name;
}

// The byte size of an open stream, found by seeking to both ends; the stream is left at its
// start. Returns false when a position cannot be told.
bool streamSize(std::FILE *stream, long &size) {
    std::fseek(stream, 0, SEEK_SET);
    const long start = std::ftell(stream);
    std::fseek(stream, 0, SEEK_END);
    const long end = std::ftell(stream);
    std::fseek(stream, 0, SEEK_SET);
    if (start == -1L || end == -1L || end < start) {
        return false;
    }
    size = end - start;
    return true;
}

// The 25-byte asctime form of `time`, "Thu Nov 19 02:05:14 2026\n", printed here rather than by
// asctime, which shares one static buffer between threads and may overrun it on odd fields.
// A weekday or month outside its range prints as "???".
TarnString calendarText(const std::tm &time) {
    static const char *const weekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char *const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const char *weekday = (time.tm_wday >= 0 && time.tm_wday < 7) ? weekdays[time.tm_wday] : "???";
    const char *month = (time.tm_mon >= 0 && time.tm_mon < 12) ? months[time.tm_mon] : "???";
    TarnString text;
    text.format("%.3s %.3s%3d %.2d:%.2d:%.2d %lld\n", weekday, month, time.tm_mday, time.tm_hour, time.tm_min,
                time.tm_sec, 1900LL + time.tm_year);
    return text;
}

} // namespace

TarnSystem::~TarnSystem() = default;

void TarnSystem::out(const TarnString &text) {
    out(text.c_str());
}

void TarnSystem::out(const char *text) {
    tarn::platform::writeDebugText(text);
}

void TarnSystem::setDebugHandler(void (*handler)(const char *text, void *context), void *context) {
    tarn::platform::setDebugHandler(handler, context);
}

int TarnSystem::getNumberOfSystemProcessors() {
    return tarn::platform::processorCount();
}

double TarnSystem::unity(double value) {
    if (value < -1.0) {
        return -1.0;
    }
    if (value > 1.0) {
        return 1.0;
    }
    return value;
}

void TarnSystem::dir(TarnVector<TarnString> &files, const char *directory) {
    const std::string pattern = std::string(directory) + kAllEntriesPattern;
    // Emptied first, so that a search that does not start leaves no earlier names behind.
    files.removeAll();
    tarn::platform::listDirectory(pattern.c_str(), addFileEntry, &files);
}

void TarnSystem::mkdir(const char *path) {
    // The caller learns nothing: an existing directory or a missing parent pass silently.
    tarn::platform::createDirectory(path);
}

bool TarnSystem::cp(const char *source, const char *target) {
    // The same text twice would empty the file before it is read: refused before anything opens.
    if (std::strcmp(source, target) == 0) {
        return false;
    }
    // Both open before either is looked at: the target is created or emptied in every case, and
    // "r+b" asks for writing too, so a source that can only be read does not open.
    Stream input(std::fopen(source, "r+b"));
    Stream output(std::fopen(target, "w+b"));
    if (!input || !output) {
        return false;
    }
    long size = 0;
    if (!streamSize(input.get(), size)) {
        return false;
    }
    if (size == 0) {
        return true;
    }
    // One buffer of the whole size, one read, one write.
    const auto byteCount = static_cast<std::size_t>(size);
    const std::unique_ptr<char[]> buffer(new char[byteCount]);
    if (std::fread(buffer.get(), 1, byteCount, input.get()) != byteCount) {
        return false;
    }
    const bool written = std::fwrite(buffer.get(), 1, byteCount, output.get()) == byteCount;
    // A failed final flush loses bytes as surely as a short write does.
    const bool closed = std::fclose(output.release()) == 0;
    return written && closed;
}

void TarnSystem::uniqueFilename(TarnString &name) {
    std::tm now{};
    if (!tarn::platform::currentLocalTime(now)) {
        name = kScratchPrefix;
        return;
    }
    TarnString timeText = calendarText(now);
    timeText.trim();
    for (char &byte : static_cast<std::string &>(timeText)) {
        if (byte == ':') {
            byte = '-';
        } else if (static_cast<unsigned char>(byte) < 32) {
            byte = ' ';
        }
    }
    name = kScratchPrefix + static_cast<const std::string &>(timeText);
}
