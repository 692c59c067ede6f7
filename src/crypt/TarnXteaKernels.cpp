// XTEA multi-block kernels: portable interleaved scalar code, SSE2 and AVX2 lanes, and the choice.
#include "crypt/TarnXteaKernels.h"

#include "foundation/TarnProcessor.h"

#include <cstring>
#include <utility>

// The vector kernels need GCC or Clang on x86 (target attributes, cpu checks); elsewhere only
// the portable kernel exists.
#if TARN_X86_KERNELS
#define TARN_XTEA_X86 1
#define TARN_XTEA_REALIGN TARN_KERNEL_ENTRY
#endif

namespace tarn {
namespace crypt {
namespace {

constexpr std::size_t kBlockBytes = 8;

// Reads the block at `bytes` as two words in the machine's byte order, whatever its alignment.
inline void loadBlock(const unsigned char *bytes, std::uint32_t &v0, std::uint32_t &v1) {
    std::uint32_t words[2];
    std::memcpy(words, bytes, sizeof words);
    v0 = words[0];
    v1 = words[1];
}

inline void storeBlock(unsigned char *bytes, std::uint32_t v0, std::uint32_t v1) {
    const std::uint32_t words[2] = {v0, v1};
    std::memcpy(bytes, words, sizeof words);
}

// Runs each block alone: the tails of the multi-block kernels.
void xteaBlocksOneByOne(unsigned int rounds, const unsigned char *input, unsigned char *output,
                        std::size_t blocks, const std::uint32_t *key, bool encipher) {
    for (std::size_t b = 0; b < blocks; ++b) {
        std::uint32_t v0;
        std::uint32_t v1;
        loadBlock(input + b * kBlockBytes, v0, v1);
        if (encipher) {
            xteaEncipherWords(rounds, v0, v1, key);
        } else {
            xteaDecipherWords(rounds, v0, v1, key);
        }
        storeBlock(output + b * kBlockBytes, v0, v1);
    }
}

#if defined(TARN_XTEA_X86)

// The vector kernels precompute the round keys of up to this many cycles; more cycles than that
// are rare and go through the portable kernel.
constexpr unsigned int kMaxScheduledRounds = 64;

// The round keys are the same for every block: schedule[2r] is what cycle r adds in its first
// half (sum + key[sum & 3]) and schedule[2r + 1] what it adds in its second. Deciphering uses the
// same values from the last cycle down.
void xteaSchedule(unsigned int rounds, const std::uint32_t *key, std::uint32_t *schedule) {
    std::uint32_t sum = 0;
    for (unsigned int r = 0; r < rounds; ++r) {
        schedule[2 * r] = sum + key[sum & 3u];
        sum += xteaDelta;
        schedule[2 * r + 1] = sum + key[(sum >> 11) & 3u];
    }
}

// Words of 4 and 8 blocks side by side: the compiler maps their arithmetic onto SSE2 and AVX2
// registers in the functions below, whose target attribute allows those instructions.
typedef std::uint32_t Words4 __attribute__((vector_size(16)));
typedef std::uint32_t Words8 __attribute__((vector_size(32)));

// Turns two vectors that hold blocks (first word, second word, first word, ...) into one vector of
// first words and one of second words. `I` counts the lanes, 0 to Lanes - 1.
template <class Vec, std::size_t... I>
__attribute__((always_inline)) inline void splitWords(Vec &low, Vec &high, std::index_sequence<I...>) {
    const Vec first = __builtin_shufflevector(low, high, (2 * I)...);
    high = __builtin_shufflevector(low, high, (2 * I + 1)...);
    low = first;
}

// The inverse of splitWords: interleaves first and second words back into blocks.
template <class Vec, std::size_t... I>
__attribute__((always_inline)) inline void joinWords(Vec &first, Vec &second, std::index_sequence<I...>) {
    constexpr std::size_t kLanes = sizeof...(I);
    const Vec low = __builtin_shufflevector(first, second, (I % 2 == 0 ? I / 2 : kLanes + I / 2)...);
    second = __builtin_shufflevector(first, second,
                                     (I % 2 == 0 ? kLanes / 2 + I / 2 : kLanes + kLanes / 2 + I / 2)...);
    first = low;
}

// Runs the blocks in groups of 2 x Lanes, each group a pair of vectors (first words, second words)
// twice over, so that two independent chains overlap; the rest goes one block at a time. Inlined
// into each target function, which decides the instructions. `I` counts the lanes.
template <class Vec, std::size_t... I>
__attribute__((always_inline)) inline void
xteaBlocksLanes(unsigned int rounds, const unsigned char *input, unsigned char *output, std::size_t blocks,
                const std::uint32_t *key, bool encipher, std::index_sequence<I...> seq) {
    constexpr std::size_t kLanes = sizeof...(I);
    constexpr std::size_t kStep = 2 * kLanes;
    if (rounds > kMaxScheduledRounds) {
        xteaBlocksPortable(rounds, input, output, blocks, key, encipher);
        return;
    }
    std::uint32_t schedule[2 * kMaxScheduledRounds];
    xteaSchedule(rounds, key, schedule);
    std::size_t b = 0;
    for (; b + kStep <= blocks; b += kStep) {
        // Load the group as four vectors of words (two blocks per 64 bits) and split them into
        // first words (a0, c0) and second words (a1, c1).
        const unsigned char *in = input + b * kBlockBytes;
        Vec a0, a1, c0, c1;
        std::memcpy(&a0, in, sizeof a0);
        std::memcpy(&a1, in + sizeof a0, sizeof a1);
        std::memcpy(&c0, in + 2 * sizeof a0, sizeof c0);
        std::memcpy(&c1, in + 3 * sizeof a0, sizeof c1);
        splitWords(a0, a1, seq);
        splitWords(c0, c1, seq);
        if (encipher) {
            for (unsigned int r = 0; r < rounds; ++r) {
                const std::uint32_t k0 = schedule[2 * r];
                const std::uint32_t k1 = schedule[2 * r + 1];
                a0 += (((a1 << 4) ^ (a1 >> 5)) + a1) ^ k0;
                c0 += (((c1 << 4) ^ (c1 >> 5)) + c1) ^ k0;
                a1 += (((a0 << 4) ^ (a0 >> 5)) + a0) ^ k1;
                c1 += (((c0 << 4) ^ (c0 >> 5)) + c0) ^ k1;
            }
        } else {
            for (unsigned int r = rounds; r-- > 0;) {
                const std::uint32_t k0 = schedule[2 * r];
                const std::uint32_t k1 = schedule[2 * r + 1];
                a1 -= (((a0 << 4) ^ (a0 >> 5)) + a0) ^ k1;
                c1 -= (((c0 << 4) ^ (c0 >> 5)) + c0) ^ k1;
                a0 -= (((a1 << 4) ^ (a1 >> 5)) + a1) ^ k0;
                c0 -= (((c1 << 4) ^ (c1 >> 5)) + c1) ^ k0;
            }
        }
        // Interleave first and second words back into blocks. All blocks of the group were read
        // above, before any is written here.
        joinWords(a0, a1, seq);
        joinWords(c0, c1, seq);
        unsigned char *out = output + b * kBlockBytes;
        std::memcpy(out, &a0, sizeof a0);
        std::memcpy(out + sizeof a0, &a1, sizeof a1);
        std::memcpy(out + 2 * sizeof a0, &c0, sizeof c0);
        std::memcpy(out + 3 * sizeof a0, &c1, sizeof c1);
    }
    xteaBlocksOneByOne(rounds, input + b * kBlockBytes, output + b * kBlockBytes, blocks - b, key, encipher);
}

// Eight blocks per step in four 128-bit registers.
__attribute__((target("sse2"))) TARN_XTEA_REALIGN void
xteaBlocksSse2Impl(unsigned int rounds, const unsigned char *input, unsigned char *output, std::size_t blocks,
                   const std::uint32_t *key, bool encipher) {
    xteaBlocksLanes<Words4>(rounds, input, output, blocks, key, encipher, std::make_index_sequence<4>());
}

// Sixteen blocks per step in four 256-bit registers.
__attribute__((target("avx2"))) TARN_XTEA_REALIGN void
xteaBlocksAvx2Impl(unsigned int rounds, const unsigned char *input, unsigned char *output, std::size_t blocks,
                   const std::uint32_t *key, bool encipher) {
    xteaBlocksLanes<Words8>(rounds, input, output, blocks, key, encipher, std::make_index_sequence<8>());
}

#endif // TARN_XTEA_X86

} // namespace

void xteaBlocksPortable(unsigned int rounds, const unsigned char *input, unsigned char *output,
                        std::size_t blocks, const std::uint32_t *key, bool encipher) {
    constexpr std::size_t kLanes = 4;
    std::size_t b = 0;
    for (; b + kLanes <= blocks; b += kLanes) {
        // Four independent blocks per round give the processor four chains to overlap.
        std::uint32_t v0[kLanes];
        std::uint32_t v1[kLanes];
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            loadBlock(input + (b + lane) * kBlockBytes, v0[lane], v1[lane]);
        }
        if (encipher) {
            std::uint32_t sum = 0;
            for (unsigned int r = 0; r < rounds; ++r) {
                const std::uint32_t k0 = sum + key[sum & 3u];
                sum += xteaDelta;
                const std::uint32_t k1 = sum + key[(sum >> 11) & 3u];
                for (std::size_t lane = 0; lane < kLanes; ++lane) {
                    v0[lane] += (((v1[lane] << 4) ^ (v1[lane] >> 5)) + v1[lane]) ^ k0;
                    v1[lane] += (((v0[lane] << 4) ^ (v0[lane] >> 5)) + v0[lane]) ^ k1;
                }
            }
        } else {
            std::uint32_t sum = static_cast<std::uint32_t>(rounds) * xteaDelta;
            for (unsigned int r = 0; r < rounds; ++r) {
                const std::uint32_t k1 = sum + key[(sum >> 11) & 3u];
                sum -= xteaDelta;
                const std::uint32_t k0 = sum + key[sum & 3u];
                for (std::size_t lane = 0; lane < kLanes; ++lane) {
                    v1[lane] -= (((v0[lane] << 4) ^ (v0[lane] >> 5)) + v0[lane]) ^ k1;
                    v0[lane] -= (((v1[lane] << 4) ^ (v1[lane] >> 5)) + v1[lane]) ^ k0;
                }
            }
        }
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            storeBlock(output + (b + lane) * kBlockBytes, v0[lane], v1[lane]);
        }
    }
    xteaBlocksOneByOne(rounds, input + b * kBlockBytes, output + b * kBlockBytes, blocks - b, key, encipher);
}

#if defined(TARN_XTEA_X86)
const XteaBlocksKernel xteaBlocksSse2 = &xteaBlocksSse2Impl;
const XteaBlocksKernel xteaBlocksAvx2 = &xteaBlocksAvx2Impl;
#else
const XteaBlocksKernel xteaBlocksSse2 = nullptr;
const XteaBlocksKernel xteaBlocksAvx2 = nullptr;
#endif

XteaBlocksKernel bestXteaBlocksKernel() {
    // The library's one processor check, with its path limit; the XTEA kernels go up to AVX2. A
    // build without the vector kernels never gets a path above the portable one.
    const KernelPath path = kernelPath();
    if (path >= KernelPath::avx2) {
        return xteaBlocksAvx2;
    }
    if (path >= KernelPath::sse2) {
        return xteaBlocksSse2;
    }
    return &xteaBlocksPortable;
}

} // namespace crypt
} // namespace tarn
