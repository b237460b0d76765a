#include "NuoZRFx/Database.h"

#include <climits>
#include <set>

#include "Convert_p.h"
#include "Database_p.h"
#include "File_p.h"
#include "Log_p.h"
#include "NuoZRFx/File.h"
#include "NuoZRFx/ResultBlock.h"
#include "NuoZRFx/SetBlock.h"
#include "PartReader_p.h"
#include "UnusedId_p.h"
#include "nvf/Assert.h"

namespace nuo::zrfx {
namespace {

using nvf::Reason;
using unstruct::ZRFxArrayKind;
using unstruct::ZRFxBlock;
using unstruct::ZRFxDatabase;

// How a block was asked for, which decides about the messages.
struct Request {
    Block::BlockType type;
    int number;
    const char* missing;
    const char* unreadable;
};

Request byIndex(Block::BlockType type, std::size_t index) {
    return {type, static_cast<int>(index),
            "Error reading block from file. Block of type %1 with index %2 does not exist",
            "Error reading block of type %1 with index %2 from file"};
}

Request byId(Block::BlockType type, int id) {
    return {type, id, "Error reading block from file. Block of type %1 with id %2 does not exist",
            "Error reading block of type %1 with id %2 from file"};
}

PtrRef<Block> readBlock(ZRFxDatabase& database, const ZRFxBlock* entry, const Request& request) {
    if (!entry) {
        failBecause(Reason::NOT_FOUND, request.missing, static_cast<int>(request.type),
                    request.number);
        return nullptr;
    }
    const nvf::ref<ZRFxBlock> block = database.OpenBlock(entry->GetType(), entry->GetID());
    const nvf::Progress::Count count(nvf::Progress::current() ? database.GetStoredSize(*entry) : 0);
    if (block.isNull() || !block->ReadBlock()) {
        fail(request.unreadable, static_cast<int>(request.type), request.number);
        return nullptr;
    }
    return DatabasePrivate::wrap(block.p());
}

BlockSummary summaryOf(const unstruct::ZRFxOutline& outline) {
    BlockSummary summary;
    summary.hasIds = outline.hasIDs;
    if (outline.counts) {
        summary.itemCount = static_cast<std::size_t>(outline.counts->items);
        summary.elementNodeCount = static_cast<std::size_t>(outline.counts->elementNodes);
        summary.surfaceCount = static_cast<std::size_t>(outline.counts->surfaces);
    }
    if (outline.nodes) {
        summary.targetBlockId = outline.nodes->nodeBlockID;
        summary.refersNodesByIds = outline.nodes->byIDs;
    }
    if (outline.values) {
        summary.itemCount = static_cast<std::size_t>(outline.values->numItems);
        summary.dimension = outline.values->dimension;
        summary.hasIds = outline.values->hasIDs;
        summary.targetBlockId = outline.values->targetID;
    }
    return summary;
}

}  // namespace

Database::Database(File* file, const Str& name, int id, SimulationType simulationType,
                   SolutionType solutionType, const Str& description) {
    guarded([&] { m_private.take(std::make_unique<DatabasePrivate>()); });
    const bool isMade = noted(m_private, Reason::INVALID_ARGUMENT, [&] {
        return create(file, name, id, simulationType, solutionType, description);
    });
    if (!isMade) refuse();
}

Database::Database(File* file, int id) : m_private(std::make_unique<DatabasePrivate>()) {
    if (!attach(file, id)) refuse();
}

Database::~Database() = default;

const Error& Database::lastError() const {
    return lastErrorOf(m_private);
}

int Database::id() const {
    return guarded(-1, [&] { return m_private->m_id; });
}

Str Database::name() const {
    return guarded([&] {
        return m_private->m_zrfxDatabase ? ZRConvert::toStr(m_private->m_zrfxDatabase->GetName())
                                         : Str();
    });
}

Str Database::description() const {
    return guarded([&] {
        return m_private->m_zrfxDatabase
                   ? ZRConvert::toStr(m_private->m_zrfxDatabase->GetDescription())
                   : Str();
    });
}

Database::SimulationType Database::simulationType() const {
    return guarded(OTHER_SIMULATION, [&]() -> Database::SimulationType {
        if (!m_private->m_zrfxDatabase) return OTHER_SIMULATION;
        return ZRConvert::toSimulationType(m_private->m_zrfxDatabase->GetSimulationType());
    });
}

Database::SolutionType Database::solutionType() const {
    return guarded(OTHER_SOLUTION, [&]() -> Database::SolutionType {
        if (!m_private->m_zrfxDatabase) return OTHER_SOLUTION;
        return ZRConvert::toSolutionType(m_private->m_zrfxDatabase->GetSolutionType());
    });
}

bool Database::writeBlock(const Block* block) {
    return noted(m_private, Reason::INVALID_CONTENT, [&] {
        if (!block) {
            failBecause(Reason::INVALID_ARGUMENT, "Given block pointer was NULL. (Block id %1).",
                        -1);
        }
        const bool isGiven = nvf::requireThat("block", block, "writeBlock: the block is null");
        ZRFxDatabase* const database = m_private->openDatabase("writeBlock");
        if (!isGiven || !database) return false;
        ZRFxBlock* zrfxBlock = block->internal_zrfxBlock();
        if (block->internal_isIncomplete()) {
            return fail("Memory was missing when the block was filled. (block id %1).",
                        block->blockId());
        }
        // Some blocks are valid whatever they hold, but none can be stored under a negative id.
        if (!block->checkValidity() || !zrfxBlock || block->blockId() < 0) {
            return fail("Cannot write block, weak validity check failed. (block id %1).",
                        block->blockId());
        }
        const nvf::Progress progress(m_private->progress());
        const nvf::Progress::Count count(zrfxBlock->GetDataSize());
        const Digits::Scope digits(&m_private->m_digits, zrfxBlock);
        if (!zrfxBlock->WriteBlock(database)) {
            return fail("Error writing block to database. (block id %1, database id %2).",
                        block->blockId(), id());
        }
        m_private->m_isWarnedOfMisfits = false;
        if (zrfxBlock->GetType() == unstruct::BLOCK_GEOMETRY)
            m_private->m_isGeometryBlockWritten = true;
        if (zrfxBlock->GetType() == unstruct::BLOCK_STATE_INFO) {
            m_private->m_isStateInfoBlockWritten = true;
        }
        return true;
    });
}

std::size_t Database::blockCount(Block::BlockType type) const {
    return guarded([&]() -> std::size_t {
        const ZRFxDatabase* const database = m_private->openDatabase("blockCount");
        if (!database) return 0;
        return static_cast<std::size_t>(database->GetNumBlocks(ZRConvert::fromBlockType(type)));
    });
}

int Database::blockId(Block::BlockType type, std::size_t index) const {
    return guarded(-1, [&] {
        const ZRFxBlock* entry = entryAt(type, index);
        return entry ? entry->GetID() : -1;
    });
}

std::vector<int> Database::blockIds(Block::BlockType type) const {
    return guarded([&] {
        std::vector<int> ids;
        const std::size_t count = blockCount(type);
        for (std::size_t i = 0; i < count; ++i) ids.push_back(blockId(type, i));
        return ids;
    });
}

int Database::unusedBlockId(Block::BlockType type) const {
    return guarded(-1, [&] {
        const std::size_t count = blockCount(type);
        const int largest = count > 0 ? blockId(type, count - 1) : 0;
        if (largest < INT_MAX) return largest + 1;
        const std::vector<int> ids = blockIds(type);
        return unusedId(std::set<int>(ids.begin(), ids.end()), 1);
    });
}

std::vector<Str> Database::check() const {
    return guarded([&] {
        std::vector<Str> findings;
        if (!m_private->openDatabase("check")) return findings;
        for (const std::string& sentence : m_private->misfits()) {
            findings.push_back(Convert::toStr(sentence));
        }
        return findings;
    });
}

PtrRef<Block> Database::blockByIndex(Block::BlockType type, std::size_t index) {
    return noted(m_private, Reason::DAMAGED, [&]() -> PtrRef<Block> {
        const nvf::Progress progress(m_private->progress());
        const ZRFxBlock* entry = entryAt(type, index);
        if (!m_private->m_zrfxDatabase || (entry && type == Block::SET)) return nullptr;
        return readBlock(*m_private->m_zrfxDatabase, entry, byIndex(type, index));
    });
}

PtrRef<Block> Database::blockById(Block::BlockType type, int id) {
    return noted(m_private, Reason::DAMAGED, [&]() -> PtrRef<Block> {
        const nvf::Progress progress(m_private->progress());
        const ZRFxBlock* entry = entryOf(type, id);
        if (!m_private->m_zrfxDatabase || (entry && type == Block::SET)) return nullptr;
        return readBlock(*m_private->m_zrfxDatabase, entry, byId(type, id));
    });
}

PtrRef<SetBlock> Database::setBlockByIndex(std::size_t index) {
    return noted(m_private, Reason::DAMAGED, [&]() -> PtrRef<SetBlock> {
        const nvf::Progress progress(m_private->progress());
        const ZRFxBlock* entry = entryAt(Block::SET, index);
        if (!m_private->m_zrfxDatabase) return nullptr;
        return static_cast<SetBlock*>(
            readBlock(*m_private->m_zrfxDatabase, entry, byIndex(Block::SET, index)).p());
    });
}

PtrRef<SetBlock> Database::setBlockById(int id) {
    return noted(m_private, Reason::DAMAGED, [&]() -> PtrRef<SetBlock> {
        const nvf::Progress progress(m_private->progress());
        const ZRFxBlock* entry = entryOf(Block::SET, id);
        if (!m_private->m_zrfxDatabase) return nullptr;
        return static_cast<SetBlock*>(
            readBlock(*m_private->m_zrfxDatabase, entry, byId(Block::SET, id)).p());
    });
}

template <typename Operation>
auto Database::readingParts(const char* operation, Operation run) {
    return noted(m_private, Reason::DAMAGED, [&] {
        ZRFxDatabase* const database = m_private->openDatabase(operation);
        if (!database) return decltype(run(std::declval<PartReader&>()))();
        PartReader reader(*database);
        return run(reader);
    });
}

std::size_t Database::itemCount(Block::BlockType type, int id) {
    BlockSummary summary;
    readSummary(type, id, &summary);
    return summary.itemCount;
}

bool Database::readSummary(Block::BlockType type, int id, BlockSummary* summary) {
    return readingParts("readSummary", [&](PartReader& reader) {
        if (!nvf::requireThat("summary", summary, "readSummary: the summary is null")) return false;
        const auto outline = reader.outlineOf(type, id);
        if (!outline) return false;
        *summary = summaryOf(*outline);
        return outline->counts || outline->values ||
               failBecause(Reason::INVALID_ARGUMENT, "Blocks of type %1 have no items.",
                           static_cast<int>(type));
    });
}

std::vector<ElementGroupSize> Database::elementGroupSizes(int elementBlockId) {
    std::vector<ElementGroupSize> sizes;
    readingParts("elementGroupSizes", [&](PartReader& reader) {
        const auto outline = reader.outlineOf(Block::ELEMENTS, elementBlockId);
        if (!outline) return false;
        for (const unstruct::ZRFxGroupOutline& group : outline->groups) {
            sizes.push_back({ZRConvert::toElementType(group.type),
                             static_cast<std::size_t>(group.numElements)});
        }
        return true;
    });
    return sizes;
}

bool Database::readCoordinates(int nodeBlockId, std::size_t firstNode, Span<float> coordinates) {
    return readingParts("readCoordinates", [&](PartReader& reader) {
        return reader.read(Block::NODES, nodeBlockId, ZRFxArrayKind::POSITIONS, 0, firstNode,
                           coordinates);
    });
}

bool Database::readNodeIds(int nodeBlockId, std::size_t firstNode, Span<int> ids) {
    return readingParts("readNodeIds", [&](PartReader& reader) {
        return reader.read(Block::NODES, nodeBlockId, ZRFxArrayKind::IDS, 0, firstNode, ids);
    });
}

bool Database::readElementNodes(int elementBlockId, std::size_t groupIndex,
                                std::size_t firstElement, Span<int> nodes) {
    return readingParts("readElementNodes", [&](PartReader& reader) {
        return reader.read(Block::ELEMENTS, elementBlockId, ZRFxArrayKind::NODES, groupIndex,
                           firstElement, nodes);
    });
}

bool Database::readElementIds(int elementBlockId, std::size_t groupIndex, std::size_t firstElement,
                              Span<int> ids) {
    return readingParts("readElementIds", [&](PartReader& reader) {
        return reader.read(Block::ELEMENTS, elementBlockId, ZRFxArrayKind::IDS, groupIndex,
                           firstElement, ids);
    });
}

bool Database::readResultValues(int resultValuesBlockId, std::size_t firstItem,
                                Span<float> values) {
    return readingParts("readResultValues", [&](PartReader& reader) {
        return reader.read(Block::RESULT_VALUES, resultValuesBlockId, ZRFxArrayKind::VALUES, 0,
                           firstItem, values);
    });
}

bool Database::readMapToItemIds(int resultValuesBlockId, std::size_t firstItem, Span<int> ids) {
    return readingParts("readMapToItemIds", [&](PartReader& reader) {
        return reader.read(Block::RESULT_VALUES, resultValuesBlockId, ZRFxArrayKind::IDS, 0,
                           firstItem, ids);
    });
}

bool Database::readHistory(const ResultBlock& result, int targetBlockId, std::size_t item,
                           Span<float> values) {
    return readingParts("readHistory", [&](PartReader& reader) {
        const auto* block = static_cast<unstruct::ZRFxResultBlock*>(result.internal_zrfxBlock());
        return block && reader.readHistory(*block, targetBlockId, item, values);
    });
}

void Database::refuse() {
    if (m_private.isNull()) return;
    m_private->detach();
    m_private->m_id = -1;
}

bool Database::create(File* file, const Str& name, int id, SimulationType simulationType,
                      SolutionType solutionType, const Str& description) {
    if (!file) return fail("Given file pointer name was NULL. (Database id %1).", id);
    if (name.isEmpty()) return fail("Given database name was empty. (Database id %1).", id);
    if (id < 0) return fail("Given database id was negative. (Database id %1).", id);
    if (!file->writableAccess()) {
        return fail(
            "Given file was in invalid state. (Database id %1). File must be created or opened for "
            "append before adding a case.",
            id);
    }
    // Asked before anything is made, as the archive too refuses an id that it has.
    if (!file->checkNewDatabaseId(id)) {
        return fail("Could not register database instance. (Database id %1).", id);
    }
    // All memory that registering takes is taken before the archive has the database.
    FilePrivate::Items<Database>::NewId newId(&file->m_private->databases(), id);
    m_private->m_zrfxDatabase = std::make_unique<ZRFxDatabase>(file->writableAccess());
    m_private->m_zrfxDatabase->SetTextMode(!file->settings()->binary);
    m_private->m_zrfxDatabase->SetSignificantDigits(file->settings()->significantDigits);
    if (!m_private->m_zrfxDatabase->Create(ZRConvert::toZRString(name), id, unstruct::ZRString(),
                                           ZRConvert::fromSimulationType(simulationType),
                                           ZRConvert::fromSolutionType(solutionType),
                                           ZRConvert::toZRString(description))) {
        return fail("Error creating database.");
    }
    m_private->m_id = id;
    m_private->m_progress = file->m_private->progress();
    newId.giveTo(this);
    return true;
}

bool Database::attach(File* file, int id) {
    if (!file) return fail("Given file pointer was NULL.");
    if (id < 0) return fail("Given database id was negative.");
    if (!file->internal_access()) {
        return fail(
            "Given file was in invalid state. File must be created or opened for append before "
            "adding a database.");
    }
    m_private->m_isReadFromFile = true;
    m_private->m_zrfxDatabase = std::make_unique<ZRFxDatabase>(file->internal_access());
    m_private->m_zrfxDatabase->SetTextMode(!file->settings()->binary);
    m_private->m_id = id;
    m_private->m_progress = file->m_private->progress();
    return file->addDatabase(this) || fail("Could not register database instance.");
}

bool Database::internal_parse() {
    unstruct::ZRFxDatabaseInfo info;
    if (!m_private->m_zrfxDatabase ||
        !m_private->m_zrfxDatabase->GetAccess()->GetDatabaseByID(id(), &info)) {
        return fail("Given database index was in invalid.");
    }
    return m_private->m_zrfxDatabase->Parse(id()) || fail("Could not parse database in file.");
}

const ZRFxBlock* Database::entryAt(Block::BlockType type, std::size_t index) const {
    const ZRFxDatabase* const database = m_private->openDatabase("blockByIndex");
    if (!database || index > INT_MAX) return nullptr;
    return database->GetBlock(ZRConvert::fromBlockType(type), static_cast<int>(index));
}

const ZRFxBlock* Database::entryOf(Block::BlockType type, int id) const {
    const ZRFxDatabase* const database = m_private->openDatabase("blockById");
    if (!database) return nullptr;
    return database->GetBlockByID(ZRConvert::fromBlockType(type), id);
}

}  // namespace nuo::zrfx
