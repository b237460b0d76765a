#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "container/ZRFxEntryTable.h"
#include "container/ZRFxLastCommit.h"
#include "container/ZRFxZipMemFile.h"
#include "container/ZRFxZipStorage.h"

namespace unstruct {

/// The result of refreshing an archive: the names of entries that have changed or gone, each with
/// the number of bytes that it kept at its start.
struct ZRFxArchiveChanges {
    bool bAny = false;
    bool bReplaced = false;  ///< Another file bears the name, and everything may have changed.
    std::map<std::string, uint64_t, std::less<>> kept;
};

/// The state of an open archive; replaced as a whole when another archive is opened.
struct ZRFxOpenArchive {
    /// A commit record whose tails have not been appended to the texts yet. There is one text for
    /// each of its edits.
    struct UnreadRecord {
        ZRFxCommitRecord record;
        std::vector<std::shared_ptr<ZRFxGrowingText>> apTexts;
    };
    /// An entry that is written piece by piece.
    struct Stream {
        std::string sName;
        int nLevel;
        ZRFxZipMemFile data;
    };

    /// The committed state that the open archive builds on.
    struct LastCommit {
        ZRFxCommitPlace place;
        bool bTorn = false;      ///< Something follows it that is no commit.
        bool bOwn = false;       ///< This writer has committed.
        bool bOwnChain = false;  ///< It is a record of this writer's run.
        bool bFollowed = false;  ///< The walk is known to reach its end.
    };
    /// What the next commit needs besides the items and the texts.
    struct NextCommit {
        bool bChanged = false;               ///< There is something to commit.
        ZRFxCommitRecord::Run run{};         ///< Of the records that this writer appends.
        size_t nFirstNew = 0;                ///< Slots from here on are not committed.
        std::vector<std::string> asRemoved;  ///< Names that the last commit has; some may be back.
    };
    /// Counters, by which commits choose their form.
    struct Bytes {
        uint64_t nPending = 0;    ///< Of entries that wait in memory.
        uint64_t nLive = 0;       ///< Of entries in the file.
        uint64_t nDirectory = 0;  ///< Of their directory records.
        uint64_t nLeft = 0;       ///< Of directories and documents left behind by this writer.
    };

    /// Takes the entries of a state that was found in the storage. False when a record does not fit
    /// what it builds on, or the program has stopped opening.
    bool Take(ZRFxLastCommit* pCommit);
    /// Takes what records add, in their order.
    bool TakeRecords(std::vector<ZRFxCommitRecord>* paRecords, ZRFxArchiveChanges* pChanges);

    /// Adds an item, in place of the one of its name; *pReplaced, if given, says whether there was
    /// one.
    ZRFxArchiveItem* Add(std::unique_ptr<ZRFxArchiveItem> pItem, bool* pReplaced = nullptr);
    void Remove(ZRFxArchiveItem* pItem);
    /// Counts what the item takes in the file and in the directory, or no longer takes.
    void Count(const ZRFxArchiveItem& item);
    void Uncount(const ZRFxArchiveItem& item);
    /// Whether the file ends as an ordinary archive of all that there is.
    bool IsOrdinary() const {
        return !next.bChanged && !last.bTorn && last.place.nBase != 0 && last.place.nRecord == 0;
    }
    /// Whether the last committed state knows the item.
    bool IsListed(const ZRFxArchiveItem& item) const { return item.nSlot < next.nFirstNew; }
    /// The text of an item, made when there is none; it begins as the item's entry does.
    ZRFxGrowingText* TextOf(ZRFxArchiveItem* pItem);
    /// Notes that the item's text was changed from byte nKept on.
    void BecomeText(ZRFxArchiveItem* pItem, uint64_t nKept);
    /// Notes which entries of an earlier state have changed or gone.
    void NoteChangesSince(const ZRFxOpenArchive& earlier, ZRFxArchiveChanges* pChanges) const;
    /// Closes the gaps of the table.
    void Compact();
    /// Closes the archive. Takes no memory.
    void Clear();

    std::unique_ptr<ZRFxZipStorage> pStorage;
    bool bReadOnly = false;
    std::string sComment;
    ZRFxEntryTable table;
    std::unique_ptr<Stream> pStream;
    std::vector<std::shared_ptr<ZRFxGrowingText>> apTexts;
    std::vector<UnreadRecord> aUnread;
    LastCommit last;
    NextCommit next;
    Bytes bytes;

private:
    bool TakeRecord(ZRFxCommitRecord* pRecord, ZRFxArchiveChanges* pChanges);
    bool TakeEdits(ZRFxCommitRecord* pRecord, ZRFxArchiveChanges* pChanges);
    bool TakeEntries(std::vector<ZRFxZipEntry>* paEntries, ZRFxArchiveChanges* pChanges);
};

}  // namespace unstruct
