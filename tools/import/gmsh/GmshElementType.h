#pragma once

#include <cstddef>
#include <span>

#include "NuoZRFx/ElementBlock.h"

namespace tools {

/// An element type of gmsh and what it is in a ZRFx file.
struct GmshElementType {
    int number;
    int dimension;
    std::size_t nodeCount;  ///< In the file: more than are kept where faces or bodies have nodes.
    nuo::zrfx::ElementBlock::ElementType type;
    std::span<const int> order;  ///< For each node of ours, its place in the file; empty: the same.
};

/// Null when there is none.
const GmshElementType* gmshElementType(int number);

}  // namespace tools
