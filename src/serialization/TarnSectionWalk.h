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
