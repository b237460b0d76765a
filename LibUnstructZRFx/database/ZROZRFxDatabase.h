#pragma once

#include <array>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "ZRString.h"
#include "access/ZRFxListDocument.h"
#include "access/ZROZRFxAccess.h"
#include "blocks/ZRFxBlock.h"
#include "blocks/ZRFxBlockStore.h"
#include "nvf/XmlDocument.h"
#include "types/ZRFxBlockType.h"
#include "types/ZRFxModelTypes.h"

namespace unstruct {

/// What becomes of a database with blocks that do not fit: it cannot be opened, or, for programs
/// that examine files, it opens without them.
enum class ZRFxParseMode { STRICT, LENIENT };

/// One model database of a ZRFx file: a folder of the archive with "Database.xml", the table of
/// contents "Database-TOC.xml" and the documents and data files of its blocks. Holds an entry for
/// each block, by type and sorted by id, but no block's data; data files are written and read
/// through its base. Used by one thread at a time. Operations that fail log why and give false.
class ZRFxDatabase : public ZRFxBlockStore {
public:
    explicit ZRFxDatabase(ZRFxAccess* pAccess);

    /// Starts a new database and registers it. Its id must not be negative, nor in use.
    bool Create(const ZRString& name, int id, const ZRString& sourceName,
                ZRFEMSimulationType simulationType, ZRFEMSolutionType solutionType,
                const ZRString& description);

    /// Opens the database of an id: its description, and the entries of its blocks from the table
    /// of contents or, where a writer did not come to store one, from the documents in its folder.
    /// The first block that does not fit ends it and leaves the database empty. The lenient mode
    /// reports what does not fit and goes on, with the registry's folder for a missing description
    /// and with the folder's documents for a missing table of contents; no block is looked into.
    bool Parse(int id, ZRFxParseMode mode = ZRFxParseMode::STRICT);

    /// Takes over what was committed since the database was parsed, or refreshed last, which the
    /// archive has found. Takes time with what is new, where the table of contents only grew. A
    /// failure may leave some of the new blocks out.
    bool Refresh(const ZRFxArchiveChanges& changes);

    /// Stores the table of contents in place of the one stored before.
    bool WriteTOC();

    /// Whether the table of contents has changed since it was stored or read.
    bool IsTOCModified() const { return m_bTOCModified; }

    // Called by blocks. A block whose document is stored is entered in the table of contents, where
    // each type and id stands once; a block that is removed is taken out of it.
    bool StoreBlock(const ZRString& typeName, int id, const ZRString& fileName,
                    const nvf::XmlDocument& xmlDoc, bool overwrite) override;
    bool StoreListBlock(const ZRFxBlock& block, const ZRString& fileName,
                        const ZRFxListContent& content, ZRFxListDocument* document) override;
    bool RemoveBlockFiles(const ZRFxBlock& block) override;
    void RemoveBlock(const ZRFxBlock& block) override;

    /// Adds an entry, and takes out the one of the same type and id if there is one.
    bool AddBlock(ZRFxBlock* block, bool* replaced);

    int GetID() const { return m_iID; }
    const ZRString& GetName() const { return m_sName; }
    const ZRString& GetSourceName() const { return m_sSourceName; }
    ZRFEMSimulationType GetSimulationType() const { return m_eSimulationType; }
    ZRFEMSolutionType GetSolutionType() const { return m_eSolutionType; }
    const ZRString& GetDescription() const { return m_sDescription; }

    int GetNumBlocks(int type) const;
    ZRFxBlock* GetBlock(int type, int index) const;

    ZRFxBlock* GetBlockByID(int type, int id) const override;

    /// A new object for the block of a type and id, with nothing loaded; null, without a message,
    /// when there is none.
    nvf::ref<ZRFxBlock> OpenBlock(int type, int id);

    /// Over all types, by type and then by id.
    int GetNumBlocks() const;
    ZRFxBlock* GetBlock(int globalIndex) const;

    bool ReadXmlFile(const ZRString& fileName, nvf::XmlDocument* doc) const override;

private:
    using BlockArray = std::vector<nvf::ref<ZRFxBlock>>;
    using BlockKey = std::pair<int, int>;  // type and id

    // What leads to one block: a line of the table of contents, or a document of the folder.
    struct BlockLine {
        ZRString typeName;
        int id;
        ZRString fileName;
    };

    // The lines of the table of contents, in the order in which they were entered.
    class TOC : public ZRFxListContent {
    public:
        explicit TOC(int databaseId) : m_databaseId(databaseId) {}

        /// False when the line is there already.
        bool Enter(const BlockLine& line);
        bool Remove(const BlockKey& key);
        bool Store(ZRFxAccess* pAccess, const ZRString& name);

    private:
        nvf::XmlElement WriteHead(nvf::XmlDocument* pDoc) const override;
        void WriteItem(nvf::XmlElement root, std::int64_t index) const override;
        std::int64_t GetItemCount() const override;

        const int m_databaseId;
        std::vector<BlockLine> m_lines;
        std::map<BlockKey, std::size_t> m_indices;
        ZRFxListDocument m_document;
    };

    nvf::ref<nvf::XmlDocument> CreateDescription() const;
    bool FailID(int id) const;
    bool HasLeftDescription() const;
    void StartTOC();
    /// Takes a block out of the table of contents and of the entries.
    void RemoveEntry(const ZRFxBlock& block);
    void EnterInTOC(const BlockLine& line);

    void Clear();
    bool ParseDescription(const ZRFxDatabaseInfo& info);
    bool ParseBlocks();
    bool ParseTOC(ZRFxParseMode mode, std::vector<BlockLine>* lines);
    bool RefreshTOC(std::uint64_t kept);
    bool RefreshMetaData(const ZRFxArchiveChanges& changes);
    void KeepBlocksOf(const std::vector<BlockLine>& lines);
    bool ParseFolder(ZRFxParseMode mode, std::vector<BlockLine>* lines);
    bool TakeBlockLine(const BlockLine& line, std::vector<BlockLine>* lines);
    bool TakeTOCLines(const nvf::XmlElement& root, ZRFxParseMode mode,
                      std::vector<BlockLine>* lines);
    bool TakeTOCLine(const BlockLine& line, std::vector<BlockLine>* lines);
    bool TakeDocument(const ZRString& file, std::vector<BlockLine>* lines);
    bool AddParsedBlocks(std::vector<BlockLine>& lines, const char* metaDataMessage);
    void AddAllBlocks(std::vector<BlockLine>& lines);
    bool ParseWhatFits(const ZRFxDatabaseInfo& info);
    nvf::ref<ZRFxBlock> CreateEntry(int type, int id, const ZRString& fileName);

    int m_iID = -1;
    ZRString m_sName;
    ZRString m_sSourceName;
    ZRFEMSimulationType m_eSimulationType = ZRFEMSimulationType::OTHER;
    ZRFEMSolutionType m_eSolutionType = ZRFEMSolutionType::OTHER;
    ZRString m_sDescription;
    std::array<BlockArray, kNumBlockTypes> m_apBlocks;
    std::unique_ptr<TOC> m_pTOC;
    bool m_bTOCModified = false;
    bool m_bHasTOC = false;       // The blocks were found in one.
    std::uint64_t m_nTOCEnd = 0;  // Of the lines that were taken from the stored one; 0 if unknown.
};

}  // namespace unstruct
