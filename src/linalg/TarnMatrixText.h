// Internal: the text forms shared by the dense and packed matrices: debug dump and archive tokens.
#pragma once

#include "platform/TarnPlatform.h"
#include "tarn/foundation/TarnString.h"
#include "tarn/serialization/TarnArchive.h"

#include <cstddef>

namespace tarn {
namespace linalg {

/// Writes rows x cols elements, read through element(i, j), to the debug text channel: each row
/// is one write of its elements by "%.<precision>e" each followed by a tab, then "\n" is a second
/// write.
template <class ElementReader>
void dumpRows(int rows, int cols, int precision, ElementReader element) {
    TarnString elementFormat;
    elementFormat.format("%%.%de\t", precision);
    TarnString line;
    TarnString text;
    for (int i = 0; i < rows; ++i) {
        line.clear();
        for (int j = 0; j < cols; ++j) {
            text.format(elementFormat.c_str(), element(i, j));
            line += text;
        }
        tarn::platform::writeDebugText(line.c_str());
        tarn::platform::writeDebugText("\n");
    }
}

/// Adds the tokens "rows" and "cols" by "%d", then "data" holding `count` values in order: the
/// stored form of every matrix of the family after the base tokens.
inline void addMatrixTokens(TarnArchive &archive, int rows, int cols, const double *values,
                            std::size_t count) {
    archive.addIntToken("rows", rows);
    archive.addIntToken("cols", cols);
    archive.addDoublesToken("data", values, static_cast<unsigned int>(count));
}

} // namespace linalg
} // namespace tarn
