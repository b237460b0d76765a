#include "ZROZRFxTransformationResultsBlock.h"

#include "ZROZRFxXml.h"

namespace unstruct {

ZRFxTransformationResultsBlock::ZRFxTransformationResultsBlock(ZRFxDatabase* pDatabase, int id)
    : ZRFxBlock(pDatabase, id, BLOCK_TRANSFORMATION_RESULTS) {}

bool ZRFxTransformationResultsBlock::ReadMetaData() {
    nvf::XmlDocument doc;
    const nvf::XmlElement root = GetRootElement(&doc);
    if (root.isNull()) return Log().fail("Invalid XML");
    return DoReadMetaData(root) && ZRFxBlock::ReadMetaData();
}

ZRFxStateValues* ZRFxTransformationResultsBlock::AddState(int stateID) {
    SetRead(true);
    return StateValuesOf(stateID, &m_apStates);
}

void ZRFxTransformationResultsBlock::RemoveStates(std::int64_t iFrom, std::int64_t iTo) {
    NVF_ASSERT(iTo >= 0 && iTo < m_apStates.GetSize());
    m_apStates.RemoveRange(iFrom, iTo);
}

bool ZRFxTransformationResultsBlock::DoReadBlock(const nvf::XmlElement& root) {
    return DoReadMetaData(root) &&
           (ReadStateValues(root, &m_apStates) || Log().fail("Invalid XML"));
}

bool ZRFxTransformationResultsBlock::DoWriteBlock(nvf::XmlElement root) {
    SetAttribute(root, "Name", m_sName);
    root.setAttributeInt("ResultID", m_iResultID);
    WriteStateValues(root, m_apStates);
    return true;
}

void ZRFxTransformationResultsBlock::DoUnloadData() {
    m_apStates.RemoveAll();
}

bool ZRFxTransformationResultsBlock::DoReadMetaData(const nvf::XmlElement& root) {
    m_sName = GetAttribute(root, "Name");
    m_iResultID = root.getAttributeInt("ResultID", -1);
    return true;
}

}  // namespace unstruct
