#include "database/ZROZRFxDatabase.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <set>
#include <string>
#include <utility>

#include "access/ZRFxListDocument.h"
#include "access/ZROZRFxAccess.h"
#include "database/ZRFxBlockFinder.h"
#include "database/ZRFxTableOfContents.h"
#include "documents/ZRFxXml.h"
#include "nvf/Assert.h"
#include "nvf/Progress.h"

namespace unstruct {
namespace {

ZRString folderOf(int id) {
    char folder[32];
    std::snprintf(folder, sizeof(folder), "Database%.3d", id);
    return folder;
}

// Where a block of an id stands, or would be inserted, among blocks sorted by id.
template <typename BlockArray>
auto positionOf(BlockArray& blocks, int id) {
    if (blocks.empty() || blocks.back()->GetID() < id) return blocks.end();
    return std::lower_bound(blocks.begin(), blocks.end(), id,
                            [](const auto& block, int wanted) { return block->GetID() < wanted; });
}

// The data files that an element and those below it record, if they are named like files of the
// block: a document may refer to files of another block, which stay.
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

// By id, so that each entry is added after the last one, whatever the order of the lines.
std::vector<const ZRFxBlockLine*> sorted(const std::vector<ZRFxBlockLine>& lines,
                                         std::size_t first) {
    std::vector<const ZRFxBlockLine*> result;
    result.reserve(lines.size() - first);
    for (std::size_t i = first; i < lines.size(); ++i) result.push_back(&lines[i]);
    std::stable_sort(result.begin(), result.end(),
                     [](const ZRFxBlockLine* a, const ZRFxBlockLine* b) { return a->id < b->id; });
    return result;
}

}  // namespace

ZRFxDatabase::ZRFxDatabase(ZRFxAccess* pAccess) : ZRFxBlockStore(pAccess) {}

ZRFxDatabase::~ZRFxDatabase() = default;

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
    m_pTOC->SetModified(true);
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
    const ZRString toc = EntryName(ZRFxTableOfContents::kName);
    const auto change = changes.kept.find(toc.Bytes());
    // It is new if the blocks were found in the folder before.
    const bool isNew = !m_bHasTOC && GetAccess()->Contains(toc);
    const bool isChanged = isNew || change != changes.kept.end();
    if (isChanged && !RefreshTOC(isNew ? 0 : change->second)) return false;
    return RefreshMetaData(changes);
}

bool ZRFxDatabase::WriteTOC() {
    NVF_ASSERT(m_pTOC);
    if (!m_pTOC || !GetAccess()) return false;
    if (!m_pTOC->Store(GetAccess(), EntryName(ZRFxTableOfContents::kName))) {
        return Log().fail("Cannot write Database TOC to archive.");
    }
    return true;
}

bool ZRFxDatabase::IsTOCModified() const {
    return m_pTOC && m_pTOC->IsModified();
}

void ZRFxDatabase::NoteWriting(const ZRFxBlock& block, std::optional<ZRFxOutline> outline) {
    m_written.Note(block.GetType(), block.GetID(), std::move(outline));
}

bool ZRFxDatabase::StoreBlock(const ZRString& typeName, int id, const ZRString& fileName,
                              const nvf::XmlDocument& xmlDoc, bool overwrite) {
    const int type = ZRFxBlockTypeFromName(typeName);
    const bool isBlock = id >= 0 && ZRFxBlock::IsStored(type);
    if (!isBlock || !GetAccess() || !GetAccess()->WriteXmlFile(fileName, xmlDoc, overwrite)) {
        return Log().fail("Error writing block xml file (type '%1' ID %2)", typeName, id);
    }
    const ZRFxBlockLine line{type, id, fileName};
    EnterInTOC(line);
    bool isReplaced = false;
    return AddBlock(CreateEntry(line).p(), &isReplaced);
}

