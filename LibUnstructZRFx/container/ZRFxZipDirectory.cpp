#include "container/ZRFxZipDirectory.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "ZRByteOrder.h"
#include "container/ZRFxCodec.h"
#include "container/ZRFxHeaderFields.h"

namespace unstruct {
namespace {

constexpr uint32_t kDescriptorSignature = 0x08074B50;
constexpr uint32_t kLocator64Signature = 0x07064B50;
constexpr size_t kEnd64Size = 56;
constexpr size_t kLocator64Size = 20;
constexpr uint16_t kExtraZip64 = 0x0001;
constexpr uint16_t kExtraAes = 0x9901;
constexpr uint16_t kExtraAlignment = 0xD935;
constexpr uint16_t kExtraPieces = 0x505A;  // "ZP"
constexpr uint16_t kMethodAes = 99;
constexpr uint16_t kFlagEncrypted = 1;
constexpr uint16_t kFlagDescriptor = 1 << 3;
constexpr uint16_t kFlagStrong = 1 << 6;
constexpr uint16_t kFlagUtf8 = 1 << 11;
constexpr uint16_t kAesVersionWithCrc = 1;
constexpr uint16_t kAesVersionWithoutCrc = 2;
constexpr uint16_t kMadeByUnix = (3 << 8) | 63;
constexpr uint32_t kRegularFile = 0100644u << 16;
constexpr uint32_t kIn64 = 0xFFFFFFFFu;

uint16_t Load16(const uint8_t* p) {
    return LoadLittleEndian<uint16_t>(p);
}
uint32_t Load32(const uint8_t* p) {
    return LoadLittleEndian<uint32_t>(p);
}
uint64_t Load64(const uint8_t* p) {
    return LoadLittleEndian<uint64_t>(p);
}
void Put16(std::string* s, uint64_t n) {
    AppendLittleEndian(s, static_cast<uint16_t>(n));
}
void Put32(std::string* s, uint64_t n) {
    AppendLittleEndian(s, static_cast<uint32_t>(n));
}
void Put64(std::string* s, uint64_t n) {
    AppendLittleEndian(s, n);
}
uint64_t Capped32(uint64_t n) {
    return std::min<uint64_t>(n, kIn64);
}

const uint8_t* Bytes(std::string_view s) {
    return reinterpret_cast<const uint8_t*>(s.data());
}

// The content of the extra field nId, null when absent; cut fields end the search.
const uint8_t* FindExtra(const uint8_t* pExtra, size_t nSize, uint16_t nId, size_t* pFieldSize) {
    while (nSize >= 4) {
        const size_t nField = Load16(pExtra + 2);
        if (nField > nSize - 4) return nullptr;
        *pFieldSize = nField;
        if (Load16(pExtra) == nId) return pExtra + 4;
        pExtra += 4 + nField;
        nSize -= 4 + nField;
    }
    return nullptr;
}

// Replaces those of the three 32-bit values that say so by the 64-bit ones, which stand in the
// field in this order and only where needed.
bool ReplaceBy64(const uint8_t* pField, size_t nField, std::initializer_list<uint64_t*> apValues) {
    for (uint64_t* pValue : apValues) {
        if (*pValue != kIn64) continue;
        if (!pField || nField < 8) return false;
        *pValue = Load64(pField);
        pField += 8;
        nField -= 8;
    }
    return true;
}

bool IsAscii(std::string_view s) {
    char nAll = 0;
    for (const char c : s) nAll |= c;  // no branches
    return (nAll & 0x80) == 0;
}

bool IsAes(const ZRFxZipEntry& entry) {
    return entry.eEncryption == ZRFxZipEntry::Encryption::kAes;
}

// The fields that local header and record share, from "version needed" to the packed sizes.
void PutCommon(ZRFxHeaderFields* pFields, const ZRFxZipEntry& entry, bool bZip64,
               std::time_t nTime) {
    pFields->Put16(IsAes(entry) ? 51 : bZip64 ? 45 : 20);
    pFields->Put16((IsAes(entry) ? kFlagEncrypted : 0) | (IsAscii(entry.sName) ? 0 : kFlagUtf8));
    pFields->Put16(IsAes(entry) ? kMethodAes : entry.nMethod);
    pFields->Put32(ZRFxDosTime(nTime));
    pFields->Put32(entry.bHasCrc ? entry.nCrc : 0);
}

// The 64-bit field with those of the values that need it; empty when none does.
std::string Extra64(std::initializer_list<uint64_t> aValues) {
    std::string sValues;
    for (uint64_t nValue : aValues) {
        if (nValue >= kIn64) Put64(&sValues, nValue);
    }
    if (sValues.empty()) return sValues;
    std::string s;
    Put16(&s, kExtraZip64);
    Put16(&s, sValues.size());
    return s + sValues;
}

// Appends the other fields as far as they are whole and an entry can hold them.
void AppendExtrasBut(uint16_t nId, const uint8_t* pExtra, size_t nSize, std::string* pExtras) {
    while (nSize >= 4) {
        const size_t nField = 4 + size_t{Load16(pExtra + 2)};
        if (nField > nSize || pExtras->size() + nField > 0xFFFF) return;
        if (Load16(pExtra) != nId) pExtras->append(reinterpret_cast<const char*>(pExtra), nField);
        pExtra += nField;
        nSize -= nField;
    }
}

void PutAesExtra(std::string* s, const ZRFxZipEntry& entry) {
    if (!IsAes(entry)) return;
    Put16(s, kExtraAes);
    Put16(s, 7);
    Put16(s, entry.bHasCrc ? kAesVersionWithCrc : kAesVersionWithoutCrc);
    s->append("AE");
    s->push_back(static_cast<char>(entry.eStrength));
    Put16(s, entry.nMethod);
}

}  // namespace

bool ZRFxZipDirectory::FindEndAt(ZRFxZipStorage* pStorage, uint64_t nEnd) {
    const uint64_t nTail = std::min<uint64_t>(nEnd, kEndSize + 0xFFFF);
    std::string sTail(static_cast<size_t>(nTail), '\0');
    if (!pStorage->Read(nEnd - nTail, sTail.data(), sTail.size())) return false;
    for (size_t i = sTail.size() < kEndSize ? 0 : sTail.size() - kEndSize + 1; i-- > 0;) {
        if (!TakeEnd(pStorage, sTail, i, nEnd)) continue;
        return m_nLength == nEnd && ReachesTo(nEnd - nTail + i);
    }
    return false;
}

bool ZRFxZipDirectory::FindLastEnd(ZRFxZipStorage* pStorage) {
    constexpr uint64_t kWindow = uint64_t{256} << 10;
    std::string sSignature;
    Put32(&sSignature, kEndSignature);
    std::string sBytes;
    for (uint64_t nTo = pStorage->Size(); nTo >= kEndSize;) {
        const uint64_t nFrom = nTo - std::min(nTo, kWindow);
        sBytes.resize(static_cast<size_t>(nTo - nFrom));
        if (!pStorage->Read(nFrom, sBytes.data(), sBytes.size())) return false;
        for (size_t i = sBytes.rfind(sSignature); i != std::string::npos;
             i = i > 0 ? sBytes.rfind(sSignature, i - 1) : std::string::npos) {
            if (FindEndRecordAt(pStorage, nFrom + i)) return true;
        }
        // A signature may lie across the border.
        nTo = nFrom > 0 ? nFrom + sSignature.size() - 1 : 0;
    }
    return false;
}

// The comment, which may be long, is read last.
bool ZRFxZipDirectory::FindEndRecordAt(ZRFxZipStorage* pStorage, uint64_t nRecord) {
    const uint64_t nLeft = pStorage->Size() - std::min(pStorage->Size(), nRecord);
    uint8_t aEnd[kEndSize];
    if (nLeft < kEndSize || !pStorage->Read(nRecord, aEnd, kEndSize)) return false;
    const size_t nComment = Load16(aEnd + 20);
    if (nComment > nLeft - kEndSize || !TakeEndRecord(pStorage, aEnd, nRecord) ||
        !ReachesTo(nRecord)) {
        return false;
    }
    sComment.resize(nComment);
    m_nLength = nRecord + kEndSize + nComment;
    return pStorage->Read(nRecord + kEndSize, sComment.data(), nComment);
}

// Takes the last end whose directory can lie before it.
bool ZRFxZipDirectory::FindEnd(ZRFxZipStorage* pStorage) {
    const uint64_t nEnd = pStorage->Size();
    const uint64_t nTail = std::min<uint64_t>(nEnd, kEndSize + 0xFFFF);
    std::string sTail(static_cast<size_t>(nTail), '\0');
    if (!pStorage->Read(nEnd - nTail, sTail.data(), sTail.size())) return Fail(pStorage->Error());
    for (size_t i = sTail.size() < kEndSize ? 0 : sTail.size() - kEndSize + 1; i-- > 0;) {
        if (TakeEnd(pStorage, sTail, i, nEnd)) return true;
    }
    return Fail({"not a ZIP archive, or its end is missing", nvf::Reason::NO_ZRFX_FILE});
}

bool ZRFxZipDirectory::Load(ZRFxZipStorage* pStorage) {
    std::string sRecords(static_cast<size_t>(m_nSize), '\0');
    if (!pStorage->Read(nOffset, sRecords.data(), sRecords.size())) return Fail(pStorage->Error());
    aEntries.reserve(static_cast<size_t>(m_nCount));
    if (!ParseRecords(std::move(sRecords), nOffset)) return false;
    // Without the 64-bit form some programs write the count modulo 65536.
    const uint64_t nFound = m_bZip64 ? aEntries.size() : aEntries.size() & 0xFFFF;
    return nFound == m_nCount || Fail("damaged directory of the archive: wrong number of entries");
}

bool ZRFxZipDirectory::AddRecords(std::string_view sRecords, uint64_t nEnd) {
    return ParseRecords(std::string(sRecords), nEnd);
}

uint64_t ZRFxZipDirectory::LocalSize(const uint8_t* pHeader, size_t nSize) {
    uint64_t nUnpacked = Load32(pHeader + 22);
    uint64_t nPacked = Load32(pHeader + 18);
    const size_t nLength = LocalHeaderLength(pHeader);
    if ((Load16(pHeader + 6) & kFlagDescriptor) != 0) return 0;
    if (nPacked != kIn64) return nLength + nPacked;
    if (nSize < nLength) return 0;
    const size_t nName = Load16(pHeader + 26);
    size_t nField = 0;
    const uint8_t* pField = FindExtra(pHeader + kLocalHeaderSize + nName,
                                      nLength - kLocalHeaderSize - nName, kExtraZip64, &nField);
    if (!ReplaceBy64(pField, nField, {&nUnpacked, &nPacked})) return 0;
    return nPacked > UINT64_MAX - nLength ? 0 : nLength + nPacked;
}

size_t ZRFxZipDirectory::LocalHeaderLength(const uint8_t* pHeader) {
    return kLocalHeaderSize + Load16(pHeader + 26) + Load16(pHeader + 28);
}

size_t ZRFxZipDirectory::LocalLengthOf(const ZRFxZipEntry& entry) {
    return kLocalHeaderSize + entry.sName.size() + Load16(Bytes(entry.sRecord) + 30);
}

size_t ZRFxZipDirectory::RecordLength(const uint8_t* pRecord) {
    return kRecordSize + Load16(pRecord + 28) + Load16(pRecord + 30) + Load16(pRecord + 32);
}

bool ZRFxZipDirectory::DataOffset(const ZRFxZipEntry& entry, const uint8_t* pHeader,
                                  uint64_t* pOffset) {
    if (Load32(pHeader) != kLocalSignature || Load16(pHeader + 26) != entry.sName.size() ||
        std::memcmp(pHeader + kLocalHeaderSize, entry.sName.data(), entry.sName.size()) != 0) {
        return false;
    }
    *pOffset = entry.nOffset + kLocalHeaderSize + entry.sName.size() + Load16(pHeader + 28);
    return true;
}

size_t ZRFxZipDirectory::DescriptorSize(const ZRFxZipEntry& entry, std::string_view sBytes) {
    if ((entry.nFlags & kFlagDescriptor) == 0 || sBytes.size() < 16) return 0;
    // Neither the signature nor the width of the sizes is certain; the packed size tells.
    const uint8_t* pBytes = reinterpret_cast<const uint8_t*>(sBytes.data());
    const size_t nSignature = Load32(pBytes) == kDescriptorSignature ? 4 : 0;
    const uint8_t* pSizes = pBytes + nSignature + 4;
    const bool bWide = sBytes.size() >= nSignature + 20 && Load64(pSizes) == entry.nPackedSize &&
                       Load64(pSizes + 8) == entry.nSize;
    return nSignature + (bWide ? 20 : 12);
}

std::string ZRFxZipDirectory::LocalHeader(const ZRFxZipEntry& entry, std::time_t nTime) {
    // Where the local header needs the 64-bit field, it must hold both sizes.
    const bool bZip64 = entry.nPackedSize >= kIn64 || entry.nSize >= kIn64;
    std::string sExtra;
    if (bZip64) {
        Put16(&sExtra, kExtraZip64);
        Put16(&sExtra, 16);
        Put64(&sExtra, entry.nSize);
        Put64(&sExtra, entry.nPackedSize);
    }
    PutAesExtra(&sExtra, entry);
    std::string s;
    ZRFxHeaderFields fields(&s, kLocalHeaderSize, entry.sName.size() + sExtra.size());
    fields.Put32(kLocalSignature);
    PutCommon(&fields, entry, bZip64, nTime);
    fields.Put32(bZip64 ? kIn64 : entry.nPackedSize);
    fields.Put32(bZip64 ? kIn64 : entry.nSize);
    fields.Put16(entry.sName.size());
    fields.Put16(sExtra.size());
    return s.append(entry.sName).append(sExtra);
}

// The extra field by which other ZIP programs align data, too: its multiple, then zeros.
void ZRFxZipDirectory::Pad(std::string* pHeader, uint64_t nBytes) {
    constexpr uint64_t kLeast = 6;
    if (nBytes == 0) return;
    if (nBytes < kLeast) nBytes += 64;
    uint8_t* pExtraSize = reinterpret_cast<uint8_t*>(pHeader->data()) + 28;
    StoreLittleEndian(pExtraSize, static_cast<uint16_t>(Load16(pExtraSize) + nBytes));
    Put16(pHeader, kExtraAlignment);
    Put16(pHeader, nBytes - 4);
    Put16(pHeader, 16);
    pHeader->append(nBytes - kLeast, '\0');
}

std::string ZRFxZipDirectory::CentralRecord(const ZRFxZipEntry& entry, std::time_t nTime,
                                            std::string_view sPieceNote) {
    std::string sExtra = Extra64({entry.nSize, entry.nPackedSize, entry.nOffset});
    const bool bZip64 = !sExtra.empty();
    PutAesExtra(&sExtra, entry);
    if (!sPieceNote.empty()) {
        Put16(&sExtra, kExtraPieces);
        Put16(&sExtra, sPieceNote.size());
        sExtra.append(sPieceNote);
    }
    std::string s;
    ZRFxHeaderFields fields(&s, kRecordSize, entry.sName.size() + sExtra.size());
    fields.Put32(kRecordSignature);
    fields.Put16(kMadeByUnix);
    PutCommon(&fields, entry, bZip64, nTime);
    fields.Put32(Capped32(entry.nPackedSize));
    fields.Put32(Capped32(entry.nSize));
    fields.Put16(entry.sName.size());
    fields.Put16(sExtra.size());
    fields.Put16(0);  // Comment
    fields.Put16(0);  // Disk
    fields.Put16(0);  // Internal attributes
    fields.Put32(kRegularFile);
    fields.Put32(Capped32(entry.nOffset));
    return s.append(entry.sName).append(sExtra);
}

std::string_view ZRFxZipDirectory::PieceNote(const ZRFxZipEntry& entry) {
    const std::string_view sRecord = entry.sRecord;
    if (sRecord.empty()) return {};
    const size_t nExtraAt = kRecordSize + Load16(Bytes(sRecord) + 28);
    size_t nField = 0;
    const uint8_t* pField =
        FindExtra(Bytes(sRecord) + nExtraAt, Load16(Bytes(sRecord) + 30), kExtraPieces, &nField);
    return pField ? std::string_view(reinterpret_cast<const char*>(pField), nField)
                  : std::string_view();
}

std::string ZRFxZipDirectory::MovedRecord(const ZRFxZipEntry& entry, uint64_t nNewOffset) {
    const std::string_view sOld = entry.sRecord;
    const uint8_t* pOld = Bytes(sOld);
    const size_t nExtraAt = kRecordSize + Load16(pOld + 28);
    const size_t nExtra = Load16(pOld + 30);
    std::string sExtra = Extra64({entry.nSize, entry.nPackedSize, nNewOffset});
    AppendExtrasBut(kExtraZip64, pOld + nExtraAt, nExtra, &sExtra);

    std::string sRecord(sOld.substr(0, nExtraAt));
    sRecord.append(sExtra).append(sOld.substr(nExtraAt + nExtra));
    uint8_t* pRecord = reinterpret_cast<uint8_t*>(sRecord.data());
    StoreLittleEndian(pRecord + 20, static_cast<uint32_t>(Capped32(entry.nPackedSize)));
    StoreLittleEndian(pRecord + 24, static_cast<uint32_t>(Capped32(entry.nSize)));
    StoreLittleEndian(pRecord + 30, static_cast<uint16_t>(sExtra.size()));
    StoreLittleEndian(pRecord + 42, static_cast<uint32_t>(Capped32(nNewOffset)));
    return sRecord;
}

std::string ZRFxZipDirectory::End(uint64_t nEntries, uint64_t nStart, uint64_t nLength,
                                  const std::string& sEndComment) {
    std::string s;
    if (nEntries >= 0xFFFF || nStart >= kIn64 || nLength >= kIn64) {
        Put32(&s, kEnd64Signature);
        Put64(&s, kEnd64Size - 12);
        Put16(&s, kMadeByUnix);
        Put16(&s, 45);
        Put64(&s, 0);  // This disk, and that of the directory
        Put64(&s, nEntries);
        Put64(&s, nEntries);
        Put64(&s, nLength);
        Put64(&s, nStart);
        Put32(&s, kLocator64Signature);
        Put32(&s, 0);
        Put64(&s, nStart + nLength);
        Put32(&s, 1);
    }
    Put32(&s, kEndSignature);
    Put32(&s, 0);  // This disk, and that of the directory
    Put16(&s, std::min<uint64_t>(nEntries, 0xFFFF));
    Put16(&s, std::min<uint64_t>(nEntries, 0xFFFF));
    Put32(&s, Capped32(nLength));
    Put32(&s, Capped32(nStart));
    Put16(&s, sEndComment.size());
    return s + sEndComment;
}

// Takes the end record at nAt of the last bytes before nEnd; false when there is none whose
// directory can lie before it.
bool ZRFxZipDirectory::TakeEnd(ZRFxZipStorage* pStorage, const std::string& sTail, size_t nAt,
                               uint64_t nEnd) {
    const uint8_t* pEnd = Bytes(sTail) + nAt;
    if (Load32(pEnd) != kEndSignature) return false;
    const size_t nComment = Load16(pEnd + 20);
    const uint64_t nRecord = nEnd - sTail.size() + nAt;
    if (nComment > sTail.size() - nAt - kEndSize || !TakeEndRecord(pStorage, pEnd, nRecord)) {
        return false;
    }
    sComment = sTail.substr(nAt + kEndSize, nComment);
    m_nLength = nRecord + kEndSize + nComment;
    return true;
}

bool ZRFxZipDirectory::TakeEndRecord(ZRFxZipStorage* pStorage, const uint8_t* pEnd,
                                     uint64_t nRecord) {
    if (Load32(pEnd) != kEndSignature) return false;
    m_nCount = Load16(pEnd + 10);
    m_nSize = Load32(pEnd + 12);
    nOffset = Load32(pEnd + 16);
    m_bZip64 = false;
    if (nRecord >= kLocator64Size && !ReadEnd64(pStorage, nRecord - kLocator64Size)) return false;
    return nOffset <= nRecord && m_nSize <= nRecord - nOffset && m_nCount <= m_nSize / kRecordSize;
}

// Whether nothing lies between the directory and its end.
bool ZRFxZipDirectory::ReachesTo(uint64_t nRecord) const {
    return nOffset + m_nSize + (m_bZip64 ? kEnd64Size + kLocator64Size : 0) == nRecord;
}

// Does nothing where there is no locator; false when it leads nowhere.
bool ZRFxZipDirectory::ReadEnd64(ZRFxZipStorage* pStorage, uint64_t nLocator) {
    uint8_t aLocator[kLocator64Size];
    if (!pStorage->Read(nLocator, aLocator, sizeof(aLocator))) return false;
    if (Load32(aLocator) != kLocator64Signature) return true;
    const uint64_t nEnd64 = Load64(aLocator + 8);
    uint8_t aEnd[kEnd64Size];
    if (nLocator < kEnd64Size || nEnd64 > nLocator - kEnd64Size ||
        !pStorage->Read(nEnd64, aEnd, sizeof(aEnd)) || Load32(aEnd) != kEnd64Signature) {
        return false;
    }
    m_nCount = Load64(aEnd + 32);
    m_nSize = Load64(aEnd + 40);
    nOffset = Load64(aEnd + 48);
    m_bZip64 = true;
    return nOffset <= nEnd64 && m_nSize <= nEnd64 - nOffset;
}

bool ZRFxZipDirectory::ParseRecords(std::string sRecords, uint64_t nEnd) {
    const auto pRecords = std::make_shared<const std::string>(std::move(sRecords));
    size_t nDone = 0;
    while (nDone < pRecords->size()) {
        ZRFxZipEntry entry;
        if (!ParseRecord(pRecords, nDone, &entry)) {
            return Fail("damaged directory of the archive");
        }
        if (!CheckEntry(entry, nEnd)) return false;
        nDone += entry.sRecord.size();
        aEntries.push_back(std::move(entry));
    }
    return true;
}

bool ZRFxZipDirectory::ParseRecord(const std::shared_ptr<const std::string>& pRecords, size_t nAt,
                                   ZRFxZipEntry* pEntry) {
    const std::string_view sLeft = std::string_view(*pRecords).substr(nAt);
    const size_t nLeft = sLeft.size();
    const uint8_t* pRecord = Bytes(sLeft);
    if (nLeft < kRecordSize || Load32(pRecord) != kRecordSignature) return false;
    const size_t nName = Load16(pRecord + 28);
    const size_t nExtra = Load16(pRecord + 30);
    const size_t nRecord = kRecordSize + nName + nExtra + Load16(pRecord + 32);
    if (nRecord > nLeft) return false;
    pEntry->sRecord = ZRFxSharedText(pRecords, sLeft.substr(0, nRecord));
    pEntry->sName = ZRFxSharedText(pRecords, sLeft.substr(kRecordSize, nName));
    pEntry->nFlags = Load16(pRecord + 8);
    pEntry->nMethod = Load16(pRecord + 10);
    pEntry->nCrc = Load32(pRecord + 16);
    pEntry->nPackedSize = Load32(pRecord + 20);
    pEntry->nSize = Load32(pRecord + 24);
    pEntry->nOffset = Load32(pRecord + 42);

    const uint8_t* pExtra = pRecord + kRecordSize + nName;
    size_t nField = 0;
    const uint8_t* pField = FindExtra(pExtra, nExtra, kExtraZip64, &nField);
    if (!ReplaceBy64(pField, nField, {&pEntry->nSize, &pEntry->nPackedSize, &pEntry->nOffset})) {
        return false;
    }
    if ((pEntry->nFlags & kFlagEncrypted) == 0) return pEntry->nMethod != kMethodAes;
    const bool bStrong = (pEntry->nFlags & kFlagStrong) != 0;
    pEntry->eEncryption =
        bStrong ? ZRFxZipEntry::Encryption::kUnreadable : ZRFxZipEntry::Encryption::kOther;
    if (pEntry->nMethod != kMethodAes || bStrong) return true;
    pField = FindExtra(pExtra, nExtra, kExtraAes, &nField);
    if (!pField || nField < 7 || pField[4] < 1 || pField[4] > 3) return false;
    pEntry->eEncryption = ZRFxZipEntry::Encryption::kAes;
    pEntry->bHasCrc = Load16(pField) != kAesVersionWithoutCrc;
    pEntry->eStrength = static_cast<ZRFxCipher::Strength>(pField[4]);
    pEntry->nMethod = Load16(pField + 5);
    return true;
}

bool ZRFxZipDirectory::CheckEntry(const ZRFxZipEntry& entry, uint64_t nEnd) {
    const uint64_t nHeader = kLocalHeaderSize + entry.sName.size();
    if (entry.nOffset <= nEnd && nHeader <= nEnd - entry.nOffset &&
        entry.nPackedSize <= nEnd - entry.nOffset - nHeader) {
        return true;
    }
    return Fail("damaged directory of the archive: entry '" + std::string(entry.sName) +
                "' lies outside of it");
}

}  // namespace unstruct
