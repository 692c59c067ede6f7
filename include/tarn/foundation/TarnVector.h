/// \file
/// The owning pointer vector, the plain value array, and the pointer box.
#pragma once

#include "tarn/TarnExport.h"

#include <cassert>
#include <stdexcept>
#include <utility>
#include <vector>

/// A sequence of heap objects of type T, held through pointers, that creates its elements itself
/// and deletes them when they are removed. Elements never move: a reference returned by `add`
/// stays valid until that element is removed, whatever else the vector does. Every non-null
/// pointer in the vector belongs to it alone; code that adds or drops pointers through the
/// standard vector's own members must keep that rule. A copy duplicates the elements, so that
/// each is deleted exactly once (T must then be copyable). No locks: one thread at a time.
template <class T>
class TarnVector : public std::vector<T *> {
    using Base = std::vector<T *>;

public:
    /// Constructs an empty vector.
    TarnVector() = default;
    /// Constructs a vector holding copies of `other`'s elements.
    TarnVector(const TarnVector &other) : Base() { appendCopiesOf(other); }
    /// Takes over `other`'s elements, leaving `other` empty.
    TarnVector(TarnVector &&other) noexcept : Base(std::move(static_cast<Base &>(other))) {}
    /// Deletes every element (`removeAll`) and releases the storage.
    ~TarnVector() { removeAll(); }

    /// Replaces the elements by copies of `other`'s elements.
    TarnVector &operator=(const TarnVector &other) {
        if (this != &other) {
            TarnVector copy(other);
            *this = std::move(copy);
        }
        return *this;
    }

    /// Takes over `other`'s elements; the elements held before are deleted.
    TarnVector &operator=(TarnVector &&other) noexcept {
        if (this != &other) {
            removeAll();
            Base::swap(other);
        }
        return *this;
    }

    /// Appends a new default-constructed element and returns it.
    T &add() { return appendOwned(new T()); }

    /// Appends a copy of `value` and returns the new element.
    T &add(const T &value) { return appendOwned(new T(value)); }

    /// Inserts a copy of `value` in front of the element at `index` and returns the new element.
    /// An index equal to the count appends; a larger one also appends, so that no pointer is ever
    /// placed outside the sequence.
    T &insertAt(unsigned int index, const T &value) {
        const std::size_t position = index < Base::size() ? index : Base::size();
        Base::reserve(Base::size() + 1);
        T *element = new T(value);
        Base::insert(Base::begin() + static_cast<std::ptrdiff_t>(position), element);
        return *element;
    }

    /// Deletes the element at `index` and closes the gap; an index at or above the count does nothing.
    void removeAt(unsigned int index) {
        if (index >= Base::size()) {
            return;
        }
        T *element = (*this).Base::operator[](index);
        Base::erase(Base::begin() + static_cast<std::ptrdiff_t>(index));
        delete element;
    }

    /// Deletes every element, first to last, and leaves the count at 0 (the storage stays).
    void removeAll() {
        for (T *element : static_cast<Base &>(*this)) {
            delete element;
        }
        Base::clear();
    }

    /// Returns the element at `index`, which must be below the count (not range-checked).
    ///@{
    T &operator[](unsigned int index) {
        assert(index < Base::size());
        return *Base::operator[](index);
    }
    const T &operator[](unsigned int index) const {
        assert(index < Base::size());
        return *Base::operator[](index);
    }
    ///@}

    /// Exchanges the places of two elements by exchanging their pointers. Throws
    /// std::out_of_range ("invalid vector<T> subscript") and changes nothing when either index is
    /// at or above the count.
    // Two positions of one vector, not two vectors: the range error is part of the contract.
    // NOLINTNEXTLINE(bugprone-exception-escape)
    void swap(unsigned int first, unsigned int second) {
        if (first >= Base::size() || second >= Base::size()) {
            throw std::out_of_range("invalid vector<T> subscript");
        }
        std::swap(Base::operator[](first), Base::operator[](second));
    }

private:
    // The pointer is taken over before anything can throw, so a failed growth does not leak it.
    T &appendOwned(T *element) {
        try {
            Base::push_back(element);
        } catch (...) {
            delete element;
            throw;
        }
        return *element;
    }

    // Runs inside a constructor, where the destructor would not run: a copy that throws
    // deletes what was copied before it.
    void appendCopiesOf(const TarnVector &other) {
        Base::reserve(other.size());
        try {
            for (const T *element : static_cast<const Base &>(other)) {
                Base::push_back(element == nullptr ? nullptr : new T(*element));
            }
        } catch (...) {
            removeAll();
            throw;
        }
    }
};

/// A standard vector of T by value under the library's name, with no ownership scheme.
template <class T>
class TarnArray : public std::vector<T> {
public:
    using std::vector<T>::vector;
};

/// A box holding one untyped pointer, null by default. Copies copy the pointer and nothing
/// else: the box does not own what it points to.
class TarnPointer {
public:
    /// Constructs a box holding null.
    TarnPointer() = default;
    /// Copies the pointer, not what it points to.
    ///@{
    TarnPointer(const TarnPointer &) = default;
    TarnPointer &operator=(const TarnPointer &) = default;
    ///@}
    /// Does nothing: the box owns nothing.
    ~TarnPointer() = default;

    /// The pointer held; null until set.
    void *pointer = nullptr;
};
