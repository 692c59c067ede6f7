// The same bits on every build: a fixed battery of computations whose results are reduced to
// digests and compared with digests checked in here. The inputs are exact binary fractions made
// from integers, so every build starts from the same bits; the digests are FNV-1a (64 bits) over the
// results' bytes in little-endian order, so every build reduces them alike. Left out: `dump` and
// `format`, which print through the platform's printf.
#include "linalg/LinalgTestSupport.h"

#include <tarn/tarn.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

// ---- Digests -----------------------------------------------------------------------------------

class Digest {
public:
    // The low `width` bits of a value, byte by byte from the lowest.
    void bits(std::uint64_t value, int width) {
        for (int shift = 0; shift < width; shift += 8) {
            state_ = (state_ ^ static_cast<std::uint8_t>(value >> shift)) * 0x100000001B3ull;
        }
    }
    void word(std::uint32_t value) { bits(value, 32); }
    void number(double value) {
        std::uint64_t pattern = 0;
        std::memcpy(&pattern, &value, sizeof pattern);
        bits(pattern, 64);
    }
    template <typename Bytes>
    void text(const Bytes &bytes) {
        word(static_cast<std::uint32_t>(bytes.size()));
        for (auto value : bytes) {
            bits(static_cast<std::uint8_t>(value), 8);
        }
    }
    void matrix(const TarnMatrix &m) {
        word(static_cast<std::uint32_t>(m.nRows()));
        word(static_cast<std::uint32_t>(m.nCols()));
        for (int i = 0; i < m.nRows(); ++i) {
            for (int j = 0; j < m.nCols(); ++j) {
                number(m[i][j]);
            }
        }
    }
    // The stored triangle of a packed matrix, row by row.
    void packed(const TarnSymmetricMatrix &m, bool upper) {
        word(static_cast<std::uint32_t>(m.nRows()));
        for (int i = 0; i < m.nRows(); ++i) {
            for (int j = upper ? i : 0; j < (upper ? m.nCols() : i + 1); ++j) {
                number(m.getElement(i, j));
            }
        }
    }
    std::uint64_t value() const { return state_; }

private:
    std::uint64_t state_ = 0xCBF29CE484222325ull;
};

// ---- Inputs ------------------------------------------------------------------------------------

// A fixed sequence of doubles in [-1, 1), each a 53-bit integer times 2^-52: exact on every build.
class Sequence {
public:
    explicit Sequence(std::uint64_t seed) : state_(seed) {}

