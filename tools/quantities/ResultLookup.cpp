#include "quantities/ResultLookup.h"

#include <algorithm>

#include "FileReader.h"

namespace tools {

using namespace unstruct;

std::vector<nvf::ref<ZRFxResultBlock>> resultsOf(ZRFxDatabase& database) {
    std::vector<nvf::ref<ZRFxResultBlock>> results;
    for (const int id : blockIds(database, BLOCK_RESULTS)) {
        const auto result = readBlock<ZRFxResultBlock>(database, id);
        if (result.notNull()) results.push_back(result);
    }
    return results;
}

nvf::ref<ZRFxResultBlock> findResult(ZRFxDatabase& database, const std::string& nameOrId,
                                     std::string* error) {
    const auto results = resultsOf(database);
    for (const auto& result : results) {
        if (result->GetDescription().name.Bytes() == nameOrId) return result;
    }
    *error = "there is no result '" + nameOrId + "'";
    const char* separator = "; there are ";
    for (const auto& result : results) {
        if (std::to_string(result->GetDescription().resultID) == nameOrId) return result;
        *error += separator + result->GetDescription().name.Bytes();
        separator = ", ";
    }
    return nullptr;
}

std::vector<StateName> statesOf(ZRFxDatabase& database) {
    std::vector<StateName> states;
    for (const int id : blockIds(database, BLOCK_STATE_INFO)) {
        const auto block = readBlock<ZRFxStateInfoBlock>(database, id);
        if (block.isNull()) continue;
        for (std::int64_t i = 0; i < block->GetStateCount(); ++i) {
            const ZRFxStateInfo& state = *block->GetState(i);
            states.push_back({state.stateID, state.name.Bytes(), state.referenceValue,
                              ReferenceTypeName(state.referenceType).Bytes()});
        }
    }
    return states;
}

std::vector<StateName> findStates(const std::vector<StateName>& states,
                                  const ZRFxResultBlock& result,
                                  const std::vector<std::string>& wanted, std::string* error) {
    std::vector<StateName> own;
    for (std::int64_t i = 0; i < result.GetStateCount(); ++i) {
        const int id = result.GetState(i)->m_iStateID;
        const auto found = std::ranges::find(states, id, &StateName::id);
        own.push_back(found != states.end() ? *found : StateName{id, "", 0, ""});
    }
    *error = "the result has no states";
    if (wanted.empty() || own.empty()) return own;
    std::vector<StateName> chosen;
    for (const std::string& text : wanted) {
        const std::size_t before = chosen.size();
        for (const StateName& state : own) {
            const bool isLast = text == "last" && state.id == own.back().id;
            const bool isWanted = isLast || text == std::to_string(state.id) || text == state.name;
            if (isWanted) chosen.push_back(state);
        }
        *error = "the result has no state '" + text + "'";
        if (chosen.size() == before) return {};
    }
    return chosen;
}

bool hasEngineeringShear(const ZRFxResultBlock& result) {
    return result.GetDescription().strainType == STRAIN_ENGINEERING;
}

int componentCount(const ZRFxResultBlock& result) {
    return ZRFxDimensionOfResult(result.GetDescription().resultType);
}

}  // namespace tools
