// Tests of TarnTextFile: modes, readLine at every kind of line end, writeLine.
#include "system/TarnScratchFile.h"
#include <tarn/tarn.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using testfiles::ScratchFile;

// Every readLine result until the first false, and the line that came with that false.
std::vector<std::string> readAll(const char *fileName) {
    TarnTextFile file(fileName, TarnTextFile::READ);
    std::vector<std::string> lines;
    TarnString line("junk");
    while (file.readLine(line)) {
        lines.push_back(line);
        line = "junk";
    }
    EXPECT_TRUE(line.empty());
    return lines;
}

TEST(TarnTextFileTest, ReadLineSplitsAtLineFeedsOnly) {
    struct Case {
        std::string bytes;
        std::vector<std::string> lines;
    };
    const Case cases[] = {
        {"", {}},
        {"\n\n", {"", ""}},
        {"last", {"last"}},
        {"a\nb\n", {"a", "b"}},
        {"x\xFFy\n", {"x\xFFy"}},
        {std::string("n\0ul\n", 5), {std::string("n\0ul", 4)}},
        {std::string(5000, 'L') + "\n", {std::string(5000, 'L')}},
    };
    for (const Case &c : cases) {
        ScratchFile file;
        file.write(c.bytes);
        EXPECT_EQ(readAll(file.name()), c.lines) << c.bytes;
    }
    // A carriage return is an ordinary byte, unless the platform's text mode takes it out.
    ScratchFile file;
    file.write("a\r\nb");
    const bool textModeDropsCR = testfiles::textModeLineEnd() == "\r\n";
    EXPECT_EQ(readAll(file.name()), (std::vector<std::string>{textModeDropsCR ? "a" : "a\r", "b"}));
}

TEST(TarnTextFileTest, WriteLineWritesTheWholeTextAndALineFeedWriteCutsAndAppendExtends) {
    ScratchFile file;
    file.write("old content\n");
    {
        TarnTextFile text(file.name(), TarnTextFile::WRITE);
        EXPECT_EQ(text.getMode(), TarnTextFile::WRITE);
        EXPECT_TRUE(text.writeLine(TarnString("")));
        EXPECT_TRUE(text.writeLine(TarnString(std::string("a\0b", 3))));
        EXPECT_TRUE(text.writeLine(std::string("c\0d", 3).c_str()));
    }
    const std::string written("\na\0b\nc\n", 7);
    EXPECT_EQ(file.read(), testfiles::inTextMode(written));
    { TarnTextFile(file.name(), TarnTextFile::APPEND).writeLine("more"); }
    EXPECT_EQ(readAll(file.name()), (std::vector<std::string>{"", std::string("a\0b", 3), "c", "more"}));
    {
        TarnTextFile both(file.name(), TarnTextFile::READ | TarnTextFile::WRITE);
        TarnString line("x");
        EXPECT_TRUE(both.readLine(line));
        EXPECT_EQ(std::string(line), "");
    }
    EXPECT_EQ(file.read(), testfiles::inTextMode(written + "more\n"))
        << "read and write together cut nothing";
}

TEST(TarnTextFileTest, WrongDirectionFailsOnlyInTheStreamState) {
    ScratchFile file;
    file.write("data\n");
    {
        TarnTextFile reader(file.name(), TarnTextFile::READ);
        EXPECT_TRUE(reader.writeLine("ignored"));
        EXPECT_TRUE(reader.fail());
    }
    EXPECT_EQ(file.read(), "data\n");
    TarnTextFile writer(file.name(), TarnTextFile::WRITE);
    TarnString line("x");
    EXPECT_FALSE(writer.readLine(line));
    EXPECT_TRUE(line.empty());
    TarnTextFile missing((::testing::TempDir() + "no/such/dir/file").c_str(), TarnTextFile::READ);
    EXPECT_FALSE(missing.is_open());
    EXPECT_FALSE(missing.readLine(line));
}

} // namespace
