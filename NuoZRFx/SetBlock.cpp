#include "NuoZRFx/SetBlock.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "Change_p.h"
#include "Convert_p.h"
#include "Log_p.h"
#include "SetItemGroup_p.h"
#include "ZRMakeRoom.h"
#include "blocks/sets/ZRFxSetBlock.h"
#include "nvf/Assert.h"

namespace nuo::zrfx {

using unstruct::ZRFxSetBlock;
using unstruct::ZRFxSetBlockItems;

// The set's items belong to the block that it wraps; the groups are faces of them.
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

SetBlock::SetBlock(int blockId, bool itemsSpecifiedAsIds) : Block(blockId, SET) {
    guarded([&] {
        auto made = std::make_unique<SetBlockPrivate>();
        made->m_setBlock = new ZRFxSetBlock(nullptr, blockId);
        made->m_setBlock->SetItemsSpecifiedAsIDs(itemsSpecifiedAsIds);
        m_private.take(std::move(made));
    });
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

bool SetBlock::checkValidity() const {
    return guarded(false, [&] {
        const auto isIncomplete = [](const auto& group) {
            return group->m_private->m_isIncomplete;
        };
        const auto& groups = m_private->m_groups;
        if (std::any_of(groups.begin(), groups.end(), isIncomplete)) {
            return fail("Memory was missing for items of set block (block id %1).", blockId());
        }
        return Block::checkValidity();
    });
}

void SetBlock::takeOver(std::unique_ptr<SetItemGroup> group) {
    unstruct::MakeRoom(&m_private->m_groups);
    m_private->m_setBlock->AddItems(std::move(group->m_private->m_own));
    group->m_private->m_index = &m_private->m_index;
    m_private->m_groups.push_back(std::move(group));
}

unstruct::ZRFxBlock* SetBlock::internal_zrfxBlock() const {
    return guarded([&] { return m_private->m_setBlock.p(); });
}

int SetBlock::setId() const {
    return guarded(-1, [&] { return m_private->m_setBlock->GetSetID(); });
}

void SetBlock::setSetId(int setId) {
    change(*this, [&] { m_private->m_setBlock->SetSetID(setId); });
}

Str SetBlock::setName() const {
    return guarded([&] { return ZRConvert::toStr(m_private->m_setBlock->GetName()); });
}

void SetBlock::setSetName(const Str& name) {
    change(*this, [&] { m_private->m_setBlock->SetName(ZRConvert::toZRString(name)); });
}

SetBlock::ItemType SetBlock::itemType() const {
    return guarded(UNDEFINED_ITEMS,
                   [&] { return ZRConvert::toItemType(m_private->m_setBlock->GetItemType()); });
}

void SetBlock::setItemType(ItemType itemType) {
    change(*this, [&] { m_private->m_setBlock->SetItemType(ZRConvert::fromItemType(itemType)); });
}

bool SetBlock::itemsSpecifiedAsIds() const {
    return guarded([&] { return m_private->m_setBlock->GetItemsSpecifiedAsIDs(); });
}

void SetBlock::addItem(int item, int elementBlockId) {
    addItems(&item, 1, elementBlockId);
}

void SetBlock::addItems(const int* items, std::size_t count, int elementBlockId) {
    if (!nvf::require(items || count == 0, "addItems: the pointer to %1 items is null", count)) {
        return;
    }
    change(*this, [&] {
        SetItemGroup* target = m_private->groupOf(elementBlockId);
        if (!target) {
            auto made = std::make_unique<SetItemGroup>();
            made->setBlockId(elementBlockId);
            target = made.get();
            takeOver(std::move(made));
        }
        for (std::size_t i = 0; i < count; ++i) target->addItem(items[i]);
    });
}

void SetBlock::addItems(Span<const int> items, int elementBlockId) {
    addItems(items.data(), items.size(), elementBlockId);
}

void SetBlock::addItemGroup(SetItemGroup* group) {
    if (!nvf::require(group, "addItemGroup: the group is null")) return;
    change(*this, [&] {
        // A group whose items a set has belongs to that set.
        if (!group->m_private.isNull() && !group->m_private->m_own) return;
        takeOver(std::unique_ptr<SetItemGroup>(group));
    });
}

std::size_t SetBlock::itemGroupCount() const {
    return guarded([&] { return m_private->m_groups.size(); });
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
    return guarded([&] {
        std::size_t count = 0;
        for (const auto& group : m_private->m_groups) count += group->itemCount();
        return count;
    });
}

}  // namespace nuo::zrfx
