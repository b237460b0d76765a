#pragma once

#include <cstddef>
#include <vector>

#include "NuoCore/Export.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoZRFx/Block.h"

namespace nuo::zrfx {

/// The items of a set that lie in one block. A plain object: make it, fill it and give it to
/// SetBlock::addItemGroup, which takes it over. Where there is no memory to add or set items, that
/// is logged, and a set with the group cannot be written.
class NUO_API SetItemGroup {
public:
    SetItemGroup();
    ~SetItemGroup();

    /// The block that the items lie in. It must be an element block: other sets are not written.
    int blockId() const;
    void setBlockId(int blockId);
    Block::BlockType blockType() const;
    void setBlockType(Block::BlockType blockType);

    /// Items are indices from 0 or ids, as the set says.
    void addItem(int item);
    void addItems(const std::vector<int>& items);
    void setItems(const std::vector<int>& items);

    /// Replaces the items without a copy: the group refers to them, and they must stay unchanged
    /// until the set is written and done with.
    void setItemData(const int* items, std::size_t count);

    std::size_t itemCount() const;

    /// -1 after an assertion when there is no such item.
    int itemIdOrIndex(std::size_t index) const;

    /// itemCount() items, valid while the group lives and is not changed.
    const int* itemData() const;

private:
    friend class SetBlock;
    PrivatePtr<class SetItemGroupPrivate> m_private;
};

}  // namespace nuo::zrfx
