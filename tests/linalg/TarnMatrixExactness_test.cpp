// Tests that the fast matrix kernels give the bits of the plain loops, on random matrices.
#include "LinalgTestSupport.h"
#include "linalg/TarnMatrixKernels.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <numeric>
#include <random>

namespace {

using tarntest::KernelPathLimit;
using tarntest::valuesOf;
using Values = std::vector<double>;

// Sizes that meet every remainder of the tiles (4 x 4, 6 x 8, 8 x 16) and the row cache block; the
// products with whole column slivers and a small right factor read it unpacked.
const int kSizes[] = {1, 3, 17, 64, 129};
// Shapes (m, p, n) that cross the cache blocks over k (256), rows (128) and columns (2048): a k
// block continues the sums the one before stored.
const int kBlockShapes[][3] = {{130, 300, 21}, {9, 513, 40}, {5, 260, 2050}};

using tarn::KernelPath;
// Every path, narrowest first; a path the processor lacks runs as the widest one it has.
const KernelPath kPaths[] = {KernelPath::portable, KernelPath::sse2, KernelPath::avx2, KernelPath::avx512};

constexpr unsigned kSeed = 20261123u;

// A rows x cols matrix of uniform values in [-1, 1), or of small values (+-0.25, +-0.5) that make
// pivot ties and exact cancellations likely.
TarnMatrix randomMatrix(std::mt19937 &generator, int rows, int cols, bool ties = false) {
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    std::uniform_int_distribution<int> small(0, 3);
    const double smallValues[] = {-0.5, -0.25, 0.25, 0.5};
    TarnMatrix matrix(rows, cols);
    for (int i = 0; i < rows; ++i) {
        for (int j = 0; j < cols; ++j) {
            matrix[i][j] = ties ? smallValues[small(generator)] : uniform(generator);
        }
    }
    return matrix;
}

// True when both blocks hold the same bits; NaNs with the same bits count as equal.
bool sameBits(const Values &a, const Values &b) {
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0);
}

// The plain product: one dot product per element, k rising from 0.0. It also serves the packed
// products: the zeros outside a stored triangle add +0.0 to a sum that is never -0.0, which
// leaves its bits alone.
Values plainTimes(const TarnMatrix &a, const TarnMatrix &b) {
    Values c;
    for (int i = 0; i < a.nRows(); ++i) {
        for (int j = 0; j < b.nCols(); ++j) {
            double sum = 0.0;
            for (int k = 0; k < a.nCols(); ++k) {
                sum += a[i][k] * b[k][j];
            }
            c.push_back(sum);
        }
    }
    return c;
}

// The plain LU factorization (row-major factors, one scratch column, one dot product per
// element) and substitution. Returns false for an exact zero pivot.
bool plainSolve(const TarnMatrix &a, const TarnMatrix &rhs, Values &solution) {
    const int n = a.nRows();
    TarnMatrix lu(a);
    std::vector<int> pivots(static_cast<std::size_t>(n));
    std::iota(pivots.begin(), pivots.end(), 0);
    Values column(static_cast<std::size_t>(n));
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < n; ++i) {
            column[i] = lu[i][j];
        }
        for (int i = 0; i < n; ++i) {
            double s = 0.0;
            for (int k = 0; k < std::min(i, j); ++k) {
                s += lu[i][k] * column[k];
            }
            lu[i][j] = column[i] -= s;
        }
        int p = j;
        for (int i = j + 1; i < n; ++i) {
            p = std::fabs(column[p]) < std::fabs(column[i]) ? i : p;
        }
        if (p != j) {
            std::swap_ranges(lu[p], lu[p] + n, lu[j]);
            std::swap(pivots[p], pivots[j]);
        }
        for (int i = j + 1; i < n && lu[j][j] != 0.0; ++i) {
            lu[i][j] /= lu[j][j];
        }
    }
    for (int j = 0; j < n; ++j) {
        if (lu[j][j] == 0.0) {
            return false;
        }
    }
    const int nx = rhs.nCols();
    TarnMatrix x;
    rhs.getMatrix(x, pivots.data(), n, 0, nx - 1);
    for (int k = 0; k < n; ++k) {
        for (int i = k + 1; i < n; ++i) {
            for (int j = 0; j < nx; ++j) {
                x[i][j] -= x[k][j] * lu[i][k];
            }
        }
    }
    for (int k = n - 1; k >= 0; --k) {
        for (int j = 0; j < nx; ++j) {
            x[k][j] /= lu[k][k];
        }
        for (int i = 0; i < k; ++i) {
            for (int j = 0; j < nx; ++j) {
                x[i][j] -= x[k][j] * lu[i][k];
            }
        }
    }
    solution = valuesOf(x);
    return true;
}

