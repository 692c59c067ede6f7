// Benchmarks of store and restore: a million doubles in one token, and a graph of small objects.
#include <tarn/tarn.h>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

// A dense block of doubles that stores itself as "rows", "cols" and one "data" token.
class Grid : public TarnSerializable {
public:
    int rows = 0;
    int cols = 0;
    std::vector<double> data;

    using TarnObject::isa;
    bool isa(const std::string &name) const override { return name == "Grid"; }
    std::string getClassName() const override { return "Grid"; }
    bool isModified() override { return modified; }

    void serializeStore(TarnArchive &archive) override {
        TarnSerializable::serializeStore(archive);
        archive.addIntToken("rows", rows);
        archive.addIntToken("cols", cols);
        archive.addDoublesToken("data", data.data(), static_cast<unsigned>(data.size()));
    }

    void serializeRestore(TarnArchive &archive) override {
        TarnSerializable::serializeRestore(archive);
        rows = archive.getTokenInt("rows");
        cols = archive.getTokenInt("cols");
        data.assign(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols), 0.0);
        archive.getTokenDoubles("data", data.data(), static_cast<unsigned>(data.size()));
    }
};

// A small object with a value and a link to another object of the same graph.
class Item : public TarnSerializable {
public:
    int value = 0;
    TarnSerializable *next = nullptr;

    using TarnObject::isa;
    bool isa(const std::string &name) const override { return name == "Item"; }
    std::string getClassName() const override { return "Item"; }
    bool isModified() override { return modified; }

    void serializeStore(TarnArchive &archive) override {
        TarnSerializable::serializeStore(archive);
        archive.addIntToken("value", value);
        TarnToken token;
        token.setPointerValue(next);
        archive.addToken("next", token);
    }
    void serializeRestore(TarnArchive &archive) override {
        TarnSerializable::serializeRestore(archive);
        value = archive.getTokenInt("value");
        next = archive.getTokenPointer("next");
    }
    void reconnectPointers() override {
        TarnSerializable::reconnectPointers();
        next = handleManager.getNewPointer(next);
    }
};

// The root of the graph: contains the items, each of which links to a random other one.
class Pool : public TarnSerializable {
public:
    TarnVector<Item> items;

    using TarnObject::isa;
    bool isa(const std::string &name) const override { return name == "Pool"; }
    std::string getClassName() const override { return "Pool"; }
    bool isModified() override { return modified; }

    void serializeStore(TarnArchive &archive) override {
        TarnSerializable::serializeStore(archive);
        for (unsigned i = 0; i < items.size(); ++i) {
            items[i].serializeStore(archive.addChild());
        }
    }
    void serializeRestore(TarnArchive &archive) override {
        TarnSerializable::serializeRestore(archive);
        TarnVector<TarnArchive> &children = archive.getChildren();
        items.reserve(children.size());
        for (unsigned i = 0; i < children.size(); ++i) {
            items.add().serializeRestore(children[i]);
        }
    }
    void reconnectPointers() override {
        TarnSerializable::reconnectPointers();
        for (unsigned i = 0; i < items.size(); ++i) {
            items[i].reconnectPointers();
        }
    }
    void resetPointers() override {
        TarnSerializable::resetPointers();
        for (unsigned i = 0; i < items.size(); ++i) {
            items[i].resetPointers();
        }
    }
};

constexpr int kSide = 1000;
constexpr double kValues = double(kSide) * kSide;
constexpr int kItems = 100000;

const Grid &sampleGrid() {
    static const Grid grid = [] {
        Grid made;
        made.rows = kSide;
        made.cols = kSide;
        std::mt19937_64 random(1);
        std::uniform_real_distribution<double> spread(-1e3, 1e3);
        made.data.resize(static_cast<std::size_t>(kValues));
        for (double &value : made.data) {
            value = spread(random);
        }
        return made;
    }();
    return grid;
}

const TarnString &sampleGridText() {
    static const TarnString text = [] {
        Grid grid = sampleGrid();
        TarnStringArchive archive;
        archive.serializeStore(grid);
        return archive.getText();
    }();
    return text;
}

const TarnString &samplePoolText() {
    static const TarnString text = [] {
        Pool pool;
        std::mt19937 random(2);
        for (int i = 0; i < kItems; ++i) {
            Item &item = pool.items.add();
            item.value = i;
            item.setParent(pool);
        }
        for (int i = 0; i < kItems; ++i) {
            pool.items[static_cast<unsigned>(i)].next = &pool.items[random() % kItems];
        }
        TarnStringArchive archive;
        archive.serializeStore(pool);
        return archive.getText();
    }();
    return text;
}

const std::string &gridFileName() {
    static const std::string name = [] {
        std::string file = "tarn_bench_grid.txt";
        Grid grid = sampleGrid();
        TarnFileArchive archive;
        archive.serializeStore(file.c_str(), grid);
        return file;
    }();
    return name;
}

