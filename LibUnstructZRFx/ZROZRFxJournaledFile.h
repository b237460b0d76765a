#pragma once

#include <memory>
#include <string>

#include "ZROZRFxSystem.h"
#include "ZROZRFxZipStorage.h"

namespace unstruct {

/// What a journal says about the archive it belongs to.
struct ZRFxJournalHeader {
    uint64_t nOldSize = 0;
    uint64_t nUnchanged = 0;
    uint32_t nTailCrc = 0;
    uint32_t nPrefixCrc = 0;
};

/// An archive file that changes from one committed state to the next and shows nothing between.
//
/// A commit in place first saves the old end of the file, from the first byte that changes, to the
/// journal "<file>.journal" and flushes it; then it overwrites the file, flushes it and removes the
/// journal: this removal is the commit. A rewrite goes to "<file>.rewrite", which is flushed and
/// renamed over the file. A writer that dies leaves the file, or the file and a complete journal.
//
/// What holds:
/// - A writer opening a file with a complete journal first restores the state before the torn
///   commit. An incomplete journal was never acted on; it is removed, as is a left-over rewrite.
/// - A read-only opener needs no write permission, changes nothing, takes no lock and never waits
///   for a writer. It sees the last commit: where a journal is complete, the saved end from there.
/// - A second writer is refused through the advisory lock (flock) on the file.
/// - A reader that stays open keeps reading what no later commit overwrote. Bytes past the first
///   change of a later in-place commit may be the new ones, so each entry is checked by its owner
///   (header, CRC or authentication code). A rewrite does not disturb it at all.
/// - A file made by kCreate is empty, which opens as an archive without entries, until the first
///   commit; one that existed keeps its content until then.
/// - The journal holds bytes that were in the archive file before and no others.
//
/// Paths are resolved through symbolic links first, so that all openers agree on the journal.
class ZRFxJournaledFile : public ZRFxZipStorage {
public:
    ZRFxJournaledFile() = default;
    /// Rolls back a commit under way; a file made by kCreate and never committed is removed.
    ~ZRFxJournaledFile() override;
    ZRFxJournaledFile(const ZRFxJournaledFile&) = delete;
    ZRFxJournaledFile& operator=(const ZRFxJournaledFile&) = delete;

    /// REQUIRES: not opened before. kCreate makes the file when it is missing; Size() is 0 then and
    /// for a file that existed, and the first commit has to be a rewrite.
    bool Open(const std::string& sPath, ZRFxOpenMode eMode);

    uint64_t Size() const override { return m_nSize; }
    bool Read(uint64_t nOffset, void* pData, size_t nSize) override;
    bool IsConsistent() override;

    bool BeginCommit(uint64_t nUnchanged) override;
    bool BeginRewrite() override;
    bool Write(const void* pData, size_t nSize) override;
    uint64_t Position() const override { return m_nPosition; }
    bool ReadWritten(uint64_t nOffset, void* pData, size_t nSize) override;
    void Rewind(uint64_t nPosition) override;
    ZRFxCommitResult EndCommit() override;
    void RollBack() override;

private:
    /// Idle; writing in place; writing a rewrite; or with a torn end that could not be restored
    /// yet.
    enum class Phase { kIdle, kInPlace, kRewrite, kTorn };
    /// Incomplete: its own writing was cut off, or it belongs to another file. Never acted on.
    enum class JournalState { kAbsent, kIncomplete, kComplete, kUnreadable };

    bool OpenForWriting(bool bMayCreate);
    bool OpenForReading();
    bool AcquireLock(bool* pRetry);
    bool Recover();
    bool TakeSnapshot();

    JournalState LoadJournal(ZRFxFile* pJournal, ZRFxJournalHeader* pHeader) const;
    bool WriteJournal(uint64_t nUnchanged);
    bool RemoveJournal();
    /// Reads the saved end, into pTo unless null, and gives its CRC.
    static bool CopyTail(const ZRFxFile& journal, const ZRFxJournalHeader& header, ZRFxFile* pTo,
                         uint32_t* pCrc);
    /// CRC of the last bytes before nUnchanged, which ties a journal to its archive.
    bool PrefixCrc(uint64_t nUnchanged, uint32_t* pCrc) const;

    bool IsStillAtPath() const;
    bool FinishTorn();
    void StartAt(uint64_t nPosition, Phase ePhase);
    bool FlushBuffer();
    void StartFlush();
    bool FlushWritten();
    ZRFxFile& Target() { return m_ePhase == Phase::kRewrite ? m_rewrite : m_file; }
    bool FailSystem(const char* sWhat);

    std::string m_sPath;
    std::string m_sJournalPath;
    std::string m_sRewritePath;
    ZRFxFile m_file;
    ZRFxFile m_journal;  // Open exactly while reads from m_nUnchanged on come from it.
    ZRFxFile m_rewrite;
    Phase m_ePhase = Phase::kIdle;
    bool m_bCreated = false;  // The file is ours and empty: no commit has succeeded yet.
    uint64_t m_nSize = 0;
    uint64_t m_nUnchanged = 0;
    uint64_t m_nPosition = 0;
    uint64_t m_nFlushStarted = 0;  // Up to here the disk was asked to write.
    bool m_bFlushFailed = false;   // Of the commit under way.
    std::unique_ptr<uint8_t[]> m_pBuffer;
    size_t m_nBuffered = 0;
};

}  // namespace unstruct
