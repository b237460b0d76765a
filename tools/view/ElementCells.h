#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "blocks/mesh/ZRFxElementBlock.h"
#include "quantities/ModelItems.h"
#include "view/OuterSurface.h"

namespace tools {

/// One cell of an element, before it is known whether it can be seen.
struct ElementCell {
    CellKind kind;
    std::size_t element;
    int surface;
    bool isSolid;                         ///< A face that another solid may hide.
    std::span<const std::int64_t> nodes;  ///< Around the face, mid-side nodes in between.
};

/// Calls `take` for all cells of a block, element by element. Cells whose nodes are missing, or
/// that have collapsed, are left out; gives the number of the former.
std::int64_t forEachCell(const unstruct::ZRFxElementBlock& block, const ElementItems& items,
                         QuadraticSides sides, const std::function<void(const ElementCell&)>& take);

}  // namespace tools
