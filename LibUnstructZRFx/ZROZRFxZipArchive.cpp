#include "ZROZRFxZipArchive.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <chrono>
#include <cstring>
#include <exception>
#include <limits>
#include <new>
#include <thread>

#include "ZROZRFxJournaledFile.h"

namespace unstruct {
namespace {

constexpr uint64_t kMiB = uint64_t{1} << 20;
// A commit writes the old directory to the journal and the new one to the archive; with this many
// times as much data they stay a small share.
constexpr uint64_t kDirectoryShare = 8;
constexpr uint64_t kMaxTail = 64 * kMiB;
// Documents at the end of the file that are written anew rather than buried under data.
constexpr uint64_t kMaxMovedDocuments = kMiB;
constexpr uint64_t kNone = std::numeric_limits<uint64_t>::max();
constexpr size_t kCopySize = size_t{1} << 20;
// Entries up to this length are fetched together with their local header.
constexpr uint64_t kSmallEntry = 64 * 1024;
// Stored entries above that length begin where a large array of the heap does, this far behind a
// multiple of that number: the system copies twice as fast between places of equal alignment.
constexpr uint64_t kAlignment = 64;
constexpr uint64_t kArrayStart = 16;
constexpr uint32_t kCachedPart = 256 * 1024;
constexpr size_t kUsualExtra = 48;
// Below this length, a checksum beside encrypted data would tell too much of it. Other programs
// draw the line here too, and some take no encrypted data of more without a checksum.
constexpr uint64_t kSmallestWithCrc = 20;
constexpr int kMaxTries = 1000;
constexpr int kMaxDamagedTries = 3;

// Order within a commit: data, documents, and those documents that nearly every commit replaces.
enum WriteOrder { kData, kDocument, kLast };

WriteOrder WriteOrderOf(const std::string& sName) {
    if (sName == "ZRF.xml" || sName.ends_with("-TOC.xml")) return kLast;
    return sName.ends_with(".xml") ? kDocument : kData;
}

}  // namespace

struct ZRFxZipArchive::Item {
    enum class Place { kCommitted, kWritten, kPending };

