#include "content/BlockGroup.h"

namespace tools {
namespace {

using namespace unstruct;

template <typename BlockClass>
const BlockGroup* groupOfClass() {
    constexpr int kType = BlockClass::kType;
    if constexpr (ZRFxMeshBlockClasses::Count(kType) > 0) {
        return &kMeshBlocks;
    } else if constexpr (ZRFxResultsBlockClasses::Count(kType) > 0) {
        return &kResultsBlocks;
    } else if constexpr (ZRFxSetsBlockClasses::Count(kType) > 0) {
        return &kSetsBlocks;
    } else {
        static_assert(ZRFxPrecomputedBlockClasses::Count(kType) > 0, "the class has no group here");
        return &kPrecomputedBlocks;
    }
}

}  // namespace

const BlockGroup& groupOf(const ZRFxBlock& block) {
    return *Visit(
        block, []<typename BlockClass>(const BlockClass&) { return groupOfClass<BlockClass>(); });
}

std::vector<Field> contentOf(const ZRFxBlock& block) {
    Content content;
    groupOf(block).describe(block, content);
    return content.take();
}

}  // namespace tools
