#include "database/ZRFxBlockFinder.h"

#include "access/ZROZRFxAccess.h"
#include "database/ZRFxTableOfContents.h"
#include "documents/ZRFxXml.h"
#include "nvf/LogManager.h"
#include "types/ZRFxBlockType.h"

namespace unstruct {

ZRFxBlockFinder::ZRFxBlockFinder(const ZRFxBlockStore& database, ZRFxParseMode mode)
    : m_database(database), m_mode(mode), m_logger(nvf::archiveLogger()) {}

bool ZRFxBlockFinder::FindInTOC(int databaseId) {
    nvf::XmlDocument doc;
    const ZRString name = m_database.EntryName(ZRFxTableOfContents::kName);
    if (!m_database.GetAccess()->InternalReadXmlFile(name, LogMode::LOG, &doc)) {
        return m_logger->fail("Cannot find database TOC file.");
    }
    const nvf::XmlElement root = doc.getRootElement(ZRFxTableOfContents::kRoot);
    if (root.isNull()) return m_logger->fail("Illegal root element in database TOC file.");
    if (root.getAttributeInt("DatabaseID", -1) != databaseId) {
        return m_logger->fail("Illegal database ID in TOC file.");
    }
    return FindInTOC(root);
}

bool ZRFxBlockFinder::FindInTOC(const nvf::XmlElement& root) {
    for (nvf::XmlElement element = root.firstChildElement(); element.notNull();
         element = element.nextSiblingElement()) {
        if (!TakeElement(element) && m_mode == ZRFxParseMode::STRICT) return false;
    }
    return true;
}

bool ZRFxBlockFinder::FindInFolder() {
    ZRStringArray files;
    if (!m_database.GetAccess()->FindFiles(m_database.GetFolder(), true, &files)) return false;
    for (const ZRString& file : files) {
        if (!IsBlockDocument(file)) continue;
        if (!TakeDocument(file) && m_mode == ZRFxParseMode::STRICT) return false;
    }
    return true;
}

bool ZRFxBlockFinder::IsBlockDocument(const ZRString& entry) {
    const ZRString name = entry.FileName().ToLower();
    return name.Extension() == ".xml" && name != "database.xml" && name != "database-toc.xml";
}

bool ZRFxBlockFinder::TakeElement(const nvf::XmlElement& element) {
    const int id = element.getAttributeInt("ID", -1);
    const ZRString fileName = GetAttribute(element, "File");
    if (fileName.IsBlank()) return m_logger->fail("No filename specified for block.");
    if (id < 0) return m_logger->fail("Invalid ID %1 specified for block", id);
    return TakeLine(ZRString(element.nameUtf8()), id, fileName);
}

bool ZRFxBlockFinder::TakeDocument(const ZRString& file) {
    nvf::XmlDocument doc;
    if (!m_database.ReadXmlFile(file, &doc)) return false;
    const nvf::XmlElement root = doc.getRootElement();
    const ZRString typeName(root.nameUtf8());
    const int id = root.getAttributeInt("ID", -1);
    if (id < 0) {
        return m_logger->fail("Invalid ID specified for block (type '%1', ID %2)", typeName, id);
    }
    return TakeLine(typeName, id, file);
}

bool ZRFxBlockFinder::TakeLine(const ZRString& typeName, int id, const ZRString& fileName) {
    const int type = ZRFxBlockTypeFromName(typeName);
    if (type == kInvalidBlockType) {
        return m_logger->fail("Invalid block type '%1' specified", typeName);
    }
    m_lines.push_back({type, id, fileName});
    return true;
}

}  // namespace unstruct
