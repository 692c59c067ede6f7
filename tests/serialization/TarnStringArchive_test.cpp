// Tests of TarnStringArchive: the section parser on any text, the string writer, inspections.
#include "serialization/SerializationTestObjects.h"
#include "serialization/TreeText.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using testobjects::Plain;
using testobjects::Probe;
using testobjects::treeText;

// Opens the archive's protected state to the tests.
class InspectedArchive : public TarnStringArchive {
public:
    const char *buffer() const { return tokenBuffer; }
    std::size_t bufferLength() const { return tokenBufferLength; }
    std::int64_t depth() const { return sectionDepth; }
    void parse() { parseSection(*this); }
};

// The tree that a restore of `text` leaves in a fresh archive, in the string form.
std::string parsedTree(const std::string &text) {
    InspectedArchive archive;
    archive.setText(TarnString(text));
    archive.parse();
    return treeText(archive);
}

TEST(TarnStringArchiveTest, ParserReadsEveryTextAsItsRulesSay) {
    struct Case {
        std::string text;
        std::string tree;
    };
    const Case cases[] = {
        {"A{x=1;}", "A{x=1;}"},
        {"", "{}"},
        {"no braces at all", "{}"},
        {"x=1;A{y=2;}", "A{x=1;y=2;}"},                        // tokens before the first brace
        {"A{x=1;}B{y=2;}z=3;}C{w=4;}", "A{x=1;z=3;B{y=2;}}"},  // text behind the root's brace
        {"A{=abc;}", "A{=abc=abc;}"},                          // "=" at index 0 splits nothing
        {"A{abc;}", "A{abc=;}"},                               // no "=": empty value
        {"A{;}", "A{=;}"},                                     // empty token text
        {"A{x=1}", "A{}"},                                     // no ";" before "}"
        {"A{x=1;x=2;}", "A{x=1;}"},                            // repeated name
        {"A{ x = 1 ;}", "A{ x = 1 ;}"},                        // blanks stay
        {"A{x=a=b;}", "A{x=a=b;}"},                            // only the first "=" splits
        {"{x=1;}", "{x=1;}"},                                  // empty section name
        {"A{B{C{x=1;", "A{B{C{x=1;}}}"},                       // ends inside sections
        {"A{B{}x=1;C{}}", "A{x=1;B{}C{}}"},                    // token behind a child
        {"A{ B {x=1;} C{}}", "A{ B {x=1;} C{}}"},              // names keep their blanks
        {"}A{x=1;}", "{}"},                                    // a leading "}" ends it all
        {"A{x=a\tb\x7F\xFF;}", "A{x=a\tb\x7F\xFF;}"},          // no byte is removed
        {std::string("A{x=a\0b;n\0m=v;}", 15), "A{n=v;x=a;}"}, // texts end at a NUL
        {"A{x=" + std::string(300, 'v') + ";y=" + std::string(150, 'w') + ";}",
         "A{x=" + std::string(300, 'v') + ";y=" + std::string(150, 'w') + ";}"}, // values beyond 100 bytes
    };
    for (const Case &c : cases) {
        EXPECT_EQ(parsedTree(c.text), c.tree) << c.text;
    }
}

TEST(TarnStringArchiveTest, SectionsComeBackInOrderWithTheirParents) {
    InspectedArchive archive;
    archive.setText("R{a{a1{}a2{}}b{b1{x=1;}}}");
    archive.parse();
    EXPECT_EQ(archive.depth(), 0);
    ASSERT_EQ(archive.getChildren().size(), 2u);
    TarnArchive &a = archive.getChildren()[0];
    TarnArchive &b = archive.getChildren()[1];
    EXPECT_EQ(std::string(a.getName()), "a");
    EXPECT_EQ(std::string(a.getChildren()[1].getName()), "a2");
    EXPECT_EQ(&a.getParent(), &archive);
    EXPECT_EQ(&b.getChildren()[0].getParent(), &b);
    EXPECT_STREQ(b.getChildren()[0].getTokenText("x"), "1");
}

TEST(TarnStringArchiveTest, UnbalancedTextLeavesTheDepthOpen) {
    InspectedArchive archive;
    archive.setText("A{B{C{");
    archive.parse();
    EXPECT_EQ(archive.depth(), 3);
    InspectedArchive closing;
    closing.setText("}");
    closing.parse();
    EXPECT_EQ(closing.depth(), -1);
}

// A million nested sections parse into a chain of that depth, in constant stack, and the tree is
// destroyed the same way.
TEST(TarnStringArchiveTest, MillionNestedSectionsParse) {
    const int depth = 1000000;
    std::string text;
    text.reserve(5 * depth + 16);
    for (int i = 0; i < depth; ++i) {
        text += "s{";
    }
    text += "leaf=1;";
    text.append(depth, '}');
    auto archive = std::make_unique<InspectedArchive>();
    archive->setText(TarnString(std::move(text)));
    archive->parse();
    EXPECT_EQ(archive->depth(), 0);
    TarnArchive *node = archive.get();
    int levels = 1;
    while (!node->getChildren().empty()) {
        ASSERT_EQ(node->getChildren().size(), 1u);
        TarnArchive *child = &node->getChildren()[0];
        ASSERT_EQ(&child->getParent(), node);
        node = child;
        ++levels;
    }
    EXPECT_EQ(levels, depth);
    EXPECT_STREQ(node->getTokenText("leaf"), "1");
    archive.reset();
}

