// Tests of TarnSystem: debug output, unity, dir, mkdir, cp and scratch names.
#include "tarn/system/TarnSystem.h"

#include "system/ScratchDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
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

// True when `text` has the form "scratch-Www Mmm dd hh-mm-ss yyyy": a day and a month name, the
// day of the month padded with a space, and the time with '-' instead of ':'.
bool isScratchName(const std::string &text) {
    // One code per byte: '#' any digit, '1' " 123", '2' "012", '5' "0" to "5", '6' "0" to "6", '@'
    // a byte of a day or month name (checked against the lists below), anything else itself.
    static const std::string form = "scratch-@@@ @@@ 1# 2#-5#-6# ####";
    if (text.size() != form.size()) {
        return false;
    }
    const auto within = [](char c, const char *set) { return c != '\0' && std::strchr(set, c) != nullptr; };
    for (std::size_t i = 0; i < form.size(); ++i) {
        const char c = text[i];
        const bool fits = form[i] == '#'   ? within(c, "0123456789")
                          : form[i] == '1' ? within(c, " 123")
                          : form[i] == '2' ? within(c, "012")
                          : form[i] == '5' ? within(c, "012345")
                          : form[i] == '6' ? within(c, "0123456")
                          : form[i] == '@' ? true
                                           : c == form[i];
        if (!fits) {
            return false;
        }
    }
    static const std::string days = " Sun Mon Tue Wed Thu Fri Sat ";
    static const std::string months = " Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec ";
    return days.find(" " + text.substr(8, 3) + " ") != std::string::npos &&
           months.find(" " + text.substr(12, 3) + " ") != std::string::npos;
}

TEST(TarnSystemTest, UniqueFilenameIsScratchAndTheCleanedLocalTime) {
    TarnString name("earlier contents");
    TarnSystem::uniqueFilename(name);
    const std::string text(name);
    EXPECT_TRUE(isScratchName(text)) << text;
    EXPECT_EQ(text.find(':'), std::string::npos);
    EXPECT_EQ(text.find("earlier"), std::string::npos);
}

TEST(TarnSystemTest, ScratchNameFormRejectsNearMisses) {
    EXPECT_TRUE(isScratchName("scratch-Mon Nov  2 09-05-07 2026"));
    EXPECT_FALSE(isScratchName("scratch-Mon Nov  2 09:05:07 2026"));
    EXPECT_FALSE(isScratchName("scratch-Mun Nov  2 09-05-07 2026"));
    EXPECT_FALSE(isScratchName("scratch-Mon Nox  2 09-05-07 2026"));
    EXPECT_FALSE(isScratchName("scratch-Mon Nov 42 09-05-07 2026"));
    EXPECT_FALSE(isScratchName("scratch-Mon Nov  2 09-05-07 2026 "));
}

} // namespace
