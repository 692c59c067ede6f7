// Tests of the object root: identity by exact name, identity comparison, empty copies; and getInt.
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

TEST(TarnObjectTest, IsaComparesTheWholeNameExactlyAndNeverABase) {
    const Widget widget;
    const TarnString text("abc");
    const struct {
        const TarnObject &object;
        const char *name;
    } objects[] = {{widget, "Widget"}, {text, "TarnString"}};
    for (const auto &o : objects) {
        EXPECT_TRUE(o.object.isa(o.name));
        EXPECT_TRUE(o.object.isa(std::string(o.name)));
        EXPECT_EQ(o.object.getClassName(), o.name);
        const std::string name = o.name;
        for (const std::string &other :
             {std::string(), name.substr(0, name.size() - 1), name.substr(1), name + "s",
              std::string("TarnObject"), std::string("widget"), std::string("tarnstring")}) {
            EXPECT_FALSE(o.object.isa(other)) << o.name << " answered to " << other;
        }
    }
    EXPECT_EQ(getInt(), 3);
}

TEST(TarnObjectTest, EqualityIsIdentityAndAssigningTheRootCopiesNothing) {
    TarnString first("same");
    const TarnString second("same");
    EXPECT_FALSE(static_cast<const TarnObject &>(first) == second);
    EXPECT_TRUE(static_cast<const TarnObject &>(first) == first);
    EXPECT_FALSE(first == second); // also when reached on TarnString objects directly
    static_cast<TarnObject &>(first) = TarnString("source");
    EXPECT_EQ(static_cast<const std::string &>(first), "same");
}

} // namespace
