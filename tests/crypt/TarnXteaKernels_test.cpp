// Tests of the XTEA multi-block kernels and xteaBlock: each gives exactly what the one-block routine gives.
#include "crypt/TarnXteaKernels.h"
#include "foundation/TarnProcessor.h"

#include <tarn/tarn.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;
using tarn::crypt::XteaBlocksKernel;

struct NamedKernel {
    const char *name;
    XteaBlocksKernel kernel;
};

// The kernels this build and processor can run.
std::vector<NamedKernel> runnableKernels() {
    std::vector<NamedKernel> kernels = {{"portable", &tarn::crypt::xteaBlocksPortable}};
    if (tarn::crypt::xteaBlocksSse2 != nullptr && tarn::processorRuns(tarn::KernelPath::sse2)) {
        kernels.push_back({"sse2", tarn::crypt::xteaBlocksSse2});
    }
    if (tarn::crypt::xteaBlocksAvx2 != nullptr && tarn::processorRuns(tarn::KernelPath::avx2)) {
        kernels.push_back({"avx2", tarn::crypt::xteaBlocksAvx2});
    }
    return kernels;
}

// The reference: every block through the public one-block routine, words in machine order.
Bytes oneBlockAtATime(unsigned int rounds, const Bytes &input, const std::uint32_t *key, bool encipher) {
    Bytes output(input.size());
    for (std::size_t at = 0; at + 8 <= input.size(); at += 8) {
        std::uint32_t words[2];
        std::memcpy(words, &input[at], 8);
        if (encipher) {
            TarnCrypt::xteaEncipher(rounds, words, words, key);
        } else {
            TarnCrypt::xteaDecipher(rounds, words, words, key);
        }
        std::memcpy(&output[at], words, 8);
    }
    return output;
}

TEST(TarnXteaKernelsTest, EveryKernelAndXteaBlockMatchTheOneBlockRoutineOnRandomInput) {
    const unsigned seed = 20261123u;
    std::mt19937 random(seed);
    const std::vector<NamedKernel> kernels = runnableKernels();
    // Lengths around every kernel's step (4, 8 and 16 blocks) and tails of each size.
    const std::size_t blockCounts[] = {0, 1, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 47, 100, 257};
    const unsigned int roundCounts[] = {0, 1, 2, 31, 32, 33, 64, 65, 100};
    for (int trial = 0; trial < 12; ++trial) {
        std::uint32_t key[4];
        for (std::uint32_t &word : key) {
            word = static_cast<std::uint32_t>(random());
        }
        for (std::size_t blocks : blockCounts) {
            // One spare byte in front so that the blocks start off any natural alignment.
            Bytes buffer(blocks * 8 + 1);
            for (unsigned char &b : buffer) {
                b = static_cast<unsigned char>(random());
            }
            const Bytes input(buffer.begin() + 1, buffer.end());
            for (unsigned int rounds : roundCounts) {
                for (bool encipher : {true, false}) {
                    const Bytes expected = oneBlockAtATime(rounds, input, key, encipher);
                    // The public routine, through the kernel it picks for this processor.
                    Bytes viaBlock(input.size());
                    ASSERT_TRUE(TarnCrypt::xteaBlock(rounds, input.data(),
                                                     static_cast<unsigned int>(input.size()), viaBlock.data(),
                                                     key, encipher));
                    EXPECT_EQ(viaBlock, expected) << "xteaBlock, seed " << seed << ", trial " << trial;
                    for (const NamedKernel &k : kernels) {
                        Bytes out(blocks * 8 + 1, 0);
                        k.kernel(rounds, buffer.data() + 1, out.data() + 1, blocks, key, encipher);
                        EXPECT_EQ(Bytes(out.begin() + 1, out.end()), expected)
                            << k.name << ", seed " << seed << ", trial " << trial << ", blocks " << blocks
                            << ", rounds " << rounds << (encipher ? ", enciphering" : ", deciphering");
                        // In place as well.
                        Bytes inPlace = buffer;
                        k.kernel(rounds, inPlace.data() + 1, inPlace.data() + 1, blocks, key, encipher);
                        EXPECT_EQ(Bytes(inPlace.begin() + 1, inPlace.end()), expected)
                            << k.name << " in place, seed " << seed << ", trial " << trial;
                    }
                }
            }
        }
    }
}

// The XTEA kernels take their path from the library's one processor check, limit included: the
// limit is how the other tests run each path through the public routines.
TEST(TarnXteaKernelsTest, TheChosenKernelFollowsTheProcessorCheckAndItsLimit) {
    using tarn::KernelPath;
    const struct {
        KernelPath limit;
        XteaBlocksKernel expected;
    } cases[] = {{KernelPath::portable, &tarn::crypt::xteaBlocksPortable},
                 {KernelPath::sse2, tarn::crypt::xteaBlocksSse2},
                 {KernelPath::avx2, tarn::crypt::xteaBlocksAvx2},
                 {KernelPath::avx512, tarn::crypt::xteaBlocksAvx2}};
    for (const auto &c : cases) {
        tarn::limitKernelPath(c.limit);
        if (tarn::processorRuns(c.limit)) {
            EXPECT_EQ(tarn::kernelPath(), c.limit);
            EXPECT_EQ(tarn::crypt::bestXteaBlocksKernel(), c.expected) << static_cast<int>(c.limit);
        } else {
            EXPECT_LT(static_cast<int>(tarn::kernelPath()), static_cast<int>(c.limit));
        }
    }
    tarn::limitKernelPath(KernelPath::avx512);
}

} // namespace
