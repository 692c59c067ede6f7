// Ciphers side by side on 64 MiB: rc4Encrypt against OpenSSL's RC4 (checked first on many keys and
// lengths), xteaBlock (32 cycles) against the one-block routine published with the cipher.
#include <tarn/tarn.h>

// RC4 is only in OpenSSL's deprecated low-level interface; this file alone uses it, on purpose.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/rc4.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kBytes = std::size_t(64) << 20;
constexpr unsigned int kXteaCycles = 32;

const unsigned char kRc4Key[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
const std::uint32_t kXteaKey[4] = {0x01234567, 0x89abcdef, 0xfedcba98, 0x76543210};

const std::vector<unsigned char> &sampleData() {
    static const std::vector<unsigned char> data = [] {
        std::vector<unsigned char> bytes(kBytes);
        std::uint32_t x = 2463534242u; // xorshift: cheap, not constant, not compressible
        for (unsigned char &b : bytes) {
            x ^= x << 13;
            x ^= x >> 17;
            x ^= x << 5;
            b = static_cast<unsigned char>(x);
        }
        return bytes;
    }();
    return data;
}

// The XTEA routines as D. J. Wheeler and R. M. Needham published them with the cipher ("Tea
// extensions", Computer Laboratory, University of Cambridge, 1997), in the widely reproduced form
// with `uint32_t` words (their `unsigned long` is 64 bits here). One block per call: noinline keeps
// it the routine a caller would call block after block.
__attribute__((noinline)) void referenceEncipher(unsigned int num_rounds, uint32_t v[2],
                                                 uint32_t const key[4]) {
    unsigned int i;
    uint32_t v0 = v[0], v1 = v[1], sum = 0, delta = 0x9E3779B9;
    for (i = 0; i < num_rounds; i++) {
        v0 += (((v1 << 4) ^ (v1 >> 5)) + v1) ^ (sum + key[sum & 3]);
        sum += delta;
        v1 += (((v0 << 4) ^ (v0 >> 5)) + v0) ^ (sum + key[(sum >> 11) & 3]);
    }
    v[0] = v0;
    v[1] = v1;
}

__attribute__((noinline)) void referenceDecipher(unsigned int num_rounds, uint32_t v[2],
                                                 uint32_t const key[4]) {
    unsigned int i;
    uint32_t v0 = v[0], v1 = v[1], delta = 0x9E3779B9, sum = delta * num_rounds;
    for (i = 0; i < num_rounds; i++) {
        v1 -= (((v0 << 4) ^ (v0 >> 5)) + v0) ^ (sum + key[(sum >> 11) & 3]);
        sum -= delta;
        v0 -= (((v1 << 4) ^ (v1 >> 5)) + v1) ^ (sum + key[sum & 3]);
    }
    v[0] = v0;
    v[1] = v1;
}

// The reference routine over a buffer, block after block, words in the machine's byte order.
void referenceXteaBuffer(const unsigned char *input, unsigned char *output, bool encipher) {
    for (std::size_t offset = 0; offset < kBytes; offset += 8) {
        uint32_t v[2];
        std::memcpy(v, input + offset, sizeof v);
        if (encipher) {
            referenceEncipher(kXteaCycles, v, kXteaKey);
        } else {
            referenceDecipher(kXteaCycles, v, kXteaKey);
        }
        std::memcpy(output + offset, v, sizeof v);
    }
}

void tarnXteaBuffer(const unsigned char *input, unsigned char *output, bool encipher) {
    TarnCrypt::xteaBlock(kXteaCycles, input, static_cast<unsigned int>(kBytes), output, kXteaKey, encipher);
}

void tarnRc4(const unsigned char *input, unsigned char *output) {
    TarnCrypt::rc4Encrypt(kRc4Key, sizeof kRc4Key, input, static_cast<int>(kBytes), output);
}

// The key stream alone, into a buffer allocated once: rc4 without rc4Encrypt's work buffer and
// combining pass.
void tarnRc4Stream(const unsigned char *, unsigned char *output) {
    TarnCrypt::rc4(kRc4Key, sizeof kRc4Key, static_cast<int>(kBytes), output);
}

// OpenSSL's RC4 over zero bytes gives the bare key stream.
void opensslRc4Stream(const unsigned char *, unsigned char *output) {
    static const std::vector<unsigned char> zeros(kBytes, 0);
    RC4_KEY key;
    RC4_set_key(&key, sizeof kRc4Key, kRc4Key);
    RC4(&key, kBytes, zeros.data(), output);
}

// Key set-up included, as rc4Encrypt does it on every call.
void opensslRc4(const unsigned char *input, unsigned char *output) {
    RC4_KEY key;
    RC4_set_key(&key, sizeof kRc4Key, kRc4Key);
    RC4(&key, kBytes, input, output);
}

// Checks rc4Encrypt (into a separate buffer and in place) and rc4 against OpenSSL for keys of
// many lengths and data lengths on both sides of every word and group edge, plus long runs.
// Returns an empty string when all agree, else the first disagreement.
std::string rc4DisagreementWithOpenSsl() {
    std::uint32_t x = 88172645u;
    const auto nextByte = [&x] {
        x ^= x << 13;
        x ^= x >> 17;
        x ^= x << 5;
        return static_cast<unsigned char>(x);
    };
    std::vector<int> lengths;
    for (int length = 1; length <= 80; ++length) {
        lengths.push_back(length);
    }
    lengths.insert(lengths.end(), {255, 256, 257, 4095, 4096, 4097, 100003, 1 << 20});
    for (int keyLength : {1, 2, 3, 5, 7, 8, 13, 16, 32, 64, 128, 255, 256, 257, 1000}) {
        std::vector<unsigned char> key(static_cast<std::size_t>(keyLength));
        for (unsigned char &b : key) {
            b = nextByte();
        }
        // OpenSSL takes a key as it is; a key longer than 256 bytes only counts to its 256th.
        RC4_KEY opensslKey;
        for (int length : lengths) {
            std::vector<unsigned char> data(static_cast<std::size_t>(length));
            for (unsigned char &b : data) {
                b = nextByte();
            }
            std::vector<unsigned char> expected(data.size());
            RC4_set_key(&opensslKey, std::min(keyLength, 256), key.data());
            RC4(&opensslKey, data.size(), data.data(), expected.data());
            std::vector<unsigned char> out(data.size());
            TarnCrypt::rc4Encrypt(key.data(), keyLength, data.data(), length, out.data());
            std::vector<unsigned char> inPlace = data;
            TarnCrypt::rc4Encrypt(key.data(), keyLength, inPlace.data(), length, inPlace.data());
            const std::vector<unsigned char> zeros(data.size(), 0);
            std::vector<unsigned char> streamExpected(data.size());
            RC4_set_key(&opensslKey, std::min(keyLength, 256), key.data());
            RC4(&opensslKey, zeros.size(), zeros.data(), streamExpected.data());
            std::vector<unsigned char> stream(data.size());
            TarnCrypt::rc4(key.data(), keyLength, length, stream.data());
            if (out != expected || inPlace != expected || stream != streamExpected) {
                return "rc4 differs from OpenSSL for key length " + std::to_string(keyLength) + ", length " +
                       std::to_string(length);
            }
        }
    }
    return std::string();
}

// The check above, run once for all the RC4 benchmarks.
const std::string &rc4Disagreement() {
    static const std::string found = rc4DisagreementWithOpenSsl();
    return found;
}

// Runs `run(input, output)` on the 64 MiB sample; fails the benchmark when its output differs from
// `expected`'s, so that both sides are seen to do the same work. Reports the rate as "MB" (10^6
// bytes per second).
template <class Run, class Expected>
void runCipher(benchmark::State &state, Run run, Expected expected) {
    const std::vector<unsigned char> &data = sampleData();
    std::vector<unsigned char> out(kBytes);
    std::vector<unsigned char> check(kBytes);
    run(data.data(), out.data());
    expected(data.data(), check.data());
    if (out != check) {
        state.SkipWithError("output differs from the other side's");
        return;
    }
    for (auto _ : state) {
        run(data.data(), out.data());
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(kBytes));
}

void registerAll() {
    const auto tarnEncipher = [](const unsigned char *in, unsigned char *out) {
        tarnXteaBuffer(in, out, true);
    };
    const auto tarnDecipher = [](const unsigned char *in, unsigned char *out) {
        tarnXteaBuffer(in, out, false);
    };
    const auto refEncipher = [](const unsigned char *in, unsigned char *out) {
        referenceXteaBuffer(in, out, true);
    };
    const auto refDecipher = [](const unsigned char *in, unsigned char *out) {
        referenceXteaBuffer(in, out, false);
    };
    // The Tarn side of RC4 runs only when the wide check against OpenSSL agrees.
    const auto checkedRc4 = [](benchmark::State &s, auto run, auto expected) {
        if (!rc4Disagreement().empty()) {
            s.SkipWithError(rc4Disagreement().c_str());
            return;
        }
        runCipher(s, run, expected);
    };
    benchmark::RegisterBenchmark("rc4Encrypt 64 MiB/Tarn",
                                 [=](benchmark::State &s) { checkedRc4(s, tarnRc4, opensslRc4); });
    benchmark::RegisterBenchmark("rc4Encrypt 64 MiB/OpenSSL",
                                 [](benchmark::State &s) { runCipher(s, opensslRc4, tarnRc4); });
    benchmark::RegisterBenchmark("rc4 key stream alone 64 MiB/Tarn", [=](benchmark::State &s) {
        checkedRc4(s, tarnRc4Stream, opensslRc4Stream);
    });
    benchmark::RegisterBenchmark("rc4 key stream alone 64 MiB/OpenSSL",
                                 [](benchmark::State &s) { runCipher(s, opensslRc4Stream, tarnRc4Stream); });
    benchmark::RegisterBenchmark("xteaBlock encipher 64 MiB/Tarn",
                                 [=](benchmark::State &s) { runCipher(s, tarnEncipher, refEncipher); });
    benchmark::RegisterBenchmark("xteaBlock encipher 64 MiB/reference routine",
                                 [=](benchmark::State &s) { runCipher(s, refEncipher, tarnEncipher); });
    benchmark::RegisterBenchmark("xteaBlock decipher 64 MiB/Tarn",
                                 [=](benchmark::State &s) { runCipher(s, tarnDecipher, refDecipher); });
    benchmark::RegisterBenchmark("xteaBlock decipher 64 MiB/reference routine",
                                 [=](benchmark::State &s) { runCipher(s, refDecipher, tarnDecipher); });
}

// Registers before benchmark_main's main() runs.
const bool registered = (registerAll(), true);

} // namespace
