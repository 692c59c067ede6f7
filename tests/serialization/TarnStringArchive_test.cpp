// Tests of TarnStringArchive: the section parser on any text, deep and huge texts, inspections.
#include "serialization/SerializationTestObjects.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using testobjects::treeText;

// Opens the archive's protected state to the tests.
class InspectedArchive : public TarnStringArchive {
public:
    const char *buffer() const { return tokenBuffer; }
    std::size_t bufferLength() const { return tokenBufferLength; }
    void parse() { parseSection(*this); }
};

// The tree that a parse of `text` leaves in a fresh archive, in the string form.
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

// Expects the lookups on `parsed`, whose tokens nobody has asked for as a map, to answer as the
// map of `reference` (the same text, parsed and then asked for its map) does, node by node.
void expectLookupsAgree(TarnArchive &parsed, TarnArchive &reference) {
    for (auto &entry : reference.getTokens()) {
        const std::string name(entry.first);
        if (name.find('\0') != std::string::npos) {
            continue; // a lookup by a C text cannot name it
        }
        EXPECT_STREQ(parsed.getTokenText(name.c_str()), entry.second.getValue()) << name;
        EXPECT_EQ(parsed.getTokenInt(name.c_str()), entry.second.getIntValue()) << name;
        EXPECT_EQ(parsed.getTokenPointer(name.c_str()), entry.second.getPointerValue()) << name;
        double mine[2] = {-1, -1};
        double theirs[2] = {-1, -1};
        parsed.getTokenDoubles(name.c_str(), mine, 2);
        entry.second.getDoubles(theirs, 2);
        EXPECT_EQ(std::vector<double>(mine, mine + 2), std::vector<double>(theirs, theirs + 2)) << name;
    }
    EXPECT_STREQ(parsed.getTokenText("absent"), "");
    ASSERT_EQ(parsed.getChildren().size(), reference.getChildren().size());
    for (unsigned i = 0; i < parsed.getChildren().size(); ++i) {
        expectLookupsAgree(parsed.getChildren()[i], reference.getChildren()[i]);
    }
}

// Lookups straight after a parse read the same texts and values as lookups through the token
// map: repeated names keep the first value, tokens behind a child, many or long tokens, numbers
// and addresses in any form.
TEST(TarnStringArchiveTest, LookupsAfterAParseAgreeWithTheTokenMap) {
    std::string many = "M{";
    for (int i = 0; i < 20; ++i) {
        many += "t" + std::to_string(i % 18) + "=" + std::to_string(i) + ";";
    }
    many += "}";
    const char withNul[] = "N{x=12\0"
                           "34;y\0z=5;=6;q;}";
    const std::string texts[] = {
        "A{b=2;a=-17;b=3;this=0ABCDEF0;parent=0x10;d=1.5 2.5;}",
        "A{x=1;B{y=0FF;}z=3;x=9;}",
        many,
        "L{n" + std::string(300, 'a') + "=1;v=" + std::string(300, '7') + ";w=5;}",
        "W{a=" + std::string(60, '1') + ";b=" + std::string(60, '2') + ";c=3;}",
        std::string(withNul, sizeof withNul - 1),
    };
    for (const std::string &text : texts) {
        InspectedArchive parsed;
        parsed.setText(TarnString(text));
        parsed.parse();
        InspectedArchive reference;
        reference.setText(TarnString(text));
        reference.parse();
        expectLookupsAgree(parsed, reference);
    }
}

// A text that a lookup handed out stays readable when the node's tokens later go into a map, and
// an added token does not replace a parsed one.
TEST(TarnStringArchiveTest, ParsedTokensStayFirstAndReadable) {
    InspectedArchive archive;
    archive.setText("A{x=1;y=2;}");
    archive.parse();
    const char *x = archive.getTokenText("x");
    archive.addIntToken("x", 7);
    archive.addIntToken("z", 8);
    EXPECT_STREQ(x, "1");
    EXPECT_STREQ(archive.getTokenText("x"), "1");
    EXPECT_EQ(archive.getTokenInt("z"), 8);
    EXPECT_EQ(archive.getTokens().size(), 3u);
}

