// XTEA multi-block kernels: portable interleaved scalar code, SSE2 and AVX2 lanes, and the choice.
#include "crypt/TarnXteaKernels.h"

#include <cstring>

// The vector kernels need GCC or Clang on x86 (target attributes, cpu checks); elsewhere only
// the portable kernel exists.
#if (defined(__GNUC__) || defined(__clang__)) && (defined(__x86_64__) || defined(__i386__))
#define TARN_XTEA_X86 1
#include <immintrin.h>
#if defined(__i386__)
// A 32-bit caller may hand over a stack aligned to 4 bytes only; vector spills need more.
#define TARN_XTEA_REALIGN __attribute__((force_align_arg_pointer))
#else
#define TARN_XTEA_REALIGN
#endif
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

// ---- SSE2: four blocks per register, two registers pairs in flight -----------------------------

__attribute__((target("sse2"))) inline __m128i mix128(__m128i v) {
    return _mm_add_epi32(_mm_xor_si128(_mm_slli_epi32(v, 4), _mm_srli_epi32(v, 5)), v);
}

__attribute__((target("sse2"))) inline __m128i splat128(std::uint32_t word) {
    return _mm_set1_epi32(static_cast<int>(word));
}

__attribute__((target("sse2"))) TARN_XTEA_REALIGN void
xteaBlocksSse2Impl(unsigned int rounds, const unsigned char *input, unsigned char *output, std::size_t blocks,
                   const std::uint32_t *key, bool encipher) {
    if (rounds > kMaxScheduledRounds) {
        xteaBlocksPortable(rounds, input, output, blocks, key, encipher);
        return;
    }
    std::uint32_t schedule[2 * kMaxScheduledRounds];
    xteaSchedule(rounds, key, schedule);
    constexpr std::size_t kStep = 8;
    std::size_t b = 0;
    for (; b + kStep <= blocks; b += kStep) {
        const unsigned char *in = input + b * kBlockBytes;
        // Load eight blocks into four registers and split them into first words (a0, c0) and
        // second words (a1, c1).
        const __m128 r0 = _mm_castsi128_ps(_mm_loadu_si128(reinterpret_cast<const __m128i *>(in)));
        const __m128 r1 = _mm_castsi128_ps(_mm_loadu_si128(reinterpret_cast<const __m128i *>(in + 16)));
        const __m128 r2 = _mm_castsi128_ps(_mm_loadu_si128(reinterpret_cast<const __m128i *>(in + 32)));
        const __m128 r3 = _mm_castsi128_ps(_mm_loadu_si128(reinterpret_cast<const __m128i *>(in + 48)));
        __m128i a0 = _mm_castps_si128(_mm_shuffle_ps(r0, r1, _MM_SHUFFLE(2, 0, 2, 0)));
        __m128i a1 = _mm_castps_si128(_mm_shuffle_ps(r0, r1, _MM_SHUFFLE(3, 1, 3, 1)));
        __m128i c0 = _mm_castps_si128(_mm_shuffle_ps(r2, r3, _MM_SHUFFLE(2, 0, 2, 0)));
        __m128i c1 = _mm_castps_si128(_mm_shuffle_ps(r2, r3, _MM_SHUFFLE(3, 1, 3, 1)));
        if (encipher) {
            for (unsigned int r = 0; r < rounds; ++r) {
                const __m128i k0 = splat128(schedule[2 * r]);
                const __m128i k1 = splat128(schedule[2 * r + 1]);
                a0 = _mm_add_epi32(a0, _mm_xor_si128(mix128(a1), k0));
                c0 = _mm_add_epi32(c0, _mm_xor_si128(mix128(c1), k0));
                a1 = _mm_add_epi32(a1, _mm_xor_si128(mix128(a0), k1));
                c1 = _mm_add_epi32(c1, _mm_xor_si128(mix128(c0), k1));
            }
        } else {
            for (unsigned int r = rounds; r-- > 0;) {
                const __m128i k0 = splat128(schedule[2 * r]);
                const __m128i k1 = splat128(schedule[2 * r + 1]);
                a1 = _mm_sub_epi32(a1, _mm_xor_si128(mix128(a0), k1));
                c1 = _mm_sub_epi32(c1, _mm_xor_si128(mix128(c0), k1));
                a0 = _mm_sub_epi32(a0, _mm_xor_si128(mix128(a1), k0));
                c0 = _mm_sub_epi32(c0, _mm_xor_si128(mix128(c1), k0));
            }
        }
        // Interleave the words back into blocks; all eight were read before any is written.
        unsigned char *out = output + b * kBlockBytes;
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out), _mm_unpacklo_epi32(a0, a1));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + 16), _mm_unpackhi_epi32(a0, a1));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + 32), _mm_unpacklo_epi32(c0, c1));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + 48), _mm_unpackhi_epi32(c0, c1));
    }
    xteaBlocksOneByOne(rounds, input + b * kBlockBytes, output + b * kBlockBytes, blocks - b, key, encipher);
}

