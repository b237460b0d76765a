#pragma once

#include <optional>

#include "ZRString.h"
#include "access/ZRFxDataFolder.h"
#include "blocks/ZRFxOutline.h"
#include "nvf/XmlDocument.h"

namespace unstruct {

class ZRFxBlock;
class ZRFxListContent;
class ZRFxListDocument;

/// The database that blocks are read from and written to, as far as they need it: their documents
/// by type and id, and, through its base, the data files of its folder. Operations that fail log
/// why and give false.
class ZRFxBlockStore : public ZRFxDataFolder {
public:
    using ZRFxDataFolder::ZRFxDataFolder;
    virtual ~ZRFxBlockStore() = default;

    /// Where a block makes its document. All blocks use the same one after each other, and so the
    /// memory that it has.
    nvf::XmlDocument* DocumentToWrite() { return &m_documentToWrite; }

    /// Notes that a block is about to be stored, with its outline unless that is to be read.
    virtual void NoteWriting(const ZRFxBlock& block, std::optional<ZRFxOutline> outline) = 0;

    /// The significant digits that result values keep; 0 for all.
    virtual int GetSignificantDigits() const = 0;

    /// Stores the document of a block, which then belongs to the database. Fails for a type without
    /// blocks and for a negative id, with which the database could not be opened again.
    virtual bool StoreBlock(const ZRString& typeName, int id, const ZRString& fileName,
                            const nvf::XmlDocument& xmlDoc, bool overwrite) = 0;

    /// The same for a block that is a list, of which only what has changed is stored. If that
    /// fails, the block that the database already has stays as it is.
    virtual bool StoreListBlock(const ZRFxBlock& block, const ZRString& fileName,
                                const ZRFxListContent& content, ZRFxListDocument* document) = 0;

    /// Removes the document and the data files that the database has of the block of this type and
    /// id, so that they can be written again. The time it takes does not grow with the file.
    virtual bool RemoveBlockFiles(const ZRFxBlock& block) = 0;

    /// Removes every trace of a block that was written in part. Throws nothing: files stay, as part
    /// of no block, if there is no memory to find them.
    virtual void RemoveBlock(const ZRFxBlock& block) = 0;

    /// The block of this type and id; null, without a message, when there is none.
    virtual ZRFxBlock* GetBlockByID(int type, int id) const = 0;

    /// Reads a document by its entry name, whole or relative to the folder.
    virtual bool ReadXmlFile(const ZRString& fileName, nvf::XmlDocument* doc) const = 0;

private:
    nvf::XmlDocument m_documentToWrite;
};

}  // namespace unstruct
