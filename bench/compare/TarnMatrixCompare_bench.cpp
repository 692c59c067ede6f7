// Dense product and LU solve side by side: TarnMatrix::times and solve against Eigen (one thread,
// default flags and -march=native), single-threaded OpenBLAS dgemm and dgesv, and reference LAPACK
// dgesv; beside them the processor's peak rate of separate multiplies and adds (no FMA), the limit
// of a kernel that keeps each element's summation order and never fuses.
#include "TarnCompareMatrices.h"

#include "foundation/TarnProcessor.h"

#include <tarn/tarn.h>

#include <benchmark/benchmark.h>

#include <dlfcn.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

namespace tarn_compare {
namespace {

// ---- BLAS and LAPACK, loaded from their explicit Debian paths -----------------------------------
// OpenBLAS and reference LAPACK export the same symbols, so neither is linked: each is opened with
// RTLD_LOCAL and its functions are looked up in its own handle. Reference LAPACK is opened after
// reference BLAS, so that its dgemm and the rest resolve to reference BLAS and not to whatever
// libblas.so.3 the system's alternatives point at.

using Dgemm = void (*)(const char *, const char *, const int *, const int *, const int *, const double *,
                       const double *, const int *, const double *, const int *, const double *, double *,
                       const int *);
using Dgesv = void (*)(const int *, const int *, double *, const int *, int *, double *, const int *, int *);

struct Library {
    std::string error;
    Dgemm dgemm = nullptr;
    Dgesv dgesv = nullptr;
};

void *openLocal(const char *path, std::string &error) {
    void *handle = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr && error.empty()) {
        error = std::string("cannot open ") + path + ": " + dlerror();
    }
    return handle;
}

const Library &openBlas() {
    static const Library library = [] {
        Library made;
        void *handle = openLocal(TARN_COMPARE_OPENBLAS, made.error);
        if (handle != nullptr) {
            made.dgemm = reinterpret_cast<Dgemm>(dlsym(handle, "dgemm_"));
            made.dgesv = reinterpret_cast<Dgesv>(dlsym(handle, "dgesv_"));
            using Text = char *(*)();
            using Count = int (*)();
            const auto config = reinterpret_cast<Text>(dlsym(handle, "openblas_get_config"));
            const auto core = reinterpret_cast<Text>(dlsym(handle, "openblas_get_corename"));
            const auto threads = reinterpret_cast<Count>(dlsym(handle, "openblas_get_num_threads"));
            if (config != nullptr && core != nullptr && threads != nullptr) {
                benchmark::AddCustomContext("openblas", std::string(config()) + ", core " + core() + ", " +
                                                            std::to_string(threads()) + " thread(s)");
            }
        }
        return made;
    }();
    return library;
}

const Library &referenceLapack() {
    static const Library library = [] {
        Library made;
        if (openLocal(TARN_COMPARE_REFERENCE_BLAS, made.error) != nullptr) {
            if (void *handle = openLocal(TARN_COMPARE_REFERENCE_LAPACK, made.error)) {
                made.dgesv = reinterpret_cast<Dgesv>(dlsym(handle, "dgesv_"));
            }
        }
        return made;
    }();
    return library;
}

// ---- shared checks and counters -----------------------------------------------------------------

void reportFlops(benchmark::State &state, double flops) {
    state.counters["GFLOPS"] = benchmark::Counter(flops, benchmark::Counter::kIsIterationInvariantRate);
}

// True when the two results agree to a relative 1e-9 of the largest element: the sides sum in
// different orders, some with FMA, so only closeness can be asked of them.
bool close(const double *a, const double *b, std::size_t count) {
    double largest = 0.0;
    double difference = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        largest = std::max(largest, std::fabs(a[i]));
        difference = std::max(difference, std::fabs(a[i] - b[i]));
    }
    return difference <= 1e-9 * largest;
}

// Tarn's product and solution, for checking the other sides against.
std::vector<double> tarnProduct(int n) {
    const std::vector<double> a = randomMatrix(n, n, false, 1);
    const std::vector<double> b = randomMatrix(n, n, false, 2);
    TarnMatrix c;
    TarnMatrix(a.data(), n, n).times(c, TarnMatrix(b.data(), n, n));
    return std::vector<double>(c[0], c[0] + static_cast<std::size_t>(n) * n);
}

std::vector<double> tarnSolution(int n) {
    const std::vector<double> a = randomMatrix(n, n, true, 3);
    const std::vector<double> b = randomMatrix(n, 1, false, 4);
    TarnMatrix x;
    TarnMatrix(a.data(), n, n).solve(x, TarnMatrix(b.data(), n, 1));
    return std::vector<double>(x[0], x[0] + n);
}

// ---- Tarn ---------------------------------------------------------------------------------------

