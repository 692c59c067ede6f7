// Tests of the packed family, the products with the packed forms, and the block diagonal sum.
#include <tarn/tarn.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

const double kSix[] = {17, 22, 29, 27, 36, 45};

std::vector<double> valuesOf(const TarnMatrix &matrix) {
    std::vector<double> values;
    for (int i = 0; i < matrix.nRows(); ++i) {
        values.insert(values.end(), matrix[i], matrix[i] + matrix.nCols());
    }
    return values;
}

// The full square of a packed matrix, read through getElement.
std::vector<double> squareOf(const TarnSymmetricMatrix &matrix) {
    std::vector<double> values;
    for (int i = 0; i < matrix.nRows(); ++i) {
        for (int j = 0; j < matrix.nCols(); ++j) {
            values.push_back(matrix.getElement(i, j));
        }
    }
    return values;
}

} // namespace

TEST(TarnSymmetricMatrixTest, StorageFormsMirrorReadsAcrossTheDiagonal) {
    const TarnSymmetricMatrix lower(kSix, 3, 3, 1);
    const TarnSymmetricMatrix upper(kSix, 3, 3, 0);
    EXPECT_EQ(squareOf(lower), (std::vector<double>{17, 22, 27, 22, 29, 36, 27, 36, 45}));
    EXPECT_EQ(squareOf(upper), (std::vector<double>{17, 22, 29, 22, 27, 36, 29, 36, 45}));
    const TarnSymmetricMatrix otherLower(kSix, 3, 3, 7); // any non-zero form is lower
    EXPECT_EQ(squareOf(otherLower), squareOf(lower));
    // The forms are not compared: the same packed values are equal.
    EXPECT_TRUE(lower == upper);
}

TEST(TarnSymmetricMatrixTest, SetElementWritesTheOneSharedCell) {
    TarnSymmetricMatrix symmetric(kSix, 3, 3, 0);
    symmetric.setElement(2, 0, 5.0);
    EXPECT_EQ(symmetric.getElement(0, 2), 5.0);
    TarnUpperTriangularMatrix upper(kSix, 3, 3);
    upper.setElement(2, 0, 5.0);
    EXPECT_EQ(upper.getElement(0, 2), 29.0);
    EXPECT_EQ(upper.getElement(2, 0), 0.0);
    TarnLowerTriangularMatrix lower(kSix, 3, 3);
    lower.setElement(0, 2, 5.0);
    EXPECT_EQ(lower.getElement(2, 0), 27.0);
    EXPECT_EQ(lower.getElement(0, 2), 0.0);
}

TEST(TarnSymmetricMatrixTest, UnequalCountsLeaveTheMatrixAsItWas) {
    const TarnSymmetricMatrix refused(kSix, 3, 4, 0);
    EXPECT_EQ(refused.nRows(), 0);
    TarnSymmetricMatrix matrix(kSix, 3, 3, 0);
    matrix.resize(2, 3);
    EXPECT_EQ(matrix.nRows(), 3);
    EXPECT_EQ(matrix.getElement(2, 2), 45.0);
    matrix.resize(3, 3);
    EXPECT_EQ(squareOf(matrix), std::vector<double>(9, 0.0));
}

TEST(TarnSymmetricMatrixTest, EqualityComparesOrderAndPackedValues) {
    const double nearSix[] = {17, 22, 29, 27, 36, 45 + 1e-12};
    EXPECT_TRUE(TarnSymmetricMatrix(kSix, 3, 3, 0) == TarnSymmetricMatrix(nearSix, 3, 3, 0));
    const double five[] = {17, 22, 29, 27, 36, 44};
    EXPECT_FALSE(TarnSymmetricMatrix(kSix, 3, 3, 0) == TarnSymmetricMatrix(five, 3, 3, 0));
    EXPECT_FALSE(TarnSymmetricMatrix(kSix, 3, 3, 0) == TarnSymmetricMatrix(kSix, 2, 2, 0));
}

TEST(TarnSymmetricMatrixTest, TransposesBetweenTheTriangularForms) {
    std::vector<double> ascending(21);
    for (int i = 0; i < 21; ++i) {
        ascending[i] = i + 1;
    }
    const double lowerPacked[] = {1, 2, 7, 3, 8, 12, 4, 9, 13, 16, 5, 10, 14, 17, 19, 6, 11, 15, 18, 20, 21};
    const TarnUpperTriangularMatrix upper(ascending.data(), 6, 6);
    TarnLowerTriangularMatrix transposed;
    upper.transpose(transposed);
    EXPECT_TRUE(transposed == TarnLowerTriangularMatrix(lowerPacked, 6, 6));
    TarnUpperTriangularMatrix back;
    transposed.transpose(back);
    EXPECT_TRUE(back == upper);
}

TEST(TarnSymmetricMatrixTest, AtAFillsTheStoredTriangle) {
    const double data[] = {1, 2, 3, 4, 5, 6};
    const TarnMatrix matrix(data, 2, 3);
    TarnSymmetricMatrix lower(1);
    EXPECT_TRUE(matrix.AtA(lower));
    EXPECT_TRUE(lower == TarnSymmetricMatrix(kSix, 3, 3, 1));
    EXPECT_EQ(lower.getElement(0, 2), 27.0);
    TarnSymmetricMatrix upper(0);
    EXPECT_TRUE(matrix.AtA(upper));
    EXPECT_EQ(squareOf(upper), squareOf(lower));
    TarnSymmetricMatrix none(0);
    EXPECT_TRUE(TarnMatrix(4, 0).AtA(none));
    EXPECT_EQ(none.nRows(), 0);
}

