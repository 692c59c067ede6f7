// TarnINIFile: construction, loading with the byte scanner that defines the format, and saving.
#include "tarn/config/TarnINIFile.h"

#include "foundation/TarnAsciiBytes.h"
#include "platform/TarnPlatform.h"

#include <cstring>
#include <fstream>
#include <new>
#include <utility>

namespace {

// Bytes are ranked as signed 8-bit values, so 0x80 to 0xFF fall below 0x20 with the control
// bytes 0x00 to 0x1F: all of them end a value or a comment and are skipped as blanks.
bool isControlByte(char byte) {
    return static_cast<signed char>(byte) < 0x20;
}

bool isBlank(char byte) {
    return isControlByte(byte) || byte == ' ';
}

const char *skipBlanks(const char *at, const char *end) {
    while (at < end && isBlank(*at)) {
        ++at;
    }
    return at;
}

// The first control byte at or after `at`, or `end` when there is none.
const char *findControlByte(const char *at, const char *end) {
    while (at < end && !isControlByte(*at)) {
        ++at;
    }
    return at;
}

// The first `byte` at or after `at`, or null when there is none before `end`.
const char *findByte(const char *at, const char *end, char byte) {
    return static_cast<const char *>(std::memchr(at, byte, static_cast<std::size_t>(end - at)));
}

// The bytes of [first, last) without the standard white space at either end, as TarnString's
// trimRight and trimLeft remove it.
std::string trimmed(const char *first, const char *last) {
    while (last > first && tarn::isAsciiSpace(last[-1])) {
        --last;
    }
    while (first < last && tarn::isAsciiSpace(*first)) {
        ++first;
    }
    return std::string(first, last);
}

// Writes the bytes of `text` unchanged; the stream's state is not looked at.
void put(std::ostream &stream, const std::string &text) {
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
}

} // namespace

TarnINIFile *newTarnINIFile(const char *fileName) {
    return new TarnINIFile(fileName);
}

TarnINIFile::TarnINIFile(const char *name) {
    floatString.format("%%.%df", 6);
    doubleString.format("%%.%df", 15);
    expString.format("%%.%de", 15);
    expGString.format("%%.%dg", 15);
    if (name != nullptr) {
        fileName = name;
    }
}

TarnINIFile::~TarnINIFile() {
    closeFile();
}

bool TarnINIFile::isa(const std::string &name) const {
    return tarn::isClassName(name, "TarnINIFile");
}

std::string TarnINIFile::getClassName() const {
    return "TarnINIFile";
}

void TarnINIFile::dispose() {
    delete this;
}

void TarnINIFile::closeFile() {
    if (file != nullptr) {
        std::fclose(file);
        file = nullptr;
    }
}

bool TarnINIFile::read(const char *name) {
    if (name != nullptr) {
        fileName = name;
    }
    if (fileName.empty() || !loadBytes()) {
        return false;
    }
    clear();
    parse();
    return true;
}

bool TarnINIFile::loadBytes() {
    // A handle that an earlier short read left open is closed rather than lost.
    closeFile();
    file = std::fopen(fileName.c_str(), "rb");
    if (file == nullptr) {
        return false;
    }
    long start = -1;
    long end = -1;
    if (std::fseek(file, 0, SEEK_SET) == 0) {
        start = std::ftell(file);
    }
    if (std::fseek(file, 0, SEEK_END) == 0) {
        end = std::ftell(file);
    }
    // A size that cannot be told (ftell failed, as on a stream without positions, or a file
    // beyond 2 GiB where long has 32 bits) or that does not fit the 32-bit size field is refused
    // before anything is allocated. The file is closed then: no bytes are pending.
    const bool measured = start >= 0 && end >= start && std::fseek(file, 0, SEEK_SET) == 0;
    if (!measured || static_cast<std::uint64_t>(end - start) > 0xFFFFFFFFULL) {
        closeFile();
        return false;
    }
    buffer.reset();
    bufferSize = 0;
    const auto size = static_cast<std::uint32_t>(end - start);
    // A file too large for the memory at hand fails like a file that does not open, with the model
    // as it was, instead of ending the caller's program with an exception.
    buffer.reset(new (std::nothrow) char[size]);
    if (buffer == nullptr) {
        closeFile();
        return false;
    }
    bufferSize = size;
    if (std::fread(buffer.get(), 1, bufferSize, file) != bufferSize) {
        // A short read: the model stays as it is and the file stays open in `file`.
        return false;
    }
    closeFile();
    return true;
}

