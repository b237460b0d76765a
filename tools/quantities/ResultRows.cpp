#include "quantities/ResultRows.h"

#include <algorithm>

#include "IdIndex.h"
#include "content/Content.h"

namespace tools {

using namespace unstruct;

RowNames rowNamesOf(int mapping) {
    switch (mapping) {
        case MAPPING_NODE:
            return {"node", nullptr};
        case MAPPING_ELEMENT:
            return {"element", nullptr};
        case MAPPING_ELEMENT_NODE:
            return {"element", "node"};
        case MAPPING_SURFACE:
            return {"element", "surface"};
        default:
            return {"item", nullptr};
    }
}

bool ResultRows::forEach(const ZRFxResultBlock& result, int state, ItemFilter* filter,
                         const Take& take) {
    for (std::int64_t i = 0; i < result.GetStateCount(); ++i) {
        if (result.GetState(i)->m_iStateID != state) continue;
        for (const int id : itemsOf(result.GetState(i)->m_aiValuesBlockIDs)) {
            const auto values = readBlock<ZRFxResultValuesBlock>(m_model.database(), id);
            if (values.isNull() ||
                !takeBlock(*values, result.GetDescription().resultMapping, filter, take)) {
                return false;
            }
        }
    }
    return true;
}

bool ResultRows::takeBlock(const ZRFxResultValuesBlock& values, int mapping, ItemFilter* filter,
                           const Take& take) {
    const int target = values.GetMapToBlockID();
    if (mapping == MAPPING_NODE) {
        const NodeItems* nodes = m_model.nodes(target);
        if (!nodes) return false;
        takeItems(values, &nodes->ids, filter ? filter->nodes(target) : std::vector<bool>(), take);
        return true;
    }
    const ElementItems* elements = m_model.elements(target);
    if (!elements) return false;
    if (mapping == MAPPING_ELEMENT_NODE || mapping == MAPPING_SURFACE) {
        takeElementRows(values, mapping, *elements, filter, take);
        return true;
    }
    takeItems(values, &elements->ids, filter ? filter->elements(target) : std::vector<bool>(),
              take);
    return true;
}

// Values have ids of their own, which are those of the items, or belong to the items in order.
void ResultRows::takeItems(const ZRFxResultValuesBlock& values, const std::vector<int>* ids,
                           const std::vector<bool>& chosen, const Take& take) {
    const Reals reals = realsOf(values);
    const auto components = static_cast<std::size_t>(reals.components);
    std::optional<IdIndex> indices;
    if (values.GetIDs()) indices.emplace(*ids);
    ResultRow row;
    row.block = values.GetMapToBlockID();
    for (std::size_t i = 0; i < reals.values.size() / components; ++i) {
        const std::int64_t own = static_cast<std::int64_t>(i);
        const std::int64_t index = indices ? indices->indexOf((*values.GetIDs())[own]) : own;
        if (index < 0 || index >= static_cast<std::int64_t>(ids->size())) continue;
        row.index = static_cast<std::size_t>(index);
        if (!chosen.empty() && !chosen[row.index]) continue;
        row.id = (*ids)[row.index];
        row.values = reals.values.subspan(i * components, components);
        take(row);
    }
}

void ResultRows::takeElementRows(const ZRFxResultValuesBlock& values, int mapping,
                                 const ElementItems& items, ItemFilter* filter, const Take& take) {
    const Reals reals = realsOf(values);
    const auto components = static_cast<std::size_t>(reals.components);
    const NodeItems* nodes = m_model.nodes(items.nodeBlock);
    const auto chosen = filter ? filter->elements(values.GetMapToBlockID()) : std::vector<bool>();
    const auto chosenNodes = filter ? filter->nodes(items.nodeBlock) : std::vector<bool>();
    ResultRow row;
    row.block = values.GetMapToBlockID();
    std::size_t at = 0;
    for (row.index = 0; row.index < items.ids.size(); ++row.index) {
        const bool isAtNodes = mapping == MAPPING_ELEMENT_NODE;
        const std::size_t count = isAtNodes
                                      ? items.begins[row.index + 1] - items.begins[row.index]
                                      : static_cast<std::size_t>(items.surfaceCounts[row.index]);
        for (std::size_t n = 0; n < count; ++n, at += components) {
            if (at + components > reals.values.size()) return;
            if (!chosen.empty() && !chosen[row.index]) continue;
            row.node = static_cast<int>(n);
            row.nodeIndex = isAtNodes ? items.nodes[items.begins[row.index] + n] : -1;
            const auto node = static_cast<std::size_t>(row.nodeIndex);
            if (isAtNodes) row.node = nodes && row.nodeIndex >= 0 ? nodes->ids[node] : -1;
            const bool isLeftOut = row.nodeIndex >= 0 && !chosenNodes.empty() && !chosenNodes[node];
            if (isLeftOut) continue;
            row.id = items.ids[row.index];
            row.values = reals.values.subspan(at, components);
            take(row);
        }
    }
}

std::optional<nuo::Vec3f> ResultRows::positionOf(const ResultRow& row, int mapping) {
    if (mapping == MAPPING_NODE) {
        const NodeItems* nodes = m_model.nodes(row.block);
        if (!nodes) return std::nullopt;
        return nodes->positions[row.index];
    }
    const ElementItems* elements = m_model.elements(row.block);
    if (!elements) return std::nullopt;
    const NodeItems* nodes = m_model.nodes(elements->nodeBlock);
    if (!nodes) return std::nullopt;
    if (row.nodeIndex >= 0) return nodes->positions[static_cast<std::size_t>(row.nodeIndex)];
    return m_model.centre(*elements, row.index);
}

const PartItems* ResultRows::partOf(const ResultRow& row, int mapping, int state) {
    return mapping == MAPPING_NODE ? m_model.partOfNode(state, row.block, row.index)
                                   : m_model.partOfElements(state, row.block);
}

}  // namespace tools
