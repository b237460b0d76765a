#pragma once

#include <cstdint>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "container/ZRFxCause.h"
#include "container/ZRFxNameIndex.h"
#include "container/ZRFxZipDirectory.h"
#include "container/ZRFxZipRawData.h"

namespace unstruct {

/// The text of a document that is stored as edits of commit records, on top of an entry or of
/// nothing.
struct ZRFxGrowingText {
    std::string sName;
    std::string sText;
    ZRFxCause cause;          ///< Why the text cannot be had, if it cannot.
    uint64_t nLength = 0;     ///< Of the text, also before it is loaded.
    uint64_t nUnchanged = 0;  ///< What the last commit has of it.
    uint64_t nRevision = 0;   ///< Changes with each change, and is never used twice in the process.
    int nLevel = -1;          ///< At which it is packed when it becomes an entry.
    bool bLoaded = false;
    bool bChanged = false;  ///< Since the last commit.
    bool bDropped = false;  ///< The document was removed, or replaced by an entry.
};

/// One entry of an open archive.
struct ZRFxArchiveItem {
    enum class Place {
        kInFile,     ///< Committed, or written for the next commit.
        kPending,    ///< In memory until the next commit.
        kInRecords,  ///< A document with a text; as an entry the file has an older one, or none.
    };

    ZRFxZipEntry entry;
    Place ePlace = Place::kInFile;
    ZRFxZipRawData packed;  ///< While pending: the bytes as the archive will hold them.
    std::time_t nTime = 0;
    uint64_t nIndex = 0;  ///< In the directory of the ordinary archive, if it is there.
    size_t nSlot = 0;     ///< In the table.
    std::shared_ptr<ZRFxGrowingText> pText;

    /// Whether the file has an entry for it, which a text may have outgrown.
    bool HasEntry() const { return !entry.sRecord.empty(); }
    /// What the entry takes in the file, as far as its directory record tells.
    uint64_t Span() const;
};

/// The entries of an open archive, by name and in the order in which they were added. The time of
/// finding, adding and removing does not grow with the table.
class ZRFxEntryTable {
public:
    using Item = ZRFxArchiveItem;

    Item* Find(std::string_view sName) const { return m_byName.Find(sName); }
    /// Speeds up a Find or Add of the name that follows soon: in a large table, either mostly waits
    /// for memory.
    void Prefetch(std::string_view sName) const { m_byName.Prefetch(sName); }
    /// Lets the next Add do without memory.
    void MakeRoom();
    /// REQUIRES: there is no item of its name.
    Item* Add(std::unique_ptr<Item> pItem);
    void Remove(Item* pItem);
    void Reserve(size_t nCount);

    /// Items at slots below this number; some may be null, until `Compact`.
    size_t SlotCount() const { return m_apItems.size(); }
    Item* At(size_t nSlot) const { return m_apItems[nSlot].get(); }
    bool HasGaps() const { return m_nGaps > 0; }
    /// Closes the gaps, so that slots and items are the same.
    void Compact();
    /// Whether closing the gaps is worth its time.
    bool HasManyGaps() const { return 2 * m_nGaps > m_apItems.size(); }

    /// Whether entries of the file overlap, so that it cannot be changed: written anew, such a file
    /// could grow without bound.
    bool HasOverlaps() const;

    /// Whether a name of any item, now or before, has a slash in it.
    bool HasSlashes() const { return m_bHasSlashes; }

private:
    static std::string_view NameOf(const Item& item) { return item.entry.sName; }

    std::vector<std::unique_ptr<Item>> m_apItems;
    ZRFxNameIndex<Item, &ZRFxEntryTable::NameOf> m_byName;
    size_t m_nGaps = 0;
    bool m_bHasSlashes = false;
};

}  // namespace unstruct
