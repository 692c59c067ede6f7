// Tests of TarnCrypt: published RC4 and XTEA vectors, edges of the lengths, in-place and overlap.
#include <tarn/tarn.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

Bytes bytesOf(const std::string &text) {
    return Bytes(text.begin(), text.end());
}

Bytes fromHex(const std::string &hex) {
    Bytes out;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        out.push_back(static_cast<unsigned char>(std::stoul(hex.substr(i, 2), nullptr, 16)));
    }
    return out;
}

std::string toHex(const Bytes &bytes) {
    static const char digits[] = "0123456789abcdef";
    std::string out;
    for (unsigned char b : bytes) {
        out += digits[b >> 4];
        out += digits[b & 15];
    }
    return out;
}

Bytes keyStream(const Bytes &key, int length) {
    Bytes stream(static_cast<std::size_t>(length));
    TarnCrypt::rc4(key.data(), static_cast<int>(key.size()), length, stream.data());
    return stream;
}

Bytes rc4Encrypt(const Bytes &key, const Bytes &data) {
    Bytes out(data.size());
    TarnCrypt::rc4Encrypt(key.data(), static_cast<int>(key.size()), data.data(),
                          static_cast<int>(data.size()), out.data());
    return out;
}

// ---- Identity -----------------------------------------------------------------------------------

// A concrete class below TarnCrypt, to reach its non-virtual identity through a TarnCrypt reference.
class Derived : public TarnCrypt {
public:
    bool isa(const std::string &name) const override { return tarn::isClassName(name, "Derived"); }
    std::string getClassName() const override { return "Derived"; }
};

TEST(TarnCryptTest, IdentityAnswersOnlyToADirectCallOnTheClass) {
    static_assert(std::is_abstract<TarnCrypt>::value, "TarnCrypt must stay abstract");
    Derived derived;
    TarnCrypt &crypt = derived;
    EXPECT_TRUE(crypt.isa("TarnCrypt"));
    EXPECT_FALSE(crypt.isa("tarncrypt"));
    EXPECT_FALSE(crypt.isa(""));
    EXPECT_EQ(crypt.getClassName(), "TarnCrypt");
    // The virtual slots are not filled by TarnCrypt: through the root the derived class answers.
    const TarnObject &object = derived;
    EXPECT_EQ(object.getClassName(), "Derived");
    EXPECT_FALSE(object.isa("TarnCrypt"));
}

// ---- RC4 ----------------------------------------------------------------------------------------

// The short examples that are quoted with the cipher's public description (Wikipedia, "RC4",
// section Test vectors) and the 8-byte vectors posted with the original 1994 description.
TEST(TarnCryptTest, Rc4EncryptMatchesWellKnownShortVectors) {
    struct Vector {
        Bytes key;
        Bytes plain;
        const char *cipher;
    };
    const Vector vectors[] = {
        {bytesOf("Key"), bytesOf("Plaintext"), "bbf316e8d940af0ad3"},
        {bytesOf("Secret"), bytesOf("Attack at dawn"), "45a01f645fc35b383552544b9bf5"},
        {fromHex("0123456789abcdef"), fromHex("0123456789abcdef"), "75b7878099e0c596"},
        {fromHex("ef012345"), fromHex("00000000000000000000"), "d6a141a7ec3c38dfbd61"},
    };
    for (const Vector &v : vectors) {
        const Bytes cipher = rc4Encrypt(v.key, v.plain);
        EXPECT_EQ(toHex(cipher), v.cipher) << "key " << toHex(v.key);
        EXPECT_EQ(rc4Encrypt(v.key, cipher), v.plain) << "applying it again gives the data back";
    }
}

