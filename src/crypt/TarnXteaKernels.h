// XTEA on runs of independent 8-byte blocks: the one-block rounds and the multi-block kernels.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn {
namespace crypt {

/// The XTEA round constant.
constexpr std::uint32_t xteaDelta = 0x9E3779B9u;

/// Enciphers the block (v0, v1) in place with `rounds` cycles under `key` (four words).
inline void xteaEncipherWords(unsigned int rounds, std::uint32_t &v0, std::uint32_t &v1,
                              const std::uint32_t *key) {
    std::uint32_t sum = 0;
    for (unsigned int r = 0; r < rounds; ++r) {
        v0 += (((v1 << 4) ^ (v1 >> 5)) + v1) ^ (sum + key[sum & 3u]);
        sum += xteaDelta;
        v1 += (((v0 << 4) ^ (v0 >> 5)) + v0) ^ (sum + key[(sum >> 11) & 3u]);
    }
}

/// Deciphers the block (v0, v1) in place; the inverse of `xteaEncipherWords` for the same
/// `rounds` and `key`. The sum starts at `rounds` times the delta, wrapping at 2^32.
inline void xteaDecipherWords(unsigned int rounds, std::uint32_t &v0, std::uint32_t &v1,
                              const std::uint32_t *key) {
    std::uint32_t sum = static_cast<std::uint32_t>(rounds) * xteaDelta;
    for (unsigned int r = 0; r < rounds; ++r) {
        v1 -= (((v0 << 4) ^ (v0 >> 5)) + v0) ^ (sum + key[(sum >> 11) & 3u]);
        sum -= xteaDelta;
        v0 -= (((v1 << 4) ^ (v1 >> 5)) + v1) ^ (sum + key[sum & 3u]);
    }
}

/// A kernel runs `blocks` 8-byte blocks from `input` to `output` in ascending order; a block's
/// bytes are two words in the machine's byte order. Groups of blocks are read whole before they
/// are written, so `output` may equal `input` or lie below it, overlapping or not.
using XteaBlocksKernel = void (*)(unsigned int rounds, const unsigned char *input, unsigned char *output,
                                  std::size_t blocks, const std::uint32_t *key, bool encipher);

/// The portable kernel: four blocks interleaved in scalar code, any processor.
void xteaBlocksPortable(unsigned int rounds, const unsigned char *input, unsigned char *output,
                        std::size_t blocks, const std::uint32_t *key, bool encipher);

/// The SSE2 kernel (8 blocks per step in 32-bit lanes); null where the build has none. The vector
/// kernels hand more than 64 cycles to the portable kernel.
extern const XteaBlocksKernel xteaBlocksSse2;
/// The AVX2 kernel (16 blocks per step); null where the build has none.
extern const XteaBlocksKernel xteaBlocksAvx2;

/// Returns the fastest kernel of the path that the processor check gives (foundation/TarnProcessor.h).
XteaBlocksKernel bestXteaBlocksKernel();

} // namespace crypt
} // namespace tarn
