#include "ZROZRFxBlock.h"

#include <cstdio>

#include "ZROZRFxDatabase.h"
#include "ZROZRFxXml.h"
#include "nvf/Assert.h"
#include "nvf/LogManager.h"

namespace unstruct {

ZRFxBlock::ZRFxBlock(ZRFxDatabase* pDatabase, int id, int type)
    : m_pDatabase(pDatabase), m_iID(id), m_iType(type), m_logger(nvf::archiveLogger()) {}

bool ZRFxBlock::ReadBlock() {
    NVF_ASSERT(m_pDatabase);
    if (!m_pDatabase) return false;
    if (m_bRead) return true;
    nvf::XmlDocument doc;
    const nvf::XmlElement root = GetRootElement(&doc);
    if (root.isNull()) return Log().fail("Invalid XML");
    if (!DoReadBlock(root)) return false;
    m_bRead = true;
    return true;
}

bool ZRFxBlock::WriteBlock() {
    NVF_ASSERT(m_pDatabase);
    if (!m_pDatabase) return false;
    nvf::XmlDocument doc;
    if (!DoWriteBlock(CreateRootElement(&doc))) return false;
    return WriteXml(doc) || Log().fail("File write error");
}

bool ZRFxBlock::WriteBlock(ZRFxDatabase* pDatabase) {
    NVF_ASSERT(pDatabase);
    if (!pDatabase) return false;
    ZRFxDatabase* const pOwnDatabase = m_pDatabase;
    const ZRString ownFileName = m_sFileName;
    m_pDatabase = pDatabase;
    const bool isWritten = pDatabase->RemoveBlockFiles(*this) && WriteBlock();
    m_pDatabase = pOwnDatabase;
    if (pDatabase != pOwnDatabase) m_sFileName = ownFileName;
    return isWritten;
}

void ZRFxBlock::UnloadData() {
    DoUnloadData();
    m_bRead = false;
}

bool ZRFxBlock::ReadMetaData() {
    m_bMetaDataRead = true;
    return true;
}

ZRString ZRFxBlock::GetFilebase() const {
    const std::string typeName = ZRFxBlockTypeName(m_iType).Bytes();
    char number[16];
    std::snprintf(number, sizeof(number), "%.4d", m_iID);
    return typeName + kFolderSeparator + typeName + number;
}

nvf::XmlElement ZRFxBlock::GetRootElement(nvf::XmlDocument* pDoc) const {
    NVF_ASSERT(pDoc);
    if (!pDoc || !m_pDatabase->ReadXmlFile(m_sFileName, pDoc)) return nvf::XmlElement();
    const ZRString typeName = ZRFxBlockTypeName(m_iType);
    const nvf::XmlElement root = pDoc->getRootElement(typeName.CStr());
    if (root.isNull()) {
        Log().fail("Illegal root element in %1 block Xml '%2'", typeName, m_sFileName);
        return root;
    }
    const int id = root.getAttributeInt("ID", -1);
    if (id == m_iID) return root;
    Log().fail("%1 block ID %2 in '%3' does not match ID %4 in Database-TOC", typeName, id,
               m_sFileName, m_iID);
    return nvf::XmlElement();
}

nvf::XmlElement ZRFxBlock::CreateRootElement(nvf::XmlDocument* pDoc) const {
    NVF_ASSERT(pDoc);
    if (!pDoc) return nvf::XmlElement();
    nvf::XmlElement root =
        pDoc->createRootElement(ZRFxBlockTypeName(m_iType).CStr(), kNamespaceUri);
    root.setAttributeInt("ID", m_iID);
    return root;
}

bool ZRFxBlock::WriteXml(const nvf::XmlDocument& doc) {
    const ZRString fileName = m_pDatabase->EntryName(GetFilebase() + ".xml");
    if (!m_pDatabase->WriteBlock(ZRFxBlockTypeName(m_iType), m_iID, fileName, doc, true)) {
        return false;
    }
    m_sFileName = fileName;
    return true;
}

}  // namespace unstruct
