#pragma once

#include <utility>
#include <vector>

#include "ZRString.h"
#include "blocks/ZRFxBlockStore.h"
#include "database/ZRFxBlockLine.h"
#include "database/ZRFxParseMode.h"
#include "nvf/Logger.h"

namespace unstruct {

/// Finds the blocks that a database has in its archive, without looking into them. A block that
/// does not fit is reported; in strict mode it ends the search.
class ZRFxBlockFinder {
public:
    /// REQUIRES: the database outlives the finder, and has an archive.
    ZRFxBlockFinder(const ZRFxBlockStore& database, ZRFxParseMode mode);

    /// Finds the blocks that the stored table of contents lists. False in either mode when there is
    /// no table of contents of that database.
    bool FindInTOC(int databaseId);

    /// Finds those that a part of a table of contents lists.
    bool FindInTOC(const nvf::XmlElement& root);

    /// Finds the documents in the folder of the database.
    bool FindInFolder();

    /// Gives what was found, in its order.
    std::vector<ZRFxBlockLine> TakeLines() { return std::move(m_lines); }

    /// Whether an entry of the folder is the document of a block, by its name.
    static bool IsBlockDocument(const ZRString& entry);

private:
    bool TakeElement(const nvf::XmlElement& element);
    bool TakeDocument(const ZRString& file);
    bool TakeLine(const ZRString& typeName, int id, const ZRString& fileName);

    const ZRFxBlockStore& m_database;
    const ZRFxParseMode m_mode;
    std::vector<ZRFxBlockLine> m_lines;
    nvf::ref<nvf::Logger> m_logger;
};

}  // namespace unstruct
