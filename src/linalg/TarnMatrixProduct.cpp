// The dense product: one portable driver that blocks over columns, k and rows for the caches and
// packs panels, around the register-tile micro-kernel of the processor's path.
#include "foundation/TarnProcessor.h"
#include "linalg/TarnMatrixKernels.h"
#include "linalg/TarnMicroKernel.h"

#include <algorithm>
#include <cstdint>
#include <memory>

namespace tarn {
namespace linalg {
namespace {

// Cache blocks: a packed block of the right factor (kDepthBlock x kColBlock) is walked by every
// row block; a packed row block of the left factor (kRowBlock x kDepthBlock) stays in the
// second-level cache while each column sliver of the right block (kDepthBlock x tile columns)
// stays in the first. The column block is a multiple of every tile's width, and the row block is
// cut to a multiple of the tile's height.
constexpr std::ptrdiff_t kDepthBlock = 256;
constexpr int kRowBlock = 128;
constexpr int kColBlock = 2048;
// The most elements of a right factor that the tiles read in place, unpacked: 32 KiB.
constexpr std::ptrdiff_t kSmallRightFactor = 4096;

// A factor read in place: element (i, k) lies at data[i * rowStride + k * colStride].
struct Operand {
    const double *data;
    std::ptrdiff_t rowStride;
    std::ptrdiff_t colStride;

