// Benchmarks of TarnINIFile: loading a 10 MB configuration file of 1,000 sections x 100 keys.
#include <tarn/tarn.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kSections = 1000;
constexpr int kKeysPerSection = 100;
// Every "key=value" line is 100 bytes with its line end, so the file is 10 MB and a little.
constexpr std::size_t kLineBytes = 100;

// Writes the benchmark's file: in the sorted order that `write` produces, or with the sections and
// the keys within each section shuffled. Returns the number of bytes written.
std::size_t makeConfigurationFile(const std::string &path, bool shuffled) {
    std::vector<int> sections(kSections);
    std::vector<int> keys(kKeysPerSection);
    for (int i = 0; i < kSections; ++i) {
        sections[i] = i;
    }
    for (int i = 0; i < kKeysPerSection; ++i) {
        keys[i] = i;
    }
    std::mt19937 random(5);
    if (shuffled) {
        std::shuffle(sections.begin(), sections.end(), random);
    }
    std::string text;
    text.reserve(static_cast<std::size_t>(kSections) * (kKeysPerSection * kLineBytes + 16));
    char line[kLineBytes + 1];
    for (int section : sections) {
        std::snprintf(line, sizeof line, "[section%04d]\n", section);
        text += line;
        if (shuffled) {
            std::shuffle(keys.begin(), keys.end(), random);
        }
        for (int key : keys) {
            const int head = std::snprintf(line, sizeof line, "key%03d = ", key);
            text.append(line, static_cast<std::size_t>(head));
            text.append(kLineBytes - 1 - static_cast<std::size_t>(head), static_cast<char>('a' + key % 26));
            text += '\n';
        }
        text += '\n';
    }
    std::ofstream(path, std::ios::binary).write(text.data(), static_cast<std::streamsize>(text.size()));
    return text.size();
}

void loadConfiguration(benchmark::State &state, bool shuffled) {
    const std::string path =
        (std::filesystem::temp_directory_path() / (shuffled ? "tarn_bench_shuffled.ini" : "tarn_bench.ini"))
            .string();
    const std::size_t size = makeConfigurationFile(path, shuffled);
    TarnINIFile *file = newTarnINIFile(path.c_str());
    for (auto _ : state) {
        if (!file->read(nullptr) || file->size() != static_cast<std::size_t>(kSections)) {
            state.SkipWithError("the configuration file did not load");
            break;
        }
        benchmark::DoNotOptimize(file->begin()->second.size());
    }
    file->dispose();
    std::remove(path.c_str());
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(size));
    // Decimal megabytes (10^6 bytes) per second, beside the library's binary M/s of bytes_per_second.
    state.counters["MB/s"] =
        benchmark::Counter(static_cast<double>(size) * static_cast<double>(state.iterations()) / 1e6,
                           benchmark::Counter::kIsRate);
}

// Load of a file whose sections and keys stand in byte order, as `write` leaves them.
void BM_LoadSorted(benchmark::State &state) {
    loadConfiguration(state, false);
}
BENCHMARK(BM_LoadSorted)->Unit(benchmark::kMillisecond)->UseRealTime();

// Load of the same entries in shuffled order: every key costs a search in its section.
void BM_LoadShuffled(benchmark::State &state) {
    loadConfiguration(state, true);
}
BENCHMARK(BM_LoadShuffled)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
