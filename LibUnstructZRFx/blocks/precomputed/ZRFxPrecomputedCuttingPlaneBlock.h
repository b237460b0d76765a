#pragma once

#include "NuoCore/Vec3d.h"
#include "blocks/precomputed/ZRFxPrecomputedSurfaceBlock.h"

namespace unstruct {

/// A ready-made cutting plane of a case.
class ZRFxPrecomputedCuttingPlaneBlock : public ZRFxPrecomputedSurfaceBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_PRECOMPUTED_CUTTING_PLANE;

    ZRFxPrecomputedCuttingPlaneBlock(ZRFxBlockStore* pDatabase, int id);

    int m_iCuttingPlaneID = -1;
    nuo::Vec3d m_vPoint;
    nuo::Vec3d m_vNormal;
    double m_dGridSpacing = 0;
    bool m_bUseClipping = false;
    bool m_bGridLinesVisible = false;

protected:
    void ReadOwnAttributes(const nvf::XmlElement& root) override;
    void WriteShape(nvf::XmlElement root) override;
    void WriteGridSpacing(nvf::XmlElement root) override;
    void WriteClipping(nvf::XmlElement root) override;
    bool HasPartColors() const override { return true; }
};

}  // namespace unstruct
