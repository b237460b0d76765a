#include "blocks/mesh/ZRFxGeometryBlock.h"

#include <algorithm>
#include <climits>
#include <memory>
#include <set>
#include <string_view>
#include <utility>

#include "blocks/ZRFxOutline.h"
#include "documents/ZRFxXml.h"
#include "nvf/Number.h"

namespace unstruct {
namespace {

using ZRint = int;

constexpr const char* kCount = "GeometryCountPerState";
constexpr const char* kLegacyIDs = "VexlynAPIGeometryIDs";

// The number of geometries per state: as the document says, or else by the highest index in it.
int countGeometries(const nvf::XmlElement& root) {
    if (root.hasAttribute(kCount)) return root.getAttributeInt(kCount, 0);
    int highest = 0;
    for (nvf::XmlElement state = root.firstChildElement("State"); state.notNull();
         state = state.nextSiblingElement("State")) {
        for (nvf::XmlElement geometry = state.firstChildElement("Geometry"); geometry.notNull();
             geometry = geometry.nextSiblingElement("Geometry")) {
            highest = std::max(highest, geometry.getAttributeInt("Index", -1));
        }
    }
    return highest < INT_MAX ? highest + 1 : highest;
}

// Takes the next number off the front of a list with blanks between; -1 when there is none.
int takeNumber(std::string_view& list) {
    const std::string_view word = list.substr(0, list.find(' '));
    list.remove_prefix(std::min(word.size() + 1, list.size()));
    int number = -1;
    return nvf::parseNumber(word, number) ? number : -1;
}

}  // namespace

const std::vector<ZRFxGeometryPart>& ZRFxGeometryParts::operator[](int iGlobalGeometryIndex) const {
    static const std::vector<ZRFxGeometryPart> kNoParts;
    const auto found = m_geometries.find(iGlobalGeometryIndex);
    return found == m_geometries.end() ? kNoParts : found->second.parts;
}

void ZRFxGeometryParts::Add(int iGlobalGeometryIndex, const ZRFxGeometryPart& part) {
    m_geometries[iGlobalGeometryIndex].parts.push_back(part);
}

void ZRFxGeometryParts::Set(int iGlobalGeometryIndex, std::vector<ZRFxGeometryPart> parts) {
    Geometry geometry;
    geometry.parts = std::move(parts);
    m_geometries.insert_or_assign(iGlobalGeometryIndex, std::move(geometry));
}

const ZRFxGeometryPart* ZRFxGeometryParts::Find(int iGlobalGeometryIndex, int blockID, int partID) {
    const auto found = m_geometries.find(iGlobalGeometryIndex);
    if (found == m_geometries.end()) return nullptr;
    auto& [parts, indicesOfBlocks, indicesOfParts] = found->second;
    for (auto i = static_cast<std::size_t>(indicesOfBlocks.GetNumItems()); i < parts.size(); ++i) {
        indicesOfBlocks.Add(parts[i].blockID);
    }
    for (auto i = static_cast<std::size_t>(indicesOfParts.GetNumItems()); i < parts.size(); ++i) {
        indicesOfParts.Add(parts[i].partID);
    }
    const std::int64_t ofBlock = indicesOfBlocks.IndexOf(blockID);
    const std::int64_t ofPart = indicesOfParts.IndexOf(partID);
    const bool isBlockFirst = ofPart < 0 || (ofBlock >= 0 && ofBlock < ofPart);
    const std::int64_t first = isBlockFirst ? ofBlock : ofPart;
    return first < 0 ? nullptr : &parts[static_cast<std::size_t>(first)];
}

ZRFxGeometryState::ZRFxGeometryState(int stateID, int geometryCountPerState)
    : m_iStateID(stateID), m_iGeometryCountPerState(std::max(geometryCountPerState, 0)) {}

int ZRFxGeometryState::GetPartCount(int iGlobalGeometryIndex) const {
    if (!IsGeometry(iGlobalGeometryIndex)) return 0;
    return static_cast<int>(m_geometryParts[iGlobalGeometryIndex].size());
}

ZRFxGeometryPart ZRFxGeometryState::GetPart(int iGlobalGeometryIndex, int iPartIndex) const {
    if (!IsGeometry(iGlobalGeometryIndex)) return {};
    // clang-format off
    NVF_ASSERT(iPartIndex >= 0 && iPartIndex < static_cast<ZRint>(m_geometryParts[iGlobalGeometryIndex].size()));
    // clang-format on
    if (iPartIndex < 0 || iPartIndex >= GetPartCount(iGlobalGeometryIndex)) return {};
    return m_geometryParts[iGlobalGeometryIndex][static_cast<std::size_t>(iPartIndex)];
}

bool ZRFxGeometryState::AddPart(int iGlobalGeometryIndex, const ZRFxGeometryPart& part) {
    if (!IsGeometry(iGlobalGeometryIndex)) return false;
    m_geometryParts.Add(iGlobalGeometryIndex, part);
    return true;
}

bool ZRFxGeometryState::SetParts(int iGlobalGeometryIndex, std::vector<ZRFxGeometryPart> parts) {
    if (!IsGeometry(iGlobalGeometryIndex)) return false;
    m_geometryParts.Set(iGlobalGeometryIndex, std::move(parts));
    return true;
}

const ZRFxGeometryPart* ZRFxGeometryState::FindPart(int iGlobalGeometryIndex, int blockID,
                                                    int partID) {
    if (!IsGeometry(iGlobalGeometryIndex)) return nullptr;
    return m_geometryParts.Find(iGlobalGeometryIndex, blockID, partID);
}

bool ZRFxGeometryState::IsGeometry(int iGlobalGeometryIndex) const {
    NVF_ASSERT(iGlobalGeometryIndex >= 0 && iGlobalGeometryIndex < GetGeometryCountPerState());
    return iGlobalGeometryIndex >= 0 && iGlobalGeometryIndex < GetGeometryCountPerState();
}

ZRFxGeometryBlock::ZRFxGeometryBlock(ZRFxBlockStore* pDatabase, int id)
    : ZRFxBlock(pDatabase, id, kType) {}

ZRFxGeometryState* ZRFxGeometryBlock::AddState(int stateID) {
    return AddState(std::make_unique<ZRFxGeometryState>(stateID, m_iGeometryCountPerState));
}

ZRFxGeometryState* ZRFxGeometryBlock::AddState(std::unique_ptr<ZRFxGeometryState> pState) {
    NVF_ASSERT(pState);
    if (!pState) return nullptr;
    SetRead(true);
    m_apStates.MakeRoom();
    m_indices.Add(pState->GetStateID());
    return m_apStates.Add(std::move(pState));
}

bool ZRFxGeometryBlock::HasGeometryCountPerState() const {
    NVF_ASSERT(m_pDatabase);
    if (!m_pDatabase) return false;
    nvf::XmlDocument doc;
    const nvf::XmlElement root = GetRootElement(&doc);
    if (root.isNull()) return Log().fail("Invalid XML");
    return root.hasAttribute(kCount);
}

bool ZRFxGeometryBlock::GetLegacyGeometryInfo(ZRFxGeometryInfoBlock* pGeometryInfo) const {
    NVF_ASSERT(pGeometryInfo);
    NVF_ASSERT(m_pDatabase);
    if (!pGeometryInfo || !m_pDatabase) return false;
    nvf::XmlDocument doc;
    const nvf::XmlElement root = GetRootElement(&doc);
    if (root.isNull()) return Log().fail("Invalid XML");
    pGeometryInfo->SetGeometryCountPerState(1);
    ZRFxPartInfos* parts = pGeometryInfo->GetPartInfos(0);
    std::set<int> partIDs;
    for (nvf::XmlElement state = root.firstChildElement("State"); state.notNull();
         state = state.nextSiblingElement("State")) {
        for (nvf::XmlElement element = state.firstChildElement(); element.notNull();
             element = element.nextSiblingElement()) {
            ZRFxGeometryPart part;
            if (!ReadPart(element, &part)) return false;
            if (!partIDs.insert(part.partID).second) continue;
            parts->AddPartInfo({part.partID, -1, GetAttribute(element, "PartName"), false});
        }
    }
    return true;
}

bool ZRFxGeometryBlock::FillGeometryInfos(const ZRFxGeometryInfoBlock& partInfos,
                                          const ZRPtrArray<ZRFxStateInfo>* pStateInfos,
                                          ZRPtrArray<ZRFxGeometryInfo>* pGeoInfos) const {
    NVF_ASSERT(pGeoInfos && pStateInfos);
    if (!pGeoInfos || !pStateInfos) return false;
    const std::int64_t iNumStates = pStateInfos->GetSize();
    const std::int64_t iNumGeometryStates = m_apStates.GetSize();
    const bool isForStates = iNumGeometryStates == iNumStates || iNumGeometryStates == 1;
    const bool isForGeometries = pGeoInfos->GetSize() == GetGeometryCountPerState();
    NVF_ASSERT(iNumGeometryStates == iNumStates || iNumGeometryStates == 1);
    NVF_ASSERT(pGeoInfos->GetSize() == GetGeometryCountPerState());
    if (!isForStates || !isForGeometries) return false;
    for (int geometry = 0; geometry < GetGeometryCountPerState(); ++geometry) {
        ZRFxGeometryInfo& info = *(*pGeoInfos)[geometry];
        info = ZRFxGeometryInfo();
        if (geometry < partInfos.GetGeometryCountPerState()) {
            info.partInfos = *partInfos.GetPartInfos(geometry);
        }
        for (std::int64_t i = 0; i < iNumStates; ++i) {
            const ZRFxGeometryState* pZrfxState = m_apStates[iNumGeometryStates == 1 ? 0 : i];
            const ZRFxStateInfo* pStateInfo = (*pStateInfos)[i];
            NVF_ASSERT(pZrfxState && pStateInfo);
            if (!pZrfxState || !pStateInfo) return false;
            info.states.push_back(
                {pStateInfo->stateID, pStateInfo->name, PartsOf(*pZrfxState, geometry)});
        }
    }
    return true;
}

bool ZRFxGeometryBlock::DoReadBlock(const nvf::XmlElement& root) {
    DoUnloadData();
    m_iGeometryCountPerState = countGeometries(root);
    if (!CheckGeometryCount()) return false;
    for (nvf::XmlElement element = root.firstChildElement("State"); element.notNull();
         element = element.nextSiblingElement("State")) {
        ZRFxGeometryState* state = AddState(element.getAttributeInt("ID", -1));
        const bool isRead = element.firstChildElement("Geometry").isNull()
                                ? ReadLegacyParts(element, state)
                                : ReadGeometries(element, state);
        if (!isRead) return false;
    }
    return true;
}

bool ZRFxGeometryBlock::CheckContents() const {
    return CheckGeometryCount() &&
           std::all_of(m_apStates.begin(), m_apStates.end(),
                       [this](const auto& state) { return CheckState(*state); });
}

bool ZRFxGeometryBlock::DoWriteBlock(nvf::XmlElement root) {
    root.setAttributeInt(kCount, m_iGeometryCountPerState);
    for (const auto& state : m_apStates) {
        NVF_ASSERT(state);
        WriteState(root, *state);
    }
    return true;
}

// One record alone stands for all states, whatever its state.
void ZRFxGeometryBlock::DoOutline(const nvf::XmlElement&, ZRFxOutline* outline) const {
    for (std::int64_t s = 0; s < GetStateCount(); ++s) {
        const ZRFxGeometryState& state = *GetState(s);
        const std::string place = NumberedPlace("state", state.GetStateID());
        if (GetStateCount() > 1) outline->AddState(state.GetStateID(), NumberedPlace("record", s));
        for (int g = 0; g < state.GetGeometryCountPerState(); ++g) {
            for (int p = 0; p < state.GetPartCount(g); ++p) {
                const ZRFxGeometryPart part = state.GetPart(g, p);
                outline->AddBlock(
                    part.blockType, part.blockID,
                    place + NumberedPlace(", geometry", g) + NumberedPlace(", part", p));
            }
        }
    }
}

void ZRFxGeometryBlock::DoUnloadData() {
    m_apStates.RemoveAll();
    m_indices = ZRIDLookup();
}

std::vector<ZRFxGeometryPart> ZRFxGeometryBlock::PartsOf(const ZRFxGeometryState& state,
                                                         int geometry) const {
    std::vector<ZRFxGeometryPart> parts;
    for (int i = 0; i < state.GetPartCount(geometry); ++i) {
        parts.push_back(state.GetPart(geometry, i));
    }
    return parts;
}

bool ZRFxGeometryBlock::ReadGeometries(const nvf::XmlElement& element, ZRFxGeometryState* pState) {
    for (nvf::XmlElement geometry = element.firstChildElement("Geometry"); geometry.notNull();
         geometry = geometry.nextSiblingElement("Geometry")) {
        const int index = geometry.getAttributeInt("Index", -1);
        if (index < 0 || index >= m_iGeometryCountPerState) return FailIndex();
        for (nvf::XmlElement child = geometry.firstChildElement(); child.notNull();
             child = child.nextSiblingElement()) {
            ZRFxGeometryPart part;
            if (!ReadPart(child, &part)) return false;
            part.apiGeometryID = geometry.getAttributeInt("APIGeometryID", -1);
            pState->AddPart(index, part);
        }
    }
    return true;
}

// The legacy layout has the parts of its one geometry directly below the state, and their geometry
// ids as a list of numbers in an attribute of it. A state without children has no parts in either
// layout.
bool ZRFxGeometryBlock::ReadLegacyParts(const nvf::XmlElement& element, ZRFxGeometryState* pState) {
    if (element.firstChildElement().isNull()) return true;
    if (m_iGeometryCountPerState != 1) return FailGeometryCount();
    std::string_view geometryIDs = element.getAttributeUtf8(kLegacyIDs, "");
    for (nvf::XmlElement child = element.firstChildElement(); child.notNull();
         child = child.nextSiblingElement()) {
        ZRFxGeometryPart part;
        if (!ReadPart(child, &part)) return false;
        part.apiGeometryID = takeNumber(geometryIDs);
        pState->AddPart(0, part);
    }
    return true;
}

bool ZRFxGeometryBlock::ReadPart(const nvf::XmlElement& element, ZRFxGeometryPart* part) const {
    part->blockType = ZRFxBlockTypeFromName(ZRString(element.nameUtf8()));
    part->blockID = element.getAttributeInt("BlockID", -1);
    part->partID = element.getAttributeInt("PartID", -1);
    return CheckPart(*part);
}

bool ZRFxGeometryBlock::CheckGeometryCount() const {
    return (m_iGeometryCountPerState >= 1 && m_iGeometryCountPerState <= kMostGeometriesPerState) ||
           FailGeometryCount();
}

bool ZRFxGeometryBlock::CheckState(const ZRFxGeometryState& state) const {
    const int count = state.GetGeometryCountPerState();
    if (count > m_iGeometryCountPerState) return FailIndex();
    if (count < m_iGeometryCountPerState) {
        return FailUnfit(GetDocumentName(), "geometries of a state", count,
                         m_iGeometryCountPerState);
    }
    for (int geometry = 0; geometry < count; ++geometry) {
        for (int i = 0; i < state.GetPartCount(geometry); ++i) {
            if (!CheckPart(state.GetPart(geometry, i))) return false;
        }
    }
    return true;
}

bool ZRFxGeometryBlock::CheckPart(const ZRFxGeometryPart& part) const {
    return part.blockType == BLOCK_ELEMENTS || part.blockType == BLOCK_INDEXED_FACE_SET ||
           Log().fail("Only Elements and Indexed face sets are allowed in geometry spec");
}

bool ZRFxGeometryBlock::FailGeometryCount() const {
    return FailUnfit(GetDocumentName(), "geometries per state", m_iGeometryCountPerState, 1);
}

bool ZRFxGeometryBlock::FailIndex() const {
    return Log().fail("Illegal Geometry Index specified in Geometry::State::Geometry block");
}

void ZRFxGeometryBlock::WriteState(nvf::XmlElement root, const ZRFxGeometryState& record) {
    nvf::XmlElement state = root.addChildElement("State");
    state.setAttributeInt("ID", record.GetStateID());
    for (int geometry = 0; geometry < record.GetGeometryCountPerState(); ++geometry) {
        WriteGeometry(state, record, geometry);
    }
}

void ZRFxGeometryBlock::WriteGeometry(nvf::XmlElement state, const ZRFxGeometryState& record,
                                      int geometry) {
    const int numParts = record.GetPartCount(geometry);
    nvf::XmlElement element = state.addChildElement("Geometry");
    element.setAttributeInt("Index", geometry);
    element.setAttributeInt("APIGeometryID",
                            numParts > 0 ? record.GetPart(geometry, 0).apiGeometryID : -1);
    for (int i = 0; i < numParts; ++i) {
        const ZRFxGeometryPart part = record.GetPart(geometry, i);
        nvf::XmlElement child = element.addChildElement(ZRFxBlockTypeName(part.blockType).CStr());
        child.setAttributeInt("BlockID", part.blockID);
        child.setAttributeInt("PartID", part.partID);
    }
}

}  // namespace unstruct