    std::uint64_t next() {
        std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    double value() {
        const auto integer = static_cast<std::int64_t>(next() >> 11) - (std::int64_t(1) << 52);
        return std::ldexp(static_cast<double>(integer), -52);
    }
    // Each element is value() times scale, rounded once.
    TarnMatrix matrix(int rows, int cols, double scale = 1.0) {
        TarnMatrix m(rows, cols);
        for (int i = 0; i < rows; ++i) {
            for (int j = 0; j < cols; ++j) {
                m[i][j] = value() * scale;
            }
        }
        return m;
    }
    std::vector<unsigned char> bytes(int count) {
        std::vector<unsigned char> result(static_cast<std::size_t>(count));
        for (auto &value : result) {
            value = static_cast<unsigned char>(next() >> 56);
        }
        return result;
    }

private:
    std::uint64_t state_;
};

// Orders on both sides of every block edge of the kernels and the factorization (row blocks of 4
// and 8, panels of 8 and 16, chunks of 16, the small-system limit of 16, tiles of 16), and past
// several blocks at once.
const int kSizes[] = {1,  2,  3,  4,  5,  6,  7,  8,  9,   10,  11,  12,  13,  14, 15,
                      16, 17, 31, 32, 33, 63, 64, 65, 127, 128, 129, 200, 257, 300};

// ---- The battery -------------------------------------------------------------------------------

// The digest of what `battery` computes from the inputs of `seed`.
template <typename Battery>
std::uint64_t digestOf(std::uint64_t seed, Battery battery) {
    Sequence inputs(seed);
    Digest digest;
    battery(inputs, digest);
    return digest.value();
}

void timesBattery(Sequence &inputs, Digest &digest) {
    for (int n : kSizes) {
        for (int depth : {n, 7}) {
            const TarnMatrix a = inputs.matrix(n, depth);
            const TarnMatrix b = inputs.matrix(depth, n);
            TarnMatrix c;
            EXPECT_TRUE(a.times(c, b));
            digest.matrix(c);
        }
    }
}

// x = a^-1 b for right sides of 1 and 3 columns, or x = a^-1.
void solveBattery(Sequence &inputs, Digest &digest, bool invert) {
    for (int n : kSizes) {
        const TarnMatrix a = inputs.matrix(n, n);
        for (int columns : {1, 3}) {
            const TarnMatrix b = inputs.matrix(n, columns);
            TarnMatrix x;
            EXPECT_TRUE(invert ? a.invert(x) : a.solve(x, b)) << "order " << n;
            digest.matrix(x);
            if (invert) {
                break;
            }
        }
    }
}

void AtABattery(Sequence &inputs, Digest &digest) {
    for (int n : kSizes) {
        const TarnMatrix a = inputs.matrix(n + 2, n);
        for (int storage : {0, 1}) {
            TarnSymmetricMatrix normal(storage);
            EXPECT_TRUE(a.AtA(normal));
            digest.packed(normal, storage == 0);
        }
    }
}

void triangularBattery(Sequence &inputs, Digest &digest) {
    for (int n : kSizes) {
        TarnUpperTriangularMatrix upper;
        upper.resize(n, n);
        for (int i = 0; i < n; ++i) {
            for (int j = i; j < n; ++j) {
                upper.setElement(i, j, inputs.value());
            }
        }
        const TarnMatrix left = inputs.matrix(n + 1, n);
        const TarnMatrix right = inputs.matrix(n, n + 3);
        TarnMatrix product;
        EXPECT_TRUE(left.times(product, upper));
        digest.matrix(product);
        EXPECT_TRUE(upper.times(product, right));
        digest.matrix(product);
    }
}

// Unit vectors of rows and columns, with lengths that underflow and overflow on the way.
void makeUnitBattery(Sequence &inputs, Digest &digest) {
    for (int length : {1, 2, 3, 7, 17, 100, 1000}) {
        for (double scale : {1.0, 1e-160, 1e160, 1e-310}) {
            for (bool row : {true, false}) {
                TarnMatrix v = inputs.matrix(row ? 1 : length, row ? length : 1, scale);
                EXPECT_TRUE(v.makeUnit());
                digest.matrix(v);
            }
        }
    }
}

void crossProductBattery(Sequence &inputs, Digest &digest) {
    for (int pair = 0; pair < 50; ++pair) {
        digest.matrix(TarnMatrix::crossProduct(inputs.matrix(3, 1), inputs.matrix(3, 1)));
    }
    digest.matrix(TarnMatrix::crossProduct(inputs.matrix(1, 3), inputs.matrix(3, 1)));
}

void rc4Battery(Sequence &inputs, Digest &digest) {
    for (int keyLength : {1, 5, 16, 256, 300}) {
        const std::vector<unsigned char> key = inputs.bytes(keyLength);
        for (int dataLength : {1, 255, 1000}) {
            const std::vector<unsigned char> data = inputs.bytes(dataLength);
            std::vector<unsigned char> output(data.size());
            TarnCrypt::rc4Encrypt(key.data(), keyLength, data.data(), dataLength, output.data());
            digest.text(output);
        }
    }
}

void xteaBattery(Sequence &inputs, Digest &digest) {
    const std::vector<unsigned char> data = inputs.bytes(64);
    for (unsigned int rounds : {0u, 1u, 7u, 32u, 64u}) {
        const std::uint32_t key[4] = {static_cast<std::uint32_t>(inputs.next()),
                                      static_cast<std::uint32_t>(inputs.next()),
                                      static_cast<std::uint32_t>(inputs.next()), 0xFFFFFFFFu};
        for (bool encipher : {true, false}) {
            std::vector<unsigned char> output(data.size());
            EXPECT_TRUE(TarnCrypt::xteaBlock(rounds, data.data(), static_cast<unsigned int>(data.size()),
                                             output.data(), key, encipher));
            digest.text(output);
        }
    }
}

// Adds a token of the value(s) given to an archive.
template <typename... Value>
void addToken(TarnArchive &archive, const char *name, Value... value) {
    TarnToken token;
    token.setValue(value...);
    archive.addToken(name, token);
}

// A leaf of the stored graph: a number and a pointer to another leaf.
class GoldenLeaf : public TarnSerializable {
public:
    using TarnObject::isa;
    bool isa(const std::string &name) const override { return name == "GoldenLeaf"; }
    std::string getClassName() const override { return "GoldenLeaf"; }
    bool isModified() override { return false; }
    void serializeStore(TarnArchive &archive) override {
        TarnSerializable::serializeStore(archive);
        addToken(archive, "value", value);
        TarnToken token;
        token.setPointerValue(partner);
        archive.addToken("partner", token);
    }