// Key stream of RFC 6229 ("Test Vectors for the Stream Cipher RC4"), 40-bit key 0x0102030405: a
// subset of its offsets, on both sides of the first wraps of the state index and at the end.
TEST(TarnCryptTest, Rc4KeyStreamMatchesRfc6229) {
    const std::pair<int, const char *> rows[] = {
        {0, "b2396305f03dc027ccc3524a0a1118a8"},   {240, "28cb1132c96ce286421dcaadb8b69eae"},
        {256, "1cfcf62b03eddb641d77dfcf7f8d8c93"}, {496, "42b7d0cdd918a8a33dd51781c81f4041"},
        {512, "6459844432a7da923cfb3eb4980661f6"}, {4096, "ff25b58995996707e51fbdf08b34d875"},
    };
    const Bytes stream = keyStream(fromHex("0102030405"), 4096 + 16);
    for (const auto &row : rows) {
        const Bytes got(stream.begin() + row.first, stream.begin() + row.first + 16);
        EXPECT_EQ(toHex(got), row.second) << "offset " << row.first;
    }
}

// The cipher one byte at a time, as it is published: the yardstick for the library's grouped loop.
Bytes plainRc4(const Bytes &key, const Bytes &data) {
    unsigned char state[256];
    for (int n = 0; n < 256; ++n) {
        state[n] = static_cast<unsigned char>(n);
    }
    for (int n = 0, j = 0; n < 256; ++n) {
        j = (j + state[n] + key[static_cast<std::size_t>(n) % key.size()]) & 0xFF;
        std::swap(state[n], state[j]);
    }
    Bytes out(data.size());
    for (std::size_t n = 0, i = 0, j = 0; n < data.size(); ++n) {
        i = (i + 1) & 0xFF;
        j = (j + state[i]) & 0xFF;
        std::swap(state[i], state[j]);
        out[n] = static_cast<unsigned char>(data[n] ^ state[(state[i] + state[j]) & 0xFF]);
    }
    return out;
}

// Every length up to 70 (the single steps before the first group, whole words and the tail) and
// long runs in which j often lands on entries loaded ahead, for keys of several lengths: cycled
// through the table when short, cut at 256 bytes when long, and every call starts afresh.
TEST(TarnCryptTest, Rc4MatchesTheBytewiseCipherAtEveryLength) {
    std::vector<int> lengths;
    for (int length = 0; length <= 70; ++length) {
        lengths.push_back(length);
    }
    lengths.insert(lengths.end(), {255, 256, 257, 1021, 4099, 65536 + 5});
    std::uint32_t seed = 0x2545F491u;
    const auto nextByte = [&seed] {
        seed = seed * 1103515245u + 12345u;
        return static_cast<unsigned char>(seed >> 24);
    };
    for (std::size_t keyLength : {1, 5, 16, 255, 256, 300}) {
        Bytes key(keyLength);
        std::generate(key.begin(), key.end(), nextByte);
        for (int length : lengths) {
            Bytes data(static_cast<std::size_t>(length));
            std::generate(data.begin(), data.end(), nextByte);
            const Bytes expected = plainRc4(key, data);
            ASSERT_EQ(rc4Encrypt(key, data), expected) << "key length " << keyLength << ", length " << length;
            ASSERT_EQ(keyStream(key, length), plainRc4(key, Bytes(data.size(), 0)))
                << "key length " << keyLength << ", length " << length;
        }
    }
}

TEST(TarnCryptTest, Rc4WritesNothingForUnusableArguments) {
    const unsigned char key[1] = {'k'};
    const unsigned char data[6] = {'a', 'b', 'c', 'd', 'e', 'f'};
    Bytes out(6, 0xee);
    // Key, key length, data, length.
    const std::tuple<const unsigned char *, int, const unsigned char *, int> calls[] = {
        {key, 1, data, 0},  {key, 1, data, -5},    {key, 0, data, 6},
        {key, -3, data, 6}, {nullptr, 1, data, 6}, {key, 1, nullptr, 6}};
    for (const auto &[k, keyLength, d, length] : calls) {
        TarnCrypt::rc4Encrypt(k, keyLength, d, length, out.data());
        if (d != nullptr) {
            TarnCrypt::rc4(k, keyLength, length, out.data());
        }
    }
    TarnCrypt::rc4Encrypt(key, 1, data, 6, nullptr);
    TarnCrypt::rc4(key, 1, 6, nullptr);
    EXPECT_EQ(out, Bytes(6, 0xee));
}

