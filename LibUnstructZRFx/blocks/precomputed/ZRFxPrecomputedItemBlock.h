#pragma once

#include "blocks/precomputed/ZRFxPrecomputedBlock.h"

namespace unstruct {

/// The kinds of items, from 0: cutting plane, iso-surface, iso-volume, cutting surface, particle
/// trace. Documents hold the names; an unknown name reads as kItemTypeUnnamed, which has none.
inline constexpr int kItemTypeUnnamed = 5;
ZRString PrecomputedItemTypeName(int type);
int PrecomputedItemTypeFromName(const ZRString& name);

/// A ready-made item of a case, of any kind: surfaces, grids and particle traces for each state.
class ZRFxPrecomputedItemBlock : public ZRFxPrecomputedBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_PRECOMPUTED_ITEM;

    ZRFxPrecomputedItemBlock(ZRFxBlockStore* pDatabase, int id);

    int m_iItemType = kItemTypeUnnamed;
    int m_iItemID = -1;
    int m_iCaseID = -1;

protected:
    void ReadAttributes(const nvf::XmlElement& root) override;
    void WriteAttributes(nvf::XmlElement root) override;
    void OutlineAttributes(ZRFxOutline* outline) const override;
};

}  // namespace unstruct
