#include "content/Content.h"

namespace tools {

using namespace unstruct;

Reals realsOf(const ZRVec3fArray& vectors) {
    return {{reinterpret_cast<const float*>(vectors.Data()),
             3 * static_cast<std::size_t>(vectors.GetSize())},
            3};
}

Reals realsOf(const ZRFxResultValuesBlock& block) {
    if (block.GetNumDimensions() == 3) return realsOf(block.GetVectors());
    return {itemsOf(block.GetScalars()), block.GetNumDimensions()};
}

}  // namespace tools
