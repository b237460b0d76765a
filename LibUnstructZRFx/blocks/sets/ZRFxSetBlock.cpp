#include "blocks/sets/ZRFxSetBlock.h"

#include <algorithm>
#include <utility>

#include "blocks/ZRFxOutline.h"
#include "documents/ZRFxXml.h"

namespace unstruct {

ZRFxSetBlock::ZRFxSetBlock(ZRFxBlockStore* pDatabase, int id) : ZRFxBlock(pDatabase, id, kType) {}

bool ZRFxSetBlock::ReadMetaData() {
    nvf::XmlDocument doc;
    const nvf::XmlElement root = GetRootElement(&doc);
    if (root.isNull()) return Log().fail("Invalid XML");
    return DoReadMetaData(root) && ZRFxBlock::ReadMetaData();
}

ZRFxSetBlockItems* ZRFxSetBlock::AddItems(std::unique_ptr<ZRFxSetBlockItems> pSetItems) {
    NVF_ASSERT(pSetItems);
    if (!pSetItems) return nullptr;
    SetRead(true);
    return m_apSetBlockItems.Add(std::move(pSetItems));
}

void ZRFxSetBlock::RemoveItems(std::int64_t iFrom, std::int64_t iTo) {
    NVF_ASSERT(iTo >= 0 && iTo < m_apSetBlockItems.GetSize());
    m_apSetBlockItems.RemoveRange(iFrom, iTo);
}

std::int64_t ZRFxSetBlock::GetTotalNumItems() const {
    return IsRead() ? CountItems() : m_iStoredNumItems;
}

std::uint64_t ZRFxSetBlock::GetDataSize() const {
    std::uint64_t size = 0;
    for (const auto& items : m_apSetBlockItems) size += items->m_aiItems.SizeInBytes();
    return size;
}

bool ZRFxSetBlock::DoReadBlock(const nvf::XmlElement& root) {
    DoUnloadData();
    if (!DoReadMetaData(root)) return false;
    for (nvf::XmlElement element = root.firstChildElement("Items"); element.notNull();
         element = element.nextSiblingElement("Items")) {
        if (!ReadItems(element)) return false;
    }
    return CheckCount(GetFileName(), "items", CountItems(), m_iStoredNumItems);
}

bool ZRFxSetBlock::CheckContents() const {
    if (m_iItemType != kItemTypeElement) return FailType();
    return std::all_of(m_apSetBlockItems.begin(), m_apSetBlockItems.end(),
                       [this](const auto& setItems) { return CheckItems(*setItems); });
}

bool ZRFxSetBlock::DoWriteBlock(nvf::XmlElement root) {
    root.setAttributeInt("SetID", m_iSetID);
    SetAttribute(root, "Name", m_sName);
    root.setAttributeBool("ItemsSpecifiedAsIDs", m_bItemsSpecifiedAsIDs);
    root.setAttributeInt("TotalNumItems", static_cast<int>(CountItems()));
    SetAttribute(root, "ItemType", ZRString("Element"));
    for (std::int64_t i = 0; i < m_apSetBlockItems.GetSize(); ++i) {
        NVF_ASSERT(m_apSetBlockItems[i]);
        if (!WriteItems(root, *m_apSetBlockItems[i], i + 1)) return false;
    }
    return true;
}

void ZRFxSetBlock::DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const {
    int group = 0;
    for (nvf::XmlElement element = root.firstChildElement("Items"); element.notNull();
         element = element.nextSiblingElement("Items")) {
        outline->AddBlock(BLOCK_ELEMENTS, element.getAttributeInt("BlockID", -1),
                          NumberedPlace("group", group++));
    }
}

void ZRFxSetBlock::DoUnloadData() {
    m_apSetBlockItems.RemoveAll();
}

std::int64_t ZRFxSetBlock::CountItems() const {
    std::int64_t count = 0;
    for (const auto& setItems : m_apSetBlockItems) count += setItems->m_aiItems.GetSize();
    return count;
}

bool ZRFxSetBlock::DoReadMetaData(const nvf::XmlElement& root) {
    m_iSetID = root.getAttributeInt("SetID", -1);
    m_sName = GetAttribute(root, "Name");
    m_bItemsSpecifiedAsIDs = root.getAttributeBool("ItemsSpecifiedAsIDs", false);
    m_iStoredNumItems = root.getAttributeInt("TotalNumItems", 0);
    m_iItemType = kItemTypeElement;
    return GetAttribute(root, "ItemType").ToLower() == "element" || FailType();
}

bool ZRFxSetBlock::ReadItems(const nvf::XmlElement& element) {
    auto setItems = std::make_unique<ZRFxSetBlockItems>();
    setItems->m_iBlockID = element.getAttributeInt("BlockID", -1);
    setItems->m_iBlockType = element.getAttributeInt("BlockType", kInvalidBlockType);
    if (setItems->m_iBlockType != BLOCK_ELEMENTS) return FailType();
    if (!ReadFile(element, "File", &setItems->m_aiItems)) {
        return Log().fail("Error reading set data");
    }
    if (!CheckItems(*setItems)) return false;
    m_apSetBlockItems.Add(std::move(setItems));
    return true;
}

bool ZRFxSetBlock::CheckItems(const ZRFxSetBlockItems& items) const {
    if (items.m_iBlockType != BLOCK_ELEMENTS) return FailType();
    return m_bItemsSpecifiedAsIDs ||
           CheckIndices(GetDocumentName(), "element index", items.m_aiItems);
}

bool ZRFxSetBlock::FailType() const {
    return Log().fail("Only element sets are supported");
}

bool ZRFxSetBlock::WriteItems(nvf::XmlElement root, const ZRFxSetBlockItems& items,
                              std::int64_t number) {
    nvf::XmlElement element = root.addChildElement("Items");
    element.setAttributeInt("BlockID", items.m_iBlockID);
    element.setAttributeInt("BlockType", items.m_iBlockType);
    return WriteFile(element, "File", GetFilebase(number), items.m_aiItems);
}

}  // namespace unstruct
