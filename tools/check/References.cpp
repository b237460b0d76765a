#include "check/References.h"

#include "BlockContent.h"
#include "Text.h"
#include "blocks/mesh/ZRFxElementBlock.h"
#include "blocks/mesh/ZRFxGeometryBlock.h"
#include "blocks/mesh/ZRFxIndexedFaceSetBlock.h"
#include "blocks/precomputed/ZRFxPrecomputedCuttingPlaneBlock.h"
#include "blocks/precomputed/ZRFxPrecomputedIsosurfaceBlock.h"
#include "blocks/precomputed/ZRFxPrecomputedIsovolumeBlock.h"
#include "blocks/precomputed/ZRFxPrecomputedItemBlock.h"
#include "blocks/precomputed/ZRFxPrecomputedParticleTraceGroupBlock.h"
#include "blocks/results/ZRFxPositionResultValuesBlock.h"
#include "blocks/results/ZRFxResultBlock.h"
#include "blocks/results/ZRFxResultValuesBlock.h"
#include "blocks/results/ZRFxTransformationResultValuesBlock.h"
#include "blocks/results/ZRFxTransformationResultsBlock.h"
#include "blocks/sets/ZRFxSetBlock.h"

namespace tools {
namespace {

using namespace unstruct;
using Kind = Reference::Kind;

class References {
public:
    std::vector<Reference> take() { return std::move(m_references); }

    // A reference that must be there.
    void block(int type, int id, const std::string& place) {
        m_references.push_back({Kind::BLOCK, id, place, type});
    }
    void target(int id) { m_references.push_back({Kind::VALUES_TARGET, id, "target block"}); }
    void state(int id, const std::string& place) {
        m_references.push_back({Kind::STATE, id, place});
    }

