#include "blocks/precomputed/ZRFxPrecomputedCuttingPlaneBlock.h"

#include "documents/ZRFxXml.h"

namespace unstruct {

ZRFxPrecomputedCuttingPlaneBlock::ZRFxPrecomputedCuttingPlaneBlock(ZRFxDatabase* pDatabase, int id)
    : ZRFxPrecomputedBlock(pDatabase, id, kType) {}

void ZRFxPrecomputedCuttingPlaneBlock::ReadAttributes(const nvf::XmlElement& root) {
    m_iCaseID = root.getAttributeInt("CaseID", -1);
    m_iCuttingPlaneID = root.getAttributeInt("CuttingPlaneID", -1);
    m_vPoint = GetVec3d(root, "Point");
    m_vNormal = GetVec3d(root, "Normal");
    m_iMapScalarResultId = root.getAttributeInt("MapScalarResultId", -1);
    m_iMapVectorResultId = root.getAttributeInt("MapVectorResultId", -1);
    m_dGridSpacing = GetDouble(root, "GridSpacing", 0);
    m_bSurfaceVisible = root.getAttributeBool("SurfaceVisible", false);
    m_cSurfaceColor = GetColor(root, "SurfaceColor");
    m_fOpacity = root.getAttributeFloat("Opacity", 1);
    m_fSpecularIntensity = root.getAttributeFloat("SpecularIntensity", 0);
    m_bUseClipping = root.getAttributeBool("UseClipping", false);
    m_bGridLinesVisible = root.getAttributeBool("GridLinesVisible", false);
    m_sDrawStyle = ZRString(root.getAttributeUtf8("DrawStyle", "surface"));
}

void ZRFxPrecomputedCuttingPlaneBlock::WriteAttributes(nvf::XmlElement root) {
    root.setAttributeInt("CaseID", m_iCaseID);
    root.setAttributeInt("CuttingPlaneID", m_iCuttingPlaneID);
    SetAttribute(root, "Point", m_vPoint);
    SetAttribute(root, "Normal", m_vNormal);
    root.setAttributeInt("MapScalarResultId", m_iMapScalarResultId);
    root.setAttributeInt("MapVectorResultId", m_iMapVectorResultId);
    SetAttribute(root, "GridSpacing", m_dGridSpacing);
    root.setAttributeBool("SurfaceVisible", m_bSurfaceVisible);
    SetAttribute(root, "SurfaceColor", m_cSurfaceColor);
    root.setAttributeFloat("Opacity", m_fOpacity);
    root.setAttributeFloat("SpecularIntensity", m_fSpecularIntensity);
    root.setAttributeBool("UseClipping", m_bUseClipping);
    root.setAttributeBool("GridLinesVisible", m_bGridLinesVisible);
    SetAttribute(root, "DrawStyle", m_sDrawStyle);
}

}  // namespace unstruct
