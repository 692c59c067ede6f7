// Tests of the dense matrix: storage, arithmetic, extraction, comparison, dump and the solvers.
#include <tarn/tarn.h>

#include <gtest/gtest.h>

#include <cctype>
#include <cmath>
#include <string>
#include <vector>

namespace {

// The elements of a matrix in row-major order.
std::vector<double> valuesOf(const TarnMatrix &matrix) {
    std::vector<double> values;
    for (int i = 0; i < matrix.nRows(); ++i) {
        for (int j = 0; j < matrix.nCols(); ++j) {
            values.push_back(matrix[i][j]);
        }
    }
    return values;
}

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

} // namespace

TEST(TarnMatrixTest, DataConstructorCopiesRowMajorAndKeepsNoReference) {
    double data[] = {1, 2, 3, 4, 5, 6};
    TarnMatrix matrix(data, 2, 3);
    data[2] = 99;
    EXPECT_EQ(matrix.nRows(), 2);
    EXPECT_EQ(matrix.nCols(), 3);
    EXPECT_EQ(matrix[0][2], 3.0);
    EXPECT_EQ(matrix[1][0], 4.0);
    EXPECT_EQ(matrix.getArray()[1], matrix[0] + 3) << "rows must be contiguous";
}

TEST(TarnMatrixTest, ResizeAlwaysGivesZerosAndIdentityPutsOnesOnTheDiagonal) {
    const double data[] = {1, 2, 3, 4};
    TarnMatrix matrix(data, 2, 2);
    matrix.resize(2, 2);
    EXPECT_EQ(valuesOf(matrix), (std::vector<double>{0, 0, 0, 0}));
    matrix.identity(3);
    EXPECT_EQ(valuesOf(matrix), (std::vector<double>{1, 0, 0, 0, 1, 0, 0, 0, 1}));
    matrix.identity(0);
    matrix = 5.0;
    EXPECT_EQ(matrix.nRows(), 0);
    EXPECT_EQ(matrix.nCols(), 0);
    matrix.resize(-2, 3); // outside the contract: taken as zero rows
    EXPECT_EQ(matrix.nRows(), 0);
    EXPECT_EQ(matrix.nCols(), 3);
}

TEST(TarnMatrixTest, CopiesAreIndependentAndSelfCopyKeepsTheContents) {
    const double data[] = {1, 2, 3, 4, 5, 6};
    TarnMatrix original(data, 3, 2);
    TarnMatrix copied(original);
    TarnMatrix assigned;
    assigned = original;
    original[0][0] = 42;
    EXPECT_EQ(copied[0][0], 1.0);
    EXPECT_EQ(assigned[0][0], 1.0);
    EXPECT_EQ(assigned.nRows(), 3);
    TarnMatrix &alias = assigned;
    assigned = alias;
    EXPECT_EQ(valuesOf(assigned), (std::vector<double>{1, 2, 3, 4, 5, 6}));
    assigned = 7.5;
    EXPECT_EQ(valuesOf(assigned), (std::vector<double>(6, 7.5)));
}

TEST(TarnMatrixTest, ElementWiseArithmetic) {
    const double left[] = {1, 2, 3, 4};
    const double right[] = {0.5, -1, 10, 2};
    const TarnMatrix a(left, 2, 2);
    const TarnMatrix b(right, 2, 2);
    EXPECT_EQ(valuesOf(a + b), (std::vector<double>{1.5, 1, 13, 6}));
    EXPECT_EQ(valuesOf(a - b), (std::vector<double>{0.5, 3, -7, 2}));
    EXPECT_EQ(valuesOf(a * 2.0), (std::vector<double>{2, 4, 6, 8}));
}

TEST(TarnMatrixTest, TimesRefusesMismatchedShapesAndLeavesTheTarget) {
    const TarnMatrix a(2, 3);
    const TarnMatrix b(2, 3);
    const double marker[] = {9};
    TarnMatrix target(marker, 1, 1);
    EXPECT_FALSE(a.times(target, b));
    EXPECT_EQ(valuesOf(target), (std::vector<double>{9}));
    const TarnMatrix product = a * b;
    EXPECT_EQ(product.nRows(), 0);
    EXPECT_EQ(product.nCols(), 0);
}

