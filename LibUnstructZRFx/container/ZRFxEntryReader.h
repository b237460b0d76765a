#pragma once

#include <cstdint>
#include <string>

#include "container/ZRFxCause.h"
#include "container/ZRFxCipher.h"
#include "container/ZRFxCodec.h"
#include "container/ZRFxEntryTable.h"
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
    /// REQUIRES: codec and cipher outlive the reader.
    ZRFxEntryReader(ZRFxCodec* pCodec, ZRFxCipher* pCipher)
        : m_pCodec(pCodec), m_pCipher(pCipher) {}

    /// Reads from that storage, whose ordinary archive ends at nArchiveEnd, from now on. To be
    /// called again when either has changed. REQUIRES: the storage outlives the reader, or `Close`.
    void Open(ZRFxZipStorage* pStorage, uint64_t nArchiveEnd);
    void Close();

    /// The data of an item that is in the file or pending.
    bool Read(const ZRFxArchiveItem& item, ZRFxZipRawData* pRaw);
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
    bool LocateData(const ZRFxZipEntry& entry, uint64_t* pOffset);
    bool Unpack(const ZRFxZipEntry& entry, const uint8_t* pPacked, ZRFxZipRawData* pRaw);
    bool Decrypt(const ZRFxZipEntry& entry, const uint8_t* pPacked, uint8_t* pData);
    bool ReadForeign(const ZRFxArchiveItem& item, ZRFxZipRawData* pRaw);
    bool ReadForeignAes(const ZRFxZipEntry& entry, ZRFxZipRawData* pRaw);

    ZRFxCodec* m_pCodec;
    ZRFxCipher* m_pCipher;
    ZRFxZipStorage* m_pStorage = nullptr;
    uint64_t m_nArchiveEnd = 0;
    ZRFxZipLibrary m_library;
    ZRFxReadAhead m_readAhead;
    ZRFxZipRawData m_packed;  // Packed bytes on their way in.
    ZRFxZipRawData m_plain;   // The same decrypted.
    ZRFxCause m_cause;
};

}  // namespace unstruct
