#pragma once

#include <cstdint>
#include <string>

#include "container/ZRFxCause.h"
#include "container/ZRFxCipher.h"
#include "container/ZRFxCodec.h"
#include "container/ZRFxZipDirectory.h"
#include "container/ZRFxZipRawData.h"
#include "container/ZRFxZipStorage.h"

namespace unstruct {

/// Makes the bytes of an entry as an archive holds them - deflated, or stored when that is not
/// shorter, and encrypted under a password - and writes them with their header. Failures leave the
/// cause in Error. One thread at a time.
class ZRFxEntryPacker {
public:
    /// REQUIRES: codec and cipher outlive the packer.
    ZRFxEntryPacker(ZRFxCodec* pCodec, ZRFxCipher* pCipher)
        : m_pCodec(pCodec), m_pCipher(pCipher) {}

    /// Entries above this length begin where a large array of the heap does.
    static constexpr uint64_t kSmallEntry = 64 * 1024;

    /// The longest data that an entry takes.
    uint64_t MaxLength() const;
    /// Packs at level 0 to 9, a negative one being the default, and completes the entry but for its
    /// offset. *ppPacked is valid until the next call, and may be pData itself.
    bool Pack(const void* pData, size_t nSize, int nLevel, ZRFxZipEntry* pEntry,
              const uint8_t** ppPacked);
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
    bool Encrypt(ZRFxZipEntry* pEntry);

    ZRFxCodec* m_pCodec;
    ZRFxCipher* m_pCipher;
    ZRFxZipRawData m_scratch;
    ZRFxCause m_cause;
};

}  // namespace unstruct
