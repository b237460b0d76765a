#pragma once

#include "NuoCore/Color3f.h"
#include "blocks/precomputed/ZRFxPrecomputedBlock.h"

namespace unstruct {

/// A ready-made iso-surface of a case.
class ZRFxPrecomputedIsosurfaceBlock : public ZRFxPrecomputedBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_PRECOMPUTED_ISOSURFACE;

    ZRFxPrecomputedIsosurfaceBlock(ZRFxDatabase* pDatabase, int id);

    int m_iCaseID = -1;
    int m_iIsosurfaceID = -1;
    double m_dIsoValue = 0;
    int m_iIsoScalarResultId = -1;
    int m_iMapScalarResultId = -1;
    int m_iMapVectorResultId = -1;
    bool m_bSurfaceVisible = false;
    nuo::Color3f m_cSurfaceColor;
    float m_fOpacity = 1;
    float m_fSpecularIntensity = 0;
    ZRString m_sDrawStyle = "surface";

protected:
    void ReadAttributes(const nvf::XmlElement& root) override;
    void WriteAttributes(nvf::XmlElement root) override;
};

}  // namespace unstruct
