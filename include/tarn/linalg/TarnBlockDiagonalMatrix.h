/// \file
/// The sequence of dense blocks that TarnMatrix::plusEquals adds along a matrix's diagonal.
#pragma once

#include "tarn/TarnExport.h"
#include "tarn/foundation/TarnVector.h"
#include "tarn/linalg/TarnMatrix.h"

/// An ordered sequence of dense blocks that stand corner to corner along the diagonal of a
/// larger matrix; the blocks may be rectangular. It owns copies of its blocks. Only what
/// `TarnMatrix::plusEquals` needs is here: adding a block, the count, and read access by index.
/// An index outside the sequence gives one shared empty matrix. One thread at a time.
class TARN_API TarnBlockDiagonalMatrix {
public:
    /// Makes an empty sequence.
    TarnBlockDiagonalMatrix();
    /// Deletes the copies of the blocks.
    ~TarnBlockDiagonalMatrix();

    /// Appends a copy of `block`.
    void addBlock(const TarnMatrix &block);
    /// Returns the number of blocks.
    int getBlockCount() const;
    /// Returns block `index`; an index outside 0 .. count - 1 gives the shared static empty
    /// (0 x 0) matrix, which lives as long as the module.
    const TarnMatrix &getBlock(int index) const;

private:
    TarnVector<TarnMatrix> blocks;
};
