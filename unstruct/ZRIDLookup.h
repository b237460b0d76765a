#pragma once

#include <cstdint>
#include <unordered_map>

#include "ZRArray.h"

namespace unstruct {

/// Finds the index of an item by its id. Items are entered in order; the first of several with one
/// id is found.
class ZRIDLookup {
public:
    /// Enters the item that follows those entered so far.
    void Add(std::int32_t id) {
        m_indexOfID.emplace(id, m_nNumItems);
        ++m_nNumItems;
    }

    /// Enters those of the items that are not entered yet.
    void Update(const ZRIntArray& ids);

    /// The number of items entered.
    std::int64_t GetNumItems() const { return m_nNumItems; }

    /// -1 when no item has the id.
    std::int64_t IndexOf(std::int32_t id) const;

private:
    std::unordered_map<std::int32_t, std::int64_t> m_indexOfID;
    std::int64_t m_nNumItems = 0;
};

}  // namespace unstruct
