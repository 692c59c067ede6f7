// Tests of the owning pointer vector, the value array and the pointer box.
#include <tarn/tarn.h>

#include <gtest/gtest.h>

#include <climits>
#include <stdexcept>

namespace {

// Counts live instances, so that a test sees every element deleted exactly once.
struct Counted {
    static int live;
    int value = 0;
    Counted() { ++live; }
    explicit Counted(int v) : value(v) { ++live; }
    Counted(const Counted &other) : value(other.value) { ++live; }
    Counted &operator=(const Counted &) = default;
    ~Counted() { --live; }
};
int Counted::live = 0;

// A text whose destructor reports that it ran: deletion must go through the virtual destructor.
struct NoisyString : TarnString {
    static int destroyed;
    ~NoisyString() override { ++destroyed; }
};
int NoisyString::destroyed = 0;

std::vector<int> valuesOf(const TarnVector<Counted> &vector) {
    std::vector<int> values;
    for (unsigned i = 0; i < vector.size(); ++i) {
        values.push_back(vector[i].value);
    }
    return values;
}

TarnVector<Counted> makeVector(std::initializer_list<int> values) {
    TarnVector<Counted> vector;
    for (int value : values) {
        vector.add(Counted(value));
    }
    return vector;
}

class TarnVectorTest : public ::testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(Counted::live, 0) << "an element leaked or was deleted twice"; }
};

TEST_F(TarnVectorTest, AddReturnsAStoredCopyWhoseReferenceSurvivesGrowthInsertionAndSwap) {
    TarnVector<Counted> vector;
    const Counted *first = &vector.add();
    EXPECT_EQ(first, &vector[0]);
    Counted source(42);
    Counted &kept = vector.add(source);
    source.value = 100;
    for (int i = 0; i < 1000; ++i) {
        vector.add(Counted(i));
    }
    vector.insertAt(0, Counted(-1));
    EXPECT_EQ(&kept, &vector[2]);
    vector.swap(2, 500);
    EXPECT_EQ(&kept, &vector[500]);
    EXPECT_EQ(kept.value, 42);
    EXPECT_EQ(vector[1].value, 0);
}

TEST_F(TarnVectorTest, InsertAtAnyIndexAndRemoveAtInRangeKeepOrderAndDeleteOnceSkippingNulls) {
    TarnVector<Counted> vector = makeVector({1, 2, 3});
    vector.insertAt(0, Counted(0));
    vector.insertAt(2, Counted(9));
    vector.insertAt(static_cast<unsigned>(vector.size()), Counted(4));
    vector.insertAt(UINT_MAX, Counted(5)); // beyond the count: appends
    EXPECT_EQ(valuesOf(vector), (std::vector<int>{0, 1, 9, 2, 3, 4, 5}));
    vector.removeAt(1);
    vector.removeAt(6); // out of range: nothing happens
    vector.removeAt(UINT_MAX);
    EXPECT_EQ(valuesOf(vector), (std::vector<int>{0, 9, 2, 3, 4, 5}));
    EXPECT_EQ(Counted::live, 6);
    vector.removeAll();
    vector.removeAll();
    EXPECT_EQ(Counted::live, 0);
    vector.add(Counted(5));
    EXPECT_EQ(valuesOf(vector), (std::vector<int>{5}));
    vector.push_back(nullptr); // null pointers added through the base are skipped
    vector.removeAt(1);
    vector.push_back(nullptr);
    vector.removeAll();
    TarnVector<Counted> empty;
    empty.removeAt(0);
    EXPECT_TRUE(empty.empty());
}

TEST_F(TarnVectorTest, SwapChecksBothIndicesBeforeChangingAnything) {
    TarnVector<Counted> vector = makeVector({1, 2});
    vector.swap(0, 0);
    EXPECT_EQ(valuesOf(vector), (std::vector<int>{1, 2}));
    try {
        vector.swap(0, 2);
        FAIL() << "swap with the count as index did not throw";
    } catch (const std::out_of_range &error) {
        EXPECT_STREQ(error.what(), "invalid vector<T> subscript");
    }
    EXPECT_THROW(vector.swap(5, 1), std::out_of_range);
    EXPECT_EQ(valuesOf(vector), (std::vector<int>{1, 2}));
    vector.swap(0, 1);
    EXPECT_EQ(valuesOf(vector), (std::vector<int>{2, 1}));
}

TEST_F(TarnVectorTest, CopiesOwnTheirOwnElements) {
    TarnVector<Counted> original = makeVector({1, 2});
    TarnVector<Counted> copy(original);
    copy[0].value = 10;
    EXPECT_EQ(valuesOf(original), (std::vector<int>{1, 2}));

    TarnVector<Counted> assigned = makeVector({7, 8, 9});
    assigned = original;
    EXPECT_EQ(valuesOf(assigned), (std::vector<int>{1, 2}));
    const TarnVector<Counted> &alias = assigned;
    assigned = alias;
    EXPECT_EQ(Counted::live, 6);

    TarnVector<Counted> moved(std::move(copy));
    EXPECT_EQ(valuesOf(moved), (std::vector<int>{10, 2}));
    EXPECT_EQ(Counted::live, 6);
}

TEST(TarnVectorStringTest, DeletesThroughTheVirtualDestructor) {
    NoisyString::destroyed = 0;
    {
        TarnVector<TarnString> texts;
        texts.push_back(new NoisyString());
        texts.push_back(new NoisyString());
        texts.removeAt(0);
        EXPECT_EQ(NoisyString::destroyed, 1);
    }
    EXPECT_EQ(NoisyString::destroyed, 2);
}

TEST(TarnPointerTest, NewBoxesHoldNull) {
    TarnVector<TarnPointer> boxes;
    EXPECT_EQ(boxes.add().pointer, nullptr);
}

} // namespace
