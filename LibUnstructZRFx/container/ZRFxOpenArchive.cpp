#include "container/ZRFxOpenArchive.h"

#include <algorithm>
#include <utility>

#include "nvf/Progress.h"

namespace unstruct {
namespace {

constexpr size_t kPrefetched = 8;

void Note(ZRFxArchiveChanges* pChanges, std::string_view sName, uint64_t nKept) {
    const auto [change, bNew] = pChanges->kept.emplace(sName, nKept);
    if (!bNew) change->second = std::min(change->second, nKept);
}

}  // namespace

bool ZRFxOpenArchive::Take(ZRFxLastCommit* pCommit) {
    ZRFxArchiveChanges changes;
    last.place = pCommit->Place();
    sComment = std::move(pCommit->directory.sComment);
    table.Reserve(pCommit->directory.aEntries.size());
    const nvf::Progress::Count count(pCommit->directory.aEntries.size());
    return TakeEntries(&pCommit->directory.aEntries, &changes) &&
           TakeRecords(&pCommit->aRecords, &changes);
}

bool ZRFxOpenArchive::TakeRecords(std::vector<ZRFxCommitRecord>* paRecords,
                                  ZRFxArchiveChanges* pChanges) {
    const bool bTaken =
        std::all_of(paRecords->begin(), paRecords->end(),
                    [&](ZRFxCommitRecord& record) { return TakeRecord(&record, pChanges); });
    next.nFirstNew = table.SlotCount();
    next.asRemoved.clear();
    return bTaken;
}

ZRFxArchiveItem* ZRFxOpenArchive::Add(std::unique_ptr<ZRFxArchiveItem> pItem, bool* pReplaced) {
    // The old item stays when there is no memory for the new one.
    table.MakeRoom();
    ZRFxArchiveItem* pOld = table.Find(pItem->entry.sName);
    if (pOld) Remove(pOld);
    if (pReplaced) *pReplaced = pOld != nullptr;
    ZRFxArchiveItem* pAdded = table.Add(std::move(pItem));
    Count(*pAdded);
    return pAdded;
}

void ZRFxOpenArchive::Remove(ZRFxArchiveItem* pItem) {
    if (IsListed(*pItem)) next.asRemoved.emplace_back(std::string_view(pItem->entry.sName));
    Uncount(*pItem);
    if (pItem->pText) pItem->pText->bDropped = true;
    table.Remove(pItem);
    next.bChanged = true;
}

void ZRFxOpenArchive::Count(const ZRFxArchiveItem& item) {
    bytes.nLive += item.Span();
    bytes.nDirectory += item.entry.sRecord.size();
    bytes.nPending += item.packed.Length();
}

void ZRFxOpenArchive::Uncount(const ZRFxArchiveItem& item) {
    bytes.nLive -= item.Span();
    bytes.nDirectory -= item.entry.sRecord.size();
    bytes.nPending -= item.packed.Length();
}

ZRFxGrowingText* ZRFxOpenArchive::TextOf(ZRFxArchiveItem* pItem) {
    if (!pItem->pText) {
        auto pText = std::make_shared<ZRFxGrowingText>();
        pText->sName = pItem->entry.sName;
        pText->nLength = pText->nUnchanged = pItem->entry.nSize;
        apTexts.push_back(pText);
        pItem->pText = std::move(pText);
    }
    return pItem->pText.get();
}

void ZRFxOpenArchive::BecomeText(ZRFxArchiveItem* pItem, uint64_t nKept) {
    ZRFxGrowingText& text = *pItem->pText;
    text.nLength = text.sText.size();
    text.nUnchanged = std::min(text.nUnchanged, nKept);
    text.bLoaded = text.bChanged = true;
    // Where no commit knows the entry, the text does not build on it and is stored whole.
    if (!IsListed(*pItem)) {
        Uncount(*pItem);
        pItem->packed.Clear();
        pItem->entry.sRecord.clear();
        text.nUnchanged = 0;
    }
    pItem->ePlace = ZRFxArchiveItem::Place::kInRecords;
    next.bChanged = true;
}

void ZRFxOpenArchive::NoteChangesSince(const ZRFxOpenArchive& earlier,
                                       ZRFxArchiveChanges* pChanges) const {
    for (size_t i = 0; i < earlier.table.SlotCount(); ++i) {
        const ZRFxArchiveItem* pOld = earlier.table.At(i);
        if (!pOld) continue;
        const ZRFxArchiveItem* pNew = table.Find(pOld->entry.sName);
        const bool bSame = pNew && pNew->ePlace == pOld->ePlace && !pNew->pText && !pOld->pText &&
                           pNew->entry.sRecord == pOld->entry.sRecord;
        if (!bSame) Note(pChanges, pOld->entry.sName, 0);
    }
}

void ZRFxOpenArchive::Compact() {
    if (!table.HasGaps()) return;
    size_t nCommitted = 0;
    for (size_t i = 0; i < next.nFirstNew; ++i) nCommitted += table.At(i) ? 1 : 0;
    table.Compact();
    next.nFirstNew = nCommitted;
}

void ZRFxOpenArchive::Clear() {
    pStorage.reset();
    *this = ZRFxOpenArchive();
}

bool ZRFxOpenArchive::TakeRecord(ZRFxCommitRecord* pRecord, ZRFxArchiveChanges* pChanges) {
    ZRFxZipDirectory directory;
    if (!directory.AddRecords(pRecord->sLines, pRecord->nOffset)) return false;
    for (const std::string& sName : pRecord->asRemoved) {
        Note(pChanges, sName, 0);
        if (ZRFxArchiveItem* pItem = table.Find(sName)) Remove(pItem);
    }
    return TakeEntries(&directory.aEntries, pChanges) && TakeEdits(pRecord, pChanges);
}

bool ZRFxOpenArchive::TakeEdits(ZRFxCommitRecord* pRecord, ZRFxArchiveChanges* pChanges) {
    UnreadRecord unread;
    for (const ZRFxCommitRecord::Edit& edit : pRecord->aEdits) {
        ZRFxArchiveItem* pItem = table.Find(edit.sName);
        if (!pItem) {
            auto pNew = std::make_unique<ZRFxArchiveItem>();
            pNew->entry.sName = edit.sName;
            pItem = Add(std::move(pNew));
        }
        ZRFxGrowingText* pText = TextOf(pItem);
        if (edit.nKept > pText->nLength) return false;
        pItem->ePlace = ZRFxArchiveItem::Place::kInRecords;
        pText->nLength = pText->nUnchanged = edit.nKept + edit.nTail;
        unread.apTexts.push_back(pItem->pText);
        Note(pChanges, edit.sName, edit.nKept);
    }
    unread.record = std::move(*pRecord);
    if (!unread.apTexts.empty()) aUnread.push_back(std::move(unread));
    return true;
}

bool ZRFxOpenArchive::TakeEntries(std::vector<ZRFxZipEntry>* paEntries,
                                  ZRFxArchiveChanges* pChanges) {
    for (size_t i = 0; i < paEntries->size(); ++i) {
        if (i + kPrefetched < paEntries->size()) {
            table.Prefetch((*paEntries)[i + kPrefetched].sName);
        }
        auto pItem = std::make_unique<ZRFxArchiveItem>();
        pItem->entry = std::move((*paEntries)[i]);
        pItem->nIndex = i;
        bool bReplaced = false;
        const ZRFxArchiveItem* pAdded = Add(std::move(pItem), &bReplaced);
        if (bReplaced) Note(pChanges, pAdded->entry.sName, 0);
        if (!nvf::Progress::advance(1)) return false;
    }
    return true;
}

}  // namespace unstruct
