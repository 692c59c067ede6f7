// Test helpers that show an archive tree as text and build deep texts.
#pragma once

#include <tarn/tarn.h>

#include <string>

namespace testobjects {

/// The tree below `node` in the string form: name, "{", tokens as name=value;, children, "}".
/// Recursive: for the small trees of the tests only.
inline std::string treeText(TarnArchive &node) {
    std::string result = std::string(node.getName()) + "{";
    for (auto &entry : node.getTokens()) {
        result += std::string(entry.first) + "=" + entry.second.getValue() + ";";
    }
    for (unsigned i = 0; i < node.getChildren().size(); ++i) {
        result += treeText(node.getChildren()[i]);
    }
    return result + "}";
}

} // namespace testobjects
