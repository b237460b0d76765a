#include "blocks/precomputed/ZRFxPrecomputedSurfaceBlock.h"

#include "blocks/ZRFxOutline.h"
#include "documents/ZRFxXml.h"

namespace unstruct {

void ZRFxPrecomputedSurfaceBlock::ReadAttributes(const nvf::XmlElement& root) {
    m_iCaseID = root.getAttributeInt("CaseID", -1);
    m_iMapScalarResultId = root.getAttributeInt("MapScalarResultId", -1);
    m_iMapVectorResultId = root.getAttributeInt("MapVectorResultId", -1);
    m_bSurfaceVisible = root.getAttributeBool("SurfaceVisible", false);
    m_cSurfaceColor = GetColor(root, "SurfaceColor");
    m_fOpacity = root.getAttributeFloat("Opacity", 1);
    m_fSpecularIntensity = root.getAttributeFloat("SpecularIntensity", 0);
    m_sDrawStyle = ZRString(root.getAttributeUtf8("DrawStyle", "surface"));
    ReadOwnAttributes(root);
}

void ZRFxPrecomputedSurfaceBlock::WriteAttributes(nvf::XmlElement root) {
    root.setAttributeInt("CaseID", m_iCaseID);
    WriteShape(root);
    root.setAttributeInt("MapScalarResultId", m_iMapScalarResultId);
    root.setAttributeInt("MapVectorResultId", m_iMapVectorResultId);
    WriteGridSpacing(root);
    root.setAttributeBool("SurfaceVisible", m_bSurfaceVisible);
    SetAttribute(root, "SurfaceColor", m_cSurfaceColor);
    root.setAttributeFloat("Opacity", m_fOpacity);
    root.setAttributeFloat("SpecularIntensity", m_fSpecularIntensity);
    WriteClipping(root);
    SetAttribute(root, "DrawStyle", m_sDrawStyle);
    WriteTexture(root);
}

void ZRFxPrecomputedSurfaceBlock::OutlineAttributes(ZRFxOutline* outline) const {
    outline->AddOptionalCase(m_iCaseID);
    outline->AddOptionalResult(m_iMapScalarResultId, "scalar result");
    outline->AddOptionalResult(m_iMapVectorResultId, "vector result");
    outline->AddOptionalResult(ShapeResultID(), "iso result");
}

}  // namespace unstruct
