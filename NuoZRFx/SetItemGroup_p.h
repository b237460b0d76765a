#pragma once

#include <memory>

#include "ZROZRFxSetBlock.h"

namespace nuo::zrfx {

/// What a SetItemGroup holds: the items, its own until a set takes them over.
class SetItemGroupPrivate {
public:
    std::unique_ptr<unstruct::ZRFxSetBlockItems> m_own =
        std::make_unique<unstruct::ZRFxSetBlockItems>();
    unstruct::ZRFxSetBlockItems* m_items = m_own.get();
    bool m_isIncomplete = false;  // an item could not be added
};

}  // namespace nuo::zrfx
