#pragma once

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "Log_p.h"
#include "blocks/ZRFxStateValues.h"
#include "nvf/Assert.h"

namespace nuo::zrfx {

// What a result and a transformation result have in common: values blocks listed for each state.
// `ZRBlock` is the format class that holds the list.

// Changes the values blocks of a state. A new record belongs to the block once it is as it should
// be.
template <typename ZRBlock, typename Change>
bool changeState(ZRBlock& block, int stateId, Change change) {
    if (block.GetStateIndex(stateId) >= 0) {
        return change(block.AddState(stateId)->m_aiValuesBlockIDs);
    }
    auto added = std::make_unique<unstruct::ZRFxStateValues>(stateId);
    return change(added->m_aiValuesBlockIDs) && block.AddState(std::move(added));
}

template <typename ZRBlock>
bool addValuesBlock(const char* operation, ZRBlock& block, int valuesBlockId, int stateId) {
    return nvf::require(valuesBlockId >= 0, "%1: values block id %2 is negative", operation,
                        valuesBlockId) &&
           changeState(block, stateId, [&](unstruct::ZRIntArray& valuesBlockIds) {
               return valuesBlockIds.Add(valuesBlockId);
           });
}

template <typename ZRBlock>
bool setValuesBlocks(const char* operation, ZRBlock& block, const std::vector<int>& valuesBlockIds,
                     int stateId) {
    const auto wrong = std::find_if(valuesBlockIds.begin(), valuesBlockIds.end(),
                                    [](int valuesBlockId) { return valuesBlockId < 0; });
    if (!nvf::require(!valuesBlockIds.empty(), "%1: no values blocks are given", operation)) {
        return false;
    }
    if (wrong != valuesBlockIds.end()) {
        return nvf::require(false, "%1: values block id %2 is negative", operation, *wrong);
    }
    return changeState(block, stateId, [&](unstruct::ZRIntArray& ids) {
        return ids.Assign(valuesBlockIds.data(), static_cast<std::int64_t>(valuesBlockIds.size()));
    });
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
std::vector<int> valuesBlocksAt(const char* operation, const ZRBlock& block,
                                std::size_t stateIndex) {
    const auto* state = block.GetState(static_cast<std::int64_t>(stateIndex));
    if (!nvf::require(state, "%1: state %2 of %3 asked for", operation, stateIndex,
                      block.GetStateCount())) {
        return {};
    }
    return std::vector<int>(state->m_aiValuesBlockIDs.begin(), state->m_aiValuesBlockIDs.end());
}

}  // namespace nuo::zrfx
