// Fuzz target: any text restored through TarnStringArchive into a graph of three classes with
// contained objects and stored pointers. Every restore must leave an empty handle table and one
// base step per object, every pointer must lead to the object that the text named by its stored
// address (or be null where no object has it), and store, restore and store again must give the
// same text.
#include "GraphFuzzObjects.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using fuzzcheck::check;
using graphfuzz::Graph;
using graphfuzz::Member;

// Checks that `now`, the reconnected value of a pointer that the text gave as `stored`, is one of
// the objects whose stored identity is `stored`, and null when there is none.
void checkReconnected(const std::unordered_multimap<const void *, Member *> &byStoredThis, const void *stored,
                      const TarnSerializable *now) {
    const auto range = byStoredThis.equal_range(stored);
    if (range.first == range.second) {
        check(now == nullptr);
        return;
    }
    bool found = false;
    for (auto it = range.first; it != range.second; ++it) {
        found = found || now == it->second;
    }
    check(found);
}

std::vector<Member *> membersOf(Graph &graph) {
    std::vector<Member *> all;
    graph.collect(all);
    return all;
}

void checkPointers(Graph &graph) {
    const std::vector<Member *> all = membersOf(graph);
    std::unordered_multimap<const void *, Member *> byStoredThis;
    for (Member *member : all) {
        byStoredThis.emplace(member->storedThis, member);
    }
    for (Member *member : all) {
        const TarnSerializable *parent = member->hasParent() ? &member->getParent() : nullptr;
        checkReconnected(byStoredThis, member->storedParent, parent);
        if (member->hasLink()) {
            checkReconnected(byStoredThis, member->storedLink(), member->link());
        }
    }
}

// The stored text with each token text that is an object's address replaced by the object's place
// in store order, so that two graphs at different addresses compare. One pass over the text.
std::string normalised(const std::string &text, Graph &graph) {
    const std::vector<Member *> all = membersOf(graph);
    std::unordered_map<std::string, std::size_t> places;
    for (std::size_t i = 0; i < all.size(); ++i) {
        places.emplace(fuzzcheck::addressText(all[i]), i);
    }
    std::string out;
    std::size_t at = 0;
    for (std::size_t equals = text.find('=', at); equals != std::string::npos; equals = text.find('=', at)) {
        const std::size_t end = text.find(';', equals);
        if (end == std::string::npos) {
            break;
        }
        const auto place = places.find(text.substr(equals + 1, end - equals - 1));
        out.append(text, at, equals + 1 - at);
        out += place != places.end() ? "#" + std::to_string(place->second)
                                     : text.substr(equals + 1, end - equals - 1);
        at = end;
    }
    out.append(text, at, std::string::npos);
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const TarnString text(std::string(reinterpret_cast<const char *>(data), size));
    {
        Graph graph;
        const int steps = fuzzcheck::restoreChecked(graph, text);
        check(steps == static_cast<int>(membersOf(graph).size()));
        checkPointers(graph);

        const std::string once = fuzzcheck::storedText(graph);
        Graph again;
        check(fuzzcheck::restoreChecked(again, TarnString(once)) == steps);
        checkPointers(again);
        check(normalised(once, graph) == normalised(fuzzcheck::storedText(again), again));
    }
    fuzzcheck::freshHandleTable();
    return 0;
}