void TarnINIFile::parse() {
    const char *at = buffer.get();
    const char *const dataEnd = at + bufferSize;
    // The section of the last header; null until the first one, so that entries in front of it
    // are dropped. Map nodes never move, and parse removes none, so the pointer stays valid.
    TarnINISection *current = nullptr;
    // Every step that reaches the end of the data ends the scan and drops what it was collecting.
    while (at < dataEnd) {
        at = skipBlanks(at, dataEnd);
        if (at == dataEnd) {
            break;
        }
        if (*at == ';') {
            // A comment, only where an entry could begin: up to the next control byte.
            at = findControlByte(at, dataEnd);
            continue;
        }
        if (*at == '[') {
            // A section header: any byte but "]" belongs to the name, line ends included. A "["
            // as the very last byte names the empty section; otherwise a missing "]" drops it.
            const char *const nameStart = at + 1;
            const char *nameEnd = dataEnd;
            if (nameStart < dataEnd) {
                nameEnd = findByte(nameStart, dataEnd, ']');
                if (nameEnd == nullptr) {
                    break;
                }
            }
            // An existing section keeps its keys: later headers of the same name merge into it.
            current = &try_emplace(end(), TarnString(std::string(nameStart, nameEnd)))->second;
            at = nameEnd < dataEnd ? nameEnd + 1 : dataEnd;
            continue;
        }
        // An entry: the key runs to the next "=" whatever lies between, then the value runs to the
        // next control byte, which stays for the blank skip. Only a finished value is stored.
        const char *const equals = findByte(at, dataEnd, '=');
        if (equals == nullptr) {
            break;
        }
        const char *const valueStart = equals + 1;
        const char *const valueEnd = findControlByte(valueStart, dataEnd);
        if (valueEnd == dataEnd) {
            break;
        }
        if (current != nullptr) {
            // The hint at the end makes keys that arrive in sorted order (as `write` puts them)
            // cost no search. The first value of a key stays.
            const std::size_t before = current->size();
            auto entry = current->try_emplace(current->end(), TarnString(trimmed(at, equals)));
            if (current->size() != before) {
                entry->second.value = trimmed(valueStart, valueEnd);
            }
        }
        at = valueEnd;
    }
}

bool TarnINIFile::write(const char *name) {
    if (name != nullptr) {
        fileName = name;
    }
    if (fileName.empty()) {
        return false;
    }
    closeFile();
    // Creating or truncating the file with the C library decides success; the text itself goes
    // through a C++ stream on the same name. The stream writes bytes untranslated and puts the
    // platform's own line end behind each line: so the lines end as in the platform's text mode,
    // and names and values go out byte for byte. A text-mode stream on Windows would turn a line
    // feed inside a section name or a key (which the scanner keeps there) into CR LF, and each
    // load and save would then add one more CR to the name.
    file = std::fopen(fileName.c_str(), "w");
    if (file == nullptr) {
        return false;
    }
    const std::string lineEnd = tarn::platform::textLineEnd();
    std::ofstream stream(fileName.c_str(), std::ios::out | std::ios::binary);
    for (auto &section : *this) {
        stream.put('[');
        put(stream, section.first);
        stream.put(']');
        put(stream, lineEnd);
        for (auto &key : section.second) {
            put(stream, key.first);
            stream.put('=');
            put(stream, key.second.getStringValue());
            put(stream, lineEnd);
        }
        put(stream, lineEnd);
    }
    std::fflush(file);
    closeFile();
    stream.close();
    return true;
}
