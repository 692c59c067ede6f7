// TarnCrypt: RC4 key stream and encryption, XTEA on one block and on buffers of blocks.
#include "tarn/crypt/TarnCrypt.h"

#include "crypt/TarnXteaKernels.h"

#include <cstddef>
#include <cstring>
#include <functional>

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

// True when [a, a + length) and [b, b + length) share a byte. std::less gives a total order even
// for pointers into different buffers.
bool overlaps(const unsigned char *a, const unsigned char *b, std::size_t length) {
    const std::less<const unsigned char *> below;
    return below(a, b + length) && below(b, a + length);
}

// The state's entries are kept in 32-bit cells (their values stay below 256): on the processors
// measured, the table runs faster in whole words than in bytes.
using Rc4Cell = std::uint32_t;
using Rc4Table = Rc4Cell[256];
// Key stream bytes are gathered in one machine word and meet the data a word at a time.
using Rc4Word = std::size_t;
constexpr unsigned int kRc4WordBytes = sizeof(Rc4Word);
// Steps whose entries at the index i are loaded together, ahead of the swaps that could change them.
constexpr unsigned int kRc4Group = 4;
static_assert(kRc4WordBytes % kRc4Group == 0, "a word holds whole groups");

// Fills `table` by the key scheduling: the identity permutation mixed with the key repeated to
// 256 bytes (a longer key counts only up to its 256th byte).
void rc4Schedule(Rc4Table &table, const unsigned char *key, unsigned int keyLength) {
    for (unsigned int n = 0; n < 256; ++n) {
        table[n] = n;
    }
    unsigned int j = 0;
    for (unsigned int n = 0; n < 256; ++n) {
        const Rc4Cell entry = table[n];
        j = (j + entry + key[n % keyLength]) & 0xFFu;
        table[n] = table[j];
        table[j] = entry;
    }
}

// One step of generation: advances i, swaps the entries at i and j, and returns the entry that
// their sum points at.
inline unsigned char rc4Step(Rc4Table &table, unsigned int &i, unsigned int &j) {
    i = (i + 1) & 0xFFu;
    const Rc4Cell si = table[i];
    j = (j + si) & 0xFFu;
    const Rc4Cell sj = table[j];
    table[i] = sj;
    table[j] = si;
    return static_cast<unsigned char>(table[(si + sj) & 0xFFu]);
}

// Bit position in a word of the key stream byte that lands at byte `n` of memory.
constexpr unsigned int rc4Shift(unsigned int n) {
#if defined(__BYTE_ORDER__) && defined(__ORDER_BIG_ENDIAN__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    return 8 * (kRc4WordBytes - 1 - n);
#else
    return 8 * n;
#endif
}

// Writes `length` bytes of the key stream of `key` to `out`, exclusive-or the bytes of `data` when
// `Combine` is set (`data` is not read otherwise). `out` may equal `data`; no other overlap.
//
// The index i runs through the table in steps of one, so the entries at i for the next few steps
// are known in advance and are loaded together, before the swaps of those steps: the chain from
// one step to the next is then one addition to j instead of a load that waits for the previous
// step's stores. A swap whose j lands on an entry loaded ahead for a later step of the same group
// makes that load stale; the rest of the group then reloads its entries one by one. Groups start
// at a multiple of kRc4Group, so a group's entries never wrap around the table's end.
template <bool Combine>
void rc4Run(const unsigned char *key, unsigned int keyLength, const unsigned char *data, unsigned char *out,
            std::size_t length) {
    Rc4Table table;
    rc4Schedule(table, key, keyLength);
    unsigned int i = 0;
    unsigned int j = 0;
    std::size_t done = 0;
    // Single steps until the next i starts a group.
    for (; done < length && ((i + 1) % kRc4Group) != 0; ++done) {
        const unsigned char k = rc4Step(table, i, j);
        out[done] = Combine ? static_cast<unsigned char>(data[done] ^ k) : k;
    }
    for (; length - done >= kRc4WordBytes; done += kRc4WordBytes) {
        Rc4Word stream = 0;
        for (unsigned int g = 0; g < kRc4WordBytes; g += kRc4Group) {
            const unsigned int first = (i + 1) & 0xFFu;
            Rc4Cell ahead[kRc4Group];
            for (unsigned int b = 0; b < kRc4Group; ++b) {
                ahead[b] = table[first + b];
            }
            unsigned int b = 0;
            for (; b < kRc4Group; ++b) {
                const unsigned int at = first + b;
                const Rc4Cell si = ahead[b];
                j = (j + si) & 0xFFu;
                const Rc4Cell sj = table[j];
                table[at] = sj;
                table[j] = si;
                stream |= static_cast<Rc4Word>(table[(si + sj) & 0xFFu]) << rc4Shift(g + b);
                // j in (at, first + kRc4Group): a later step's entry was loaded before this swap.
                if (j - at - 1 < kRc4Group - 1 - b) {
                    ++b;
                    break;
                }
            }
            for (; b < kRc4Group; ++b) {
                const unsigned int at = first + b;
                const Rc4Cell si = table[at];
                j = (j + si) & 0xFFu;
                const Rc4Cell sj = table[j];
                table[at] = sj;
                table[j] = si;
                stream |= static_cast<Rc4Word>(table[(si + sj) & 0xFFu]) << rc4Shift(g + b);
            }
            i = first + kRc4Group - 1;
        }
        if constexpr (Combine) {
            Rc4Word word;
            std::memcpy(&word, data + done, kRc4WordBytes);
            stream ^= word;
        }
        std::memcpy(out + done, &stream, kRc4WordBytes);
    }
    for (; done < length; ++done) {
        const unsigned char k = rc4Step(table, i, j);
        out[done] = Combine ? static_cast<unsigned char>(data[done] ^ k) : k;
    }
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
    rc4Run<false>(key, static_cast<unsigned int>(keyLength), nullptr, stream,
                  static_cast<std::size_t>(streamLength));
}

void TarnCrypt::rc4Encrypt(const unsigned char *key, int keyLength, const unsigned char *data, int dataLength,
                           unsigned char *output) {
    if (key == nullptr || keyLength < 1 || data == nullptr || output == nullptr || dataLength < 1) {
        return;
    }
    const std::size_t length = static_cast<std::size_t>(dataLength);
    // The key stream meets the data word by word as it is made, reading each word of data just
    // before writing the same word of output: that is safe in place. When the two overlap
    // otherwise, the data is first moved to the output and enciphered there.
    if (output != data && overlaps(data, output, length)) {
        std::memmove(output, data, length);
        data = output;
    }
    rc4Run<true>(key, static_cast<unsigned int>(keyLength), data, output, length);
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
