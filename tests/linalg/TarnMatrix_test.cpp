// Tests of the dense matrix: storage, arithmetic, extraction, comparison, dump and the solvers.
#include "LinalgTestSupport.h"

#include "TarnLibraryExceptions.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <new>
#include <string>

namespace {

using tarntest::valuesOf;
using Values = std::vector<double>;

// Replaces every exponent "e+000"-style (three digits) by the two-digit form, so that texts from
// either kind of formatter compare alike.
std::string twoDigitExponents(std::string text) {
    for (std::size_t at = text.find('e'); at != std::string::npos; at = text.find('e', at + 1)) {
        if (at + 4 < text.size() && text[at + 2] == '0' &&
            std::isdigit(static_cast<unsigned char>(text[at + 4]))) {
            text.erase(at + 2, 1);
        }
    }
    return text;
}

// Collects every write of the debug text channel as one element.
void collectDebugText(const char *text, void *context) {
    static_cast<std::vector<std::string> *>(context)->push_back(text);
}

// Restores `matrix` from `node` and forgets the handles that the restore recorded.
void restoreFrom(TarnSerializable &matrix, TarnArchive &node) {
    matrix.serializeRestore(node);
    TarnSerializable::handleManager.reset();
}

} // namespace

TEST(TarnMatrixTest, StorageIsCopiedRowMajorAndResizeAlwaysClears) {
    double data[] = {1, 2, 3, 4, 5, 6};
    TarnMatrix matrix(data, 2, 3);
    data[2] = 99; // no reference to the data is kept
    EXPECT_EQ(valuesOf(matrix), (Values{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(matrix.getArray()[1], matrix[0] + 3) << "rows must be contiguous";
    TarnMatrix copied(matrix);
    TarnMatrix assigned;
    assigned = matrix;
    TarnMatrix &alias = assigned;
    assigned = alias;
    matrix[0][0] = 42;
    EXPECT_EQ(valuesOf(copied), (Values{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(valuesOf(assigned), (Values{1, 2, 3, 4, 5, 6}));
    assigned = 7.5;
    EXPECT_EQ(valuesOf(assigned), Values(6, 7.5));
    matrix.resize(2, 3); // the same shape still loses the contents
    EXPECT_EQ(valuesOf(matrix), Values(6, 0.0));
    matrix.identity(3);
    EXPECT_EQ(valuesOf(matrix), (Values{1, 0, 0, 0, 1, 0, 0, 0, 1}));
    matrix.resize(-2, 3); // outside the contract: taken as zero rows
    matrix = 5.0;
    EXPECT_EQ(matrix.nRows(), 0);
    EXPECT_EQ(matrix.nCols(), 3);
}

TEST(TarnMatrixTest, ArithmeticProductsAndTransposeFillAliasedTargetsThroughATemporary) {
    const double left[] = {1, 2, 3, 4, 5, 6};
    const double right[] = {7, 8, 9, 10, 11, 12};
    TarnMatrix a(left, 2, 3);
    const TarnMatrix b(right, 3, 2);
    EXPECT_EQ(valuesOf(a + TarnMatrix(right, 2, 3)), (Values{8, 10, 12, 14, 16, 18}));
    EXPECT_EQ(valuesOf(a - TarnMatrix(right, 2, 3)), Values(6, -6.0));
    EXPECT_EQ(valuesOf(a * 2.0), (Values{2, 4, 6, 8, 10, 12}));
    EXPECT_EQ(valuesOf(a.t()), (Values{1, 4, 2, 5, 3, 6}));
    EXPECT_TRUE(a.times(a, b));
    EXPECT_EQ(valuesOf(a), (Values{58, 64, 139, 154}));
    EXPECT_TRUE(a.transpose(a));
    EXPECT_EQ(valuesOf(a), (Values{58, 139, 64, 154}));
    // Empty inner dimension: every sum is 0.0.
    EXPECT_EQ(valuesOf(TarnMatrix(2, 0) * TarnMatrix(0, 3)), Values(6, 0.0));
    // Mismatched shapes: false, the target left alone, or an empty product.
    const double marker[] = {9};
    TarnMatrix target(marker, 1, 1);
    EXPECT_FALSE(TarnMatrix(2, 3).times(target, TarnMatrix(2, 3)));
    EXPECT_EQ(valuesOf(target), (Values{9}));
    EXPECT_EQ((TarnMatrix(2, 3) * TarnMatrix(2, 3)).nCols(), 0);
}

TEST(TarnMatrixTest, SubMatrixAndGetMatrixExtractInclusiveRanges) {
    const double data[] = {1, 2, 3, 4, 5, 6};
    const TarnMatrix matrix(data, 3, 2);
    EXPECT_EQ(valuesOf(matrix.subMatrix(0, 0, 0, 0)), (Values{1}));
    EXPECT_EQ(valuesOf(matrix.subMatrix(1, 2, 0, 1)), (Values{3, 4, 5, 6}));
    EXPECT_EQ(matrix.subMatrix(2, 1, 0, 1).nRows(), 0);
    TarnMatrix picked;
    const int rows[] = {2, 0, 2};
    EXPECT_TRUE(matrix.getMatrix(picked, rows, 2, 1, 1));
    EXPECT_EQ(picked.nCols(), 1);
    EXPECT_EQ(valuesOf(picked), (Values{6, 2}));
    EXPECT_TRUE(matrix.getMatrix(picked, rows, 3, 0, 1));
    EXPECT_EQ(valuesOf(picked), (Values{5, 6, 1, 2, 5, 6}));
}

TEST(TarnMatrixTest, EqualityUsesTheToleranceAndTheShape) {
    const double one[] = {1.0, 2.0};
    const double nearOne[] = {1.0 + 1e-11, 2.0};
    const double farOne[] = {1.0 + 1e-9, 2.0};
    EXPECT_TRUE(TarnMatrix(one, 1, 2) == TarnMatrix(nearOne, 1, 2));
    EXPECT_FALSE(TarnMatrix(one, 1, 2) == TarnMatrix(farOne, 1, 2));
    EXPECT_FALSE(TarnMatrix(one, 1, 2) == TarnMatrix(one, 2, 1));
    EXPECT_FALSE(TarnMatrix(2, 2) == TarnMatrix(2, 3));
    EXPECT_TRUE(TarnMatrix() == TarnMatrix(0, 0));
}

TEST(TarnMatrixTest, DumpWritesEachRowThenALineEnd) {
    const double data[] = {1.5, 2, -3, 0.25};
    std::vector<std::string> writes;
    TarnSystem::setDebugHandler(collectDebugText, &writes);
    TarnMatrix(data, 2, 2).dump(3);
    TarnSystem::setDebugHandler(nullptr, nullptr);
    std::string written;
    for (const std::string &write : writes) {
        written += twoDigitExponents(write) + "|";
    }
    EXPECT_EQ(written, "1.500e+00\t2.000e+00\t|\n|-3.000e+00\t2.500e-01\t|\n|");
}

TEST(TarnMatrixTest, SolveAndInvertAResidualCheckedSystem) {
    const double data[] = {4, -2, 1, -2, 4, -2, 1, -2, 4};
    const double rhs[] = {11, 1, -16, 2, 17, 3};
    const TarnMatrix a(data, 3, 3);
    const TarnMatrix b(rhs, 3, 2);
    TarnMatrix x;
    ASSERT_TRUE(a.solve(x, b));
    ASSERT_EQ(x.nCols(), 2) << "each right-hand column gets its own solution column";
    for (double value : valuesOf(a * x - b)) {
        EXPECT_LT(std::fabs(value), 1e-12);
    }
    EXPECT_EQ(valuesOf(x.subMatrix(0, 2, 0, 0)), (Values{1, -2, 3}));
    TarnMatrix inverse;
    ASSERT_TRUE(a.invert(inverse));
    TarnMatrix unit;
    unit.identity(3);
    EXPECT_TRUE(a * inverse == unit);
    EXPECT_TRUE(a.i() == inverse);
}

TEST(TarnMatrixTest, SingularMatricesAreRejectedOnlyForAnExactZeroPivot) {
    const double singular[] = {1, 2, 2, 4};
    const TarnMatrix a(singular, 2, 2);
    const double rhs[] = {1, 1};
    const TarnMatrix b(rhs, 2, 1);
    TarnMatrix x(5, 5);
    EXPECT_FALSE(a.solve(x, b));
    EXPECT_EQ(valuesOf(x), (Values{0, 0})) << "x stays the zero column of the first step";
    const double marker[] = {7};
    TarnMatrix inverse(marker, 1, 1);
    EXPECT_FALSE(a.invert(inverse));
    EXPECT_EQ(valuesOf(inverse), (Values{7}));
    EXPECT_EQ(valuesOf(a.i()), (Values{1}));

    const double tiny[] = {1e-300, 0, 0, 1};
    TarnMatrix y;
    EXPECT_TRUE(TarnMatrix(tiny, 2, 2).solve(y, b));
    EXPECT_EQ(y[0][0], 1.0 / 1e-300);
    EXPECT_FALSE(TarnMatrix(tiny, 2, 2).solve(y, TarnMatrix(3, 1)));
    EXPECT_EQ(valuesOf(y), (Values{0, 0}));
}

TEST(TarnMatrixTest, SolveHandlesEmptyNonSquareAndAliasedArguments) {
    TarnMatrix x;
    EXPECT_TRUE(TarnMatrix(0, 0).solve(x, TarnMatrix(0, 0)));
    TarnMatrix inverse(2, 2);
    EXPECT_TRUE(TarnMatrix(0, 0).invert(inverse));
    EXPECT_EQ(inverse.nRows() + inverse.nCols(), 0);
    // Refused without reading outside the factors.
    EXPECT_FALSE(TarnMatrix(2, 3).solve(x, TarnMatrix(2, 1)));
    EXPECT_FALSE(TarnMatrix(3, 2).solve(x, TarnMatrix(3, 1)));
    const double data[] = {2, 0, 0, 4};
    const double rhs[] = {2, 8};
    TarnMatrix a(data, 2, 2);
    TarnMatrix b(rhs, 2, 1);
    EXPECT_TRUE(a.solve(b, b));
    EXPECT_EQ(valuesOf(b), (Values{1, 2}));
    EXPECT_TRUE(a.invert(a));
    EXPECT_EQ(valuesOf(a), (Values{0.5, 0, 0, 0.25}));
}

TEST(TarnMatrixTest, CholeskyMembersGiveTheirFixedOutcome) {
    const double data[] = {4, 2, 2, 3};
    const TarnMatrix a(data, 2, 2);
    TarnMatrix x(3, 3);
    const double rhs[] = {1, 2};
    TarnMatrix b(rhs, 2, 1);
    EXPECT_FALSE(a.choleskySolve(x, b));
    EXPECT_EQ(valuesOf(x), (Values{0, 0}));
    EXPECT_EQ(x.nCols(), 1);
    EXPECT_EQ(valuesOf(b), (Values{0, 0}));
    TarnMatrix inverse(5, 5);
    EXPECT_FALSE(a.choleskyInvert(inverse));
    EXPECT_EQ(valuesOf(inverse), (Values{0, 0}));
    EXPECT_EQ(inverse.nCols(), 1);
    const double marker[] = {3};
    TarnMatrix untouched(marker, 1, 1);
    EXPECT_FALSE(TarnMatrix(2, 3).choleskyInvert(untouched));
    EXPECT_EQ(valuesOf(untouched), (Values{3}));
}

TEST(TarnMatrixTest, MakeUnitScalesVectorsOnly) {
    const double data[] = {-3, 4, 5, 6};
    const struct {
        int rows, cols;
        bool scaled;
        Values expected;
    } cases[] = {{1, 2, true, {-0.6, 0.8}},
                 {2, 1, true, {-0.6, 0.8}},
                 {2, 2, false, {-3, 4, 5, 6}},
                 {1, 1, true, {-1}}};
    for (const auto &c : cases) {
        TarnMatrix matrix(data, c.rows, c.cols);
        EXPECT_EQ(matrix.makeUnit(), c.scaled) << c.rows << " x " << c.cols;
        EXPECT_EQ(valuesOf(matrix), c.expected) << c.rows << " x " << c.cols;
    }
    TarnMatrix zero(1, 3);
    EXPECT_TRUE(zero.makeUnit());
    EXPECT_TRUE(std::isnan(zero[0][0]));
}

TEST(TarnMatrixTest, CrossProductOfColumnsOnly) {
    const double x[] = {1, 0, 0};
    const double y[] = {0, 1, 0};
    EXPECT_EQ(valuesOf(TarnMatrix::crossProduct(TarnMatrix(x, 3, 1), TarnMatrix(y, 3, 1))),
              (Values{0, 0, 1}));
    EXPECT_EQ(valuesOf(TarnMatrix::crossProduct(TarnMatrix(y, 3, 1), TarnMatrix(x, 3, 1))),
              (Values{0, 0, -1}));
    const TarnMatrix refused = TarnMatrix::crossProduct(TarnMatrix(x, 1, 3), TarnMatrix(y, 1, 3));
    EXPECT_EQ(refused.nRows(), 3);
    EXPECT_EQ(valuesOf(refused), (Values{0, 0, 0}));
}

TEST(TarnMatrixTest, StoreAndRestoreThroughAStringArchiveKeepsShapeBitsAndIdentity) {
    const double data[] = {1.0 / 3.0, -2.5e-300, 6.02214076e23, 0.0, -0.0, 42.0};
    TarnMatrix original(data, 2, 3);
    original.setModified();
    TarnStringArchive store;
    ASSERT_TRUE(store.serializeStore(original));
    EXPECT_FALSE(original.isModified());
    EXPECT_EQ(std::string(original.get("cols")), "3");
    TarnMatrix restored;
    TarnStringArchive load;
    ASSERT_TRUE(load.serializeRestore(restored, store.getText()));
    ASSERT_EQ(restored.nRows(), 2);
    EXPECT_EQ(valuesOf(restored), valuesOf(original)) << "19 significant digits bring every double back";
    EXPECT_EQ(restored.getOldPointer(), restored.getBasePointer());
    // The node names the class and holds the flat elements.
    TarnArchive node;
    original.serializeStore(node);
    EXPECT_EQ(std::string(node.getName()), "TarnMatrix");
    EXPECT_EQ(std::string(node.getTokenText("rows")), "2");
    // Copies are new objects: their identity is their own address.
    TarnMatrix copied(original);
    EXPECT_EQ(copied.getOldPointer(), copied.getBasePointer());
}

TEST(TarnMatrixTest, RestoreFromIncompleteNodesLeavesZeros) {
    TarnMatrix matrix(2, 2);
    matrix = 5.0;
    TarnArchive shortData;
    shortData.addIntToken("rows", 2);
    shortData.addIntToken("cols", 3);
    shortData.addDoublesToken("data", Values{1, 2}.data(), 2);
    restoreFrom(matrix, shortData);
    EXPECT_EQ(valuesOf(matrix), (Values{1, 2, 0, 0, 0, 0})) << "a short data list leaves zeros";
    TarnArchive noData;
    noData.addIntToken("rows", 1);
    noData.addIntToken("cols", 2);
    restoreFrom(matrix, noData);
    EXPECT_EQ(valuesOf(matrix), (Values{0, 0}));
    TarnArchive empty;
    restoreFrom(matrix, empty);
    EXPECT_EQ(matrix.nRows() + matrix.nCols(), 0);
}

// A resize that cannot allocate (here a size beyond the address space, on 32-bit builds too, where
// the product of the counts must not wrap) leaves shape and elements as they were.
TEST(TarnMatrixTest, ResizeThatThrowsKeepsShapeAndElements) {
    TARN_SKIP_UNLESS_LIBRARY_EXCEPTIONS_REACH_THE_CALLER();
    const double data[] = {1, 2, 3, 4, 5, 6};
    TarnMatrix matrix(data, 2, 3);
    EXPECT_THROW(matrix.resize(2147483647, 2147483647), std::bad_alloc);
    ASSERT_EQ(matrix.nRows(), 2);
    ASSERT_EQ(matrix.nCols(), 3);
    EXPECT_EQ(valuesOf(matrix), (Values{1, 2, 3, 4, 5, 6}));
    matrix[1][2] = 7.0; // the arrays are still the matrix's own
    EXPECT_TRUE(matrix == TarnMatrix(Values{1, 2, 3, 4, 5, 7}.data(), 2, 3));
}

// A crafted text whose sizes cannot be allocated throws out of the restore, leaves the matrix as
// it was and the shared table empty: a later restore naming the matrix's stored address as its
// parent gets a null parent, not the matrix.
TEST(TarnMatrixTest, RestoreOfAnUnallocatableTextLeavesNothingBehind) {
    TARN_SKIP_UNLESS_LIBRARY_EXCEPTIONS_REACH_THE_CALLER();
    {
        TarnMatrix matrix(Values{1, 2}.data(), 1, 2);
        TarnStringArchive archive;
        const TarnString text("TarnMatrix{cols=2147483647;rows=2147483647;this=0ABCDEF0;}");
        EXPECT_THROW(archive.serializeRestore(matrix, text), std::bad_alloc);
        EXPECT_EQ(valuesOf(matrix), (Values{1, 2}));
    }
    EXPECT_EQ(TarnSerializable::handleManager.getCount(), 0u);
    TarnMatrix item;
    TarnStringArchive archive;
    archive.serializeRestore(item, TarnString("Item{parent=0ABCDEF0;this=00000100;}"));
    EXPECT_FALSE(item.hasParent());
}
