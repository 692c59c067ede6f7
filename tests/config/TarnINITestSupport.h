// Helpers of the config tests: an owning handle, the model as plain maps, scratch files.
#pragma once

#include <tarn/tarn.h>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>

namespace tarn_test {

struct Disposer {
    void operator()(TarnINIFile *file) const { file->dispose(); }
};
/// Owns a TarnINIFile and disposes of it.
using INIFilePtr = std::unique_ptr<TarnINIFile, Disposer>;

inline INIFilePtr makeINIFile(const char *name = nullptr) {
    return INIFilePtr(newTarnINIFile(name));
}

/// The model as plain standard maps, so that models compare by text (TarnString's == compares
/// addresses).
using Model = std::map<std::string, std::map<std::string, std::string>>;

inline Model modelOf(TarnINIFile &file) {
    Model model;
    for (auto &section : file) {
        auto &keys = model[section.first];
        for (auto &key : section.second) {
            keys[key.first] = key.second.getStringValue();
        }
    }
    return model;
}

/// A path in the test's scratch folder, unique to the running test and `tag`.
inline std::string scratchPath(const std::string &tag) {
    const auto *info = ::testing::UnitTest::GetInstance()->current_test_info();
    return ::testing::TempDir() + "tarn_config_" + info->test_suite_name() + "_" + info->name() + "_" + tag +
           ".ini";
}

inline void writeBytes(const std::string &path, const std::string &bytes) {
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

inline std::string readBytes(const std::string &path) {
    std::ifstream stream(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

/// Writes `bytes` to a scratch file and loads it into `file`; returns what `read` answered.
inline bool loadBytes(TarnINIFile &file, const std::string &bytes, const std::string &tag = "load") {
    const std::string path = scratchPath(tag);
    writeBytes(path, bytes);
    return file.read(path.c_str());
}

} // namespace tarn_test
