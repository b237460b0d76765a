#include "NuoZRFx/SetItemGroup.h"

#include <new>

#include "Convert_p.h"
#include "Log_p.h"
#include "SetItemGroup_p.h"
#include "nvf/Assert.h"

namespace nuo::zrfx {

SetItemGroup::SetItemGroup() {
    guarded([&] { m_private.take(std::make_unique<SetItemGroupPrivate>()); });
}

SetItemGroup::~SetItemGroup() = default;

int SetItemGroup::blockId() const {
    return guarded(-1, [&] { return m_private->m_items->m_iBlockID; });
}

void SetItemGroup::setBlockId(int blockId) {
    guarded([&] {
        m_private->dropIndex();
        m_private->m_items->m_iBlockID = blockId;
    });
}

Block::BlockType SetItemGroup::blockType() const {
    return guarded(Block::INVALID_BLOCK,
                   [&] { return ZRConvert::toBlockType(m_private->m_items->m_iBlockType); });
}

void SetItemGroup::setBlockType(Block::BlockType blockType) {
    guarded([&] {
        m_private->dropIndex();
        m_private->m_items->m_iBlockType = ZRConvert::fromBlockType(blockType);
    });
}

void SetItemGroup::addItem(int item) {
    guarded([&] {
        if (m_private->m_items->m_aiItems.Add(item)) return;
        m_private->m_isIncomplete = true;
        throw std::bad_alloc();
    });
}

void SetItemGroup::addItems(const std::vector<int>& items) {
    for (const int item : items) addItem(item);
}

void SetItemGroup::setItems(const std::vector<int>& items) {
    guarded([&] {
        m_private->m_isIncomplete = !m_private->m_items->m_aiItems.Assign(
            items.data(), static_cast<std::int64_t>(items.size()));
        if (m_private->m_isIncomplete) throw std::bad_alloc();
    });
}

void SetItemGroup::setItemData(const int* items, std::size_t count) {
    guarded([&] {
        if (!nvf::require(items || count == 0, "setItemData: the pointer to %1 items is null",
                          count)) {
            count = 0;
        }
        m_private->m_items->m_aiItems.Refer(items, static_cast<std::int64_t>(count));
    });
}

std::size_t SetItemGroup::itemCount() const {
    return guarded(
        [&] { return static_cast<std::size_t>(m_private->m_items->m_aiItems.GetSize()); });
}

void SetItemGroup::setItemData(Span<const int> items) {
    setItemData(items.data(), items.size());
}

Span<const int> SetItemGroup::items() const {
    return Span<const int>::of(itemData(), itemCount());
}

int SetItemGroup::itemIdOrIndex(std::size_t index) const {
    const bool isThere = nvf::require(index < itemCount(), "itemIdOrIndex: item %1 of %2 asked for",
                                      index, itemCount());
    return isThere ? itemData()[index] : -1;
}

const int* SetItemGroup::itemData() const {
    return guarded([&] { return m_private->m_items->m_aiItems.Data(); });
}

}  // namespace nuo::zrfx
