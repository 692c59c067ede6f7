// Benchmarks of TarnString::format: short output stays off the heap, long output grows.
#include <tarn/tarn.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <string>

namespace {
std::atomic<long> heapAllocations{0};
} // namespace

// Counts every allocation of the process, so that the benchmark can show none in the short case.
void *operator new(std::size_t size) {
    heapAllocations.fetch_add(1, std::memory_order_relaxed);
    if (void *memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}
void operator delete(void *memory) noexcept {
    std::free(memory);
}
void operator delete(void *memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

// Output of 150 characters into a string whose capacity already holds it: no heap buffer at all.
void BM_FormatShort(benchmark::State &state) {
    TarnString text(std::string(200, ' '));
    const std::string word(140, 'w');
    const long before = heapAllocations.load();
    for (auto _ : state) {
        text.format("%s %08d", word.c_str(), 42);
        benchmark::DoNotOptimize(text.data());
    }
    state.counters["allocs_per_call"] =
        benchmark::Counter(static_cast<double>(heapAllocations.load() - before) / state.iterations());
}
BENCHMARK(BM_FormatShort);

// Output beyond the local buffer goes through the doubling heap buffer.
void BM_FormatLong(benchmark::State &state) {
    TarnString text;
    const std::string word(static_cast<std::size_t>(state.range(0)), 'w');
    for (auto _ : state) {
        text.format("%s", word.c_str());
        benchmark::DoNotOptimize(text.data());
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_FormatLong)->Arg(161)->Arg(4096)->Arg(1 << 20);

} // namespace
