// Tests of the self-tests of the matrix family: their report lines and results.
#include <tarn/tarn.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

TEST(TarnMatrixTest, SelfTestsReportTwelveLinesInCallOrderPassAndReadNothingOfTheirObject) {
    TarnVector<TarnString> results;
    results.add() = "earlier line";
    const double data[] = {1, 2, 3, 4};
    TarnMatrix matrix(data, 2, 2); // the state of the object plays no part
    TarnLowerTriangularMatrix lower;
    TarnUpperTriangularMatrix upper;
    EXPECT_TRUE(matrix.test(results));
    EXPECT_TRUE(lower.test(results));
    EXPECT_TRUE(upper.test(results));
    const std::vector<std::string> expected = {
        "earlier line",
        "class TarnMatrix",
        "\tTarnMatrix::solve passed",
        "\tTarnMatrix::invert passed",
        "\tTarnMatrix::operator * passed",
        "\tTarnMatrix::AtA upper passed",
        "\tTarnMatrix::AtA lower passed",
        "\tTarnTarnMatrix::operator*(TarnUpperTriangularMatrix) passed",
        "class TarnLowerTriangularMatrix",
        "\ttranspose passed",
        "class TarnUpperTriangularMatrix",
        "\tTarnUpperTriangularMatrix::transpose passed",
        "\tTarnUpperTriangularMatrix::operator *(TarnMatrix) passed",
    };
    std::vector<std::string> lines;
    for (unsigned i = 0; i < results.size(); ++i) {
        lines.push_back(std::string(results[i]));
    }
    EXPECT_EQ(lines, expected);
    EXPECT_EQ(matrix[1][1], 4.0);
    EXPECT_EQ(lower.nRows(), 0);
}
