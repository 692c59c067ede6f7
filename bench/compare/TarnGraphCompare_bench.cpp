// Object graph restore side by side: 100,000 small objects (an int and a parent pointer each)
// restored from TarnStringArchive text, against Boost.Serialization's text archive restoring the
// same graph through tracked pointers. Both sides make every object anew and reconnect every
// parent; destroying the restored objects is left out of the timing on both sides.
#include <tarn/tarn.h>

#include <boost/archive/text_iarchive.hpp>
#include <boost/archive/text_oarchive.hpp>
#include <boost/serialization/vector.hpp>

#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr int kObjects = 100000;
const char *const kRestore = "graph restore 100,000 objects";

// The parent index of every object: a random earlier object, none for the first. Both sides
// build the same tree from it.
const std::vector<int> &parentIndices() {
    static const std::vector<int> parents = [] {
        std::mt19937 random(3);
        std::vector<int> made(kObjects, -1);
        for (int i = 1; i < kObjects; ++i) {
            made[static_cast<std::size_t>(i)] = static_cast<int>(random() % static_cast<unsigned>(i));
        }
        return made;
    }();
    return parents;
}

// Tarn's small object: a value, and the parent link of its base.
class Node : public TarnSerializable {
public:
    int value = 0;

    using TarnObject::isa;
    bool isa(const std::string &name) const override { return name == "Node"; }
    std::string getClassName() const override { return "Node"; }
    bool isModified() override { return modified; }
    TarnSerializable *parentLink() const { return parent; }

    void serializeStore(TarnArchive &archive) override {
        TarnSerializable::serializeStore(archive);
        archive.addIntToken("value", value);
    }
    void serializeRestore(TarnArchive &archive) override {
        TarnSerializable::serializeRestore(archive);
        value = archive.getTokenInt("value");
    }
};

// The container that owns the nodes; each node is one child section.
class Graph : public TarnSerializable {
public:
    TarnVector<Node> nodes;

    using TarnObject::isa;
    bool isa(const std::string &name) const override { return name == "Graph"; }
    std::string getClassName() const override { return "Graph"; }
    bool isModified() override { return modified; }

    void serializeStore(TarnArchive &archive) override {
        TarnSerializable::serializeStore(archive);
        for (unsigned i = 0; i < nodes.size(); ++i) {
            nodes[i].serializeStore(archive.addChild());
        }
    }
    void serializeRestore(TarnArchive &archive) override {
        TarnSerializable::serializeRestore(archive);
        TarnVector<TarnArchive> &children = archive.getChildren();
        nodes.reserve(children.size());
        for (unsigned i = 0; i < children.size(); ++i) {
            nodes.add().serializeRestore(children[i]);
        }
    }
    void reconnectPointers() override {
        TarnSerializable::reconnectPointers();
        for (unsigned i = 0; i < nodes.size(); ++i) {
            nodes[i].reconnectPointers();
        }
    }
    void resetPointers() override {
        TarnSerializable::resetPointers();
        for (unsigned i = 0; i < nodes.size(); ++i) {
            nodes[i].resetPointers();
        }
    }
};

// Boost's small object: the same value and parent pointer, tracked by the archive.
struct PlainNode {
    int value = 0;
    PlainNode *parent = nullptr;

    template <class Archive>
    void serialize(Archive &archive, unsigned int /*version*/) {
        archive &value;
        archive &parent;
    }
};

// Owns the nodes that a Boost restore made.
struct PlainGraph {
    std::vector<PlainNode *> nodes;
    PlainGraph() = default;
    PlainGraph(const PlainGraph &) = delete;
    PlainGraph &operator=(const PlainGraph &) = delete;
    ~PlainGraph() {
        for (PlainNode *node : nodes) {
            delete node;
        }
    }
};

const TarnString &tarnText() {
    static const TarnString text = [] {
        Graph graph;
        for (int i = 0; i < kObjects; ++i) {
            graph.nodes.add().value = i;
        }
        for (int i = 1; i < kObjects; ++i) {
            const int parent = parentIndices()[static_cast<std::size_t>(i)];
            graph.nodes[static_cast<unsigned>(i)].setParent(graph.nodes[static_cast<unsigned>(parent)]);
        }
        TarnStringArchive archive;
        archive.serializeStore(graph);
        return archive.getText();
    }();
    return text;
}

const std::string &boostText() {
    static const std::string text = [] {
        PlainGraph graph;
        for (int i = 0; i < kObjects; ++i) {
            graph.nodes.push_back(new PlainNode);
            graph.nodes.back()->value = i;
        }
        for (int i = 1; i < kObjects; ++i) {
            graph.nodes[static_cast<std::size_t>(i)]->parent =
                graph.nodes[static_cast<std::size_t>(parentIndices()[static_cast<std::size_t>(i)])];
        }
        std::ostringstream stream;
        {
            boost::archive::text_oarchive archive(stream);
            archive << graph.nodes;
        }
        return stream.str();
    }();
    return text;
}

// True when node i holds value i and its parent is node parentIndices()[i] of the same graph.
template <class Parent>
bool sameGraph(int count, Parent parentOf) {
    if (count != kObjects) {
        return false;
    }
    for (int i = 0; i < kObjects; ++i) {
        if (parentOf(i) != parentIndices()[static_cast<std::size_t>(i)]) {
            return false;
        }
    }
    return true;
}

void tarnRestore(benchmark::State &state) {
    const TarnString &text = tarnText();
    bool exact = true;
    for (auto _ : state) {
        auto graph = std::make_unique<Graph>();
        {
            TarnStringArchive archive;
            archive.serializeRestore(*graph, text);
        }
        benchmark::DoNotOptimize(graph->nodes.data());
        state.PauseTiming();
        exact = exact && sameGraph(static_cast<int>(graph->nodes.size()), [&graph](int i) {
                    const Node &node = graph->nodes[static_cast<unsigned>(i)];
                    const auto *parent = static_cast<const Node *>(node.parentLink());
                    return parent == nullptr ? -1 : parent->value;
                });
        graph.reset();
        state.ResumeTiming();
    }
    if (!exact) {
        state.SkipWithError("the graph does not come back");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(text.size()));
}

void boostRestore(benchmark::State &state) {
    const std::string &text = boostText();
    bool exact = true;
    for (auto _ : state) {
        auto graph = std::make_unique<PlainGraph>();
        {
            std::istringstream stream(text);
            boost::archive::text_iarchive archive(stream);
            archive >> graph->nodes;
        }
        benchmark::DoNotOptimize(graph->nodes.data());
        state.PauseTiming();
        exact = exact && sameGraph(static_cast<int>(graph->nodes.size()), [&graph](int i) {
                    const PlainNode *parent = graph->nodes[static_cast<std::size_t>(i)]->parent;
                    return parent == nullptr ? -1 : parent->value;
                });
        graph.reset();
        state.ResumeTiming();
    }
    if (!exact) {
        state.SkipWithError("the graph does not come back");
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(text.size()));
}

void registerAll() {
    const std::string restore = kRestore;
    benchmark::RegisterBenchmark((restore + "/Tarn").c_str(), tarnRestore)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((restore + "/Boost text archive").c_str(), boostRestore)
        ->Unit(benchmark::kMillisecond);
}

// Registers before benchmark_main's main() runs.
const bool registered = (registerAll(), true);

} // namespace
