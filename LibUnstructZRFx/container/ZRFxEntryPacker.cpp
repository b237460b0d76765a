#include "container/ZRFxEntryPacker.h"

#include <algorithm>

namespace unstruct {
namespace {

// Below this length, a checksum beside encrypted data would tell too much of it. Other programs
// draw the line here too, and some take no encrypted data of more without a checksum.
constexpr uint64_t kSmallestWithCrc = 20;
// Large stored entries begin this far after a multiple of that number: the system copies twice as
// fast between places of equal alignment.
constexpr uint64_t kAlignment = 64;
constexpr uint64_t kArrayStart = 16;

}  // namespace

uint64_t ZRFxEntryPacker::MaxLength() const {
    const uint64_t nRoom = ZRFxCipher::kPrefixSize + ZRFxCipher::kSuffixSize;
    return ZRFxZipRawData::kMaxLength - (m_pCipher->HasPassword() ? nRoom : 0);
}

// Into the scratch buffer, or from the caller's own.
bool ZRFxEntryPacker::Pack(const void* pData, size_t nSize, int nLevel, ZRFxZipEntry* pEntry,
                           const uint8_t** ppPacked) {
    const bool bEncrypt = m_pCipher->HasPassword();
    const size_t nPrefix = bEncrypt ? ZRFxCipher::kPrefixSize : 0;
    const size_t nSuffix = bEncrypt ? ZRFxCipher::kSuffixSize : 0;
    const int nUsed = nLevel < 0 ? ZRFxCodec::kDefaultLevel : std::min(nLevel, 9);
    const size_t nRoom = nPrefix + nSize + nSuffix;
    const bool bScratch = nUsed > 0 || bEncrypt;
    if (bScratch && m_scratch.Length() < nRoom && !m_scratch.Allocate(nRoom)) {
        return Fail(ZRFxCause::OutOfMemory());
    }
    uint8_t* pPacked = bScratch ? m_scratch.Buffer() + nPrefix : nullptr;
    size_t nPacked = 0;
    if (nUsed > 0 && !m_pCodec->Deflate(nUsed, pData, nSize, pPacked, nSize - 1, &nPacked)) {
        return Fail(ZRFxCause::OutOfMemory());
    }
    pEntry->nSize = nSize;
    pEntry->nMethod = nPacked > 0 ? kZipDeflated : kZipStored;
    pEntry->nCrc = nPacked == 0 && bEncrypt ? ZRFxCodec::CopyWithCrc(pData, nSize, pPacked)
                                            : ZRFxCodec::Crc32(0, pData, nSize);
    pEntry->nPackedSize = nPrefix + (nPacked > 0 ? nPacked : nSize) + nSuffix;
    const bool bAsItIs = nPacked == 0 && !bEncrypt;
    *ppPacked = bAsItIs ? static_cast<const uint8_t*>(pData) : m_scratch.Buffer();
    return !bEncrypt || Encrypt(pEntry);
}

bool ZRFxEntryPacker::Write(const ZRFxZipEntry& entry, std::time_t nTime, const uint8_t* pPacked,
                            ZRFxZipStorage* pStorage) {
    ZRFxRewind rewind(pStorage);
    std::string sHeader = ZRFxZipDirectory::LocalHeader(entry, nTime);
    if (entry.nMethod == kZipStored && entry.nPackedSize > kSmallEntry) {
        const uint64_t nStart = pStorage->Position() + sHeader.size();
        ZRFxZipDirectory::Pad(&sHeader, (kArrayStart - nStart) % kAlignment);
    }
    return (pStorage->Write(sHeader.data(), sHeader.size()) &&
            pStorage->Write(pPacked, static_cast<size_t>(entry.nPackedSize)) && rewind.Keep()) ||
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
