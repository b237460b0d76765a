#include <array>

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
namespace {

using CreateBlock = nvf::ref<ZRFxBlock> (*)(ZRFxBlockStore* pDatabase, int id);

template <typename BlockClass>
nvf::ref<ZRFxBlock> create(ZRFxBlockStore* pDatabase, int id) {
    return new BlockClass(pDatabase, id);
}

struct BlockClassOfType {
    int type;
    CreateBlock create;
};

// The class that stores each type.
constexpr std::array kClasses{
    BlockClassOfType{BLOCK_NODES, create<ZRFxNodeBlock>},
    BlockClassOfType{BLOCK_INDEXED_FACE_SET, create<ZRFxIndexedFaceSetBlock>},
    BlockClassOfType{BLOCK_ELEMENTS, create<ZRFxElementBlock>},
    BlockClassOfType{BLOCK_GEOMETRY, create<ZRFxGeometryBlock>},
    BlockClassOfType{BLOCK_RESULT_VALUES, create<ZRFxResultValuesBlock>},
    BlockClassOfType{BLOCK_RESULTS, create<ZRFxResultBlock>},
    BlockClassOfType{BLOCK_CROSS_SECTIONS, create<ZRFxCrossSectionsBlock>},
    BlockClassOfType{BLOCK_STATE_INFO, create<ZRFxStateInfoBlock>},
    BlockClassOfType{BLOCK_SET, create<ZRFxSetBlock>},
    BlockClassOfType{BLOCK_PLOT_2D, create<ZRFx2DPlotDataBlock>},
    BlockClassOfType{BLOCK_TRANSFORMATION_RESULT_VALUES,
                     create<ZRFxTransformationResultValuesBlock>},
    BlockClassOfType{BLOCK_TRANSFORMATION_RESULTS, create<ZRFxTransformationResultsBlock>},
    BlockClassOfType{BLOCK_PRECOMPUTED_ITEM, create<ZRFxPrecomputedItemBlock>},
    BlockClassOfType{BLOCK_POSITION_RESULT_VALUES, create<ZRFxPositionResultValuesBlock>},
    BlockClassOfType{BLOCK_GEOMETRY_INFO, create<ZRFxGeometryInfoBlock>},
    BlockClassOfType{BLOCK_PRECOMPUTED_CUTTING_PLANE, create<ZRFxPrecomputedCuttingPlaneBlock>},
    BlockClassOfType{BLOCK_PRECOMPUTED_ISOSURFACE, create<ZRFxPrecomputedIsosurfaceBlock>},
    BlockClassOfType{BLOCK_PRECOMPUTED_PARTICLE_TRACE_GROUP,
                     create<ZRFxPrecomputedParticleTraceGroupBlock>},
    BlockClassOfType{BLOCK_PRECOMPUTED_ISOVOLUME, create<ZRFxPrecomputedIsovolumeBlock>},
};

CreateBlock classOf(int type) {
    for (const BlockClassOfType& entry : kClasses) {
        if (entry.type == type) return entry.create;
    }
    return nullptr;
}

}  // namespace

nvf::ref<ZRFxBlock> ZRFxBlock::Create(int type, ZRFxBlockStore* pDatabase, int id) {
    const CreateBlock createBlock = classOf(type);
    if (createBlock) return createBlock(pDatabase, id);
    NVF_FAIL("Block type not implemented");
    return nullptr;
}

bool ZRFxBlock::IsStored(int type) {
    return classOf(type) != nullptr;
}

}  // namespace unstruct
