#include "diff/ResultComparison.h"

namespace tools {

using namespace unstruct;

namespace {

// Whether it is known what each value belongs to.
bool hasItems(const ZRFxResultBlock& result) {
    const int mapping = result.GetDescription().resultMapping;
    return componentCount(result) > 0 && mapping != MAPPING_UNKNOWN;
}

}  // namespace

// The second result of a name is "STRESS (2)".
ResultComparison::Results ResultComparison::resultsOf(ZRFxDatabase& database) {
    Results results;
    for (const Result& result : tools::resultsOf(database)) {
        const std::string name = result->GetDescription().name.Bytes();
        std::string unique = name;
        for (int i = 2; results.contains(unique); ++i) {
            unique = name + " (" + std::to_string(i) + ")";
        }
        results[unique] = result;
    }
    return results;
}

Side ResultComparison::run() {
    const Results a = resultsOf(m_models.a.database());
    const Results b = resultsOf(m_models.b.database());
    for (const auto& [name, result] : a) {
        const std::string place = m_models.place + ", result " + name;
        const auto other = b.find(name);
        if (other == b.end()) {
            m_differences.onlyInA(place);
        } else if (!m_differences.ignores(place)) {
            const Side failed = compare(*result, *other->second, place);
            if (failed != Side::NONE) return failed;
        }
    }
    for (const auto& [name, result] : b) {
        if (!a.contains(name)) m_differences.onlyInB(m_models.place + ", result " + name);
    }
    return Side::NONE;
}

// False when the values cannot be compared.
bool ResultComparison::compareDescriptions(const ZRFxResultDescription& a,
                                           const ZRFxResultDescription& b,
                                           const std::string& place) {
    FieldComparison fields(m_differences, m_tolerances.general());
    const auto compare = [&](const char* what, const ZRString& x, const ZRString& y) {
        fields.compare(place + ", " + what, x.Bytes(), y.Bytes());
    };
    compare("type", ResultTypeName(a.resultType), ResultTypeName(b.resultType));
    compare("strain type", StrainTypeName(a.strainType), StrainTypeName(b.strainType));
    compare("mapping", ResultMappingName(a.resultMapping), ResultMappingName(b.resultMapping));
    const auto attributesOf = [](const ZRFxResultDescription& description) {
        Json json = Json::object();
        for (const auto& [name, value] : description.attributes) json[name.Bytes()] = value.Bytes();
        return json;
    };
    fields.compare(place + ", attributes", attributesOf(a), attributesOf(b));
    return a.resultMapping == b.resultMapping &&
           ZRFxDimensionOfResult(a.resultType) == ZRFxDimensionOfResult(b.resultType);
}

// Values of which it is not known what they belong to: block by block.
Side ResultComparison::compareBlocks(const ZRFxStateValues& a, const ZRFxStateValues& b,
                                     const std::string& place) {
    const auto idsOfA = itemsOf(a.m_aiValuesBlockIDs);
    const auto idsOfB = itemsOf(b.m_aiValuesBlockIDs);
    if (idsOfA.size() != idsOfB.size()) {
        m_differences.add(
            place, std::to_string(idsOfA.size()) + " and " + counted(idsOfB.size(), "block"));
        return Side::NONE;
    }
    FieldComparison fields(m_differences, m_tolerances.general());
    for (std::size_t i = 0; i < idsOfA.size(); ++i) {
        const auto valuesOfA = readBlock(m_models.a.database(), BLOCK_RESULT_VALUES, idsOfA[i]);
        const auto valuesOfB = readBlock(m_models.b.database(), BLOCK_RESULT_VALUES, idsOfB[i]);
        if (valuesOfA.isNull()) return Side::A;
        if (valuesOfB.isNull()) return Side::B;
        fields.compare(place, *valuesOfA, *valuesOfB);
    }
    return Side::NONE;
}

Side ResultComparison::compare(const ZRFxResultBlock& a, const ZRFxResultBlock& b,
                               const std::string& place) {
    const bool isComparable = compareDescriptions(a.GetDescription(), b.GetDescription(), place);
    const std::string& name = a.GetDescription().name.Bytes();
    for (const auto& [stateOfA, stateOfB] : m_models.states.pairs()) {
        const std::string own = place + numbered(", state", stateOfA.id);
        const bool isInA = a.GetStateIndex(stateOfA.id) >= 0;
        const bool isInB = b.GetStateIndex(stateOfB.id) >= 0;
        if (isInA && !isInB) m_differences.onlyInA(own);
        if (isInB && !isInA) m_differences.onlyInB(own);
        if (!isInA || !isInB || !isComparable) continue;
        const auto stateValuesOf = [](const ZRFxResultBlock& result, int state) {
            return result.GetState(result.GetStateIndex(state));
        };
        const Side failed =
            hasItems(a) ? m_values.run({a, b, stateOfA.id, stateOfB.id, own, m_tolerances.of(name)})
                        : compareBlocks(*stateValuesOf(a, stateOfA.id),
                                        *stateValuesOf(b, stateOfB.id), own);
        if (failed != Side::NONE) return failed;
        m_progress.advance(1);
    }
    return Side::NONE;
}

}  // namespace tools
