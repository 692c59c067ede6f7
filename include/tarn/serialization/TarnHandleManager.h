/// \file
/// TarnHandleManager: the table that maps stored addresses to the objects a restore has made.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnString.h"
#include "tarn/foundation/TarnVector.h"

class TarnSerializable;

/// A table of pairs of addresses: the old address an object had when it was stored, and the new
/// object that a restore made for it. A restore registers every pair first; the first lookup then
/// sorts the table by old address, once, and each lookup is a binary search. Old addresses are
/// only numbers here, compared as unsigned integers of pointer width, and are never followed.
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
    /// order; reset does not empty this record.
    const TarnVector<TarnString> &getClassNames() const;

private:
    /// Sorts all pairs by old address when there are at least 2, and marks the table sorted.
    void sort();
    /// Sorts the pairs `first` to `last` inclusive by old address, in place.
    void quickSort(int first, int last);

    TarnVector<TarnPointer> newPointers; ///< The new address of each pair.
    TarnVector<TarnPointer> oldPointers; ///< The old address of each pair, at the index of its new one.
    TarnVector<TarnString> classNames;   ///< The class of every registration since construction.
    bool sorted;                         ///< True when oldPointers is known to be in ascending order.
};
