#include "blocks/precomputed/ZRFxPrecomputedIsosurfaceBlock.h"

#include "documents/ZRFxXml.h"

namespace unstruct {

ZRFxPrecomputedIsosurfaceBlock::ZRFxPrecomputedIsosurfaceBlock(ZRFxBlockStore* pDatabase, int id)
    : ZRFxPrecomputedSurfaceBlock(pDatabase, id, kType) {}

void ZRFxPrecomputedIsosurfaceBlock::ReadOwnAttributes(const nvf::XmlElement& root) {
    m_iIsosurfaceID = root.getAttributeInt("IsosurfaceID", -1);
    m_dIsoValue = GetDouble(root, "IsoValue", 0);
    m_iIsoScalarResultId = root.getAttributeInt("IsoScalarResultId", -1);
}

void ZRFxPrecomputedIsosurfaceBlock::WriteShape(nvf::XmlElement root) {
    root.setAttributeInt("IsosurfaceID", m_iIsosurfaceID);
    SetAttribute(root, "IsoValue", m_dIsoValue);
    root.setAttributeInt("IsoScalarResultId", m_iIsoScalarResultId);
}

}  // namespace unstruct
