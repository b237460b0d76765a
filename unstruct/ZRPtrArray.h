#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "ZRMakeRoom.h"
#include "nvf/Assert.h"

namespace unstruct {

/// An ordered list of objects that it owns. Used by one thread at a time.
template <typename T>
class ZRPtrArray {
public:
    /// Takes ownership of the object and returns a plain pointer to it; null is an assertion and is
    /// not added.
    T* Add(std::unique_ptr<T> object) {
        NVF_ASSERT(object);
        if (!object) return nullptr;
        m_objects.push_back(std::move(object));
        return m_objects.back().get();
    }

    /// Reserves room for the next Add, so that it cannot fail.
    void MakeRoom() { unstruct::MakeRoom(&m_objects); }

    std::int64_t GetSize() const { return static_cast<std::int64_t>(m_objects.size()); }
    bool IsEmpty() const { return m_objects.empty(); }

    /// The object at an index; null when there is none.
    T* operator[](std::int64_t index) const {
        return index >= 0 && index < GetSize() ? m_objects[static_cast<std::size_t>(index)].get()
                                               : nullptr;
    }

    /// Removes a range, both ends included; the part of it outside the list is ignored.
    void RemoveRange(std::int64_t from, std::int64_t to) {
        from = from < 0 ? 0 : from;
        to = to < GetSize() ? to : GetSize() - 1;
        if (from <= to) m_objects.erase(m_objects.begin() + from, m_objects.begin() + to + 1);
    }

    void RemoveAll() { m_objects.clear(); }

    auto begin() const { return m_objects.begin(); }
    auto end() const { return m_objects.end(); }

private:
    std::vector<std::unique_ptr<T>> m_objects;
};

}  // namespace unstruct
