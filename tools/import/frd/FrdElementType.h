#pragma once

#include <cstddef>
#include <span>

#include "NuoZRFx/ElementBlock.h"

namespace tools {

/// An element type of the .frd format and what it is in a ZRFx file.
struct FrdElementType {
    const char* name;
    nuo::zrfx::ElementBlock::ElementType type;
    std::span<const int> order;  ///< For each node of ours, its place among those of the .frd file.
};

/// Null when there is no such type: it is 1 to 12.
const FrdElementType* frdElementType(int type);

}  // namespace tools
