// TarnHandleManager: registration, the one sort per restore, and the binary-search lookup.
#include "tarn/serialization/TarnHandleManager.h"

#include "serialization/TarnHandleSort.h"
#include "tarn/serialization/TarnSerializable.h"

#include <cstdint>
#include <utility>

namespace {

// Old addresses are numbers: compared as unsigned integers of pointer width, never as pointers.
std::uintptr_t addressOf(const TarnPointer &box) {
    return reinterpret_cast<std::uintptr_t>(box.pointer);
}

} // namespace

TarnHandleManager::TarnHandleManager() : sorted(false) {}
TarnHandleManager::TarnHandleManager(const TarnHandleManager &other) = default;
TarnHandleManager &TarnHandleManager::operator=(const TarnHandleManager &other) = default;
TarnHandleManager::~TarnHandleManager() = default;

bool TarnHandleManager::registerPointers(TarnSerializable *oldPointer, TarnSerializable *newPointer) {
    // A null new object has no class to ask; its record is the empty name rather than a crash.
    classNames.add(newPointer != nullptr ? TarnString(newPointer->getClassName()) : TarnString());
    oldPointers.add().pointer = oldPointer;
    newPointers.add().pointer = newPointer;
    sorted = false;
    return true;
}

TarnSerializable *TarnHandleManager::getNewPointer(TarnSerializable *oldPointer) {
    if (!sorted && oldPointers.size() >= 2) {
        sort();
    }
    if (oldPointers.empty()) {
        return nullptr;
    }
    const std::uintptr_t key = reinterpret_cast<std::uintptr_t>(oldPointer);
    std::int64_t low = 0;
    std::int64_t high = static_cast<std::int64_t>(oldPointers.size()) - 1;
    // The first probe is the midpoint rounded down, every later one the midpoint rounded up; where
    // an old address stands twice, this order decides which of its pairs answers.
    std::int64_t probe = high / 2;
    while (low <= high) {
        const std::uintptr_t candidate = addressOf(oldPointers[static_cast<unsigned int>(probe)]);
        if (candidate == key) {
            return static_cast<TarnSerializable *>(newPointers[static_cast<unsigned int>(probe)].pointer);
        }
        if (candidate < key) {
            low = probe + 1;
        } else {
            high = probe - 1;
        }
        probe = (low + high + 1) / 2; // low + high + 1 >= 0 here, so this rounds the half up
    }
    return nullptr;
}

void TarnHandleManager::reset() {
    newPointers.removeAll();
    oldPointers.removeAll();
}

void TarnHandleManager::dispose() {
    delete this;
}

unsigned int TarnHandleManager::getCount() const {
    return static_cast<unsigned int>(oldPointers.size());
}

bool TarnHandleManager::isSorted() const {
    return sorted;
}

const TarnVector<TarnString> &TarnHandleManager::getClassNames() const {
    return classNames;
}

void TarnHandleManager::sort() {
    if (oldPointers.size() < 2) {
        return;
    }
    quickSort(0, static_cast<int>(oldPointers.size()) - 1);
    sorted = true;
}

void TarnHandleManager::quickSort(int first, int last) {
    // A pair moves as a whole: the boxes of both vectors are swapped at the same index.
    struct Pairs {
        std::vector<TarnPointer *> &olds;
        std::vector<TarnPointer *> &news;
        std::uintptr_t key(int index) const { return addressOf(*olds[static_cast<std::size_t>(index)]); }
        void swap(int a, int b) {
            std::swap(olds[static_cast<std::size_t>(a)], olds[static_cast<std::size_t>(b)]);
            std::swap(news[static_cast<std::size_t>(a)], news[static_cast<std::size_t>(b)]);
        }
    };
    Pairs pairs{oldPointers, newPointers};
    tarn::HandleSort<Pairs>::sort(pairs, first, last);
}