class TarnMatrixExactnessTest : public ::testing::Test {
protected:
    void SetUp() override { RecordProperty("seed", static_cast<int>(kSeed)); }
    std::mt19937 generator{kSeed};
};

TEST_F(TarnMatrixExactnessTest, ProductKernelsGiveThePlainLoopBits) {
    std::vector<std::array<int, 3>> shapes;
    for (int m : kSizes) {
        for (int p : kSizes) {
            for (int n : {1, 3, 16, 17, 64, 129}) {
                shapes.push_back({m, p, n});
            }
        }
    }
    for (const auto &shape : kBlockShapes) {
        shapes.push_back({shape[0], shape[1], shape[2]});
    }
    for (const auto &[m, p, n] : shapes) {
        SCOPED_TRACE(testing::Message()
                     << "seed " << kSeed << ", " << m << " x " << p << " times " << p << " x " << n);
        const TarnMatrix a = randomMatrix(generator, m, p);
        const TarnMatrix b = randomMatrix(generator, p, n);
        const Values expected = plainTimes(a, b);
        for (KernelPath path : kPaths) {
            const KernelPathLimit limit(path);
            EXPECT_TRUE(sameBits(valuesOf(a * b), expected)) << "path " << static_cast<int>(path);
        }
    }
}

TEST_F(TarnMatrixExactnessTest, ScaledRowUpdateKernelsGiveThePlainLoopBits) {
    using tarn::linalg::kMaxTargets;
    using tarn::linalg::kMaxTerms;
    for (int count : {0, 1, 3, 7, 8, 15, 17, 64, 129}) {
        for (int targets = 1; targets <= kMaxTargets; ++targets) {
            for (int terms = 1; terms <= kMaxTerms; ++terms) {
                SCOPED_TRACE(testing::Message() << "seed " << kSeed << ", count " << count << ", " << targets
                                                << " targets, " << terms << " terms");
                // Rows 0..3 are the sources x, rows 4..7 the targets y, row 8 the factors.
                const int width = std::max(count, kMaxTargets * kMaxTerms);
                const TarnMatrix random = randomMatrix(generator, 9, width);
                const double *sources[kMaxTerms] = {random[0], random[1], random[2], random[3]};
                const double *factors = random[8];
                std::vector<Values> expected;
                for (int c = 0; c < kMaxTargets; ++c) {
                    expected.emplace_back(random[4 + c], random[4 + c] + count);
                    for (int t = 0; t < terms && c < targets; ++t) { // one plain pass per target and term
                        for (int i = 0; i < count; ++i) {
                            expected[c][i] += sources[t][i] * factors[c * kMaxTerms + t];
                        }
                    }
                }
                for (KernelPath path : kPaths) {
                    const KernelPathLimit limit(path);
                    TarnMatrix result = random;
                    double *targetRows[kMaxTargets] = {result[4], result[5], result[6], result[7]};
                    tarn::linalg::addScaledTerms(targetRows, targets, sources, factors, terms, count);
                    for (int c = 0; c < kMaxTargets; ++c) {
                        EXPECT_TRUE(sameBits(Values(result[4 + c], result[4 + c] + count), expected[c]))
                            << "target " << c << ", path " << static_cast<int>(path);
                    }
                }
            }
        }
    }
}