// The Tarn side's kernel paths, each measured on its own; names as the benchmarks show them.
struct Path {
    tarn::KernelPath path;
    const char *name;
};
constexpr Path kPaths[] = {{tarn::KernelPath::sse2, "SSE2"},
                           {tarn::KernelPath::avx2, "AVX2"},
                           {tarn::KernelPath::avx512, "AVX-512"}};

// Limits the library's kernels to one path for a benchmark's run.
class PathLimit {
public:
    explicit PathLimit(tarn::KernelPath path) { tarn::limitKernelPath(path); }
    ~PathLimit() { tarn::limitKernelPath(tarn::KernelPath::avx512); }
    PathLimit(const PathLimit &) = delete;
    PathLimit &operator=(const PathLimit &) = delete;
};

void tarnTimes(benchmark::State &state, int n, tarn::KernelPath path) {
    const PathLimit limit(path);
    const std::vector<double> aData = randomMatrix(n, n, false, 1);
    const std::vector<double> bData = randomMatrix(n, n, false, 2);
    const TarnMatrix a(aData.data(), n, n);
    const TarnMatrix b(bData.data(), n, n);
    TarnMatrix c;
    for (auto _ : state) {
        a.times(c, b);
        benchmark::DoNotOptimize(c[0]);
        benchmark::ClobberMemory();
    }
    reportFlops(state, productFlops(n));
}

void tarnSolve(benchmark::State &state, int n, tarn::KernelPath path) {
    const PathLimit limit(path);
    const std::vector<double> aData = randomMatrix(n, n, true, 3);
    const std::vector<double> bData = randomMatrix(n, 1, false, 4);
    const TarnMatrix a(aData.data(), n, n);
    const TarnMatrix b(bData.data(), n, 1);
    TarnMatrix x;
    for (auto _ : state) {
        a.solve(x, b);
        benchmark::DoNotOptimize(x[0]);
        benchmark::ClobberMemory();
    }
    reportFlops(state, solveFlops(n));
}

// ---- BLAS dgemm and LAPACK dgesv ----------------------------------------------------------------

// Row-major C = A B is column-major C^T = B^T A^T: dgemm with the operands swapped, no transposes.
void blasTimes(benchmark::State &state, int n) {
    const Library &library = openBlas();
    if (library.dgemm == nullptr) {
        state.SkipWithError(("no dgemm: " + library.error).c_str());
        return;
    }
    const std::vector<double> a = randomMatrix(n, n, false, 1);
    const std::vector<double> b = randomMatrix(n, n, false, 2);
    std::vector<double> c(a.size());
    const double one = 1.0;
    const double zero = 0.0;
    for (auto _ : state) {
        library.dgemm("N", "N", &n, &n, &n, &one, b.data(), &n, a.data(), &n, &zero, c.data(), &n);
        benchmark::DoNotOptimize(c.data());
        benchmark::ClobberMemory();
    }
    if (!close(c.data(), tarnProduct(n).data(), c.size())) {
        state.SkipWithError("dgemm's product differs from Tarn's");
    }
    reportFlops(state, productFlops(n));
}

// dgesv overwrites the matrix with its factors and b with x: each call starts from fresh copies,
// as TarnMatrix::solve copies the matrix into its decomposition. The matrix is handed over
// transposed into column-major order once, outside the timing.
void lapackSolve(benchmark::State &state, int n, const Library &library) {
    if (library.dgesv == nullptr) {
        state.SkipWithError(("no dgesv: " + library.error).c_str());
        return;
    }
    const std::vector<double> rowMajor = randomMatrix(n, n, true, 3);
    const std::vector<double> b = randomMatrix(n, 1, false, 4);
    std::vector<double> columnMajor(rowMajor.size());
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) {
            columnMajor[static_cast<std::size_t>(j) * n + i] = rowMajor[static_cast<std::size_t>(i) * n + j];
        }
    }
    std::vector<double> factors(columnMajor.size());
    std::vector<double> x(b.size());
    std::vector<int> pivots(static_cast<std::size_t>(n));
    const int one = 1;
    int info = 0;
    for (auto _ : state) {
        std::memcpy(factors.data(), columnMajor.data(), factors.size() * sizeof(double));
        std::memcpy(x.data(), b.data(), x.size() * sizeof(double));
        library.dgesv(&n, &one, factors.data(), &n, pivots.data(), x.data(), &n, &info);
        benchmark::DoNotOptimize(x.data());
        benchmark::ClobberMemory();
    }
    if (info != 0 || !close(x.data(), tarnSolution(n).data(), x.size())) {
        state.SkipWithError("dgesv's solution differs from Tarn's");
    }
    reportFlops(state, solveFlops(n));
}

