#include "container/ZRFxZipArchive.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <new>
#include <utility>

#include "container/ZRFxAppendFile.h"
#include "container/ZRFxArchiveCommit.h"
#include "container/ZRFxDocumentTexts.h"
#include "container/ZRFxNewEntry.h"
#include "container/ZRFxOldJournal.h"
#include "nvf/Progress.h"

namespace unstruct {
namespace {

// Why the entries of a commit were not taken over.
ZRFxCause NotTaken() {
    return nvf::Progress::isStopped() ? ZRFxCause::Stopped() : ZRFxCause("damaged commit record");
}

using Place = ZRFxArchiveItem::Place;

// The length of what two texts have in common at their start.
uint64_t CommonLength(std::string_view s, std::string_view t) {
    const auto differing = std::mismatch(s.begin(), s.end(), t.begin(), t.end());
    return static_cast<uint64_t>(differing.first - s.begin());
}

}  // namespace

ZRFxZipArchive::ZRFxZipArchive() : m_pOpen(std::make_unique<ZRFxOpenArchive>()) {}

ZRFxZipArchive::~ZRFxZipArchive() = default;

bool ZRFxZipArchive::Open(const std::string& sPath, ZRZipAccessMode eMode) {
    return Guarded({}, [&] {
        if (IsOpen()) return Fail({}, {"another archive is open", nvf::Reason::INVALID_ARGUMENT});
        m_sArchive = sPath;
        std::unique_ptr<ZRFxOpenArchive> pOpen;
        return OpenFile(sPath, eMode, &pOpen) && Take(std::move(pOpen));
    });
}

bool ZRFxZipArchive::Open(ZRFxZipMemFile* pFile, ZRZipAccessMode eMode) {
    return Guarded({}, [&] {
        if (IsOpen()) return Fail({}, {"another archive is open", nvf::Reason::INVALID_ARGUMENT});
        m_sArchive = "archive in memory";
        m_sPath.clear();
        std::unique_ptr<ZRFxOpenArchive> pOpen;
        return OpenStorage(
                   std::make_unique<ZRFxMemStorage>(pFile, eMode == ZRZipAccessMode::CREATE), eMode,
                   &pOpen) &&
               Take(std::move(pOpen));
    });
}

bool ZRFxZipArchive::HasUncommitted() const {
    return IsOpen() && !IsReadOnly() && (m_pOpen->next.bChanged || m_pOpen->pStream);
}

uint64_t ZRFxZipArchive::Length() const {
    return IsOpen() ? m_pOpen->pStorage->Position() + m_pOpen->bytes.nPending : 0;
}

bool ZRFxZipArchive::Commit() {
    return Guarded({}, [&] {
        if (!CheckWritable({})) return false;
        return !m_pOpen->next.bChanged || CommitNow(false);
    });
}

bool ZRFxZipArchive::Close() {
    return Guarded({}, [&] {
        if (!IsOpen()) return Fail({}, {"the archive is not open", nvf::Reason::NOT_OPEN});
        if (m_pOpen->pStream && !CloseEntry()) return false;
        // A file that ends with a record, or with what a killed writer left, becomes an ordinary
        // one.
        const bool bCommits = m_pOpen->last.bOwn || !m_pOpen->IsOrdinary();
        if (!IsReadOnly() && bCommits && !CommitNow(true)) return false;
        Reset();
        return true;
    });
}

bool ZRFxZipArchive::CloseAs(const std::string& sPath) {
    return Guarded({}, [&] {
        if (!CheckWritable({})) return false;
        if (m_pOpen->pStream && !CloseEntry()) return false;
        auto pFile = std::make_unique<ZRFxAppendFile>();
        if (!pFile->Open(sPath, ZRZipAccessMode::CREATE)) {
            return Fail({}, pFile->Error().Of(sPath));
        }
        if (!pFile->IsNew()) return Fail({}, {"'" + sPath + "' exists", nvf::Reason::EXISTS});
        ZRFxArchiveCommit commit(m_pOpen.get(), &m_packer, &m_reader, &m_codec, &m_cipher);
        if (!LoadTexts()) return false;
        const bool bWritten = Guarded({}, [&] { return commit.WriteAnew(std::move(pFile)); });
        // The archive may be in the new file from here on, only not confirmed yet.
        m_reader.Open(m_pOpen->pStorage.get(), m_pOpen->last.place.nBase);
        if (!bWritten) return Fail({}, commit.Error().Of(sPath));
        Reset();
        return true;
    });
}

void ZRFxZipArchive::Abandon() {
    Reset();
}

bool ZRFxZipArchive::Refresh(ZRFxArchiveChanges* pChanges) {
    return Guarded({}, [&] {
        *pChanges = ZRFxArchiveChanges();
        if (!IsOpen()) return Fail({}, {"the archive is not open", nvf::Reason::NOT_OPEN});
        if (!IsReadOnly())
            return Fail({}, {"the archive is open for writing", nvf::Reason::INVALID_ARGUMENT});
        ZRFxZipStorage& storage = *m_pOpen->pStorage;
        if (!storage.Extend()) return Reopen(pChanges);
        const bool bRefreshed = Guarded({}, [&] {
            ZRFxLastCommit last(&m_codec);
            return (last.LoadSince(&storage, &m_pOpen->last.place) || Fail({}, last.Error())) &&
                   RefreshFrom(&last, pChanges);
        });
        m_pOpen->pStorage->CutTo(m_pOpen->last.place.nEnd);
        m_reader.Open(m_pOpen->pStorage.get(), m_pOpen->last.place.nBase);
        return bRefreshed;
    });
}

bool ZRFxZipArchive::SetPassword(std::string_view sPassword) {
    return Guarded({}, [&] {
        if (!IsOpen()) return Fail({}, {"the archive is not open", nvf::Reason::NOT_OPEN});
        m_cipher.SetPassword(sPassword);
        return true;
    });
}

size_t ZRFxZipArchive::EntryCount() {
    m_pOpen->Compact();
    return m_pOpen->table.SlotCount();
}

ZRFxZipArchive::EntryInfo ZRFxZipArchive::EntryAt(size_t nIndex) {
    EntryInfo info;
    GetEntry(nIndex, &info);
    return info;
}

bool ZRFxZipArchive::GetEntry(size_t nIndex, EntryInfo* pInfo) {
    return nIndex < EntryCount() &&
           Guarded({}, [&] { return Describe(*m_pOpen->table.At(nIndex), pInfo); });
}

std::string_view ZRFxZipArchive::NameAt(size_t nIndex) {
    return nIndex < EntryCount() ? std::string_view(m_pOpen->table.At(nIndex)->entry.sName)
                                 : std::string_view();
}

int64_t ZRFxZipArchive::IndexOf(std::string_view sName) const {
    const Item* pItem = FindItem(sName);
    return pItem ? static_cast<int64_t>(pItem->nSlot) : -1;
}

bool ZRFxZipArchive::Find(std::string_view sName, EntryInfo* pInfo) {
    const Item* pItem = FindItem(sName);
    return pItem && Guarded(sName, [&] { return Describe(*pItem, pInfo); });
}

bool ZRFxZipArchive::Add(std::string_view sName, const void* pData, uint64_t nSize, int nLevel) {
    return Guarded(sName, [&] {
        ItemPtr pItem;
        if (!CheckWritable(sName) || !CheckNewName(sName)) return false;
        if (!MakeItem(sName, pData, nSize, nLevel, &pItem)) return false;
        m_pOpen->Add(std::move(pItem));
        return true;
    });
}

bool ZRFxZipArchive::Replace(std::string_view sName, const void* pData, uint64_t nSize,
                             int nLevel) {
    return Guarded(sName, [&] {
        ItemPtr pItem;
        if (!CheckWritable(sName) || !CheckName(sName)) return false;
        if (!MakeItem(sName, pData, nSize, nLevel, &pItem)) return false;
        m_pOpen->Add(std::move(pItem));
        return true;
    });
}

bool ZRFxZipArchive::Grow(std::string_view sName, uint64_t nKept, std::string_view sTail,
                          int nLevel, uint64_t* pRevision) {
    return Guarded(sName, [&] {
        if (!CheckWritable(sName) || !CheckName(sName) || !LoadTexts()) return false;
        ZRFxDocumentTexts texts(m_pOpen.get(), &m_reader, &m_codec, &m_cipher);
        return texts.Grow(sName, nKept, sTail, nLevel, pRevision) || Fail(sName, texts.Error());
    });
}

uint64_t ZRFxZipArchive::RevisionOf(std::string_view sName) const {
    const Item* pItem = FindItem(sName);
    return pItem && pItem->pText ? pItem->pText->nRevision : 0;
}

bool ZRFxZipArchive::Remove(std::string_view sName) {
    return Guarded(sName, [&] {
        if (!CheckWritable(sName)) return false;
        Item* pItem = FindItem(sName);
        if (!pItem) return Fail(sName, {"no such entry", nvf::Reason::NOT_FOUND});
        m_pOpen->Remove(pItem);
        return true;
    });
}

bool ZRFxZipArchive::Read(std::string_view sName, ZRFxZipRawData* pRaw) {
    pRaw->Clear();
    const bool bRead = Guarded(sName, [&] {
        if (!IsOpen()) return Fail(sName, {"the archive is not open", nvf::Reason::NOT_OPEN});
        const Item* pItem = FindItem(sName);
        if (!pItem) return Fail(sName, {"no such entry", nvf::Reason::NOT_FOUND});
        return ReadItem(*pItem, pRaw);
    });
    if (!bRead) pRaw->Clear();
    return bRead;
}

bool ZRFxZipArchive::ReadPart(std::string_view sName, uint64_t nFrom, void* pData, size_t nSize) {
    return Guarded(sName, [&] {
        const Item* pItem = FindItem(sName);
        if (!pItem) return Fail(sName, {"no such entry", nvf::Reason::NOT_FOUND});
        if (pItem->ePlace != Place::kInRecords) {
            return m_reader.ReadPart(*pItem, nFrom, pData, nSize) || Fail(sName, m_reader.Error());
        }
        ZRFxZipRawData raw;
        if (!ReadItem(*pItem, &raw)) return false;
        if (nFrom > raw.Length() || nSize > raw.Length() - nFrom) {
            return Fail(sName, "the entry ends too early");
        }
        if (nSize > 0) std::memcpy(pData, raw.Buffer() + nFrom, nSize);
        return true;
    });
}

bool ZRFxZipArchive::ReadTail(std::string_view sName, uint64_t nFrom, std::string* pTail) {
    return Guarded(sName, [&] {
        Item* pItem = FindItem(sName);
        if (!pItem) return Fail(sName, {"no such entry", nvf::Reason::NOT_FOUND});
        if (pItem->ePlace == Place::kInRecords) {
            if (!LoadTexts()) return false;
            const ZRFxGrowingText& text = *pItem->pText;
            if (!text.cause.IsNone()) return Fail(sName, text.cause);
            pTail->assign(text.sText, std::min<uint64_t>(nFrom, text.sText.size()));
            return true;
        }
        ZRFxZipRawData raw;
        if (!ReadItem(*pItem, &raw)) return false;
        const uint64_t nStart = std::min<uint64_t>(nFrom, raw.Length());
        pTail->assign(raw.Buffer() + nStart, raw.Buffer() + raw.Length());
        return true;
    });
}

bool ZRFxZipArchive::OpenEntry(std::string_view sName, int nLevel) {
    return Guarded(sName, [&] {
        if (!CheckWritable(sName)) return false;
        if (m_pOpen->pStream)
            return Fail(sName, {"another entry is being written", nvf::Reason::INVALID_ARGUMENT});
        if (!CheckNewName(sName)) return false;
        m_pOpen->pStream.reset(
            new ZRFxOpenArchive::Stream{std::string(sName), nLevel, ZRFxZipMemFile(4096)});
        return true;
    });
}

bool ZRFxZipArchive::WriteEntry(const void* pData, size_t nSize) {
    return Guarded({}, [&] {
        if (!m_pOpen->pStream)
            return Fail({}, {"no entry is being written", nvf::Reason::INVALID_ARGUMENT});
        ZRFxOpenArchive::Stream& stream = *m_pOpen->pStream;
        const bool bFits = nSize <= ZRFxZipRawData::kMaxLength - stream.data.Length();
        if (bFits && stream.data.Append(pData, nSize)) return true;
        const std::string sName = stream.sName;
        m_pOpen->pStream.reset();
        return Fail(sName, bFits ? ZRFxCause::OutOfMemory() : ZRFxCause::TooLarge());
    });
}

bool ZRFxZipArchive::CloseEntry() {
    return Guarded({}, [&] {
        if (!m_pOpen->pStream)
            return Fail({}, {"no entry is being written", nvf::Reason::INVALID_ARGUMENT});
        const auto pStream = std::move(m_pOpen->pStream);
        return Add(pStream->sName, pStream->data.Data(), pStream->data.Length(), pStream->nLevel);
    });
}

bool ZRFxZipArchive::Probe(const std::string& sPath, std::string_view sName) {
    ZRFxZipArchive archive;
    return archive.Open(sPath, ZRZipAccessMode::READ_ONLY) && archive.Contains(sName);
}

// Runs the operation and turns what the standard library throws into a failure.
template <typename Operation>
bool ZRFxZipArchive::Guarded(std::string_view sName, Operation operation) noexcept {
    try {
        try {
            return operation();
        } catch (const std::bad_alloc&) {
            return Fail(sName, ZRFxCause::OutOfMemory());
        } catch (const std::exception& exception) {
            return Fail(sName, exception.what());
        }
    } catch (...) {
        m_sError = "out of memory";  // Short enough not to need any.
        m_eReason = nvf::Reason::OUT_OF_MEMORY;
        return false;
    }
}

bool ZRFxZipArchive::Fail(std::string_view sName, const ZRFxCause& cause) {
    // The cause may be the message that is replaced.
    std::string sError = "'" + m_sArchive + "'";
    if (!sName.empty()) sError.append(", entry '").append(sName).append("'");
    sError.append(": ").append(cause.sText).append(".");
    m_sError.swap(sError);
    m_eReason = cause.eReason;
    return false;
}

bool ZRFxZipArchive::OpenFile(const std::string& sPath, ZRZipAccessMode eMode,
                              std::unique_ptr<ZRFxOpenArchive>* ppOpen) {
    auto pFile = std::make_unique<ZRFxAppendFile>();
    if (!pFile->Open(sPath, eMode)) return Fail({}, pFile->Error());
    m_sPath = pFile->Path();
    std::unique_ptr<ZRFxZipStorage> pStorage;
    ZRFxOldJournal journal(&m_codec);
    if (!journal.Settle(std::move(pFile), eMode, &pStorage)) return Fail({}, journal.Error());
    return OpenStorage(std::move(pStorage), eMode, ppOpen);
}

bool ZRFxZipArchive::OpenStorage(std::unique_ptr<ZRFxZipStorage> pStorage, ZRZipAccessMode eMode,
                                 std::unique_ptr<ZRFxOpenArchive>* ppOpen) {
    auto pOpen = std::make_unique<ZRFxOpenArchive>();
    ZRFxLastCommit last(&m_codec);
    if (!last.Load(pStorage.get())) return Fail({}, last.Error());
    pOpen->last.bTorn = last.Place().nEnd < pStorage->Size();
    if (!pOpen->Take(&last)) return Fail({}, NotTaken());
    if (eMode == ZRZipAccessMode::UPDATE && pOpen->table.HasOverlaps()) {
        return Fail({}, "entries overlap, the archive cannot be changed");
    }
    pStorage->CutTo(pOpen->last.place.nEnd);
    pOpen->pStorage = std::move(pStorage);
    pOpen->bReadOnly = eMode == ZRZipAccessMode::READ_ONLY;
    pOpen->next.bChanged = eMode == ZRZipAccessMode::CREATE;
    if (!pOpen->bReadOnly) pOpen->next.run = ZRFxCommitRecord::NewRun();
    *ppOpen = std::move(pOpen);
    return true;
}

bool ZRFxZipArchive::Take(std::unique_ptr<ZRFxOpenArchive> pOpen) {
    m_pOpen = std::move(pOpen);
    m_reader.Open(m_pOpen->pStorage.get(), m_pOpen->last.place.nBase);
    return true;
}

void ZRFxZipArchive::Reset() {
    m_reader.Close();
    m_packer.Clear();
    m_pieces.Clear();
    m_cipher.SetPassword({});
    m_pOpen->Clear();
}

bool ZRFxZipArchive::CheckWritable(std::string_view sName) {
    if (!IsOpen()) return Fail(sName, {"the archive is not open", nvf::Reason::NOT_OPEN});
    return !IsReadOnly() ||
           Fail(sName, {"the archive is open for reading only", nvf::Reason::READ_ONLY});
}

bool ZRFxZipArchive::CheckName(std::string_view sName) {
    if (sName.empty()) return Fail(sName, {"the entry has no name", nvf::Reason::INVALID_ARGUMENT});
    return sName.size() <= 0xFFFF ||
           Fail({}, {"the name of the entry is too long", nvf::Reason::INVALID_ARGUMENT});
}

bool ZRFxZipArchive::CheckNewName(std::string_view sName) {
    return CheckName(sName) &&
           (!Contains(sName) || Fail(sName, {"the entry exists", nvf::Reason::EXISTS}));
}

bool ZRFxZipArchive::Describe(const Item& item, EntryInfo* pInfo) const {
    const ZRFxZipEntry& entry = item.entry;
    pInfo->sName = entry.sName;
    pInfo->nSize = entry.nSize;
    const uint64_t nOverhead = entry.eEncryption == ZRFxZipEntry::Encryption::kAes
                                   ? ZRFxCipher::Overhead(entry.eStrength)
                                   : 0;
    pInfo->nPackedSize = entry.nPackedSize - std::min(entry.nPackedSize, nOverhead);
    pInfo->nMethod = entry.nMethod;
    pInfo->bEncrypted = entry.eEncryption != ZRFxZipEntry::Encryption::kNone;
    // How much of its commit records a text takes is not known.
    if (item.ePlace == Place::kInRecords) pInfo->nSize = pInfo->nPackedSize = item.pText->nLength;
    return true;
}

bool ZRFxZipArchive::MakeItem(std::string_view sName, const void* pData, uint64_t nSize, int nLevel,
                              ItemPtr* ppItem) {
    ZRFxNewEntry entry(m_pOpen.get(), &m_packer, m_nPendingLimit);
    return entry.Make(sName, pData, nSize, nLevel, ppItem) || Fail(sName, entry.Error());
}

bool ZRFxZipArchive::LoadTexts() {
    ZRFxDocumentTexts texts(m_pOpen.get(), &m_reader, &m_codec, &m_cipher);
    return texts.Load() || Fail({}, texts.Error());
}

bool ZRFxZipArchive::ReadItem(const Item& item, ZRFxZipRawData* pRaw) {
    const std::string_view sName = item.entry.sName;
    if (item.ePlace != Place::kInRecords) {
        return m_reader.Read(item, pRaw) || Fail(sName, m_reader.Error());
    }
    if (!LoadTexts()) return Fail(sName, {m_sError, m_eReason});
    const ZRFxGrowingText& text = *item.pText;
    if (!text.cause.IsNone()) return Fail(sName, text.cause);
    if (!pRaw->Allocate(text.sText.size())) return Fail(sName, ZRFxCause::OutOfMemory());
    if (!text.sText.empty()) std::memcpy(pRaw->Buffer(), text.sText.data(), text.sText.size());
    return true;
}

bool ZRFxZipArchive::CommitNow(bool bClosing) {
    if (!LoadTexts()) return false;
    ZRFxArchiveCommit commit(m_pOpen.get(), &m_packer, &m_reader, &m_codec, &m_cipher);
    const bool bCommitted =
        Guarded({}, [&] { return commit.Run(bClosing) || Fail({}, commit.Error()); });
    m_reader.Open(m_pOpen->pStorage.get(), m_pOpen->last.place.nBase);
    return bCommitted;
}

bool ZRFxZipArchive::RefreshFrom(ZRFxLastCommit* pCommit, ZRFxArchiveChanges* pChanges) {
    ZRFxOpenArchive& open = *m_pOpen;
    const ZRFxCommitPlace place = pCommit->Place();
    pChanges->bAny = place.nEnd != open.last.place.nEnd;
    if (pCommit->IsSince()) {
        if (!open.TakeRecords(&pCommit->aRecords, pChanges)) {
            return Fail({}, "damaged commit record");
        }
        open.last.place = place;
        return true;
    }
    auto pNew = std::make_unique<ZRFxOpenArchive>();
    if (!pNew->Take(pCommit)) return Fail({}, NotTaken());
    pNew->bReadOnly = true;
    pNew->NoteChangesSince(open, pChanges);
    pNew->pStorage = std::move(open.pStorage);
    m_pOpen.swap(pNew);
    // What follows the commit may be written anew, so nothing of it is read ahead.
    m_pOpen->pStorage->CutTo(place.nEnd);
    m_reader.Open(m_pOpen->pStorage.get(), place.nBase);
    // A document that the new archive has as an entry may have grown.
    for (auto& [sName, nKept] : pChanges->kept) {
        const Item* pOld = pNew->table.Find(sName);
        std::string sText;
        if (!pOld->pText || !pOld->pText->bLoaded || !Contains(sName)) continue;
        if (ReadTail(sName, 0, &sText)) nKept = CommonLength(pOld->pText->sText, sText);
    }
    return true;
}

bool ZRFxZipArchive::Reopen(ZRFxArchiveChanges* pChanges) {
    if (m_sPath.empty()) return Fail({}, m_pOpen->pStorage->Error());
    std::unique_ptr<ZRFxOpenArchive> pOpen;
    if (!OpenFile(m_sPath, ZRZipAccessMode::READ_ONLY, &pOpen)) return false;
    // As long as the new file has no content, what was there is shown.
    if (pOpen->table.SlotCount() == 0) return true;
    pChanges->bAny = pChanges->bReplaced = true;
    return Take(std::move(pOpen));
}

}  // namespace unstruct
