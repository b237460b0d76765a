#include "blocks/results/ZRFxTransformationResultValuesBlock.h"

#include "blocks/ZRFxOutline.h"
#include "documents/ZRFxXml.h"

namespace unstruct {

ZRFxTransformationResultValuesBlock::ZRFxTransformationResultValuesBlock(ZRFxBlockStore* pDatabase,
                                                                         int id)
    : ZRFxBlock(pDatabase, id, kType) {}

void ZRFxTransformationResultValuesBlock::SetMatrix(const nuo::Mat4d& matrix) {
    m_matrix = matrix;
    SetRead(true);
}

void ZRFxTransformationResultValuesBlock::SetMapToBlock(int id, int type) {
    m_iMapToBlockID = id;
    m_iMapToBlockType = type;
}

bool ZRFxTransformationResultValuesBlock::DoReadBlock(const nvf::XmlElement& root) {
    SetMapToBlock(root.getAttributeInt("MapToBlockID", -1),
                  root.getAttributeInt("MapToBlockType", kInvalidBlockType));
    return ReadMatrix(root, &m_matrix) ||
           Log().fail("Cannot read matrix from Xml (Transformation result values block ID %1",
                      GetID());
}

bool ZRFxTransformationResultValuesBlock::DoWriteBlock(nvf::XmlElement root) {
    root.setAttributeInt("MapToBlockID", m_iMapToBlockID);
    root.setAttributeInt("MapToBlockType", m_iMapToBlockType);
    WriteMatrix(root, m_matrix);
    return true;
}

void ZRFxTransformationResultValuesBlock::DoOutline(const nvf::XmlElement& root,
                                                    ZRFxOutline* outline) const {
    outline->AddBlock(root.getAttributeInt("MapToBlockType", kInvalidBlockType),
                      root.getAttributeInt("MapToBlockID", -1), "target block");
}

void ZRFxTransformationResultValuesBlock::DoUnloadData() {
    m_matrix = nuo::Mat4d();
}

}  // namespace unstruct