// The transpose walks tiles: every shape across and beyond the tile edges must move each element.
TEST_F(TarnMatrixExactnessTest, TransposeMovesEveryElementAcrossTileEdges) {
    for (int rows : {1, 15, 16, 17, 40}) {
        for (int cols : {1, 16, 33}) {
            const TarnMatrix a = randomMatrix(generator, rows, cols);
            TarnMatrix t;
            ASSERT_TRUE(a.transpose(t));
            ASSERT_EQ(t.nRows(), cols);
            ASSERT_EQ(t.nCols(), rows);
            for (int i = 0; i < rows; ++i) {
                for (int j = 0; j < cols; ++j) {
                    ASSERT_EQ(t[j][i], a[i][j]) << rows << " x " << cols << " at " << i << ", " << j;
                }
            }
        }
    }
}

TEST_F(TarnMatrixExactnessTest, SolveAndInvertGiveThePlainFactorizationBits) {
    // The awkward sizes, orders on both sides of the small-system path's limit, and one with many
    // blocks and chunks, and one whose products cross the cache block over k, on every path.
    for (KernelPath path : kPaths) {
        const KernelPathLimit limit(path);
        for (int n : {1, 3, 10, 15, 16, 17, 64, 129, 203, 300}) {
            for (bool ties : {false, true}) {
                SCOPED_TRACE(testing::Message() << "seed " << kSeed << ", path " << static_cast<int>(path)
                                                << ", order " << n << (ties ? ", with ties" : ""));
                const TarnMatrix a = randomMatrix(generator, n, n, ties);
                TarnMatrix unit;
                unit.identity(n);
                // One right-hand column takes its own substitution path; two take the general one.
                const TarnMatrix column = randomMatrix(generator, n, 1);
                const TarnMatrix rhs = randomMatrix(generator, n, 2);
                for (int task : {0, 1, 2}) { // solve for one column, for two, invert (solve for the identity)
                    const TarnMatrix &b = task == 0 ? column : task == 1 ? rhs : unit;
                    Values expected;
                    const bool solvable = plainSolve(a, b, expected);
                    TarnMatrix y;
                    ASSERT_EQ(task == 2 ? a.invert(y) : a.solve(y, b), solvable) << "task " << task;
                    EXPECT_TRUE(!solvable || sameBits(valuesOf(y), expected)) << "task " << task;
                }
            }
        }
    }
}

TEST_F(TarnMatrixExactnessTest, PackedProductsGiveThePlainLoopBits) {
    for (KernelPath path : kPaths) {
        const KernelPathLimit limit(path);
        for (int n : kSizes) {
            SCOPED_TRACE(testing::Message()
                         << "seed " << kSeed << ", path " << static_cast<int>(path) << ", order " << n);
            const TarnMatrix a = randomMatrix(generator, n + 2, n);
            // The normal matrix, read back from each stored triangle.
            const Values normal = plainTimes(a.t(), a);
            for (int storage : {0, 1}) {
                TarnSymmetricMatrix packed(storage);
                EXPECT_TRUE(a.AtA(packed));
                Values stored, expected;
                for (int p = 0; p < n; ++p) {
                    for (int q = storage == 0 ? p : 0; q < (storage == 0 ? n : p + 1); ++q) {
                        stored.push_back(packed.getElement(p, q));
                        expected.push_back(normal[static_cast<std::size_t>(p) * n + q]);
                    }
                }
                EXPECT_TRUE(sameBits(stored, expected)) << "storage " << storage;
            }
            // A random upper factor, also held densely with zeros below the diagonal.
            TarnMatrix dense = randomMatrix(generator, n, n);
            TarnUpperTriangularMatrix upper;
            upper.resize(n, n);
            for (int i = 0; i < n; ++i) {
                for (int j = 0; j < n; ++j) {
                    j < i ? void(dense[i][j] = 0.0) : upper.setElement(i, j, dense[i][j]);
                }
            }
            EXPECT_TRUE(sameBits(valuesOf(a * upper), plainTimes(a, dense)));
            const TarnMatrix other = randomMatrix(generator, n, 5);
            EXPECT_TRUE(sameBits(valuesOf(upper * other), plainTimes(dense, other)));
        }
    }
}

} // namespace