    double value = 0.0;
    TarnSerializable *partner = nullptr;
};

// The root of the stored graph: a token of every kind, a dense and a packed matrix, and leaves.
class GoldenGraph : public TarnSerializable {
public:
    using TarnObject::isa;
    bool isa(const std::string &name) const override { return name == "GoldenGraph"; }
    std::string getClassName() const override { return "GoldenGraph"; }
    bool isModified() override { return false; }
    void serializeStore(TarnArchive &archive) override {
        TarnSerializable::serializeStore(archive);
        addToken(archive, "bool", true);
        addToken(archive, "float", 0.1f);
        addToken(archive, "int", INT_MIN);
        addToken(archive, "unsignedLong", 4294967295ul);
        addToken(archive, "unsignedShort", static_cast<unsigned short>(65535));
        addToken(archive, "unsignedChar", static_cast<unsigned char>(200));
        addToken(archive, "text", "a text, with spaces");
        addToken(archive, "numbers", numbers.data(), static_cast<unsigned int>(numbers.size()));
        matrix.serializeStore(archive.addChild());
        packed.serializeStore(archive.addChild());
        for (unsigned i = 0; i < leaves.size(); ++i) {
            leaves[i].serializeStore(archive.addChild());
        }
    }

    std::vector<double> numbers;
    TarnMatrix matrix;
    TarnSymmetricMatrix packed{0};
    TarnVector<GoldenLeaf> leaves;
};

// The archive text with the value of every pointer token left empty: pointer texts are addresses,
// whose width and value differ from build to build and run to run.
std::string withoutPointerTexts(std::string text) {
    for (const std::string name : {"this=", "parent=", "partner="}) {
        for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + 1)) {
            if (at == 0 || (text[at - 1] != '{' && text[at - 1] != ';')) {
                continue;
            }
            const std::size_t valueStart = at + name.size();
            text.erase(valueStart, text.find(';', valueStart) - valueStart);
        }
    }
    return text;
}

std::string archiveText() {
    Sequence inputs(10);
    GoldenGraph graph;
    using limits = std::numeric_limits<double>;
    const double tiny = limits::denorm_min(), max = limits::max(), min = limits::min(),
                 inf = limits::infinity();
    graph.numbers = {0.0,  -0.0, 1.0 / 3.0, -2.5e-310,          tiny, max, -min, 123456789.125, 1e21,
                     1e-7, inf,  -inf,      limits::quiet_NaN()};
    for (int i = 0; i < 20; ++i) {
        graph.numbers.push_back(std::ldexp(inputs.value(), static_cast<int>(inputs.next() % 2000) - 1000));
    }
    graph.matrix = inputs.matrix(3, 4);
    graph.matrix.setParent(graph);
    graph.packed.resize(5, 5);
    for (int i = 0; i < 5; ++i) {
        for (int j = i; j < 5; ++j) {
            graph.packed.setElement(i, j, inputs.value() * 1e10);
        }
    }
    for (int i = 0; i < 4; ++i) {
        GoldenLeaf &leaf = graph.leaves.add();
        leaf.setParent(graph);
        leaf.value = inputs.value();
        leaf.partner = i == 0 ? nullptr : &graph.leaves[static_cast<unsigned>(i - 1)];
    }
    TarnStringArchive archive;
    EXPECT_TRUE(archive.serializeStore(graph));
    return withoutPointerTexts(archive.getText());
}

#if defined(_WIN32)
const bool kWindows = true;
#else
const bool kWindows = false;
#endif

