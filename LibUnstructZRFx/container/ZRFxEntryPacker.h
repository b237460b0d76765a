#pragma once

#include <cstdint>
#include <string>

#include "container/ZRFxCause.h"
#include "container/ZRFxCipher.h"
#include "container/ZRFxCodec.h"
#include "container/ZRFxPackingPlan.h"
#include "container/ZRFxPieceWork.h"
#include "container/ZRFxZipDirectory.h"
#include "container/ZRFxZipRawData.h"
#include "container/ZRFxZipStorage.h"

namespace unstruct {

/// Makes the bytes of an entry as an archive holds them - deflated, large data in pieces, or stored
/// when that is not shorter, and encrypted under a password - and writes them with their header.
/// Failures leave the cause in Error. One caller at a time.
class ZRFxEntryPacker {
public:
    /// REQUIRES: all outlive the packer.
    ZRFxEntryPacker(ZRFxCodec* pCodec, ZRFxCipher* pCipher, ZRFxPieceWork* pPieces)
        : m_pCodec(pCodec), m_pCipher(pCipher), m_pPieceWork(pPieces) {}

    /// Entries above this length begin where a large array of the heap does.
    static constexpr uint64_t kSmallEntry = 64 * 1024;

    /// The longest data that an entry takes.
    uint64_t MaxLength() const;
    /// Packs at level 0 to 9, a negative one being the default, and completes the entry but for its
    /// offset. *ppPacked is valid until the next call, and may be pData itself.
    bool Pack(const void* pData, size_t nSize, int nLevel, ZRFxZipEntry* pEntry,
              const uint8_t** ppPacked);
    /// The directory record of the entry that was packed last, its offset set.
    std::string Record(const ZRFxZipEntry& entry, std::time_t nTime) const {
        return ZRFxZipDirectory::CentralRecord(entry, nTime, m_sPieceNote);
    }
    /// Packs as `Pack` does and writes at the storage's position, large data without taking memory
    /// for all of it. Completes the entry, with its record. On failure the storage is as it was
    /// before.
    bool PackAndWrite(const void* pData, size_t nSize, int nLevel, std::time_t nTime,
                      ZRFxZipStorage* pStorage, ZRFxZipEntry* pEntry);
    /// Writes an entry at the storage's position; on failure the storage is as it was before.
    bool Write(const ZRFxZipEntry& entry, std::time_t nTime, const uint8_t* pPacked,
               ZRFxZipStorage* pStorage);

    /// Frees the memory that packing has taken.
    void Clear() { m_scratch.Clear(); }
    const ZRFxCause& Error() const { return m_cause; }

private:
    bool Fail(ZRFxCause cause) {
        m_cause = std::move(cause);
        return false;
    }
    ZRFxPackingPlan PlanOf(const uint8_t* pData, size_t nSize, int nLevel);
    bool PackBy(const ZRFxPackingPlan& plan, const uint8_t* pData, size_t nSize,
                ZRFxZipEntry* pEntry, const uint8_t** ppPacked);
    bool Deflate(const ZRFxPackingPlan& plan, const uint8_t* pData, size_t nSize, uint8_t* pPacked,
                 ZRFxZipEntry* pEntry, size_t* pPackedSize);
    bool DeflateInPieces(const ZRFxPackingPlan& plan, const uint8_t* pData, size_t nSize,
                         const ZRFxPieceWork::Put& put, ZRFxZipEntry* pEntry, size_t* pPackedSize);
    bool WriteInPieces(const ZRFxPackingPlan& plan, const uint8_t* pData, std::time_t nTime,
                       ZRFxZipStorage* pStorage, ZRFxZipEntry* pEntry);
    bool WriteData(const ZRFxZipEntry& entry, const uint8_t* pPacked, ZRFxZipStorage* pStorage);
    bool Encrypt(ZRFxZipEntry* pEntry);

    ZRFxCodec* m_pCodec;
    ZRFxCipher* m_pCipher;
    ZRFxPieceWork* m_pPieceWork;
    ZRFxZipRawData m_scratch;
    std::string m_sPieceNote;  // Of the entry that was packed last.
    ZRFxCause m_cause;
};

}  // namespace unstruct