TEST(TarnMatrixTest, ProductTransposeAndAliasedTargets) {
    const double left[] = {1, 2, 3, 4, 5, 6};
    const double right[] = {7, 8, 9, 10, 11, 12};
    TarnMatrix a(left, 2, 3);
    const TarnMatrix b(right, 3, 2);
    EXPECT_EQ(valuesOf(a * b), (std::vector<double>{58, 64, 139, 154}));
    EXPECT_EQ(valuesOf(a.t()), (std::vector<double>{1, 4, 2, 5, 3, 6}));
    // A target that is an operand is filled through a temporary, not read after being resized.
    EXPECT_TRUE(a.times(a, b));
    EXPECT_EQ(valuesOf(a), (std::vector<double>{58, 64, 139, 154}));
    EXPECT_TRUE(a.transpose(a));
    EXPECT_EQ(valuesOf(a), (std::vector<double>{58, 139, 64, 154}));
    // Empty inner dimension: every sum is 0.0.
    const TarnMatrix noCols(2, 0);
    const TarnMatrix noRows(0, 3);
    EXPECT_EQ(valuesOf(noCols * noRows), (std::vector<double>(6, 0.0)));
}

TEST(TarnMatrixTest, SubMatrixAndGetMatrixExtractInclusiveRanges) {
    const double data[] = {1, 2, 3, 4, 5, 6};
    const TarnMatrix matrix(data, 3, 2);
    EXPECT_EQ(valuesOf(matrix.subMatrix(0, 0, 0, 0)), (std::vector<double>{1}));
    EXPECT_EQ(valuesOf(matrix.subMatrix(1, 2, 0, 1)), (std::vector<double>{3, 4, 5, 6}));
    const TarnMatrix reversed = matrix.subMatrix(2, 1, 0, 1);
    EXPECT_EQ(reversed.nRows(), 0);
    TarnMatrix picked;
    const int rows[] = {2, 0, 2};
    EXPECT_TRUE(matrix.getMatrix(picked, rows, 2, 1, 1));
    EXPECT_EQ(picked.nRows(), 2);
    EXPECT_EQ(picked.nCols(), 1);
    EXPECT_EQ(valuesOf(picked), (std::vector<double>{6, 2}));
    EXPECT_TRUE(matrix.getMatrix(picked, rows, 3, 0, 1));
    EXPECT_EQ(valuesOf(picked), (std::vector<double>{5, 6, 1, 2, 5, 6}));
}

TEST(TarnMatrixTest, EqualityUsesTheToleranceAndTheShape) {
    const double one[] = {1.0, 2.0};
    const double nearOne[] = {1.0 + 1e-11, 2.0};
    const double farOne[] = {1.0 + 1e-9, 2.0};
    EXPECT_TRUE(TarnMatrix(one, 1, 2) == TarnMatrix(nearOne, 1, 2));
    EXPECT_FALSE(TarnMatrix(one, 1, 2) == TarnMatrix(farOne, 1, 2));
    EXPECT_FALSE(TarnMatrix(one, 1, 2) == TarnMatrix(one, 2, 1));
    EXPECT_FALSE(TarnMatrix(2, 2) == TarnMatrix(2, 3));
    EXPECT_TRUE(TarnMatrix() == TarnMatrix());
    EXPECT_TRUE(TarnMatrix() == TarnMatrix(0, 0));
}

// Collects every write of the debug text channel as one element.
void collectDebugText(const char *text, void *context) {
    static_cast<std::vector<std::string> *>(context)->push_back(text);
}

TEST(TarnMatrixTest, DumpWritesEachRowThenALineEnd) {
    const double data[] = {1.5, 2, -3, 0.25};
    const TarnMatrix matrix(data, 2, 2);
    std::vector<std::string> writes;
    TarnSystem::setDebugHandler(collectDebugText, &writes);
    matrix.dump(3);
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
    ASSERT_EQ(x.nRows(), 3);
    ASSERT_EQ(x.nCols(), 2) << "each right-hand column gets its own solution column";
    const TarnMatrix residual = a * x - b;
    for (double value : valuesOf(residual)) {
        EXPECT_LT(std::fabs(value), 1e-12);
    }
    EXPECT_EQ(valuesOf(x.subMatrix(0, 2, 0, 0)), (std::vector<double>{1, -2, 3}));

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
    EXPECT_EQ(valuesOf(x), (std::vector<double>{0, 0})) << "x stays the zero column of the first step";
    const double marker[] = {7};
    TarnMatrix inverse(marker, 1, 1);
    EXPECT_FALSE(a.invert(inverse));
    EXPECT_EQ(valuesOf(inverse), (std::vector<double>{7}));
    EXPECT_EQ(valuesOf(a.i()), (std::vector<double>{1}));

    const double tiny[] = {1e-300, 0, 0, 1};
    TarnMatrix y;
    EXPECT_TRUE(TarnMatrix(tiny, 2, 2).solve(y, b));
    EXPECT_EQ(y[0][0], 1.0 / 1e-300);

    const TarnMatrix wrongRows(3, 1);
    EXPECT_FALSE(TarnMatrix(tiny, 2, 2).solve(y, wrongRows));
    EXPECT_EQ(valuesOf(y), (std::vector<double>{0, 0}));
}

