#pragma once

#include <cstddef>

#include "NuoZRFx/ElementBlock.h"

namespace nuo::zrfx {

/// How many elements of which type a group of an element block has. A plain value.
struct ElementGroupSize {
    ElementBlock::ElementType type = ElementBlock::UNKNOWN;
    std::size_t elementCount = 0;
};

}  // namespace nuo::zrfx
