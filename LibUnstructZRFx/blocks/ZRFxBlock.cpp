#include "blocks/ZRFxBlock.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "access/ZROZRFxAccess.h"
#include "blocks/ZRFxBlockStore.h"
#include "documents/ZRFxFileRecord.h"
#include "documents/ZRFxXml.h"
#include "nvf/Assert.h"
#include "nvf/LogManager.h"

namespace unstruct {
namespace {

// With four digits or more.
void appendNumber(std::int64_t number, std::string* text) {
    if (number < 0) text->push_back('-');
    const std::string digits = std::to_string(number < 0 ? -number : number);
    text->append(digits.size() < 4 ? 4 - digits.size() : 0, '0').append(digits);
}

}  // namespace

ZRFxBlock::Writing::Writing(ZRFxBlock* pBlock, ZRFxBlockStore* pDatabase)
    : m_block(*pBlock), m_sOwnFileName(pBlock->m_sFileName), m_pDatabase(pDatabase) {
    m_pOwnDatabase = std::exchange(m_block.m_pDatabase, pDatabase);
}

ZRFxBlock::Writing::~Writing() {
    if (m_bStarted) m_pDatabase->SetReplacing(false);
    if (m_bStarted && !m_bWritten) m_pDatabase->RemoveBlock(m_block);
    m_block.m_pDatabase = m_pOwnDatabase;
    const bool isItsOwn = m_bWritten && m_pDatabase == m_pOwnDatabase;
    if (!isItsOwn) std::swap(m_block.m_sFileName, m_sOwnFileName);
}

void ZRFxBlock::Writing::Start() {
    m_bStarted = true;
    m_pDatabase->SetReplacing(true);
}

ZRFxBlock::ZRFxBlock(ZRFxBlockStore* pDatabase, int id, int type)
    : m_pDatabase(pDatabase),
      m_iID(id),
      m_iType(type),
      m_logger(pDatabase ? pDatabase->GetLogger() : nvf::archiveLogger()) {}

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

bool ZRFxBlock::ReadOutline(ZRFxOutline* outline) {
    NVF_ASSERT(m_pDatabase && outline);
    if (!m_pDatabase || !outline) return false;
    const ZRFxAccess::BoundedReading bounded(m_pDatabase->GetAccess());
    nvf::XmlDocument doc;
    const nvf::XmlElement root = GetRootElement(&doc);
    if (root.isNull()) return Log().fail("Invalid XML");
    if (OutlinesContents() && !DoReadBlock(root)) return false;
    *outline = ZRFxOutline();
    DoOutline(root, outline);
    m_bRead = false;
    return true;
}

bool ZRFxBlock::ReadPart(ZRFxArrayKind kind, int group, std::int64_t first, float* values,
                         std::int64_t numValues) const {
    return ReadPartOf(kind, group, first, values, numValues);
}

bool ZRFxBlock::ReadPart(ZRFxArrayKind kind, int group, std::int64_t first, std::int32_t* values,
                         std::int64_t numValues) const {
    return ReadPartOf(kind, group, first, values, numValues);
}

ZRString ZRFxBlock::GetFilebase() const {
    const std::string typeName = ZRFxBlockTypeName(m_iType).Bytes();
    std::string base;
    base.reserve(2 * typeName.size() + 20);
    base.append(typeName).append(1, kFolderSeparator).append(typeName);
    appendNumber(m_iID, &base);
    return base;
}

ZRString ZRFxBlock::GetDocumentName() const {
    const bool isNew = m_sFileName.IsBlank() && m_pDatabase;
    return isNew ? m_pDatabase->EntryName(GetFilebase() + ".xml") : m_sFileName;
}

ZRString ZRFxBlock::GetFilebase(std::int64_t number) const {
    std::string base = GetFilebase().Bytes() + "-";
    appendNumber(number, &base);
    return base;
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

std::int32_t ZRFxBlock::HighestOf(const ZRIntArray& indices) {
    std::int32_t highest = -1;
    for (const std::int32_t index : indices) highest = std::max(highest, index);  // no branches
    return highest;
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

template <typename Value>
bool ZRFxBlock::ReadPartOf(ZRFxArrayKind kind, int group, std::int64_t first, Value* values,
                           std::int64_t numValues) const {
    NVF_ASSERT(m_pDatabase);
    if (!m_pDatabase) return false;
    const ZRFxAccess::BoundedReading bounded(m_pDatabase->GetAccess());
    nvf::XmlDocument doc;
    const nvf::XmlElement root = GetRootElement(&doc);
    ZRFxArrayFile file;
    if (root.isNull()) return Log().fail("Invalid XML");
    if (!FindArray(root, kind, group, &file)) {
        return Log().failBecause(nvf::Reason::NOT_FOUND, "%1 block ID %2 has no such array",
                                 ZRFxBlockTypeName(m_iType), m_iID);
    }
    const std::int64_t count = numValues / file.valuesPerItem;
    const bool areItems = numValues >= 0 && numValues % file.valuesPerItem == 0;
    if (!areItems || first < 0 || first > file.numItems - count) {
        return FailRange(file.numItems, first, numValues);
    }
    if (count == 0) return true;
    if (!m_pDatabase->ReadPart(file.name, file.numItems, file.valuesPerItem, first, count,
                               values)) {
        return false;
    }
    if (file.added == 0) return true;
    for (std::int64_t i = 0; i < numValues; ++i) values[i] += static_cast<Value>(file.added);
    return true;
}

bool ZRFxBlock::FailRange(std::int64_t numItems, std::int64_t first, std::int64_t numValues) const {
    return Log().failBecause(
        nvf::Reason::INVALID_ARGUMENT,
        "%1 block ID %2 has %3 items, %4 values from item %5 on were asked for",
        ZRFxBlockTypeName(m_iType), m_iID, numItems, numValues, first);
}

bool ZRFxBlock::WriteFiles() {
    nvf::XmlDocument* doc = m_pDatabase->DocumentToWrite();
    const bool isWritten =
        DoWriteBlock(CreateRootElement(doc)) && (WriteXml(*doc) || Log().fail("File write error"));
    doc->clear();
    return isWritten;
}

bool ZRFxBlock::WriteXml(const nvf::XmlDocument& doc) {
    const nvf::ref<ZRFxBlock> replaced = m_pDatabase->GetBlockByID(m_iType, m_iID);
    const ZRString fileName = m_pDatabase->EntryName(GetFilebase() + ".xml");
    std::optional<ZRFxOutline> outline;
    if (!OutlinesContents()) DoOutline(doc.getRootElement(), &outline.emplace());
    m_pDatabase->NoteWriting(*this, std::move(outline));
    if (!m_pDatabase->StoreBlock(ZRFxBlockTypeName(m_iType), m_iID, fileName, doc, true)) {
        return false;
    }
    m_sFileName = fileName;
    return true;
}

}  // namespace unstruct
