#include "blocks/precomputed/ZRFxPrecomputedCuttingPlaneBlock.h"

#include "documents/ZRFxXml.h"

namespace unstruct {

ZRFxPrecomputedCuttingPlaneBlock::ZRFxPrecomputedCuttingPlaneBlock(ZRFxBlockStore* pDatabase,
                                                                   int id)
    : ZRFxPrecomputedSurfaceBlock(pDatabase, id, kType) {}

void ZRFxPrecomputedCuttingPlaneBlock::ReadOwnAttributes(const nvf::XmlElement& root) {
    m_iCuttingPlaneID = root.getAttributeInt("CuttingPlaneID", -1);
    m_vPoint = GetVec3d(root, "Point");
    m_vNormal = GetVec3d(root, "Normal");
    m_dGridSpacing = GetDouble(root, "GridSpacing", 0);
    m_bUseClipping = root.getAttributeBool("UseClipping", false);
    m_bGridLinesVisible = root.getAttributeBool("GridLinesVisible", false);
}

void ZRFxPrecomputedCuttingPlaneBlock::WriteShape(nvf::XmlElement root) {
    root.setAttributeInt("CuttingPlaneID", m_iCuttingPlaneID);
    SetAttribute(root, "Point", m_vPoint);
    SetAttribute(root, "Normal", m_vNormal);
}

void ZRFxPrecomputedCuttingPlaneBlock::WriteGridSpacing(nvf::XmlElement root) {
    SetAttribute(root, "GridSpacing", m_dGridSpacing);
}

void ZRFxPrecomputedCuttingPlaneBlock::WriteClipping(nvf::XmlElement root) {
    root.setAttributeBool("UseClipping", m_bUseClipping);
    root.setAttributeBool("GridLinesVisible", m_bGridLinesVisible);
}

}  // namespace unstruct
