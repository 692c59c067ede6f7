// Tests of TarnFileArchive: the indented file form, the byte filter of the reader, big files.
#include "serialization/SerializationTestObjects.h"
#include "system/TarnScratchFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>

namespace {

using testfiles::ScratchFile;
using testobjects::Plain;
using testobjects::pointerText;
using testobjects::Probe;
using testobjects::treeText;

std::string restoredTree(const ScratchFile &file) {
    TarnFileArchive archive;
    Plain object;
    EXPECT_TRUE(archive.serializeRestore(object, file.name()));
    return treeText(archive);
}

// The file has one line per head, brace and token, one tab per level; without its layout it is
// the string form; and it restores the graph with its links.
TEST(TarnFileArchiveTest, StoreWritesIndentedLinesAndRestoresTheGraph) {
    Probe sensor;
    sensor.scale = 2.5;
    Probe &part = sensor.addPart();
    part.partner = &sensor;
    ScratchFile file;
    TarnFileArchive archive;
    EXPECT_TRUE(archive.serializeStore(file.name(), sensor));
    const std::string self = pointerText(&sensor);
    const std::string zeros(2 * sizeof(void *), '0');
    EXPECT_EQ(file.read(),
              testfiles::inTextMode("Probe\n{\n\tparent=" + zeros + ";\n\tpartner=" + zeros +
                                    ";\n\tscale=2.500000000000000000e+00;\n\tthis=" + self +
                                    ";\n\tProbe\n\t{\n\t\tparent=" + self + ";\n\t\tpartner=" + self +
                                    ";\n\t\tscale=0.000000000000000000e+00;\n\t\tthis=" + pointerText(&part) +
                                    ";\n\t}\n}\n"));
    TarnStringArchive string;
    string.serializeStore(sensor);
    std::string flat = file.read();
    flat.erase(
        std::remove_if(flat.begin(), flat.end(), [](char c) { return c == '\r' || c == '\n' || c == '\t'; }),
        flat.end());
    EXPECT_EQ(flat, std::string(string.getText()));

    Probe copy;
    TarnFileArchive restore;
    EXPECT_TRUE(restore.serializeRestore(copy, file.name()));
    ASSERT_EQ(copy.parts.size(), 1u);
    EXPECT_EQ(copy.parts[0].partner, &copy);
    EXPECT_EQ(TarnSerializable::restoreCount, 2);
}

TEST(TarnFileArchiveTest, MissingFileChangesNothingAndEmptyFileOrFolderRestores) {
    TarnSerializable::restoreCount = 17;
    TarnFileArchive archive;
    Probe probe;
    probe.scale = 4.0;
    EXPECT_FALSE(archive.serializeRestore(probe, (::testing::TempDir() + "no/such/file").c_str()));
    EXPECT_EQ(TarnSerializable::restoreCount, 17);
    EXPECT_EQ(probe.scale, 4.0);
    ScratchFile empty;
    empty.write("");
    EXPECT_TRUE(archive.serializeRestore(probe, empty.name()));
    EXPECT_EQ(probe.scale, 0.0);
    EXPECT_EQ(TarnSerializable::restoreCount, 1);
    // A folder opens as a stream on some platforms and reports an absurd size: it must read as
    // empty text, or not open at all, and never make the reader allocate that size.
    archive.setText("old");
    const bool opened = archive.readFile(::testing::TempDir().c_str());
    EXPECT_EQ(std::string(archive.getText()), opened ? "" : "old");
}

// Line ends of every kind, tabs, no layout at all, bytes above 0x7E and control bytes: the reader
// keeps only 0x20 to 0x7E, so all give the same tree; blanks are kept and become part of names.
TEST(TarnFileArchiveTest, LayoutAndNonPrintableBytesVanish) {
    const char withNul[] = "Root{a=1;b=x y;Child{c=2;}}\0trailing";
    for (const std::string &text :
         {std::string("Root\n{\n\ta=1;\n\tb=x y;\n\tChild\n\t{\n\t\tc=2;\n\t}\n}\n"),
          std::string("Root\r\n{\r\n\ta=1;\r\n\tb=x y;\r\n\tChild\r\n\t{\r\n\t\tc=2;\r\n\t}\r\n}\r\n"),
          std::string("Root\r{\r\ta=1;\r\tb=x y;\r\tChild\r\t{\r\t\tc=2;\r\t}\r}\r"),
          std::string("Ro\x7Fot{a=\xC3\xA9"
                      "1;b=x\x01 y;Child{c=2;}}"),
          std::string(withNul, sizeof withNul - 1)}) {
        ScratchFile file;
        file.write(text);
        EXPECT_EQ(restoredTree(file), "Root{a=1;b=x y;Child{c=2;}}") << text;
    }
    ScratchFile blanks;
    blanks.write("Root\n{\n    this=1;\n  parent = 2 ;\n    Child\n    {\n    }\n}\n");
    EXPECT_EQ(restoredTree(blanks), "Root{    this=1;  parent = 2 ;    Child    {}}");
}

// A surplus "}" leaves the section depth at -1 after the parse; a later write still indents
// every token line by one tab more than its section, whose indentation is never below none.
TEST(TarnFileArchiveTest, WriteAfterSurplusCloseIndentsTokensBelowTheirSection) {
    ScratchFile source;
    source.write("Item{this=00000100;Child{x=1;}}}");
    TarnFileArchive archive;
    Plain object("Item");
    ASSERT_TRUE(archive.serializeRestore(object, source.name()));
    ScratchFile written;
    archive.writeFile(written.name());
    EXPECT_EQ(written.read(), testfiles::inTextMode("Item\n{\n\tthis=00000100;\nChild\n{\n\tx=1;\n}\n}\n"));
}

// A 200-megabyte archive file loads with one read: 200 sections of a megabyte each.
TEST(TarnFileArchiveTest, HugeTwoHundredMegabyteFileLoads) {
    ScratchFile file;
    {
        std::ofstream out(file.name(), std::ios::binary);
        const std::string value(1024 * 1024, '5');
        out << "Big\n{\n";
        for (int i = 0; i < 200; ++i) {
            out << "\tPart\n\t{\n\t\tv=" << value << ";\n\t}\n";
        }
        out << "}\n";
    }
    TarnFileArchive archive;
    Plain object("Big");
    ASSERT_TRUE(archive.serializeRestore(object, file.name()));
    ASSERT_EQ(archive.getChildren().size(), 200u);
    EXPECT_EQ(std::string(archive.getChildren()[199].getTokenText("v")).size(), 1024u * 1024u);
}

} // namespace
