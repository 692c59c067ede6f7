// TarnCrypt: RC4 key stream and encryption, XTEA on one block and on buffers of blocks.
#include "tarn/crypt/TarnCrypt.h"

#include "crypt/TarnXteaKernels.h"

#include <cstddef>
#include <functional>
#include <memory>

namespace {

constexpr std::size_t kXteaBlockBytes = 8;

// True when writing [output, output + length) ascending would overwrite bytes of
// [input, input + length) that are still to be read: output lies inside input, above its start.
// std::less gives a total order even for pointers into different buffers.
bool overlapsFromAbove(const unsigned char *input, const unsigned char *output, std::size_t length) {
    const std::less<const unsigned char *> below;
    return below(input, output) && below(output, input + length);
}

// Runs one block of two words through XTEA; nothing happens when a pointer is null. Both words are
// read before either is written, so output may alias input in any way.
void xteaWords(unsigned int rounds, const std::uint32_t *input, std::uint32_t *output,
               const std::uint32_t *key, bool encipher) {
    if (input == nullptr || output == nullptr || key == nullptr) {
        return;
    }
    std::uint32_t v0 = input[0];
    std::uint32_t v1 = input[1];
    if (encipher) {
        tarn::crypt::xteaEncipherWords(rounds, v0, v1, key);
    } else {
        tarn::crypt::xteaDecipherWords(rounds, v0, v1, key);
    }
    output[0] = v0;
    output[1] = v1;
}

} // namespace

TarnCrypt::~TarnCrypt() = default;

bool TarnCrypt::isa(const std::string &name) {
    return tarn::isClassName(name, "TarnCrypt");
}

std::string TarnCrypt::getClassName() {
    return "TarnCrypt";
}

void TarnCrypt::rc4(const unsigned char *key, int keyLength, int streamLength, unsigned char *stream) {
    // A key length below 1 would divide by zero in the key table: write nothing instead.
    if (key == nullptr || keyLength < 1 || stream == nullptr || streamLength < 1) {
        return;
    }
    // Key scheduling: the state starts as the identity and is mixed with the key repeated to
    // 256 bytes (a longer key counts only up to its 256th byte).
    unsigned char state[256];
    for (unsigned int i = 0; i < 256; ++i) {
        state[i] = static_cast<unsigned char>(i);
    }
    const unsigned int length = static_cast<unsigned int>(keyLength);
    unsigned int j = 0;
    for (unsigned int i = 0; i < 256; ++i) {
        const unsigned char si = state[i];
        j = (j + si + key[i % length]) & 0xFFu;
        state[i] = state[j];
        state[j] = si;
    }
    // Generation, both indices from 0: swap, then emit the byte the two swapped entries point at.
    unsigned int i = 0;
    j = 0;
    const std::size_t count = static_cast<std::size_t>(streamLength);
    for (std::size_t n = 0; n < count; ++n) {
        i = (i + 1) & 0xFFu;
        const unsigned char si = state[i];
        j = (j + si) & 0xFFu;
        const unsigned char sj = state[j];
        state[i] = sj;
        state[j] = si;
        stream[n] = state[(si + sj) & 0xFFu];
    }
}

void TarnCrypt::rc4Encrypt(const unsigned char *key, int keyLength, const unsigned char *data, int dataLength,
                           unsigned char *output) {
    if (key == nullptr || keyLength < 1 || data == nullptr || output == nullptr || dataLength < 1) {
        return;
    }
    // The whole key stream first, in a work buffer of its own (sized in size_t: dataLength + 1
    // cannot overflow there), then one pass that combines it with the data.
    const std::size_t length = static_cast<std::size_t>(dataLength);
    const std::unique_ptr<unsigned char[]> stream(new unsigned char[length + 1]);
    rc4(key, keyLength, dataLength, stream.get());
    // Each byte is read just before its output byte is written, so ascending order is safe
    // unless output starts inside data above it; then descending order is.
    if (overlapsFromAbove(data, output, length)) {
        for (std::size_t n = length; n-- > 0;) {
            output[n] = static_cast<unsigned char>(data[n] ^ stream[n]);
        }
    } else {
        for (std::size_t n = 0; n < length; ++n) {
            output[n] = static_cast<unsigned char>(data[n] ^ stream[n]);
        }
    }
}

void TarnCrypt::xteaEncipher(unsigned int rounds, const std::uint32_t *input, std::uint32_t *output,
                             const std::uint32_t *key) {
    xteaWords(rounds, input, output, key, true);
}

void TarnCrypt::xteaDecipher(unsigned int rounds, const std::uint32_t *input, std::uint32_t *output,
                             const std::uint32_t *key) {
    xteaWords(rounds, input, output, key, false);
}

bool TarnCrypt::xteaBlock(unsigned int rounds, const unsigned char *input, unsigned int length,
                          unsigned char *output, const std::uint32_t *key, bool encipher) {
    if (length % kXteaBlockBytes != 0) {
        return false;
    }
    if (length == 0) {
        return true;
    }
    if (input == nullptr || output == nullptr || key == nullptr) {
        return false;
    }
    const std::size_t blocks = length / kXteaBlockBytes;
    if (!overlapsFromAbove(input, output, length)) {
        // Equal, disjoint, or output below input: the kernels read each group of blocks before
        // writing it, ascending, which never overwrites a block still to be read.
        tarn::crypt::bestXteaBlocksKernel()(rounds, input, output, blocks, key, encipher);
        return true;
    }
    // Output starts inside input above it: run the blocks from the last one down, so that every
    // block is read before an earlier block's output lands on it.
    for (std::size_t b = blocks; b-- > 0;) {
        tarn::crypt::xteaBlocksPortable(rounds, input + b * kXteaBlockBytes, output + b * kXteaBlockBytes, 1,
                                        key, encipher);
    }
    return true;
}