TEST(TarnMatrixTest, EmptySystemsSolveAndInvert) {
    const TarnMatrix empty(0, 0);
    TarnMatrix x;
    EXPECT_TRUE(empty.solve(x, TarnMatrix(0, 0)));
    TarnMatrix inverse(2, 2);
    EXPECT_TRUE(empty.invert(inverse));
    EXPECT_EQ(inverse.nRows(), 0);
    EXPECT_EQ(inverse.nCols(), 0);
}

TEST(TarnMatrixTest, SolveWithAliasedArgumentsStillSolves) {
    const double data[] = {2, 0, 0, 4};
    const double rhs[] = {2, 8};
    TarnMatrix a(data, 2, 2);
    TarnMatrix b(rhs, 2, 1);
    EXPECT_TRUE(a.solve(b, b));
    EXPECT_EQ(valuesOf(b), (std::vector<double>{1, 2}));
    EXPECT_TRUE(a.invert(a));
    EXPECT_EQ(valuesOf(a), (std::vector<double>{0.5, 0, 0, 0.25}));
}

TEST(TarnMatrixTest, NonSquareSolveIsRefusedWithoutReadingOutsideTheFactors) {
    const TarnMatrix wide(2, 3);
    TarnMatrix x;
    EXPECT_FALSE(wide.solve(x, TarnMatrix(2, 1)));
    const TarnMatrix tall(3, 2);
    EXPECT_FALSE(tall.solve(x, TarnMatrix(3, 1)));
}

TEST(TarnMatrixTest, CholeskyMembersGiveTheirFixedOutcome) {
    const double data[] = {4, 2, 2, 3};
    const TarnMatrix a(data, 2, 2);
    TarnMatrix x(3, 3);
    const double rhs[] = {1, 2};
    TarnMatrix b(rhs, 2, 1);
    EXPECT_FALSE(a.choleskySolve(x, b));
    EXPECT_EQ(x.nRows(), 2);
    EXPECT_EQ(x.nCols(), 1);
    EXPECT_EQ(valuesOf(b), (std::vector<double>{0, 0}));

    TarnMatrix inverse(5, 5);
    EXPECT_FALSE(a.choleskyInvert(inverse));
    EXPECT_EQ(inverse.nRows(), 2);
    EXPECT_EQ(inverse.nCols(), 1);
    const double marker[] = {3};
    TarnMatrix untouched(marker, 1, 1);
    EXPECT_FALSE(TarnMatrix(2, 3).choleskyInvert(untouched));
    EXPECT_EQ(valuesOf(untouched), (std::vector<double>{3}));
}

TEST(TarnMatrixTest, MakeUnitScalesVectorsOnly) {
    const double data[] = {3, 4};
    TarnMatrix row(data, 1, 2);
    TarnMatrix column(data, 2, 1);
    EXPECT_TRUE(row.makeUnit());
    EXPECT_TRUE(column.makeUnit());
    EXPECT_EQ(valuesOf(row), (std::vector<double>{0.6, 0.8}));
    EXPECT_EQ(valuesOf(column), (std::vector<double>{0.6, 0.8}));
    const double square[] = {3, 4, 5, 6};
    TarnMatrix matrix(square, 2, 2);
    EXPECT_FALSE(matrix.makeUnit());
    EXPECT_EQ(valuesOf(matrix), (std::vector<double>{3, 4, 5, 6}));
    const double single[] = {-2};
    TarnMatrix scalar(single, 1, 1);
    EXPECT_TRUE(scalar.makeUnit());
    EXPECT_EQ(scalar[0][0], -1.0);
    TarnMatrix zero(1, 3);
    EXPECT_TRUE(zero.makeUnit());
    EXPECT_TRUE(std::isnan(zero[0][0]));
}

