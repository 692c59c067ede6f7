// Archive text side by side: a million doubles in one "data" token written and read back exactly
// through TarnStringArchive (as a vector and as a 1000 x 1000 TarnMatrix), against Boost.Serialization's text
// archive of a std::vector<double>, a snprintf + strtod loop (the naive floor) and memcpy of the same text
// (the limit).
#include <tarn/tarn.h>

#include <boost/archive/text_iarchive.hpp>
#include <boost/archive/text_oarchive.hpp>
#include <boost/serialization/vector.hpp>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kValues = 1000000;
const char *const kWrite = "archive write 1,000,000 doubles";
const char *const kRead = "archive read 1,000,000 doubles";

// One object holding the million doubles, stored as "count" and one "data" token.
class Values : public TarnSerializable {
public:
    std::vector<double> data;

    using TarnObject::isa;
    bool isa(const std::string &name) const override { return name == "Values"; }
    std::string getClassName() const override { return "Values"; }
    bool isModified() override { return modified; }

    void serializeStore(TarnArchive &archive) override {
        TarnSerializable::serializeStore(archive);
        archive.addIntToken("count", static_cast<int>(data.size()));
        archive.addDoublesToken("data", data.data(), static_cast<unsigned>(data.size()));
    }
    void serializeRestore(TarnArchive &archive) override {
        TarnSerializable::serializeRestore(archive);
        data.assign(static_cast<std::size_t>(archive.getTokenInt("count")), 0.0);
        archive.getTokenDoubles("data", data.data(), static_cast<unsigned>(data.size()));
    }
};

// Values of a matrix of moderate magnitudes, both signs, all 53 bits of mantissa in use.
const std::vector<double> &sampleValues() {
    static const std::vector<double> values = [] {
        std::mt19937_64 random(1);
        std::uniform_real_distribution<double> spread(-1e3, 1e3);
        std::vector<double> made(kValues);
        for (double &value : made) {
            value = spread(random);
        }
        return made;
    }();
    return values;
}

bool sameBits(const std::vector<double> &a, const std::vector<double> &b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

// Each side writes into its own kind of text holder and reads from it, as a caller of that library
// would; copies into or out of std::string for the checks stay outside the timed loops.

void tarnStore(Values &object, TarnString &text) {
    TarnStringArchive archive;
    archive.serializeStore(object);
    text.swap(archive.getText());
}

void tarnRestore(const TarnString &text, Values &object) {
    TarnStringArchive archive;
    archive.serializeRestore(object, text);
}

void boostStore(const std::vector<double> &values, std::ostringstream &stream) {
    boost::archive::text_oarchive archive(stream);
    archive << values;
}

void boostRestore(std::istringstream &stream, std::vector<double> &values) {
    boost::archive::text_iarchive archive(stream);
    archive >> values;
}

// The archive's number text without the archive: "%.18e " per value into one buffer.
void printfStore(const std::vector<double> &values, std::string &text) {
    text.resize(values.size() * 32);
    char *out = &text[0];
    for (double value : values) {
        out += std::snprintf(out, 32, "%.18e ", value);
    }
    text.resize(static_cast<std::size_t>(out - text.data()));
}

void strtodRestore(const std::string &text, std::vector<double> &values) {
    values.resize(kValues);
    const char *cursor = text.c_str();
    for (double &value : values) {
        char *end = nullptr;
        value = std::strtod(cursor, &end);
        cursor = end;
    }
}

void reportBytes(benchmark::State &state, std::size_t textBytes) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(textBytes));
}

void skipUnlessExact(benchmark::State &state, const std::vector<double> &back) {
    if (!sameBits(back, sampleValues())) {
        state.SkipWithError("the values do not come back exactly");
    }
}

void tarnWrite(benchmark::State &state) {
    Values object;
    object.data = sampleValues();
    TarnString text;
    for (auto _ : state) {
        tarnStore(object, text);
        benchmark::DoNotOptimize(text.data());
    }
    Values back;
    tarnRestore(text, back);
    skipUnlessExact(state, back.data);
    reportBytes(state, text.size());
}

void tarnRead(benchmark::State &state) {
    Values object;
    object.data = sampleValues();
    TarnString text;
    tarnStore(object, text);
    Values back;
    for (auto _ : state) {
        back = Values();
        tarnRestore(text, back);
        benchmark::DoNotOptimize(back.data.data());
    }
    skipUnlessExact(state, back.data);
    reportBytes(state, text.size());
}

// The same million values as a 1000 x 1000 TarnMatrix: "rows", "cols" and "data".
TarnMatrix sampleMatrix() {
    return TarnMatrix(sampleValues().data(), 1000, 1000);
}

