#include "blocks/precomputed/ZRFxPrecomputedIsovolumeBlock.h"

#include "documents/ZRFxXml.h"

namespace unstruct {

ZRFxPrecomputedIsovolumeBlock::ZRFxPrecomputedIsovolumeBlock(ZRFxBlockStore* pDatabase, int id)
    : ZRFxPrecomputedSurfaceBlock(pDatabase, id, kType) {}

void ZRFxPrecomputedIsovolumeBlock::ReadOwnAttributes(const nvf::XmlElement& root) {
    m_iIsovolumeID = root.getAttributeInt("IsovolumeID", -1);
    m_dMinIsoValue = GetDouble(root, "MinIsoValue", 0);
    m_dMaxIsoValue = GetDouble(root, "MaxIsoValue", 0);
    m_iIsoScalarResultId = root.getAttributeInt("IsoScalarResultId", -1);
    m_sTextureName = GetAttribute(root, "TextureName");
    m_bEnvironmentMapping = root.getAttributeBool("EnvironmentMapping", false);
}

void ZRFxPrecomputedIsovolumeBlock::WriteShape(nvf::XmlElement root) {
    root.setAttributeInt("IsovolumeID", m_iIsovolumeID);
    SetAttribute(root, "MinIsoValue", m_dMinIsoValue);
    SetAttribute(root, "MaxIsoValue", m_dMaxIsoValue);
    root.setAttributeInt("IsoScalarResultId", m_iIsoScalarResultId);
}

void ZRFxPrecomputedIsovolumeBlock::WriteTexture(nvf::XmlElement root) {
    SetAttribute(root, "TextureName", m_sTextureName);
    root.setAttributeBool("EnvironmentMapping", m_bEnvironmentMapping);
}

}  // namespace unstruct
