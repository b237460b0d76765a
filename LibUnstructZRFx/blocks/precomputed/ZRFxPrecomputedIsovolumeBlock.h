#pragma once

#include "NuoCore/Color3f.h"
#include "blocks/precomputed/ZRFxPrecomputedBlock.h"

namespace unstruct {

/// A ready-made iso-volume of a case.
class ZRFxPrecomputedIsovolumeBlock : public ZRFxPrecomputedBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_PRECOMPUTED_ISOVOLUME;

    ZRFxPrecomputedIsovolumeBlock(ZRFxDatabase* pDatabase, int id);

    int m_iCaseID = -1;
    int m_iIsovolumeID = -1;
    double m_dMinIsoValue = 0;
    double m_dMaxIsoValue = 0;
    int m_iIsoScalarResultId = -1;
    int m_iMapScalarResultId = -1;
    int m_iMapVectorResultId = -1;
    bool m_bSurfaceVisible = false;
    nuo::Color3f m_cSurfaceColor;
    float m_fOpacity = 1;
    float m_fSpecularIntensity = 0;
    ZRString m_sDrawStyle = "surface";
    ZRString m_sTextureName;
    bool m_bEnvironmentMapping = false;

protected:
    void ReadAttributes(const nvf::XmlElement& root) override;
    void WriteAttributes(nvf::XmlElement root) override;
};

}  // namespace unstruct
