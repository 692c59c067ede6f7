// Tour of the ciphers: a short text through RC4 and XTEA and back, printed as hex.
#include "Tour.h"

#include <tarn/tarn.h>

#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

void printHex(const char *label, const unsigned char *bytes, std::size_t length) {
    std::printf("%s", label);
    for (std::size_t i = 0; i < length; ++i) {
        std::printf("%02x", bytes[i]);
    }
    std::printf("\n");
}

} // namespace

void tourCrypt() {
    std::printf("\n== Ciphers (for compatibility only: not secure for new designs)\n");
    // 32 bytes: a whole number of XTEA blocks.
    const char text[] = "Tarn enciphers this short text.";
    unsigned char plain[32] = {};
    std::memcpy(plain, text, sizeof text);
    std::printf("text:          \"%s\"\n", text);

    const unsigned char rc4Key[] = {'t', 'o', 'u', 'r', '-', 'k', 'e', 'y'};
    unsigned char cipher[32];
    unsigned char back[32];
    TarnCrypt::rc4Encrypt(rc4Key, sizeof rc4Key, plain, sizeof plain, cipher);
    printHex("RC4 cipher:    ", cipher, sizeof cipher);
    TarnCrypt::rc4Encrypt(rc4Key, sizeof rc4Key, cipher, sizeof cipher, back); // the same call deciphers
    std::printf("RC4 back:      \"%s\"\n", reinterpret_cast<const char *>(back));

    const std::uint32_t xteaKey[4] = {0x01234567, 0x89abcdef, 0xfedcba98, 0x76543210};
    TarnCrypt::xteaBlock(32, plain, sizeof plain, cipher, xteaKey, true);
    printHex("XTEA cipher:   ", cipher, sizeof cipher);
    TarnCrypt::xteaBlock(32, cipher, sizeof cipher, back, xteaKey, false);
    std::printf("XTEA back:     \"%s\"\n", reinterpret_cast<const char *>(back));
    std::printf("xteaBlock with 12 bytes: %s\n",
                TarnCrypt::xteaBlock(32, plain, 12, cipher, xteaKey, true) ? "true" : "false");
}