TEST(TarnStringArchiveTest, TokenLongerThan100MegabytesReadsBack) {
    const std::size_t length = 100u * 1024u * 1024u + 17u;
    std::string text = "Big{data=";
    text.append(length, '7');
    text += ";}";
    TarnStringArchive archive;
    Plain object("Big");
    archive.serializeRestore(object, TarnString(std::move(text)));
    const char *value = archive.getTokenText("data");
    ASSERT_EQ(std::strlen(value), length);
    EXPECT_EQ(value[0], '7');
    EXPECT_EQ(value[length - 1], '7');
}

TEST(TarnStringArchiveTest, TokenBufferGrowsOnlyForLongerTexts) {
    InspectedArchive archive;
    EXPECT_EQ(archive.bufferLength(), 100u);
    archive.setText("A{x=" + std::string(200, 'q') + ";y=z;}");
    archive.parse();
    EXPECT_EQ(archive.bufferLength(), 202u);
    const char *buffer = archive.buffer();
    EXPECT_STREQ(buffer, "y=z");
    archive.verifyTokenStringLength(202);
    archive.verifyTokenStringLength(-5);
    EXPECT_EQ(archive.buffer(), buffer);
    EXPECT_STREQ(archive.buffer(), "y=z");
    archive.verifyTokenStringLength(500);
    EXPECT_EQ(archive.bufferLength(), 500u);
    EXPECT_STREQ(archive.buffer(), "");
}

TEST(TarnStringArchiveTest, StoreGivesTheAdjacentStringForm) {
    Probe probe;
    probe.scale = 1.0;
    probe.label = "a b";
    Probe &part = probe.addPart();
    TarnStringArchive archive;
    EXPECT_TRUE(archive.serializeStore(probe));
    const std::string self = testobjects::pointerText(&probe);
    const std::string zeros(2 * sizeof(void *), '0');
    const std::string partText = "Probe{label=;parent=" + self + ";partner=" + zeros +
                                 ";scale=0.000000000000000000e+00;this=" + testobjects::pointerText(&part) +
                                 ";}";
    EXPECT_EQ(std::string(archive.getText()), "Probe{label=a b;parent=" + zeros + ";partner=" + zeros +
                                                  ";scale=1.000000000000000000e+00;this=" + self + ";" +
                                                  partText + "}");
}

TEST(TarnStringArchiveTest, StoredTextRestoresAnEqualObject) {
    Probe original;
    original.scale = 3.0e-300;
    original.label = "tab\there";
    original.addPart().scale = -7.0;
    TarnStringArchive store;
    store.serializeStore(original);
    Probe copy;
    TarnStringArchive restore;
    restore.setText(store.getText());
    EXPECT_TRUE(restore.serializeRestore(copy));
    EXPECT_EQ(copy.scale, original.scale);
    EXPECT_EQ(copy.label, "tab\there");
    ASSERT_EQ(copy.parts.size(), 1u);
    EXPECT_EQ(copy.parts[0].scale, -7.0);
    TarnStringArchive again;
    again.serializeStore(copy);
    // Only the addresses differ.
    EXPECT_EQ(again.getText().size(), store.getText().size());
}

TEST(TarnStringArchiveTest, ClassNameAndSimpleTokensReadTheText) {
    TarnStringArchive archive;
    EXPECT_EQ(std::string(archive.getClassName()), "");
    archive.setText("TarnMatrix{cols=2;data=1 2 ;parent=00000000;rows=1;this=00A42B10;}");
    EXPECT_EQ(std::string(archive.getClassName()), "TarnMatrix");
    TarnVector<TarnString> tokens;
    tokens.add(TarnString("kept"));
    archive.getSimpleTokens(tokens);
    ASSERT_EQ(tokens.size(), 6u);
    EXPECT_EQ(std::string(tokens[0]), "kept");
    EXPECT_EQ(std::string(tokens[1]), "cols=2");
    EXPECT_EQ(std::string(tokens[2]), "data=1 2 ");
    EXPECT_EQ(std::string(tokens[5]), "this=00A42B10");

    for (const char *text : {"", "no brace", "A{x=1;", "A{}", "{}", "}A{", "A}{", "A{;}"}) {
        TarnStringArchive other;
        other.setText(text);
        TarnVector<TarnString> none;
        other.getSimpleTokens(none);
        EXPECT_TRUE(none.empty()) << text;
    }
    archive.setText("{x=1;}");
    EXPECT_EQ(std::string(archive.getClassName()), "");
}

// A second restore on the same archive goes on from the old position: the new text's start is
// not read as a fresh tree.
TEST(TarnStringArchiveTest, SecondParseContinuesFromTheOldPosition) {
    InspectedArchive archive;
    archive.setText("A{x=1;}");
    archive.parse();
    archive.setText("A{x=1;}B{y=2;}");
    archive.parse();
    EXPECT_EQ(treeText(archive), "A{x=1;B{y=2;}}");
}

} // namespace
