#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "ZRString.h"
#include "blocks/ZRFxBlock.h"
#include "blocks/ZRFxBlockStore.h"
#include "database/ZRFxParseMode.h"
#include "database/ZRFxWrittenBlocks.h"
#include "nvf/Logger.h"
#include "nvf/XmlDocument.h"
#include "types/ZRFxBlockType.h"
#include "types/ZRFxModelTypes.h"

namespace unstruct {

class ZRFxTableOfContents;
struct ZRFxArchiveChanges;
struct ZRFxBlockLine;
struct ZRFxDatabaseInfo;

/// One model database of a ZRFx file: a folder of the archive with "Database.xml", the table of
/// contents "Database-TOC.xml" and the documents and data files of its blocks. Holds an entry for
/// each block, by type and sorted by id, but no block's data; data files are written and read
/// through its base. Used by one thread at a time. Operations that fail log why and give false.
class ZRFxDatabase : public ZRFxBlockStore {
public:
    explicit ZRFxDatabase(ZRFxAccess* pAccess);
    ~ZRFxDatabase() override;

    /// Starts a new database and registers it. Its id must not be negative, nor in use.
    bool Create(const ZRString& name, int id, const ZRString& sourceName,
                ZRFEMSimulationType simulationType, ZRFEMSolutionType solutionType,
                const ZRString& description);

    /// Opens the database of an id: reads its description, and the entries of its blocks from the
    /// table of contents or, if the writer did not get to store one, from the documents in the
    /// folder. The first block that does not fit ends this and leaves the database empty. The
    /// lenient mode reports it and goes on; it does without a description, with the folder that the
    /// registry names, and looks into no block.
    bool Parse(int id, ZRFxParseMode mode = ZRFxParseMode::STRICT);

    /// Takes over what was committed since the database was parsed or refreshed last, given the
    /// changes that the archive has found. The time it takes grows with what is new, as long as the
    /// table of contents only grew. After a failure some of the new blocks may be missing.
    bool Refresh(const ZRFxArchiveChanges& changes);

    /// Stores the table of contents in place of the one stored before.
    bool WriteTOC();

    /// Whether the table of contents has changed since it was stored or read.
    bool IsTOCModified() const;

    // Called by blocks. A block whose document is stored is entered in the table of contents, where
    // each type and id stands once; a block that is removed is taken out of it.
    void NoteWriting(const ZRFxBlock& block, std::optional<ZRFxOutline> outline) override;
    bool StoreBlock(const ZRString& typeName, int id, const ZRString& fileName,
                    const nvf::XmlDocument& xmlDoc, bool overwrite) override;
    bool StoreListBlock(const ZRFxBlock& block, const ZRString& fileName,
                        const ZRFxListContent& content, ZRFxListDocument* document) override;
    bool RemoveBlockFiles(const ZRFxBlock& block) override;
    void RemoveBlock(const ZRFxBlock& block) override;

    /// Adds an entry in place of the one of the same type and id; *replaced says whether there was
    /// one.
    bool AddBlock(ZRFxBlock* block, bool* replaced);

    /// Lets result values that are written from now on keep so many significant digits, 1 to 7;
    /// 0 lets them keep all.
    void SetSignificantDigits(int digits) { m_iSignificantDigits = digits; }
    int GetSignificantDigits() const override { return m_iSignificantDigits; }

    /// What was written since the database was created or parsed, whether that succeeded or not.
    const ZRFxWrittenBlocks& GetWrittenBlocks() const { return m_written; }

    int GetID() const { return m_iID; }
    const ZRString& GetName() const { return m_sName; }
    const ZRString& GetSourceName() const { return m_sSourceName; }
    ZRFEMSimulationType GetSimulationType() const { return m_eSimulationType; }
    ZRFEMSolutionType GetSolutionType() const { return m_eSolutionType; }
    const ZRString& GetDescription() const { return m_sDescription; }

    int GetNumBlocks(int type) const;
    ZRFxBlock* GetBlock(int type, int index) const;

    ZRFxBlock* GetBlockByID(int type, int id) const override;

    /// The bytes of a block's files, unpacked.
    std::uint64_t GetStoredSize(const ZRFxBlock& block) const;

    /// A new object for the block of a type and id, with nothing loaded; null, without a message,
    /// when there is none.
    nvf::ref<ZRFxBlock> OpenBlock(int type, int id);

    /// Over all types, by type and then by id.
    int GetNumBlocks() const;
    ZRFxBlock* GetBlock(int globalIndex) const;

    bool ReadXmlFile(const ZRString& fileName, nvf::XmlDocument* doc) const override;

private:
    using BlockArray = std::vector<nvf::ref<ZRFxBlock>>;

    nvf::ref<nvf::XmlDocument> CreateDescription() const;
    bool FailID(int id) const;
    bool HasLeftDescription() const;
    void StartTOC();
    void RemoveEntry(const ZRFxBlock& block);
    void PrepareTOC();
    void EnterInTOC(const ZRFxBlockLine& line);

    void Clear();
    bool ParseDescription(const ZRFxDatabaseInfo& info);
    bool ParseBlocks();
    bool ParseWhatFits(const ZRFxDatabaseInfo& info);
    bool RefreshTOC(std::uint64_t kept);
    bool RefreshMetaData(const ZRFxArchiveChanges& changes);
    void KeepBlocksOfTOC();
    bool AddNewBlocks(std::size_t firstLine, const char* metaDataMessage);
    void AddAllBlocks();
    nvf::ref<ZRFxBlock> CreateEntry(const ZRFxBlockLine& line);
    bool FailBlock(nvf::LocatedText message, const ZRFxBlockLine& line) const;

    int m_iID = -1;
    ZRString m_sName;
    ZRString m_sSourceName;
    ZRFEMSimulationType m_eSimulationType = ZRFEMSimulationType::OTHER;
    ZRFEMSolutionType m_eSolutionType = ZRFEMSolutionType::OTHER;
    ZRString m_sDescription;
    std::array<BlockArray, kNumBlockTypes> m_apBlocks;
    std::unique_ptr<ZRFxTableOfContents> m_pTOC;
    ZRFxWrittenBlocks m_written;
    int m_iSignificantDigits = 0;
    bool m_bHasTOC = false;       // The blocks were found in a stored one.
    std::uint64_t m_nTOCEnd = 0;  // Of the lines taken from the stored one, in bytes; 0 if unknown.
};

}  // namespace unstruct
