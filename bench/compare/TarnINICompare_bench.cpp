// Configuration load side by side: TarnINIFile::read of a 10 MB file against inih's ini_parse into
// a map of sections of key-to-value maps.
#include <tarn/tarn.h>

#include <ini.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kSections = 1000;
constexpr int kKeysPerSection = 100;
// Every "key=value" line is 100 bytes with its line end, so the file is 10 MB and a little.
constexpr std::size_t kLineBytes = 100;

using IniMap = std::map<std::string, std::map<std::string, std::string>>;

// Writes the file: sections and keys in byte order as `write` leaves them, or shuffled. Returns
// its size in bytes.
std::size_t makeConfigurationFile(const std::string &path, bool shuffled) {
    std::vector<int> sections(kSections);
    std::vector<int> keys(kKeysPerSection);
    for (int i = 0; i < kSections; ++i) {
        sections[static_cast<std::size_t>(i)] = i;
    }
    for (int i = 0; i < kKeysPerSection; ++i) {
        keys[static_cast<std::size_t>(i)] = i;
    }
    std::mt19937 random(5);
    if (shuffled) {
        std::shuffle(sections.begin(), sections.end(), random);
    }
    std::string text;
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

// The file of one case, written once per process and removed at exit.
struct ConfigurationFile {
    std::string path;
    std::size_t size;
    explicit ConfigurationFile(bool shuffled)
        : path((std::filesystem::temp_directory_path() /
                (shuffled ? "tarn_compare_shuffled.ini" : "tarn_compare_sorted.ini"))
                   .string()),
          size(makeConfigurationFile(path, shuffled)) {}
    ~ConfigurationFile() { std::remove(path.c_str()); }
};

const ConfigurationFile &configurationFile(bool shuffled) {
    static const ConfigurationFile sorted(false);
    static const ConfigurationFile mixed(true);
    return shuffled ? mixed : sorted;
}

int storeEntry(void *user, const char *section, const char *name, const char *value) {
    (*static_cast<IniMap *>(user))[section][name] = value;
    return 1;
}

void reportSize(benchmark::State &state, std::size_t size) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(size));
}

void tarnLoad(benchmark::State &state, bool shuffled) {
    const ConfigurationFile &file = configurationFile(shuffled);
    TarnINIFile *ini = newTarnINIFile(file.path.c_str());
    for (auto _ : state) {
        if (!ini->read(nullptr) || ini->size() != static_cast<std::size_t>(kSections)) {
            state.SkipWithError("the configuration file did not load");
            break;
        }
        benchmark::DoNotOptimize(ini->begin()->second.size());
    }
    ini->dispose();
    reportSize(state, file.size);
}

// A fresh map per load, as TarnINIFile::read replaces its model: both sides build and free one.
void inihLoad(benchmark::State &state, bool shuffled) {
    const ConfigurationFile &file = configurationFile(shuffled);
    for (auto _ : state) {
        IniMap map;
        if (ini_parse(file.path.c_str(), storeEntry, &map) != 0 ||
            map.size() != static_cast<std::size_t>(kSections)) {
            state.SkipWithError("inih did not load the configuration file");
            break;
        }
        benchmark::DoNotOptimize(map.begin()->second.size());
    }
    reportSize(state, file.size);
}

void registerAll() {
    for (const bool shuffled : {false, true}) {
        const std::string name =
            shuffled ? "INI load 10 MB, shuffled entries" : "INI load 10 MB, sorted entries";
        benchmark::RegisterBenchmark((name + "/Tarn").c_str(), [=](benchmark::State &s) {
            tarnLoad(s, shuffled);
        })->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((name + "/inih").c_str(), [=](benchmark::State &s) {
            inihLoad(s, shuffled);
        })->Unit(benchmark::kMillisecond);
    }
}

// Registers before benchmark_main's main() runs.
const bool registered = (registerAll(), true);

} // namespace
