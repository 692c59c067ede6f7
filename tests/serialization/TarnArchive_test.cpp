// Tests of TarnArchive: token order and uniqueness, lookups, children and deep trees.
#include "serialization/SerializationTestObjects.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using testobjects::tokenNames;

TarnToken tokenOf(const char *text) {
    TarnToken token;
    token.setValue(text);
    return token;
}

TEST(TarnArchiveTest, AddTokenNeverReplaces) {
    TarnArchive node;
    node.addToken("this", tokenOf("first"));
    node.addToken("this", tokenOf("second"));
    node.addIntToken("this", 5);
    const double values[] = {1.0};
    node.addDoublesToken("this", values, 1);
    EXPECT_EQ(node.getTokens().size(), 1u);
    EXPECT_STREQ(node.getTokenText("this"), "first");
}

TEST(TarnArchiveTest, TokensWalkInByteOrderOfTheirNames) {
    TarnArchive node;
    for (const char *name : {"rows", "cols", "data", "parent", "this", "Zeta", "dat", "\xE9t\xE9"}) {
        node.addToken(name, tokenOf(name));
    }
    EXPECT_EQ(tokenNames(node), (std::vector<std::string>{"Zeta", "cols", "dat", "data", "parent", "rows",
                                                          "this", "\xE9t\xE9"}));
}

TEST(TarnArchiveTest, StoredTokenIsACopyAndTheMapIsLive) {
    TarnArchive node;
    TarnToken token = tokenOf("a");
    node.addToken("name", token);
    token.setValue("b");
    EXPECT_STREQ(node.getTokenText("name"), "a");
    node.getTokens().find("name")->second.setValue("c");
    EXPECT_STREQ(node.getTokenText("name"), "c");
}

TEST(TarnArchiveTest, LookupsGiveDefaultsForMissingTokens) {
    TarnArchive node;
    node.addToken("empty", TarnToken());
    node.addIntToken("count", -12);
    const double values[] = {1.5, -2.5};
    node.addDoublesToken("data", values, 2);
    node.addToken("link", tokenOf("1F"));
    EXPECT_STREQ(node.getTokenText("missing"), "");
    EXPECT_STREQ(node.getTokenText("empty"), "");
    EXPECT_EQ(node.getTokenInt("missing"), 0);
    EXPECT_EQ(node.getTokenInt("count"), -12);
    EXPECT_EQ(node.getTokenPointer("missing"), nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(node.getTokenPointer("link")), 0x1Fu);
    double block[3] = {9.0, 9.0, 9.0};
    node.getTokenDoubles("missing", block, 3);
    EXPECT_EQ(block[0], 9.0);
    node.getTokenDoubles("data", block, 3);
    EXPECT_EQ(block[0], 1.5);
    EXPECT_EQ(block[1], -2.5);
    EXPECT_EQ(block[2], 9.0);
    // Two names that differ only in case are two tokens.
    node.addIntToken("Count", 3);
    EXPECT_EQ(node.getTokenInt("Count"), 3);
    EXPECT_EQ(node.getTokenInt("count"), -12);
}

TEST(TarnArchiveTest, ChildrenKeepOrderAndKnowTheirParent) {
    TarnArchive root;
    TarnArchive &first = root.addChild();
    TarnArchive &second = root.addChild();
    first.setName("first");
    second.setName(TarnString("second"));
    ASSERT_EQ(root.getChildren().size(), 2u);
    EXPECT_EQ(&root.getChildren()[0], &first);
    EXPECT_EQ(&root.getChildren()[1], &second);
    EXPECT_EQ(&first.getParent(), &root);
    EXPECT_FALSE(first.isRoot());
    EXPECT_TRUE(root.isRoot());
    EXPECT_EQ(&root.getParent(), &root);
    EXPECT_EQ(std::string(second.getName()), "second");
    first.setParent(nullptr);
    EXPECT_TRUE(first.isRoot());
    EXPECT_EQ(root.getChildren().size(), 2u);
}

// A chain a million nodes deep, and a wide tree below it, are released without recursion.
TEST(TarnArchiveTest, DeepTreeIsDestroyedWithoutExhaustingTheStack) {
    auto *root = new TarnArchive();
    TarnArchive *node = root;
    for (int depth = 0; depth < 1000000; ++depth) {
        node = &node->addChild();
        node->addIntToken("depth", depth);
    }
    for (int i = 0; i < 1000; ++i) {
        node->addChild().addChild();
    }
    EXPECT_EQ(node->getTokenInt("depth"), 999999);
    delete root;
}

} // namespace
