#include "NuoZRFx/SetItemGroup.h"

#include "Convert_p.h"
#include "SetItemGroup_p.h"
#include "nvf/Assert.h"

namespace nuo::zrfx {

SetItemGroup::SetItemGroup() : m_private(std::make_unique<SetItemGroupPrivate>()) {}

SetItemGroup::~SetItemGroup() = default;

int SetItemGroup::blockId() const {
    return m_private->m_items->m_iBlockID;
}

void SetItemGroup::setBlockId(int blockId) {
    m_private->dropIndex();
    m_private->m_items->m_iBlockID = blockId;
}

Block::BlockType SetItemGroup::blockType() const {
    return ZRConvert::toBlockType(m_private->m_items->m_iBlockType);
}

void SetItemGroup::setBlockType(Block::BlockType blockType) {
    m_private->dropIndex();
    m_private->m_items->m_iBlockType = ZRConvert::fromBlockType(blockType);
}

void SetItemGroup::addItem(int item) {
    m_private->m_items->m_aiItems.Add(item);
}

void SetItemGroup::addItems(const std::vector<int>& items) {
    for (const int item : items) addItem(item);
}

void SetItemGroup::setItems(const std::vector<int>& items) {
    m_private->m_items->m_aiItems.Assign(items.data(), static_cast<std::int64_t>(items.size()));
}

void SetItemGroup::setItemData(const int* items, std::size_t count) {
    NVF_ASSERT(items || count == 0);
    if (!items) count = 0;
    m_private->m_items->m_aiItems.Refer(items, static_cast<std::int64_t>(count));
}

std::size_t SetItemGroup::itemCount() const {
    return static_cast<std::size_t>(m_private->m_items->m_aiItems.GetSize());
}

int SetItemGroup::itemIdOrIndex(std::size_t index) const {
    NVF_ASSERT(index < itemCount());
    return index < itemCount() ? itemData()[index] : -1;
}

const int* SetItemGroup::itemData() const {
    return m_private->m_items->m_aiItems.Data();
}

}  // namespace nuo::zrfx
