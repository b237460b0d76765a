#include "check/CheckedDatabase.h"

#include <array>

#include "BlockContent.h"
#include "FileReader.h"
#include "blocks/results/ZRFxResultBlock.h"
#include "blocks/results/ZRFxTransformationResultsBlock.h"

namespace tools {
namespace {

using namespace unstruct;

constexpr std::array<int, 19> kOrder{BLOCK_STATE_INFO,
                                     BLOCK_NODES,
                                     BLOCK_INDEXED_FACE_SET,
                                     BLOCK_CROSS_SECTIONS,
                                     BLOCK_ELEMENTS,
                                     BLOCK_GEOMETRY,
                                     BLOCK_GEOMETRY_INFO,
                                     BLOCK_SET,
                                     BLOCK_RESULTS,
                                     BLOCK_TRANSFORMATION_RESULTS,
                                     BLOCK_PRECOMPUTED_ITEM,
                                     BLOCK_PRECOMPUTED_CUTTING_PLANE,
                                     BLOCK_PRECOMPUTED_ISOSURFACE,
                                     BLOCK_PRECOMPUTED_ISOVOLUME,
                                     BLOCK_PRECOMPUTED_PARTICLE_TRACE_GROUP,
                                     BLOCK_RESULT_VALUES,
                                     BLOCK_TRANSFORMATION_RESULT_VALUES,
                                     BLOCK_POSITION_RESULT_VALUES,
                                     BLOCK_PLOT_2D};

constexpr int kAnyType = -1;

struct Check {
    int blockType;
    void (*run)(const ZRFxBlock& block, CheckedDatabase& checked);
};

constexpr std::array kChecks{Check{kAnyType, checkReferences},
                             Check{kAnyType, checkNumbers},
                             Check{BLOCK_STATE_INFO, checkStateInfo},
                             Check{BLOCK_NODES, checkNodes},
                             Check{BLOCK_INDEXED_FACE_SET, checkFaceSet},
                             Check{BLOCK_ELEMENTS, checkElements},
                             Check{BLOCK_GEOMETRY, checkGeometry},
                             Check{BLOCK_GEOMETRY_INFO, checkGeometryInfo},
                             Check{BLOCK_SET, checkSet},
                             Check{BLOCK_RESULTS, checkResult},
                             Check{BLOCK_TRANSFORMATION_RESULTS, checkTransformationResult},
                             Check{BLOCK_PRECOMPUTED_ITEM, checkPrecomputed},
                             Check{BLOCK_PRECOMPUTED_CUTTING_PLANE, checkPrecomputed},
                             Check{BLOCK_PRECOMPUTED_ISOSURFACE, checkPrecomputed},
                             Check{BLOCK_PRECOMPUTED_ISOVOLUME, checkPrecomputed},
                             Check{BLOCK_RESULT_VALUES, checkResultValues},
                             Check{BLOCK_POSITION_RESULT_VALUES, checkPositionResultValues}};

constexpr std::size_t kCachedBlocks = 4;

void warnUnreferred(int type, const char* message, CheckedDatabase& checked) {
    for (const int id : blockIds(checked.database(), type)) {
        if (checked.referredBlocks.contains({type, id})) continue;
        checked.reporter("unused-block", *checked.database().GetBlockByID(type, id))
            .warning("", message);
    }
}

}  // namespace

CheckedDatabase::CheckedDatabase(ZRFxDatabase& database, Findings& findings, std::set<int> cases)
    : caseIds(std::move(cases)), m_database(database), m_findings(findings) {
    for (const int id : blockIds(database, BLOCK_RESULTS)) {
        const auto block = database.OpenBlock(BLOCK_RESULTS, id);
        if (!block->ReadMetaData()) continue;
        resultIds.insert(static_cast<ZRFxResultBlock&>(*block).GetDescription().resultID);
    }
    for (const int id : blockIds(database, BLOCK_TRANSFORMATION_RESULTS)) {
        const auto block = database.OpenBlock(BLOCK_TRANSFORMATION_RESULTS, id);
        if (!block->ReadMetaData()) continue;
        resultIds.insert(static_cast<ZRFxTransformationResultsBlock&>(*block).GetResultID());
    }
}

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
    const auto block = readBlock(m_database, BLOCK_NODES, blockId);
    if (block.isNull()) return nullptr;
    auto nodes = std::make_unique<Nodes>();
    nodes->block = static_cast<ZRFxNodeBlock*>(block.p());
    if (const ZRIntArray* ids = nodes->block->GetNodeIDs()) nodes->ids.emplace(itemsOf(*ids));
    return nodes;
}

std::unique_ptr<IdIndex> CheckedDatabase::loadElementIds(int blockId) {
    const auto block = readBlock(m_database, BLOCK_ELEMENTS, blockId);
    ZRIntArray ids;
    if (block.isNull() || !static_cast<ZRFxElementBlock&>(*block).GetWithIDs() ||
        !static_cast<ZRFxElementBlock&>(*block).GetAllElementIDs(&ids)) {
        return nullptr;
    }
    return std::make_unique<IdIndex>(itemsOf(ids));
}

std::span<const int> checkOrder() {
    return kOrder;
}

void checkBlock(const ZRFxBlock& block, CheckedDatabase& checked) {
    for (const Check& check : kChecks) {
        if (check.blockType == kAnyType || check.blockType == block.GetType()) {
            check.run(block, checked);
        }
    }
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
