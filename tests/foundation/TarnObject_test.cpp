// Tests of the object root, the self-test interface and getInt.
#include <tarn/tarn.h>

#include <gtest/gtest.h>

namespace {

// A class of the application's own, declaring its identity the way library classes do.
class Widget : public TarnObject {
public:
    using TarnObject::isa;
    bool isa(const std::string &name) const override { return tarn::isClassName(name, "Widget"); }
    std::string getClassName() const override { return "Widget"; }
};

class PassingTest : public TarnTestable {
public:
    bool test(TarnVector<TarnString> &results) override {
        results.add() = "one check passed";
        return true;
    }
};

TEST(TarnObjectTest, IsaComparesTheWholeNameExactly) {
    const Widget widget;
    const TarnObject &object = widget;
    EXPECT_TRUE(object.isa("Widget"));
    EXPECT_TRUE(object.isa(std::string("Widget")));
    for (const char *other : {"", "widget", "WIDGET", "Widge", "Widgets", "TarnObject"}) {
        EXPECT_FALSE(object.isa(other)) << other;
    }
    EXPECT_EQ(object.getClassName(), "Widget");
}

TEST(TarnObjectTest, DerivedTextAnswersOnlyToItsOwnName) {
    const TarnString text("abc");
    EXPECT_TRUE(text.isa("TarnString"));
    EXPECT_FALSE(text.isa("TarnObject"));
    EXPECT_FALSE(text.isa("tarnstring"));
    EXPECT_EQ(text.getClassName(), "TarnString");
}

TEST(TarnObjectTest, EqualityIsIdentityNotState) {
    const TarnString first("same");
    const TarnString second("same");
    EXPECT_FALSE(static_cast<const TarnObject &>(first) == second);
    EXPECT_TRUE(static_cast<const TarnObject &>(first) == first);
    // The same holds when the operator is reached on TarnString objects directly.
    EXPECT_FALSE(first == second);
}

TEST(TarnObjectTest, AssigningAndCopyingTheRootCopyNothing) {
    TarnString target("target");
    const TarnString source("source");
    static_cast<TarnObject &>(target) = source;
    EXPECT_EQ(static_cast<const std::string &>(target), "target");
    EXPECT_EQ(static_cast<const std::string &>(source), "source");
}

TEST(TarnObjectTest, TestableAppendsReportLines) {
    PassingTest testable;
    TarnVector<TarnString> results;
    results.add() = "earlier line";
    EXPECT_TRUE(testable.test(results));
    ASSERT_EQ(results.size(), 2u);
    EXPECT_EQ(static_cast<const std::string &>(results[1]), "one check passed");
}

TEST(TarnObjectTest, GetIntIsAlwaysThree) {
    EXPECT_EQ(getInt(), 3);
    EXPECT_EQ(getInt(), 3);
}

} // namespace
