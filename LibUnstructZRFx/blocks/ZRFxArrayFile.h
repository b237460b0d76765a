#pragma once

#include <cstdint>

#include "ZRString.h"

namespace unstruct {

/// The arrays of blocks of which parts can be read.
enum class ZRFxArrayKind {
    POSITIONS,  ///< Of nodes: three floats each.
    NODES,      ///< Of the elements of a group: so many integers each as the type has nodes.
    VALUES,     ///< Of a result: floats.
    IDS         ///< Of nodes, of the elements of a group, or of the items that values belong to.
};

/// Where a block's document says that one of its arrays is.
struct ZRFxArrayFile {
    ZRString name;
    std::int64_t numItems = 0;
    int valuesPerItem = 1;
    std::int32_t added = 0;  ///< To each integer of the file to get that of the array.
};

}  // namespace unstruct