    const double *at(std::ptrdiff_t row, std::ptrdiff_t col) const {
        return data + row * rowStride + col * colStride;
    }
};

const MicroKernel &activeKernel() {
    switch (kernelPath()) {
    case KernelPath::avx512:
        return microKernelAvx512;
    case KernelPath::avx2:
        return microKernelAvx2;
    case KernelPath::sse2:
        return microKernelSse2;
    default:
        return microKernelPortable;
    }
}

std::ptrdiff_t roundUp(std::ptrdiff_t count, int multiple) {
    return (count + multiple - 1) / multiple * multiple;
}

// Two doubles: the packing of full slivers moves pairs of rows two steps at a time.
typedef double Pair __attribute__((vector_size(2 * sizeof(double))));
typedef long long PairIndex __attribute__((vector_size(2 * sizeof(long long))));

inline Pair loadPair(const double *source) {
    Pair pair;
    __builtin_memcpy(&pair, source, sizeof pair);
    return pair;
}

inline void storePair(double *target, Pair pair) {
    __builtin_memcpy(target, &pair, sizeof pair);
}

// A full sliver of Height contiguous rows: rows r and r + 1 at steps k and k + 1 are a 2 x 2 block,
// read as two pairs and written transposed.
template <int Height>
void packFullSliver(const double *const *source, std::ptrdiff_t depth, double *out) {
    std::ptrdiff_t k = 0;
    for (; k + 2 <= depth; k += 2) {
        for (int r = 0; r < Height; r += 2) {
            const Pair upper = loadPair(source[r] + k);
            const Pair lower = loadPair(source[r + 1] + k);
            storePair(out + k * Height + r, __builtin_shuffle(upper, lower, PairIndex{0, 2}));
            storePair(out + (k + 1) * Height + r, __builtin_shuffle(upper, lower, PairIndex{1, 3}));
        }
    }
    for (; k < depth; ++k) {
        for (int r = 0; r < Height; ++r) {
            out[k * Height + r] = source[r][k];
        }
    }
}

// Packs `rows` rows of `depth` steps from `a` into slivers of Height rows, step-major inside a
// sliver; rows past the end are 0.0, and the tiles' results for them are discarded. The sliver
// height is a constant, so that the copy of one step unrolls.
template <int Height>
void packLeft(const Operand &a, int rows, std::ptrdiff_t depth, double *out) {
    for (int first = 0; first < rows; first += Height, out += depth * Height) {
        const int present = std::min(Height, rows - first);
        const double *source[Height];
        for (int r = 0; r < Height; ++r) {
            source[r] = a.at(first + std::min(r, present - 1), 0);
        }
        if (present == Height && a.colStride == 1) {
            packFullSliver<Height>(source, depth, out);
            continue;
        }
        for (std::ptrdiff_t k = 0; k < depth; ++k) {
            const std::ptrdiff_t offset = k * a.colStride;
            for (int r = 0; r < Height; ++r) {
                out[k * Height + r] = r < present ? source[r][offset] : 0.0;
            }
        }
    }
}

// Packs `depth` steps of `cols` columns from `b` into slivers of Width columns, step-major; the
// columns past the end are 0.0.
template <int Width>
void packRight(const Operand &b, std::ptrdiff_t depth, int cols, double *out) {
    for (int first = 0; first < cols; first += Width) {
        const int present = std::min(Width, cols - first);
        for (std::ptrdiff_t k = 0; k < depth; ++k, out += Width) {
            const double *source = b.at(k, first);
            if (present == Width && b.colStride == 1) {
                // A copy of constant length between blocks that never overlap: inline vector moves.
                __builtin_memcpy(out, source, Width * sizeof(double));
                continue;
            }
            int q = 0;
            for (; q < present; ++q) {
                out[q] = source[q * b.colStride];
            }
            for (; q < Width; ++q) {
                out[q] = 0.0;
            }
        }
    }
}

void packLeft(const Operand &a, int rows, std::ptrdiff_t depth, int height, double *out) {
    switch (height) {
    case 8:
        return packLeft<8>(a, rows, depth, out);
    case 6:
        return packLeft<6>(a, rows, depth, out);
    default:
        return packLeft<4>(a, rows, depth, out);
    }
}

void packRight(const Operand &b, std::ptrdiff_t depth, int cols, int width, double *out) {
    switch (width) {
    case 16:
        return packRight<16>(b, depth, cols, out);
    case 8:
        return packRight<8>(b, depth, cols, out);
    default:
        return packRight<4>(b, depth, cols, out);
    }
}

// Where the tiles read the right factor: sliver j (from column j) starts at data + j * perColumn,
// its steps ldb apart. A packed panel has perColumn = depth and ldb = the tile's width; a panel
// read in place has perColumn = 1 and its rows' distance as ldb.
struct RightPanel {
    const double *data;
    std::ptrdiff_t perColumn;
    std::ptrdiff_t ldb;
};

// The tiles of one packed row block against one column block. A tile cut short by the matrix's
// edge runs on a local tile and only its elements inside the matrix are copied.
void runTiles(const MicroKernel &kernel, const double *packedA, const RightPanel &panel, double *c,
              std::ptrdiff_t ldc, int rows, int cols, std::ptrdiff_t depth, bool accumulate) {
    double edge[kMaxTileElements] = {};
    for (int j = 0; j < cols; j += kernel.cols) {
        const int width = std::min(kernel.cols, cols - j);
        const double *b = panel.data + j * panel.perColumn;
        for (int i = 0; i < rows; i += kernel.rows) {
            const int height = std::min(kernel.rows, rows - i);
            const double *a = packedA + i * depth;
            double *tile = c + i * ldc + j;
            if (height == kernel.rows && width == kernel.cols) {
                kernel.run(depth, a, b, panel.ldb, tile, ldc, accumulate);
                continue;
            }
            for (int r = 0; r < height && accumulate; ++r) {
                std::copy(tile + r * ldc, tile + r * ldc + width, edge + r * kernel.cols);
            }
            kernel.run(depth, a, b, panel.ldb, edge, kernel.cols, accumulate);
            for (int r = 0; r < height; ++r) {
                std::copy(edge + r * kernel.cols, edge + r * kernel.cols + width, tile + r * ldc);
            }
        }
    }
}

// A 64-byte aligned scratch block of `count` doubles.
class Scratch {
public:
    explicit Scratch(std::ptrdiff_t count) : storage(new double[static_cast<std::size_t>(count) + 8]) {
        const auto address = reinterpret_cast<std::uintptr_t>(storage.get());
        start = storage.get() + ((64 - address % 64) % 64) / sizeof(double);
    }
    double *get() const { return start; }

private:
    std::unique_ptr<double[]> storage;
    double *start = nullptr;
};

// c (m x n, rows ldc apart) = a (m x depth) times b (depth x n). Each element is summed over k in
// rising order from 0.0, or with `accumulate` from the value c holds; a k block continues from the
// partial sums the previous one stored. With `bInPlace` (b's rows contiguous and readable a tile's
// width past n) the tiles read b where it lies instead of a packed copy.
void multiplyBlocked(const Operand &a, const Operand &b, double *c, std::ptrdiff_t ldc, int m, int n,
                     std::ptrdiff_t depth, bool accumulate = false, bool bInPlace = false) {
    if (m <= 0 || n <= 0 || (depth <= 0 && accumulate)) {
        return;
    }
    if (depth <= 0) {
        for (int i = 0; i < m; ++i) {
            std::fill(c + i * ldc, c + i * ldc + n, 0.0);
        }
        return;
    }
    const MicroKernel &kernel = activeKernel();
    // A right factor of whole slivers that fits the first-level cache is read where it lies: its
    // packing would cost more than the tiles save.
    bInPlace = bInPlace || (b.colStride == 1 && n % kernel.cols == 0 && depth * n <= kSmallRightFactor);
    const int rowBlock = kRowBlock - kRowBlock % kernel.rows;
    const std::ptrdiff_t kc = std::min(depth, kDepthBlock);
    const std::ptrdiff_t leftSize = roundUp(std::min(m, rowBlock), kernel.rows) * kc;
    Scratch scratch(leftSize + (bInPlace ? 0 : roundUp(std::min(n, kColBlock), kernel.cols) * kc));
    double *packedA = scratch.get();
    double *packedB = packedA + leftSize;
    for (int jc = 0; jc < n; jc += kColBlock) {
        const int cols = std::min(kColBlock, n - jc);
        for (std::ptrdiff_t pc = 0; pc < depth; pc += kDepthBlock) {
            const std::ptrdiff_t steps = std::min(kDepthBlock, depth - pc);
            RightPanel panel{b.at(pc, jc), 1, b.rowStride};
            if (!bInPlace) {
                packRight(Operand{b.at(pc, jc), b.rowStride, b.colStride}, steps, cols, kernel.cols, packedB);
                panel = RightPanel{packedB, steps, kernel.cols};
            }
            for (int ic = 0; ic < m; ic += rowBlock) {
                const int rows = std::min(rowBlock, m - ic);
                packLeft(Operand{a.at(ic, pc), a.rowStride, a.colStride}, rows, steps, kernel.rows, packedA);
                runTiles(kernel, packedA, panel, c + ic * ldc + jc, ldc, rows, cols, steps,
                         accumulate || pc > 0);
            }
        }
    }
}

} // namespace

void multiply(const double *a, const double *b, double *c, int m, int p, int n) {
    multiplyBlocked(Operand{a, p, 1}, Operand{b, n, 1}, c, n, m, n, p);
}

void multiplyStrided(const StridedProduct &product) {
    multiplyBlocked(Operand{product.a, product.lda, 1}, Operand{product.b, product.ldb, 1}, product.c,
                    product.ldc, product.m, product.n, product.p, product.accumulate, product.bPadded);
}

} // namespace linalg
} // namespace tarn
