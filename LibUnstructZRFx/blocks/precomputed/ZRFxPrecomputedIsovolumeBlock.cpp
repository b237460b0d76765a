#include "blocks/precomputed/ZRFxPrecomputedIsovolumeBlock.h"

#include "documents/ZRFxXml.h"

namespace unstruct {

ZRFxPrecomputedIsovolumeBlock::ZRFxPrecomputedIsovolumeBlock(ZRFxDatabase* pDatabase, int id)
    : ZRFxPrecomputedBlock(pDatabase, id, kType) {}

void ZRFxPrecomputedIsovolumeBlock::ReadAttributes(const nvf::XmlElement& root) {
    m_iCaseID = root.getAttributeInt("CaseID", -1);
    m_iIsovolumeID = root.getAttributeInt("IsovolumeID", -1);
    m_dMinIsoValue = GetDouble(root, "MinIsoValue", 0);
    m_dMaxIsoValue = GetDouble(root, "MaxIsoValue", 0);
    m_iIsoScalarResultId = root.getAttributeInt("IsoScalarResultId", -1);
    m_iMapScalarResultId = root.getAttributeInt("MapScalarResultId", -1);
    m_iMapVectorResultId = root.getAttributeInt("MapVectorResultId", -1);
    m_bSurfaceVisible = root.getAttributeBool("SurfaceVisible", false);
    m_cSurfaceColor = GetColor(root, "SurfaceColor");
    m_fOpacity = root.getAttributeFloat("Opacity", 1);
    m_fSpecularIntensity = root.getAttributeFloat("SpecularIntensity", 0);
    m_sDrawStyle = ZRString(root.getAttributeUtf8("DrawStyle", "surface"));
    m_sTextureName = GetAttribute(root, "TextureName");
    m_bEnvironmentMapping = root.getAttributeBool("EnvironmentMapping", false);
}

void ZRFxPrecomputedIsovolumeBlock::WriteAttributes(nvf::XmlElement root) {
    root.setAttributeInt("CaseID", m_iCaseID);
    root.setAttributeInt("IsovolumeID", m_iIsovolumeID);
    SetAttribute(root, "MinIsoValue", m_dMinIsoValue);
    SetAttribute(root, "MaxIsoValue", m_dMaxIsoValue);
    root.setAttributeInt("IsoScalarResultId", m_iIsoScalarResultId);
    root.setAttributeInt("MapScalarResultId", m_iMapScalarResultId);
    root.setAttributeInt("MapVectorResultId", m_iMapVectorResultId);
    root.setAttributeBool("SurfaceVisible", m_bSurfaceVisible);
    SetAttribute(root, "SurfaceColor", m_cSurfaceColor);
    root.setAttributeFloat("Opacity", m_fOpacity);
    root.setAttributeFloat("SpecularIntensity", m_fSpecularIntensity);
    SetAttribute(root, "DrawStyle", m_sDrawStyle);
    SetAttribute(root, "TextureName", m_sTextureName);
    root.setAttributeBool("EnvironmentMapping", m_bEnvironmentMapping);
}

}  // namespace unstruct
