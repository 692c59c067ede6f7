// The block sequence that TarnMatrix::plusEquals adds along a diagonal.
#include "tarn/linalg/TarnBlockDiagonalMatrix.h"

namespace {
// The block that an index outside the sequence reads: built when the module loads and destroyed
// when it unloads.
const TarnMatrix emptyBlock;
} // namespace

TarnBlockDiagonalMatrix::TarnBlockDiagonalMatrix() = default;

TarnBlockDiagonalMatrix::~TarnBlockDiagonalMatrix() = default;

void TarnBlockDiagonalMatrix::addBlock(const TarnMatrix &block) {
    blocks.add(block);
}

int TarnBlockDiagonalMatrix::getBlockCount() const {
    return static_cast<int>(blocks.size());
}

const TarnMatrix &TarnBlockDiagonalMatrix::getBlock(int index) const {
    if (index < 0 || index >= getBlockCount()) {
        return emptyBlock;
    }
    return blocks[static_cast<unsigned int>(index)];
}
