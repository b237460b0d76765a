#include "container/ZRFxEntryPacker.h"

#include <algorithm>
#include <cstring>

#include "nvf/Progress.h"

namespace unstruct {
namespace {

// Below this length, a checksum beside encrypted data would tell too much of it. Other programs
// draw the line here too, and some take no encrypted data of more without a checksum.
constexpr uint64_t kSmallestWithCrc = 20;
// Large stored entries begin this far after a multiple of that number: the system copies twice as
// fast between places of equal alignment.
constexpr uint64_t kAlignment = 64;
constexpr uint64_t kArrayStart = 16;
// Of data that is written before its header, so much is held back with it: a file that ends with
// an archive that is stored in an entry would pass for that archive.
constexpr size_t kHeldBack = 16;
constexpr size_t kSeenPart = size_t{4} << 20;

}  // namespace

uint64_t ZRFxEntryPacker::MaxLength() const {
    const uint64_t nRoom = ZRFxCipher::kPrefixSize + ZRFxCipher::kSuffixSize;
    return ZRFxZipRawData::kMaxLength - (m_pCipher->HasPassword() ? nRoom : 0);
}

bool ZRFxEntryPacker::Pack(const void* pData, size_t nSize, int nLevel, ZRFxZipEntry* pEntry,
                           const uint8_t** ppPacked) {
    const uint8_t* pBytes = static_cast<const uint8_t*>(pData);
    return PackBy(PlanOf(pBytes, nSize, nLevel), pBytes, nSize, pEntry, ppPacked);
}

ZRFxPackingPlan ZRFxEntryPacker::PlanOf(const uint8_t* pData, size_t nSize, int nLevel) {
    const int nUsed = nLevel < 0 ? ZRFxCodec::kDefaultLevel : std::min(nLevel, 9);
    if (nUsed == 0 || nSize == 0) return {{false, 0}, nSize};
    return ZRFxPackingPlan::Of(m_pCodec, pData, nSize, nUsed);
}

// Into the scratch buffer, or from the caller's own.
bool ZRFxEntryPacker::PackBy(const ZRFxPackingPlan& plan, const uint8_t* pData, size_t nSize,
                             ZRFxZipEntry* pEntry, const uint8_t** ppPacked) {
    m_sPieceNote.clear();
    if (nSize == 0) return true;
    const bool bEncrypt = m_pCipher->HasPassword();
    const size_t nPrefix = bEncrypt ? ZRFxCipher::kPrefixSize : 0;
    const size_t nSuffix = bEncrypt ? ZRFxCipher::kSuffixSize : 0;
    const size_t nRoom = nPrefix + nSize + nSuffix;
    const bool bScratch = plan.way.nLevel > 0 || bEncrypt;
    if (bScratch && m_scratch.Length() < nRoom && !m_scratch.Allocate(nRoom)) {
        return Fail(ZRFxCause::OutOfMemory());
    }
    uint8_t* pPacked = bScratch ? m_scratch.Buffer() + nPrefix : nullptr;
    size_t nPacked = 0;
    pEntry->nSize = nSize;
    if (plan.way.nLevel > 0 && !Deflate(plan, pData, nSize, pPacked, pEntry, &nPacked)) {
        return false;
    }
    pEntry->nMethod = nPacked > 0 ? kZipDeflated : kZipStored;
    if (nPacked == 0) {
        pEntry->nCrc = bEncrypt ? ZRFxCodec::CopyWithCrc(pData, nSize, pPacked)
                                : ZRFxCodec::Crc32(0, pData, nSize);
    }
    pEntry->nPackedSize = nPrefix + (nPacked > 0 ? nPacked : nSize) + nSuffix;
    *ppPacked = nPacked == 0 && !bEncrypt ? pData : m_scratch.Buffer();
    return !bEncrypt || Encrypt(pEntry);
}

bool ZRFxEntryPacker::PackAndWrite(const void* pData, size_t nSize, int nLevel, std::time_t nTime,
                                   ZRFxZipStorage* pStorage, ZRFxZipEntry* pEntry) {
    const uint8_t* pBytes = static_cast<const uint8_t*>(pData);
    ZRFxPackingPlan plan = PlanOf(pBytes, nSize, nLevel);
    pEntry->nOffset = pStorage->Position();
    const bool bInPieces = plan.way.nLevel > 0 && plan.PieceCount(nSize) > 1;
    if (bInPieces && !m_pCipher->HasPassword() && pStorage->StartAside()) {
        pEntry->nSize = nSize;
        if (!WriteInPieces(plan, pBytes, nTime, pStorage, pEntry)) return false;
        if (pEntry->nPackedSize > 0) return true;
        plan = {{false, 0}, nSize};
    }
    const uint8_t* pPacked = nullptr;
    if (!PackBy(plan, pBytes, nSize, pEntry, &pPacked)) return false;
    pEntry->sRecord = Record(*pEntry, nTime);
    return Write(*pEntry, nTime, pPacked, pStorage);
}

bool ZRFxEntryPacker::Write(const ZRFxZipEntry& entry, std::time_t nTime, const uint8_t* pPacked,
                            ZRFxZipStorage* pStorage) {
    ZRFxRewind rewind(pStorage);
    std::string sHeader = ZRFxZipDirectory::LocalHeader(entry, nTime);
    if (entry.nMethod == kZipStored && entry.nPackedSize > kSmallEntry) {
        const uint64_t nStart = pStorage->Position() + sHeader.size();
        ZRFxZipDirectory::Pad(&sHeader, (kArrayStart - nStart) % kAlignment);
    }
    return (pStorage->Write(sHeader.data(), sHeader.size()) || Fail(pStorage->Error())) &&
           WriteData(entry, pPacked, pStorage) && rewind.Keep();
}

// Large stored data goes in parts where the program wants to see how far it is.
bool ZRFxEntryPacker::WriteData(const ZRFxZipEntry& entry, const uint8_t* pPacked,
                                ZRFxZipStorage* pStorage) {
    const size_t nSize = static_cast<size_t>(entry.nPackedSize);
    const size_t nMost = nvf::Progress::current() ? kSeenPart : nSize;
    for (size_t nDone = 0; nDone < nSize;) {
        const size_t nPart = std::min(nSize - nDone, nMost);
        if (!pStorage->Write(pPacked + nDone, nPart)) return Fail(pStorage->Error());
        nDone += nPart;
        const bool bGoesOn = entry.nMethod != kZipStored || nvf::Progress::advance(nPart);
        if (!bGoesOn) return Fail(ZRFxCause::Stopped());
    }
    return true;
}

// *pPackedSize becomes 0 when nothing is gained.
bool ZRFxEntryPacker::Deflate(const ZRFxPackingPlan& plan, const uint8_t* pData, size_t nSize,
                              uint8_t* pPacked, ZRFxZipEntry* pEntry, size_t* pPackedSize) {
    if (plan.PieceCount(nSize) > 1) {
        const auto put = [&](uint64_t nOffset, const uint8_t* pPiece, size_t nPiece, bool,
                             ZRFxCause*) {
            std::memcpy(pPacked + nOffset, pPiece, nPiece);
            return true;
        };
        return DeflateInPieces(plan, pData, nSize, put, pEntry, pPackedSize);
    }
    pEntry->nCrc = ZRFxCodec::Crc32(0, pData, nSize);
    if (!m_pCodec->DeflatePiece(plan.way, pData, nSize, true, pPacked, nSize - 1, pPackedSize)) {
        return Fail(ZRFxCause::OutOfMemory());
    }
    return nvf::Progress::advance(nSize) || Fail(ZRFxCause::Stopped());
}

bool ZRFxEntryPacker::DeflateInPieces(const ZRFxPackingPlan& plan, const uint8_t* pData,
                                      size_t nSize, const ZRFxPieceWork::Put& put,
                                      ZRFxZipEntry* pEntry, size_t* pPackedSize) {
    ZRFxPieceList pieces;
    pieces.bHasCrcs = !m_pCipher->HasPassword();
    const auto eResult = m_pPieceWork->Pack(plan, pData, nSize, put, &pieces);
    if (eResult == ZRFxPieceWork::Packed::kFailed) return Fail(m_pPieceWork->Error());
    *pPackedSize = 0;
    if (eResult == ZRFxPieceWork::Packed::kNoGain) return true;
    *pPackedSize = static_cast<size_t>(pieces.PackedSize());
    pEntry->nCrc = pieces.nCrc;
    m_sPieceNote = pieces.Note();
    return true;
}

// Each piece goes to the storage as soon as those before it have their length; the header, which
// needs the length of all, goes before them at the end. The packed size is 0 when nothing is
// gained.
bool ZRFxEntryPacker::WriteInPieces(const ZRFxPackingPlan& plan, const uint8_t* pData,
                                    std::time_t nTime, ZRFxZipStorage* pStorage,
                                    ZRFxZipEntry* pEntry) {
    ZRFxRewind rewind(pStorage);
    pEntry->nMethod = kZipDeflated;
    pEntry->nPackedSize = 0;
    const uint64_t nData = pEntry->nOffset + ZRFxZipDirectory::LocalHeader(*pEntry, nTime).size();
    std::string sTail;
    const auto put = [&](uint64_t nOffset, const uint8_t* pPiece, size_t nPiece, bool bLast,
                         ZRFxCause* pCause) {
        const size_t nTail = bLast ? std::min(nPiece, kHeldBack) : 0;
        // One thread has the last piece; the others must leave the text alone.
        if (bLast) sTail.assign(pPiece + nPiece - nTail, pPiece + nPiece);
        if (pStorage->WriteAside(nData + nOffset, pPiece, nPiece - nTail)) return true;
        *pCause = ZRFxCause::System("cannot write");
        return false;
    };
    size_t nPacked = 0;
    if (!DeflateInPieces(plan, pData, static_cast<size_t>(pEntry->nSize), put, pEntry, &nPacked)) {
        return false;
    }
    if (nPacked == 0) return true;
    pEntry->nPackedSize = nPacked;
    pEntry->sRecord = Record(*pEntry, nTime);
    return (pStorage->EndAside(ZRFxZipDirectory::LocalHeader(*pEntry, nTime),
                               nPacked - sTail.size(), sTail) &&
            rewind.Keep()) ||
           Fail(pStorage->Error());
}

// In the scratch buffer, where room was left around the data.
bool ZRFxEntryPacker::Encrypt(ZRFxZipEntry* pEntry) {
    pEntry->eEncryption = ZRFxZipEntry::Encryption::kAes;
    pEntry->eStrength = ZRFxCipher::Strength::k256;
    pEntry->bHasCrc = pEntry->nSize >= kSmallestWithCrc;
    const size_t nRoom = ZRFxCipher::kPrefixSize + ZRFxCipher::kSuffixSize;
    return m_pCipher->Encrypt(m_scratch.Buffer(),
                              static_cast<size_t>(pEntry->nPackedSize) - nRoom) ||
           Fail({"cannot encrypt", nvf::Reason::SYSTEM_ERROR});
}

}  // namespace unstruct