void reportPerValue(benchmark::State &state, std::size_t textBytes) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(textBytes));
    state.counters["per_value"] =
        benchmark::Counter(kValues * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_StringStoreGrid(benchmark::State &state) {
    Grid grid = sampleGrid();
    std::size_t bytes = 0;
    for (auto _ : state) {
        TarnStringArchive archive;
        archive.serializeStore(grid);
        bytes = archive.getText().size();
        benchmark::DoNotOptimize(archive.getText().data());
    }
    reportPerValue(state, bytes);
}
BENCHMARK(BM_StringStoreGrid)->Unit(benchmark::kMillisecond);

void BM_StringRestoreGrid(benchmark::State &state) {
    const TarnString &text = sampleGridText();
    for (auto _ : state) {
        Grid grid;
        TarnStringArchive archive;
        archive.serializeRestore(grid, text);
        benchmark::DoNotOptimize(grid.data.data());
    }
    reportPerValue(state, text.size());
}
BENCHMARK(BM_StringRestoreGrid)->Unit(benchmark::kMillisecond);

void BM_FileStoreGrid(benchmark::State &state) {
    Grid grid = sampleGrid();
    const std::string &fileName = gridFileName();
    for (auto _ : state) {
        TarnFileArchive archive;
        archive.serializeStore(fileName.c_str(), grid);
    }
    // The file holds the string form plus line ends and tabs.
    reportPerValue(state, sampleGridText().size());
}
BENCHMARK(BM_FileStoreGrid)->Unit(benchmark::kMillisecond);

void BM_FileRestoreGrid(benchmark::State &state) {
    const std::string &fileName = gridFileName();
    for (auto _ : state) {
        Grid grid;
        TarnFileArchive archive;
        archive.serializeRestore(grid, fileName.c_str());
        benchmark::DoNotOptimize(grid.data.data());
    }
    reportPerValue(state, sampleGridText().size());
}
BENCHMARK(BM_FileRestoreGrid)->Unit(benchmark::kMillisecond);

// Restore of 100,000 small objects with a link each: one registration per object, one sort, and
// one binary search per parent and per link.
void BM_StringRestoreGraph(benchmark::State &state) {
    const TarnString &text = samplePoolText();
    for (auto _ : state) {
        Pool pool;
        TarnStringArchive archive;
        archive.serializeRestore(pool, text);
        benchmark::DoNotOptimize(pool.items.data());
    }
    state.counters["objects"] = benchmark::Counter((kItems + 1.0) * static_cast<double>(state.iterations()),
                                                   benchmark::Counter::kIsRate);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(text.size()));
}
BENCHMARK(BM_StringRestoreGraph)->Unit(benchmark::kMillisecond);

// The "data" token alone, formatted and read by the token, against a printf and strtod loop
// writing the same text: the gain of std::to_chars and std::from_chars on the hot path.
void BM_TokenFormatDoubles(benchmark::State &state) {
    const Grid &grid = sampleGrid();
    TarnToken token;
    for (auto _ : state) {
        token.setValue(grid.data.data(), static_cast<unsigned>(grid.data.size()));
        benchmark::DoNotOptimize(token.getValue());
    }
    reportPerValue(state, std::strlen(token.getValue()));
}
BENCHMARK(BM_TokenFormatDoubles)->Unit(benchmark::kMillisecond);

void BM_PrintfFormatDoubles(benchmark::State &state) {
    const Grid &grid = sampleGrid();
    std::string text;
    for (auto _ : state) {
        text.resize(grid.data.size() * 33);
        char *out = &text[0];
        for (double value : grid.data) {
            out += std::snprintf(out, 33, "%.18e ", value);
        }
        text.resize(static_cast<std::size_t>(out - text.data()));
        benchmark::DoNotOptimize(text.data());
    }
    reportPerValue(state, text.size());
}
BENCHMARK(BM_PrintfFormatDoubles)->Unit(benchmark::kMillisecond);

void BM_TokenReadDoubles(benchmark::State &state) {
    const Grid &grid = sampleGrid();
    TarnToken token;
    token.setValue(grid.data.data(), static_cast<unsigned>(grid.data.size()));
    std::vector<double> values(grid.data.size());
    for (auto _ : state) {
        token.getDoubles(values.data(), static_cast<unsigned>(values.size()));
        benchmark::DoNotOptimize(values.data());
    }
    reportPerValue(state, std::strlen(token.getValue()));
}
BENCHMARK(BM_TokenReadDoubles)->Unit(benchmark::kMillisecond);

void BM_StrtodReadDoubles(benchmark::State &state) {
    const Grid &grid = sampleGrid();
    TarnToken token;
    token.setValue(grid.data.data(), static_cast<unsigned>(grid.data.size()));
    std::vector<double> values(grid.data.size());
    for (auto _ : state) {
        const char *cursor = token.getValue();
        for (double &value : values) {
            char *end = nullptr;
            value = std::strtod(cursor, &end);
            cursor = end;
        }
        benchmark::DoNotOptimize(values.data());
    }
    reportPerValue(state, std::strlen(token.getValue()));
}
BENCHMARK(BM_StrtodReadDoubles)->Unit(benchmark::kMillisecond);

} // namespace