// The parser passes over long runs several bytes at a time: every structural byte must be found
// wherever it falls in such a step, also next to bytes with the high bit set.
TEST(TarnStringArchiveTest, StructuralBytesAreFoundAtEveryOffset) {
    for (const char filler : {'v', '\xFF'}) {
        for (std::size_t run = 0; run <= 24; ++run) {
            for (const char *tail : {";", "}", "{"}) {
                const std::string value(run, filler);
                const std::string text = "A{x=" + value + tail + "y=1;}";
                const std::string expected = std::string(tail) == ";"   ? "A{x=" + value + ";y=1;}"
                                             : std::string(tail) == "}" ? "A{y=1;}"
                                                                        : "A{x=" + value + "{y=1;}}";
                EXPECT_EQ(parsedTree(text), expected)
                    << "run " << run << " of " << int(filler) << " then " << tail;
            }
        }
    }
}

TEST(TarnStringArchiveTest, SectionsComeBackWithTheirParents) {
    InspectedArchive archive;
    archive.setText("R{a{a1{}a2{}}b{x=1;}}");
    archive.parse();
    ASSERT_EQ(archive.getChildren().size(), 2u);
    TarnArchive &a = archive.getChildren()[0];
    EXPECT_EQ(&a.getParent(), &archive);
    EXPECT_EQ(&a.getChildren()[1].getParent(), &a);
    // A second parse on the same archive goes on from the old position, into the old tree.
    archive.setText("R{a{a1{}a2{}}b{x=1;}}C{}");
    archive.parse();
    EXPECT_EQ(treeText(archive), "R{a{a1{}a2{}}b{x=1;}C{}}");
}

// A million nested sections parse into a chain of that depth and are destroyed again, both
// without one call per level.
TEST(TarnStringArchiveTest, HugeMillionNestedSectionsParse) {
    const int depth = 1000000;
    std::string text;
    for (int i = 0; i < depth; ++i) {
        text += "s{";
    }
    text += "leaf=1;" + std::string(depth, '}');
    auto archive = std::make_unique<InspectedArchive>();
    archive->setText(TarnString(std::move(text)));
    archive->parse();
    TarnArchive *node = archive.get();
    int levels = 1;
    for (; !node->getChildren().empty(); ++levels) {
        ASSERT_EQ(node->getChildren().size(), 1u);
        ASSERT_EQ(&node->getChildren()[0].getParent(), node);
        node = &node->getChildren()[0];
    }
    EXPECT_EQ(levels, depth);
    EXPECT_STREQ(node->getTokenText("leaf"), "1");
    archive.reset();
}

TEST(TarnStringArchiveTest, HugeTokenLongerThan100MegabytesReadsBack) {
    const std::size_t length = 100u * 1024u * 1024u + 17u;
    std::string text = "Big{data=" + std::string(length, '7') + ";}";
    TarnStringArchive archive;
    testobjects::Plain object("Big");
    archive.serializeRestore(object, TarnString(std::move(text)));
    const char *value = archive.getTokenText("data");
    ASSERT_EQ(std::strlen(value), length);
    EXPECT_EQ(value[length - 1], '7');
}

TEST(TarnStringArchiveTest, TokenBufferGrowsOnlyForLongerTexts) {
    InspectedArchive archive;
    EXPECT_EQ(archive.bufferLength(), 100u);
    archive.setText("A{x=" + std::string(200, 'q') + ";y=z;}");
    archive.parse();
    EXPECT_EQ(archive.bufferLength(), 202u);
    const char *buffer = archive.buffer();
    archive.verifyTokenStringLength(202);
    archive.verifyTokenStringLength(-5);
    EXPECT_EQ(archive.buffer(), buffer);
    EXPECT_STREQ(archive.buffer(), "y=z");
    archive.verifyTokenStringLength(500);
    EXPECT_EQ(archive.bufferLength(), 500u);
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
    EXPECT_EQ(std::string(tokens[1]), "cols=2");
    EXPECT_EQ(std::string(tokens[2]), "data=1 2 ");
    EXPECT_EQ(std::string(tokens[5]), "this=00A42B10");
    for (const char *text : {"", "no brace", "A{x=1;", "A{}", "}A{", "A}{", "A{;}"}) {
        archive.setText(text);
        TarnVector<TarnString> none;
        archive.getSimpleTokens(none);
        EXPECT_TRUE(none.empty()) << text;
    }
}

} // namespace
