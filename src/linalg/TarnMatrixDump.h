// Internal: writes a matrix to the debug text channel, one write per row and one per line end.
#pragma once

#include "platform/TarnPlatform.h"
#include "tarn/foundation/TarnString.h"

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

} // namespace linalg
} // namespace tarn
