// Tests that the fast matrix kernels give the bits of the plain loops, on random matrices.
#include "LinalgTestSupport.h"
#include "linalg/TarnMatrixKernels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <numeric>
#include <random>

namespace {

using tarntest::valuesOf;
using Values = std::vector<double>;

// Sizes that meet every remainder of the kernels' row blocks and column panels.
const int kSizes[] = {1, 3, 17, 64, 129};
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
    for (int m : kSizes) {
        for (int p : kSizes) {
            for (int n : {1, 3, 17, 129}) {
                SCOPED_TRACE(testing::Message()
                             << "seed " << kSeed << ", " << m << " x " << p << " times " << p << " x " << n);
                const TarnMatrix a = randomMatrix(generator, m, p);
                const TarnMatrix b = randomMatrix(generator, p, n);
                const Values expected = plainTimes(a, b);
                EXPECT_TRUE(sameBits(valuesOf(a * b), expected)) << "library dispatch";
                auto kernels = {tarn::linalg::multiplyPortable, tarn::linalg::multiplyAvx2};
                for (auto kernel : kernels) {
                    if (kernel == tarn::linalg::multiplyAvx2 && !tarn::linalg::hasAvx2()) {
                        continue;
                    }
                    Values c(expected.size(), -1.0);
                    kernel(valuesOf(a).data(), valuesOf(b).data(), c.data(), m, p, n);
                    EXPECT_TRUE(sameBits(c, expected))
                        << (kernel == tarn::linalg::multiplyAvx2 ? "AVX2" : "portable");
                }
            }
        }
    }
}

TEST_F(TarnMatrixExactnessTest, ScaledRowUpdateKernelsGiveThePlainLoopBits) {
    using tarn::linalg::kMaxTargets;
    using tarn::linalg::kMaxTerms;
    using Kernel = void (*)(double *const *, int, const double *const *, const double *, int, int);
    std::vector<Kernel> kernels = {tarn::linalg::addScaledTermsPortable};
    if (tarn::linalg::hasAvx2()) {
        kernels.push_back(tarn::linalg::addScaledTermsAvx2);
    }
    for (int count : {0, 1, 3, 7, 8, 17, 64, 129}) {
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
                for (Kernel kernel : kernels) {
                    TarnMatrix result = random;
                    double *targetRows[kMaxTargets] = {result[4], result[5], result[6], result[7]};
                    kernel(targetRows, targets, sources, factors, terms, count);
                    for (int c = 0; c < kMaxTargets; ++c) {
                        EXPECT_TRUE(sameBits(Values(result[4 + c], result[4 + c] + count), expected[c]))
                            << "target " << c;
                    }
                }
            }
        }
    }
}

TEST_F(TarnMatrixExactnessTest, SolveAndInvertGiveThePlainFactorizationBits) {
    for (int n : kSizes) {
        for (bool ties : {false, true}) {
            SCOPED_TRACE(testing::Message()
                         << "seed " << kSeed << ", order " << n << (ties ? ", with ties" : ""));
            const TarnMatrix a = randomMatrix(generator, n, n, ties);
            TarnMatrix unit;
            unit.identity(n);
            const TarnMatrix rhs = randomMatrix(generator, n, 2);
            for (bool inverting : {false, true}) { // the inverse solves for the identity
                Values expected;
                const bool solvable = plainSolve(a, inverting ? unit : rhs, expected);
                TarnMatrix x;
                ASSERT_EQ(inverting ? a.invert(x) : a.solve(x, rhs), solvable) << "inverting " << inverting;
                if (solvable) {
                    EXPECT_TRUE(sameBits(valuesOf(x), expected)) << "inverting " << inverting;
                }
            }
        }
    }
}

TEST_F(TarnMatrixExactnessTest, PackedProductsGiveThePlainLoopBits) {
    for (int n : kSizes) {
        SCOPED_TRACE(testing::Message() << "seed " << kSeed << ", order " << n);
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

} // namespace
