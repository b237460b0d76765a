#pragma once

#include <cstdint>
#include <limits>

#include "ZRArray.h"
#include "ZRString.h"
#include "blocks/ZRFxArrayFile.h"
#include "nvf/Logger.h"
#include "nvf/Object.h"
#include "nvf/XmlDocument.h"
#include "types/ZRFxBlockType.h"

namespace unstruct {

class ZRFxBlockStore;
struct ZRFxOutline;

/// Base of all blocks: a numbered unit of model or result data, stored as one XML document, whose
/// root is named by the type and carries the id, and as data files beside it. Reading and writing
/// follow one sequence here; a derived block adds what lies below the root. Shared by reference.
/// Used by one thread at a time, together with its database. Operations that fail log why and give
/// false.
class ZRFxBlock : public nvf::Object {
public:
    /// The block of a type, empty; null after an assertion when no class stores the type. The
    /// database must outlive the block.
    static nvf::ref<ZRFxBlock> Create(int type, ZRFxBlockStore* pDatabase, int id);

    /// Whether a class stores the blocks of a type.
    static bool IsStored(int type);

    /// Reads document and data files, unless that was done already.
    virtual bool ReadBlock();

    /// Writes document and data files, none of which may be in the archive. What ReadBlock would
    /// refuse, or would not give back as it is, is refused with a message before anything is
    /// written.
    virtual bool WriteBlock();

    /// Writes into a database, in place of the block of this type and id that it may hold. The
    /// block stays attached to its own database. Contents that cannot be stored leave the database
    /// as it is; when its archive fails, neither the old nor the new block is in it.
    virtual bool WriteBlock(ZRFxBlockStore* pDatabase);

    /// Drops what was loaded, so that the next ReadBlock reads again.
    virtual void UnloadData();

    /// Reads the descriptive part only; the blocks that have one override it.
    virtual bool ReadMetaData();

    /// Reads what the document says of other blocks, and no data file. The block stays without its
    /// data.
    bool ReadOutline(ZRFxOutline* outline);

    /// Read some items of an array from the file, from the item `first` on, into memory for so many
    /// values, which must be whole items. Nothing else of the block is read, but its document.
    /// `group` counts the groups of elements from 0.
    bool ReadPart(ZRFxArrayKind kind, int group, std::int64_t first, float* values,
                  std::int64_t numValues) const;
    bool ReadPart(ZRFxArrayKind kind, int group, std::int64_t first, std::int32_t* values,
                  std::int64_t numValues) const;

    /// About how many bytes of data are in memory.
    virtual std::uint64_t GetDataSize() const { return 0; }

    int GetID() const { return m_iID; }
    int GetType() const { return m_iType; }
    ZRFxBlockStore* GetDatabase() const { return m_pDatabase; }
    bool IsRead() const { return m_bRead; }

    /// The entry name of the block's document, as the table of contents has it.
    const ZRString& GetFileName() const { return m_sFileName; }
    void SetFileName(const ZRString& fileName) { m_sFileName = fileName; }

    /// The base name of all files of the block: Nodes\Nodes0001 for nodes of id 1.
    ZRString GetFilebase() const;

protected:
    /// Attaches a block to the database that it is written into. From Start on, what came to be
    /// written of the block is taken out again, unless it ends well.
    class Writing {
    public:
        Writing(ZRFxBlock* pBlock, ZRFxBlockStore* pDatabase);
        Writing(const Writing&) = delete;
        Writing& operator=(const Writing&) = delete;
        ~Writing();

        void Start();
        bool End(bool isWritten) { return m_bWritten = isWritten; }

    private:
        ZRFxBlock& m_block;
        ZRString m_sOwnFileName;
        ZRFxBlockStore* m_pDatabase;
        ZRFxBlockStore* m_pOwnDatabase;
        bool m_bStarted = false;
        bool m_bWritten = false;
    };

    ZRFxBlock(ZRFxBlockStore* pDatabase, int id, int type);

    /// Reads what lies below the root, data files included.
    virtual bool DoReadBlock(const nvf::XmlElement& root) = 0;

