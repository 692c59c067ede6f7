// Archive text side by side: a million doubles in one "data" token written and read back exactly
// through TarnStringArchive, against Boost.Serialization's text archive of a std::vector<double>,
// a snprintf + strtod loop (the naive floor) and memcpy of the same text (the limit).
#include <tarn/tarn.h>

#include <boost/archive/text_iarchive.hpp>
#include <boost/archive/text_oarchive.hpp>
#include <boost/serialization/vector.hpp>

#include <benchmark/benchmark.h>

#include <cmath>
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

// Values spread over many magnitudes and signs, so that every exponent width occurs.
const std::vector<double> &sampleValues() {
    static const std::vector<double> values = [] {
        std::mt19937_64 random(1);
        std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
        std::uniform_int_distribution<int> exponent(-300, 300);
        std::vector<double> made(kValues);
        for (double &value : made) {
            value = std::ldexp(mantissa(random), exponent(random));
        }
        return made;
    }();
    return values;
}

bool sameBits(const std::vector<double> &a, const std::vector<double> &b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

std::string tarnWrite(const std::vector<double> &values) {
    Values object;
    object.data = values;
    TarnStringArchive archive;
    archive.serializeStore(object);
    return std::string(archive.getText());
}

std::vector<double> tarnRead(const std::string &text) {
    Values object;
    TarnStringArchive archive;
    archive.serializeRestore(object, TarnString(text.c_str()));
    return object.data;
}

std::string boostWrite(const std::vector<double> &values) {
    std::ostringstream stream;
    {
        boost::archive::text_oarchive archive(stream);
        archive << values;
    }
    return stream.str();
}

std::vector<double> boostRead(const std::string &text) {
    std::istringstream stream(text);
    boost::archive::text_iarchive archive(stream);
    std::vector<double> values;
    archive >> values;
    return values;
}

// The archive's number text without the archive: "%.18e " per value.
std::string printfWrite(const std::vector<double> &values) {
    std::string text(values.size() * 32, '\0');
    char *out = &text[0];
    for (double value : values) {
        out += std::snprintf(out, 32, "%.18e ", value);
    }
    text.resize(static_cast<std::size_t>(out - text.data()));
    return text;
}

std::vector<double> strtodRead(const std::string &text) {
    std::vector<double> values(kValues);
    const char *cursor = text.c_str();
    for (double &value : values) {
        char *end = nullptr;
        value = std::strtod(cursor, &end);
        cursor = end;
    }
    return values;
}

// The sizes of the text each side writes, for the MB/s figures.
void reportValues(benchmark::State &state, std::size_t textBytes) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(textBytes));
}

// Writes the million values with `write`, after checking once that `read` gives them back exactly.
template <class Write, class Read>
void runWrite(benchmark::State &state, Write write, Read read) {
    const std::vector<double> &values = sampleValues();
    if (!sameBits(read(write(values)), values)) {
        state.SkipWithError("the values do not come back exactly");
        return;
    }
    std::size_t bytes = 0;
    for (auto _ : state) {
        const std::string text = write(values);
        bytes = text.size();
        benchmark::DoNotOptimize(text.data());
    }
    reportValues(state, bytes);
}

// Reads back the text that `write` makes, checking once that it is exact.
template <class Write, class Read>
void runRead(benchmark::State &state, Write write, Read read) {
    const std::vector<double> &values = sampleValues();
    const std::string text = write(values);
    if (!sameBits(read(text), values)) {
        state.SkipWithError("the values do not come back exactly");
        return;
    }
    for (auto _ : state) {
        const std::vector<double> back = read(text);
        benchmark::DoNotOptimize(back.data());
    }
    reportValues(state, text.size());
}

// Copies Tarn's archive text into a fresh buffer: what moving the bytes alone costs.
void runCopy(benchmark::State &state) {
    const std::string text = tarnWrite(sampleValues());
    for (auto _ : state) {
        std::unique_ptr<char[]> copy(new char[text.size()]);
        std::memcpy(copy.get(), text.data(), text.size());
        benchmark::DoNotOptimize(copy.get());
        benchmark::ClobberMemory();
    }
    reportValues(state, text.size());
}

void registerAll() {
    const std::string write = kWrite;
    const std::string read = kRead;
    benchmark::RegisterBenchmark((write + "/Tarn").c_str(),
                                 [](benchmark::State &s) { runWrite(s, tarnWrite, tarnRead); });
    benchmark::RegisterBenchmark((write + "/Boost text archive").c_str(),
                                 [](benchmark::State &s) { runWrite(s, boostWrite, boostRead); });
    benchmark::RegisterBenchmark((write + "/snprintf %.18e").c_str(),
                                 [](benchmark::State &s) { runWrite(s, printfWrite, strtodRead); });
    benchmark::RegisterBenchmark((write + "/memcpy of the text").c_str(), runCopy);
    benchmark::RegisterBenchmark((read + "/Tarn").c_str(),
                                 [](benchmark::State &s) { runRead(s, tarnWrite, tarnRead); });
    benchmark::RegisterBenchmark((read + "/Boost text archive").c_str(),
                                 [](benchmark::State &s) { runRead(s, boostWrite, boostRead); });
    benchmark::RegisterBenchmark((read + "/strtod").c_str(),
                                 [](benchmark::State &s) { runRead(s, printfWrite, strtodRead); });
    benchmark::RegisterBenchmark((read + "/memcpy of the text").c_str(), runCopy);
}

// Registers before benchmark_main's main() runs.
const bool registered = (registerAll(), true);

} // namespace
