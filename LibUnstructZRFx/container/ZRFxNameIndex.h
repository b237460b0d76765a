#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

namespace unstruct {

/// Finds objects by name. All lies in one array, so that most questions cost one access to memory;
/// a map of the standard library costs three, which showed in reading and writing small blocks.
/// Keeps pointers only: an object must keep its name, given by `NameOf(object)`, while it is in
/// here.
template <typename Object, auto NameOf>
class ZRFxNameIndex {
public:
    /// Null when there is none.
    Object* Find(std::string_view sName) const {
        if (m_aSlots.empty()) return nullptr;
        const size_t nHash = Hash(sName);
        for (size_t i = nHash & Mask(); m_aSlots[i].pObject; i = (i + 1) & Mask()) {
            const Slot& slot = m_aSlots[i];
            if (slot.nHash == nHash && NameOf(*slot.pObject) == sName) return slot.pObject;
        }
        return nullptr;
    }

    /// Has the memory fetched that a Find or Insert of the name needs soon.
    void Prefetch(std::string_view sName) const {
        if (!m_aSlots.empty()) __builtin_prefetch(&m_aSlots[Hash(sName) & Mask()]);
    }

    /// Lets the next Insert do without memory.
    void MakeRoom() {
        if (2 * (m_nCount + 1) > m_aSlots.size()) Grow(2 * (m_nCount + 1));
    }

    /// REQUIRES: no object of that name is in here.
    void Insert(Object* pObject) {
        MakeRoom();
        Put({Hash(NameOf(*pObject)), pObject});
        ++m_nCount;
    }

    /// REQUIRES: the object is in here.
    void Erase(const Object* pObject) {
        size_t nHole = Hash(NameOf(*pObject)) & Mask();
        while (m_aSlots[nHole].pObject != pObject) nHole = (nHole + 1) & Mask();
        m_aSlots[nHole] = Slot();
        --m_nCount;
        // The slots that follow may have been used because the hole was taken.
        for (size_t i = (nHole + 1) & Mask(); m_aSlots[i].pObject; i = (i + 1) & Mask()) {
            Put(std::exchange(m_aSlots[i], Slot()));
        }
    }

    void Reserve(size_t nCount) {
        if (2 * nCount > m_aSlots.size()) Grow(2 * nCount);
    }

    void Clear() {
        m_aSlots.clear();
        m_nCount = 0;
    }

private:
    struct Slot {
        size_t nHash = 0;
        Object* pObject = nullptr;
    };

    static size_t Hash(std::string_view sName) { return std::hash<std::string_view>()(sName); }
    size_t Mask() const { return m_aSlots.size() - 1; }

    void Put(Slot slot) {
        size_t i = slot.nHash & Mask();
        while (m_aSlots[i].pObject) i = (i + 1) & Mask();
        m_aSlots[i] = slot;
    }

    void Grow(size_t nLeast) {
        size_t nSize = 64;
        while (nSize < nLeast) nSize *= 2;
        std::vector<Slot> aOld(nSize);
        aOld.swap(m_aSlots);
        for (const Slot& slot : aOld) {
            if (slot.pObject) Put(slot);
        }
    }

    std::vector<Slot> m_aSlots;  // A power of two of them, at most half full.
    size_t m_nCount = 0;
};

}  // namespace unstruct
