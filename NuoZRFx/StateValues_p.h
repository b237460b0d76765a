#pragma once

#include <algorithm>
#include <vector>

#include "Log_p.h"
#include "ZROZRFxStateValues.h"
#include "nvf/Assert.h"

namespace nuo::zrfx {

// What a result and a transformation result have in common: values blocks listed for each state.
// `ZRBlock` is the format class that holds the list.

template <typename ZRBlock>
bool addValuesBlock(ZRBlock& block, int valuesBlockId, int stateId) {
    NVF_ASSERT(valuesBlockId >= 0);
    return valuesBlockId >= 0 && block.AddState(stateId)->m_aiValuesBlockIDs.Add(valuesBlockId);
}

template <typename ZRBlock>
bool setValuesBlocks(ZRBlock& block, const std::vector<int>& valuesBlockIds, int stateId) {
    NVF_ASSERT(!valuesBlockIds.empty());
    const bool areIds = std::all_of(valuesBlockIds.begin(), valuesBlockIds.end(),
                                    [](int valuesBlockId) { return valuesBlockId >= 0; });
    NVF_ASSERT(areIds);
    if (valuesBlockIds.empty() || !areIds) return false;
    return block.AddState(stateId)->m_aiValuesBlockIDs.Assign(
        valuesBlockIds.data(), static_cast<std::int64_t>(valuesBlockIds.size()));
}

template <typename ZRBlock>
int stateIdAt(const ZRBlock& block, std::size_t index) {
    const auto* state = block.GetState(static_cast<std::int64_t>(index));
    return state ? state->m_iStateID : -1;
}

template <typename ZRBlock>
int stateIndexOf(const ZRBlock& block, int stateId) {
    return static_cast<int>(block.GetStateIndex(stateId));
}

template <typename ZRBlock>
std::vector<int> valuesBlocksAt(const ZRBlock& block, std::size_t stateIndex) {
    const auto* state = block.GetState(static_cast<std::int64_t>(stateIndex));
    NVF_ASSERT(state);
    if (!state) return {};
    return std::vector<int>(state->m_aiValuesBlockIDs.begin(), state->m_aiValuesBlockIDs.end());
}

}  // namespace nuo::zrfx