bool sameMatrix(const TarnMatrix &matrix) {
    return matrix.nRows() == 1000 && matrix.nCols() == 1000 &&
           std::memcmp(matrix[0], sampleValues().data(), kValues * sizeof(double)) == 0;
}

void tarnMatrixWrite(benchmark::State &state) {
    TarnMatrix matrix = sampleMatrix();
    TarnString text;
    for (auto _ : state) {
        TarnStringArchive archive;
        archive.serializeStore(matrix);
        text.swap(archive.getText());
        benchmark::DoNotOptimize(text.data());
    }
    TarnMatrix back;
    TarnStringArchive().serializeRestore(back, text);
    if (!sameMatrix(back)) {
        state.SkipWithError("the matrix does not come back exactly");
    }
    reportBytes(state, text.size());
}

void tarnMatrixRead(benchmark::State &state) {
    TarnMatrix matrix = sampleMatrix();
    TarnStringArchive written;
    written.serializeStore(matrix);
    const TarnString text = written.getText();
    TarnMatrix back;
    for (auto _ : state) {
        TarnStringArchive archive;
        archive.serializeRestore(back, text);
        benchmark::DoNotOptimize(back[0]);
    }
    if (!sameMatrix(back)) {
        state.SkipWithError("the matrix does not come back exactly");
    }
    reportBytes(state, text.size());
}

void boostWrite(benchmark::State &state) {
    std::size_t bytes = 0;
    std::string text;
    for (auto _ : state) {
        std::ostringstream stream;
        boostStore(sampleValues(), stream);
        benchmark::DoNotOptimize(stream);
        bytes = static_cast<std::size_t>(stream.tellp());
        state.PauseTiming();
        text = stream.str();
        state.ResumeTiming();
    }
    std::istringstream stream(text);
    std::vector<double> back;
    boostRestore(stream, back);
    skipUnlessExact(state, back);
    reportBytes(state, bytes);
}

void boostRead(benchmark::State &state) {
    std::ostringstream written;
    boostStore(sampleValues(), written);
    const std::string text = written.str();
    std::vector<double> back;
    for (auto _ : state) {
        std::istringstream stream(text);
        back.clear();
        boostRestore(stream, back);
        benchmark::DoNotOptimize(back.data());
    }
    skipUnlessExact(state, back);
    reportBytes(state, text.size());
}

void printfWrite(benchmark::State &state) {
    std::string text;
    for (auto _ : state) {
        printfStore(sampleValues(), text);
        benchmark::DoNotOptimize(text.data());
    }
    std::vector<double> back;
    strtodRestore(text, back);
    skipUnlessExact(state, back);
    reportBytes(state, text.size());
}

void strtodRead(benchmark::State &state) {
    std::string text;
    printfStore(sampleValues(), text);
    std::vector<double> back;
    for (auto _ : state) {
        back.clear();
        strtodRestore(text, back);
        benchmark::DoNotOptimize(back.data());
    }
    skipUnlessExact(state, back);
    reportBytes(state, text.size());
}

// Copies Tarn's archive text into a fresh buffer: what moving the bytes alone costs.
void copyText(benchmark::State &state) {
    Values object;
    object.data = sampleValues();
    TarnString text;
    tarnStore(object, text);
    for (auto _ : state) {
        std::unique_ptr<char[]> copy(new char[text.size()]);
        std::memcpy(copy.get(), text.data(), text.size());
        benchmark::DoNotOptimize(copy.get());
        benchmark::ClobberMemory();
    }
    reportBytes(state, text.size());
}

void registerAll() {
    const std::string write = kWrite;
    const std::string read = kRead;
    benchmark::RegisterBenchmark((write + "/Tarn").c_str(), tarnWrite);
    benchmark::RegisterBenchmark((write + "/Tarn 1000 x 1000 TarnMatrix").c_str(), tarnMatrixWrite);
    benchmark::RegisterBenchmark((write + "/Boost text archive").c_str(), boostWrite);
    benchmark::RegisterBenchmark((write + "/snprintf %.18e").c_str(), printfWrite);
    benchmark::RegisterBenchmark((write + "/memcpy of the text").c_str(), copyText);
    benchmark::RegisterBenchmark((read + "/Tarn").c_str(), tarnRead);
    benchmark::RegisterBenchmark((read + "/Tarn 1000 x 1000 TarnMatrix").c_str(), tarnMatrixRead);
    benchmark::RegisterBenchmark((read + "/Boost text archive").c_str(), boostRead);
    benchmark::RegisterBenchmark((read + "/strtod").c_str(), strtodRead);
    benchmark::RegisterBenchmark((read + "/memcpy of the text").c_str(), copyText);
}

// Registers before benchmark_main's main() runs.
const bool registered = (registerAll(), true);

} // namespace
