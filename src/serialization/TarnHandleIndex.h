// A hash index over the sorted handle table, for tables without a repeated old address.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarn {

/// An open-addressing index from old address to table position. It is built only when every old
/// address stands once: then any search finds the same pair, and a lookup costs about one probe
/// instead of a binary search's log2 n. Where an address repeats, the binary search's probe order
/// decides which pair answers, and the index is not used. Probing is bounded: when some address
/// needs more than kMaxProbes slots (addresses chosen to collide), building fails and lookups go
/// by binary search, so no text makes a lookup slow.
class HandleIndex {
public:
    /// Result of find for an address that is not in the table.
    static constexpr std::size_t kAbsent = ~std::size_t(0);

    /// Indexes the `count` keys that `key(i)` gives. Returns false, leaving the index unusable,
    /// when the table is too large or some address collides too often.
    template <class Key>
    bool build(std::size_t count, Key key) {
        usable = false;
        if (count == 0 || count > (std::size_t(1) << 26)) {
            return false;
        }
        shift = 64;
        while ((std::uint64_t(1) << (64 - shift)) < 2 * count) {
            --shift;
        }
        slots.assign(std::size_t(1) << (64 - shift), 0);
        for (std::size_t position = 0; position < count; ++position) {
            if (!insert(key(position), static_cast<std::uint32_t>(position))) {
                return false;
            }
        }
        usable = true;
        return true;
    }

    /// Forgets the index; lookups then go by binary search until the next build.
    void clear() { usable = false; }

    /// Returns true when the last build succeeded and nothing cleared it since.
    bool isUsable() const { return usable; }

    /// Returns the table position of `address`, or kAbsent. `keyAt(position)` gives the key at a
    /// position, to tell a hit from a slot that another address took.
    template <class Key>
    std::size_t find(std::uintptr_t address, Key keyAt) const {
        std::size_t slot = home(address);
        for (int probe = 0; probe < kMaxProbes; ++probe, slot = (slot + 1) & (slots.size() - 1)) {
            const std::uint32_t entry = slots[slot];
            if (entry == 0) {
                return kAbsent;
            }
            if (keyAt(entry - 1) == address) {
                return entry - 1;
            }
        }
        return kAbsent;
    }

private:
    static constexpr int kMaxProbes = 32;

    // Fibonacci hashing: the top bits of the address times 2^64 divided by the golden ratio.
    std::size_t home(std::uintptr_t address) const {
        return static_cast<std::size_t>((static_cast<std::uint64_t>(address) * 0x9E3779B97F4A7C15ull) >>
                                        shift);
    }

    bool insert(std::uintptr_t address, std::uint32_t position) {
        std::size_t slot = home(address);
        for (int probe = 0; probe < kMaxProbes; ++probe, slot = (slot + 1) & (slots.size() - 1)) {
            if (slots[slot] == 0) {
                slots[slot] = position + 1;
                return true;
            }
        }
        return false;
    }

    std::vector<std::uint32_t> slots; // table position + 1 of the address homed here; 0 for none
    int shift = 64;
    bool usable = false;
};

} // namespace tarn