TEST(TarnMatrixTest, CrossProductOfColumnsOnly) {
    const double x[] = {1, 0, 0};
    const double y[] = {0, 1, 0};
    const TarnMatrix ex(x, 3, 1);
    const TarnMatrix ey(y, 3, 1);
    EXPECT_EQ(valuesOf(TarnMatrix::crossProduct(ex, ey)), (std::vector<double>{0, 0, 1}));
    EXPECT_EQ(valuesOf(TarnMatrix::crossProduct(ey, ex)), (std::vector<double>{0, 0, -1}));
    const TarnMatrix rowX(x, 1, 3);
    const TarnMatrix rowY(y, 1, 3);
    const TarnMatrix refused = TarnMatrix::crossProduct(rowX, rowY);
    EXPECT_EQ(refused.nRows(), 3);
    EXPECT_EQ(valuesOf(refused), (std::vector<double>{0, 0, 0}));
}

TEST(TarnMatrixTest, StoreAndRestoreThroughAStringArchiveKeepsShapeAndBits) {
    const double data[] = {1.0 / 3.0, -2.5e-300, 6.02214076e23, 0.0, -0.0, 42.0};
    TarnMatrix original(data, 2, 3);
    original.setModified();
    TarnStringArchive store;
    ASSERT_TRUE(store.serializeStore(original));
    EXPECT_FALSE(original.isModified());
    EXPECT_EQ(std::string(original.get("rows")), "2");
    EXPECT_EQ(std::string(original.get("cols")), "3");

    TarnMatrix restored;
    TarnStringArchive load;
    ASSERT_TRUE(load.serializeRestore(restored, store.getText()));
    ASSERT_EQ(restored.nRows(), 2);
    ASSERT_EQ(restored.nCols(), 3);
    EXPECT_EQ(valuesOf(restored), valuesOf(original)) << "19 significant digits bring every double back";
    EXPECT_EQ(restored.getOldPointer(), restored.getBasePointer());
}

TEST(TarnMatrixTest, RestoreFromIncompleteNodes) {
    TarnMatrix matrix(2, 2);
    matrix = 5.0;
    {
        TarnArchive node;
        node.addIntToken("rows", 2);
        node.addIntToken("cols", 3);
        node.addDoublesToken("data", std::vector<double>{1, 2}.data(), 2);
        matrix.serializeRestore(node);
        TarnSerializable::handleManager.reset();
    }
    EXPECT_EQ(valuesOf(matrix), (std::vector<double>{1, 2, 0, 0, 0, 0})) << "a short data list leaves zeros";
    {
        TarnArchive node;
        node.addIntToken("rows", 1);
        node.addIntToken("cols", 2);
        matrix.serializeRestore(node);
        TarnSerializable::handleManager.reset();
    }
    EXPECT_EQ(valuesOf(matrix), (std::vector<double>{0, 0}));
    {
        TarnArchive node;
        matrix.serializeRestore(node);
        TarnSerializable::handleManager.reset();
    }
    EXPECT_EQ(matrix.nRows(), 0);
    EXPECT_EQ(matrix.nCols(), 0);
}

TEST(TarnMatrixTest, StoredNodeNamesTheClassAndHoldsTheFlatElements) {
    const double data[] = {1.5, 2};
    TarnMatrix matrix(data, 1, 2);
    TarnArchive node;
    matrix.serializeStore(node);
    EXPECT_EQ(std::string(node.getName()), "TarnMatrix");
    EXPECT_TRUE(matrix.isa("TarnMatrix"));
    EXPECT_FALSE(matrix.isa("TarnSerializable"));
    EXPECT_EQ(std::string(node.getTokenText("rows")), "1");
    double back[2] = {0, 0};
    node.getTokenDoubles("data", back, 2);
    EXPECT_EQ(back[0], 1.5);
    EXPECT_EQ(back[1], 2.0);
    // Copies are new objects: their identity is their own address.
    TarnMatrix copied(matrix);
    EXPECT_EQ(copied.getOldPointer(), copied.getBasePointer());
}
