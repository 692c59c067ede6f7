// A fresh directory of one test's own under the test temporary folder, removed afterwards.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <system_error>

/// Creates a directory that no other test uses (named after the running test plus a random
/// number) and removes it with everything in it when destroyed. Paths come back in the
/// platform's own syntax, ready to hand to the library as whole texts.
class ScratchDirectory {
public:
    ScratchDirectory() {
        const ::testing::TestInfo *info = ::testing::UnitTest::GetInstance()->current_test_info();
        std::random_device random;
        const std::string leaf = std::string("tarn_") + info->test_suite_name() + "_" + info->name() + "_" +
                                 std::to_string(random());
        root_ = std::filesystem::path(::testing::TempDir()) / leaf;
        std::filesystem::create_directories(root_);
    }
    ~ScratchDirectory() {
        std::error_code ignored;
        std::filesystem::permissions(root_, std::filesystem::perms::all, ignored);
        std::filesystem::remove_all(root_, ignored);
    }
    ScratchDirectory(const ScratchDirectory &) = delete;
    ScratchDirectory &operator=(const ScratchDirectory &) = delete;

    /// The directory itself.
    std::string path() const { return root_.string(); }
    /// The path of `name` inside the directory.
    std::string file(const std::string &name) const { return (root_ / name).string(); }

    /// Writes `bytes` as the whole content of `name` and returns its path.
    std::string writeFile(const std::string &name, const std::string &bytes) const {
        const std::string target = file(name);
        std::ofstream stream(target, std::ios::binary | std::ios::trunc);
        stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return target;
    }

    /// Reads the whole content of the file at `target`.
    static std::string readFile(const std::string &target) {
        std::ifstream stream(target, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
    }

private:
    std::filesystem::path root_;
};
