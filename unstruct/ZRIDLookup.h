#pragma once

#include <cstdint>
#include <unordered_map>

#include "ZRArray.h"

namespace unstruct {

/// Finds the index of an item by its id. A snapshot of the ids that it is made from.
class ZRIDLookup {
public:
    explicit ZRIDLookup(const ZRIntArray& ids);

    /// The first index that has the id; -1 when there is none.
    std::int64_t IndexOf(std::int32_t id) const;

private:
    std::unordered_map<std::int32_t, std::int64_t> m_indexOfID;
};

}  // namespace unstruct
