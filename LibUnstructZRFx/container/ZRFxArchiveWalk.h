#pragma once

#include <cstdint>

#include "container/ZRFxCodec.h"
#include "container/ZRFxReadAhead.h"
#include "container/ZRFxZipStorage.h"

namespace unstruct {

/// Follows the structures of an archive from its first byte on, or from the end of a commit that is
/// known: each tells where the next begins, so that nothing inside of an entry can pass for one.
/// They are entries, commit records, and directories with their ends. Takes time linear in their
/// number, however long the entries are. Archives of other programs may have entries that do not
/// tell their length; there the walk stops.
class ZRFxArchiveWalk {
public:
    enum class Commit { kNone, kRecord, kArchive };

    /// Goes as far as whole structures follow, and no further than to the one that reaches nTo.
    /// REQUIRES: the objects outlive the walk.
    ZRFxArchiveWalk(ZRFxZipStorage* pStorage, ZRFxCodec* pCodec, uint64_t nFrom = 0,
                    uint64_t nTo = UINT64_MAX);

    /// The last commit that was passed, and where it begins (a record) or ends (an archive).
    Commit LastCommit() const { return m_eLast; }
    uint64_t LastOffset() const { return m_nLast; }
    /// Where the walk stopped.
    uint64_t Reached() const { return m_nAt; }

private:
    const uint8_t* Get(uint64_t nOffset, size_t nSize);
    bool Step();
    bool PassEntry(const uint8_t* pHeader);
    bool PassRecord();
    bool PassDirectory();

    ZRFxZipStorage* m_pStorage;
    ZRFxCodec* m_pCodec;
    ZRFxReadAhead m_readAhead;
    uint64_t m_nAt;
    Commit m_eLast = Commit::kNone;
    uint64_t m_nLast = 0;
};

}  // namespace unstruct
