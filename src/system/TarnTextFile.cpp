// TarnTextFile: a file stream with line reading and writing.
#include "tarn/system/TarnTextFile.h"

#include <cstring>

const int TarnTextFile::READ = 1;
const int TarnTextFile::WRITE = 2;
const int TarnTextFile::APPEND = 8;

namespace {

// Maps the library's mode bits to the stream's open mode; bits other than the three are ignored.
// The binary flag is never set: the file opens in the platform's text mode.
std::ios_base::openmode streamMode(int mode) {
    std::ios_base::openmode result{};
    if ((mode & TarnTextFile::READ) != 0) {
        result |= std::ios_base::in;
    }
    if ((mode & TarnTextFile::WRITE) != 0) {
        result |= std::ios_base::out;
    }
    if ((mode & TarnTextFile::APPEND) != 0) {
        result |= std::ios_base::app;
    }
    return result;
}

} // namespace

TarnTextFile::TarnTextFile(const char *fileName, int openMode) : std::fstream(), mode(openMode) {
    open(fileName, streamMode(openMode));
}

TarnTextFile::~TarnTextFile() = default;

int TarnTextFile::getMode() const {
    return mode;
}

bool TarnTextFile::readLine(TarnString &line) {
    line.clear();
    for (;;) {
        const int byte = get();
        if (byte == traits_type::eof()) {
            return !line.empty();
        }
        if (byte == '\n') {
            return true;
        }
        line += static_cast<char>(byte);
    }
}

bool TarnTextFile::writeLine(const TarnString &line) {
    write(line.data(), static_cast<std::streamsize>(line.size()));
    put('\n');
    return true;
}

bool TarnTextFile::writeLine(const char *line) {
    return writeLine(TarnString(line));
}
