#pragma once

#include <cstdint>
#include <string>

#include "container/ZRFxCause.h"
#include "container/ZRFxCipher.h"
#include "container/ZRFxCodec.h"
#include "container/ZRFxEntryTable.h"
#include "container/ZRFxPieceWork.h"
#include "container/ZRFxReadAhead.h"
#include "container/ZRFxZipLibrary.h"
#include "container/ZRFxZipStorage.h"

namespace unstruct {

/// Reads entries of an archive whole, whoever wrote them. What an entry declares is checked against
/// its length in the archive before memory is taken, and its data against CRC or authentication
/// code before it is given. Failures leave the cause in Error, but a lack of memory throws
/// std::bad_alloc. One thread at a time.
class ZRFxEntryReader {
public:
    /// REQUIRES: all outlive the reader. Without pPieces, entries in pieces are read as any other.
    ZRFxEntryReader(ZRFxCodec* pCodec, ZRFxCipher* pCipher, ZRFxPieceWork* pPieces = nullptr)
        : m_pCodec(pCodec), m_pCipher(pCipher), m_pPieceWork(pPieces) {}

    /// Reads from that storage, whose ordinary archive ends at nArchiveEnd, from now on. To be
    /// called again when either has changed. REQUIRES: the storage outlives the reader, or `Close`.
    void Open(ZRFxZipStorage* pStorage, uint64_t nArchiveEnd);
    void Close();

    /// The data of an item that is in the file or pending.
    bool Read(const ZRFxArchiveItem& item, ZRFxZipRawData* pRaw);
    /// nSize bytes of it from byte nFrom on, into the caller's memory. Takes what holds them: that
    /// many bytes of a stored entry, the pieces of one in pieces, and any other whole. Pieces and
    /// whole entries are checked by their CRCs; bytes of a plain stored entry are not.
    bool ReadPart(const ZRFxArchiveItem& item, uint64_t nFrom, void* pData, size_t nSize);
    /// Where the entry ends: after its data and, when there is one, the descriptor.
    bool FindEnd(const ZRFxZipEntry& entry, uint64_t nLimit, uint64_t* pEnd);

    const ZRFxCause& Error() const { return m_cause; }

private:
    bool Fail(ZRFxCause cause) {
        m_cause = std::move(cause);
        return false;
    }
    bool CheckDeclared(const ZRFxZipEntry& entry);
    bool CheckAes(const ZRFxZipEntry& entry);
    bool FetchPacked(const ZRFxZipEntry& entry, const uint8_t** ppPacked);
    bool FetchSmall(const ZRFxZipEntry& entry, const uint8_t** ppPacked);
    bool FetchStored(const ZRFxZipEntry& entry, ZRFxZipRawData* pRaw);
    bool ReadInPieces(const ZRFxZipEntry& entry, ZRFxZipRawData* pRaw);
    bool LoadPieces(const ZRFxZipEntry& entry, ZRFxPieceList* pPieces) const;
    bool UnpackPieces(const ZRFxZipEntry& entry, const ZRFxPieceList& pieces, uint64_t nFrom,
                      uint8_t* pData, size_t nSize);
    bool LocateData(const ZRFxZipEntry& entry, uint64_t* pOffset);
    bool Unpack(const ZRFxZipEntry& entry, const uint8_t* pPacked, ZRFxZipRawData* pRaw);
    bool Inflate(const ZRFxZipEntry& entry, const uint8_t* pPacked, size_t nPacked,
                 ZRFxZipRawData* pRaw);
    bool Decrypt(const ZRFxZipEntry& entry, const uint8_t* pPacked, uint8_t* pData);
    bool ReadForeign(const ZRFxArchiveItem& item, ZRFxZipRawData* pRaw);
    bool ReadForeignAes(const ZRFxZipEntry& entry, ZRFxZipRawData* pRaw);

    ZRFxCodec* m_pCodec;
    ZRFxCipher* m_pCipher;
    ZRFxPieceWork* m_pPieceWork;
    ZRFxZipStorage* m_pStorage = nullptr;
    uint64_t m_nArchiveEnd = 0;
    ZRFxZipLibrary m_library;
    ZRFxReadAhead m_readAhead;
    ZRFxZipRawData m_packed;  // Packed bytes on their way in.
    ZRFxZipRawData m_plain;   // The same decrypted.
    ZRFxCause m_cause;
};

}  // namespace unstruct