    /// Whether the contents can be stored and read back; reports why not. Called before anything
    /// is written, with the database that it is for.
    virtual bool CheckContents() const { return true; }

    /// Writes the data files and what lies below the root.
    virtual bool DoWriteBlock(nvf::XmlElement root) = 0;

    /// Adds what the block says of others: from its document, as data files may not have been read,
    /// or from its contents, if there are none.
    virtual void DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const = 0;

    /// Whether the outline comes from the contents, which the document then holds whole.
    virtual bool OutlinesContents() const { return false; }

    /// Finds the file of an array. False, without a message, when the block has no such array.
    virtual bool FindArray(const nvf::XmlElement&, ZRFxArrayKind, int /*group*/,
                           ZRFxArrayFile*) const {
        return false;
    }

    /// Drops the contents of the derived block.
    virtual void DoUnloadData() = 0;

    /// Loads the document; null, with a message, when it is not this block's.
    nvf::XmlElement GetRootElement(nvf::XmlDocument* pDoc) const;
    nvf::XmlElement CreateRootElement(nvf::XmlDocument* pDoc) const;
    bool WriteXml(const nvf::XmlDocument& doc);

    /// The block's document as messages name it: the entry that it was read from, or else the one
    /// that it goes to.
    ZRString GetDocumentName() const;

    /// The base name of the files of one of several numbered parts: Elements\Elements0001-0002.
    ZRString GetFilebase(std::int64_t number) const;

    /// Reports that a file does not hold what the rest of the block needs; false. `what` names the
    /// items, in the plural.
    bool FailUnfit(const ZRString& file, const char* what, std::int64_t found,
                   std::int64_t expected) const;

    /// Whether there are as many as expected; reports it where not.
    bool CheckCount(const ZRString& file, const char* what, std::int64_t found,
                    std::int64_t expected) const {
        return found == expected || FailUnfit(file, what, found, expected);
    }

    /// Writes an array to a data file and records it under a key of the element.
    bool WriteFile(nvf::XmlElement element, const char* key, const ZRString& name,
                   const ZRIntArray& items);
    bool WriteFile(nvf::XmlElement element, const char* key, const ZRString& name,
                   const ZRFloatArray& items);
    bool WriteFile(nvf::XmlElement element, const char* key, const ZRString& name,
                   const ZRVec3fArray& items);

    /// Reads the data file recorded under a key of the element. A missing record is a failure
    /// without message.
    bool ReadFile(const nvf::XmlElement& element, const char* key, ZRIntArray* items) const;
    bool ReadFile(const nvf::XmlElement& element, const char* key, ZRFloatArray* items) const;
    bool ReadFile(const nvf::XmlElement& element, const char* key, ZRVec3fArray* items) const;

    /// Whether no item is negative or above the highest; reports the first that is.
    bool CheckIndices(const ZRString& file, const char* what, const ZRIntArray& indices,
                      std::int32_t highest = std::numeric_limits<std::int32_t>::max()) const;

    /// The highest of some indices; -1 when there are none.
    static std::int32_t HighestOf(const ZRIntArray& indices);

    /// The highest index that can be stored where indices count from 1 in the file.
    static constexpr std::int32_t kHighestFromOne = std::numeric_limits<std::int32_t>::max() - 1;

    /// Whether contents are in memory, read or built there.
    void SetRead(bool isRead) { m_bRead = isRead; }
    nvf::Logger& Log() const { return *m_logger; }

    ZRFxBlockStore* m_pDatabase;

private:
    template <typename Value>
    bool ReadPartOf(ZRFxArrayKind kind, int group, std::int64_t first, Value* values,
                    std::int64_t numValues) const;
    bool FailRange(std::int64_t numItems, std::int64_t first, std::int64_t numValues) const;
    bool WriteFiles();

    int m_iID;
    int m_iType;
    ZRString m_sFileName;
    bool m_bRead = false;
    bool m_bMetaDataRead = false;
    nvf::ref<nvf::Logger> m_logger;
};

}  // namespace unstruct
