#include "database/ZROZRFxDatabase.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <set>
#include <string>
#include <utility>

#include "ZRMakeRoom.h"
#include "documents/ZRFxXml.h"
#include "nvf/Assert.h"

namespace unstruct {
namespace {

constexpr const char* kTOCName = "Database-TOC.xml";

ZRString folderOf(int id) {
    char folder[32];
    std::snprintf(folder, sizeof(folder), "Database%.3d", id);
    return folder;
}

// Where a block of an id stands, or would be inserted, among blocks sorted by id.
template <typename BlockArray>
auto positionOf(BlockArray& blocks, int id) {
    return std::lower_bound(blocks.begin(), blocks.end(), id,
                            [](const auto& block, int wanted) { return block->GetID() < wanted; });
}

// The data files that an element and those below it record, as far as they are named as the files
// of the block are: a document may refer to the files of another block, which stay.
void collectFiles(const nvf::XmlElement& element, const ZRString& base, ZRStringArray* names) {
    for (const char* attribute : {"Filename", "IDs"}) {
        const ZRString name = GetAttribute(element, attribute);
        if (name == base || name.StartsWith(base.Bytes() + "-")) names->push_back(name);
    }
    for (nvf::XmlElement child = element.firstChildElement(); child.notNull();
         child = child.nextSiblingElement()) {
        collectFiles(child, base, names);
    }
}

bool isBlockDocument(const ZRString& entry) {
    const ZRString name = entry.FileName().ToLower();
    return name.Extension() == ".xml" && name != "database.xml" && name != "database-toc.xml";
}

}  // namespace

bool ZRFxDatabase::TOC::Enter(const BlockLine& line) {
    const BlockKey key(ZRFxBlockTypeFromName(line.typeName), line.id);
    const auto found = m_indices.find(key);
    if (found == m_indices.end()) {
        BlockLine added = line;
        MakeRoom(&m_lines);
        m_indices.emplace(key, m_lines.size());
        m_lines.push_back(std::move(added));
        return true;
    }
    BlockLine& entered = m_lines[found->second];
    if (entered.fileName == line.fileName) return false;
    entered.fileName = line.fileName;
    m_document.Touch(static_cast<std::int64_t>(found->second));
    return true;
}

bool ZRFxDatabase::TOC::Remove(const BlockKey& key) {
    const auto found = m_indices.find(key);
    if (found == m_indices.end()) return false;
    const std::size_t removed = found->second;
    m_lines.erase(m_lines.begin() + static_cast<std::ptrdiff_t>(removed));
    m_indices.erase(found);
    for (auto& [other, index] : m_indices) index -= index > removed ? 1 : 0;
    m_document.Touch(static_cast<std::int64_t>(removed));
    return true;
}

bool ZRFxDatabase::TOC::Store(ZRFxAccess* pAccess, const ZRString& name) {
    return m_document.Store(pAccess, name, *this);
}

nvf::XmlElement ZRFxDatabase::TOC::WriteHead(nvf::XmlDocument* pDoc) const {
    nvf::XmlElement root = pDoc->createRootElement("DatabaseTOC", kNamespaceUri);
    root.setAttributeInt("DatabaseID", m_databaseId);
    return root;
}

void ZRFxDatabase::TOC::WriteItem(nvf::XmlElement root, std::int64_t index) const {
    const BlockLine& line = m_lines[static_cast<std::size_t>(index)];
    nvf::XmlElement element = root.addChildElement(line.typeName.CStr());
    element.setAttributeInt("ID", line.id);
    SetAttribute(element, "File", line.fileName);
}

std::int64_t ZRFxDatabase::TOC::GetItemCount() const {
    return static_cast<std::int64_t>(m_lines.size());
}

ZRFxDatabase::ZRFxDatabase(ZRFxAccess* pAccess) : ZRFxBlockStore(pAccess) {}

bool ZRFxDatabase::Create(const ZRString& name, int id, const ZRString& sourceName,
                          ZRFEMSimulationType simulationType, ZRFEMSolutionType solutionType,
                          const ZRString& description) {
    if (!GetAccess()) return false;
    if (id < 0) return FailID(id);
    int numDatabases = 0;
    if (!GetAccess()->GetNumDatabases(&numDatabases)) return Log().fail("File structure error.");
    ZRFxDatabaseInfo existing;
    if (GetAccess()->GetDatabaseByID(id, &existing)) {
        return Log().fail("Database with ID=%1 already exists", id);
    }
    m_iID = id;
    m_sName = name;
    SetFolder(folderOf(id));
    m_sSourceName = sourceName;
    m_eSimulationType = simulationType;
    m_eSolutionType = solutionType;
    m_sDescription = description;
    StartTOC();
    if (!GetAccess()->AddDatabase(*CreateDescription(), HasLeftDescription())) {
        return Log().fail("Error adding database.");
    }
    m_bTOCModified = true;
    return true;
}

bool ZRFxDatabase::Parse(int id, ZRFxParseMode mode) {
    Log().inform("Parsing ZRFx file...");
    const ZRFxAccess::BoundedReading bounded(GetAccess());
    ZRFxDatabaseInfo info;
    if (!GetAccess() || !GetAccess()->GetDatabaseByID(id, &info)) {
        return Log().fail("Database Xml file not found.");
    }
    Clear();
    if (mode == ZRFxParseMode::LENIENT) return ParseWhatFits(info);
    if (ParseDescription(info) && ParseBlocks()) return true;
    Clear();
    return false;
}

bool ZRFxDatabase::Refresh(const ZRFxArchiveChanges& changes) {
    if (!GetAccess() || m_iID < 0) return false;
    const ZRFxAccess::BoundedReading bounded(GetAccess());
    if (changes.bReplaced) return Parse(int{m_iID});
    ZRFxDatabaseInfo info;
    const bool isDescriptionChanged =
        GetAccess()->GetDatabaseByID(m_iID, &info) && changes.kept.count(info.path.Bytes()) > 0;
    if (isDescriptionChanged && !ParseDescription(info)) return false;
    const ZRString toc = EntryName(kTOCName);
    const auto change = changes.kept.find(toc.Bytes());
    // One that was not there when the blocks were found in the folder is new.
    const bool isNew = !m_bHasTOC && GetAccess()->Contains(toc);
    const bool isChanged = isNew || change != changes.kept.end();
    if (isChanged && !RefreshTOC(isNew ? 0 : change->second)) return false;
    return RefreshMetaData(changes);
}

bool ZRFxDatabase::WriteTOC() {
    NVF_ASSERT(m_pTOC);
    if (!m_pTOC || !GetAccess()) return false;
    if (!m_pTOC->Store(GetAccess(), EntryName(kTOCName))) {
        return Log().fail("Cannot write Database TOC to archive.");
    }
    m_bTOCModified = false;
    return true;
}

bool ZRFxDatabase::StoreBlock(const ZRString& typeName, int id, const ZRString& fileName,
                              const nvf::XmlDocument& xmlDoc, bool overwrite) {
    const bool isBlock = id >= 0 && ZRFxBlock::IsStored(ZRFxBlockTypeFromName(typeName));
    if (!isBlock || !GetAccess() || !GetAccess()->WriteXmlFile(fileName, xmlDoc, overwrite)) {
        return Log().fail("Error writing block xml file (type '%1' ID %2)", typeName, id);
    }
    EnterInTOC({typeName, id, fileName});
    bool isReplaced = false;
    return AddBlock(CreateEntry(ZRFxBlockTypeFromName(typeName), id, fileName).p(), &isReplaced);
}

bool ZRFxDatabase::StoreListBlock(const ZRFxBlock& block, const ZRString& fileName,
                                  const ZRFxListContent& content, ZRFxListDocument* document) {
    const ZRString typeName = ZRFxBlockTypeName(block.GetType());
    // A block that the database has already takes no memory once its document is stored.
    const BlockLine line{typeName, block.GetID(), fileName};
    const nvf::ref<ZRFxBlock> entry = CreateEntry(block.GetType(), block.GetID(), fileName);
    if (block.GetID() < 0 || !GetAccess() || !document->Store(GetAccess(), fileName, content)) {
        return Log().fail("Error writing block xml file (type '%1' ID %2)", typeName,
                          block.GetID());
    }
    EnterInTOC(line);
    bool isReplaced = false;
    return AddBlock(entry.p(), &isReplaced);
}

bool ZRFxDatabase::RemoveBlockFiles(const ZRFxBlock& block) {
    const ZRFxBlock* written = GetBlockByID(block.GetType(), block.GetID());
    if (!written || !GetAccess()) return true;
    nvf::XmlDocument doc;
    ZRStringArray files;
    if (ReadXmlFile(written->GetFileName(), &doc)) {
        collectFiles(doc.getRootElement(), block.GetFilebase(), &files);
    }
    return std::all_of(files.begin(), files.end(),
                       [&](const ZRString& file) { return RemoveDataFile(file); }) &&
           GetAccess()->RemoveFile(EntryName(block.GetFilebase()) + ".xml") &&
           GetAccess()->RemoveFile(written->GetFileName());
}

void ZRFxDatabase::RemoveBlock(const ZRFxBlock& block) {
    if (!GetAccess() || !GetAccess()->IsOpen() || GetAccess()->IsReadOnly()) return;
    RemoveEntry(block);
    // Without its line a file is part of nothing.
    try {
        ZRStringArray files;
        GetAccess()->FindFilesOfBase(EntryName(block.GetFilebase()), &files);
        for (const ZRString& file : files) GetAccess()->RemoveFile(file);
    } catch (const std::bad_alloc&) {
        Log().fail("Out of memory, files of block type %1 ID %2 stay in the archive.",
                   block.GetType(), block.GetID());
    }
}

void ZRFxDatabase::RemoveEntry(const ZRFxBlock& block) {
    if (m_pTOC && m_pTOC->Remove({block.GetType(), block.GetID()})) m_bTOCModified = true;
    if (!GetBlockByID(block.GetType(), block.GetID())) return;
    BlockArray& blocks = m_apBlocks[static_cast<std::size_t>(block.GetType())];
    blocks.erase(positionOf(blocks, block.GetID()));
}

bool ZRFxDatabase::AddBlock(ZRFxBlock* block, bool* replaced) {
    NVF_ASSERT(replaced);
    if (!block || !replaced || block->GetType() < 0 || block->GetType() >= kNumBlockTypes) {
        return false;
    }
    const nvf::ref<ZRFxBlock> reference = block;
    BlockArray& blocks = m_apBlocks[static_cast<std::size_t>(block->GetType())];
    const auto position = positionOf(blocks, block->GetID());
    *replaced = position != blocks.end() && (*position)->GetID() == block->GetID();
    if (*replaced) {
        *position = reference;
    } else {
        blocks.insert(position, reference);
    }
    return true;
}

int ZRFxDatabase::GetNumBlocks(int type) const {
    if (type < 0 || type >= kNumBlockTypes) return 0;
    return static_cast<int>(m_apBlocks[static_cast<std::size_t>(type)].size());
}

ZRFxBlock* ZRFxDatabase::GetBlock(int type, int index) const {
    if (index < 0 || index >= GetNumBlocks(type)) return nullptr;
    return m_apBlocks[static_cast<std::size_t>(type)][static_cast<std::size_t>(index)].p();
}

ZRFxBlock* ZRFxDatabase::GetBlockByID(int type, int id) const {
    if (GetNumBlocks(type) == 0) return nullptr;
    const BlockArray& blocks = m_apBlocks[static_cast<std::size_t>(type)];
    const auto position = positionOf(blocks, id);
    return position != blocks.end() && (*position)->GetID() == id ? position->p() : nullptr;
}

nvf::ref<ZRFxBlock> ZRFxDatabase::OpenBlock(int type, int id) {
    const ZRFxBlock* entry = GetBlockByID(type, id);
    return entry ? CreateEntry(type, id, entry->GetFileName()) : nullptr;
}

int ZRFxDatabase::GetNumBlocks() const {
    int count = 0;
    for (int type = 0; type < kNumBlockTypes; ++type) count += GetNumBlocks(type);
    return count;
}

ZRFxBlock* ZRFxDatabase::GetBlock(int globalIndex) const {
    NVF_ASSERT(globalIndex >= 0);
    for (int type = 0; type < kNumBlockTypes && globalIndex >= 0; ++type) {
        if (globalIndex < GetNumBlocks(type)) return GetBlock(type, globalIndex);
        globalIndex -= GetNumBlocks(type);
    }
    return nullptr;
}

bool ZRFxDatabase::ReadXmlFile(const ZRString& fileName, nvf::XmlDocument* doc) const {
    if (!GetAccess()) return false;
    const bool isRelative =
        !GetAccess()->Contains(fileName) && GetAccess()->Contains(EntryName(fileName));
    return GetAccess()->InternalReadXmlFile(isRelative ? EntryName(fileName) : fileName,
                                            LogMode::LOG, doc);
}

nvf::ref<nvf::XmlDocument> ZRFxDatabase::CreateDescription() const {
    nvf::ref<nvf::XmlDocument> doc = new nvf::XmlDocument;
    nvf::XmlElement root = doc->createRootElement("Database", kNamespaceUri);
    root.setAttributeInt("ID", m_iID);
    SetAttribute(root, "Name", m_sName);
    SetAttribute(root, "Folder", GetFolder());
    SetAttribute(root, "SourceName", m_sSourceName);
    SetAttribute(root, "SimulationType", NameOf(m_eSimulationType));
    SetAttribute(root, "SolutionType", NameOf(m_eSolutionType));
    root.addChildElementUtf8("Description", m_sDescription.Bytes());
    return doc;
}

bool ZRFxDatabase::FailID(int id) const {
    return Log().fail("Invalid Database ID %1 specified", id);
}

// A description of the id, which is not registered, is left of an attempt that failed.
bool ZRFxDatabase::HasLeftDescription() const {
    ZRFxZipRawData raw;
    nvf::XmlDocument doc;
    return GetAccess()->InternalReadDataRaw(EntryName("Database.xml"), LogMode::SILENT, &raw) &&
           doc.parse({reinterpret_cast<const char*>(raw.Buffer()), raw.Length()}) &&
           doc.getRootElement("Database").getAttributeInt("ID", -1) == m_iID;
}

void ZRFxDatabase::StartTOC() {
    m_pTOC = std::make_unique<TOC>(m_iID);
}

void ZRFxDatabase::EnterInTOC(const BlockLine& line) {
    if (!m_pTOC) StartTOC();
    if (m_pTOC->Enter(line)) m_bTOCModified = true;
}

void ZRFxDatabase::Clear() {
    m_iID = -1;
    m_sName = m_sSourceName = m_sDescription = ZRString();
    SetFolder(ZRString());
    for (BlockArray& blocks : m_apBlocks) blocks.clear();
    m_pTOC.reset();
    m_bHasTOC = false;
    m_nTOCEnd = 0;
}

bool ZRFxDatabase::ParseDescription(const ZRFxDatabaseInfo& info) {
    nvf::XmlDocument doc;
    if (!GetAccess()->InternalReadXmlFile(info.path, LogMode::LOG, &doc)) {
        return Log().fail("Database Xml file not found.");
    }
    const nvf::XmlElement root = doc.getRootElement("Database");
    if (root.isNull()) return Log().fail("Illegal root element in database.xml file.");
    m_iID = root.getAttributeInt("ID", info.id);
    m_sName = GetAttribute(root, "Name");
    SetFolder(GetAttribute(root, "Folder"));
    m_sSourceName = GetAttribute(root, "SourceName");
    m_eSimulationType = SimulationTypeFromName(GetAttribute(root, "SimulationType"));
    m_eSolutionType = SolutionTypeFromName(GetAttribute(root, "SolutionType"));
    m_sDescription = GetText(root.firstChildElement("Description"));
    if (m_iID < 0) return FailID(m_iID);
    return !GetFolder().IsBlank() || Log().fail("Invalid Database Folder, is blank.");
}

bool ZRFxDatabase::ParseBlocks() {
    StartTOC();
    m_bHasTOC = GetAccess()->Contains(EntryName(kTOCName));
    std::vector<BlockLine> lines;
    if (m_bHasTOC) {
        if (!ParseTOC(ZRFxParseMode::STRICT, &lines)) return false;
        m_bTOCModified = false;
        return AddParsedBlocks(lines, "Error reading block meta data.");
    }
    return ParseFolder(ZRFxParseMode::STRICT, &lines) &&
           AddParsedBlocks(lines, "Error reading block meta data (type '%1', ID %2)");
}

// Every step has said what did not fit.
bool ZRFxDatabase::ParseWhatFits(const ZRFxDatabaseInfo& info) {
    if (!ParseDescription(info)) {
        m_iID = info.id;
        SetFolder(info.folder);
    }
    StartTOC();
    std::vector<BlockLine> lines;
    const bool hasTOC = GetAccess()->Contains(EntryName(kTOCName));
    if (!hasTOC || !ParseTOC(ZRFxParseMode::LENIENT, &lines)) {
        ParseFolder(ZRFxParseMode::LENIENT, &lines);
    }
    m_bTOCModified = false;
    AddAllBlocks(lines);
    return true;
}

bool ZRFxDatabase::ParseTOC(ZRFxParseMode mode, std::vector<BlockLine>* lines) {
    nvf::XmlDocument doc;
    if (!GetAccess()->InternalReadXmlFile(EntryName(kTOCName), LogMode::LOG, &doc)) {
        return Log().fail("Cannot find database TOC file.");
    }
    const nvf::XmlElement root = doc.getRootElement("DatabaseTOC");
    if (root.isNull()) return Log().fail("Illegal root element in database TOC file.");
    if (root.getAttributeInt("DatabaseID", -1) != m_iID) {
        return Log().fail("Illegal database ID in TOC file.");
    }
    return TakeTOCLines(root, mode, lines);
}

bool ZRFxDatabase::TakeTOCLines(const nvf::XmlElement& root, ZRFxParseMode mode,
                                std::vector<BlockLine>* lines) {
    for (nvf::XmlElement element = root.firstChildElement(); element.notNull();
         element = element.nextSiblingElement()) {
        const BlockLine line{ZRString(element.nameUtf8()), element.getAttributeInt("ID", -1),
                             GetAttribute(element, "File")};
        if (!TakeTOCLine(line, lines) && mode == ZRFxParseMode::STRICT) return false;
    }
    return true;
}

// Where the lines that were there are kept, only those that follow them are read.
bool ZRFxDatabase::RefreshTOC(std::uint64_t kept) {
    const bool isGrown = m_nTOCEnd > 0 && kept >= m_nTOCEnd;
    const std::uint64_t from = isGrown ? m_nTOCEnd : 0;
    std::string text;
    if (!GetAccess()->ReadDocumentTail(EntryName(kTOCName), from, &text)) return false;
    const std::size_t end = text.rfind(ZRFxListDocument::kRootEnd);
    nvf::XmlDocument doc;
    if (!doc.parse(isGrown ? "<DatabaseTOC>" + text : text)) {
        return Log().fail("Error parsing Xml contents");
    }
    std::vector<BlockLine> lines;
    if (!isGrown) StartTOC();
    if (!TakeTOCLines(doc.getRootElement("DatabaseTOC"), ZRFxParseMode::STRICT, &lines)) {
        return false;
    }
    m_bHasTOC = true;
    m_bTOCModified = false;
    if (!isGrown) KeepBlocksOf(lines);
    std::erase_if(lines, [&](const BlockLine& line) {
        const ZRFxBlock* block = GetBlockByID(ZRFxBlockTypeFromName(line.typeName), line.id);
        return block && block->GetFileName() == line.fileName;
    });
    if (!AddParsedBlocks(lines, "Error reading block meta data.")) return false;
    m_nTOCEnd = end == std::string::npos ? 0 : from + end;
    return true;
}

// Removes the entries of blocks that the table of contents no longer has.
void ZRFxDatabase::KeepBlocksOf(const std::vector<BlockLine>& lines) {
    std::set<BlockKey> keys;
    for (const BlockLine& line : lines) {
        keys.emplace(ZRFxBlockTypeFromName(line.typeName), line.id);
    }
    for (BlockArray& blocks : m_apBlocks) {
        std::erase_if(blocks, [&](const nvf::ref<ZRFxBlock>& block) {
            return keys.count({block->GetType(), block->GetID()}) == 0;
        });
    }
}

// What a document has in front stays where it only grew.
bool ZRFxDatabase::RefreshMetaData(const ZRFxArchiveChanges& changes) {
    const bool isAnyReplaced =
        std::any_of(changes.kept.begin(), changes.kept.end(), [&](const auto& change) {
            return change.second == 0 && isBlockDocument(ZRString(change.first));
        });
    for (int i = 0; isAnyReplaced && i < GetNumBlocks(); ++i) {
        ZRFxBlock* block = GetBlock(i);
        const auto change = changes.kept.find(block->GetFileName().Bytes());
        if (change == changes.kept.end() || change->second > 0) continue;
        block->UnloadData();
        if (!block->ReadMetaData()) return Log().fail("Error reading block meta data.");
    }
    return true;
}

bool ZRFxDatabase::TakeTOCLine(const BlockLine& line, std::vector<BlockLine>* lines) {
    if (line.fileName.IsBlank()) return Log().fail("No filename specified for block.");
    if (line.id < 0) return Log().fail("Invalid ID %1 specified for block", line.id);
    return TakeBlockLine(line, lines);
}

bool ZRFxDatabase::ParseFolder(ZRFxParseMode mode, std::vector<BlockLine>* lines) {
    ZRStringArray files;
    if (!GetAccess()->FindFiles(GetFolder(), true, &files)) return false;
    for (const ZRString& file : files) {
        if (!isBlockDocument(file)) continue;
        if (!TakeDocument(file, lines) && mode == ZRFxParseMode::STRICT) return false;
    }
    return true;
}

bool ZRFxDatabase::TakeDocument(const ZRString& file, std::vector<BlockLine>* lines) {
    nvf::XmlDocument doc;
    if (!ReadXmlFile(file, &doc)) return false;
    const nvf::XmlElement root = doc.getRootElement();
    const BlockLine line{ZRString(root.nameUtf8()), root.getAttributeInt("ID", -1), file};
    if (line.id < 0) {
        return Log().fail("Invalid ID specified for block (type '%1', ID %2)", line.typeName,
                          line.id);
    }
    return TakeBlockLine(line, lines);
}

bool ZRFxDatabase::TakeBlockLine(const BlockLine& line, std::vector<BlockLine>* lines) {
    if (ZRFxBlockTypeFromName(line.typeName) == kInvalidBlockType) {
        return Log().fail("Invalid block type '%1' specified", line.typeName);
    }
    EnterInTOC(line);
    lines->push_back(line);
    return true;
}

// In the order of their ids, so that each entry is added behind the last, whatever the order of a
// file's lines.
bool ZRFxDatabase::AddParsedBlocks(std::vector<BlockLine>& lines, const char* metaDataMessage) {
    std::stable_sort(lines.begin(), lines.end(),
                     [](const BlockLine& a, const BlockLine& b) { return a.id < b.id; });
    for (const BlockLine& line : lines) {
        const nvf::ref<ZRFxBlock> block =
            CreateEntry(ZRFxBlockTypeFromName(line.typeName), line.id, line.fileName);
        if (block.isNull()) {
            return Log().fail("Error create block (type '%1', ID %2)", line.typeName, line.id);
        }
        if (!block->ReadMetaData()) return Log().fail(metaDataMessage, line.typeName, line.id);
        bool isReplaced = false;
        if (!AddBlock(block.p(), &isReplaced)) {
            return Log().fail("Error adding block (type '%1', ID %2)", line.typeName, line.id);
        }
    }
    return true;
}

void ZRFxDatabase::AddAllBlocks(std::vector<BlockLine>& lines) {
    std::stable_sort(lines.begin(), lines.end(),
                     [](const BlockLine& a, const BlockLine& b) { return a.id < b.id; });
    for (const BlockLine& line : lines) {
        const nvf::ref<ZRFxBlock> block =
            CreateEntry(ZRFxBlockTypeFromName(line.typeName), line.id, line.fileName);
        bool isReplaced = false;
        if (block.isNull()) {
            Log().fail("Error create block (type '%1', ID %2)", line.typeName, line.id);
        } else if (AddBlock(block.p(), &isReplaced) && isReplaced) {
            Log().fail("Block (type '%1', ID %2) is entered twice", line.typeName, line.id);
        }
    }
}

// A type that no class stores makes no entry, nor an assertion: what a file holds is no programming
// error.
nvf::ref<ZRFxBlock> ZRFxDatabase::CreateEntry(int type, int id, const ZRString& fileName) {
    if (!ZRFxBlock::IsStored(type)) return nullptr;
    nvf::ref<ZRFxBlock> block = ZRFxBlock::Create(type, this, id);
    block->SetFileName(fileName);
    return block;
}

}  // namespace unstruct