// ---- AVX2: eight blocks per register, two register pairs in flight -----------------------------

__attribute__((target("avx2"))) inline __m256i mix256(__m256i v) {
    return _mm256_add_epi32(_mm256_xor_si256(_mm256_slli_epi32(v, 4), _mm256_srli_epi32(v, 5)), v);
}

__attribute__((target("avx2"))) inline __m256i splat256(std::uint32_t word) {
    return _mm256_set1_epi32(static_cast<int>(word));
}

__attribute__((target("avx2"))) TARN_XTEA_REALIGN void
xteaBlocksAvx2Impl(unsigned int rounds, const unsigned char *input, unsigned char *output, std::size_t blocks,
                   const std::uint32_t *key, bool encipher) {
    if (rounds > kMaxScheduledRounds) {
        xteaBlocksPortable(rounds, input, output, blocks, key, encipher);
        return;
    }
    std::uint32_t schedule[2 * kMaxScheduledRounds];
    xteaSchedule(rounds, key, schedule);
    constexpr std::size_t kStep = 16;
    std::size_t b = 0;
    for (; b + kStep <= blocks; b += kStep) {
        const unsigned char *in = input + b * kBlockBytes;
        // The shuffles work within each 128-bit half, so the lanes come out in a mixed order;
        // the unpacks below restore exactly the order the loads had.
        const __m256 r0 = _mm256_castsi256_ps(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(in)));
        const __m256 r1 = _mm256_castsi256_ps(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(in + 32)));
        const __m256 r2 = _mm256_castsi256_ps(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(in + 64)));
        const __m256 r3 = _mm256_castsi256_ps(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(in + 96)));
        __m256i a0 = _mm256_castps_si256(_mm256_shuffle_ps(r0, r1, _MM_SHUFFLE(2, 0, 2, 0)));
        __m256i a1 = _mm256_castps_si256(_mm256_shuffle_ps(r0, r1, _MM_SHUFFLE(3, 1, 3, 1)));
        __m256i c0 = _mm256_castps_si256(_mm256_shuffle_ps(r2, r3, _MM_SHUFFLE(2, 0, 2, 0)));
        __m256i c1 = _mm256_castps_si256(_mm256_shuffle_ps(r2, r3, _MM_SHUFFLE(3, 1, 3, 1)));
        if (encipher) {
            for (unsigned int r = 0; r < rounds; ++r) {
                const __m256i k0 = splat256(schedule[2 * r]);
                const __m256i k1 = splat256(schedule[2 * r + 1]);
                a0 = _mm256_add_epi32(a0, _mm256_xor_si256(mix256(a1), k0));
                c0 = _mm256_add_epi32(c0, _mm256_xor_si256(mix256(c1), k0));
                a1 = _mm256_add_epi32(a1, _mm256_xor_si256(mix256(a0), k1));
                c1 = _mm256_add_epi32(c1, _mm256_xor_si256(mix256(c0), k1));
            }
        } else {
            for (unsigned int r = rounds; r-- > 0;) {
                const __m256i k0 = splat256(schedule[2 * r]);
                const __m256i k1 = splat256(schedule[2 * r + 1]);
                a1 = _mm256_sub_epi32(a1, _mm256_xor_si256(mix256(a0), k1));
                c1 = _mm256_sub_epi32(c1, _mm256_xor_si256(mix256(c0), k1));
                a0 = _mm256_sub_epi32(a0, _mm256_xor_si256(mix256(a1), k0));
                c0 = _mm256_sub_epi32(c0, _mm256_xor_si256(mix256(c1), k0));
            }
        }
        unsigned char *out = output + b * kBlockBytes;
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out), _mm256_unpacklo_epi32(a0, a1));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out + 32), _mm256_unpackhi_epi32(a0, a1));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out + 64), _mm256_unpacklo_epi32(c0, c1));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out + 96), _mm256_unpackhi_epi32(c0, c1));
    }
    xteaBlocksOneByOne(rounds, input + b * kBlockBytes, output + b * kBlockBytes, blocks - b, key, encipher);
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

bool cpuHasSse2() {
    __builtin_cpu_init();
    return __builtin_cpu_supports("sse2");
}

bool cpuHasAvx2() {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2");
}
#else
const XteaBlocksKernel xteaBlocksSse2 = nullptr;
const XteaBlocksKernel xteaBlocksAvx2 = nullptr;

bool cpuHasSse2() {
    return false;
}

bool cpuHasAvx2() {
    return false;
}
#endif

XteaBlocksKernel bestXteaBlocksKernel() {
    static const XteaBlocksKernel best = cpuHasAvx2()   ? xteaBlocksAvx2
                                         : cpuHasSse2() ? xteaBlocksSse2
                                                        : &xteaBlocksPortable;
    return best;
}

} // namespace crypt
} // namespace tarn
