#include "container/ZRFxLastCommit.h"

#include <algorithm>

#include "ZRByteOrder.h"
#include "container/ZRFxArchiveWalk.h"

namespace unstruct {

// What cannot be read must not pass for what is not there: a writer would cut it off.
bool ZRFxLastCommit::LoadSince(ZRFxZipStorage* pStorage, const ZRFxCommitPlace* pKnown) {
    pStorage->TakeReadFailure();
    const bool bFound = FindSince(pStorage, pKnown);
    return pStorage->TakeReadFailure() ? Fail(pStorage->Error()) : bFound;
}

bool ZRFxLastCommit::FindSince(ZRFxZipStorage* pStorage, const ZRFxCommitPlace* pKnown) {
    if (pStorage->Size() == 0) return true;
    if (!FindEnd(pStorage, pKnown) || !FollowChain(pStorage, pKnown)) return false;
    if (!IsRooted(pStorage)) {
        aRecords.clear();
        if (!FindBeforeEnd(pStorage, pKnown) || !FollowChain(pStorage, pKnown)) return false;
    }
    if (m_bSince) return true;
    // A record leads to where its archive ends; without one the end was found already.
    if (!aRecords.empty() && !directory.FindEndAt(pStorage, m_place.nBase)) {
        return Fail("damaged commit record: the archive that it builds on is missing");
    }
    return directory.Load(pStorage) || Fail(directory.cause);
}

// A file that ends in a commit says so at its end.
bool ZRFxLastCommit::FindEnd(ZRFxZipStorage* pStorage, const ZRFxCommitPlace* pKnown) {
    const uint64_t nSize = pStorage->Size();
    uint64_t nOffset = 0;
    if (ZRFxCommitRecord::EndsAt(pStorage, nSize, &nOffset) && TakeRecord(pStorage, nOffset) &&
        m_place.nEnd == nSize) {
        return true;
    }
    aRecords.clear();
    if (directory.FindEndAt(pStorage, nSize)) {
        m_place = {nSize, 0, nSize, {}};
        return true;
    }
    return FindBeforeEnd(pStorage, pKnown);
}

// In any other file the walk finds the last commit; it need not pass what is known.
bool ZRFxLastCommit::FindBeforeEnd(ZRFxZipStorage* pStorage, const ZRFxCommitPlace* pKnown) {
    if (WalkToEnd(pStorage, pKnown ? pKnown->nEnd : 0)) return true;
    if (!pKnown) return SearchEnd(pStorage);
    m_place = *pKnown;
    return true;
}

bool ZRFxLastCommit::WalkToEnd(ZRFxZipStorage* pStorage, uint64_t nFrom) {
    const ZRFxArchiveWalk walk(pStorage, m_pCodec, nFrom);
    switch (walk.LastCommit()) {
        case ZRFxArchiveWalk::Commit::kRecord:
            return TakeRecord(pStorage, walk.LastOffset());
        case ZRFxArchiveWalk::Commit::kArchive:
            m_place = {walk.LastOffset(), 0, walk.LastOffset(), {}};
            return directory.FindEndAt(pStorage, walk.LastOffset());
        case ZRFxArchiveWalk::Commit::kNone:
            break;
    }
    return false;
}

// An archive of another program, which the walk cannot follow, and perhaps a torn end.
bool ZRFxLastCommit::SearchEnd(ZRFxZipStorage* pStorage) {
    uint8_t aFirst[4] = {};
    const bool bEntries = pStorage->Read(0, aFirst, sizeof(aFirst)) &&
                          LoadLittleEndian<uint32_t>(aFirst) == ZRFxZipDirectory::kLocalSignature;
    if (!(bEntries && directory.FindLastEnd(pStorage)) && !directory.FindEnd(pStorage)) {
        return Fail(directory.cause);
    }
    m_place = {directory.Length(), 0, directory.Length(), {}};
    return true;
}

bool ZRFxLastCommit::TakeRecord(ZRFxZipStorage* pStorage, uint64_t nOffset) {
    ZRFxCommitRecord record;
    if (!record.Load(pStorage, nOffset, m_pCodec)) return false;
    m_place = {record.nBase, record.nOffset, record.nEnd, record.run};
    aRecords.push_back(std::move(record));
    return true;
}

// From the last record back to the first, or to the known one.
bool ZRFxLastCommit::FollowChain(ZRFxZipStorage* pStorage, const ZRFxCommitPlace* pKnown) {
    const bool bSameBase = pKnown && pKnown->nBase == m_place.nBase &&
                           (pKnown->nRecord == 0 || pKnown->run == m_place.run);
    const uint64_t nKnown = bSameBase ? pKnown->nRecord : 0;
    if (bSameBase && m_place.nRecord == nKnown) aRecords.clear();
    while (!aRecords.empty() && aRecords.back().nPrevious != nKnown) {
        const ZRFxCommitRecord& next = aRecords.back();
        if (next.nPrevious == 0) break;
        ZRFxCommitRecord record;
        if (next.nPrevious >= next.nOffset || !record.Load(pStorage, next.nPrevious, m_pCodec) ||
            record.run != next.run || record.nBase != next.nBase || record.nEnd > next.nOffset) {
            return Fail("damaged commit record: the one before it is missing");
        }
        aRecords.push_back(std::move(record));
    }
    m_bSince = bSameBase && (aRecords.empty() || aRecords.back().nPrevious == nKnown);
    std::reverse(aRecords.begin(), aRecords.end());
    return true;
}

// A file may end within an entry that holds such records. None can know the run, so the last one is
// of this file when the first of them is: only whole entries lie between it and the archive.
bool ZRFxLastCommit::IsRooted(ZRFxZipStorage* pStorage) {
    if (aRecords.empty() || aRecords.front().nPrevious != 0) return true;
    const uint64_t nFirst = aRecords.front().nOffset;
    const ZRFxArchiveWalk walk(pStorage, m_pCodec, m_place.nBase, nFirst);
    return walk.Reached() == nFirst && walk.LastCommit() == ZRFxArchiveWalk::Commit::kNone;
}

}  // namespace unstruct
