// Benchmarks of TarnCrypt on 64 MiB: rc4Encrypt and xteaBlock (32 cycles, both directions).
#include <tarn/tarn.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

namespace {

constexpr std::size_t kBytes = std::size_t(64) << 20;

std::vector<unsigned char> sampleData() {
    std::vector<unsigned char> data(kBytes);
    std::uint32_t x = 2463534242u; // xorshift: cheap, not constant, not compressible
    for (unsigned char &b : data) {
        x ^= x << 13;
        x ^= x >> 17;
        x ^= x << 5;
        b = static_cast<unsigned char>(x);
    }
    return data;
}

// Reports MB/s (10^6 bytes per second of processor time: the machines that run this are shared)
// as the rate counter "MB".
void reportRate(benchmark::State &state) {
    const double bytes = static_cast<double>(state.iterations()) * static_cast<double>(kBytes);
    state.counters["MB"] = benchmark::Counter(bytes / 1e6, benchmark::Counter::kIsRate);
}

void BM_Rc4Encrypt(benchmark::State &state) {
    const std::vector<unsigned char> data = sampleData();
    std::vector<unsigned char> out(kBytes);
    const unsigned char key[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    for (auto _ : state) {
        TarnCrypt::rc4Encrypt(key, 16, data.data(), static_cast<int>(kBytes), out.data());
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    reportRate(state);
}
BENCHMARK(BM_Rc4Encrypt)->Unit(benchmark::kMillisecond);

// Argument: 1 enciphers, 0 deciphers.
void BM_XteaBlock32(benchmark::State &state) {
    const std::vector<unsigned char> data = sampleData();
    std::vector<unsigned char> out(kBytes);
    const std::uint32_t key[4] = {0x01234567, 0x89abcdef, 0xfedcba98, 0x76543210};
    const bool encipher = state.range(0) != 0;
    for (auto _ : state) {
        const bool ok = TarnCrypt::xteaBlock(32, data.data(), static_cast<unsigned int>(kBytes), out.data(),
                                             key, encipher);
        benchmark::DoNotOptimize(ok);
        benchmark::ClobberMemory();
    }
    reportRate(state);
}
BENCHMARK(BM_XteaBlock32)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond);

} // namespace
