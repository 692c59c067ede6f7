// Tests of TarnFileName: taking paths apart, rebuilding them, stepping numbers, file queries.
#include "tarn/system/TarnFileName.h"

#include "system/ScratchDirectory.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

constexpr std::uint64_t kAllTimeBits = 0xFFFFFFFFFFFFFFFFull;
constexpr unsigned int kAllSizeBits = 0xFFFFFFFFu;

struct PartsRow {
    const char *text;
    const char *path;
    const char *name;
    const char *extension;
    const char *fullName;
};

TEST(TarnFileNameTest, GettersTakeEveryTableTextApartAndTheNameAnswersAsTarnString) {
    const PartsRow rows[] = {
        {"C:\\dir\\file.txt", "C:\\dir", "file", "txt", "file.txt"},
        {"dir\\file", "dir", "file", "", "file"},
        {"file.txt", "", "file", "txt", "file.txt"},
        {"C:file.txt", "C:", "C:file", "txt", "C:file.txt"},
        {"\\file.txt", "", "file", "txt", "file.txt"},
        {"dir\\", "dir", "", "", ""},
        {"dir.d\\file", "dir.d", "file", "", "file"},
        {"file.", "", "file", "", "file."},
        {".hidden", "", "", "hidden", ".hidden"},
        {"a.b.c", "", "a.b", "c", "a.b.c"},
        {"dir.d/file", "", "dir", "d/file", "dir.d/file"},
        {"C:/dir/file.txt", "C:", "C:/dir/file", "txt", "C:/dir/file.txt"},
        {"", "", "", "", ""},
        // A forward slash separates nothing; a drive needs two bytes.
        {"a/b.c/d", "", "a/b", "c/d", "a/b.c/d"},
        {"C:", "C:", "C:", "", "C:"},
    };
    for (const PartsRow &row : rows) {
        const TarnFileName name(row.text);
        SCOPED_TRACE(std::string("text: ") + row.text);
        EXPECT_EQ(std::string(name.getPath()), row.path);
        EXPECT_EQ(std::string(name.getFileName()), row.name);
        EXPECT_EQ(std::string(name.getFileExt()), row.extension);
        EXPECT_EQ(std::string(name.getFullFileName()), row.fullName);
        EXPECT_EQ(std::string(name), row.text) << "a getter changed the text";
    }
    // The class has no identity of its own: it answers as the text it is.
    EXPECT_EQ(TarnFileName("x.txt").getClassName(), "TarnString");
    EXPECT_FALSE(TarnFileName("x.txt").isa("TarnFileName"));
}

using Setter = void (TarnFileName::*)(const char *);

struct SetterRow {
    const char *present;
    Setter setter;
    const char *argument;
    const char *expected;
};

TEST(TarnFileNameTest, SettersRebuildEveryTableText) {
    const Setter setPath = &TarnFileName::setPath;
    const Setter setFileName = &TarnFileName::setFileName;
    const Setter setFileExt = &TarnFileName::setFileExt;
    const Setter setFullFileName = &TarnFileName::setFullFileName;
    const SetterRow rows[] = {
        {"C:\\a\\f.txt", setPath, "D:\\b", "D:\\b\\f.txt"},
        {"C:\\a\\f.txt", setPath, "D:\\b\\", "D:\\b\\f.txt"},
        {"C:\\a\\f", setPath, "D:\\b", "D:\\b\\f."},
        {".hidden", setPath, "D:\\b", "D:\\b"},
        {"C:\\a\\f.txt", setFileName, "g", "C:\\a\\g.txt"},
        {"f.txt", setFileName, "g", "\\g.txt"},
        {"C:f.txt", setFileName, "g", "C:\\g.txt"},
        {"C:\\a\\f.txt", setFileExt, "doc", "C:\\a\\f.doc"},
        {"C:\\a\\f.txt", setFileExt, "", "C:\\a\\f."},
        {"C:\\a\\f.txt", setFileExt, ".doc", "C:\\a\\f..doc"},
        {"C:f.txt", setFileExt, "doc", "C:\\C:f.doc"},
        {"f.txt", setFullFileName, "g.doc", "\\g.doc"},
        // A dot in a directory is no extension.
        {"dir.d\\file", setFileExt, "x", "dir.d\\file.x"},
        // The empty path counts as not ending in a backslash.
        {"C:\\a\\f.txt", setPath, "", "\\f.txt"},
    };
    for (const SetterRow &row : rows) {
        TarnFileName name(row.present);
        (name.*row.setter)(row.argument);
        EXPECT_EQ(std::string(name), row.expected)
            << "present text " << row.present << ", argument " << row.argument;
    }
}

TEST(TarnFileNameTest, SettersTakeTextsThatPointIntoTheirOwnText) {
    TarnFileName name("C:\\a\\f.txt");
    name.setPath(name.c_str());
    EXPECT_EQ(std::string(name), "C:\\a\\f.txt\\f.txt");

    TarnFileName other("C:\\a\\f.txt");
    other.setFullFileName(other.c_str() + 5);
    EXPECT_EQ(std::string(other), "C:\\a\\f.txt");

    TarnFileName viaString("C:\\a\\f.txt");
    viaString.setFileExt(TarnString("doc"));
    EXPECT_EQ(std::string(viaString), "C:\\a\\f.doc");
}

