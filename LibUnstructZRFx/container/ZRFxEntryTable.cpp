#include "container/ZRFxEntryTable.h"

#include <algorithm>
#include <utility>

namespace unstruct {

uint64_t ZRFxArchiveItem::Span() const {
    return HasEntry() ? ZRFxZipDirectory::LocalLengthOf(entry) + entry.nPackedSize : 0;
}

ZRFxArchiveItem* ZRFxEntryTable::Add(std::unique_ptr<Item> pItem) {
    MakeRoom();
    m_apItems.emplace_back();
    ++m_nGaps;
    m_byName.Insert(pItem.get());
    m_bHasSlashes =
        m_bHasSlashes || std::string_view(pItem->entry.sName).find('/') != std::string_view::npos;
    pItem->nSlot = m_apItems.size() - 1;
    m_apItems.back() = std::move(pItem);
    --m_nGaps;
    return m_apItems.back().get();
}

void ZRFxEntryTable::MakeRoom() {
    m_byName.MakeRoom();
    if (m_apItems.size() == m_apItems.capacity()) m_apItems.reserve(2 * m_apItems.size() + 1);
}

void ZRFxEntryTable::Remove(Item* pItem) {
    m_byName.Erase(pItem);
    m_apItems[pItem->nSlot].reset();
    ++m_nGaps;
}

void ZRFxEntryTable::Reserve(size_t nCount) {
    m_byName.Reserve(nCount);
    m_apItems.reserve(nCount);
}

bool ZRFxEntryTable::HasOverlaps() const {
    std::vector<const ZRFxZipEntry*> apEntries;
    apEntries.reserve(m_apItems.size());
    for (const auto& pItem : m_apItems) {
        if (pItem && pItem->HasEntry()) apEntries.push_back(&pItem->entry);
    }
    const auto byOffset = [](const ZRFxZipEntry* pLeft, const ZRFxZipEntry* pRight) {
        return pLeft->nOffset < pRight->nOffset;
    };
    if (!std::is_sorted(apEntries.begin(), apEntries.end(), byOffset)) {
        std::sort(apEntries.begin(), apEntries.end(), byOffset);
    }
    uint64_t nEnd = 0;
    for (const ZRFxZipEntry* pEntry : apEntries) {
        if (pEntry->nOffset < nEnd) return true;
        nEnd = pEntry->nOffset + ZRFxZipDirectory::kLocalHeaderSize + pEntry->sName.size() +
               pEntry->nPackedSize;
    }
    return false;
}

void ZRFxEntryTable::Compact() {
    if (m_nGaps == 0) return;
    std::erase(m_apItems, nullptr);
    for (size_t i = 0; i < m_apItems.size(); ++i) m_apItems[i]->nSlot = i;
    m_nGaps = 0;
}

}  // namespace unstruct
