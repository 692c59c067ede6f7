// TarnFileArchive: the indented file writer and the one-read file loader.
#include "tarn/serialization/TarnFileArchive.h"

#include "serialization/TarnRestoreSequence.h"
#include "serialization/TarnSectionWalk.h"
#include "tarn/serialization/TarnSerializable.h"
#include "tarn/system/TarnTextFile.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <string>
#include <utility>

namespace {

// True for the bytes that the reader keeps: 0x20 to 0x7E.
bool isKeptByte(char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return value >= 0x20 && value <= 0x7E;
}

} // namespace

TarnFileArchive::TarnFileArchive() : textFile(nullptr) {}

TarnFileArchive::~TarnFileArchive() {
    delete textFile;
}

bool TarnFileArchive::serializeStore(const char *fileName, TarnSerializable &object) {
    object.serializeStore(*this);
    return writeFile(fileName);
}

bool TarnFileArchive::serializeRestore(TarnSerializable &object, const char *fileName) {
    if (!readFile(fileName)) {
        return false;
    }
    parseSection(*this);
    tarn::runRestoreSequence(object, *this);
    return true;
}

bool TarnFileArchive::readFile(const char *fileName) {
    std::ifstream file(fileName, std::ios::in | std::ios::binary);
    if (!file.is_open()) {
        return false;
    }
    file.seekg(0, std::ios::end);
    const std::streamoff size = file.tellg();
    std::string bytes;
    // A size that no string can hold (a folder may report the largest offset there is, and a
    // 32-bit build cannot hold a file of several gigabytes) reads as a file that does not load.
    if (size < 0 || static_cast<std::uintmax_t>(size) > bytes.max_size()) {
        return false;
    }
    TarnSerializable::restoreCount = 0;
    file.seekg(0, std::ios::beg);
    // One read into one buffer. The size is only a hint: something that is not a regular file
    // (a folder, a device) may report any size and then reads nothing, and a file that shrinks
    // meanwhile reads shorter; the buffer keeps what was read. A first byte is read before the
    // buffer is sized, so that a source that reads nothing never allocates its reported size.
    const int first = file.get();
    if (first != std::char_traits<char>::eof() && size > 0) {
        bytes.resize(static_cast<std::size_t>(size));
        bytes[0] = static_cast<char>(first);
        file.read(&bytes[1], static_cast<std::streamsize>(size - 1));
        bytes.resize(1 + static_cast<std::size_t>(file.gcount()));
    }
    file.close();
    // Keep only the printable bytes: line ends, tabs, other control bytes and bytes from 0x7F up
    // vanish wherever they stand.
    bytes.erase(std::remove_if(bytes.begin(), bytes.end(), [](char byte) { return !isKeptByte(byte); }),
                bytes.end());
    static_cast<std::string &>(text) = std::move(bytes);
    return true;
}

bool TarnFileArchive::writeFile(const char *fileName) {
    delete textFile;
    textFile = nullptr;
    textFile = new TarnTextFile(fileName, TarnTextFile::WRITE);
    writeSection(*this);
    textFile->close();
    return true;
}

void TarnFileArchive::writeSection(TarnArchive &section) {
    if (textFile == nullptr) {
        return;
    }
    // Each section is its head and "{" lines, one line per token with one more tab, its children
    // one level deeper, and its "}" line. A section's indentation is the current section depth,
    // and none while that is negative (after a parse of a text with surplus "}"); a token line
    // always has one tab more than its section.
    TarnString line;
    auto startLine = [&line](std::int64_t depth, std::size_t extra) {
        line.assign(static_cast<std::size_t>(std::max<std::int64_t>(depth, 0)) + extra, '\t');
    };
    tarn::walkSections(
        section,
        [&](TarnArchive &node) {
            startLine(sectionDepth, 0);
            line += node.getName();
            textFile->writeLine(line);
            startLine(sectionDepth, 0);
            line += '{';
            textFile->writeLine(line);
            for (auto &entry : node.getTokens()) {
                startLine(sectionDepth, 1);
                tarn::appendTokenText(line, entry.first, entry.second);
                textFile->writeLine(line);
            }
            ++sectionDepth;
        },
        [&](TarnArchive &) {
            --sectionDepth;
            startLine(sectionDepth, 0);
            line += '}';
            textFile->writeLine(line);
        });
}
