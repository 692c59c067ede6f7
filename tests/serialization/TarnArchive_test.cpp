// Tests of TarnArchive: token order and uniqueness, lookups, children.
#include "serialization/SerializationTestObjects.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using testobjects::treeText;

TEST(TarnArchiveTest, TokensAreUniqueAndWalkInByteOrder) {
    TarnArchive node;
    TarnToken token;
    for (const char *name : {"rows", "cols", "data", "parent", "this", "Zeta", "dat", "\xE9"}) {
        token.setValue(name);
        node.addToken(name, token);
    }
    token.setValue("second");
    node.addToken("this", token);
    node.addIntToken("rows", 5);
    EXPECT_EQ(treeText(node),
              "{Zeta=Zeta;cols=cols;dat=dat;data=data;parent=parent;rows=rows;this=this;\xE9=\xE9;}");
}

TEST(TarnArchiveTest, LookupsGiveDefaultsForMissingTokens) {
    TarnArchive node;
    node.addIntToken("count", -12);
    const double values[] = {1.5, -2.5};
    node.addDoublesToken("data", values, 2);
    EXPECT_STREQ(node.getTokenText("missing"), "");
    EXPECT_EQ(node.getTokenInt("missing"), 0);
    EXPECT_EQ(node.getTokenInt("count"), -12);
    EXPECT_EQ(node.getTokenInt("Count"), 0);
    EXPECT_EQ(node.getTokenPointer("missing"), nullptr);
    double block[3] = {9.0, 9.0, 9.0};
    node.getTokenDoubles("missing", block, 3);
    EXPECT_EQ(block[0], 9.0);
    node.getTokenDoubles("data", block, 3);
    EXPECT_EQ(block[1], -2.5);
    EXPECT_EQ(block[2], 9.0);
}

TEST(TarnArchiveTest, ChildrenKeepOrderAndKnowTheirParent) {
    TarnArchive root;
    root.addChild().setName("first");
    TarnArchive &second = root.addChild();
    second.setName(TarnString("second"));
    EXPECT_EQ(treeText(root), "{first{}second{}}");
    EXPECT_EQ(&second.getParent(), &root);
    EXPECT_FALSE(second.isRoot());
    EXPECT_EQ(&root.getParent(), &root); // a root answers with itself
}

} // namespace
