#include "blocks/precomputed/ZRFxPrecomputedItemBlock.h"

#include <array>

#include "blocks/ZRFxOutline.h"
#include "documents/ZRFxXml.h"

namespace unstruct {
namespace {

constexpr std::array kItemTypeNames{"Cutplane", "IsoSurface", "IsoVolume", "CutSurface",
                                    "ParticleTrace"};

}  // namespace

ZRString PrecomputedItemTypeName(int type) {
    const auto index = static_cast<std::size_t>(type);
    return index < kItemTypeNames.size() ? kItemTypeNames[index] : "Unknown";
}

int PrecomputedItemTypeFromName(const ZRString& name) {
    for (std::size_t i = 0; i < kItemTypeNames.size(); ++i) {
        if (ZRString(kItemTypeNames[i]).ToUpper() == name.ToUpper()) return static_cast<int>(i);
    }
    return kItemTypeUnnamed;
}

ZRFxPrecomputedItemBlock::ZRFxPrecomputedItemBlock(ZRFxBlockStore* pDatabase, int id)
    : ZRFxPrecomputedBlock(pDatabase, id, kType) {}

void ZRFxPrecomputedItemBlock::ReadAttributes(const nvf::XmlElement& root) {
    m_iItemType = PrecomputedItemTypeFromName(GetAttribute(root, "ItemType"));
    m_iItemID = root.getAttributeInt("ItemID", -1);
    m_iCaseID = root.getAttributeInt("CaseID", -1);
}

void ZRFxPrecomputedItemBlock::WriteAttributes(nvf::XmlElement root) {
    SetAttribute(root, "ItemType", PrecomputedItemTypeName(m_iItemType));
    root.setAttributeInt("ItemID", m_iItemID);
    root.setAttributeInt("CaseID", m_iCaseID);
}

void ZRFxPrecomputedItemBlock::OutlineAttributes(ZRFxOutline* outline) const {
    outline->AddOptionalCase(m_iCaseID);
}

}  // namespace unstruct
