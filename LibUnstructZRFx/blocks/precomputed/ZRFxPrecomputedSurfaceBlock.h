#pragma once

#include "NuoCore/Color3f.h"
#include "ZRString.h"
#include "blocks/precomputed/ZRFxPrecomputedBlock.h"

namespace unstruct {

/// Base of the blocks of one ready-made surface of a case: what surfaces of all kinds have.
class ZRFxPrecomputedSurfaceBlock : public ZRFxPrecomputedBlock {
public:
    int m_iCaseID = -1;
    int m_iMapScalarResultId = -1;
    int m_iMapVectorResultId = -1;
    bool m_bSurfaceVisible = false;
    nuo::Color3f m_cSurfaceColor;
    float m_fOpacity = 1;
    float m_fSpecularIntensity = 0;
    ZRString m_sDrawStyle = "surface";

protected:
    using ZRFxPrecomputedBlock::ZRFxPrecomputedBlock;

    void ReadAttributes(const nvf::XmlElement& root) final;
    void WriteAttributes(nvf::XmlElement root) final;
    void OutlineAttributes(ZRFxOutline* outline) const final;

    /// Reads the attributes that only surfaces of one kind have.
    virtual void ReadOwnAttributes(const nvf::XmlElement& root) = 0;

    /// Write them, in the order in which documents hold them between the common ones: each kind of
    /// surface has a shape, and only some have the others.
    virtual void WriteShape(nvf::XmlElement root) = 0;
    virtual void WriteGridSpacing(nvf::XmlElement) {}
    virtual void WriteClipping(nvf::XmlElement) {}
    virtual void WriteTexture(nvf::XmlElement) {}

    /// The id of the result whose values the surface is made from; -1 when there is none.
    virtual int ShapeResultID() const { return -1; }
};

}  // namespace unstruct
