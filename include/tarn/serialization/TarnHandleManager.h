/// \file
/// TarnHandleManager: the table that maps stored addresses to the objects a restore has made.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnString.h"
#include "tarn/foundation/TarnVector.h"

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

class TarnSerializable;
namespace tarn {
class HandleIndex;
}

/// A table of pairs of addresses: the old address an object had when it was stored, and the new
/// object that a restore made for it. A restore registers every pair first; the first lookup then
/// sorts the table by old address, once, in O(n log n) whatever the addresses, and each lookup is
/// a binary search, or a hash probe while no old address repeats (both find the same pair). Old
/// addresses are only numbers here, compared as unsigned integers of pointer width, and are never
/// followed.
/// Beside the table the manager keeps a record of the class of every registration since it was
/// made; reset leaves the record alone, so it grows for the life of the manager, by one small
/// index per registration (each distinct class name is held once). A long-running program
/// empties it by assigning a new manager outside a restore:
/// `TarnSerializable::handleManager = TarnHandleManager();`.
/// The library's shared instance is TarnSerializable::handleManager. No locks: even lookups
/// change the table (they sort it), so one thread at a time. A lookup that misses gives null.
class TARN_API TarnHandleManager {
public:
    /// Makes an empty, unsorted table.
    TarnHandleManager();
    /// Copies the pairs, the class names and the sorted mark of `other`.
    TarnHandleManager(const TarnHandleManager &other);
    /// Replaces this table by a copy of `other`.
    TarnHandleManager &operator=(const TarnHandleManager &other);
    /// Releases the pairs and the class names.
    ~TarnHandleManager();

    /// Appends the pair (`oldPointer`, `newPointer`) and the class name of `newPointer` (the empty
    /// name for null); `oldPointer` may be anything, null included, and may repeat. The table is
    /// unsorted afterwards. Returns true.
    bool registerPointers(TarnSerializable *oldPointer, TarnSerializable *newPointer);
    /// Returns the new address paired with `oldPointer`, or null when there is none. Sorts the
    /// table first if it holds at least 2 pairs and is not known to be sorted. Where an old address
    /// stands twice, the probe order decides which of its pairs answers.
    TarnSerializable *getNewPointer(TarnSerializable *oldPointer);
    /// Empties the table of pairs. The record of class names stays, and so does the sorted mark.
    void reset();
    /// Destroys this manager, which must have been made by new; it must not be used afterwards.
    void dispose();

    /// Returns the number of pairs in the table.
    unsigned int getCount() const;
    /// Returns true when the table is known to be in ascending order of old address.
    bool isSorted() const;
    /// Returns the class names of all registered objects since construction, in registration
    /// order; reset does not empty this record. The strings of the registrations since the last
    /// call are made on this call.
    const TarnVector<TarnString> &getClassNames() const;

private:
    /// One pair of the table: the stored address, as a number, and the object made for it.
    struct Pair {
        std::uintptr_t oldAddress;
        TarnSerializable *newPointer;
    };

    /// Sorts all pairs by old address when there are at least 2, and marks the table sorted.
    void sort();
    /// Indexes the sorted pairs by hash when no old address repeats.
    void buildIndex();
    /// Appends the index of `name` in the table of distinct class names to the record.
    void recordClassName(const std::string &name);

    std::vector<Pair> pairs;                ///< The table, in registration or address order.
    std::vector<std::uint32_t> classRecord; ///< Per registration: index into classTable.
    std::vector<std::string> classTable;    ///< Each distinct class name once.
    std::unordered_map<std::string, std::uint32_t> classIndex; ///< Name to its index in classTable.
    mutable TarnVector<TarnString> classNames; ///< The record as strings, made by getClassNames.
    bool sorted;                               ///< True when pairs are known to be in address order.
    /// A hash index over the sorted pairs when no old address repeats; lookups without it take
    /// the binary search. Not copied: a copy searches by binary search until it sorts again.
    std::unique_ptr<tarn::HandleIndex> index;
};
