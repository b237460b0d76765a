#include "blocks/results/ZRFxTransformationResultsBlock.h"

#include "blocks/ZRFxOutline.h"
#include "documents/ZRFxXml.h"

namespace unstruct {

ZRFxTransformationResultsBlock::ZRFxTransformationResultsBlock(ZRFxBlockStore* pDatabase, int id)
    : ZRFxStatesBlock(pDatabase, id, kType) {}

void ZRFxTransformationResultsBlock::DoWriteHead(nvf::XmlElement root) const {
    SetAttribute(root, "Name", m_sName);
    root.setAttributeInt("ResultID", m_iResultID);
}

void ZRFxTransformationResultsBlock::DoOutline(const nvf::XmlElement&, ZRFxOutline* outline) const {
    outline->result = ZRFxResultOutline{m_iResultID, std::nullopt, false};
    OutlineStates(BLOCK_TRANSFORMATION_RESULT_VALUES, outline);
}

bool ZRFxTransformationResultsBlock::DoReadMetaData(const nvf::XmlElement& root) {
    m_sName = GetAttribute(root, "Name");
    m_iResultID = root.getAttributeInt("ResultID", -1);
    return true;
}

}  // namespace unstruct
