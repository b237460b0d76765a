// Surfaces, grids and particle traces that a viewer has computed.
#include "Text.h"
#include "check/BlockChecks.h"
#include "content/BlockGroup.h"
#include "content/Content.h"
#include "content/Table.h"

namespace tools {
namespace {

using namespace unstruct;

void describe(const ZRFxPrecomputedPart& part, Content& content) {
    content.add("face set block", part.ifsBlockID);
    content.add("node block", part.nodeBlockID);
    content.add("fringes block", part.fringesResultBlockID);
    content.add("fringes mapping", ResultMappingName(part.fringesResultMapping));
    content.add("vectors block", part.vectorResultBlockID);
    content.add("surface color", part.surfaceColor);
}

void describe(const ZRFxPrecomputedGrid& grid, Content& content) {
    content.add("node block", grid.nodeBlockID);
    content.add("points in i", grid.numI);
    content.add("points in j", grid.numJ);
    content.add("computed block", grid.computedResultBlockID);
    content.add("scalars block", grid.scalarResultBlockID);
    content.add("vectors block", grid.vectorResultBlockID);
}

void describe(const ZRFxPrecomputedTrace& trace, Content& content) {
    content.add("positions block", trace.positionNodeBlockID);
    content.add("times block", trace.timeResultBlockID);
    content.add("scalars block", trace.scalarResultBlockID);
    content.add("vectors block", trace.vectorResultBlockID);
}

template <typename Items>
void describeEach(const char* what, const Items& items, Content& content) {
    for (std::int64_t i = 0; i < items.GetSize(); ++i) {
        const Content::Scope scope(content, numbered(what, i));
        describe(*items[i], content);
    }
}

void describeStates(const ZRFxPrecomputedBlock& block, Content& content) {
    for (std::int64_t s = 0; s < block.GetStateCount(); ++s) {
        const ZRFxPrecomputedState& state = *block.GetState(s);
        const Content::Scope scope(content, numbered("state", state.m_iStateID));
        describeEach("trace", state.apTraces, content);
        describeEach("part", state.apParts, content);
        describeEach("grid", state.apGrids, content);
    }
}

void describe(const ZRFxPrecomputedItemBlock& block, Content& content) {
    content.add("item type", PrecomputedItemTypeName(block.m_iItemType));
    content.add("item id", block.m_iItemID);
    content.add("case", block.m_iCaseID);
    describeStates(block, content);
}

void write(const ZRFxPrecomputedItemBlock& block, Table& table) {
    writeFields(block, table);
}

void check(const ZRFxPrecomputedItemBlock&, CheckedDatabase&) {}

void describeSurface(const ZRFxPrecomputedSurfaceBlock& block, Content& content) {
    content.add("case", block.m_iCaseID);
    content.add("scalar result id", block.m_iMapScalarResultId);
    content.add("vector result id", block.m_iMapVectorResultId);
    content.add("surface visible", block.m_bSurfaceVisible);
    content.add("surface color", block.m_cSurfaceColor);
    content.add("opacity", block.m_fOpacity);
    content.add("specular intensity", block.m_fSpecularIntensity);
    content.add("draw style", block.m_sDrawStyle);
    describeStates(block, content);
}

void describe(const ZRFxPrecomputedCuttingPlaneBlock& block, Content& content) {
    content.add("cutting plane", block.m_iCuttingPlaneID);
    content.add("point", block.m_vPoint);
    content.add("normal", block.m_vNormal);
    content.add("grid spacing", block.m_dGridSpacing);
    content.add("clips", block.m_bUseClipping);
    content.add("grid lines visible", block.m_bGridLinesVisible);
    describeSurface(block, content);
}

void write(const ZRFxPrecomputedCuttingPlaneBlock& block, Table& table) {
    writeFields(block, table);
}

void check(const ZRFxPrecomputedCuttingPlaneBlock&, CheckedDatabase&) {}

void describe(const ZRFxPrecomputedIsosurfaceBlock& block, Content& content) {
    content.add("iso-surface", block.m_iIsosurfaceID);
    content.add("iso-value", block.m_dIsoValue);
    content.add("iso result id", block.m_iIsoScalarResultId);
    describeSurface(block, content);
}

void write(const ZRFxPrecomputedIsosurfaceBlock& block, Table& table) {
    writeFields(block, table);
}

void check(const ZRFxPrecomputedIsosurfaceBlock&, CheckedDatabase&) {}

void describe(const ZRFxPrecomputedIsovolumeBlock& block, Content& content) {
    content.add("iso-volume", block.m_iIsovolumeID);
    content.add("lowest iso-value", block.m_dMinIsoValue);
    content.add("highest iso-value", block.m_dMaxIsoValue);
    content.add("iso result id", block.m_iIsoScalarResultId);
    content.add("texture", block.m_sTextureName);
    content.add("environment mapping", block.m_bEnvironmentMapping);
    describeSurface(block, content);
}

void write(const ZRFxPrecomputedIsovolumeBlock& block, Table& table) {
    writeFields(block, table);
}

void check(const ZRFxPrecomputedIsovolumeBlock&, CheckedDatabase&) {}

void describe(const ZRFxPrecomputedParticleTraceGroupBlock& block, Content& content) {
    content.add("case", block.m_iCaseID);
    content.add("group id", block.m_iGroupID);
    content.add("vector result id", block.m_iVectorResultId);
    content.add("scalar result id", block.m_iMapScalarResultId);
    for (std::int64_t i = 0; i < block.GetTraceCount(); ++i) {
        const ZRFxParticleTrace& trace = *block.GetTrace(i);
        const Content::Scope scope(content, numbered("trace", i));
        content.add("positions block", trace.positionsBlockID);
        content.add("times block", trace.timeStampsBlockID);
        content.add("scalars block", trace.mapScalarsBlockID);
    }
}

void write(const ZRFxPrecomputedParticleTraceGroupBlock& block, Table& table) {
    writeFields(block, table);
}

void check(const ZRFxPrecomputedParticleTraceGroupBlock&, CheckedDatabase&) {}

}  // namespace

const BlockGroup kPrecomputedBlocks{
    [](const ZRFxBlock& block, Content& content) {
        Visit<ZRFxPrecomputedBlockClasses>(block, [&](const auto& own) { describe(own, content); });
    },
    [](const ZRFxBlock& block, Table& table) {
        Visit<ZRFxPrecomputedBlockClasses>(block, [&](const auto& own) { write(own, table); });
    },
    [](const ZRFxBlock& block, CheckedDatabase& checked) {
        Visit<ZRFxPrecomputedBlockClasses>(block, [&](const auto& own) { check(own, checked); });
    },
};

}  // namespace tools
