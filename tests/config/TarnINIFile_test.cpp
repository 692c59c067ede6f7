// Tests of TarnINIFile: the byte scanner, loading and its failures, sorted saving, round trips.
#include "TarnINICorpus.h"
#include "config/TarnINITestSupport.h"

#include <cstdio>
#include <fstream>
#include <iterator>

namespace {

using tarn_test::loadBytes;
using tarn_test::makeINIFile;
using tarn_test::Model;
using tarn_test::modelOf;
using tarn_test::scratchPath;

// The saved file as text, read in text mode so that the platform's line end reads as "\n".
std::string savedText(const std::string &path) {
    std::ifstream stream(path);
    return std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

// The whole literal, NUL bytes inside it included.
template <std::size_t N>
std::string bytes(const char (&literal)[N]) {
    return std::string(literal, N - 1);
}

struct ScanCase {
    const char *what;
    std::string input;
    Model expected;
};

TEST(TarnINIFileTest, ScannerFollowsTheFormat) {
    const ScanCase cases[] = {
        {"empty file", "", {}},
        {"plain entries", "[s]\nk=v\nj=w\n", {{"s", {{"k", "v"}, {"j", "w"}}}}},
        {"unfinished last value is lost", "[s]\nk=v", {{"s", {}}}},
        {"equals as last byte is lost", "[s]\nk=", {{"s", {}}}},
        {"equals then line end gives empty value", "[s]\nk=\n", {{"s", {{"k", ""}}}}},
        {"line without equals runs on as a key",
         "[s]\nabc\n;c\n[t]\nk=v\n",
         {{"s", {{"abc\n;c\n[t]\nk", "v"}}}}},
        {"no further equals ends the scan", "[s]\na=1\nabc\n[t]\n", {{"s", {{"a", "1"}}}}},
        {"no comment behind a value", "[s]\nk=1 ; note\n", {{"s", {{"k", "1 ; note"}}}}},
        {"brackets and equals in a value", "[s]\nk=[x]=y\n", {{"s", {{"k", "[x]=y"}}}}},
        {"tab ends a value", "[s]\na=b\tc=d\n", {{"s", {{"a", "b"}, {"c", "d"}}}}},
        {"high byte ends a value",
         "[s]\na=b\x80"
         "c=d\n",
         {{"s", {{"a", "b"}, {"c", "d"}}}}},
        {"high byte ends a comment", "[s]\n;x\xE9k=v\n", {{"s", {{"k", "v"}}}}},
        {"byte-order mark is skipped", "\xEF\xBB\xBF[s]\nk=v\n", {{"s", {{"k", "v"}}}}},
        {"DEL is a plain value byte",
         "[s]\nk=a\x7F"
         "b\n",
         {{"s",
           {{"k", "a\x7F"
                  "b"}}}}},
        {"NUL ends a value", bytes("[s]\nk=a\0b=c\n"), {{"s", {{"k", "a"}, {"b", "c"}}}}},
        {"section names keep spaces", "[ a ]\nk=v\n[a]\n", {{" a ", {{"k", "v"}}}, {"a", {}}}},
        {"case makes two sections", "[a]\n[A]\n", {{"A", {}}, {"a", {}}}},
        {"entry behind a header", "[a] k=v\n[b]x=1\n", {{"a", {{"k", "v"}}}, {"b", {{"x", "1"}}}}},
        {"header across a line end", "[a\nb]\nk=v\n", {{"a\nb", {{"k", "v"}}}}},
        {"unclosed header ends the scan", "[s]\nk=v\n[x\nj=w\n", {{"s", {{"k", "v"}}}}},
        {"open bracket as last byte", "[s]\nk=v\n[", {{"s", {{"k", "v"}}}, {"", {}}}},
        {"close bracket as last byte", "[s]", {{"s", {}}}},
        {"empty section name", "k=v\n[]\nj=w\n", {{"", {{"j", "w"}}}}},
        {"empty key", "[s]\n=v\n", {{"s", {{"", "v"}}}}},
        {"tab in a comment", "[s]\n;note\tk=v\n", {{"s", {{"k", "v"}}}}},
        {"text before the first header", "a=1\n[s]\nb=2\n", {{"s", {{"b", "2"}}}}},
        {"repeated section merges, first key wins",
         "[s]\nk=1\n[t]\n[s]\nk=2\nj=3\n",
         {{"s", {{"k", "1"}, {"j", "3"}}}, {"t", {}}}},
        {"CR LF and CR line ends", "[s]\r\n k = v \r\nj=w\r", {{"s", {{"k", "v"}, {"j", "w"}}}}},
        {"key trimmed of white space only",
         "[s]\n k\v = v\nm\x01=w\n",
         {{"s", {{"k", "v"}, {"m\x01", "w"}}}}},
        {"comment mark inside a key", "[s]\nab;c=v\n", {{"s", {{"ab;c", "v"}}}}},
        {"comment before any header", ";[s]\nk=v\n", {}},
        {"comment without line end", "[s]\n;c", {{"s", {}}}},
        {"blanks only", " \t\r\n\x80\xFF", {}},
    };
    for (const ScanCase &c : cases) {
        auto file = makeINIFile();
        EXPECT_TRUE(loadBytes(*file, c.input)) << c.what;
        EXPECT_EQ(modelOf(*file), c.expected) << c.what << ": " << ::testing::PrintToString(c.input);
    }
}

TEST(TarnINIFileTest, ReadReplacesTheModelAndAFailedReadLeavesIt) {
    auto file = makeINIFile();
    EXPECT_FALSE(file->read(nullptr)) << "no name given and none stored";
    ASSERT_TRUE(loadBytes(*file, "[b]\nj=2\n", "first"));
    ASSERT_TRUE(loadBytes(*file, "[a]\nk=1\n", "second"));
    EXPECT_EQ(modelOf(*file), (Model{{"a", {{"k", "1"}}}})) << "a read does not merge";
    const Model loaded = modelOf(*file);
    const std::string missing = scratchPath("missing");
    std::remove(missing.c_str());
    EXPECT_FALSE(file->read(missing.c_str()));
    EXPECT_EQ(modelOf(*file), loaded);
    EXPECT_FALSE(file->read(::testing::TempDir().c_str())) << "a folder is not a file";
    EXPECT_EQ(modelOf(*file), loaded);

    // The failed read stored the missing name: once the file exists, read(nullptr) finds it.
    EXPECT_FALSE(file->read(missing.c_str()));
    tarn_test::writeBytes(missing, "[z]\n");
    EXPECT_TRUE(file->read(nullptr));
    EXPECT_EQ(modelOf(*file), (Model{{"z", {}}}));
}

TEST(TarnINIFileTest, WriteSortsByBytesWithAnEmptyLineAfterEverySection) {
    auto file = makeINIFile();
    ASSERT_TRUE(loadBytes(*file, "[b]\nz=1\nA=2\na=3\n[empty]\n[B]\nk=v\n[]\n=e\n"));
    const std::string path = scratchPath("out");
    ASSERT_TRUE(file->write(path.c_str()));
    EXPECT_EQ(savedText(path), "[]\n=e\n\n[B]\nk=v\n\n[b]\nA=2\na=3\nz=1\n\n[empty]\n\n");
}

TEST(TarnINIFileTest, WriteNeedsANameAndACreatableFile) {
    const std::string path = scratchPath("empty");
    tarn_test::writeBytes(path, "old content");
    auto file = makeINIFile(path.c_str());
    EXPECT_TRUE(file->write(nullptr)) << "the name given at creation is used";
    EXPECT_EQ(tarn_test::readBytes(path), "") << "an empty model gives an empty file";

    auto unnamed = makeINIFile();
    EXPECT_FALSE(unnamed->write(nullptr));
    const std::string unreachable = ::testing::TempDir() + "tarn_no_such_folder/x.ini";
    EXPECT_FALSE(unnamed->write(unreachable.c_str()));
    EXPECT_FALSE(unnamed->write(nullptr)) << "the failed name is the stored one now";
}

TEST(TarnINIFileTest, AccessorTextWithBlanksIsWrittenUnchangedAndReadsBackDifferently) {
    auto file = makeINIFile();
    file->writePrivateProfileString("s", " k", " v");
    file->writePrivateProfileString("s", "line", "a\nb=c");
    const std::string path = scratchPath("out");
    ASSERT_TRUE(file->write(path.c_str()));
    EXPECT_EQ(savedText(path), "[s]\n k= v\nline=a\nb=c\n\n");
    ASSERT_TRUE(file->read(path.c_str()));
    EXPECT_EQ(modelOf(*file), (Model{{"s", {{"k", "v"}, {"line", "a"}, {"b", "c"}}}}));
}

// Loads `input`, saves, loads the saved file and saves again: the second model must be the first,
// and the second save must give the first save's bytes, on every platform. Line feeds and carriage
// returns inside section names and keys (the scanner keeps them there) must go out unchanged.
void expectStableRoundTrip(const std::string &input, const std::string &what) {
    SCOPED_TRACE(what);
    auto first = makeINIFile();
    ASSERT_TRUE(loadBytes(*first, input, "in"));
    const std::string saved = scratchPath("saved");
    ASSERT_TRUE(first->write(saved.c_str()));
    auto second = makeINIFile();
    ASSERT_TRUE(second->read(saved.c_str()));
    EXPECT_EQ(modelOf(*second), modelOf(*first));
    const std::string again = scratchPath("again");
    ASSERT_TRUE(second->write(again.c_str()));
    EXPECT_EQ(tarn_test::readBytes(again), tarn_test::readBytes(saved));
}

TEST(TarnINIFileTest, LoadSaveLoadKeepsTheModel) {
    expectStableRoundTrip("[s]\n k = v \n=e\n[]\nx=1\n[ a ]\n[a\x7F]\nq=[w];e\nline\nrun=on\n"
                          "[t] a=b\tc=d\x80"
                          "e=f\n;c\n[s]\nk=dup\nz\x01=w\n",
                          "every element of the format");
    // Lone CRs, lone LFs and CR LF inside names and keys.
    expectStableRoundTrip(
        "[cr\rname]\rkey\rwith\rcr=1\r[lf\nname]\nkey\nlf=2\n[crlf\r\nname]\r\nk\r\nj=3\r\n",
        "line ends inside names");
}

// The seed corpus of the configuration fuzz target, whose property this is, in every build.
TEST(TarnINIFileTest, FuzzCorpusLoadSaveLoadIsStable) {
    ASSERT_GE(std::size(tarn_test::kINICorpus), 3u);
    for (const auto &corpusFile : tarn_test::kINICorpus) {
        expectStableRoundTrip(std::string(reinterpret_cast<const char *>(corpusFile.bytes), corpusFile.size),
                              corpusFile.name);
    }
}

TEST(TarnINIFileTest, LongKeysAndValuesHaveNoLimit) {
    const std::string key(1u << 20, 'k');
    const std::string value(3u << 20, 'v');
    auto file = makeINIFile();
    ASSERT_TRUE(loadBytes(*file, "[s]\n" + key + "=" + value + "\n"));
    EXPECT_TRUE(modelOf(*file) == (Model{{"s", {{key, value}}}})) << "a 1 MiB key with a 3 MiB value";
}

// A 200-megabyte file loads whole: 200 sections of 1,000 keys with values of 1,000 bytes.
TEST(TarnINIFileTest, HugeTwoHundredMegabyteFileLoads) {
    const std::string path = scratchPath("huge");
    {
        std::ofstream stream(path, std::ios::binary | std::ios::trunc);
        const std::string value(1000, 'v');
        for (int section = 0; section < 200; ++section) {
            std::string text = "[s" + std::to_string(section) + "]\n";
            for (int key = 0; key < 1000; ++key) {
                text += "k" + std::to_string(key) + "=" + value + "\n";
            }
            stream << text;
        }
        ASSERT_TRUE(stream.good());
    }
    auto file = makeINIFile();
    ASSERT_TRUE(file->read(path.c_str()));
    std::remove(path.c_str());
    ASSERT_EQ(file->size(), 200u);
    std::size_t keys = 0;
    for (auto &section : *file) {
        keys += section.second.size();
    }
    EXPECT_EQ(keys, 200000u);
    TarnString last;
    file->getPrivateProfileString("s199", "k999", "", last);
    EXPECT_EQ(std::string(last), std::string(1000, 'v'));
}

} // namespace
