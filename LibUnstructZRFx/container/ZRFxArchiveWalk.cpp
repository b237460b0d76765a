#include "container/ZRFxArchiveWalk.h"

#include <algorithm>
#include <cstring>

#include "ZRByteOrder.h"
#include "container/ZRFxCommitRecord.h"
#include "container/ZRFxZipDirectory.h"

namespace unstruct {
namespace {

// What stands between the last directory record and the end record, in archives that need it.
constexpr uint64_t kEnd64WithLocator = 76;

uint32_t Signature(const uint8_t* pBytes) {
    return LoadLittleEndian<uint32_t>(pBytes);
}

}  // namespace

ZRFxArchiveWalk::ZRFxArchiveWalk(ZRFxZipStorage* pStorage, ZRFxCodec* pCodec, uint64_t nFrom,
                                 uint64_t nTo)
    : m_pStorage(pStorage), m_pCodec(pCodec), m_nAt(nFrom) {
    while (m_nAt < nTo && Step()) {
    }
}

const uint8_t* ZRFxArchiveWalk::Get(uint64_t nOffset, size_t nSize) {
    const uint64_t nEnd = m_pStorage->Size();
    return nOffset <= nEnd && nSize <= nEnd - nOffset ? m_readAhead.Get(m_pStorage, nOffset, nSize)
                                                      : nullptr;
}

bool ZRFxArchiveWalk::Step() {
    if (const uint8_t* pHeader = Get(m_nAt, ZRFxZipDirectory::kLocalHeaderSize)) {
        if (Signature(pHeader) == ZRFxZipDirectory::kLocalSignature) return PassEntry(pHeader);
        if (std::memcmp(pHeader, ZRFxCommitRecord::kMagic.data(),
                        ZRFxCommitRecord::kMagic.size()) == 0) {
            return PassRecord();
        }
    }
    return PassDirectory();
}

bool ZRFxArchiveWalk::PassEntry(const uint8_t* pHeader) {
    const size_t nLength = ZRFxZipDirectory::LocalHeaderLength(pHeader);
    uint64_t nSize = ZRFxZipDirectory::LocalSize(pHeader, ZRFxZipDirectory::kLocalHeaderSize);
    if (nSize == 0 && (pHeader = Get(m_nAt, nLength))) {
        nSize = ZRFxZipDirectory::LocalSize(pHeader, nLength);
    }
    if (nSize == 0 || nSize > m_pStorage->Size() - m_nAt) return false;
    m_nAt += nSize;
    return true;
}

bool ZRFxArchiveWalk::PassRecord() {
    ZRFxCommitRecord record;
    if (!record.Load(m_pStorage, m_nAt, m_pCodec)) return false;
    m_eLast = Commit::kRecord;
    m_nLast = record.nOffset;
    m_nAt = record.nEnd;
    return true;
}

bool ZRFxArchiveWalk::PassDirectory() {
    uint64_t nAt = m_nAt;
    uint64_t nRecords = 0;
    const uint8_t* pRecord = nullptr;
    while ((pRecord = Get(nAt, ZRFxZipDirectory::kRecordSize)) &&
           Signature(pRecord) == ZRFxZipDirectory::kRecordSignature) {
        nAt += ZRFxZipDirectory::RecordLength(pRecord);
        ++nRecords;
    }
    const uint8_t* pEnd = Get(nAt, ZRFxZipDirectory::kEndSize);
    if (pEnd && Signature(pEnd) == ZRFxZipDirectory::kEnd64Signature) nAt += kEnd64WithLocator;
    pEnd = Get(nAt, ZRFxZipDirectory::kEndSize);
    if (!pEnd || Signature(pEnd) != ZRFxZipDirectory::kEndSignature) return false;
    ZRFxZipDirectory directory;
    if (!directory.FindEndRecordAt(m_pStorage, nAt) || directory.nOffset != m_nAt ||
        (nRecords & 0xFFFF) != (directory.DeclaredCount() & 0xFFFF)) {
        return false;
    }
    m_eLast = Commit::kArchive;
    m_nLast = m_nAt = directory.Length();
    return true;
}

}  // namespace unstruct
