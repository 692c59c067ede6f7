// A scratch file for tests: a name unique to the running test, removed when the test ends.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

namespace testfiles {

/// A file in the test's scratch folder named after the running test and `suffix`. The file is
/// removed when the object goes; `write` and `read` move raw bytes.
class ScratchFile {
public:
    explicit ScratchFile(const std::string &suffix = "file")
        : path(::testing::TempDir() + "tarn_" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name() + "_" + suffix) {}
    ScratchFile(const ScratchFile &) = delete;
    ScratchFile &operator=(const ScratchFile &) = delete;
    ~ScratchFile() { std::remove(path.c_str()); }

    const char *name() const { return path.c_str(); }

    void write(const std::string &bytes) const {
        std::ofstream file(path, std::ios::binary);
        file << bytes;
    }

    std::string read() const {
        std::ifstream file(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }

private:
    std::string path;
};

/// Returns the bytes that a stream in the platform's text mode writes for a line feed: "\r\n"
/// where the text mode adds carriage returns, "\n" elsewhere. Found once by writing a probe file.
inline const std::string &textModeLineEnd() {
    static const std::string lineEnd = [] {
        const std::string probe = ::testing::TempDir() + "tarn_line_end_probe";
        std::ofstream(probe) << '\n';
        std::ifstream file(probe, std::ios::binary);
        std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        file.close();
        std::remove(probe.c_str());
        return bytes;
    }();
    return lineEnd;
}

/// Returns `text` with each line feed replaced by what the platform's text mode writes for it.
inline std::string inTextMode(const std::string &text) {
    std::string result;
    for (char byte : text) {
        result += byte == '\n' ? textModeLineEnd() : std::string(1, byte);
    }
    return result;
}

} // namespace testfiles
