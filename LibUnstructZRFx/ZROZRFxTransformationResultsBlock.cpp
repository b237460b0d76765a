#include "ZROZRFxTransformationResultsBlock.h"

#include "ZROZRFxXml.h"

namespace unstruct {

ZRFxTransformationResultsBlock::ZRFxTransformationResultsBlock(ZRFxDatabase* pDatabase, int id)
    : ZRFxStatesBlock(pDatabase, id, BLOCK_TRANSFORMATION_RESULTS) {}

bool ZRFxTransformationResultsBlock::DoWriteBlock(nvf::XmlElement root) {
    SetAttribute(root, "Name", m_sName);
    root.setAttributeInt("ResultID", m_iResultID);
    WriteStates(root);
    return true;
}

bool ZRFxTransformationResultsBlock::DoReadMetaData(const nvf::XmlElement& root) {
    m_sName = GetAttribute(root, "Name");
    m_iResultID = root.getAttributeInt("ResultID", -1);
    return true;
}

}  // namespace unstruct
