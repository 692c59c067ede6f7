// Tests of TarnSystem: debug output, unity, dir, mkdir, cp and scratch names.
#include "tarn/system/TarnSystem.h"

#include "system/ScratchDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <regex>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::vector<std::string> sortedNames(const TarnVector<TarnString> &files) {
    std::vector<std::string> names;
    for (unsigned int index = 0; index < files.size(); ++index) {
        names.emplace_back(files[index]);
    }
    std::sort(names.begin(), names.end());
    return names;
}

void collectDebugText(const char *text, void *context) {
    static_cast<std::vector<std::string> *>(context)->emplace_back(text);
}

TEST(TarnSystemTest, OutMakesOneHandlerCallPerWriteWithNothingAdded) {
    std::vector<std::string> writes;
    TarnSystem::setDebugHandler(collectDebugText, &writes);
    TarnSystem::out("first");
    TarnSystem::out(TarnString("second\n"));
    TarnSystem::out("");
    TarnSystem::setDebugHandler(nullptr, nullptr);
    TarnSystem::out("to the platform channel, not to the handler\n");
    EXPECT_EQ(writes, (std::vector<std::string>{"first", "second\n", ""}));
}

TEST(TarnSystemTest, UnityLimitsToMinusOneToOne) {
    const double infinity = std::numeric_limits<double>::infinity();
    const std::pair<double, double> rows[] = {
        {-1.0, -1.0},   {1.0, 1.0},   {1.5, 1.0},      {-1.5, -1.0},      {0.25, 0.25},
        {-0.75, -0.75}, {1e300, 1.0}, {infinity, 1.0}, {-infinity, -1.0}, {std::nextafter(1.0, 2.0), 1.0},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(TarnSystem::unity(row.first), row.second) << "value " << row.first;
    }
    EXPECT_TRUE(std::isnan(TarnSystem::unity(std::nan(""))));
    EXPECT_TRUE(std::signbit(TarnSystem::unity(-0.0)));
}

TEST(TarnSystemTest, DirReplacesTheListByBareFileNamesAndLeavesDirectoriesOut) {
    const ScratchDirectory scratch;
    scratch.writeFile("a.txt", "a");
    scratch.writeFile("b.bin", "bb");
    scratch.writeFile("no extension", "");
    fs::create_directory(scratch.file("sub"));
    fs::create_directory(scratch.file("dir.d"));
    scratch.writeFile((fs::path("sub") / "inner.txt").string(), "not listed");
    TarnVector<TarnString> files;
    files.add() = "left over";
    TarnSystem::dir(files, scratch.path().c_str());
    EXPECT_EQ(sortedNames(files), (std::vector<std::string>{"a.txt", "b.bin", "no extension"}));
    TarnSystem::dir(files, scratch.file("missing").c_str()); // a missing directory empties the list
    EXPECT_TRUE(files.empty());
}

TEST(TarnSystemTest, MkdirCreatesOneDirectoryAndPassesFailuresSilently) {
    const ScratchDirectory scratch;
    const std::string made = scratch.file("made");
    TarnSystem::mkdir(made.c_str());
    EXPECT_TRUE(fs::is_directory(made));
    TarnSystem::mkdir(made.c_str());
    EXPECT_TRUE(fs::is_directory(made));

    // Only one level is created: a missing parent makes nothing.
    const std::string deep = (fs::path(scratch.file("missing")) / "child").string();
    TarnSystem::mkdir(deep.c_str());
    EXPECT_FALSE(fs::exists(scratch.file("missing")));
}

TEST(TarnSystemTest, CpCopiesEveryByteUnchangedOverAnyTarget) {
    const ScratchDirectory scratch;
    std::string bytes;
    for (int round = 0; round < 40; ++round) {
        for (int value = 0; value < 256; ++value) {
            bytes += static_cast<char>(value);
        }
        bytes += "\r\n\n\x1A";
    }
    for (const std::string &content : {bytes, std::string()}) {
        const std::string source = scratch.writeFile("source.bin", content);
        const std::string target = scratch.writeFile("target.bin", std::string(100000, 'x'));
        EXPECT_TRUE(TarnSystem::cp(source.c_str(), target.c_str())) << content.size() << " bytes";
        EXPECT_EQ(ScratchDirectory::readFile(target), content);
        EXPECT_EQ(ScratchDirectory::readFile(source), content);
    }
}

TEST(TarnSystemTest, CpFailsForAMissingSourceLeavingAnEmptyTargetAndRefusesTheSameText) {
    const ScratchDirectory scratch;
    const std::string missing = scratch.file("missing.bin");
    for (const std::string &target :
         {scratch.writeFile("target.bin", "old content"), scratch.file("created.bin")}) {
        EXPECT_FALSE(TarnSystem::cp(missing.c_str(), target.c_str()));
        ASSERT_TRUE(fs::exists(target));
        EXPECT_EQ(fs::file_size(target), 0u);
    }
    const std::string file = scratch.writeFile("one.bin", "precious");
    EXPECT_FALSE(TarnSystem::cp(file.c_str(), file.c_str()));
    EXPECT_EQ(ScratchDirectory::readFile(file), "precious");
}

TEST(TarnSystemTest, CpOfASourceThatOnlyReadsFails) {
    const ScratchDirectory scratch;
    const std::string source = scratch.writeFile("readonly.bin", "data");
    fs::permissions(source, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    if (std::FILE *probe = std::fopen(source.c_str(), "r+b")) {
        std::fclose(probe);
        GTEST_SKIP() << "this account may write read-only files";
    }
    const std::string target = scratch.file("target.bin");
    EXPECT_FALSE(TarnSystem::cp(source.c_str(), target.c_str()));
    EXPECT_TRUE(fs::exists(target));
    EXPECT_EQ(fs::file_size(target), 0u);
}

// The name is "scratch-Www Mmm dd hh-mm-ss yyyy": a day and a month name, the day of the month
// padded with a space, and the time with '-' instead of ':'; nothing of the earlier text is kept.
TEST(TarnSystemTest, UniqueFilenameIsScratchAndTheCleanedLocalTime) {
    TarnString name("earlier contents");
    TarnSystem::uniqueFilename(name);
    static const std::regex form("scratch-(Sun|Mon|Tue|Wed|Thu|Fri|Sat) "
                                 "(Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) "
                                 "[ 123][0-9] [012][0-9]-[0-5][0-9]-[0-6][0-9] [0-9]{4}");
    EXPECT_TRUE(std::regex_match(std::string(name), form)) << std::string(name);
}

} // namespace