bool ZRFxDatabase::StoreListBlock(const ZRFxBlock& block, const ZRString& fileName,
                                  const ZRFxListContent& content, ZRFxListDocument* document) {
    // A block that the database has already takes no memory once its document is stored.
    NoteWriting(block, std::nullopt);
    PrepareTOC();
    const ZRFxBlockLine line{block.GetType(), block.GetID(), fileName};
    const nvf::ref<ZRFxBlock> entry = CreateEntry(line);
    if (block.GetID() < 0 || !GetAccess() || !document->Store(GetAccess(), fileName, content)) {
        return Log().fail("Error writing block xml file (type '%1' ID %2)",
                          ZRFxBlockTypeName(block.GetType()), block.GetID());
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
    // Files without a line in the table of contents belong to no block.
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
    if (m_pTOC) m_pTOC->Remove(block.GetType(), block.GetID());
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

std::uint64_t ZRFxDatabase::GetStoredSize(const ZRFxBlock& block) const {
    ZRStringArray files;
    if (!GetAccess() || !GetAccess()->FindFilesOfBase(EntryName(block.GetFilebase()), &files)) {
        return 0;
    }
    std::uint64_t size = 0;
    for (const ZRString& file : files) size += GetAccess()->SizeOf(file);
    return size;
}

nvf::ref<ZRFxBlock> ZRFxDatabase::OpenBlock(int type, int id) {
    const ZRFxBlock* entry = GetBlockByID(type, id);
    return entry ? CreateEntry({type, id, entry->GetFileName()}) : nullptr;
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

// Whether a failed attempt has left a description of this id, which is not registered.
bool ZRFxDatabase::HasLeftDescription() const {
    ZRFxZipRawData raw;
    nvf::XmlDocument doc;
    return GetAccess()->InternalReadDataRaw(EntryName("Database.xml"), LogMode::SILENT, &raw) &&
           doc.parse({reinterpret_cast<const char*>(raw.Buffer()), raw.Length()}) &&
           doc.getRootElement("Database").getAttributeInt("ID", -1) == m_iID;
}

void ZRFxDatabase::StartTOC() {
    m_pTOC = std::make_unique<ZRFxTableOfContents>(m_iID);
}

void ZRFxDatabase::PrepareTOC() {
    if (!m_pTOC) StartTOC();
    m_pTOC->PrepareToEnter();
}

void ZRFxDatabase::EnterInTOC(const ZRFxBlockLine& line) {
    PrepareTOC();
    m_pTOC->Enter(line);
}

void ZRFxDatabase::Clear() {
    m_iID = -1;
    m_sName = m_sSourceName = m_sDescription = ZRString();
    SetFolder(ZRString());
    for (BlockArray& blocks : m_apBlocks) blocks.clear();
    m_pTOC.reset();
    m_written = ZRFxWrittenBlocks();
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
    m_bHasTOC = GetAccess()->Contains(EntryName(ZRFxTableOfContents::kName));
    ZRFxBlockFinder finder(*this, ZRFxParseMode::STRICT);
    if (!(m_bHasTOC ? finder.FindInTOC(m_iID) : finder.FindInFolder())) return false;
    m_pTOC->Append(finder.TakeLines());
    if (m_bHasTOC) m_pTOC->SetModified(false);
    return AddNewBlocks(0, m_bHasTOC ? "Error reading block meta data."
                                     : "Error reading block meta data (type '%1', ID %2)");
}

// Every step has reported what did not fit.
bool ZRFxDatabase::ParseWhatFits(const ZRFxDatabaseInfo& info) {
    if (!ParseDescription(info)) {
        m_iID = info.id;
        SetFolder(info.folder);
    }
    StartTOC();
    ZRFxBlockFinder finder(*this, ZRFxParseMode::LENIENT);
    const bool hasTOC = GetAccess()->Contains(EntryName(ZRFxTableOfContents::kName));
    if (!hasTOC || !finder.FindInTOC(m_iID)) finder.FindInFolder();
    m_pTOC->Append(finder.TakeLines());
    m_pTOC->SetModified(false);
    AddAllBlocks();
    return true;
}

// If the lines that were there have been kept, only those that follow them are read.
bool ZRFxDatabase::RefreshTOC(std::uint64_t kept) {
    const bool isGrown = m_nTOCEnd > 0 && kept >= m_nTOCEnd;
    const std::uint64_t from = isGrown ? m_nTOCEnd : 0;
    std::string text;
    if (!GetAccess()->ReadDocumentTail(EntryName(ZRFxTableOfContents::kName), from, &text))
        return false;
    const std::size_t end = text.rfind(ZRFxListDocument::kRootEnd);
    nvf::XmlDocument doc;
    const std::string rootStart = "<" + std::string(ZRFxTableOfContents::kRoot) + ">";
    if (!doc.parse(isGrown ? rootStart + text : text)) {
        return Log().fail("Error parsing Xml contents");
    }
    ZRFxBlockFinder finder(*this, ZRFxParseMode::STRICT);
    if (!isGrown) StartTOC();
    if (!finder.FindInTOC(doc.getRootElement(ZRFxTableOfContents::kRoot))) return false;
    const std::size_t firstLine = m_pTOC->Lines().size();
    m_pTOC->Append(finder.TakeLines());
    m_bHasTOC = true;
    m_pTOC->SetModified(false);
    if (!isGrown) KeepBlocksOfTOC();
    if (!AddNewBlocks(firstLine, "Error reading block meta data.")) {
        m_pTOC->PrepareToEnter();  // The next try appends the same lines again.
        return false;
    }
    m_nTOCEnd = end == std::string::npos ? 0 : from + end;
    return true;
}

// Removes the entries of blocks that the table of contents no longer has.
void ZRFxDatabase::KeepBlocksOfTOC() {
    std::set<std::pair<int, int>> keys;  // type and id
    for (const ZRFxBlockLine& line : m_pTOC->Lines()) keys.emplace(line.type, line.id);
    for (BlockArray& blocks : m_apBlocks) {
        std::erase_if(blocks, [&](const nvf::ref<ZRFxBlock>& block) {
            return keys.count({block->GetType(), block->GetID()}) == 0;
        });
    }
}

// The head of a document that only grew has not changed.
bool ZRFxDatabase::RefreshMetaData(const ZRFxArchiveChanges& changes) {
    const bool isAnyReplaced =
        std::any_of(changes.kept.begin(), changes.kept.end(), [&](const auto& change) {
            return change.second == 0 && ZRFxBlockFinder::IsBlockDocument(ZRString(change.first));
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

// Adds the blocks of the lines from the first on, unless they are there.
bool ZRFxDatabase::AddNewBlocks(std::size_t firstLine, const char* metaDataMessage) {
    const nvf::Progress::Count count(m_pTOC->Lines().size() - firstLine);
    for (const ZRFxBlockLine* line : sorted(m_pTOC->Lines(), firstLine)) {
        const ZRFxBlock* known = GetBlockByID(line->type, line->id);
        if (known && known->GetFileName() == line->fileName) continue;
        const nvf::ref<ZRFxBlock> block = CreateEntry(*line);
        if (block.isNull()) return FailBlock("Error create block (type '%1', ID %2)", *line);
        if (!block->ReadMetaData()) return FailBlock(metaDataMessage, *line);
        bool isReplaced = false;
        if (!AddBlock(block.p(), &isReplaced)) {
            return FailBlock("Error adding block (type '%1', ID %2)", *line);
        }
        if (!nvf::Progress::advance(1)) {
            return Log().failBecause(nvf::Reason::CANCELLED, "Opening database %1 was stopped.",
                                     m_iID);
        }
    }
    return true;
}

void ZRFxDatabase::AddAllBlocks() {
    for (const ZRFxBlockLine* line : sorted(m_pTOC->Lines(), 0)) {
        const nvf::ref<ZRFxBlock> block = CreateEntry(*line);
        bool isReplaced = false;
        if (block.isNull()) {
            FailBlock("Error create block (type '%1', ID %2)", *line);
        } else if (AddBlock(block.p(), &isReplaced) && isReplaced) {
            FailBlock("Block (type '%1', ID %2) is entered twice", *line);
        }
    }
}

bool ZRFxDatabase::FailBlock(nvf::LocatedText message, const ZRFxBlockLine& line) const {
    return Log().fail(message, ZRFxBlockTypeName(line.type), line.id);
}

// Null, without an assertion, for a type that no class stores: what a file holds is no programming
// error.
nvf::ref<ZRFxBlock> ZRFxDatabase::CreateEntry(const ZRFxBlockLine& line) {
    if (!ZRFxBlock::IsStored(line.type)) return nullptr;
    nvf::ref<ZRFxBlock> block = ZRFxBlock::Create(line.type, this, line.id);
    block->SetFileName(line.fileName);
    return block;
}

}  // namespace unstruct
