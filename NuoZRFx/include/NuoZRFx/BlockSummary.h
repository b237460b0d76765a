#pragma once

#include <cstddef>

namespace nuo::zrfx {

/// What the document of a block of nodes, elements or result values says of its data. A plain
/// value.
struct BlockSummary {
    std::size_t itemCount = 0;         ///< Nodes, elements, or items that have values.
    std::size_t elementNodeCount = 0;  ///< The nodes of all elements.
    std::size_t surfaceCount = 0;      ///< The surfaces of all elements.
    int dimension = 0;                 ///< How many values an item has.
    bool hasIds = false;               ///< Of nodes or elements, or of the items of values.

    /// The block of nodes of elements, or the block that values belong to; -1 for nodes.
    int targetBlockId = -1;
    bool refersNodesByIds = false;  ///< Whether elements name nodes by id and not by index.
};

}  // namespace nuo::zrfx