// The saved bytes of a fixed configuration, with the platform's line end read as "\n". Values come
// only through writes that print no floating-point text by printf ("%d" and "%x" print the same
// everywhere); doubles go in through the token's stream form.
std::string iniText() {
    const std::string path = ::testing::TempDir() + "tarn_golden_digest.ini";
    TarnINIFile *ini = newTarnINIFile(path.c_str());
    ini->writePrivateProfileString("Section B", "key", "value with = and ; inside");
    ini->writePrivateProfileString("Section B", "Key", "");
    ini->writePrivateProfileInt("A", "int", INT_MIN);
    ini->writePrivateProfileHex("A", "hex", -2);
    ini->writePrivateProfileBool("A", "bool", true);
    ini->writePrivateProfileBOOL("A", "BOOL", 0);
    const double numbers[] = {1.0 / 3.0, 1e21, 1e-7, -123456.7, 0.0, 100000.0, 1e6};
    for (std::size_t i = 0; i < std::size(numbers); ++i) {
        (*ini)["numbers"][TarnString(std::to_string(i))].setValue(numbers[i]);
    }
    (*ini)["empty"];
    EXPECT_TRUE(ini->write(nullptr));
    ini->dispose();
    std::ifstream stream(path, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(stream), {}), lines;
    stream.close();
    std::remove(path.c_str());
    for (char byte : text) {
        // Windows ends each line with CR LF; this model holds no other CR or LF.
        if (byte == '\n' && kWindows) {
            const bool carriageReturn = !lines.empty() && lines.back() == '\r';
            EXPECT_TRUE(carriageReturn) << "a line feed without a carriage return";
            lines.resize(lines.size() - carriageReturn);
        }
        lines += byte;
    }
    return lines;
}

std::uint64_t textDigest(const std::string &text) {
    Digest digest;
    digest.text(text);
    return digest.value();
}

// ---- The golden digests --------------------------------------------------------------------------

const std::map<std::string, std::uint64_t> kGolden = {
    {"times", 0xCC63B9A032A6CE17ull},        {"solve", 0xCA5DE9B8B8DDD6E5ull},
    {"invert", 0xAFC87A90BCFC0D3Bull},       {"AtA", 0x85ED5FEDD4905575ull},
    {"triangular", 0xB5802DE6B925EA38ull},   {"makeUnit", 0x45B3C322CF163A86ull},
    {"crossProduct", 0xE63BD46844A90A3Bull}, {"rc4Encrypt", 0x47D97054A7F01D88ull},
    {"xteaBlock", 0x817FC3BB835CAA18ull},    {"archive", 0xB13B574A170C1BB3ull},
    {"ini", 0x9F89F6B91C3B78CAull},
};

std::string hex(std::uint64_t value) {
    std::ostringstream text;
    text << "0x" << std::hex << std::uppercase << std::setw(16) << std::setfill('0') << value << "ull";
    return text.str();
}

void expectGolden(const std::string &name, std::uint64_t digest) {
    EXPECT_EQ(hex(digest), hex(kGolden.at(name)))
        << "the digest of " << name << " changed: {\"" << name << "\", " << hex(digest) << "},";
}

// The library's own operations on each kernel path in turn (a path the processor lacks runs the
// next narrower one), then the results that no kernel computes.
TEST(TarnGoldenDigestTest, TheLibraryGivesTheGoldenBitsOnEveryKernelPath) {
    using tarn::KernelPath;
    for (KernelPath path : {KernelPath::portable, KernelPath::sse2, KernelPath::avx2, KernelPath::avx512}) {
        SCOPED_TRACE(testing::Message() << "kernel path " << static_cast<int>(path));
        const tarntest::KernelPathLimit limit(path);
        expectGolden("times", digestOf(1, timesBattery));
        expectGolden("solve", digestOf(2, [](Sequence &in, Digest &out) { solveBattery(in, out, false); }));
        expectGolden("invert", digestOf(3, [](Sequence &in, Digest &out) { solveBattery(in, out, true); }));
        expectGolden("AtA", digestOf(4, AtABattery));
        expectGolden("triangular", digestOf(5, triangularBattery));
        expectGolden("xteaBlock", digestOf(9, xteaBattery));
    }
    expectGolden("makeUnit", digestOf(6, makeUnitBattery));
    expectGolden("crossProduct", digestOf(7, crossProductBattery));
    expectGolden("rc4Encrypt", digestOf(8, rc4Battery));
    expectGolden("archive", textDigest(archiveText()));
    expectGolden("ini", textDigest(iniText()));
}

} // namespace
