#include "quantities/ItemFilter.h"

#include <algorithm>

#include "blocks/sets/ZRFxSetBlock.h"
#include "content/Content.h"

namespace tools {
namespace {

using namespace unstruct;

bool isNamed(const std::string& wanted, int id, const std::string& name) {
    return wanted == name || wanted == std::to_string(id);
}

bool contains(const std::vector<int>& ids, int id) {
    return ids.empty() || std::ranges::find(ids, id) != ids.end();
}

}  // namespace

bool ItemFilter::resolve(int state, std::string* error) {
    m_blocks.clear();
    m_sets.clear();
    return resolveParts(state, error) && resolveSets(error);
}

bool ItemFilter::resolveParts(int state, std::string* error) {
    for (const std::string& wanted : m_choice.parts) {
        bool isFound = false;
        for (const PartItems& part : m_model.parts(state)) {
            if (!isNamed(wanted, part.id, part.name)) continue;
            m_blocks.insert(part.elementBlocks.begin(), part.elementBlocks.end());
            isFound = true;
        }
        *error = "there is no part '" + wanted + "'";
        if (!isFound) return false;
    }
    return true;
}

bool ItemFilter::resolveSets(std::string* error) {
    ZRFxDatabase& database = m_model.database();
    for (const std::string& wanted : m_choice.sets) {
        bool isFound = false;
        for (const int id : blockIds(database, BLOCK_SET)) {
            const auto set = readBlock<ZRFxSetBlock>(database, id);
            if (set.isNull() || !isNamed(wanted, set->GetSetID(), set->GetName().Bytes())) continue;
            isFound = true;
            for (std::int64_t g = 0; g < set->GetItemsCount(); ++g) {
                auto& [areIds, items] = m_sets[set->GetItems(g)->m_iBlockID];
                areIds = set->GetItemsSpecifiedAsIDs();
                const auto added = itemsOf(set->GetItems(g)->m_aiItems);
                items.insert(added.begin(), added.end());
            }
        }
        *error = "there is no set '" + wanted + "'";
        if (!isFound) return false;
    }
    return true;
}

bool ItemFilter::hasBlock(int block) const {
    return (m_choice.parts.empty() || m_blocks.contains(block)) &&
           (m_choice.sets.empty() || m_sets.contains(block));
}

bool ItemFilter::isChosen(int block, const ElementItems& items, std::size_t index) const {
    if (!contains(m_choice.elements, items.ids[index])) return false;
    if (m_choice.sets.empty()) return true;
    const auto& [areIds, chosen] = m_sets.at(block);
    return chosen.contains(areIds ? items.ids[index] : static_cast<int>(index));
}

std::vector<bool> ItemFilter::elements(int block) {
    const ElementItems* items = m_model.elements(block);
    if (!m_choice.restrictsElements() || !items) return {};
    std::vector<bool> chosen(items->ids.size(), hasBlock(block));
    for (std::size_t i = 0; i < chosen.size(); ++i) {
        chosen[i] = chosen[i] && isChosen(block, *items, i);
    }
    return chosen;
}

std::vector<bool> ItemFilter::nodes(int block) {
    const NodeItems* items = m_model.nodes(block);
    if (!items || (!m_choice.restrictsElements() && m_choice.nodes.empty())) return {};
    std::vector<bool> chosen(items->ids.size(), !m_choice.restrictsElements());
    for (const int id : blockIds(m_model.database(), BLOCK_ELEMENTS)) {
        if (!m_choice.restrictsElements() || !hasBlock(id)) continue;
        const ElementItems* elementItems = m_model.elements(id);
        if (!elementItems || elementItems->nodeBlock != block) continue;
        for (std::size_t e = 0; e < elementItems->ids.size(); ++e) {
            if (!isChosen(id, *elementItems, e)) continue;
            for (std::size_t n = elementItems->begins[e]; n < elementItems->begins[e + 1]; ++n) {
                if (elementItems->nodes[n] >= 0) chosen[std::size_t(elementItems->nodes[n])] = true;
            }
        }
    }
    for (std::size_t i = 0; i < chosen.size(); ++i) {
        chosen[i] = chosen[i] && contains(m_choice.nodes, items->ids[i]);
    }
    return chosen;
}

}  // namespace tools
