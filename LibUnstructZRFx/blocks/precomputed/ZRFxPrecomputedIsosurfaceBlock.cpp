#include "blocks/precomputed/ZRFxPrecomputedIsosurfaceBlock.h"

#include "documents/ZRFxXml.h"

namespace unstruct {

ZRFxPrecomputedIsosurfaceBlock::ZRFxPrecomputedIsosurfaceBlock(ZRFxDatabase* pDatabase, int id)
    : ZRFxPrecomputedBlock(pDatabase, id, kType) {}

void ZRFxPrecomputedIsosurfaceBlock::ReadAttributes(const nvf::XmlElement& root) {
    m_iCaseID = root.getAttributeInt("CaseID", -1);
    m_iIsosurfaceID = root.getAttributeInt("IsosurfaceID", -1);
    m_dIsoValue = GetDouble(root, "IsoValue", 0);
    m_iIsoScalarResultId = root.getAttributeInt("IsoScalarResultId", -1);
    m_iMapScalarResultId = root.getAttributeInt("MapScalarResultId", -1);
    m_iMapVectorResultId = root.getAttributeInt("MapVectorResultId", -1);
    m_bSurfaceVisible = root.getAttributeBool("SurfaceVisible", false);
    m_cSurfaceColor = GetColor(root, "SurfaceColor");
    m_fOpacity = root.getAttributeFloat("Opacity", 1);
    m_fSpecularIntensity = root.getAttributeFloat("SpecularIntensity", 0);
    m_sDrawStyle = ZRString(root.getAttributeUtf8("DrawStyle", "surface"));
}

void ZRFxPrecomputedIsosurfaceBlock::WriteAttributes(nvf::XmlElement root) {
    root.setAttributeInt("CaseID", m_iCaseID);
    root.setAttributeInt("IsosurfaceID", m_iIsosurfaceID);
    SetAttribute(root, "IsoValue", m_dIsoValue);
    root.setAttributeInt("IsoScalarResultId", m_iIsoScalarResultId);
    root.setAttributeInt("MapScalarResultId", m_iMapScalarResultId);
    root.setAttributeInt("MapVectorResultId", m_iMapVectorResultId);
    root.setAttributeBool("SurfaceVisible", m_bSurfaceVisible);
    SetAttribute(root, "SurfaceColor", m_cSurfaceColor);
    root.setAttributeFloat("Opacity", m_fOpacity);
    root.setAttributeFloat("SpecularIntensity", m_fSpecularIntensity);
    SetAttribute(root, "DrawStyle", m_sDrawStyle);
}

}  // namespace unstruct
