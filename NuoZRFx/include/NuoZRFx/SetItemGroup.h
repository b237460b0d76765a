#pragma once

#include <cstddef>
#include <vector>

#include "NuoCore/Export.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoCore/Span.h"
#include "NuoZRFx/Block.h"

namespace nuo::zrfx {

/// The items of a set that lie in one block. A plain object: make it, fill it and give it to
/// SetBlock::addItemGroup, which takes it over. When items cannot be added or set for lack of
/// memory, that is logged, and a set with the group cannot be written.
class NUO_API SetItemGroup {
public:
    SetItemGroup();
    ~SetItemGroup();

    /// The block that the items lie in. It must be an element block: other sets are not written.
    int blockId() const;
    void setBlockId(int blockId);
    Block::BlockType blockType() const;
    void setBlockType(Block::BlockType blockType);

    /// Items are 0-based indices or ids, as the set says.
    void addItem(int item);
    void addItems(const std::vector<int>& items);
    void setItems(const std::vector<int>& items);

    /// Replaces the items without copying: the group refers to them. They must stay unchanged until
    /// the set has been written, and for as long as it is used after that.
    void setItemData(const int* items, std::size_t count);
    void setItemData(Span<const int> items);

    std::size_t itemCount() const;

    /// -1 after an assertion when there is no such item.
    int itemIdOrIndex(std::size_t index) const;

    /// The items, valid while the group lives and is not changed.
    Span<const int> items() const;

    /// itemCount() items, valid while the group lives and is not changed.
    const int* itemData() const;

private:
    friend class SetBlock;
    PrivatePtr<class SetItemGroupPrivate> m_private;
};

}  // namespace nuo::zrfx