// Runs `cipher(input, output)` over `length` bytes that start 64 bytes into a patterned buffer,
// once into a buffer of its own and once for each output place shifted by `shifts` inside the same
// buffer (0: in place); every shifted result must equal the separate one.
template <class Cipher>
void expectTheCopiedResult(int length, std::initializer_list<int> shifts, Cipher cipher) {
    Bytes data(static_cast<std::size_t>(length) + 128);
    for (std::size_t i = 0; i < data.size(); ++i) {
        data[i] = static_cast<unsigned char>(i * 13 + 5);
    }
    Bytes expected(static_cast<std::size_t>(length));
    cipher(data.data() + 64, expected.data());
    for (int shift : shifts) {
        Bytes buffer = data;
        cipher(buffer.data() + 64, buffer.data() + 64 + shift);
        EXPECT_EQ(Bytes(buffer.begin() + 64 + shift, buffer.begin() + 64 + shift + length), expected)
            << "output shifted by " << shift;
    }
}

TEST(TarnCryptTest, Rc4EncryptInPlaceAndOverlappingGivesTheCopiedResult) {
    const Bytes key = bytesOf("overlap");
    // Shifts below, at and beyond one word of the grouped loop, and all but one byte.
    expectTheCopiedResult(61, {0, 1, 3, 7, 8, 9, -1, -4, -8, -9, 60, -60},
                          [&](const unsigned char *in, unsigned char *out) {
                              TarnCrypt::rc4Encrypt(key.data(), static_cast<int>(key.size()), in, 61, out);
                          });
}

// ---- XTEA ---------------------------------------------------------------------------------------

// 32-cycle vectors from the sci.crypt thread "Testing XTEA" (Jan 2007): M. Amling's key and
// plaintext whose words read the same in either byte order, and W. Ehrhardt's zero key with
// plaintext bytes 01 23 .. ef taken as big-endian words.
TEST(TarnCryptTest, XteaMatchesPublishedWordVectors) {
    struct Vector {
        std::uint32_t key[4];
        std::uint32_t plain[2];
        std::uint32_t cipher[2];
    };
    const Vector vectors[] = {
        {{0x01020201, 0x03040403, 0x05060605, 0x07080807},
         {0x11222211, 0x33444433},
         {0x9f775b19, 0xd1c7121d}},
        {{0, 0, 0, 0}, {0x01234567, 0x89abcdef}, {0x7e66c71c, 0x88897221}},
    };
    for (const Vector &v : vectors) {
        std::uint32_t words[2];
        TarnCrypt::xteaEncipher(32, v.plain, words, v.key);
        EXPECT_EQ(words[0], v.cipher[0]);
        EXPECT_EQ(words[1], v.cipher[1]);
        TarnCrypt::xteaDecipher(32, words, words, v.key); // in place
        EXPECT_EQ(words[0], v.plain[0]);
        EXPECT_EQ(words[1], v.plain[1]);
    }
    // W. Ehrhardt's zero-key vector as bytes: xteaBlock reads words in the machine's byte order.
    const std::uint32_t one = 1, zeroKey[4] = {0, 0, 0, 0};
    if (*reinterpret_cast<const unsigned char *>(&one) == 1) {
        const Bytes plain = fromHex("0123456789abcdef");
        Bytes out(8);
        ASSERT_TRUE(TarnCrypt::xteaBlock(32, plain.data(), 8, out.data(), zeroKey, true));
        EXPECT_EQ(toHex(out), "1dd474fd24ef1c2e");
    }
}

