#include "container/ZRFxDocumentTexts.h"

#include <atomic>
#include <memory>
#include <utility>

namespace unstruct {
namespace {

uint64_t NewRevision() {
    static std::atomic<uint64_t> nLast{0};
    return ++nLast;
}

}  // namespace

// A record whose tails are put names no texts any more.
bool ZRFxDocumentTexts::Load() {
    for (ZRFxOpenArchive::UnreadRecord& unread : m_archive.aUnread) {
        if (!unread.apTexts.empty() && !LoadTails(&unread)) return false;
    }
    m_archive.aUnread.clear();
    return true;
}

bool ZRFxDocumentTexts::Grow(std::string_view sName, uint64_t nKept, std::string_view sTail,
                             int nLevel, uint64_t* pRevision) {
    ZRFxArchiveItem* pItem = m_archive.table.Find(sName);
    if (!pItem && nKept > 0) return Fail("no such entry");
    if (pItem && nKept > 0 && !LoadForGrowth(pItem)) return false;
    if (!pItem) pItem = Add(sName, sTail.size());
    ZRFxGrowingText& text = *m_archive.TextOf(pItem);
    if (nKept > text.sText.size()) return Fail("the document is shorter");
    text.sText.reserve(static_cast<size_t>(nKept) + sTail.size());
    text.sText.resize(static_cast<size_t>(nKept));
    text.sText.append(sTail);
    text.sError.clear();
    text.nLevel = nLevel;
    text.nRevision = NewRevision();
    m_archive.BecomeText(pItem, nKept);
    *pRevision = text.nRevision;
    return true;
}

// Puts the tails of a record to all of its texts or, when memory runs out, to none.
bool ZRFxDocumentTexts::LoadTails(ZRFxOpenArchive::UnreadRecord* pUnread) {
    auto& [record, apTexts] = *pUnread;
    std::string sTails;
    if (!record.GetTails(m_pCodec, m_pCipher, &sTails)) return Fail(record.Error());
    for (size_t i = 0; i < apTexts.size(); ++i) Prepare(record.aEdits[i], apTexts[i].get());
    uint64_t nAt = 0;
    for (size_t i = 0; i < apTexts.size(); ++i) {
        const ZRFxCommitRecord::Edit& edit = record.aEdits[i];
        Apply(edit, std::string_view(sTails).substr(static_cast<size_t>(nAt)), apTexts[i].get());
        nAt += edit.nTail;
    }
    apTexts.clear();
    return true;
}

// Takes all the memory that the edit needs. A text that cannot be had stays so until an edit begins
// it anew; what its entry declares is not believed.
void ZRFxDocumentTexts::Prepare(const ZRFxCommitRecord::Edit& edit, ZRFxGrowingText* pText) {
    if (pText->bDropped) return;
    if (edit.nKept > 0 && !pText->bLoaded && !LoadEntryOf(pText)) {
        pText->sError = m_reader.Error();
    }
    pText->bLoaded = true;
    if (edit.nKept > 0 && !pText->sError.empty()) return;
    if (edit.nKept > pText->sText.size()) {
        pText->sError = "damaged commit record";
        return;
    }
    pText->sText.reserve(static_cast<size_t>(edit.nKept + edit.nTail));
}

// sTails begins with what the edit adds. Takes no memory.
void ZRFxDocumentTexts::Apply(const ZRFxCommitRecord::Edit& edit, std::string_view sTails,
                              ZRFxGrowingText* pText) {
    if (edit.nKept == 0) pText->sError.clear();
    if (pText->bDropped || !pText->sError.empty()) return;
    pText->sText.resize(static_cast<size_t>(edit.nKept));
    pText->sText.append(sTails.substr(0, static_cast<size_t>(edit.nTail)));
}

// The entry that the text has outgrown.
bool ZRFxDocumentTexts::LoadEntryOf(ZRFxGrowingText* pText) {
    const ZRFxArchiveItem* pItem = m_archive.table.Find(pText->sName);
    ZRFxZipRawData raw;
    if (!pItem || !pItem->HasEntry() || !m_reader.Read(*pItem, &raw)) return false;
    pText->sText.assign(raw.Buffer(), raw.Buffer() + raw.Length());
    return true;
}

// A document that has been an entry so far is read.
bool ZRFxDocumentTexts::LoadForGrowth(ZRFxArchiveItem* pItem) {
    if (pItem->pText && pItem->pText->bLoaded) {
        return pItem->pText->sError.empty() || Fail(pItem->pText->sError);
    }
    ZRFxZipRawData raw;
    if (!m_reader.Read(*pItem, &raw)) return Fail(m_reader.Error());
    std::string sText(raw.Buffer(), raw.Buffer() + raw.Length());
    ZRFxGrowingText& text = *m_archive.TextOf(pItem);
    text.sText.swap(sText);
    text.bLoaded = true;
    return true;
}

// With room for its first text, so that the document is not left without one.
ZRFxArchiveItem* ZRFxDocumentTexts::Add(std::string_view sName, size_t nLength) {
    auto pText = std::make_shared<ZRFxGrowingText>();
    pText->sName = sName;
    pText->sText.reserve(nLength);
    auto pNew = std::make_unique<ZRFxArchiveItem>();
    pNew->entry.sName = sName;
    pNew->ePlace = ZRFxArchiveItem::Place::kInRecords;
    pNew->pText = pText;
    m_archive.table.MakeRoom();
    m_archive.apTexts.push_back(std::move(pText));
    return m_archive.Add(std::move(pNew));
}

}  // namespace unstruct
