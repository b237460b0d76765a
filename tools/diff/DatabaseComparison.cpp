#include "diff/DatabaseComparison.h"

#include <algorithm>
#include <array>
#include <set>

#include "diff/KeyedComparison.h"
#include "diff/MeshComparison.h"
#include "diff/ResultComparison.h"
#include "diff/StatePairs.h"

namespace tools {
namespace {

using namespace unstruct;

// Those whose meaning is compared. All others are compared block by block.
constexpr std::array kMeantTypes = {BLOCK_NODES,         BLOCK_ELEMENTS,     BLOCK_GEOMETRY,
                                    BLOCK_GEOMETRY_INFO, BLOCK_SET,          BLOCK_STATE_INFO,
                                    BLOCK_RESULTS,       BLOCK_RESULT_VALUES};

// Those of them that say what the others mean: they are read first, so that none is left out.
constexpr std::array kDescribingTypes = {BLOCK_GEOMETRY, BLOCK_GEOMETRY_INFO, BLOCK_SET,
                                         BLOCK_STATE_INFO, BLOCK_RESULTS};

bool areReadable(ZRFxDatabase& database) {
    return std::ranges::all_of(kDescribingTypes, [&](int type) {
        return std::ranges::all_of(blockIds(database, type),
                                   [&](int id) { return readBlock(database, type, id).notNull(); });
    });
}

std::set<int> idSet(const ZRFxDatabase& database, int type) {
    const auto ids = blockIds(database, type);
    return {ids.begin(), ids.end()};
}

}  // namespace

DatabaseComparison::DatabaseComparison(ZRFxDatabase& a, ZRFxDatabase& b, const DiffOptions& options,
                                       const Tolerances& tolerances, Differences& differences,
                                       Progress& progress)
    : m_a(a),
      m_b(b),
      m_options(options),
      m_tolerances(tolerances),
      m_differences(differences),
      m_fields(differences, tolerances.general()),
      m_progress(progress),
      m_place(numbered("database", a.GetID())) {}

Side DatabaseComparison::run() {
    if (!m_options.wantsOnlyResults) compareDescriptions();
    if (!m_options.isExact) {
        const Side failed = compareMeaning();
        if (failed != Side::NONE || m_options.wantsOnlyResults) return failed;
    }
    for (int type = 0; type < kNumBlockTypes; ++type) {
        const bool isMeant = std::ranges::find(kMeantTypes, type) != kMeantTypes.end();
        if (isMeant && !m_options.isExact) continue;
        const Side failed = compareBlocks(type);
        if (failed != Side::NONE) return failed;
    }
    return Side::NONE;
}

void DatabaseComparison::compareDescriptions() {
    const auto compare = [&](const char* what, const ZRString& a, const ZRString& b) {
        m_fields.compare(m_place + ", " + what, a.Bytes(), b.Bytes());
    };
    compare("name", m_a.GetName(), m_b.GetName());
    if (m_options.isExact) compare("source", m_a.GetSourceName(), m_b.GetSourceName());
    compare("simulation type", NameOf(m_a.GetSimulationType()), NameOf(m_b.GetSimulationType()));
    compare("solution type", NameOf(m_a.GetSolutionType()), NameOf(m_b.GetSolutionType()));
    compare("description", m_a.GetDescription(), m_b.GetDescription());
}

Side DatabaseComparison::compareMeaning() {
    if (!areReadable(m_a)) return Side::A;
    if (!areReadable(m_b)) return Side::B;
    ModelItems itemsOfA(m_a);
    ModelItems itemsOfB(m_b);
    const StatePairs states(statesOf(m_a), statesOf(m_b), m_tolerances.general());
    // The numbering of the mesh is needed in any case.
    Differences unwanted("", "", {});
    Differences& ofMesh = m_options.wantsOnlyResults ? unwanted : m_differences;
    MeshComparison mesh(itemsOfA, itemsOfB, m_place, m_tolerances.general(), ofMesh);
    if (const Side failed = mesh.run(); failed != Side::NONE) return failed;
    for (const auto& [a, b] : states.pairs()) mesh.compareParts(a.id, b.id);
    states.report(m_place, m_differences);
    ResultComparison results({itemsOfA, itemsOfB, m_place, states, mesh.numberings()}, m_tolerances,
                             m_differences, m_progress);
    const Side failed = results.run();
    m_comparedValueCount = results.comparedValueCount();
    return failed;
}

Side DatabaseComparison::compareBlocks(int type) {
    const std::string prefix = m_place + ", " + ZRFxBlockTypeName(type).Bytes() + ":";
    return compareByKey(
        idSet(m_a, type), idSet(m_b, type), m_differences,
        [&](int id) { return prefix + std::to_string(id); },
        [&](int id, const std::string& place) { return compareBlock(type, id, place); });
}

Side DatabaseComparison::compareBlock(int type, int id, const std::string& place) {
    const auto a = readBlock(m_a, type, id);
    if (a.isNull()) return Side::A;
    const auto b = readBlock(m_b, type, id);
    if (b.isNull()) return Side::B;
    m_fields.compare(place, *a, *b);
    m_progress.advance(1);
    return Side::NONE;
}

}  // namespace tools
