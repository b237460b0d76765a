#include "blocks/ZRFxBlock.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>

#include "access/ZROZRFxAccess.h"
#include "blocks/ZRFxBlockStore.h"
#include "documents/ZRFxFileRecord.h"
#include "documents/ZRFxXml.h"
#include "nvf/Assert.h"
#include "nvf/LogManager.h"

namespace unstruct {

ZRFxBlock::Writing::Writing(ZRFxBlock* pBlock, ZRFxBlockStore* pDatabase)
    : m_block(*pBlock), m_sOwnFileName(pBlock->m_sFileName), m_pDatabase(pDatabase) {
    m_pOwnDatabase = std::exchange(m_block.m_pDatabase, pDatabase);
}

ZRFxBlock::Writing::~Writing() {
    if (m_bStarted) m_pDatabase->SetReplacing(false);
    if (m_bStarted && !m_bWritten) m_pDatabase->RemoveBlock(m_block);
    m_block.m_pDatabase = m_pOwnDatabase;
    const bool bIsItsOwn = m_bWritten && m_pDatabase == m_pOwnDatabase;
    if (!bIsItsOwn) std::swap(m_block.m_sFileName, m_sOwnFileName);
}

void ZRFxBlock::Writing::Start() {
    m_bStarted = true;
    m_pDatabase->SetReplacing(true);
}

ZRFxBlock::ZRFxBlock(ZRFxBlockStore* pDatabase, int id, int type)
    : m_pDatabase(pDatabase), m_iID(id), m_iType(type), m_logger(nvf::archiveLogger()) {}

bool ZRFxBlock::ReadBlock() {
    NVF_ASSERT(m_pDatabase);
    if (!m_pDatabase) return false;
    if (m_bRead) return true;
    const ZRFxAccess::BoundedReading bounded(m_pDatabase->GetAccess());
    nvf::XmlDocument doc;
    const nvf::XmlElement root = GetRootElement(&doc);
    if (root.isNull()) return Log().fail("Invalid XML");
    m_bRead = DoReadBlock(root);  // filling the block from a damaged document set it on the way
    return m_bRead;
}

bool ZRFxBlock::WriteBlock() {
    NVF_ASSERT(m_pDatabase);
    return m_pDatabase && CheckContents() && WriteFiles();
}

bool ZRFxBlock::WriteBlock(ZRFxBlockStore* pDatabase) {
    NVF_ASSERT(pDatabase);
    if (!pDatabase) return false;
    // Keeps this block alive where it is itself the entry that the database replaces.
    const nvf::ref<ZRFxBlock> replaced = pDatabase->GetBlockByID(m_iType, m_iID);
    Writing writing(this, pDatabase);
    if (!CheckContents()) return false;
    writing.Start();
    return writing.End(pDatabase->RemoveBlockFiles(*this) && WriteFiles());
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

ZRString ZRFxBlock::GetDocumentName() const {
    const bool isNew = m_sFileName.IsBlank() && m_pDatabase;
    return isNew ? m_pDatabase->EntryName(GetFilebase() + ".xml") : m_sFileName;
}

ZRString ZRFxBlock::GetFilebase(std::int64_t number) const {
    char suffix[32];
    std::snprintf(suffix, sizeof(suffix), "-%.4lld", static_cast<long long>(number));
    return GetFilebase() + suffix;
}

bool ZRFxBlock::FailUnfit(const ZRString& file, const char* what, std::int64_t found,
                          std::int64_t expected) const {
    return Log().fail("%1 block ID %2: '%3' holds %4 %5, expected %6", ZRFxBlockTypeName(m_iType),
                      m_iID, file, found, what, expected);
}

bool ZRFxBlock::WriteFile(nvf::XmlElement element, const char* key, const ZRString& name,
                          const ZRIntArray& items) {
    return m_pDatabase->WriteDataInt(name, items, 1) &&
           AddFileRecord(element, key, {name, items.GetSize(), ZRString()});
}

bool ZRFxBlock::WriteFile(nvf::XmlElement element, const char* key, const ZRString& name,
                          const ZRFloatArray& items) {
    return m_pDatabase->WriteDataFloat(name, items) &&
           AddFileRecord(element, key, {name, items.GetSize(), ZRString()});
}

bool ZRFxBlock::WriteFile(nvf::XmlElement element, const char* key, const ZRString& name,
                          const ZRVec3fArray& items) {
    return m_pDatabase->WriteDataVector(name, items) &&
           AddFileRecord(element, key, {name, items.GetSize(), ZRString()});
}

bool ZRFxBlock::ReadFile(const nvf::XmlElement& element, const char* key, ZRIntArray* items) const {
    ZRFxFileRecord file;
    return GetFileRecord(element, key, &file) &&
           m_pDatabase->ReadDataInt(file.filename, file.numItems, items);
}

bool ZRFxBlock::ReadFile(const nvf::XmlElement& element, const char* key,
                         ZRFloatArray* items) const {
    ZRFxFileRecord file;
    return GetFileRecord(element, key, &file) &&
           m_pDatabase->ReadDataFloat(file.filename, file.numItems, items);
}

bool ZRFxBlock::ReadFile(const nvf::XmlElement& element, const char* key,
                         ZRVec3fArray* items) const {
    ZRFxFileRecord file;
    return GetFileRecord(element, key, &file) &&
           m_pDatabase->ReadDataVector(file.filename, file.numItems, items);
}

bool ZRFxBlock::CheckIndices(const ZRString& file, const char* what, const ZRIntArray& indices,
                             std::int32_t highest) const {
    const auto isIndex = [=](std::int32_t index) { return index >= 0 && index <= highest; };
    bool areIndices = true;
    for (const std::int32_t index : indices) areIndices &= isIndex(index);  // no branches
    if (areIndices) return true;
    const auto wrong = std::find_if_not(indices.begin(), indices.end(), isIndex);
    const std::string expected = *wrong < 0 ? "none below 0" : "at most " + std::to_string(highest);
    return Log().fail("%1 block ID %2: '%3' holds %4 %5 at position %6, expected %7",
                      ZRFxBlockTypeName(m_iType), m_iID, file, what, *wrong,
                      wrong - indices.begin(), ZRString(expected));
}

nvf::XmlElement ZRFxBlock::GetRootElement(nvf::XmlDocument* pDoc) const {
    NVF_ASSERT(pDoc);
    NVF_ASSERT(m_pDatabase);
    if (!pDoc || !m_pDatabase || !m_pDatabase->ReadXmlFile(m_sFileName, pDoc)) {
        return nvf::XmlElement();
    }
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

bool ZRFxBlock::WriteFiles() {
    nvf::XmlDocument doc;
    if (!DoWriteBlock(CreateRootElement(&doc))) return false;
    return WriteXml(doc) || Log().fail("File write error");
}

bool ZRFxBlock::WriteXml(const nvf::XmlDocument& doc) {
    const nvf::ref<ZRFxBlock> replaced = m_pDatabase->GetBlockByID(m_iType, m_iID);
    const ZRString fileName = m_pDatabase->EntryName(GetFilebase() + ".xml");
    if (!m_pDatabase->StoreBlock(ZRFxBlockTypeName(m_iType), m_iID, fileName, doc, true)) {
        return false;
    }
    m_sFileName = fileName;
    return true;
}

}  // namespace unstruct
