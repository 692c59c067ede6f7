// The sort of the handle table: quicksort around the middle element, bounded by a heap sort.
#pragma once

#include <cstdint>

namespace tarn {

/// Sorts entries `first` to `last` inclusive of `table` by key, in place and not stable. `Table`
/// gives `std::uintptr_t key(int index)` and `void swap(int a, int b)`, which exchanges two entries
/// whole. Ordinary input takes a quicksort that partitions from both ends around the middle
/// element's key; a text can order its addresses so that every such pivot is the smallest key
/// left, which makes the quicksort quadratic. Past a partition depth of twice log2 of the count,
/// the range left is therefore heap sorted: the worst case stays O(n log n), and the call depth
/// below log2 n, whatever the keys.
template <class Table>
class HandleSort {
public:
    /// Sorts entries `first` to `last` of `table`; a range of fewer than two entries is left alone.
    static void sort(Table &table, int first, int last) {
        if (first < last) {
            quickSort(table, first, last, 2 * floorLog2(static_cast<std::uint32_t>(last - first + 1)));
        }
    }

private:
    static int floorLog2(std::uint32_t count) {
        int log = 0;
        while (count > 1) {
            count >>= 1;
            ++log;
        }
        return log;
    }

    // Of the two parts of a partition the smaller is sorted by a call and the larger by the loop.
    static void quickSort(Table &table, int first, int last, int depthLeft) {
        while (first < last) {
            if (depthLeft-- == 0) {
                heapSort(table, first, last);
                return;
            }
            int i = first;
            int j = last;
            partition(table, i, j);
            // Now [first, j] holds no key above the pivot and [i, last] none below it.
            if (j - first < last - i) {
                quickSort(table, first, j, depthLeft);
                first = i;
            } else {
                quickSort(table, i, last, depthLeft);
                last = j;
            }
        }
    }

    // Partitions `i` to `j` (on entry the range) around the key of the middle entry, which stays
    // the pivot value for the whole pass; on return j < i.
    static void partition(Table &table, int &i, int &j) {
        const std::uintptr_t pivot = table.key(i + (j - i) / 2);
        while (i <= j) {
            while (table.key(i) < pivot) {
                ++i;
            }
            while (table.key(j) > pivot) {
                --j;
            }
            if (i <= j) {
                table.swap(i++, j--);
            }
        }
    }

    // A max-heap over `first` to `last`, with entry first + k the node k.
    static void heapSort(Table &table, int first, int last) {
        const int count = last - first + 1;
        for (int node = count / 2 - 1; node >= 0; --node) {
            siftDown(table, first, node, count);
        }
        for (int end = count - 1; end > 0; --end) {
            table.swap(first, first + end);
            siftDown(table, first, 0, end);
        }
    }

    // Moves node `node` down the heap of the first `count` entries behind `first` until neither
    // child has a larger key.
    static void siftDown(Table &table, int first, int node, int count) {
        for (;;) {
            int largest = node;
            const int left = 2 * node + 1;
            if (left < count && table.key(first + left) > table.key(first + largest)) {
                largest = left;
            }
            if (left + 1 < count && table.key(first + left + 1) > table.key(first + largest)) {
                largest = left + 1;
            }
            if (largest == node) {
                return;
            }
            table.swap(first + node, first + largest);
            node = largest;
        }
    }
};

} // namespace tarn
