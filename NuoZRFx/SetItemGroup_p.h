#pragma once

#include <cstddef>
#include <memory>
#include <unordered_map>

#include "blocks/sets/ZRFxSetBlock.h"

namespace nuo::zrfx {

class SetItemGroup;

/// For the first groups of a set: the last one that holds elements of a block.
struct SetItemGroupIndex {
    std::unordered_map<int, SetItemGroup*> lastOfBlock;
    std::size_t groupCount = 0;
};

/// What a SetItemGroup holds: the items, its own until a set takes them over.
class SetItemGroupPrivate {
public:
    /// Called before the group is given another block.
    void dropIndex() {
        if (m_index) *m_index = SetItemGroupIndex();
    }

    std::unique_ptr<unstruct::ZRFxSetBlockItems> m_own =
        std::make_unique<unstruct::ZRFxSetBlockItems>();
    unstruct::ZRFxSetBlockItems* m_items = m_own.get();
    SetItemGroupIndex* m_index = nullptr;  // Of the set that has the group.
    bool m_isIncomplete = false;           // An item could not be added.
};

}  // namespace nuo::zrfx
