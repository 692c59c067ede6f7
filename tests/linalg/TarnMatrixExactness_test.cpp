// Tests that the fast matrix kernels give the bits of the plain loops, on random matrices.
#include <tarn/tarn.h>

#include "linalg/TarnMatrixKernels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

namespace {

// Sizes that meet every remainder of the kernels' row blocks and column panels.
const int kSizes[] = {1, 3, 17, 64, 129};
constexpr unsigned kSeed = 20261123u;

using Values = std::vector<double>;

// A rows x cols matrix of uniform values in [-1, 1), or of small integers (-2, -1, 1, 2 over 4)
// that make pivot ties and exact cancellations likely.
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

Values valuesOf(const TarnMatrix &matrix) {
    Values values;
    for (int i = 0; i < matrix.nRows(); ++i) {
        values.insert(values.end(), matrix[i], matrix[i] + matrix.nCols());
    }
    return values;
}

// True when both blocks hold the same bits; NaNs with the same bits count as equal.
bool sameBits(const Values &a, const Values &b) {
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0);
}

// The plain product: each right column copied out, then one dot product per row, k rising from 0.0.
Values plainTimes(const TarnMatrix &a, const TarnMatrix &b) {
    const int m = a.nRows();
    const int p = a.nCols();
    const int n = b.nCols();
    Values c(static_cast<std::size_t>(m) * n);
    Values column(static_cast<std::size_t>(p));
    for (int j = 0; j < n; ++j) {
        for (int k = 0; k < p; ++k) {
            column[k] = b[k][j];
        }
        for (int i = 0; i < m; ++i) {
            double sum = 0.0;
            for (int k = 0; k < p; ++k) {
                sum += a[i][k] * column[k];
            }
            c[static_cast<std::size_t>(i) * n + j] = sum;
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
    Values column(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
        pivots[i] = i;
    }
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < n; ++i) {
            column[i] = lu[i][j];
        }
        for (int i = 0; i < n; ++i) {
            const int kmax = std::min(i, j);
            double s = 0.0;
            for (int k = 0; k < kmax; ++k) {
                s += lu[i][k] * column[k];
            }
            column[i] -= s;
            lu[i][j] = column[i];
        }
        int p = j;
        for (int i = j + 1; i < n; ++i) {
            if (std::fabs(column[p]) < std::fabs(column[i])) {
                p = i;
            }
        }
        if (p != j) {
            for (int k = 0; k < n; ++k) {
                std::swap(lu[p][k], lu[j][k]);
            }
            std::swap(pivots[p], pivots[j]);
        }
        if (lu[j][j] != 0.0) {
            for (int i = j + 1; i < n; ++i) {
                lu[i][j] /= lu[j][j];
            }
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

// The plain normal matrix, packed in the storage order of `upper`.
Values plainAtA(const TarnMatrix &a, bool upper) {
    Values packed;
    const int n = a.nCols();
    for (int p = 0; p < n; ++p) {
        for (int q = upper ? p : 0; q < (upper ? n : p + 1); ++q) {
            double sum = 0.0;
            for (int r = 0; r < a.nRows(); ++r) {
                sum += a[r][p] * a[r][q];
            }
            packed.push_back(sum);
        }
    }
    return packed;
}

// A random upper triangular matrix of order n, also as a dense matrix whose lower part is NaN:
// a product that read below the diagonal would show a NaN.
void randomUpper(std::mt19937 &generator, int n, TarnUpperTriangularMatrix &upper, TarnMatrix &dense) {
    dense = randomMatrix(generator, n, n);
    upper.resize(n, n);
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) {
            j < i ? void(dense[i][j] = std::nan("")) : upper.setElement(i, j, dense[i][j]);
        }
    }
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
                Values portable(expected.size(), -1.0);
                tarn::linalg::multiplyPortable(valuesOf(a).data(), valuesOf(b).data(), portable.data(), m, p,
                                               n);
                EXPECT_TRUE(sameBits(portable, expected)) << "portable kernel";
                if (tarn::linalg::hasAvx2()) {
                    Values vector(expected.size(), -1.0);
                    tarn::linalg::multiplyAvx2(valuesOf(a).data(), valuesOf(b).data(), vector.data(), m, p,
                                               n);
                    EXPECT_TRUE(sameBits(vector, expected)) << "AVX2 kernel";
                }
            }
        }
    }
}

