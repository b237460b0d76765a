#pragma once

#include "blocks/precomputed/ZRFxPrecomputedSurfaceBlock.h"

namespace unstruct {

/// A ready-made iso-volume of a case.
class ZRFxPrecomputedIsovolumeBlock : public ZRFxPrecomputedSurfaceBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_PRECOMPUTED_ISOVOLUME;

    ZRFxPrecomputedIsovolumeBlock(ZRFxBlockStore* pDatabase, int id);

    int m_iIsovolumeID = -1;
    double m_dMinIsoValue = 0;
    double m_dMaxIsoValue = 0;
    int m_iIsoScalarResultId = -1;
    ZRString m_sTextureName;
    bool m_bEnvironmentMapping = false;

protected:
    void ReadOwnAttributes(const nvf::XmlElement& root) override;
    void WriteShape(nvf::XmlElement root) override;
    int ShapeResultID() const override { return m_iIsoScalarResultId; }
    void WriteTexture(nvf::XmlElement root) override;
};

}  // namespace unstruct