    ZRFxZipEntry entry;
    Place ePlace = Place::kCommitted;
    ZRFxZipRawData packed;  // While pending: the bytes as the archive will hold them.
    std::time_t nTime = 0;
    uint64_t nIndex = 0;  // In the committed directory, when committed.
    size_t nSlot = 0;     // In m_apItems.
};

struct ZRFxZipArchive::Stream {
    std::string sName;
    int nLevel;
    ZRFxZipMemFile data;
};

// What the end of a commit writes, and where.
struct ZRFxZipArchive::Layout {
    std::vector<Item*> apKept;  // In the file already, those of this commit behind the others.
    std::vector<Item*> apWritten;
    std::vector<uint64_t> anOffsets;  // Of the written items.
    std::vector<std::string> asRecords;
    uint64_t nDirectoryOffset = 0;
};

ZRFxZipArchive::ZRFxZipArchive() = default;

ZRFxZipArchive::~ZRFxZipArchive() {
    if (IsOpen() && !Close()) Abandon();
}

bool ZRFxZipArchive::Open(const std::string& sPath, ZRFxOpenMode eMode) {
    const bool bOpened = Guarded({}, [&] {
        if (IsOpen()) return Fail({}, "another archive is open");
        m_sArchive = sPath;
        return eMode == ZRFxOpenMode::kReadOnly ? OpenSnapshot(sPath) : OpenFile(sPath, eMode);
    });
    if (!IsOpen()) Reset();
    return bOpened;
}

bool ZRFxZipArchive::Open(ZRFxZipMemFile* pFile, ZRFxOpenMode eMode) {
    const bool bOpened = Guarded({}, [&] {
        if (IsOpen()) return Fail({}, "another archive is open");
        m_sArchive = "archive in memory";
        auto pStorage = std::make_unique<ZRFxMemStorage>(pFile, eMode == ZRFxOpenMode::kCreate);
        ZRFxZipDirectory directory;
        if (!directory.Load(pStorage.get())) return Fail({}, directory.sError);
        return Take(std::move(pStorage), &directory, eMode);
    });
    if (!IsOpen()) Reset();
    return bOpened;
}

bool ZRFxZipArchive::Commit() {
    return Guarded({}, [&] {
        if (!CheckWritable({})) return false;
        return !m_bChanged || CommitChanges();
    });
}

bool ZRFxZipArchive::Close() {
    return Guarded({}, [&] {
        if (!IsOpen()) return Fail({}, "the archive is not open");
        if (m_pStream && !CloseEntry()) return false;
        if (!m_bReadOnly && !Commit()) return false;
        Reset();
        return true;
    });
}

void ZRFxZipArchive::Abandon() {
    Reset();
}

bool ZRFxZipArchive::SetPassword(std::string_view sPassword) {
    return Guarded({}, [&] {
        if (!IsOpen()) return Fail({}, "the archive is not open");
        m_cipher.SetPassword(sPassword);
        return true;
    });
}

size_t ZRFxZipArchive::EntryCount() {
    Compact();
    return m_apItems.size();
}

ZRFxZipArchive::EntryInfo ZRFxZipArchive::EntryAt(size_t nIndex) {
    Compact();
    assert(nIndex < m_apItems.size());
    EntryInfo info;
    if (nIndex < m_apItems.size()) {
        Guarded({}, [&] { return Describe(m_apItems[nIndex]->entry, &info); });
    }
    return info;
}

int64_t ZRFxZipArchive::IndexOf(std::string_view sName) const {
    const Item* pItem = FindItem(sName);
    return pItem ? static_cast<int64_t>(pItem->nSlot) : -1;
}

bool ZRFxZipArchive::Find(std::string_view sName, EntryInfo* pInfo) {
    const Item* pItem = FindItem(sName);
    return pItem && Guarded(sName, [&] { return Describe(pItem->entry, pInfo); });
}

bool ZRFxZipArchive::Add(std::string_view sName, const void* pData, uint64_t nSize, int nLevel) {
    return Guarded(sName, [&] {
        return CheckWritable(sName) && CheckNewName(sName) &&
               AddChecked(sName, pData, nSize, nLevel);
    });
}

bool ZRFxZipArchive::Replace(std::string_view sName, const void* pData, uint64_t nSize,
                             int nLevel) {
    return Guarded(sName, [&] {
        ItemPtr pItem;
        if (!CheckWritable(sName) || !CheckName(sName)) return false;
        if (!MakeItem(sName, pData, nSize, nLevel, &pItem)) return false;
        if (Item* pOld = FindItem(sName)) Drop(pOld);
        Append(std::move(pItem));
        return true;
    });
}

bool ZRFxZipArchive::Remove(std::string_view sName) {
    return Guarded(sName, [&] {
        if (!CheckWritable(sName)) return false;
        Item* pItem = FindItem(sName);
        if (!pItem) return Fail(sName, "no such entry");
        Drop(pItem);
        return true;
    });
}

bool ZRFxZipArchive::Read(std::string_view sName, ZRFxZipRawData* pRaw) {
    pRaw->Clear();
    const bool bRead = Guarded(sName, [&] {
        if (!IsOpen()) return Fail(sName, "the archive is not open");
        const Item* pItem = FindItem(sName);
        if (!pItem) return Fail(sName, "no such entry");
        return ReadItem(*pItem, pRaw);
    });
    if (!bRead) pRaw->Clear();
    return bRead;
}

bool ZRFxZipArchive::OpenEntry(std::string_view sName, int nLevel) {
    return Guarded(sName, [&] {
        if (!CheckWritable(sName)) return false;
        if (m_pStream) return Fail(sName, "another entry is being written");
        if (!CheckNewName(sName)) return false;
        m_pStream.reset(new Stream{std::string(sName), nLevel, ZRFxZipMemFile(4096)});
        return true;
    });
}

bool ZRFxZipArchive::WriteEntry(const void* pData, size_t nSize) {
    return Guarded({}, [&] {
        if (!m_pStream) return Fail({}, "no entry is being written");
        if (nSize > ZRFxZipRawData::kMaxLength - m_pStream->data.Length()) {
            return Fail(m_pStream->sName, "the entry is larger than 4 GiB");
        }
        return m_pStream->data.Append(pData, nSize) || Fail(m_pStream->sName, "out of memory");
    });
}

bool ZRFxZipArchive::CloseEntry() {
    return Guarded({}, [&] {
        if (!m_pStream) return Fail({}, "no entry is being written");
        const std::unique_ptr<Stream> pStream = std::move(m_pStream);
        return Add(pStream->sName, pStream->data.Data(), pStream->data.Length(), pStream->nLevel);
    });
}

bool ZRFxZipArchive::Probe(const std::string& sPath, std::string_view sName) {
    ZRFxZipArchive archive;
    return archive.Open(sPath, ZRFxOpenMode::kReadOnly) && archive.Contains(sName);
}

// Runs the operation and turns what the standard library throws into a failure.
template <typename Operation>
bool ZRFxZipArchive::Guarded(std::string_view sName, Operation operation) noexcept {
    try {
        try {
            return operation();
        } catch (const std::bad_alloc&) {
            return Fail(sName, "out of memory");
        } catch (const std::exception& exception) {
            return Fail(sName, exception.what());
        }
    } catch (...) {
        m_sError = "out of memory";  // Short enough not to need any.
        return false;
    }
}

bool ZRFxZipArchive::Fail(std::string_view sName, std::string_view sCause) {
    // The cause may be the message that is replaced.
    std::string sError = "'" + m_sArchive + "'";
    if (!sName.empty()) sError.append(", entry '").append(sName).append("'");
    sError.append(": ").append(sCause).append(".");
    m_sError.swap(sError);
    return false;
}

bool ZRFxZipArchive::OpenFile(const std::string& sPath, ZRFxOpenMode eMode) {
    auto pFile = std::make_unique<ZRFxJournaledFile>();
    if (!pFile->Open(sPath, eMode)) return Fail({}, pFile->Error());
    ZRFxZipDirectory directory;
    if (!directory.Load(pFile.get())) return Fail({}, directory.sError);
    return Take(std::move(pFile), &directory, eMode);
}

// Tries again while a writer changes the file under the reader's eyes.
bool ZRFxZipArchive::OpenSnapshot(const std::string& sPath) {
    int nDamaged = 0;
    for (int i = 0; i < kMaxTries; ++i) {
        auto pFile = std::make_unique<ZRFxJournaledFile>();
        if (!pFile->Open(sPath, ZRFxOpenMode::kReadOnly)) return Fail({}, pFile->Error());
        ZRFxZipDirectory directory;
        const bool bLoaded = directory.Load(pFile.get()) && directory.IsUnchangedIn(pFile.get());
        const bool bConsistent = pFile->IsConsistent();
        if (bLoaded && bConsistent) {
            return Take(std::move(pFile), &directory, ZRFxOpenMode::kReadOnly);
        }
        const bool bDamaged = bConsistent && !directory.sError.empty();
        if (bDamaged && ++nDamaged == kMaxDamagedTries) return Fail({}, directory.sError);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return Fail({}, "the file changes too fast to be read");
}

bool ZRFxZipArchive::Take(std::unique_ptr<ZRFxZipStorage> pStorage, ZRFxZipDirectory* pDirectory,
                          ZRFxOpenMode eMode) {
    if (eMode == ZRFxOpenMode::kUpdate && !pDirectory->bOrderly) {
        return Fail({}, "entries overlap, the archive cannot be changed");
    }
    m_byName.Reserve(pDirectory->aEntries.size());
    m_apItems.reserve(pDirectory->aEntries.size());
    for (size_t i = 0; i < pDirectory->aEntries.size(); ++i) {
        auto pItem = std::make_unique<Item>();
        pItem->entry = std::move(pDirectory->aEntries[i]);
        pItem->nIndex = i;
        if (Item* pEarlier = FindItem(pItem->entry.sName)) {
            m_byName.Erase(pEarlier);
            m_apItems[pEarlier->nSlot].reset();
            m_bHasGaps = true;
        }
        Append(std::move(pItem));
    }
    m_pStorage = std::move(pStorage);
    m_bReadOnly = eMode == ZRFxOpenMode::kReadOnly;
    m_bReplacesAll = eMode == ZRFxOpenMode::kCreate;
    m_bChanged = m_bReplacesAll;
    m_nDirectoryOffset = pDirectory->nOffset;
    m_nFirstRemoved = m_nDirectoryOffset;
    m_sComment = std::move(pDirectory->sComment);
    return true;
}

void ZRFxZipArchive::Reset() {
    m_pStream.reset();
    m_library.Close();
    m_pStorage.reset();
    m_byName.Clear();
    m_apItems.clear();
    m_bHasGaps = false;
    m_bReadOnly = false;
    m_bReplacesAll = false;
    m_bChanged = false;
    m_nDirectoryOffset = 0;
    m_nFirstRemoved = 0;
    m_bWriting = false;
    m_nWritingFrom = 0;
    m_nPendingBytes = 0;
    m_sComment.clear();
    m_scratch.Clear();
    m_readAhead.Clear();
    m_bHasSlashes = false;
    m_cipher.SetPassword({});
}

bool ZRFxZipArchive::CheckWritable(std::string_view sName) {
    if (!IsOpen()) return Fail(sName, "the archive is not open");
    return !m_bReadOnly || Fail(sName, "the archive is open for reading only");
}

bool ZRFxZipArchive::CheckName(std::string_view sName) {
    if (sName.empty()) return Fail(sName, "the entry has no name");
    return sName.size() <= 0xFFFF || Fail({}, "the name of the entry is too long");
}

bool ZRFxZipArchive::CheckNewName(std::string_view sName) {
    return CheckName(sName) && (!Contains(sName) || Fail(sName, "the entry exists"));
}

std::string_view ZRFxZipArchive::NameOf(const Item& item) {
    return item.entry.sName;
}

void ZRFxZipArchive::Append(ItemPtr pItem) {
    Item* pAppended = pItem.get();
    pAppended->nSlot = m_apItems.size();
    m_apItems.push_back(std::move(pItem));
    m_byName.Insert(pAppended);
    m_bHasSlashes = m_bHasSlashes || pAppended->entry.sName.find('/') != std::string::npos;
}

void ZRFxZipArchive::Drop(Item* pItem) {
    m_byName.Erase(pItem);
    if (pItem->ePlace == Item::Place::kPending) {
        m_nPendingBytes -= pItem->packed.Length();
    } else if (pItem->ePlace == Item::Place::kWritten || !IsMoved(*pItem)) {
        m_nFirstRemoved = std::min(m_nFirstRemoved, pItem->entry.nOffset);
    }
    m_bChanged = true;
    m_apItems[pItem->nSlot].reset();
    m_bHasGaps = true;
}

bool ZRFxZipArchive::Describe(const ZRFxZipEntry& entry, EntryInfo* pInfo) {
    pInfo->sName = entry.sName;
    pInfo->nSize = entry.nSize;
    const uint64_t nOverhead = entry.eEncryption == ZRFxZipEntry::Encryption::kAes
                                   ? ZRFxCipher::Overhead(entry.eStrength)
                                   : 0;
    pInfo->nPackedSize = entry.nPackedSize - std::min(entry.nPackedSize, nOverhead);
    pInfo->nMethod = entry.nMethod;
    pInfo->bEncrypted = entry.eEncryption != ZRFxZipEntry::Encryption::kNone;
    return true;
}

void ZRFxZipArchive::Compact() {
    if (!m_bHasGaps) return;
    std::erase(m_apItems, nullptr);
    for (size_t i = 0; i < m_apItems.size(); ++i) m_apItems[i]->nSlot = i;
    m_bHasGaps = false;
}

bool ZRFxZipArchive::AddChecked(std::string_view sName, const void* pData, uint64_t nSize,
                                int nLevel) {
    ItemPtr pItem;
    if (!MakeItem(sName, pData, nSize, nLevel, &pItem)) return false;
    Item* pAdded = pItem.get();
    Append(std::move(pItem));
    if (Uncommitted() < Threshold() || CommitChanges()) return true;
    if (pAdded->ePlace != Item::Place::kCommitted) Drop(pAdded);
    return false;
}

// Packs the entry and puts it where it waits for the commit.
bool ZRFxZipArchive::MakeItem(std::string_view sName, const void* pData, uint64_t nSize, int nLevel,
                              ItemPtr* ppItem) {
    const uint64_t nRoom = ZRFxCipher::kPrefixSize + ZRFxCipher::kSuffixSize;
    if (nSize > ZRFxZipRawData::kMaxLength - (m_cipher.HasPassword() ? nRoom : 0)) {
        return Fail(sName, "the entry is larger than 4 GiB");
    }
    auto pItem = std::make_unique<Item>();
    pItem->entry.sName = sName;
    pItem->entry.nSize = nSize;
    pItem->nTime = std::time(nullptr);
    const uint8_t* pPacked = nullptr;
    if (nSize > 0 && !Pack(pData, static_cast<size_t>(nSize), nLevel, &pItem->entry, &pPacked)) {
        return false;
    }
    const bool bPlaced = GoesToFile(pItem->entry) ? WriteAhead(pItem.get(), pPacked)
                                                  : KeepPending(pItem.get(), pPacked);
    if (!bPlaced) return false;
    m_bChanged = true;
    *ppItem = std::move(pItem);
    return true;
}

// Gives the bytes as the archive will hold them: in the scratch buffer, or the caller's own.
bool ZRFxZipArchive::Pack(const void* pData, size_t nSize, int nLevel, ZRFxZipEntry* pEntry,
                          const uint8_t** ppPacked) {
    const bool bEncrypt = m_cipher.HasPassword();
    const size_t nPrefix = bEncrypt ? ZRFxCipher::kPrefixSize : 0;
    const size_t nSuffix = bEncrypt ? ZRFxCipher::kSuffixSize : 0;
    const int nUsed = nLevel < 0 ? ZRFxCodec::kDefaultLevel : std::min(nLevel, 9);
    const size_t nRoom = nPrefix + nSize + nSuffix;
    const bool bScratch = nUsed > 0 || bEncrypt;
    if (bScratch && m_scratch.Length() < nRoom && !m_scratch.Allocate(nRoom)) {
        return Fail(pEntry->sName, "out of memory");
    }
    uint8_t* pPacked = bScratch ? m_scratch.Buffer() + nPrefix : nullptr;
    size_t nPacked = 0;
    if (nUsed > 0 && !m_codec.Deflate(nUsed, pData, nSize, pPacked, nSize - 1, &nPacked)) {
        return Fail(pEntry->sName, "out of memory");
    }
    pEntry->nMethod = nPacked > 0 ? kZipDeflated : kZipStored;
    pEntry->nCrc = nPacked == 0 && bEncrypt ? ZRFxCodec::CopyWithCrc(pData, nSize, pPacked)
                                            : ZRFxCodec::Crc32(0, pData, nSize);
    pEntry->nPackedSize = nPrefix + (nPacked > 0 ? nPacked : nSize) + nSuffix;
    const bool bAsItIs = nPacked == 0 && !bEncrypt;
    *ppPacked = bAsItIs ? static_cast<const uint8_t*>(pData) : m_scratch.Buffer();
    return !bEncrypt || Encrypt(pEntry);
}

// In the scratch buffer, where room was left around the data.
bool ZRFxZipArchive::Encrypt(ZRFxZipEntry* pEntry) {
    pEntry->eEncryption = ZRFxZipEntry::Encryption::kAes;
    pEntry->eStrength = ZRFxCipher::Strength::k256;
    pEntry->bHasCrc = pEntry->nSize >= kSmallestWithCrc;
    const size_t nRoom = ZRFxCipher::kPrefixSize + ZRFxCipher::kSuffixSize;
    return m_cipher.Encrypt(m_scratch.Buffer(), static_cast<size_t>(pEntry->nPackedSize) - nRoom) ||
           Fail(pEntry->sName, "cannot encrypt");
}

// What every commit replaces stays pending, so that it comes last. Of the rest, memory holds what
// fits its limit; once the file is being written to, what is large need not wait.
bool ZRFxZipArchive::GoesToFile(const ZRFxZipEntry& entry) const {
    const WriteOrder eOrder = WriteOrderOf(entry.sName);
    if (eOrder == kLast) return false;
    if (m_nPendingBytes + entry.nPackedSize > m_nPendingLimit) return true;
    return m_bWriting && eOrder == kData && entry.nPackedSize > kSmallEntry;
}

bool ZRFxZipArchive::KeepPending(Item* pItem, const uint8_t* pPacked) {
    const size_t nPacked = static_cast<size_t>(pItem->entry.nPackedSize);
    if (!pItem->packed.Allocate(nPacked)) return Fail(pItem->entry.sName, "out of memory");
    if (nPacked > 0) std::memcpy(pItem->packed.Buffer(), pPacked, nPacked);
    pItem->ePlace = Item::Place::kPending;
    m_nPendingBytes += nPacked;
    return true;
}

// Writes the entry into the commit that is under way, or starts one.
bool ZRFxZipArchive::WriteAhead(Item* pItem, const uint8_t* pPacked) {
    ZRFxZipEntry& entry = pItem->entry;
    if (!m_bWriting && !StartWriting()) return false;
    const uint64_t nOffset = m_pStorage->Position();
    entry.nOffset = nOffset;
    entry.sRecord = ZRFxZipDirectory::CentralRecord(entry, pItem->nTime);
    pItem->ePlace = Item::Place::kWritten;
    if (WritePacked(*pItem, pPacked)) return true;
    m_pStorage->Rewind(nOffset);
    return false;
}

bool ZRFxZipArchive::WritePacked(const Item& item, const uint8_t* pPacked) {
    std::string sHeader = ZRFxZipDirectory::LocalHeader(item.entry, item.nTime);
    if (item.entry.nMethod == kZipStored && item.entry.nPackedSize > kSmallEntry) {
        const uint64_t nStart = m_pStorage->Position() + sHeader.size();
        ZRFxZipDirectory::Pad(&sHeader, (kArrayStart - nStart) % kAlignment);
    }
    return (m_pStorage->Write(sHeader.data(), sHeader.size()) &&
            m_pStorage->Write(pPacked, static_cast<size_t>(item.entry.nPackedSize))) ||
           Fail(item.entry.sName, m_pStorage->Error());
}

// Starts a commit ahead of its end. Documents at the end of the file are likely to be replaced by
// then, so they are written anew with the others instead of staying before the data.
bool ZRFxZipArchive::StartWriting() {
    Compact();
    uint64_t nFrom = m_nFirstRemoved;
    for (size_t i = m_apItems.size(); i-- > 0;) {
        const Item& item = *m_apItems[i];
        if (item.ePlace != Item::Place::kCommitted) continue;
        const bool bMoved = WriteOrderOf(item.entry.sName) != kData &&
                            m_nDirectoryOffset - item.entry.nOffset <= kMaxMovedDocuments;
        if (!bMoved) break;
        nFrom = std::min(nFrom, item.entry.nOffset);
    }
    if (!BeginAt(nFrom)) return false;
    m_bWriting = true;
    // From now on the first entry that is removed and neither moved nor written over: a gap.
    m_nFirstRemoved = kNone;
    return true;
}

bool ZRFxZipArchive::BeginAt(uint64_t nFrom) {
    const bool bRewrite = m_bReplacesAll || m_nDirectoryOffset - nFrom > kMaxTail;
    m_nWritingFrom = bRewrite ? 0 : nFrom;
    return (bRewrite ? m_pStorage->BeginRewrite() : m_pStorage->BeginCommit(nFrom)) ||
           FailStorage();
}

// Whether the commit under way writes the committed entry anew.
bool ZRFxZipArchive::IsMoved(const Item& item) const {
    return m_bWriting && item.entry.nOffset >= m_nWritingFrom;
}

bool ZRFxZipArchive::ReadItem(const Item& item, ZRFxZipRawData* pRaw) {
    const ZRFxZipEntry& entry = item.entry;
    if (entry.nSize > ZRFxZipRawData::kMaxLength) {
        return Fail(entry.sName, "the entry is larger than 4 GiB");
    }
    if (entry.eEncryption == ZRFxZipEntry::Encryption::kUnreadable) {
        return Fail(entry.sName, "the encryption is not supported");
    }
    if (entry.eEncryption == ZRFxZipEntry::Encryption::kOther ||
        (entry.nMethod != kZipStored && entry.nMethod != kZipDeflated)) {
        return ReadForeign(item, pRaw);
    }
    if (!CheckDeclared(entry)) return false;
    if (item.ePlace == Item::Place::kPending) return Unpack(entry, item.packed.Buffer(), pRaw);
    const bool bPlain =
        entry.nMethod == kZipStored && entry.eEncryption == ZRFxZipEntry::Encryption::kNone;
    if (bPlain && entry.nSize > kSmallEntry) return FetchStored(item, pRaw);
    const uint8_t* pPacked = nullptr;
    return FetchPacked(item, &pPacked) && Unpack(entry, pPacked, pRaw);
}

// Nothing is allocated for a size that the packed bytes cannot give.
bool ZRFxZipArchive::CheckDeclared(const ZRFxZipEntry& entry) {
    uint64_t nPacked = entry.nPackedSize;
    if (entry.eEncryption == ZRFxZipEntry::Encryption::kAes) {
        if (!CheckAes(entry)) return false;
        nPacked -= ZRFxCipher::Overhead(entry.eStrength);
    }
    const bool bPossible = entry.nMethod == kZipStored
                               ? nPacked == entry.nSize
                               : ZRFxCodec::IsReachable(nPacked, entry.nSize);
    return bPossible || Fail(entry.sName, "the declared size does not fit the packed size");
}

bool ZRFxZipArchive::CheckAes(const ZRFxZipEntry& entry) {
    if (!m_cipher.HasPassword()) return Fail(entry.sName, "the entry needs a password");
    return entry.nPackedSize >= ZRFxCipher::Overhead(entry.eStrength) ||
           Fail(entry.sName, "the encrypted entry is cut");
}

// Reads where the entry lies: in the committed archive or in what is written for the next commit.
bool ZRFxZipArchive::ReadPlace(const Item& item, uint64_t nOffset, void* pData, size_t nSize) {
    return (item.ePlace == Item::Place::kWritten ? m_pStorage->ReadWritten(nOffset, pData, nSize)
                                                 : m_pStorage->Read(nOffset, pData, nSize)) ||
           Fail(item.entry.sName, m_pStorage->Error());
}

// Gives the packed bytes of an entry in the file; they stay until the next read.
bool ZRFxZipArchive::FetchPacked(const Item& item, const uint8_t** ppPacked) {
    const ZRFxZipEntry& entry = item.entry;
    if (entry.nPackedSize <= kSmallEntry && item.ePlace == Item::Place::kCommitted) {
        return FetchSmall(entry, ppPacked);
    }
    if (m_scratch.Length() < entry.nPackedSize && !m_scratch.Allocate(entry.nPackedSize)) {
        return Fail(entry.sName, "out of memory");
    }
    uint64_t nData = 0;
    *ppPacked = m_scratch.Buffer();
    return LocateData(item, &nData) &&
           ReadPlace(item, nData, m_scratch.Buffer(), static_cast<size_t>(entry.nPackedSize));
}

// Header and data together, and more at once where entry after entry is read.
bool ZRFxZipArchive::FetchSmall(const ZRFxZipEntry& entry, const uint8_t** ppPacked) {
    const uint64_t nHeader = ZRFxZipDirectory::kLocalHeaderSize + entry.sName.size();
    const uint64_t nGuess =
        std::min(nHeader + kUsualExtra + entry.nPackedSize, m_pStorage->Size() - entry.nOffset);
    const uint8_t* pHeader =
        m_readAhead.Get(m_pStorage.get(), entry.nOffset, static_cast<size_t>(nGuess));
    if (!pHeader) return Fail(entry.sName, m_pStorage->Error());
    uint64_t nData = 0;
    if (!ZRFxZipDirectory::DataOffset(entry, pHeader, &nData)) {
        return Fail(entry.sName, "damaged local header");
    }
    *ppPacked = pHeader + (nData - entry.nOffset);
    if (nData - entry.nOffset + entry.nPackedSize <= nGuess) return true;
    *ppPacked = m_readAhead.Get(m_pStorage.get(), nData, static_cast<size_t>(entry.nPackedSize));
    return *ppPacked || Fail(entry.sName, m_pStorage->Error());
}

// Large plain data goes from the file into the caller's buffer, and is summed while in the cache.
bool ZRFxZipArchive::FetchStored(const Item& item, ZRFxZipRawData* pRaw) {
    const ZRFxZipEntry& entry = item.entry;
    uint64_t nData = 0;
    if (!LocateData(item, &nData)) return false;
    if (!pRaw->Allocate(entry.nSize)) return Fail(entry.sName, "out of memory");
    uint32_t nCrc = 0;
    for (uint32_t nDone = 0; nDone < pRaw->Length();) {
        const uint32_t nPart = std::min(pRaw->Length() - nDone, kCachedPart);
        uint8_t* pPart = pRaw->Buffer() + nDone;
        if (!ReadPlace(item, nData + nDone, pPart, nPart)) return false;
        nCrc = ZRFxCodec::Crc32(nCrc, pPart, nPart);
        nDone += nPart;
    }
    return nCrc == entry.nCrc || Fail(entry.sName, "damaged data, the checksum differs");
}

bool ZRFxZipArchive::LocateData(const Item& item, uint64_t* pOffset) {
    const ZRFxZipEntry& entry = item.entry;
    std::string sHeader(ZRFxZipDirectory::kLocalHeaderSize + entry.sName.size(), '\0');
    if (!ReadPlace(item, entry.nOffset, sHeader.data(), sHeader.size())) return false;
    const uint8_t* pHeader = reinterpret_cast<const uint8_t*>(sHeader.data());
    return ZRFxZipDirectory::DataOffset(entry, pHeader, pOffset) ||
           Fail(entry.sName, "damaged local header");
}

bool ZRFxZipArchive::Unpack(const ZRFxZipEntry& entry, const uint8_t* pPacked,
                            ZRFxZipRawData* pRaw) {
    if (!pRaw->Allocate(entry.nSize)) return Fail(entry.sName, "out of memory");
    size_t nPacked = static_cast<size_t>(entry.nPackedSize);
    if (entry.eEncryption == ZRFxZipEntry::Encryption::kAes) {
        nPacked -= ZRFxCipher::Overhead(entry.eStrength);
        ZRFxZipRawData& target = entry.nMethod == kZipStored ? *pRaw : m_plain;
        if (target.Length() < nPacked && !target.Allocate(nPacked)) {
            return Fail(entry.sName, "out of memory");
        }
        if (!Decrypt(entry, pPacked, target.Buffer())) return false;
        pPacked = target.Buffer();
    } else if (entry.nMethod == kZipStored && pRaw->Length() > 0) {
        std::memcpy(pRaw->Buffer(), pPacked, pRaw->Length());
    }
    if (entry.nMethod == kZipDeflated &&
        !m_codec.Inflate(pPacked, nPacked, pRaw->Buffer(), pRaw->Length())) {
        return Fail(entry.sName, "damaged data");
    }
    return CheckCrc(entry, *pRaw);
}

bool ZRFxZipArchive::Decrypt(const ZRFxZipEntry& entry, const uint8_t* pPacked, uint8_t* pData) {
    switch (
        m_cipher.Decrypt(entry.eStrength, pPacked, static_cast<size_t>(entry.nPackedSize), pData)) {
        case ZRFxCipher::Result::kDone:
            return true;
        case ZRFxCipher::Result::kWrongPassword:
            return Fail(entry.sName, "wrong password");
        case ZRFxCipher::Result::kDamaged:
            return Fail(entry.sName, "damaged data, or wrong password");
        case ZRFxCipher::Result::kFailed:
            break;
    }
    return Fail(entry.sName, "cannot decrypt");
}

bool ZRFxZipArchive::CheckCrc(const ZRFxZipEntry& entry, const ZRFxZipRawData& raw) {
    return !entry.bHasCrc || ZRFxCodec::Crc32(0, raw.Buffer(), raw.Length()) == entry.nCrc ||
           Fail(entry.sName, "damaged data, the checksum differs");
}

bool ZRFxZipArchive::ReadForeign(const Item& item, ZRFxZipRawData* pRaw) {
    const ZRFxZipEntry& entry = item.entry;
    if (entry.eEncryption == ZRFxZipEntry::Encryption::kAes) return ReadForeignAes(item, pRaw);
    if (!m_library.IsOpen() && !m_library.Open(m_pStorage.get())) {
        return Fail(entry.sName, m_library.Error());
    }
    return m_library.Read(item.nIndex, entry.nSize, true, m_cipher.Password(), pRaw) ||
           Fail(entry.sName, m_library.Error());
}

// The library takes the missing CRC of authenticated entries for a damage, so it gets the decrypted
// data as an archive of this one entry.
bool ZRFxZipArchive::ReadForeignAes(const Item& item, ZRFxZipRawData* pRaw) {
    const ZRFxZipEntry& entry = item.entry;
    const uint8_t* pPacked = nullptr;
    if (!CheckAes(entry) || !FetchPacked(item, &pPacked)) return false;
    ZRFxZipRawData plain;
    ZRFxZipEntry single;
    single.sName = "entry";
    single.nMethod = entry.nMethod;
    single.nSize = entry.nSize;
    single.nPackedSize = entry.nPackedSize - ZRFxCipher::Overhead(entry.eStrength);
    if (!plain.Allocate(single.nPackedSize)) return Fail(entry.sName, "out of memory");
    if (!Decrypt(entry, pPacked, plain.Buffer())) return false;

    const std::string sHeader = ZRFxZipDirectory::LocalHeader(single, 0);
    const std::string sRecord = ZRFxZipDirectory::CentralRecord(single, 0);
    const uint64_t nDirectory = sHeader.size() + plain.Length();
    const std::string sEnd = sRecord + ZRFxZipDirectory::End(1, nDirectory, sRecord.size(), {});
    ZRFxZipMemFile file;
    if (!file.Append(sHeader.data(), sHeader.size()) ||
        !file.Append(plain.Buffer(), plain.Length()) || !file.Append(sEnd.data(), sEnd.size())) {
        return Fail(entry.sName, "out of memory");
    }
    ZRFxMemStorage storage(&file, false);
    ZRFxZipLibrary library;
    return (library.Open(&storage) && library.Read(0, entry.nSize, false, {}, pRaw)) ||
           Fail(entry.sName, library.Error());
}

bool ZRFxZipArchive::CommitChanges() {
    Compact();
    if (!m_bWriting && !BeginAt(m_nFirstRemoved)) return false;
    const uint64_t nWritten = m_pStorage->Position();
    Layout layout;
    const bool bWritten = Guarded({}, [&] {
        layout = Plan();
        return std::all_of(layout.apWritten.begin(), layout.apWritten.end(),
                           [&](Item* pItem) { return WriteItem(pItem, &layout); }) &&
               WriteDirectory(&layout);
    });
    const ZRFxCommitResult eResult = bWritten ? m_pStorage->EndCommit() : ZRFxCommitResult::kFailed;
    if (bWritten && eResult != ZRFxCommitResult::kDone) FailStorage();
    if (eResult == ZRFxCommitResult::kFailed) {
        // What was written ahead is nowhere else, so the commit stays under way.
        m_bWriting ? m_pStorage->Rewind(nWritten) : m_pStorage->RollBack();
        return false;
    }
    Apply(&layout);
    return eResult == ZRFxCommitResult::kDone && (!m_bChanged || CommitChanges());
}

ZRFxZipArchive::Layout ZRFxZipArchive::Plan() {
    Layout layout;
    std::vector<Item*> apAhead;
    std::array<std::vector<Item*>, 3> aapByOrder;
    for (const ItemPtr& pItem : m_apItems) {
        const bool bKept =
            pItem->ePlace == Item::Place::kCommitted && pItem->entry.nOffset < m_nWritingFrom;
        std::vector<Item*>& apPlace = bKept ? layout.apKept
                                      : pItem->ePlace == Item::Place::kWritten
                                          ? apAhead
                                          : aapByOrder[WriteOrderOf(pItem->entry.sName)];
        apPlace.push_back(pItem.get());
    }
    layout.apKept.insert(layout.apKept.end(), apAhead.begin(), apAhead.end());
    for (const auto& apItems : aapByOrder) {
        layout.apWritten.insert(layout.apWritten.end(), apItems.begin(), apItems.end());
    }
    layout.anOffsets.reserve(layout.apWritten.size());
    layout.asRecords.reserve(layout.apWritten.size());
    return layout;
}

bool ZRFxZipArchive::WriteItem(Item* pItem, Layout* pLayout) {
    const uint64_t nOffset = m_pStorage->Position();
    pLayout->anOffsets.push_back(nOffset);
    if (pItem->ePlace == Item::Place::kCommitted) {
        pLayout->asRecords.push_back(ZRFxZipDirectory::MovedRecord(pItem->entry, nOffset));
        return CopyCommitted(*pItem);
    }
    pItem->entry.nOffset = nOffset;
    pLayout->asRecords.push_back(ZRFxZipDirectory::CentralRecord(pItem->entry, pItem->nTime));
    return WritePacked(*pItem, pItem->packed.Buffer());
}

// Local header, data and descriptor as they are.
bool ZRFxZipArchive::CopyCommitted(const Item& item) {
    const ZRFxZipEntry& entry = item.entry;
    uint64_t nData = 0;
    if (!LocateData(item, &nData)) return false;
    const uint64_t nDataEnd = nData + entry.nPackedSize;
    const uint64_t nEnd = nDataEnd + DescriptorSize(entry, nDataEnd);
    if (nEnd > m_nDirectoryOffset) return Fail(entry.sName, "the entry reaches too far");
    if (m_scratch.Length() < kCopySize && !m_scratch.Allocate(kCopySize)) {
        return Fail(entry.sName, "out of memory");
    }
    for (uint64_t nAt = entry.nOffset; nAt < nEnd;) {
        const size_t nPart = static_cast<size_t>(std::min<uint64_t>(nEnd - nAt, kCopySize));
        if (!m_pStorage->Read(nAt, m_scratch.Buffer(), nPart) ||
            !m_pStorage->Write(m_scratch.Buffer(), nPart)) {
            return Fail(entry.sName, m_pStorage->Error());
        }
        nAt += nPart;
    }
    return true;
}

// The length of the descriptor that may stand behind the data from nEnd on.
uint64_t ZRFxZipArchive::DescriptorSize(const ZRFxZipEntry& entry, uint64_t nEnd) {
    std::string sBytes(static_cast<size_t>(std::min<uint64_t>(ZRFxZipDirectory::kMaxDescriptorSize,
                                                              m_pStorage->Size() - nEnd)),
                       '\0');
    if (!m_pStorage->Read(nEnd, sBytes.data(), sBytes.size())) return 0;
    return ZRFxZipDirectory::DescriptorSize(entry, sBytes);
}

bool ZRFxZipArchive::WriteDirectory(Layout* pLayout) {
    const uint64_t nStart = m_pStorage->Position();
    const auto write = [&](const std::string& s) { return m_pStorage->Write(s.data(), s.size()); };
    bool bWritten = true;
    for (const Item* pItem : pLayout->apKept) bWritten = bWritten && write(pItem->entry.sRecord);
    for (const std::string& sRecord : pLayout->asRecords) bWritten = bWritten && write(sRecord);
    bWritten = bWritten &&
               write(ZRFxZipDirectory::End(pLayout->apKept.size() + pLayout->apWritten.size(),
                                           nStart, m_pStorage->Position() - nStart, m_sComment));
    pLayout->nDirectoryOffset = nStart;
    return bWritten || FailStorage();
}

// Makes the written layout the state of the archive; allocates nothing, so that it cannot fail.
void ZRFxZipArchive::Apply(Layout* pLayout) {
    for (size_t i = 0; i < pLayout->apWritten.size(); ++i) {
        Item* pItem = pLayout->apWritten[i];
        pItem->entry.nOffset = pLayout->anOffsets[i];
        pItem->entry.sRecord = std::move(pLayout->asRecords[i]);
        pItem->packed.Clear();
    }
    for (ItemPtr& pItem : m_apItems) pItem.release()->ePlace = Item::Place::kCommitted;
    m_apItems.clear();
    for (Item* pItem : pLayout->apKept) m_apItems.emplace_back(pItem);
    for (Item* pItem : pLayout->apWritten) m_apItems.emplace_back(pItem);
    for (size_t i = 0; i < m_apItems.size(); ++i) m_apItems[i]->nIndex = m_apItems[i]->nSlot = i;
    m_library.Close();
    m_readAhead.Clear();
    m_nPendingBytes = 0;
    m_bReplacesAll = false;
    m_nDirectoryOffset = pLayout->nDirectoryOffset;
    // A gap that was left by an entry removed too late is closed by one more commit.
    m_nFirstRemoved = std::min(m_bWriting ? m_nFirstRemoved : kNone, m_nDirectoryOffset);
    m_bChanged = m_nFirstRemoved < m_nDirectoryOffset;
    m_bWriting = false;
}

uint64_t ZRFxZipArchive::Uncommitted() const {
    return m_nPendingBytes + (m_bWriting ? m_pStorage->Position() - m_nWritingFrom : 0);
}

uint64_t ZRFxZipArchive::Threshold() const {
    const uint64_t nDirectory =
        m_pStorage->Size() - std::min(m_pStorage->Size(), m_nDirectoryOffset);
    return std::max(m_nThreshold, kDirectoryShare * nDirectory);
}

}  // namespace unstruct
