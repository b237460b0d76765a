#include "blocks/results/ZRFxStateInfoBlock.h"

#include <memory>
#include <utility>

#include "blocks/ZRFxOutline.h"
#include "documents/ZRFxXml.h"

namespace unstruct {

ZRFxStateInfoBlock::ZRFxStateInfoBlock(ZRFxBlockStore* pDatabase, int id)
    : ZRFxListBlock(pDatabase, id, kType) {}

ZRFxStateInfo* ZRFxStateInfoBlock::AddState(ZRFxStateInfo info) {
    return AddState(std::make_unique<ZRFxStateInfo>(std::move(info)));
}

ZRFxStateInfo* ZRFxStateInfoBlock::AddState(std::unique_ptr<ZRFxStateInfo> pInfo) {
    SetRead(true);
    return m_apStateInfo.Add(std::move(pInfo));
}

void ZRFxStateInfoBlock::RemoveStates(std::int64_t iFrom, std::int64_t iTo) {
    NVF_ASSERT(iTo >= 0 && iTo < m_apStateInfo.GetSize());
    m_apStateInfo.RemoveRange(iFrom, iTo);
    Touch(iFrom);
}

ZRFxStateInfo* ZRFxStateInfoBlock::EditState(std::int64_t index) {
    Touch(index);
    return m_apStateInfo[index];
}

bool ZRFxStateInfoBlock::DoReadBlock(const nvf::XmlElement& root) {
    DoUnloadData();
    for (nvf::XmlElement state = root.firstChildElement("State"); state.notNull();
         state = state.nextSiblingElement("State")) {
        if (!ReadState(state)) return Log().fail("Invalid XML");
    }
    return true;
}

void ZRFxStateInfoBlock::DoOutline(const nvf::XmlElement&, ZRFxOutline* outline) const {
    for (const auto& info : m_apStateInfo) outline->stateIDs.push_back(info->stateID);
}

void ZRFxStateInfoBlock::DoUnloadData() {
    m_apStateInfo.RemoveAll();
    Touch(0);
}

bool ZRFxStateInfoBlock::ReadState(const nvf::XmlElement& state) {
    ZRFxStateInfo info;
    info.stateID = state.getAttributeInt("ID", -1);
    info.name = GetAttribute(state, "Name");
    info.referenceValue = state.getAttributeFloat("RefValue", 0);
    info.referenceType = ReferenceTypeFromName(GetAttribute(state, "RefType"));
    info.parentID = state.getAttributeInt("ParentID", -1);
    info.group = GetAttribute(state, "Group");
    if (!ReadExportInfo(state, &info.exportInfo)) return false;
    AddState(info);
    return true;
}

bool ZRFxStateInfoBlock::ReadExportInfo(const nvf::XmlElement& state, ZRFxExportInfo* info) {
    const nvf::XmlElement element = state.firstChildElement("ZRFxExportInfo");
    info->polygonModel = element.getAttributeBool("PolygonModel", false);
    info->visiblePartsOnly = element.getAttributeBool("VisiblePartsOnly", false);
    info->firstOrderNodesOnly = element.getAttributeBool("FirstOrderNodesOnly", false);
    return ReadIntList(element.firstChildElement("VisibleSetIDs"), &info->visibleSetIDs) &&
           ReadIntList(element.firstChildElement("PartFlags"), &info->partFlags);
}

void ZRFxStateInfoBlock::WriteItem(nvf::XmlElement root, std::int64_t index) const {
    const ZRFxStateInfo& info = *m_apStateInfo[index];
    nvf::XmlElement state = root.addChildElement("State");
    state.setAttributeInt("ID", info.stateID);
    SetAttribute(state, "Name", info.name);
    state.setAttributeFloat("RefValue", info.referenceValue);
    SetAttribute(state, "RefType", ReferenceTypeName(info.referenceType));
    state.setAttributeInt("ParentID", info.parentID);
    SetAttribute(state, "Group", info.group);
    WriteExportInfo(state, info.exportInfo);
}

void ZRFxStateInfoBlock::WriteExportInfo(nvf::XmlElement state, const ZRFxExportInfo& info) const {
    nvf::XmlElement element = state.addChildElement("ZRFxExportInfo");
    element.setAttributeBool("PolygonModel", info.polygonModel);
    element.setAttributeBool("VisiblePartsOnly", info.visiblePartsOnly);
    element.setAttributeBool("FirstOrderNodesOnly", info.firstOrderNodesOnly);
    nvf::XmlElement setIDs = element.addChildElement("VisibleSetIDs");
    WriteIntList(setIDs, info.visibleSetIDs);
    nvf::XmlElement partFlags = element.addChildElement("PartFlags");
    WriteIntList(partFlags, info.partFlags);
}

}  // namespace unstruct
