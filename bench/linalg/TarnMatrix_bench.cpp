// Benchmarks of the dense product and the LU solve, in GFLOP/s, and of the heap use of a solve.
#include <tarn/tarn.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <random>

namespace {
std::atomic<long> heapAllocations{0};

void *countedAllocation(std::size_t size) {
    heapAllocations.fetch_add(1, std::memory_order_relaxed);
    if (void *memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}
} // namespace

// Counts every allocation of the process, so that a benchmark can report allocations per call.
void *operator new(std::size_t size) {
    return countedAllocation(size);
}
void *operator new[](std::size_t size) {
    return countedAllocation(size);
}
void operator delete(void *memory) noexcept {
    std::free(memory);
}
void operator delete(void *memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void *memory) noexcept {
    std::free(memory);
}
void operator delete[](void *memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

// A rows x cols matrix of uniform values in [-1, 1); with `dominant`, a diagonal of n is added so
// that the system is well conditioned.
TarnMatrix randomMatrix(int rows, int cols, bool dominant) {
    std::mt19937 generator(12345u);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    TarnMatrix matrix(rows, cols);
    for (int i = 0; i < rows; ++i) {
        for (int j = 0; j < cols; ++j) {
            matrix[i][j] = uniform(generator) + (dominant && i == j ? rows : 0.0);
        }
    }
    return matrix;
}

// Reports the rate of `flopsPerCall` floating-point operations per call as FLOP/s.
void reportFlops(benchmark::State &state, double flopsPerCall) {
    state.counters["FLOPS"] = benchmark::Counter(flopsPerCall, benchmark::Counter::kIsIterationInvariantRate,
                                                 benchmark::Counter::kIs1000);
}

// The dense product of two n x n matrices into a reused target: 2 n^3 operations.
void BM_Times(benchmark::State &state) {
    const int n = static_cast<int>(state.range(0));
    const TarnMatrix a = randomMatrix(n, n, false);
    const TarnMatrix b = randomMatrix(n, n, false);
    TarnMatrix c;
    for (auto _ : state) {
        a.times(c, b);
        benchmark::DoNotOptimize(c[0]);
    }
    reportFlops(state, 2.0 * n * n * n);
}
BENCHMARK(BM_Times)->Arg(64)->Arg(256)->Arg(512)->Unit(benchmark::kMicrosecond);

// The solve of an n x n system with one right-hand column: 2/3 n^3 for the factorization and
// 2 n^2 for the substitution passes, counted as is usual for LU.
void BM_Solve(benchmark::State &state) {
    const int n = static_cast<int>(state.range(0));
    const TarnMatrix a = randomMatrix(n, n, true);
    const TarnMatrix b = randomMatrix(n, 1, false);
    TarnMatrix x;
    const long before = heapAllocations.load();
    for (auto _ : state) {
        a.solve(x, b);
        benchmark::DoNotOptimize(x[0]);
    }
    const double order = n;
    reportFlops(state, 2.0 / 3.0 * order * order * order + 2.0 * order * order);
    state.counters["allocs_per_call"] = benchmark::Counter(
        static_cast<double>(heapAllocations.load() - before) / static_cast<double>(state.iterations()));
}
BENCHMARK(BM_Solve)->Arg(10)->Arg(100)->Arg(500)->Unit(benchmark::kMicrosecond);

} // namespace
