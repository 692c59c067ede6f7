// Example: RC4 and XTEA on caller-owned buffers. Both ciphers are here to exchange data with
// existing systems; they are not secure for new designs (RC4's key stream is biased, and XTEA in
// codebook mode maps equal blocks to equal blocks and checks no integrity).
#include <tarn/tarn.h>

#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

void printHex(const char *label, const unsigned char *bytes, unsigned int length) {
    std::printf("%s", label);
    for (unsigned int i = 0; i < length; ++i) {
        std::printf("%02x", bytes[i]);
    }
    std::printf("\n");
}

} // namespace

int main() {
    // RC4: the same call enciphers and deciphers. The key "Key" and the text "Plaintext" are a
    // widely published pair whose cipher text is bb f3 16 e8 d9 40 af 0a d3.
    const unsigned char key[] = {'K', 'e', 'y'};
    const unsigned char text[] = {'P', 'l', 'a', 'i', 'n', 't', 'e', 'x', 't'};
    const unsigned char expected[] = {0xbb, 0xf3, 0x16, 0xe8, 0xd9, 0x40, 0xaf, 0x0a, 0xd3};
    unsigned char cipher[sizeof text];
    unsigned char back[sizeof text];
    TarnCrypt::rc4Encrypt(key, sizeof key, text, sizeof text, cipher);
    TarnCrypt::rc4Encrypt(key, sizeof key, cipher, sizeof cipher, back);
    printHex("RC4 cipher text: ", cipher, sizeof cipher);
    const bool rc4Ok =
        std::memcmp(cipher, expected, sizeof expected) == 0 && std::memcmp(back, text, sizeof text) == 0;

    // XTEA in codebook mode: the length must be a whole number of 8-byte blocks, enciphered in
    // place here (input and output may be the same buffer).
    const std::uint32_t xteaKey[4] = {0x00112233, 0x44556677, 0x8899aabb, 0xccddeeff};
    unsigned char buffer[16];
    std::memcpy(buffer, "sixteen bytes...", sizeof buffer);
    const bool enciphered = TarnCrypt::xteaBlock(32, buffer, sizeof buffer, buffer, xteaKey, true);
    printHex("XTEA cipher text: ", buffer, sizeof buffer);
    const bool deciphered = TarnCrypt::xteaBlock(32, buffer, sizeof buffer, buffer, xteaKey, false);
    const bool xteaOk =
        enciphered && deciphered && std::memcmp(buffer, "sixteen bytes...", sizeof buffer) == 0;

    // A length that is no multiple of 8 is refused, and nothing is written.
    const bool refused = !TarnCrypt::xteaBlock(32, buffer, 12, buffer, xteaKey, true);

    const bool ok = rc4Ok && xteaOk && refused;
    std::printf("%s\n", ok ? "ok" : "FAILED");
    return ok ? 0 : 1;
}
