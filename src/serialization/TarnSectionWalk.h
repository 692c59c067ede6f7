// The depth-first walk over an archive tree that both text writers share.
#pragma once

#include "tarn/serialization/TarnArchive.h"

#include <cstddef>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace tarn {

/// Calls `enter(node)` for `root` and every node below it in depth-first order (children in index
/// order), and `leave(node)` once all of a node's children are done. An explicit stack takes the
/// place of recursion, so the depth of the tree costs heap, not call stack.
template <class Enter, class Leave>
void walkSections(TarnArchive &root, Enter enter, Leave leave) {
    std::vector<std::pair<TarnArchive *, std::size_t>> stack;
    enter(root);
    stack.emplace_back(&root, 0);
    while (!stack.empty()) {
        TarnArchive &node = *stack.back().first;
        const std::size_t next = stack.back().second;
        if (next < node.getChildren().size()) {
            ++stack.back().second;
            TarnArchive &child = node.getChildren()[static_cast<unsigned int>(next)];
            enter(child);
            stack.emplace_back(&child, 0);
        } else {
            leave(node);
            stack.pop_back();
        }
    }
}

/// Returns the length of the string form of `root` and its subtree: each section's name, "{" and
/// "}", each token's name, "=", text up to its first NUL and ";". A writer reserves it first, so
/// that a large token is copied into the text once and the text never grows by reallocation.
inline std::size_t sectionTextLength(TarnArchive &root) {
    std::size_t length = 0;
    walkSections(
        root,
        [&length](TarnArchive &node) {
            length += node.getName().size() + 2;
            for (auto &entry : node.getTokens()) {
                length += entry.first.size() + std::strlen(entry.second.getValue()) + 2;
            }
        },
        [](TarnArchive &) {});
    return length;
}

/// Appends one token in its text form, name "=" text ";", to `out`; the text ends at its first
/// NUL.
inline void appendTokenText(std::string &out, const std::string &name, const TarnToken &token) {
    const char *value = token.getValue();
    out += name;
    out += '=';
    out.append(value, std::strlen(value));
    out += ';';
}

} // namespace tarn
