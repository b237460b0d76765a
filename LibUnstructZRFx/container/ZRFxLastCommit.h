#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "container/ZRFxCause.h"
#include "container/ZRFxCommitRecord.h"
#include "container/ZRFxZipDirectory.h"
#include "container/ZRFxZipStorage.h"

namespace unstruct {

/// Which committed state of an archive it is.
struct ZRFxCommitPlace {
    uint64_t nBase = 0;    ///< Where the ordinary archive ends; 0 when there is none.
    uint64_t nRecord = 0;  ///< Offset of the last record that follows it; 0 when there is none.
    uint64_t nEnd = 0;     ///< Where the state ends. What follows is torn, or being written.
    ZRFxCommitRecord::Run run{};  ///< Of the records.
};

/// Finds and reads the last committed state of an archive: an ordinary archive and the commit
/// records that build on it. Changes nothing. Time and memory are bounded by the storage's length.
class ZRFxLastCommit {
public:
    explicit ZRFxLastCommit(ZRFxCodec* pCodec) : m_pCodec(pCodec) {}

    bool Load(ZRFxZipStorage* pStorage) { return LoadSince(pStorage, nullptr); }
    /// Reads only what was committed since a known state, if the last one builds on it, which
    /// IsSince tells. False, with the cause in Error, when there is no archive.
    bool LoadSince(ZRFxZipStorage* pStorage, const ZRFxCommitPlace* pKnown);
    bool IsSince() const { return m_bSince; }

    const ZRFxCommitPlace& Place() const { return m_place; }
    /// That of the ordinary archive; unread when IsSince.
    ZRFxZipDirectory directory;
    /// In the order of their commits.
    std::vector<ZRFxCommitRecord> aRecords;

    const ZRFxCause& Error() const { return m_cause; }

private:
    bool Fail(ZRFxCause cause) {
        m_cause = std::move(cause);
        return false;
    }
    bool FindSince(ZRFxZipStorage* pStorage, const ZRFxCommitPlace* pKnown);
    bool FindEnd(ZRFxZipStorage* pStorage, const ZRFxCommitPlace* pKnown);
    bool FindBeforeEnd(ZRFxZipStorage* pStorage, const ZRFxCommitPlace* pKnown);
    bool WalkToEnd(ZRFxZipStorage* pStorage, uint64_t nFrom);
    bool SearchEnd(ZRFxZipStorage* pStorage);
    bool TakeRecord(ZRFxZipStorage* pStorage, uint64_t nOffset);
    bool IsRooted(ZRFxZipStorage* pStorage);
    bool FollowChain(ZRFxZipStorage* pStorage, const ZRFxCommitPlace* pKnown);

    ZRFxCodec* m_pCodec;
    ZRFxCommitPlace m_place;
    bool m_bSince = false;
    ZRFxCause m_cause;
};

}  // namespace unstruct
