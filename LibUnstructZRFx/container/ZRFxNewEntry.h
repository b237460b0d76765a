#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "container/ZRFxCause.h"
#include "container/ZRFxEntryPacker.h"
#include "container/ZRFxOpenArchive.h"

namespace unstruct {

/// Makes the item of a new entry of an open archive: packed, and where it stays until the commit.
/// Data goes to the file at once, documents wait in memory.
class ZRFxNewEntry {
public:
    /// Documents wait as long as they are at most nPendingLimit bytes together. REQUIRES: archive
    /// and packer outlive this.
    ZRFxNewEntry(ZRFxOpenArchive* pArchive, ZRFxEntryPacker* pPacker, uint64_t nPendingLimit)
        : m_archive(*pArchive), m_packer(*pPacker), m_nPendingLimit(nPendingLimit) {}

    /// Packs at level 0 to 9, a negative one being the default. On failure the archive is as it was
    /// before.
    bool Make(std::string_view sName, const void* pData, uint64_t nSize, int nLevel,
              std::unique_ptr<ZRFxArchiveItem>* ppItem);
    const ZRFxCause& Error() const { return m_cause; }

private:
    bool Fail(ZRFxCause cause) {
        m_cause = std::move(cause);
        return false;
    }
    bool WriteData(ZRFxArchiveItem* pItem, const void* pData, size_t nSize, int nLevel);
    bool PlaceDocument(ZRFxArchiveItem* pItem, const void* pData, size_t nSize, int nLevel);
    bool KeepPending(ZRFxArchiveItem* pItem, const uint8_t* pPacked);
    bool WriteNow(ZRFxArchiveItem* pItem, const uint8_t* pPacked);

    ZRFxOpenArchive& m_archive;
    ZRFxEntryPacker& m_packer;
    const uint64_t m_nPendingLimit;
    ZRFxCause m_cause;
};

}  // namespace unstruct
