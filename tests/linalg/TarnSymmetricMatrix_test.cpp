// Tests of the packed family, the products with the packed forms, and the block diagonal sum.
#include "LinalgTestSupport.h"

#include "TarnLibraryExceptions.h"

#include <gtest/gtest.h>

#include <new>

namespace {

using tarntest::squareOf;
using tarntest::valuesOf;
using Values = std::vector<double>;

const double kSix[] = {17, 22, 29, 27, 36, 45};

} // namespace

TEST(TarnSymmetricMatrixTest, StorageFormsMirrorAcrossTheDiagonalAndTrianglesIgnoreTheOtherHalf) {
    TarnSymmetricMatrix lower(kSix, 3, 3, 1);
    const TarnSymmetricMatrix upper(kSix, 3, 3, 0);
    EXPECT_EQ(squareOf(lower), (Values{17, 22, 27, 22, 29, 36, 27, 36, 45}));
    EXPECT_EQ(squareOf(upper), (Values{17, 22, 29, 22, 27, 36, 29, 36, 45}));
    EXPECT_EQ(squareOf(TarnSymmetricMatrix(kSix, 3, 3, 7)), squareOf(lower)) << "any non-zero form is lower";
    EXPECT_TRUE(lower == upper) << "the forms are not compared, only the packed values";
    lower.setElement(0, 2, 5.0);
    EXPECT_EQ(lower.getElement(2, 0), 5.0);
    TarnUpperTriangularMatrix upperTriangle(kSix, 3, 3);
    upperTriangle.setElement(2, 0, 5.0);
    EXPECT_EQ(upperTriangle.getElement(0, 2), 29.0);
    EXPECT_EQ(upperTriangle.getElement(2, 0), 0.0);
    TarnLowerTriangularMatrix lowerTriangle(kSix, 3, 3);
    lowerTriangle.setElement(0, 2, 5.0);
    EXPECT_EQ(lowerTriangle.getElement(2, 0), 27.0);
    EXPECT_EQ(lowerTriangle.getElement(0, 2), 0.0);
    // Equality compares the order and the packed values, within the tolerance.
    const double nearSix[] = {17, 22, 29, 27, 36, 45 + 1e-12};
    const double five[] = {17, 22, 29, 27, 36, 44};
    EXPECT_TRUE(upper == TarnSymmetricMatrix(nearSix, 3, 3, 0));
    EXPECT_FALSE(upper == TarnSymmetricMatrix(five, 3, 3, 0));
    EXPECT_FALSE(upper == TarnSymmetricMatrix(kSix, 2, 2, 0));
}

TEST(TarnSymmetricMatrixTest, UnequalCountsLeaveTheMatrixAsItWas) {
    EXPECT_EQ(TarnSymmetricMatrix(kSix, 3, 4, 0).nRows(), 0);
    TarnSymmetricMatrix matrix(kSix, 3, 3, 0);
    matrix.resize(2, 3);
    EXPECT_EQ(matrix.getElement(2, 2), 45.0);
    TarnArchive node;
    node.addIntToken("rows", 2);
    node.addIntToken("cols", 4);
    node.addDoublesToken("data", kSix, 6);
    matrix.serializeRestore(node);
    TarnSerializable::handleManager.reset();
    EXPECT_EQ(squareOf(matrix), squareOf(TarnSymmetricMatrix(kSix, 3, 3, 0)));
    matrix.resize(3, 3);
    EXPECT_EQ(squareOf(matrix), Values(9, 0.0));
    TarnSymmetricMatrix none(0);
    EXPECT_TRUE(TarnMatrix(4, 0).AtA(none));
    EXPECT_EQ(none.nRows(), 0);
}

// A resize whose packed block cannot be allocated leaves order and elements as they were.
TEST(TarnSymmetricMatrixTest, ResizeThatThrowsKeepsOrderAndElements) {
    TARN_SKIP_UNLESS_LIBRARY_EXCEPTIONS_REACH_THE_CALLER();
    TarnSymmetricMatrix matrix(kSix, 3, 3, 1);
    EXPECT_THROW(matrix.resize(2147483647, 2147483647), std::bad_alloc);
    ASSERT_EQ(matrix.nRows(), 3);
    EXPECT_EQ(squareOf(matrix), squareOf(TarnSymmetricMatrix(kSix, 3, 3, 1)));
    matrix.setElement(2, 2, 1.0);
    EXPECT_EQ(matrix.getElement(2, 2), 1.0);
}

TEST(TarnSymmetricMatrixTest, TransposesBetweenTheTriangularForms) {
    Values ascending(21);
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

// The values of these products are checked bit for bit in the exactness tests.
TEST(TarnSymmetricMatrixTest, ProductsWithAnUpperFactorRefuseMismatchedShapes) {
    const TarnUpperTriangularMatrix upper(kSix, 3, 3);
    TarnMatrix target(1, 1);
    EXPECT_FALSE(TarnMatrix(4, 2).times(target, upper));
    EXPECT_FALSE(upper.times(target, TarnMatrix(2, 4)));
    EXPECT_EQ(target.nRows(), 1);
    EXPECT_EQ((TarnMatrix(4, 2) * upper).nRows(), 0);
    EXPECT_EQ((upper * TarnMatrix(2, 4)).nCols(), 0);
}

TEST(TarnSymmetricMatrixTest, PlusEqualsAddsBlocksCornerToCorner) {
    TarnMatrix matrix(3, 5);
    TarnBlockDiagonalMatrix blocks;
    const double square[] = {1, 2, 3, 4};
    const double row[] = {5, 6, 7};
    blocks.addBlock(TarnMatrix(square, 2, 2));
    blocks.addBlock(TarnMatrix(row, 1, 3));
    matrix += blocks;
    EXPECT_EQ(valuesOf(matrix), (Values{1, 2, 0, 0, 0, 3, 4, 0, 0, 0, 0, 0, 5, 6, 7}));
    matrix.plusEquals(blocks);
    EXPECT_EQ(matrix[2][4], 14.0);
    TarnMatrix untouched(2, 2);
    untouched += TarnBlockDiagonalMatrix();
    EXPECT_EQ(valuesOf(untouched), Values(4, 0.0));
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
    EXPECT_EQ(outside.nRows() + outside.nCols(), 0);
    EXPECT_EQ(&outside, &blocks.getBlock(-1));
    EXPECT_EQ(&outside, &TarnBlockDiagonalMatrix().getBlock(0));
}

TEST(TarnSymmetricMatrixTest, StoresPackedValuesUnderTheSymmetricClassName) {
    TarnLowerTriangularMatrix lower(kSix, 3, 3);
    TarnArchive node;
    lower.serializeStore(node);
    EXPECT_EQ(std::string(node.getName()), "TarnSymmetricMatrix");
    EXPECT_EQ(std::string(node.getTokenText("cols")), "3");
    Values packed(7, -1.0);
    node.getTokenDoubles("data", packed.data(), 7);
    EXPECT_EQ(packed, (Values{17, 22, 29, 27, 36, 45, -1})) << "only the triangle is stored";

    TarnLowerTriangularMatrix restored;
    restored.serializeRestore(node);
    restored.reconnectPointers();
    restored.resetPointers();
    TarnSerializable::handleManager.reset();
    EXPECT_EQ(squareOf(restored), squareOf(lower));
    EXPECT_EQ(restored.getOldPointer(), restored.getBasePointer());
    EXPECT_EQ(std::string(restored.get("data")), std::string(node.getTokenText("data")));
    TarnArchive empty;
    restored.serializeRestore(empty);
    TarnSerializable::handleManager.reset();
    EXPECT_EQ(restored.nRows(), 0);
}
