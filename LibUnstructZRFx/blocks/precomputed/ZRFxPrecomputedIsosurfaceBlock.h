#pragma once

#include "blocks/precomputed/ZRFxPrecomputedSurfaceBlock.h"

namespace unstruct {

/// A ready-made iso-surface of a case.
class ZRFxPrecomputedIsosurfaceBlock : public ZRFxPrecomputedSurfaceBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_PRECOMPUTED_ISOSURFACE;

    ZRFxPrecomputedIsosurfaceBlock(ZRFxBlockStore* pDatabase, int id);

    int m_iIsosurfaceID = -1;
    double m_dIsoValue = 0;
    int m_iIsoScalarResultId = -1;

protected:
    void ReadOwnAttributes(const nvf::XmlElement& root) override;
    void WriteShape(nvf::XmlElement root) override;
    int ShapeResultID() const override { return m_iIsoScalarResultId; }
};

}  // namespace unstruct
