// Internal: checked sizing and all-or-nothing allocation of a matrix's element block and row table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>

namespace tarn {
namespace linalg {

/// The two arrays of a matrix while they are being made: owned here until `commit` hands them to
/// the matrix, and released here if anything throws before that.
struct MatrixArrays {
    std::unique_ptr<double[]> elements;
    std::unique_ptr<double *[]> rowTable;

    /// Releases `elements` and `rowTable`, then gives them this block and table; never throws.
    void commit(double *&elements, double **&rowTable) noexcept {
        delete[] elements;
        delete[] rowTable;
        elements = this->elements.release();
        rowTable = this->rowTable.release();
    }
};

/// Returns `count` as a size when `count` objects of `Size` bytes fit in one allocation. Throws
/// std::bad_array_new_length otherwise, as the allocation itself would, but before any size is
/// computed that could wrap: on a 32-bit build 2147483647 x 2147483647 elements must fail, not
/// wrap to a small block.
template <std::size_t Size>
std::size_t checkedCount(std::uint64_t count) {
    constexpr std::uint64_t limit =
        static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max()) / Size;
    if (count > limit) {
        throw std::bad_array_new_length();
    }
    return static_cast<std::size_t>(count);
}

/// Allocates a block of `count` doubles, all 0.0, and a table of `rows` row pointers, not yet
/// filled. Either allocation may throw; then nothing is left allocated.
inline MatrixArrays allocateArrays(std::uint64_t count, std::int32_t rows) {
    MatrixArrays arrays;
    arrays.elements.reset(new double[checkedCount<sizeof(double)>(count)]());
    arrays.rowTable.reset(new double *[checkedCount<sizeof(double *)>(static_cast<std::uint64_t>(rows))]);
    return arrays;
}

} // namespace linalg
} // namespace tarn