TEST(TarnFileNameTest, IncrementStepsEveryTableText) {
    const std::pair<const char *, const char *> rows[] = {
        {"C:\\a\\file009.txt", "C:\\a\\file010.txt"},
        {"C:\\a\\file999.txt", "C:\\a\\file1000.txt"},
        {"C:\\a\\file.txt", "C:\\a\\file1.txt"},
        {"C:\\a\\9.txt", "C:\\a\\10.txt"},
        {"C:\\a\\000.txt", "C:\\a\\001.txt"},
        {"C:\\a\\file", "C:\\a\\file1."},
        {"file1.txt", "\\file2.txt"},
        {"C:\\a\\b1.c2.txt", "C:\\a\\b1.c3.txt"},
        {"C:\\a\\", "C:\\a\\"},
        {"C:\\a\\.txt", "C:\\a\\.txt"},
        // Runs beyond the range of an int step like any other.
        {"C:\\a\\run99999999999999999999.log", "C:\\a\\run100000000000000000000.log"},
        {"C:\\a\\run00000000000000000000009.log", "C:\\a\\run00000000000000000000010.log"},
        {"", ""},
    };
    for (const auto &row : rows) {
        TarnFileName name(row.first);
        name.increment();
        EXPECT_EQ(std::string(name), row.second) << "present text " << row.first;
    }
    // The stepped name is passed on as a text pointer, so it ends at a NUL byte inside it.
    TarnFileName withNul(TarnString(std::string("C:\\a\\x\0y9.txt", 13)));
    withNul.increment();
    EXPECT_EQ(std::string(withNul), "C:\\a\\x.txt");
    TarnFileName twice("C:\\a\\file.txt");
    twice.increment();
    twice.increment();
    EXPECT_EQ(std::string(twice), "C:\\a\\file2.txt") << "counting on from the first digit added";
}

TEST(TarnFileNameTest, NamesThatOpenNoFileGiveTheFailureValues) {
    const ScratchDirectory scratch;
    const std::string data = scratch.writeFile("data.bin", std::string(1234, '\x5A'));
    const TarnFileName file(data);
    EXPECT_TRUE(file.exists());
    EXPECT_FALSE(file.isDirectory());
    EXPECT_EQ(file.getSize(), 1234u);
    EXPECT_EQ(TarnFileName(scratch.writeFile("empty.bin", "")).getSize(), 0u);
    // A directory is no file that opens: it does not exist as one and has no size or times.
    const TarnFileName names[] = {TarnFileName(scratch.file("missing.txt")), TarnFileName(scratch.path()),
                                  TarnFileName(TarnString(data + std::string(1, '\0') + "more"))};
    for (const TarnFileName &name : names) {
        SCOPED_TRACE(std::string(name).c_str());
        EXPECT_FALSE(name.exists());
        EXPECT_EQ(name.isDirectory(), &name == &names[1]);
        EXPECT_EQ(name.getSize(), kAllSizeBits);
        for (const int selector : {0, 1, 2, 3, 99}) {
            EXPECT_EQ(name.getFileTime(selector), kAllTimeBits) << "selector " << selector;
        }
        EXPECT_EQ(name.getCreateTime() & name.getAccessTime() & name.getWriteTime(), kAllTimeBits);
    }
}

TEST(TarnFileNameTest, AFileThatDoesNotOpenForReadingDoesNotExist) {
    const ScratchDirectory scratch;
    const std::string path = scratch.writeFile("locked.bin", "abc");
    std::filesystem::permissions(path, std::filesystem::perms::none);
    if (std::ifstream(path, std::ios::binary).is_open()) {
        GTEST_SKIP() << "this account may read files without read permission";
    }
    const TarnFileName name(path);
    EXPECT_FALSE(name.exists());
    EXPECT_EQ(name.getSize(), kAllSizeBits);
    EXPECT_EQ(name.getWriteTime(), kAllTimeBits);
    EXPECT_FALSE(name.isDirectory());
}

// 100-ns ticks from 1601-01-01 to now, from the standard clock (its epoch is 1970-01-01 UTC).
std::uint64_t ticksNow() {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    const auto ticks =
        std::chrono::duration_cast<std::chrono::duration<std::int64_t, std::ratio<1, 10000000>>>(sinceEpoch);
    return static_cast<std::uint64_t>(ticks.count()) + 116444736000000000ull;
}

TEST(TarnFileNameTest, FileTimesCountTicksSince1601AndObeyTheSelector) {
    const ScratchDirectory scratch;
    const std::string path = scratch.writeFile("timed.txt", "x");
    const TarnFileName name(path);
    constexpr std::uint64_t kTicksPerHour = 36000000000ull;
    constexpr std::uint64_t kTicksPerDay = 24 * kTicksPerHour;

    // A fresh file was made now: far from 1970 or from a seconds count, close to the clock.
    const std::uint64_t now = ticksNow();
    for (const std::uint64_t time : {name.getCreateTime(), name.getAccessTime(), name.getWriteTime()}) {
        EXPECT_LT(time, now + kTicksPerDay);
        EXPECT_GT(time, now - kTicksPerDay);
    }

    // Moving the write time by one hour moves the reported time by exactly one hour of ticks.
    const auto written = std::filesystem::last_write_time(path);
    std::filesystem::last_write_time(path, written + std::chrono::hours(2));
    const std::uint64_t twoHoursLater = name.getWriteTime();
    std::filesystem::last_write_time(path, written + std::chrono::hours(3));
    const std::uint64_t threeHoursLater = name.getWriteTime();
    EXPECT_EQ(threeHoursLater - twoHoursLater, kTicksPerHour);

    // Selector 3 is the write time, 2 the access time (still about now), anything else the
    // creation time.
    EXPECT_EQ(name.getFileTime(3), threeHoursLater);
    EXPECT_LT(name.getFileTime(2), threeHoursLater - kTicksPerHour);
    EXPECT_EQ(name.getFileTime(2), name.getAccessTime());
    const std::uint64_t creation = name.getFileTime(1);
    for (const int selector : {0, 4, 99, -1}) {
        EXPECT_EQ(name.getFileTime(selector), creation) << "selector " << selector;
    }
}

} // namespace
