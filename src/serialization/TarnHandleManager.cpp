// TarnHandleManager: registration, the one sort per restore, the binary-search lookup, and the
// record of registered class names.
#include "tarn/serialization/TarnHandleManager.h"

#include "serialization/TarnHandleIndex.h"
#include "serialization/TarnHandleSort.h"
#include "tarn/serialization/TarnSerializable.h"

#include <cstdint>
#include <utility>

TarnHandleManager::TarnHandleManager() : sorted(false) {}

TarnHandleManager::TarnHandleManager(const TarnHandleManager &other)
    : pairs(other.pairs), classRecord(other.classRecord), classTable(other.classTable),
      classIndex(other.classIndex), classNames(other.classNames), sorted(other.sorted) {}

TarnHandleManager &TarnHandleManager::operator=(const TarnHandleManager &other) {
    if (this != &other) {
        TarnHandleManager copy(other);
        pairs.swap(copy.pairs);
        classRecord.swap(copy.classRecord);
        classTable.swap(copy.classTable);
        classIndex.swap(copy.classIndex);
        classNames = std::move(copy.classNames);
        sorted = copy.sorted;
        index.reset();
    }
    return *this;
}

TarnHandleManager::~TarnHandleManager() = default;

bool TarnHandleManager::registerPointers(TarnSerializable *oldPointer, TarnSerializable *newPointer) {
    // A null new object has no class to ask; its record is the empty name rather than a crash.
    recordClassName(newPointer != nullptr ? newPointer->getClassName() : std::string());
    // Old addresses are numbers: compared as unsigned integers of pointer width, never followed.
    pairs.push_back(Pair{reinterpret_cast<std::uintptr_t>(oldPointer), newPointer});
    sorted = false;
    if (index) {
        index->clear();
    }
    return true;
}

void TarnHandleManager::recordClassName(const std::string &name) {
    // A graph mostly registers runs of one class: the last name is tried before the index.
    if (!classRecord.empty() && classTable[classRecord.back()] == name) {
        classRecord.push_back(classRecord.back());
        return;
    }
    const auto found = classIndex.find(name);
    std::uint32_t index = 0;
    if (found != classIndex.end()) {
        index = found->second;
    } else {
        index = static_cast<std::uint32_t>(classTable.size());
        classTable.push_back(name);
        try {
            classIndex.emplace(name, index);
        } catch (...) {
            classTable.pop_back();
            throw;
        }
    }
    classRecord.push_back(index);
}

TarnSerializable *TarnHandleManager::getNewPointer(TarnSerializable *oldPointer) {
    if (!sorted && pairs.size() >= 2) {
        sort();
    }
    if (pairs.empty()) {
        return nullptr;
    }
    const std::uintptr_t key = reinterpret_cast<std::uintptr_t>(oldPointer);
    if (index && index->isUsable()) {
        const std::size_t found =
            index->find(key, [this](std::size_t position) { return pairs[position].oldAddress; });
        return found != tarn::HandleIndex::kAbsent ? pairs[found].newPointer : nullptr;
    }
    std::int64_t low = 0;
    std::int64_t high = static_cast<std::int64_t>(pairs.size()) - 1;
    // The first probe is the midpoint rounded down, every later one the midpoint rounded up; where
    // an old address stands twice, this order decides which of its pairs answers.
    std::int64_t probe = high / 2;
    while (low <= high) {
        const Pair &candidate = pairs[static_cast<std::size_t>(probe)];
        if (candidate.oldAddress == key) {
            return candidate.newPointer;
        }
        if (candidate.oldAddress < key) {
            low = probe + 1;
        } else {
            high = probe - 1;
        }
        probe = (low + high + 1) / 2; // low + high + 1 >= 0 here, so this rounds the half up
    }
    return nullptr;
}

void TarnHandleManager::reset() {
    pairs.clear();
    if (index) {
        index->clear();
    }
}

void TarnHandleManager::dispose() {
    delete this;
}

unsigned int TarnHandleManager::getCount() const {
    return static_cast<unsigned int>(pairs.size());
}

bool TarnHandleManager::isSorted() const {
    return sorted;
}

const TarnVector<TarnString> &TarnHandleManager::getClassNames() const {
    // Strings are made only for the registrations since the last call.
    for (std::size_t at = classNames.size(); at < classRecord.size(); ++at) {
        classNames.add(TarnString(classTable[classRecord[at]]));
    }
    return classNames;
}

void TarnHandleManager::sort() {
    if (pairs.size() < 2) {
        return;
    }
    // A pair moves as a whole.
    struct Table {
        std::vector<Pair> &pairs;
        std::uintptr_t key(int index) const { return pairs[static_cast<std::size_t>(index)].oldAddress; }
        void swap(int a, int b) {
            std::swap(pairs[static_cast<std::size_t>(a)], pairs[static_cast<std::size_t>(b)]);
        }
    };
    Table table{pairs};
    tarn::HandleSort<Table>::sort(table, 0, static_cast<int>(pairs.size()) - 1);
    sorted = true;
    buildIndex();
}

void TarnHandleManager::buildIndex() {
    // Only where every old address stands once does any search find the pair that the binary
    // search finds; with a repeated address the index stays unused.
    if (index) {
        index->clear();
    }
    for (std::size_t at = 1; at < pairs.size(); ++at) {
        if (pairs[at - 1].oldAddress == pairs[at].oldAddress) {
            return;
        }
    }
    if (!index) {
        index = std::make_unique<tarn::HandleIndex>();
    }
    index->build(pairs.size(), [this](std::size_t position) { return pairs[position].oldAddress; });
}
