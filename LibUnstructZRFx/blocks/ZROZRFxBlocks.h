#pragma once

#include <array>
#include <type_traits>

#include "blocks/ZRFxBlock.h"
#include "blocks/mesh/ZRFxCrossSectionsBlock.h"
#include "blocks/mesh/ZRFxElementBlock.h"
#include "blocks/mesh/ZRFxGeometryBlock.h"
#include "blocks/mesh/ZRFxGeometryInfoBlock.h"
#include "blocks/mesh/ZRFxIndexedFaceSetBlock.h"
#include "blocks/mesh/ZRFxNodeBlock.h"
#include "blocks/precomputed/ZRFxPrecomputedCuttingPlaneBlock.h"
#include "blocks/precomputed/ZRFxPrecomputedIsosurfaceBlock.h"
#include "blocks/precomputed/ZRFxPrecomputedIsovolumeBlock.h"
#include "blocks/precomputed/ZRFxPrecomputedItemBlock.h"
#include "blocks/precomputed/ZRFxPrecomputedParticleTraceGroupBlock.h"
#include "blocks/results/ZRFx2DPlotDataBlock.h"
#include "blocks/results/ZRFxPositionResultValuesBlock.h"
#include "blocks/results/ZRFxResultBlock.h"
#include "blocks/results/ZRFxResultValuesBlock.h"
#include "blocks/results/ZRFxStateInfoBlock.h"
#include "blocks/results/ZRFxTransformationResultValuesBlock.h"
#include "blocks/results/ZRFxTransformationResultsBlock.h"
#include "blocks/sets/ZRFxSetBlock.h"
#include "nvf/Assert.h"

namespace unstruct {

/// A list of block classes. Each says in kType which type it stores.
template <typename... BlockClass>
struct ZRFxBlockClassList {
    static constexpr std::size_t kSize = sizeof...(BlockClass);

    /// How many of the classes store a type.
    static constexpr int Count(int type) { return (0 + ... + (type == BlockClass::kType ? 1 : 0)); }
};

template <typename... A, typename... B>
constexpr ZRFxBlockClassList<A..., B...> operator+(ZRFxBlockClassList<A...>,
                                                   ZRFxBlockClassList<B...>) {
    return {};
}

using ZRFxMeshBlockClasses =
    ZRFxBlockClassList<ZRFxNodeBlock, ZRFxIndexedFaceSetBlock, ZRFxElementBlock, ZRFxGeometryBlock,
                       ZRFxGeometryInfoBlock, ZRFxCrossSectionsBlock>;
using ZRFxResultsBlockClasses =
    ZRFxBlockClassList<ZRFxStateInfoBlock, ZRFxResultBlock, ZRFxResultValuesBlock,
                       ZRFxTransformationResultsBlock, ZRFxTransformationResultValuesBlock,
                       ZRFxPositionResultValuesBlock, ZRFx2DPlotDataBlock>;
using ZRFxSetsBlockClasses = ZRFxBlockClassList<ZRFxSetBlock>;
using ZRFxPrecomputedBlockClasses =
    ZRFxBlockClassList<ZRFxPrecomputedItemBlock, ZRFxPrecomputedCuttingPlaneBlock,
                       ZRFxPrecomputedIsosurfaceBlock, ZRFxPrecomputedIsovolumeBlock,
                       ZRFxPrecomputedParticleTraceGroupBlock>;

/// The class of each type that is stored, by the groups in whose folders they lie.
using ZRFxBlockClasses = decltype(ZRFxMeshBlockClasses() + ZRFxResultsBlockClasses() +
                                  ZRFxSetsBlockClasses() + ZRFxPrecomputedBlockClasses());

/// Whether every type that is stored has one class, and every class is of such a type.
constexpr bool AreOneOfEachStoredType() {
    for (const ZRFxBlockTypeRecord& record : kBlockTypes) {
        if (ZRFxBlockClasses::Count(record.type) != (record.IsStored() ? 1 : 0)) return false;
    }
    return ZRFxBlockClasses::kSize == kStoredBlockTypes.size();
}
static_assert(AreOneOfEachStoredType(),
              "kBlockTypes and ZRFxBlockClasses must name the same types");

/// A block as its own class, const where the block is.
template <typename BlockClass, typename Block>
using ZRFxBlockAs = std::conditional_t<std::is_const_v<Block>, const BlockClass, BlockClass>;

template <typename Result, typename BlockClass, typename Block, typename Visitor>
Result VisitAs(Block& block, Visitor& visitor) {
    return visitor(static_cast<ZRFxBlockAs<BlockClass, Block>&>(block));
}

template <typename... BlockClass, typename Block, typename Visitor>
auto VisitOneOf(ZRFxBlockClassList<BlockClass...>, Block& block, Visitor& visitor) {
    static_assert((std::is_invocable_v<Visitor&, ZRFxBlockAs<BlockClass, Block>&> && ...),
                  "the visitor must take every class of the list");
    using Result =
        std::common_type_t<std::invoke_result_t<Visitor&, ZRFxBlockAs<BlockClass, Block>&>...>;
    using Call = Result (*)(Block&, Visitor&);
    static constexpr auto kCalls = [] {
        std::array<Call, kNumBlockTypes> calls{};
        ((calls[BlockClass::kType] = VisitAs<Result, BlockClass, Block, Visitor>), ...);
        return calls;
    }();
    const auto type = static_cast<std::size_t>(block.GetType());
    if (type < kCalls.size() && kCalls[type]) return kCalls[type](block, visitor);
    NVF_FAIL("Block type not implemented");
    return Result();
}

/// Calls the visitor with the block as its own class, and gives what it gives. The visitor must
/// take every class of the list; a block of another class gives an assertion and an empty result.
template <typename Classes = ZRFxBlockClasses, typename Visitor>
auto Visit(const ZRFxBlock& block, Visitor&& visitor) {
    return VisitOneOf(Classes(), block, visitor);
}
template <typename Classes = ZRFxBlockClasses, typename Visitor>
auto Visit(ZRFxBlock& block, Visitor&& visitor) {
    return VisitOneOf(Classes(), block, visitor);
}

}  // namespace unstruct
