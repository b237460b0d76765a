#include "blocks/precomputed/ZRFxPrecomputedBlock.h"

#include <algorithm>
#include <memory>

#include "blocks/ZRFxOutline.h"
#include "documents/ZRFxXml.h"

namespace unstruct {
namespace {

void addOutline(const ZRFxPrecomputedTrace& trace, const std::string& place, ZRFxOutline* outline) {
    outline->AddBlock(BLOCK_NODES, trace.positionNodeBlockID, place + ", positions");
    outline->AddOptionalBlock(BLOCK_RESULT_VALUES, trace.timeResultBlockID, place + ", times");
    outline->AddOptionalBlock(BLOCK_RESULT_VALUES, trace.scalarResultBlockID, place + ", scalars");
    outline->AddOptionalBlock(BLOCK_RESULT_VALUES, trace.vectorResultBlockID, place + ", vectors");
}

// Fringes belong to nodes or polygons, as the part says.
void addOutline(const ZRFxPrecomputedPart& part, const std::string& place, ZRFxOutline* outline) {
    outline->AddBlock(BLOCK_INDEXED_FACE_SET, part.ifsBlockID, place + ", face set");
    outline->AddOptionalBlock(BLOCK_NODES, part.nodeBlockID, place + ", nodes");
    outline->AddOptionalBlock(BLOCK_RESULT_VALUES, part.fringesResultBlockID, place + ", fringes");
    outline->AddOptionalBlock(BLOCK_RESULT_VALUES, part.vectorResultBlockID, place + ", vectors");
    if (part.fringesResultBlockID < 0) return;
    outline->valuesUses.push_back({part.fringesResultBlockID, part.fringesResultMapping, 0});
}

void addOutline(const ZRFxPrecomputedGrid& grid, const std::string& place, ZRFxOutline* outline) {
    outline->AddBlock(BLOCK_NODES, grid.nodeBlockID, place + ", nodes");
    outline->AddOptionalBlock(BLOCK_RESULT_VALUES, grid.computedResultBlockID,
                              place + ", computed values");
    outline->AddOptionalBlock(BLOCK_RESULT_VALUES, grid.scalarResultBlockID, place + ", scalars");
    outline->AddOptionalBlock(BLOCK_RESULT_VALUES, grid.vectorResultBlockID, place + ", vectors");
}

template <typename Items>
void outlineEach(const Items& items, const std::string& place, ZRFxOutline* outline) {
    for (std::int64_t i = 0; i < items.GetSize(); ++i) {
        addOutline(*items[i], NumberedPlace(place, i), outline);
    }
}

}  // namespace

void ZRFxPrecomputedState::RemoveParts(std::int64_t iFrom, std::int64_t iTo) {
    NVF_ASSERT(iTo >= 0 && iTo < apParts.GetSize());
    apParts.RemoveRange(iFrom, iTo);
}

ZRFxPrecomputedState* ZRFxPrecomputedBlock::AddState(int stateID) {
    SetRead(true);
    ZRFxPrecomputedState* state = m_apStates.Add(std::make_unique<ZRFxPrecomputedState>());
    state->m_iStateID = stateID;
    return state;
}

bool ZRFxPrecomputedBlock::DoReadBlock(const nvf::XmlElement& root) {
    DoUnloadData();
    ReadAttributes(root);
    for (nvf::XmlElement element = root.firstChildElement("State"); element.notNull();
         element = element.nextSiblingElement("State")) {
        ZRFxPrecomputedState* state = AddState(element.getAttributeInt("ID", -1));
        ReadTraces(element, state);
        ReadParts(element, state);
        if (!ReadGrids(element, state)) return false;
    }
    return true;
}

bool ZRFxPrecomputedBlock::CheckContents() const {
    for (const auto& state : m_apStates) {
        for (const auto& grid : state->apGrids) {
            if (!CheckGrid(*grid)) return false;
        }
    }
    return true;
}

bool ZRFxPrecomputedBlock::DoWriteBlock(nvf::XmlElement root) {
    WriteAttributes(root);
    for (const auto& state : m_apStates) {
        NVF_ASSERT(state);
        WriteState(root, *state);
    }
    return true;
}

void ZRFxPrecomputedBlock::DoOutline(const nvf::XmlElement&, ZRFxOutline* outline) const {
    OutlineAttributes(outline);
    for (const auto& pState : m_apStates) {
        const std::string place = NumberedPlace("state", pState->m_iStateID);
        outline->AddState(pState->m_iStateID, place);
        outlineEach(pState->apTraces, place + ", trace", outline);
        outlineEach(pState->apParts, place + ", part", outline);
        outlineEach(pState->apGrids, place + ", grid", outline);
    }
}

void ZRFxPrecomputedBlock::ReadTraces(const nvf::XmlElement& element,
                                      ZRFxPrecomputedState* pState) {
    for (nvf::XmlElement trace = element.firstChildElement("ParticleTrace"); trace.notNull();
         trace = trace.nextSiblingElement("ParticleTrace")) {
        ZRFxPrecomputedTrace* pTrace =
            pState->apTraces.Add(std::make_unique<ZRFxPrecomputedTrace>());
        pTrace->positionNodeBlockID = trace.getAttributeInt("PositionNodeBlockID", -1);
        pTrace->timeResultBlockID = trace.getAttributeInt("TimeResultBlockID", -1);
        pTrace->scalarResultBlockID = trace.getAttributeInt("ScalarResultBlockID", -1);
        pTrace->vectorResultBlockID = trace.getAttributeInt("VectorResultBlockID", -1);
    }
}

void ZRFxPrecomputedBlock::ReadParts(const nvf::XmlElement& element, ZRFxPrecomputedState* pState) {
    for (nvf::XmlElement part = element.firstChildElement("Part"); part.notNull();
         part = part.nextSiblingElement("Part")) {
        ZRFxPrecomputedPart* pPart = pState->apParts.Add(std::make_unique<ZRFxPrecomputedPart>());
        pPart->ifsBlockID = part.getAttributeInt("IFSBlockID", -1);
        pPart->nodeBlockID = part.getAttributeInt("NodeBlockID", -1);
        pPart->fringesResultBlockID = part.getAttributeInt("FringesResultBlockID", -1);
        if (part.hasAttribute("FringesResultMapping")) {
            pPart->fringesResultMapping =
                ResultMappingFromName(GetAttribute(part, "FringesResultMapping"));
        }
        pPart->vectorResultBlockID = part.getAttributeInt("VectorResultBlockID", -1);
        pPart->surfaceColor = GetColor(part, "SurfaceColor");
    }
}

bool ZRFxPrecomputedBlock::ReadGrids(const nvf::XmlElement& element, ZRFxPrecomputedState* pState) {
    for (nvf::XmlElement grid = element.firstChildElement("Grid"); grid.notNull();
         grid = grid.nextSiblingElement("Grid")) {
        ZRFxPrecomputedGrid* pGrid = pState->apGrids.Add(std::make_unique<ZRFxPrecomputedGrid>());
        pGrid->nodeBlockID = grid.getAttributeInt("NodeBlockID", -1);
        pGrid->numI = grid.getAttributeInt("NumI", 0);
        pGrid->numJ = grid.getAttributeInt("NumJ", 0);
        pGrid->computedResultBlockID = grid.getAttributeInt("ComputedResultBlockID", -1);
        pGrid->scalarResultBlockID = grid.getAttributeInt("ScalarResultBlockID", -1);
        pGrid->vectorResultBlockID = grid.getAttributeInt("VectorResultBlockID", -1);
        if (!CheckGrid(*pGrid)) return false;
    }
    return true;
}

bool ZRFxPrecomputedBlock::CheckGrid(const ZRFxPrecomputedGrid& grid) const {
    const int lowest = std::min(grid.numI, grid.numJ);
    return lowest >= 0 || FailUnfit(GetDocumentName(), "grid lines", lowest, 0);
}

void ZRFxPrecomputedBlock::WriteState(nvf::XmlElement root, const ZRFxPrecomputedState& record) {
    nvf::XmlElement state = root.addChildElement("State");
    state.setAttributeInt("ID", record.m_iStateID);
    for (const auto& trace : record.apTraces) {
        NVF_ASSERT(trace);
        WriteTrace(state, *trace);
    }
    for (const auto& part : record.apParts) {
        NVF_ASSERT(part);
        WritePart(state, *part);
    }
    for (const auto& grid : record.apGrids) WriteGrid(state, *grid);
}

void ZRFxPrecomputedBlock::WriteTrace(nvf::XmlElement state, const ZRFxPrecomputedTrace& trace) {
    nvf::XmlElement element = state.addChildElement("ParticleTrace");
    element.setAttributeInt("PositionNodeBlockID", trace.positionNodeBlockID);
    element.setAttributeInt("TimeResultBlockID", trace.timeResultBlockID);
    element.setAttributeInt("ScalarResultBlockID", trace.scalarResultBlockID);
    element.setAttributeInt("VectorResultBlockID", trace.vectorResultBlockID);
}

void ZRFxPrecomputedBlock::WritePart(nvf::XmlElement state, const ZRFxPrecomputedPart& part) {
    nvf::XmlElement element = state.addChildElement("Part");
    element.setAttributeInt("IFSBlockID", part.ifsBlockID);
    element.setAttributeInt("NodeBlockID", part.nodeBlockID);
    element.setAttributeInt("FringesResultBlockID", part.fringesResultBlockID);
    SetAttribute(element, "FringesResultMapping", ResultMappingName(part.fringesResultMapping));
    element.setAttributeInt("VectorResultBlockID", part.vectorResultBlockID);
    if (HasPartColors()) SetAttribute(element, "SurfaceColor", part.surfaceColor);
}

void ZRFxPrecomputedBlock::WriteGrid(nvf::XmlElement state, const ZRFxPrecomputedGrid& grid) {
    nvf::XmlElement element = state.addChildElement("Grid");
    element.setAttributeInt("NodeBlockID", grid.nodeBlockID);
    element.setAttributeInt("NumI", grid.numI);
    element.setAttributeInt("NumJ", grid.numJ);
    element.setAttributeInt("ComputedResultBlockID", grid.computedResultBlockID);
    element.setAttributeInt("ScalarResultBlockID", grid.scalarResultBlockID);
    element.setAttributeInt("VectorResultBlockID", grid.vectorResultBlockID);
}

}  // namespace unstruct