// ---- the peak without FMA -----------------------------------------------------------------------
// Six independent multiply chains and six independent add chains in vector registers (few enough
// for the 16 registers of SSE2 and AVX2, enough to cover the latency of two pipes): as many
// separate multiplies and adds per second as the processor can retire, the ceiling of any unfused
// kernel of that vector width. The factor 1.0 and the term 0.0 come in as arguments the compiler
// cannot see through, and noipa keeps the compiler from treating the call as a pure function whose
// result it may reuse, so that every operation is executed.

#define TARN_COMPARE_PEAK_KERNEL(name, isa, bytes)                                                           \
    __attribute__((target(isa), noipa)) double name(long count, double factor, double term) {                \
        typedef double Vec __attribute__((vector_size(bytes)));                                              \
        Vec m[6];                                                                                            \
        Vec s[6];                                                                                            \
        for (int k = 0; k < 6; ++k) {                                                                        \
            m[k] = Vec{} + (1.0 + k);                                                                        \
            s[k] = Vec{} + (2.0 + k);                                                                        \
        }                                                                                                    \
        const Vec f = Vec{} + factor;                                                                        \
        const Vec t = Vec{} + term;                                                                          \
        for (long i = 0; i < count; ++i) {                                                                   \
            for (int k = 0; k < 6; ++k) {                                                                    \
                m[k] = m[k] * f;                                                                             \
                s[k] = s[k] + t;                                                                             \
            }                                                                                                \
        }                                                                                                    \
        double total = 0.0;                                                                                  \
        for (int k = 0; k < 6; ++k) {                                                                        \
            for (std::size_t lane = 0; lane < bytes / sizeof(double); ++lane) {                              \
                total += m[k][lane] + s[k][lane];                                                            \
            }                                                                                                \
        }                                                                                                    \
        return total;                                                                                        \
    }

TARN_COMPARE_PEAK_KERNEL(peakSse2, "sse2", 16)
TARN_COMPARE_PEAK_KERNEL(peakAvx2, "avx2", 32)
TARN_COMPARE_PEAK_KERNEL(peakAvx512, "avx512f", 64)

void peak(benchmark::State &state, double (*kernel)(long, double, double), int lanes) {
    constexpr long kCount = 1 << 20;
    double factor = 1.0;
    double term = 0.0;
    benchmark::DoNotOptimize(factor);
    benchmark::DoNotOptimize(term);
    for (auto _ : state) {
        benchmark::DoNotOptimize(kernel(kCount, factor, term));
    }
    reportFlops(state, 12.0 * lanes * kCount);
}

void registerAll() {
    registerEigenBaseline();
    registerEigenNative();
    for (const int n : kProductSizes) {
        const std::string name = "times n=" + std::to_string(n);
        for (const Path &path : kPaths) {
            if (tarn::processorRuns(path.path)) {
                benchmark::RegisterBenchmark((name + "/Tarn " + path.name).c_str(), [n, path](
                                                                                        benchmark::State &s) {
                    tarnTimes(s, n, path.path);
                })->Unit(benchmark::kMicrosecond);
            }
        }
        benchmark::RegisterBenchmark((name + "/OpenBLAS dgemm").c_str(), [n](benchmark::State &s) {
            blasTimes(s, n);
        })->Unit(benchmark::kMicrosecond);
    }
    for (const int n : kSolveSizes) {
        const std::string name = "solve n=" + std::to_string(n);
        for (const Path &path : kPaths) {
            if (tarn::processorRuns(path.path)) {
                benchmark::RegisterBenchmark((name + "/Tarn " + path.name).c_str(), [n, path](
                                                                                        benchmark::State &s) {
                    tarnSolve(s, n, path.path);
                })->Unit(benchmark::kMicrosecond);
            }
        }
        benchmark::RegisterBenchmark((name + "/OpenBLAS dgesv").c_str(), [n](benchmark::State &s) {
            lapackSolve(s, n, openBlas());
        })->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark((name + "/reference LAPACK dgesv").c_str(), [n](benchmark::State &s) {
            lapackSolve(s, n, referenceLapack());
        })->Unit(benchmark::kMicrosecond);
    }
    benchmark::RegisterBenchmark("peak without FMA/SSE2 multiply + add",
                                 [](benchmark::State &s) { peak(s, peakSse2, 2); });
    if (__builtin_cpu_supports("avx2")) {
        benchmark::RegisterBenchmark("peak without FMA/AVX2 multiply + add",
                                     [](benchmark::State &s) { peak(s, peakAvx2, 4); });
    }
    if (__builtin_cpu_supports("avx512f")) {
        benchmark::RegisterBenchmark("peak without FMA/AVX-512 multiply + add",
                                     [](benchmark::State &s) { peak(s, peakAvx512, 8); });
    }
}

// Registers before benchmark_main's main() runs.
const bool registered = (registerAll(), true);

} // namespace
} // namespace tarn_compare
