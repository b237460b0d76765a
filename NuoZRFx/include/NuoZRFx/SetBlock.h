#pragma once

#include <cstddef>
#include <memory>

#include "NuoCore/Export.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoCore/Span.h"
#include "NuoCore/Str.h"
#include "NuoZRFx/Block.h"
#include "NuoZRFx/SetItemGroup.h"

namespace unstruct {
class ZRFxSetBlock;
}

namespace nuo::zrfx {

/// A named set of elements, such as those of a load or a material. Sets are read with
/// Database::setBlockByIndex and setBlockById.
class NUO_API SetBlock : public Block {
public:
    /// The kind of items in a set. Only sets of elements can be written.
    enum ItemType : int { ELEMENT_ITEMS = 0, UNDEFINED_ITEMS = 1 };

    static constexpr BlockType kBlockType = SET;

    /// The name of an enumerator, such as "ELEMENT_ITEMS"; empty for a value that is none.
    static const char* itemTypeName(ItemType itemType);

    /// `itemsSpecifiedAsIds` says whether items are element ids or 0-based element indices.
    SetBlock(int blockId, bool itemsSpecifiedAsIds);
    ~SetBlock() override;

    bool checkValidity() const override;
    unstruct::ZRFxBlock* internal_zrfxBlock() const override;

    /// The number by which cases name the set; -1 until it is set.
    int setId() const;
    void setSetId(int setId);

    /// What viewers call the set.
    Str setName() const;
    void setSetName(const Str& name);

    /// ELEMENT_ITEMS until another is set.
    ItemType itemType() const;
    void setItemType(ItemType itemType);
    bool itemsSpecifiedAsIds() const;

    /// Appends items of an element block to the group of that block. A set with a negative index is
    /// not written.
    void addItem(int item, int elementBlockId);
    void addItems(const int* items, std::size_t count, int elementBlockId);
    void addItems(Span<const int> items, int elementBlockId);

    /// Takes ownership of the group.
    void addItemGroup(SetItemGroup* group);

    std::size_t itemGroupCount() const;

    /// A group, which the set owns; null with a message when there is none.
    SetItemGroup* itemGroup(std::size_t index);
    const SetItemGroup* itemGroup(std::size_t index) const;

    /// The items of all groups.
    std::size_t totalItemCount() const;

private:
    friend class DatabasePrivate;
    explicit SetBlock(unstruct::ZRFxSetBlock* setBlock);
    void takeOver(std::unique_ptr<SetItemGroup> group);

    PrivatePtr<class SetBlockPrivate> m_private;
};

}  // namespace nuo::zrfx
