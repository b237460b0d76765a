#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "container/ZRFxCause.h"
#include "container/ZRFxEntryPacker.h"
#include "container/ZRFxEntryReader.h"
#include "container/ZRFxOpenArchive.h"

namespace unstruct {

/// One commit of an open archive, in one of three forms:
/// - a record after the new entries, at the cost of what is new;
/// - an ordinary archive: documents that have grown as entries, the whole directory and its end.
///   This happens when an archive is closed, and whenever it costs little compared to what was
///   appended since the last time;
/// - an archive written anew in place of the file, when more than an eighth of it is no longer
///   used on closing, or more than half of it during a run.
/// A commit that fails leaves the archive as it was, to be committed again.
class ZRFxArchiveCommit {
public:
    /// REQUIRES: all outlive the commit, and the texts of the archive are loaded.
    ZRFxArchiveCommit(ZRFxOpenArchive* pArchive, ZRFxEntryPacker* pPacker, ZRFxEntryReader* pReader,
                      ZRFxCodec* pCodec, ZRFxCipher* pCipher);

    /// Commits in the form that is due. False, with the cause in Error, when the commit failed, or
    /// the disk did not confirm it; then it is to be made again.
    bool Run(bool bClosing);
    /// Writes all of the archive into an empty storage, which takes the place of the old one.
    bool WriteAnew(std::unique_ptr<ZRFxZipStorage> pStorage);

    const ZRFxCause& Error() const { return m_cause; }

private:
    /// An entry as this commit writes it.
    struct Placed {
        ZRFxArchiveItem* pItem;
        ZRFxZipEntry entry;
    };

    bool Fail(ZRFxCause cause) {
        m_cause = std::move(cause);
        return false;
    }
    bool IsRewriteDue(bool bClosing) const;
    bool IsArchiveDue() const;
    bool IsFollowed();
    uint64_t DocumentBytes() const;
    uint64_t OutgrownBytes() const;

    bool AppendRecord();
    bool WriteRecord(ZRFxCommitRecord* pRecord, uint64_t nStart);
    void ListNew(ZRFxCommitRecord* pRecord) const;
    std::string ListEdits(ZRFxCommitRecord* pRecord) const;
    bool AppendArchive();

    bool PlaceItems(size_t nFirstSlot, bool bWithTexts);
    bool PlacePending(ZRFxArchiveItem* pItem);
    bool PlaceText(ZRFxArchiveItem* pItem);
    bool CopyEntry(ZRFxArchiveItem* pItem);
    bool WriteEntry(ZRFxArchiveItem* pItem, ZRFxZipEntry entry, const uint8_t* pPacked);
    bool WriteDirectory();
    bool End(ZRFxCommitResult* pResult);

    void ApplyPlaced();
    void ApplyArchive();
    void ApplyCommon(bool bConfirmed);

    ZRFxOpenArchive& m_archive;
    ZRFxEntryPacker& m_packer;
    ZRFxEntryReader& m_reader;
    ZRFxCodec* m_pCodec;
    ZRFxCipher* m_pCipher;
    ZRFxZipStorage* m_pTarget;
    std::vector<Placed> m_aPlaced;
    bool m_bApplied = false;
    ZRFxCause m_cause;
};

}  // namespace unstruct
