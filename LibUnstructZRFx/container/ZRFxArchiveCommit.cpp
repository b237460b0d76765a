#include "container/ZRFxArchiveCommit.h"

#include <algorithm>
#include <utility>

#include "container/ZRFxArchiveWalk.h"
#include "nvf/Progress.h"

namespace unstruct {
namespace {

using Place = ZRFxArchiveItem::Place;

constexpr uint64_t kMiB = uint64_t{1} << 20;
// An ordinary archive is written when this many times as much was appended as it costs: 2.5 %.
constexpr uint64_t kArchiveShare = 40;
// Ordinary archives may leave this many bytes unused in any case, so that small files are ordinary.
constexpr uint64_t kFreeArchives = 16 * 1024;
constexpr uint64_t kMostLeftShare = 8;
constexpr uint64_t kMostLeftInRun = 16 * kMiB;
// By this factor documents shrink when they are packed, as a rule.
constexpr uint64_t kUsualPacking = 10;
constexpr size_t kCopySize = size_t{1} << 20;

}  // namespace

ZRFxArchiveCommit::ZRFxArchiveCommit(ZRFxOpenArchive* pArchive, ZRFxEntryPacker* pPacker,
                                     ZRFxEntryReader* pReader, ZRFxCodec* pCodec,
                                     ZRFxCipher* pCipher)
    : m_archive(*pArchive),
      m_packer(*pPacker),
      m_reader(*pReader),
      m_pCodec(pCodec),
      m_pCipher(pCipher),
      m_pTarget(pArchive->pStorage.get()) {}

bool ZRFxArchiveCommit::Run(bool bClosing) {
    if (IsRewriteDue(bClosing)) {
        // Where there is no room for a second file, the old one goes on.
        const bool bWritten = WriteAnew(m_archive.pStorage->Successor());
        if (bWritten || m_bApplied || nvf::Progress::isStopped()) return bWritten;
    }
    if (bClosing && m_archive.IsOrdinary()) return true;
    if (bClosing || IsArchiveDue()) return AppendArchive();
    if (IsFollowed()) return AppendRecord();
    const bool bWritten = WriteAnew(m_archive.pStorage->Successor());
    return bWritten || m_bApplied || nvf::Progress::isStopped() ? bWritten : AppendArchive();
}

bool ZRFxArchiveCommit::WriteAnew(std::unique_ptr<ZRFxZipStorage> pStorage) {
    if (!pStorage) return Fail({"cannot write the file anew", nvf::Reason::SYSTEM_ERROR});
    m_archive.Compact();
    m_pTarget = pStorage.get();
    ZRFxCommitResult eResult = ZRFxCommitResult::kFailed;
    const bool bWritten = PlaceItems(0, true) && WriteDirectory() && End(&eResult);
    if (!bWritten) {
        m_aPlaced.clear();
        m_pTarget = m_archive.pStorage.get();
        return false;
    }
    m_archive.pStorage.swap(pStorage);
    m_archive.last.bFollowed = true;
    m_archive.bytes.nLeft = 0;
    ApplyArchive();
    ApplyCommon(eResult == ZRFxCommitResult::kDone);
    return eResult == ZRFxCommitResult::kDone || Fail(m_archive.pStorage->Error());
}

bool ZRFxArchiveCommit::IsRewriteDue(bool bClosing) const {
    if (m_archive.last.place.nBase == 0) return false;
    const uint64_t nLength = m_pTarget->Position();
    const uint64_t nLive = m_archive.bytes.nLive - OutgrownBytes();
    const uint64_t nLeft = nLength - std::min(nLength, nLive);
    return bClosing ? nLeft > nLength / kMostLeftShare
                    : nLeft > nLive + m_archive.bytes.nDirectory + DocumentBytes() + kMostLeftInRun;
}

bool ZRFxArchiveCommit::IsArchiveDue() const {
    const ZRFxCommitPlace& place = m_archive.last.place;
    if (place.nBase == 0 || (place.nRecord != 0 && !m_archive.last.bOwnChain)) return true;
    const uint64_t nCost = m_archive.bytes.nDirectory + DocumentBytes();
    return m_pTarget->Position() - place.nBase >= kArchiveShare * nCost ||
           m_archive.bytes.nLeft + nCost <= kFreeArchives;
}

// A file that ends with a record does not end as an archive, so the walk must be able to find it.
bool ZRFxArchiveCommit::IsFollowed() {
    if (!m_archive.last.bFollowed) {
        const ZRFxArchiveWalk walk(m_pTarget, m_pCodec);
        m_archive.last.bFollowed = walk.Reached() >= m_archive.last.place.nEnd;
    }
    return m_archive.last.bFollowed;
}

// Roughly what the documents take as entries.
uint64_t ZRFxArchiveCommit::DocumentBytes() const {
    uint64_t nBytes = m_archive.bytes.nPending;
    for (const auto& pText : m_archive.apTexts) {
        if (!pText->bDropped) nBytes += pText->nLength / kUsualPacking;
    }
    return nBytes;
}

// What is no longer used once the documents are stored as entries: their entries from before.
uint64_t ZRFxArchiveCommit::OutgrownBytes() const {
    uint64_t nBytes = 0;
    for (const auto& pText : m_archive.apTexts) {
        const ZRFxArchiveItem* pItem = m_archive.table.Find(pText->sName);
        if (pItem && pItem->pText == pText && pItem->ePlace == Place::kInRecords) {
            nBytes += pItem->Span();
        }
    }
    return nBytes;
}

bool ZRFxArchiveCommit::AppendRecord() {
    ZRFxRewind rewind(m_pTarget);
    ZRFxCommitRecord record;
    ZRFxCommitResult eResult = ZRFxCommitResult::kFailed;
    if (!PlaceItems(m_archive.next.nFirstNew, false) ||
        !WriteRecord(&record, m_pTarget->Position()) || !End(&eResult)) {
        return false;
    }
    rewind.Keep();
    ApplyPlaced();
    m_archive.last.place.nRecord = record.nOffset;
    m_archive.last.place.nEnd = m_pTarget->Size();
    m_archive.last.bOwnChain = true;
    ApplyCommon(eResult == ZRFxCommitResult::kDone);
    return eResult == ZRFxCommitResult::kDone || Fail(m_archive.pStorage->Error());
}

// The first bytes of the record are there when the entries are flushed, so that the file does not
// end with the last of them.
bool ZRFxArchiveCommit::WriteRecord(ZRFxCommitRecord* pRecord, uint64_t nOffset) {
    pRecord->nOffset = nOffset;
    pRecord->run = m_archive.next.run;
    pRecord->nPrevious = m_archive.last.bOwnChain ? m_archive.last.place.nRecord : 0;
    pRecord->nBase = m_archive.last.place.nBase;
    ListNew(pRecord);
    if (!pRecord->SetTails(ListEdits(pRecord), m_pCodec, m_pCipher)) return Fail(pRecord->Error());
    const std::string sBytes = pRecord->Bytes(nOffset, m_pCodec);
    const size_t nFirst = ZRFxCommitRecord::kMagic.size();
    return (m_pTarget->Write(sBytes.data(), nFirst) && m_pTarget->Flush() &&
            m_pTarget->Write(sBytes.data() + nFirst, sBytes.size() - nFirst)) ||
           Fail(m_pTarget->Error());
}

void ZRFxArchiveCommit::ListNew(ZRFxCommitRecord* pRecord) const {
    for (const std::string& sName : m_archive.next.asRemoved) {
        if (!m_archive.table.Find(sName)) pRecord->asRemoved.push_back(sName);
    }
    for (size_t i = m_archive.next.nFirstNew; i < m_archive.table.SlotCount(); ++i) {
        const ZRFxArchiveItem* pItem = m_archive.table.At(i);
        if (pItem && pItem->ePlace == Place::kInFile) pRecord->sLines += pItem->entry.sRecord;
    }
    for (const Placed& placed : m_aPlaced) pRecord->sLines += placed.entry.sRecord;
}

std::string ZRFxArchiveCommit::ListEdits(ZRFxCommitRecord* pRecord) const {
    std::string sTails;
    for (const auto& pText : m_archive.apTexts) {
        if (pText->bDropped || !pText->bChanged) continue;
        const std::string_view sTail = std::string_view(pText->sText).substr(pText->nUnchanged);
        pRecord->aEdits.push_back({pText->sName, pText->nUnchanged, sTail.size()});
        sTails += sTail;
    }
    return sTails;
}

bool ZRFxArchiveCommit::AppendArchive() {
    m_archive.Compact();
    ZRFxRewind rewind(m_pTarget);
    const uint64_t nLeft = m_archive.bytes.nDirectory + DocumentBytes();
    ZRFxCommitResult eResult = ZRFxCommitResult::kFailed;
    if (!PlaceItems(0, true) || !WriteDirectory() || !End(&eResult)) return false;
    rewind.Keep();
    if (m_archive.last.place.nBase != 0) m_archive.bytes.nLeft += nLeft;
    m_archive.last.bFollowed = m_archive.last.bFollowed || m_archive.last.place.nBase == 0;
    ApplyArchive();
    ApplyCommon(eResult == ZRFxCommitResult::kDone);
    return eResult == ZRFxCommitResult::kDone || Fail(m_archive.pStorage->Error());
}

// Writes what is not in the target yet.
bool ZRFxArchiveCommit::PlaceItems(size_t nFirstSlot, bool bWithTexts) {
    const bool bAnew = m_pTarget != m_archive.pStorage.get();
    const nvf::Progress::Count count(m_archive.bytes.nPending +
                                     (bAnew ? m_archive.bytes.nLive : 0));
    for (size_t i = nFirstSlot; i < m_archive.table.SlotCount(); ++i) {
        ZRFxArchiveItem* pItem = m_archive.table.At(i);
        if (!pItem) continue;
        if (pItem->ePlace == Place::kPending && !PlacePending(pItem)) return false;
        if (pItem->ePlace == Place::kInRecords && bWithTexts && !PlaceText(pItem)) return false;
        if (pItem->ePlace == Place::kInFile && bAnew && !CopyEntry(pItem)) return false;
    }
    return true;
}

bool ZRFxArchiveCommit::PlacePending(ZRFxArchiveItem* pItem) {
    return WriteEntry(pItem, pItem->entry, pItem->packed.Buffer());
}

bool ZRFxArchiveCommit::PlaceText(ZRFxArchiveItem* pItem) {
    const ZRFxGrowingText& text = *pItem->pText;
    if (!text.cause.IsNone()) return Fail(text.cause);
    ZRFxZipEntry entry;
    entry.sName = text.sName;
    const uint8_t* pPacked = nullptr;
    if (!text.sText.empty() &&
        !m_packer.Pack(text.sText.data(), text.sText.size(), text.nLevel, &entry, &pPacked)) {
        return Fail(m_packer.Error());
    }
    pItem->nTime = std::time(nullptr);
    return WriteEntry(pItem, std::move(entry), pPacked);
}

// Local header, data and descriptor as they are.
bool ZRFxArchiveCommit::CopyEntry(ZRFxArchiveItem* pItem) {
    Placed placed{pItem, pItem->entry};
    ZRFxZipStorage& source = *m_archive.pStorage;
    uint64_t nEnd = 0;
    if (!m_reader.FindEnd(placed.entry, source.Position(), &nEnd)) return Fail(m_reader.Error());
    placed.entry.nOffset = m_pTarget->Position();
    placed.entry.sRecord = ZRFxZipDirectory::MovedRecord(pItem->entry, placed.entry.nOffset);
    ZRFxZipRawData part;
    if (!part.Allocate(std::min<uint64_t>(kCopySize, nEnd - pItem->entry.nOffset))) {
        return Fail(ZRFxCause::OutOfMemory());
    }
    for (uint64_t nAt = pItem->entry.nOffset; nAt < nEnd;) {
        const size_t nPart = static_cast<size_t>(std::min<uint64_t>(nEnd - nAt, part.Length()));
        if (!source.Read(nAt, part.Buffer(), nPart)) return Fail(source.Error());
        if (!m_pTarget->Write(part.Buffer(), nPart)) return Fail(m_pTarget->Error());
        if (!nvf::Progress::advance(nPart)) return Fail(ZRFxCause::Stopped());
        nAt += nPart;
    }
    m_aPlaced.push_back(std::move(placed));
    return true;
}

bool ZRFxArchiveCommit::WriteEntry(ZRFxArchiveItem* pItem, ZRFxZipEntry entry,
                                   const uint8_t* pPacked) {
    entry.nOffset = m_pTarget->Position();
    entry.sRecord = ZRFxZipDirectory::CentralRecord(entry, pItem->nTime);
    if (!m_packer.Write(entry, pItem->nTime, pPacked, m_pTarget)) return Fail(m_packer.Error());
    // The packer has counted what is stored.
    const uint64_t nCounted = entry.nMethod == kZipStored ? 0 : entry.nPackedSize;
    if (!nvf::Progress::advance(nCounted)) return Fail(ZRFxCause::Stopped());
    m_aPlaced.push_back({pItem, std::move(entry)});
    return true;
}

// The directory is on the disk before the end that makes it count.
bool ZRFxArchiveCommit::WriteDirectory() {
    const bool bAnew = m_pTarget != m_archive.pStorage.get();
    const uint64_t nStart = m_pTarget->Position();
    uint64_t nEntries = m_aPlaced.size();
    const auto write = [&](std::string_view s) { return m_pTarget->Write(s.data(), s.size()); };
    bool bWritten = true;
    for (size_t i = 0; !bAnew && i < m_archive.table.SlotCount(); ++i) {
        const ZRFxArchiveItem* pItem = m_archive.table.At(i);
        if (!pItem || pItem->ePlace != Place::kInFile) continue;
        bWritten = bWritten && write(pItem->entry.sRecord);
        ++nEntries;
    }
    for (const Placed& placed : m_aPlaced) bWritten = bWritten && write(placed.entry.sRecord);
    const uint64_t nLength = m_pTarget->Position() - nStart;
    return (bWritten && m_pTarget->Flush() &&
            write(ZRFxZipDirectory::End(nEntries, nStart, nLength, m_archive.sComment))) ||
           Fail(m_pTarget->Error());
}

// False when nothing of the commit holds.
bool ZRFxArchiveCommit::End(ZRFxCommitResult* pResult) {
    *pResult = m_pTarget->EndCommit();
    return *pResult != ZRFxCommitResult::kFailed || Fail(m_pTarget->Error());
}

// From here on no memory is taken, so that nothing can fail.
void ZRFxArchiveCommit::ApplyPlaced() {
    for (Placed& placed : m_aPlaced) {
        ZRFxArchiveItem& item = *placed.pItem;
        m_archive.Uncount(item);
        item.entry.nOffset = placed.entry.nOffset;
        std::swap(item.entry, placed.entry);
        item.packed.Clear();
        item.ePlace = Place::kInFile;
        m_archive.Count(item);
    }
}

// The library that reads foreign entries finds them by their index in the directory.
void ZRFxArchiveCommit::ApplyArchive() {
    const bool bAnew = m_aPlaced.size() == m_archive.table.SlotCount();
    uint64_t nIndex = 0;
    for (size_t i = 0; !bAnew && i < m_archive.table.SlotCount(); ++i) {
        ZRFxArchiveItem* pItem = m_archive.table.At(i);
        if (pItem && pItem->ePlace == Place::kInFile) pItem->nIndex = nIndex++;
    }
    for (const Placed& placed : m_aPlaced) placed.pItem->nIndex = nIndex++;
    ApplyPlaced();
    const uint64_t nEnd = m_archive.pStorage->Size();
    m_archive.last.place = {nEnd, 0, nEnd, {}};
    m_archive.last.bOwnChain = false;
}

void ZRFxArchiveCommit::ApplyCommon(bool bConfirmed) {
    m_bApplied = m_archive.last.bOwn = true;
    m_archive.last.bTorn = false;
    std::erase_if(m_archive.apTexts, [](const auto& pText) { return pText->bDropped; });
    for (const auto& pText : m_archive.apTexts) {
        pText->nUnchanged = pText->nLength;
        pText->bChanged = false;
    }
    m_archive.next.asRemoved.clear();
    if (m_archive.table.HasManyGaps()) m_archive.table.Compact();
    m_archive.next.nFirstNew = m_archive.table.SlotCount();
    m_archive.next.bChanged = !bConfirmed;
}

}  // namespace unstruct
