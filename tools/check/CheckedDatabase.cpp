#include "check/CheckedDatabase.h"

#include "FileReader.h"
#include "check/BlockChecks.h"
#include "content/BlockGroup.h"
#include "content/Content.h"

namespace tools {
namespace {

using namespace unstruct;

constexpr std::size_t kCachedBlocks = 4;

void warnUnreferred(int type, const char* message, CheckedDatabase& checked) {
    for (const int id : blockIds(checked.database(), type)) {
        if (checked.referredBlocks.contains({type, id})) continue;
        checked.reporter("unused-block", *checked.database().GetBlockByID(type, id))
            .warning("", message);
    }
}

// How the block fits the others.
void checkModel(const ZRFxBlock& block, CheckedDatabase& checked) {
    const auto outline = checked.model().OutlineOf(block.GetType(), block.GetID());
    if (!outline) return;
    for (const ZRFxReference& reference : outline->references) {
        checked.referredBlocks.insert({reference.blockType, reference.id});
    }
    for (const ZRFxFinding& finding :
         checked.model().CheckBlock(block.GetType(), block.GetID(), *outline)) {
        Reporter reporter = checked.reporter(finding.check, block);
        if (finding.isError) {
            reporter.error(finding.place, finding.message);
        } else {
            reporter.warning(finding.place, finding.message);
        }
    }
}

}  // namespace

Reporter CheckedDatabase::reporter(const char* check) const {
    return {m_findings, check, m_database.EntryName("Database.xml").Bytes()};
}

template <typename Item, typename Load>
const Item* CheckedDatabase::find(Cache<Item>& cache, int id, Load load) {
    for (const auto& [cachedId, item] : cache) {
        if (cachedId == id) return item.get();
    }
    if (cache.size() == kCachedBlocks) cache.erase(cache.begin());
    cache.emplace_back(id, load(id));
    return cache.back().second.get();
}

const CheckedDatabase::Nodes* CheckedDatabase::nodes(int blockId) {
    return find(m_nodes, blockId, [this](int id) { return loadNodes(id); });
}

const IdIndex* CheckedDatabase::elementIds(int blockId) {
    return find(m_elementIds, blockId, [this](int id) { return loadElementIds(id); });
}

std::unique_ptr<CheckedDatabase::Nodes> CheckedDatabase::loadNodes(int blockId) {
    const auto block = readBlock<ZRFxNodeBlock>(m_database, blockId);
    if (block.isNull()) return nullptr;
    auto nodes = std::make_unique<Nodes>();
    nodes->block = block;
    if (const ZRIntArray* ids = nodes->block->GetNodeIDs()) nodes->ids.emplace(itemsOf(*ids));
    return nodes;
}

std::unique_ptr<IdIndex> CheckedDatabase::loadElementIds(int blockId) {
    const auto block = readBlock<ZRFxElementBlock>(m_database, blockId);
    ZRIntArray ids;
    if (block.isNull() || !block->GetWithIDs() || !block->GetAllElementIDs(&ids)) {
        return nullptr;
    }
    return std::make_unique<IdIndex>(itemsOf(ids));
}

void checkBlock(const ZRFxBlock& block, CheckedDatabase& checked) {
    checkModel(block, checked);
    checkNumbers(block, checked);
    groupOf(block).check(block, checked);
}

void checkWhole(CheckedDatabase& checked) {
    const auto count = [&](int type) { return checked.database().GetNumBlocks(type); };
    if (count(BLOCK_STATE_INFO) == 0) {
        checked.reporter("incomplete").warning("", "the database has no state info block");
    }
    if (count(BLOCK_GEOMETRY) == 0) {
        checked.reporter("incomplete").warning("", "the database has no geometry block");
    }
    warnUnreferred(BLOCK_ELEMENTS, "no part shows these elements", checked);
    warnUnreferred(BLOCK_RESULT_VALUES, "no result refers to these values", checked);
}

}  // namespace tools
