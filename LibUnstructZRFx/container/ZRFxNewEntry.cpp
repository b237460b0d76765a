#include "container/ZRFxNewEntry.h"

#include <cstring>
#include <utility>

namespace unstruct {
namespace {

// Documents are replaced more often than data, some of them with nearly every commit.
enum DocumentKind { kNoDocument, kDocument, kOfEveryCommit };

DocumentKind KindOf(std::string_view sName) {
    if (sName == "ZRF.xml" || sName.ends_with("-TOC.xml")) return kOfEveryCommit;
    return sName.ends_with(".xml") ? kDocument : kNoDocument;
}

}  // namespace

bool ZRFxNewEntry::Make(std::string_view sName, const void* pData, uint64_t nSize, int nLevel,
                        std::unique_ptr<ZRFxArchiveItem>* ppItem) {
    if (nSize > m_packer.MaxLength()) return Fail(ZRFxCause::TooLarge());
    auto pItem = std::make_unique<ZRFxArchiveItem>();
    pItem->entry.sName = sName;
    pItem->nTime = std::time(nullptr);
    const auto place =
        KindOf(sName) == kNoDocument ? &ZRFxNewEntry::WriteData : &ZRFxNewEntry::PlaceDocument;
    if (!(this->*place)(pItem.get(), pData, static_cast<size_t>(nSize), nLevel)) return false;
    m_archive.next.bChanged = true;
    *ppItem = std::move(pItem);
    return true;
}

bool ZRFxNewEntry::WriteData(ZRFxArchiveItem* pItem, const void* pData, size_t nSize, int nLevel) {
    return m_packer.PackAndWrite(pData, nSize, nLevel, pItem->nTime, m_archive.pStorage.get(),
                                 &pItem->entry) ||
           Fail(m_packer.Error());
}

bool ZRFxNewEntry::PlaceDocument(ZRFxArchiveItem* pItem, const void* pData, size_t nSize,
                                 int nLevel) {
    const uint8_t* pPacked = nullptr;
    ZRFxZipEntry& entry = pItem->entry;
    if (!m_packer.Pack(pData, nSize, nLevel, &entry, &pPacked)) {
        return Fail(m_packer.Error());
    }
    const bool bWaits = KindOf(entry.sName) == kOfEveryCommit ||
                        m_archive.bytes.nPending + entry.nPackedSize <= m_nPendingLimit;
    return bWaits ? KeepPending(pItem, pPacked) : WriteNow(pItem, pPacked);
}

bool ZRFxNewEntry::KeepPending(ZRFxArchiveItem* pItem, const uint8_t* pPacked) {
    const size_t nPacked = static_cast<size_t>(pItem->entry.nPackedSize);
    if (!pItem->packed.Allocate(nPacked)) return Fail(ZRFxCause::OutOfMemory());
    if (nPacked > 0) std::memcpy(pItem->packed.Buffer(), pPacked, nPacked);
    pItem->ePlace = ZRFxArchiveItem::Place::kPending;
    return true;
}

bool ZRFxNewEntry::WriteNow(ZRFxArchiveItem* pItem, const uint8_t* pPacked) {
    ZRFxZipEntry& entry = pItem->entry;
    entry.nOffset = m_archive.pStorage->Position();
    entry.sRecord = m_packer.Record(entry, pItem->nTime);
    return m_packer.Write(entry, pItem->nTime, pPacked, m_archive.pStorage.get()) ||
           Fail(m_packer.Error());
}

}  // namespace unstruct
