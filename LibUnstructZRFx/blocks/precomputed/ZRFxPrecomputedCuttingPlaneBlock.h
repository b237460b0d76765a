#pragma once

#include "NuoCore/Color3f.h"
#include "NuoCore/Vec3d.h"
#include "blocks/precomputed/ZRFxPrecomputedBlock.h"

namespace unstruct {

/// A ready-made cutting plane of a case.
class ZRFxPrecomputedCuttingPlaneBlock : public ZRFxPrecomputedBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_PRECOMPUTED_CUTTING_PLANE;

    ZRFxPrecomputedCuttingPlaneBlock(ZRFxDatabase* pDatabase, int id);

    int m_iCaseID = -1;
    int m_iCuttingPlaneID = -1;
    nuo::Vec3d m_vPoint;
    nuo::Vec3d m_vNormal;
    int m_iMapScalarResultId = -1;
    int m_iMapVectorResultId = -1;
    double m_dGridSpacing = 0;
    bool m_bSurfaceVisible = false;
    nuo::Color3f m_cSurfaceColor;
    float m_fOpacity = 1;
    float m_fSpecularIntensity = 0;
    bool m_bUseClipping = false;
    bool m_bGridLinesVisible = false;
    ZRString m_sDrawStyle = "surface";

protected:
    void ReadAttributes(const nvf::XmlElement& root) override;
    void WriteAttributes(nvf::XmlElement root) override;
    bool HasPartColors() const override { return true; }
};

}  // namespace unstruct
