#include "NuoZRFx/SetBlock.h"

#include <utility>
#include <vector>

#include "Convert_p.h"
#include "Log_p.h"
#include "SetItemGroup_p.h"
#include "ZROZRFxSetBlock.h"
#include "nvf/Assert.h"

namespace nuo::zrfx {

using unstruct::ZRFxSetBlock;
using unstruct::ZRFxSetBlockItems;

// The set's items belong to the block behind it; the groups are faces of them.
class SetBlockPrivate {
public:
    // The last group of elements of the block; null when there is none.
    SetItemGroup* groupOf(int elementBlockId) {
        for (; m_index.groupCount < m_groups.size(); ++m_index.groupCount) {
            SetItemGroup* group = m_groups[m_index.groupCount].get();
            if (group->blockType() == Block::ELEMENTS)
                m_index.lastOfBlock[group->blockId()] = group;
        }
        const auto found = m_index.lastOfBlock.find(elementBlockId);
        return found == m_index.lastOfBlock.end() ? nullptr : found->second;
    }

    nvf::ref<ZRFxSetBlock> m_setBlock;
    SetItemGroupIndex m_index;
    std::vector<std::unique_ptr<SetItemGroup>> m_groups;
};

SetBlock::SetBlock(int blockId, bool itemsSpecifiedAsIds)
    : Block(blockId, SET), m_private(std::make_unique<SetBlockPrivate>()) {
    m_private->m_setBlock = new ZRFxSetBlock(nullptr, blockId);
    m_private->m_setBlock->SetItemsSpecifiedAsIDs(itemsSpecifiedAsIds);
}

SetBlock::SetBlock(ZRFxSetBlock* setBlock)
    : Block(setBlock->GetID(), SET), m_private(std::make_unique<SetBlockPrivate>()) {
    m_private->m_setBlock = setBlock;
    for (std::int64_t i = 0; i < setBlock->GetItemsCount(); ++i) {
        auto group = std::make_unique<SetItemGroup>();
        group->m_private->m_own.reset();
        group->m_private->m_items = setBlock->GetItems(i);
        group->m_private->m_index = &m_private->m_index;
        m_private->m_groups.push_back(std::move(group));
    }
}

SetBlock::~SetBlock() = default;

unstruct::ZRFxBlock* SetBlock::internal_zrfxBlock() const {
    return m_private->m_setBlock.p();
}

int SetBlock::setId() const {
    return m_private->m_setBlock->GetSetID();
}

void SetBlock::setSetId(int setId) {
    m_private->m_setBlock->SetSetID(setId);
}

Str SetBlock::setName() const {
    return ZRConvert::toStr(m_private->m_setBlock->GetName());
}

void SetBlock::setSetName(const Str& name) {
    m_private->m_setBlock->SetName(ZRConvert::toZRString(name));
}

SetBlock::ItemType SetBlock::itemType() const {
    return ZRConvert::toItemType(m_private->m_setBlock->GetItemType());
}

void SetBlock::setItemType(ItemType itemType) {
    m_private->m_setBlock->SetItemType(ZRConvert::fromItemType(itemType));
}

bool SetBlock::itemsSpecifiedAsIds() const {
    return m_private->m_setBlock->GetItemsSpecifiedAsIDs();
}

void SetBlock::addItem(int item, int elementBlockId) {
    addItems(&item, 1, elementBlockId);
}

void SetBlock::addItems(const int* items, std::size_t count, int elementBlockId) {
    NVF_ASSERT(items || count == 0);
    if (!items) return;
    SetItemGroup* target = m_private->groupOf(elementBlockId);
    if (!target) {
        target = new SetItemGroup;
        target->setBlockId(elementBlockId);
        addItemGroup(target);
    }
    for (std::size_t i = 0; i < count; ++i) target->addItem(items[i]);
}

void SetBlock::addItemGroup(SetItemGroup* group) {
    NVF_ASSERT(group);
    if (!group || !group->m_private->m_own) return;
    m_private->m_setBlock->AddItems(std::move(group->m_private->m_own));
    group->m_private->m_index = &m_private->m_index;
    m_private->m_groups.emplace_back(group);
}

std::size_t SetBlock::itemGroupCount() const {
    return m_private->m_groups.size();
}

SetItemGroup* SetBlock::itemGroup(std::size_t index) {
    return const_cast<SetItemGroup*>(std::as_const(*this).itemGroup(index));
}

const SetItemGroup* SetBlock::itemGroup(std::size_t index) const {
    if (index < itemGroupCount()) return m_private->m_groups[index].get();
    fail("Item group index out of bounds");
    return nullptr;
}

std::size_t SetBlock::totalItemCount() const {
    std::size_t count = 0;
    for (const auto& group : m_private->m_groups) count += group->itemCount();
    return count;
}

}  // namespace nuo::zrfx