// K. Lockstone's "Test Vectors for TEA and XTEA": six zero words (two data, four key) are
// enciphered with n = 1..64 cycles, the window sliding one word after each; the rows at the powers
// of 2 are published, and deciphering in reverse must return to zeros.
TEST(TarnCryptTest, XteaMatchesTheSlidingWindowVectorsForOneToSixtyFourCycles) {
    const std::uint32_t published[7][6] = {
        {0x00000000, 0x9e3779b9, 0x00000000, 0x00000000, 0x00000000, 0x00000000},
        {0xec01a1de, 0xaaa0256d, 0x00000000, 0x00000000, 0x00000000, 0x00000000},
        {0xbc3a7de2, 0x4e238eb9, 0x00000000, 0x00000000, 0xec01a1de, 0x114f6d74},
        {0x31c5fa6c, 0x241756d6, 0xbc3a7de2, 0x845846cf, 0x2794a127, 0x6b8ea8b8},
        {0x1d8e6992, 0x9a478905, 0x6a1d78c8, 0x08c86d67, 0x2a65bfbe, 0xb4bd6e46},
        {0xd26428af, 0x0a202283, 0x27f917b1, 0xc1da8993, 0x60e2acaa, 0xa6eb923d},
        {0x7a01cbc9, 0xb03d6068, 0x62ee209f, 0x069b7afc, 0x376a8936, 0xcdc9e923},
    };
    std::vector<std::uint32_t> pz(64 + 8, 0);
    int row = 0;
    for (unsigned int n = 1; n <= 64; ++n) {
        TarnCrypt::xteaEncipher(n, &pz[n], &pz[n], &pz[n + 2]);
        if ((n & (n - 1)) == 0) {
            for (int w = 0; w < 6; ++w) {
                EXPECT_EQ(pz[n + w], published[row][w]) << "cycles " << n << ", word " << w;
            }
            ++row;
        }
        pz[n + 6] = pz[n];
    }
    for (unsigned int n = 64; n >= 1; --n) {
        TarnCrypt::xteaDecipher(n, &pz[n], &pz[n], &pz[n + 2]);
    }
    for (unsigned int n = 1; n <= 6; ++n) {
        EXPECT_EQ(pz[n], 0u) << "word " << n << " after deciphering";
    }
}

TEST(TarnCryptTest, XteaBlockRejectsPartialBlocksWithoutWritingAndCopiesWithNoCycles) {
    const std::uint32_t key[4] = {1, 2, 3, 4};
    const Bytes in(16, 0x11);
    Bytes out(16, 0xee);
    EXPECT_FALSE(TarnCrypt::xteaBlock(32, in.data(), 12, out.data(), key, true));
    EXPECT_FALSE(TarnCrypt::xteaBlock(32, in.data(), 7, out.data(), key, false));
    EXPECT_FALSE(TarnCrypt::xteaBlock(32, nullptr, 8, out.data(), key, true));
    EXPECT_FALSE(TarnCrypt::xteaBlock(32, in.data(), 8, out.data(), nullptr, true));
    EXPECT_EQ(out, Bytes(16, 0xee));
    EXPECT_TRUE(TarnCrypt::xteaBlock(32, nullptr, 0, nullptr, key, true));
    EXPECT_EQ(out, Bytes(16, 0xee));
    EXPECT_TRUE(TarnCrypt::xteaBlock(0, in.data(), 16, out.data(), key, true));
    EXPECT_EQ(out, in) << "no cycles copy the words unchanged";
}

TEST(TarnCryptTest, XteaBlockInPlaceAndOverlappingBuffersGiveTheCopiedResult) {
    const std::uint32_t key[4] = {7, 11, 13, 17};
    for (bool encipher : {true, false}) {
        SCOPED_TRACE(encipher ? "enciphering" : "deciphering");
        expectTheCopiedResult(8 * 40, {0, 1, 3, 8, 24, 31, -1, -8, -13, -32},
                              [&](const unsigned char *in, unsigned char *out) {
                                  EXPECT_TRUE(TarnCrypt::xteaBlock(32, in, 8 * 40, out, key, encipher));
                              });
    }
}

} // namespace