TEST_F(TarnMatrixExactnessTest, ScaledRowUpdateKernelsGiveThePlainLoopBits) {
    using tarn::linalg::kMaxTargets;
    using tarn::linalg::kMaxTerms;
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    const auto fill = [&](Values &values) {
        for (double &value : values) {
            value = uniform(generator);
        }
    };
    for (int count : {0, 1, 3, 7, 8, 17, 64, 129}) {
        for (int targets = 1; targets <= kMaxTargets; ++targets) {
            for (int terms = 1; terms <= kMaxTerms; ++terms) {
                SCOPED_TRACE(testing::Message() << "seed " << kSeed << ", count " << count << ", " << targets
                                                << " targets, " << terms << " terms");
                std::vector<Values> x(kMaxTerms, Values(static_cast<std::size_t>(count)));
                std::vector<Values> y(kMaxTargets, Values(static_cast<std::size_t>(count)));
                Values factors(kMaxTargets * kMaxTerms);
                for (Values &values : x) {
                    fill(values);
                }
                for (Values &values : y) {
                    fill(values);
                }
                fill(factors);
                const double *sources[kMaxTerms] = {x[0].data(), x[1].data(), x[2].data(), x[3].data()};
                // One plain pass per target and term.
                std::vector<Values> expected = y;
                for (int c = 0; c < targets; ++c) {
                    for (int t = 0; t < terms; ++t) {
                        for (int i = 0; i < count; ++i) {
                            expected[c][i] += x[t][i] * factors[c * kMaxTerms + t];
                        }
                    }
                }
                using Kernel =
                    void (*)(double *const *, int, const double *const *, const double *, int, int);
                std::vector<Kernel> kernels = {tarn::linalg::addScaledTermsPortable};
                if (tarn::linalg::hasAvx2()) {
                    kernels.push_back(tarn::linalg::addScaledTermsAvx2);
                }
                for (Kernel kernel : kernels) {
                    std::vector<Values> result = y;
                    double *targetRows[kMaxTargets] = {result[0].data(), result[1].data(), result[2].data(),
                                                       result[3].data()};
                    kernel(targetRows, targets, sources, factors.data(), terms, count);
                    for (int c = 0; c < kMaxTargets; ++c) {
                        EXPECT_TRUE(sameBits(result[c], expected[c])) << "target " << c;
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
            const TarnMatrix b = randomMatrix(generator, n, 2);
            Values expected;
            const bool solvable = plainSolve(a, b, expected);
            TarnMatrix x;
            ASSERT_EQ(a.solve(x, b), solvable);
            if (solvable) {
                EXPECT_TRUE(sameBits(valuesOf(x), expected));
            }
            TarnMatrix unit;
            unit.identity(n);
            Values expectedInverse;
            ASSERT_EQ(plainSolve(a, unit, expectedInverse), solvable);
            TarnMatrix inverse;
            ASSERT_EQ(a.invert(inverse), solvable);
            if (solvable) {
                EXPECT_TRUE(sameBits(valuesOf(inverse), expectedInverse));
            }
        }
    }
}

TEST_F(TarnMatrixExactnessTest, PackedProductsGiveThePlainLoopBits) {
    for (int n : kSizes) {
        SCOPED_TRACE(testing::Message() << "seed " << kSeed << ", order " << n);
        const TarnMatrix a = randomMatrix(generator, n + 2, n);
        for (int storage : {0, 1}) {
            TarnSymmetricMatrix normal(storage);
            EXPECT_TRUE(a.AtA(normal));
            const Values expected = plainAtA(a, storage == 0);
            Values packed;
            for (int p = 0; p < n; ++p) {
                for (int q = storage == 0 ? p : 0; q < (storage == 0 ? n : p + 1); ++q) {
                    packed.push_back(normal.getElement(p, q));
                }
            }
            EXPECT_TRUE(sameBits(packed, expected)) << "storage " << storage;
        }

        TarnUpperTriangularMatrix upper;
        TarnMatrix dense;
        randomUpper(generator, n, upper, dense);
        // Dense times upper: the sum for column j runs over k = 0 .. j.
        Values expectedRight;
        for (int i = 0; i < a.nRows(); ++i) {
            for (int j = 0; j < n; ++j) {
                double sum = 0.0;
                for (int k = 0; k <= j; ++k) {
                    sum += dense[k][j] * a[i][k];
                }
                expectedRight.push_back(sum);
            }
        }
        EXPECT_TRUE(sameBits(valuesOf(a * upper), expectedRight));
        // Upper times dense: the sum for row i runs over k = i .. n-1.
        const TarnMatrix other = randomMatrix(generator, n, 5);
        Values expectedLeft;
        for (int i = 0; i < n; ++i) {
            for (int j = 0; j < 5; ++j) {
                double sum = 0.0;
                for (int k = i; k < n; ++k) {
                    sum += dense[i][k] * other[k][j];
                }
                expectedLeft.push_back(sum);
            }
        }
        EXPECT_TRUE(sameBits(valuesOf(upper * other), expectedLeft));
    }
}

} // namespace