TEST(TarnSymmetricMatrixTest, ProductsWithAnUpperFactorNeverReadBelowItsDiagonal) {
    const double left[] = {1, 5, 9, 2, 6, 10, 3, 7, 11, 4, 8, 12};
    const double factor[] = {0.1, 0.2, 0.25, 0.3, 0.4, 0.5};
    const TarnMatrix dense(left, 4, 3);
    const TarnUpperTriangularMatrix upper(factor, 3, 3);
    const double expected[] = {0.1, 1.7, 6.75, 0.2, 2.2, 7.9, 0.3, 2.7, 9.05, 0.4, 3.2, 10.2};
    EXPECT_TRUE(dense * upper == TarnMatrix(expected, 4, 3));
    TarnMatrix target(1, 1);
    EXPECT_FALSE(TarnMatrix(4, 2).times(target, upper));
    EXPECT_EQ(target.nRows(), 1);
    EXPECT_EQ((TarnMatrix(4, 2) * upper).nRows(), 0);

    const double right[] = {1, 4, 7, 10, 2, 5, 8, 11, 3, 6, 9, 12};
    const double w[] = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6};
    const double product[] = {1.4, 3.2, 5, 6.8, 2.3, 5, 7.7, 10.4, 1.8, 3.6, 5.4, 7.2};
    EXPECT_TRUE(TarnUpperTriangularMatrix(w, 3, 3) * TarnMatrix(right, 3, 4) == TarnMatrix(product, 3, 4));
    EXPECT_FALSE(TarnUpperTriangularMatrix(w, 3, 3).times(target, TarnMatrix(2, 4)));
    EXPECT_EQ((TarnUpperTriangularMatrix(w, 3, 3) * TarnMatrix(2, 4)).nCols(), 0);
}

TEST(TarnSymmetricMatrixTest, PlusEqualsAddsBlocksCornerToCorner) {
    TarnMatrix matrix(3, 5);
    TarnBlockDiagonalMatrix blocks;
    const double square[] = {1, 2, 3, 4};
    const double row[] = {5, 6, 7};
    blocks.addBlock(TarnMatrix(square, 2, 2));
    blocks.addBlock(TarnMatrix(row, 1, 3));
    matrix += blocks;
    EXPECT_EQ(valuesOf(matrix), (std::vector<double>{1, 2, 0, 0, 0, 3, 4, 0, 0, 0, 0, 0, 5, 6, 7}));
    matrix.plusEquals(blocks);
    EXPECT_EQ(matrix[2][4], 14.0);
    TarnMatrix untouched(2, 2);
    untouched += TarnBlockDiagonalMatrix();
    EXPECT_EQ(valuesOf(untouched), std::vector<double>(4, 0.0));
}

TEST(TarnBlockDiagonalMatrixTest, BlocksAreCopiesAndOutsideIndicesGiveTheSharedEmptyMatrix) {
    TarnBlockDiagonalMatrix blocks;
    const double one[] = {1};
    TarnMatrix block(one, 1, 1);
    blocks.addBlock(block);
    block[0][0] = 2;
    EXPECT_EQ(blocks.getBlockCount(), 1);
    EXPECT_EQ(blocks.getBlock(0)[0][0], 1.0);
    const TarnMatrix &outside = blocks.getBlock(1);
    EXPECT_EQ(outside.nRows(), 0);
    EXPECT_EQ(outside.nCols(), 0);
    EXPECT_EQ(&outside, &blocks.getBlock(-1));
    EXPECT_EQ(&outside, &TarnBlockDiagonalMatrix().getBlock(0));
}

TEST(TarnSymmetricMatrixTest, StoresPackedValuesUnderTheSymmetricClassName) {
    TarnLowerTriangularMatrix lower(kSix, 3, 3);
    TarnArchive node;
    lower.serializeStore(node);
    EXPECT_EQ(std::string(node.getName()), "TarnSymmetricMatrix");
    EXPECT_EQ(lower.getClassName(), "TarnSymmetricMatrix");
    EXPECT_FALSE(lower.isa("TarnLowerTriangularMatrix"));
    EXPECT_EQ(std::string(node.getTokenText("rows")), "3");
    EXPECT_EQ(std::string(node.getTokenText("cols")), "3");
    std::vector<double> packed(7, -1.0);
    node.getTokenDoubles("data", packed.data(), 7);
    EXPECT_EQ(packed, (std::vector<double>{17, 22, 29, 27, 36, 45, -1})) << "only the triangle is stored";

    TarnLowerTriangularMatrix restored;
    restored.serializeRestore(node);
    restored.reconnectPointers();
    restored.resetPointers();
    TarnSerializable::handleManager.reset();
    EXPECT_TRUE(restored == lower);
    EXPECT_EQ(squareOf(restored), squareOf(lower));
    EXPECT_EQ(restored.getOldPointer(), restored.getBasePointer());
    EXPECT_EQ(std::string(restored.get("data")), std::string(node.getTokenText("data")));
}

TEST(TarnSymmetricMatrixTest, RestoreWithUnequalCountsKeepsTheMatrix) {
    TarnSymmetricMatrix matrix(kSix, 3, 3, 0);
    TarnArchive node;
    node.addIntToken("rows", 2);
    node.addIntToken("cols", 4);
    node.addDoublesToken("data", kSix, 6);
    matrix.serializeRestore(node);
    TarnSerializable::handleManager.reset();
    EXPECT_EQ(matrix.nRows(), 3);
    EXPECT_EQ(matrix.getElement(2, 2), 45.0);
    TarnArchive empty;
    matrix.serializeRestore(empty);
    TarnSerializable::handleManager.reset();
    EXPECT_EQ(matrix.nRows(), 0);
}
