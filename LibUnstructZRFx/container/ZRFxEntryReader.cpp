#include "container/ZRFxEntryReader.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "container/ZRFxEntryPacker.h"
#include "container/ZRFxZipMemFile.h"
#include "nvf/Progress.h"

namespace unstruct {
namespace {

// Entries up to this length are fetched together with their local header.
constexpr uint64_t kSmallEntry = ZRFxEntryPacker::kSmallEntry;
constexpr uint32_t kCachedPart = 256 * 1024;
constexpr size_t kUsualExtra = 48;

}  // namespace

void ZRFxEntryReader::Open(ZRFxZipStorage* pStorage, uint64_t nArchiveEnd) {
    m_library.Close();
    if (pStorage != m_pStorage) m_readAhead.Clear();
    m_pStorage = pStorage;
    m_nArchiveEnd = nArchiveEnd;
}

void ZRFxEntryReader::Close() {
    Open(nullptr, 0);
    m_packed.Clear();
    m_plain.Clear();
}

bool ZRFxEntryReader::Read(const ZRFxArchiveItem& item, ZRFxZipRawData* pRaw) {
    const ZRFxZipEntry& entry = item.entry;
    if (entry.nSize > ZRFxZipRawData::kMaxLength) return Fail(ZRFxCause::TooLarge());
    if (entry.eEncryption == ZRFxZipEntry::Encryption::kUnreadable) {
        return Fail("the encryption is not supported");
    }
    if (entry.eEncryption == ZRFxZipEntry::Encryption::kOther ||
        (entry.nMethod != kZipStored && entry.nMethod != kZipDeflated)) {
        return ReadForeign(item, pRaw);
    }
    if (!CheckDeclared(entry)) return false;
    if (item.ePlace == ZRFxArchiveItem::Place::kPending) {
        return Unpack(entry, item.packed.Buffer(), pRaw);
    }
    const bool bPlain =
        entry.nMethod == kZipStored && entry.eEncryption == ZRFxZipEntry::Encryption::kNone;
    if (bPlain && entry.nSize > kSmallEntry) return FetchStored(entry, pRaw);
    if (ReadInPieces(entry, pRaw)) return true;
    if (nvf::Progress::isStopped()) return Fail(ZRFxCause::Stopped());
    const uint8_t* pPacked = nullptr;
    return FetchPacked(entry, &pPacked) && Unpack(entry, pPacked, pRaw);
}

bool ZRFxEntryReader::ReadPart(const ZRFxArchiveItem& item, uint64_t nFrom, void* pData,
                               size_t nSize) {
    const ZRFxZipEntry& entry = item.entry;
    if (nFrom > entry.nSize || nSize > entry.nSize - nFrom) return Fail("the entry ends too early");
    const bool bInFile = item.ePlace == ZRFxArchiveItem::Place::kInFile;
    if (bInFile && entry.nMethod == kZipStored &&
        entry.eEncryption == ZRFxZipEntry::Encryption::kNone) {
        uint64_t nStart = 0;
        return CheckDeclared(entry) && LocateData(entry, &nStart) &&
               (m_pStorage->Read(nStart + nFrom, pData, nSize) || Fail(m_pStorage->Error()));
    }
    ZRFxPieceList pieces;
    if (bInFile && LoadPieces(entry, &pieces) && pieces.bHasCrcs &&
        UnpackPieces(entry, pieces, nFrom, static_cast<uint8_t*>(pData), nSize)) {
        return true;
    }
    if (nvf::Progress::isStopped()) return Fail(ZRFxCause::Stopped());
    ZRFxZipRawData raw;
    if (!Read(item, &raw)) return false;
    if (nSize > 0) std::memcpy(pData, raw.Buffer() + nFrom, nSize);
    return true;
}

bool ZRFxEntryReader::FindEnd(const ZRFxZipEntry& entry, uint64_t nLimit, uint64_t* pEnd) {
    uint64_t nData = 0;
    if (!LocateData(entry, &nData)) return false;
    const uint64_t nDataEnd = nData + entry.nPackedSize;
    if (nDataEnd > nLimit) return Fail("the entry reaches too far");
    // A descriptor may follow the data.
    std::string sBytes(static_cast<size_t>(std::min<uint64_t>(ZRFxZipDirectory::kMaxDescriptorSize,
                                                              nLimit - nDataEnd)),
                       '\0');
    if (!m_pStorage->Read(nDataEnd, sBytes.data(), sBytes.size())) return Fail(m_pStorage->Error());
    *pEnd = nDataEnd + ZRFxZipDirectory::DescriptorSize(entry, sBytes);
    return *pEnd <= nLimit || Fail("the entry reaches too far");
}

// No memory is taken for a size that the packed bytes cannot have.
bool ZRFxEntryReader::CheckDeclared(const ZRFxZipEntry& entry) {
    uint64_t nPacked = entry.nPackedSize;
    if (entry.eEncryption == ZRFxZipEntry::Encryption::kAes) {
        if (!CheckAes(entry)) return false;
        nPacked -= ZRFxCipher::Overhead(entry.eStrength);
    }
    const bool bPossible = entry.nMethod == kZipStored
                               ? nPacked == entry.nSize
                               : ZRFxCodec::IsReachable(nPacked, entry.nSize);
    return bPossible || Fail("the declared size does not fit the packed size");
}

bool ZRFxEntryReader::CheckAes(const ZRFxZipEntry& entry) {
    if (!m_pCipher->HasPassword())
        return Fail({"the entry needs a password", nvf::Reason::PASSWORD_NEEDED});
    return entry.nPackedSize >= ZRFxCipher::Overhead(entry.eStrength) ||
           Fail("the encrypted entry is cut");
}

// Gives the packed bytes of an entry in the file; they stay until the next read.
bool ZRFxEntryReader::FetchPacked(const ZRFxZipEntry& entry, const uint8_t** ppPacked) {
    if (entry.nPackedSize <= kSmallEntry && entry.nOffset < m_pStorage->Size()) {
        return FetchSmall(entry, ppPacked);
    }
    if (m_packed.Length() < entry.nPackedSize && !m_packed.Allocate(entry.nPackedSize)) {
        throw std::bad_alloc();
    }
    uint64_t nData = 0;
    *ppPacked = m_packed.Buffer();
    return LocateData(entry, &nData) &&
           (m_pStorage->Read(nData, m_packed.Buffer(), static_cast<size_t>(entry.nPackedSize)) ||
            Fail(m_pStorage->Error()));
}

// Header and data together, and more at once where entry after entry is read.
bool ZRFxEntryReader::FetchSmall(const ZRFxZipEntry& entry, const uint8_t** ppPacked) {
    const uint64_t nHeader = ZRFxZipDirectory::kLocalHeaderSize + entry.sName.size();
    const uint64_t nGuess =
        std::min(nHeader + kUsualExtra + entry.nPackedSize, m_pStorage->Size() - entry.nOffset);
    const uint8_t* pHeader =
        m_readAhead.Get(m_pStorage, entry.nOffset, static_cast<size_t>(nGuess));
    if (!pHeader) return Fail(m_pStorage->Error());
    uint64_t nData = 0;
    if (!ZRFxZipDirectory::DataOffset(entry, pHeader, &nData)) {
        return Fail("damaged local header");
    }
    *ppPacked = pHeader + (nData - entry.nOffset);
    if (nData - entry.nOffset + entry.nPackedSize <= nGuess) return true;
    *ppPacked = m_readAhead.Get(m_pStorage, nData, static_cast<size_t>(entry.nPackedSize));
    return *ppPacked || Fail(m_pStorage->Error());
}

// Large plain data goes from the file into the caller's buffer, and is summed while in the cache.
bool ZRFxEntryReader::FetchStored(const ZRFxZipEntry& entry, ZRFxZipRawData* pRaw) {
    uint64_t nData = 0;
    if (!LocateData(entry, &nData)) return false;
    if (!pRaw->Allocate(entry.nSize)) throw std::bad_alloc();
    uint32_t nCrc = 0;
    for (uint32_t nDone = 0; nDone < pRaw->Length();) {
        const uint32_t nPart = std::min(pRaw->Length() - nDone, kCachedPart);
        uint8_t* pPart = pRaw->Buffer() + nDone;
        if (!m_pStorage->Read(nData + nDone, pPart, nPart)) return Fail(m_pStorage->Error());
        nCrc = ZRFxCodec::Crc32(nCrc, pPart, nPart);
        nDone += nPart;
        if (!nvf::Progress::advance(nPart)) return Fail(ZRFxCause::Stopped());
    }
    return nCrc == entry.nCrc || Fail("damaged data, the checksum differs");
}

// From the file into the caller's buffer, piece by piece. False, and not for good, when the entry
// has no pieces or they are not what its record says: then it is read as any other.
bool ZRFxEntryReader::ReadInPieces(const ZRFxZipEntry& entry, ZRFxZipRawData* pRaw) {
    ZRFxPieceList pieces;
    if (!LoadPieces(entry, &pieces)) return false;
    if (!pRaw->Allocate(entry.nSize)) throw std::bad_alloc();
    return UnpackPieces(entry, pieces, 0, pRaw->Buffer(), pRaw->Length());
}

bool ZRFxEntryReader::LoadPieces(const ZRFxZipEntry& entry, ZRFxPieceList* pPieces) const {
    return m_pPieceWork && entry.eEncryption == ZRFxZipEntry::Encryption::kNone &&
           pPieces->Load(entry, entry.nPackedSize);
}

bool ZRFxEntryReader::UnpackPieces(const ZRFxZipEntry& entry, const ZRFxPieceList& pieces,
                                   uint64_t nFrom, uint8_t* pData, size_t nSize) {
    uint64_t nStart = 0;
    if (!LocateData(entry, &nStart)) return false;
    const auto get = [&](uint64_t nOffset, uint8_t* pPacked, size_t nPacked) {
        return m_pStorage->ReadAside(nStart + nOffset, pPacked, nPacked);
    };
    return m_pPieceWork->Unpack(pieces, get, nFrom, pData, nSize);
}

bool ZRFxEntryReader::LocateData(const ZRFxZipEntry& entry, uint64_t* pOffset) {
    std::string sHeader(ZRFxZipDirectory::kLocalHeaderSize + entry.sName.size(), '\0');
    if (!m_pStorage->Read(entry.nOffset, sHeader.data(), sHeader.size())) {
        return Fail(m_pStorage->Error());
    }
    const uint8_t* pHeader = reinterpret_cast<const uint8_t*>(sHeader.data());
    return ZRFxZipDirectory::DataOffset(entry, pHeader, pOffset) || Fail("damaged local header");
}

bool ZRFxEntryReader::Unpack(const ZRFxZipEntry& entry, const uint8_t* pPacked,
                             ZRFxZipRawData* pRaw) {
    if (!pRaw->Allocate(entry.nSize)) throw std::bad_alloc();
    size_t nPacked = static_cast<size_t>(entry.nPackedSize);
    if (entry.eEncryption == ZRFxZipEntry::Encryption::kAes) {
        nPacked -= ZRFxCipher::Overhead(entry.eStrength);
        ZRFxZipRawData& target = entry.nMethod == kZipStored ? *pRaw : m_plain;
        if (target.Length() < nPacked && !target.Allocate(nPacked)) {
            throw std::bad_alloc();
        }
        if (!Decrypt(entry, pPacked, target.Buffer())) return false;
        pPacked = target.Buffer();
    } else if (entry.nMethod == kZipStored && pRaw->Length() > 0) {
        std::memcpy(pRaw->Buffer(), pPacked, pRaw->Length());
    }
    if (entry.nMethod == kZipDeflated && !Inflate(entry, pPacked, nPacked, pRaw)) {
        return Fail(nvf::Progress::isStopped() ? ZRFxCause::Stopped() : "damaged data");
    }
    if (entry.nMethod == kZipStored && !nvf::Progress::advance(entry.nSize)) {
        return Fail(ZRFxCause::Stopped());
    }
    return !entry.bHasCrc || ZRFxCodec::Crc32(0, pRaw->Buffer(), pRaw->Length()) == entry.nCrc ||
           Fail("damaged data, the checksum differs");
}

bool ZRFxEntryReader::Inflate(const ZRFxZipEntry& entry, const uint8_t* pPacked, size_t nPacked,
                              ZRFxZipRawData* pRaw) {
    ZRFxPieceList pieces;
    const auto get = [&](uint64_t nOffset, uint8_t* pPiece, size_t nSize) {
        std::memcpy(pPiece, pPacked + nOffset, nSize);
        return true;
    };
    // Pieces of a plain entry were tried before.
    const bool bTry = m_pPieceWork && entry.eEncryption == ZRFxZipEntry::Encryption::kAes;
    if (bTry && pieces.Load(entry, nPacked)) {
        if (m_pPieceWork->Unpack(pieces, get, 0, pRaw->Buffer(), pRaw->Length())) return true;
        if (nvf::Progress::isStopped()) return false;
    }
    return m_pCodec->Inflate(pPacked, nPacked, pRaw->Buffer(), pRaw->Length()) &&
           nvf::Progress::advance(pRaw->Length());
}

bool ZRFxEntryReader::Decrypt(const ZRFxZipEntry& entry, const uint8_t* pPacked, uint8_t* pData) {
    const ZRFxCipher::Result eResult =
        m_pCipher->Decrypt(entry.eStrength, pPacked, static_cast<size_t>(entry.nPackedSize), pData);
    return eResult == ZRFxCipher::Result::kDone || Fail(ZRFxCipher::CauseOf(eResult));
}

bool ZRFxEntryReader::ReadForeign(const ZRFxArchiveItem& item, ZRFxZipRawData* pRaw) {
    const ZRFxZipEntry& entry = item.entry;
    if (entry.eEncryption == ZRFxZipEntry::Encryption::kAes) return ReadForeignAes(entry, pRaw);
    if (!m_library.IsOpen() && !m_library.Open(m_pStorage, m_nArchiveEnd)) {
        return Fail(m_library.Error());
    }
    return m_library.Read(item.nIndex, entry.nSize, true, m_pCipher->Password(), pRaw) ||
           Fail(m_library.Error());
}

// The library takes the missing CRC of authenticated entries for damage, so it is given the
// decrypted data as an archive of this one entry.
bool ZRFxEntryReader::ReadForeignAes(const ZRFxZipEntry& entry, ZRFxZipRawData* pRaw) {
    const uint8_t* pPacked = nullptr;
    if (!CheckAes(entry) || !FetchPacked(entry, &pPacked)) return false;
    ZRFxZipRawData plain;
    ZRFxZipEntry single;
    single.sName = "entry";
    single.nMethod = entry.nMethod;
    single.nSize = entry.nSize;
    single.nPackedSize = entry.nPackedSize - ZRFxCipher::Overhead(entry.eStrength);
    if (!plain.Allocate(single.nPackedSize)) throw std::bad_alloc();
    if (!Decrypt(entry, pPacked, plain.Buffer())) return false;

    const std::string sHeader = ZRFxZipDirectory::LocalHeader(single, 0);
    const std::string sRecord = ZRFxZipDirectory::CentralRecord(single, 0);
    const uint64_t nDirectory = sHeader.size() + plain.Length();
    const std::string sEnd = sRecord + ZRFxZipDirectory::End(1, nDirectory, sRecord.size(), {});
    ZRFxZipMemFile file;
    if (!file.Append(sHeader.data(), sHeader.size()) ||
        !file.Append(plain.Buffer(), plain.Length()) || !file.Append(sEnd.data(), sEnd.size())) {
        throw std::bad_alloc();
    }
    ZRFxMemStorage storage(&file, false);
    ZRFxZipLibrary library;
    return (library.Open(&storage, storage.Size()) &&
            library.Read(0, entry.nSize, false, {}, pRaw)) ||
           Fail(library.Error());
}

}  // namespace unstruct