    // References that may be none.
    void optionalBlock(int type, int id, const std::string& place) {
        if (id >= 0) block(type, id, place);
    }
    void optionalResult(int id, const std::string& place) {
        if (id >= 0) m_references.push_back({Kind::RESULT, id, place});
    }
    void optionalCase(int id) {
        if (id >= 0) m_references.push_back({Kind::CASE, id, "case"});
    }

private:
    std::vector<Reference> m_references;
};

void collect(const ZRFxElementBlock& block, References& references) {
    references.block(BLOCK_NODES, block.GetNodeBlockID(), "node block");
    references.optionalBlock(BLOCK_CROSS_SECTIONS, block.GetCrossSectionsID(),
                             "cross sections block");
}

void collect(const ZRFxGeometryBlock& block, References& references) {
    for (std::int64_t s = 0; s < block.GetStateCount(); ++s) {
        const ZRFxGeometryState& state = *block.GetState(s);
        // One record alone stands for all states, whatever its state.
        if (block.GetStateCount() > 1) {
            references.state(state.GetStateID(), numbered("record", s));
        }
        for (int g = 0; g < state.GetGeometryCountPerState(); ++g) {
            for (int p = 0; p < state.GetPartCount(g); ++p) {
                const ZRFxGeometryPart part = state.GetPart(g, p);
                references.block(part.blockType, part.blockID,
                                 numbered("state", state.GetStateID()) + numbered(", geometry", g) +
                                     numbered(", part", p));
            }
        }
    }
}

void collectStates(const ZRFxStatesBlock& block, int valuesType, References& references) {
    for (std::int64_t s = 0; s < block.GetStateCount(); ++s) {
        const ZRFxStateValues& state = *block.GetState(s);
        const std::string place = numbered("state", state.m_iStateID);
        references.state(state.m_iStateID, place);
        for (const int id : itemsOf(state.m_aiValuesBlockIDs)) {
            references.block(valuesType, id, place);
        }
    }
}

void collect(const ZRFxResultBlock& block, References& references) {
    references.optionalResult(block.GetDescription().baseResultID, "base result");
    collectStates(block, BLOCK_RESULT_VALUES, references);
}

void collect(const ZRFxSetBlock& block, References& references) {
    for (std::int64_t i = 0; i < block.GetItemsCount(); ++i) {
        references.block(BLOCK_ELEMENTS, block.GetItems(i)->m_iBlockID, numbered("group", i));
    }
}

void collect(const ZRFxPrecomputedTrace& trace, const std::string& place, References& references) {
    references.block(BLOCK_NODES, trace.positionNodeBlockID, place + ", positions");
    references.optionalBlock(BLOCK_RESULT_VALUES, trace.timeResultBlockID, place + ", times");
    references.optionalBlock(BLOCK_RESULT_VALUES, trace.scalarResultBlockID, place + ", scalars");
    references.optionalBlock(BLOCK_RESULT_VALUES, trace.vectorResultBlockID, place + ", vectors");
}

void collect(const ZRFxPrecomputedPart& part, const std::string& place, References& references) {
    references.block(BLOCK_INDEXED_FACE_SET, part.ifsBlockID, place + ", face set");
    references.optionalBlock(BLOCK_NODES, part.nodeBlockID, place + ", nodes");
    references.optionalBlock(BLOCK_RESULT_VALUES, part.fringesResultBlockID, place + ", fringes");
    references.optionalBlock(BLOCK_RESULT_VALUES, part.vectorResultBlockID, place + ", vectors");
}

void collect(const ZRFxPrecomputedGrid& grid, const std::string& place, References& references) {
    references.block(BLOCK_NODES, grid.nodeBlockID, place + ", nodes");
    references.optionalBlock(BLOCK_RESULT_VALUES, grid.computedResultBlockID,
                             place + ", computed values");
    references.optionalBlock(BLOCK_RESULT_VALUES, grid.scalarResultBlockID, place + ", scalars");
    references.optionalBlock(BLOCK_RESULT_VALUES, grid.vectorResultBlockID, place + ", vectors");
}

template <typename Items>
void collectEach(const Items& items, const std::string& place, References& references) {
    for (std::int64_t i = 0; i < items.GetSize(); ++i) {
        collect(*items[i], place + " " + std::to_string(i), references);
    }
}

void collectStates(const ZRFxPrecomputedBlock& block, References& references) {
    for (std::int64_t s = 0; s < block.GetStateCount(); ++s) {
        const ZRFxPrecomputedState& state = *block.GetState(s);
        const std::string place = numbered("state", state.m_iStateID);
        references.state(state.m_iStateID, place);
        collectEach(state.apTraces, place + ", trace", references);
        collectEach(state.apParts, place + ", part", references);
        collectEach(state.apGrids, place + ", grid", references);
    }
}

template <typename Surface>
void collectSurface(const ZRFxBlock& block, References& references) {
    const auto& surface = static_cast<const Surface&>(block);
    references.optionalCase(surface.m_iCaseID);
    references.optionalResult(surface.m_iMapScalarResultId, "scalar result");
    references.optionalResult(surface.m_iMapVectorResultId, "vector result");
    if constexpr (!std::is_same_v<Surface, ZRFxPrecomputedCuttingPlaneBlock>) {
        references.optionalResult(surface.m_iIsoScalarResultId, "iso result");
    }
    collectStates(surface, references);
}

void collect(const ZRFxPrecomputedParticleTraceGroupBlock& block, References& references) {
    references.optionalCase(block.m_iCaseID);
    references.optionalResult(block.m_iVectorResultId, "vector result");
    references.optionalResult(block.m_iMapScalarResultId, "scalar result");
    for (std::int64_t i = 0; i < block.GetTraceCount(); ++i) {
        const ZRFxParticleTrace& trace = *block.GetTrace(i);
        const std::string place = numbered("trace", i);
        references.block(BLOCK_NODES, trace.positionsBlockID, place + ", positions");
        references.optionalBlock(BLOCK_RESULT_VALUES, trace.timeStampsBlockID, place + ", times");
        references.optionalBlock(BLOCK_RESULT_VALUES, trace.mapScalarsBlockID, place + ", scalars");
    }
}

template <typename BlockClass>
const BlockClass& as(const ZRFxBlock& block) {
    return static_cast<const BlockClass&>(block);
}

}  // namespace

std::vector<Reference> referencesOf(const ZRFxBlock& block) {
    References references;
    switch (block.GetType()) {
        case BLOCK_INDEXED_FACE_SET:
            references.block(BLOCK_NODES, as<ZRFxIndexedFaceSetBlock>(block).GetNodeBlockID(),
                             "node block");
            break;
        case BLOCK_ELEMENTS:
            collect(as<ZRFxElementBlock>(block), references);
            break;
        case BLOCK_GEOMETRY:
            collect(as<ZRFxGeometryBlock>(block), references);
            break;
        case BLOCK_RESULTS:
            collect(as<ZRFxResultBlock>(block), references);
            break;
        case BLOCK_TRANSFORMATION_RESULTS:
            collectStates(as<ZRFxStatesBlock>(block), BLOCK_TRANSFORMATION_RESULT_VALUES,
                          references);
            break;
        case BLOCK_RESULT_VALUES:
            references.target(as<ZRFxResultValuesBlock>(block).GetMapToBlockID());
            break;
        case BLOCK_TRANSFORMATION_RESULT_VALUES:
            references.block(as<ZRFxTransformationResultValuesBlock>(block).GetMapToBlockType(),
                             as<ZRFxTransformationResultValuesBlock>(block).GetMapToBlockID(),
                             "target block");
            break;
        case BLOCK_POSITION_RESULT_VALUES:
            references.block(BLOCK_ELEMENTS,
                             as<ZRFxPositionResultValuesBlock>(block).m_iMapToBlockID,
                             "target block");
            break;
        case BLOCK_SET:
            collect(as<ZRFxSetBlock>(block), references);
            break;
        case BLOCK_PRECOMPUTED_ITEM:
            references.optionalCase(as<ZRFxPrecomputedItemBlock>(block).m_iCaseID);
            collectStates(as<ZRFxPrecomputedBlock>(block), references);
            break;
        case BLOCK_PRECOMPUTED_CUTTING_PLANE:
            collectSurface<ZRFxPrecomputedCuttingPlaneBlock>(block, references);
            break;
        case BLOCK_PRECOMPUTED_ISOSURFACE:
            collectSurface<ZRFxPrecomputedIsosurfaceBlock>(block, references);
            break;
        case BLOCK_PRECOMPUTED_ISOVOLUME:
            collectSurface<ZRFxPrecomputedIsovolumeBlock>(block, references);
            break;
        case BLOCK_PRECOMPUTED_PARTICLE_TRACE_GROUP:
            collect(as<ZRFxPrecomputedParticleTraceGroupBlock>(block), references);
            break;
        default:
            break;
    }
    return references.take();
}

}  // namespace tools
