#include "content/Content.h"

namespace tools {

using namespace unstruct;

Reals realsOf(const ZRVec3fArray& vectors) {
    return {{reinterpret_cast<const float*>(vectors.Data()),
             static_cast<std::size_t>(kVectorKind.Dimension() * vectors.GetSize())},
            kVectorKind.Dimension()};
}

Reals realsOf(const ZRFxResultValuesBlock& block) {
    if (block.GetNumDimensions() == kVectorKind.Dimension()) return realsOf(block.GetVectors());
    return {itemsOf(block.GetScalars()), block.GetNumDimensions()};
}

}  // namespace tools
