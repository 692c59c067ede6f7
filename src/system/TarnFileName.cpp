// TarnFileName: taking backslash paths apart, rebuilding them, stepping numbers, file queries.
#include "tarn/system/TarnFileName.h"

#include "foundation/TarnAsciiBytes.h"
#include "platform/TarnPlatform.h"

#include <string>

namespace {

constexpr char kSeparator = '\\';
constexpr char kExtensionMark = '.';
constexpr char kDriveMark = ':';
constexpr unsigned int kInvalidSize = 0xFFFFFFFFu;
constexpr std::uint64_t kInvalidFileTime = 0xFFFFFFFFFFFFFFFFull;

// A text with a NUL byte inside would reach the system cut short and so name another file:
// the queries treat it as naming nothing.
bool isWholeSystemText(const std::string &text) {
    return text.find('\0') == std::string::npos;
}

// Adds one to a run of decimal digits in place, carrying leftwards; a carry out of the first
// digit widens the run by a leading 1. This is the run's value plus one printed zero-padded to
// the run's width, for runs of any length: none is too long for the number to be stepped.
void incrementDecimalRun(std::string &digits) {
    for (std::size_t index = digits.size(); index > 0; --index) {
        char &digit = digits[index - 1];
        if (digit != '9') {
            ++digit;
            return;
        }
        digit = '0';
    }
    digits.insert(digits.begin(), '1');
}

// The text of path, backslash, name, dot and extension, each separator written in every case.
std::string joinParts(const std::string &path, const std::string &name, const std::string &extension) {
    std::string text = path;
    text += kSeparator;
    text += name;
    text += kExtensionMark;
    text += extension;
    return text;
}

} // namespace

TarnFileName::~TarnFileName() = default;

TarnString TarnFileName::getPath() const {
    const size_type separator = rfind(kSeparator);
    if (separator != npos) {
        return TarnString(substr(0, separator));
    }
    // The one place that knows a drive prefix: "C:" in front of a name without a directory.
    if (length() > 1 && std::string::operator[](1) == kDriveMark) {
        return TarnString(substr(0, 2));
    }
    return TarnString();
}

TarnString TarnFileName::getFullFileName() const {
    const size_type separator = rfind(kSeparator);
    if (separator != npos) {
        return TarnString(substr(separator + 1));
    }
    return *this;
}

TarnString TarnFileName::getFileName() const {
    TarnString name = getFullFileName();
    const size_type mark = name.rfind(kExtensionMark);
    if (mark != npos) {
        name.erase(mark);
    }
    return name;
}

TarnString TarnFileName::getFileExt() const {
    const size_type mark = rfind(kExtensionMark);
    if (mark == npos) {
        return TarnString();
    }
    const size_type separator = rfind(kSeparator);
    if (separator != npos && mark < separator) {
        return TarnString();
    }
    return TarnString(substr(mark + 1));
}

// The setters read the parts they keep and copy the new part before the text changes, so that
// the argument may point into this very text.

void TarnFileName::setPath(const char *path) {
    const std::string newPath(path);
    const bool endsInSeparator = !newPath.empty() && newPath.back() == kSeparator;
    const TarnString name = getFileName();
    const TarnString extension = getFileExt();
    std::string text = newPath;
    if (!name.empty()) {
        if (!endsInSeparator) {
            text += kSeparator;
        }
        text += name;
        text += kExtensionMark;
        text += extension;
    }
    assign(std::move(text));
}

void TarnFileName::setFileName(const char *name) {
    assign(joinParts(getPath(), name, getFileExt()));
}

void TarnFileName::setFileExt(const char *extension) {
    assign(joinParts(getPath(), getFileName(), extension));
}

void TarnFileName::setFullFileName(const char *fullName) {
    std::string text = getPath();
    text += kSeparator;
    text += fullName;
    assign(std::move(text));
}

bool TarnFileName::exists() const {
    return isWholeSystemText(*this) && tarn::platform::fileOpensForReading(c_str());
}

bool TarnFileName::isDirectory() const {
    return isWholeSystemText(*this) &&
           tarn::platform::fileAttributes(c_str()) == tarn::platform::kFileAttributeDirectory;
}

unsigned int TarnFileName::getSize() const {
    std::uint32_t size = 0;
    if (!isWholeSystemText(*this) || !tarn::platform::inspectFileSize(c_str(), size)) {
        return kInvalidSize;
    }
    return size;
}

std::uint64_t TarnFileName::getFileTime(int selector) const {
    tarn::platform::FileTimes times;
    if (!isWholeSystemText(*this) || !tarn::platform::inspectFileTimes(c_str(), times)) {
        return kInvalidFileTime;
    }
    switch (selector) {
    case kAccessTime:
        return times.lastAccess;
    case kWriteTime:
        return times.lastWrite;
    default:
        return times.creation;
    }
}

void TarnFileName::increment() {
    const TarnString name = getFileName();
    if (name.empty()) {
        return;
    }
    // Find the run of digits at the end of the name; what stands in front of it is the stem.
    std::size_t runStart = name.size();
    while (runStart > 0 && tarn::isAsciiDigit(name[static_cast<unsigned int>(runStart - 1)])) {
        --runStart;
    }
    std::string stepped = name.substr(0, runStart);
    std::string digits = name.substr(runStart);
    if (digits.empty()) {
        digits = "1";
    } else {
        incrementDecimalRun(digits);
    }
    stepped += digits;
    // The new name goes through setFileName's text-pointer form, like any other caller's name: a
    // NUL byte inside the name ends the text that setFileName sees, so "x\0y9" puts "x" in place.
    setFileName(stepped.c_str());
}
