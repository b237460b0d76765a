#include "quantities/ModelItems.h"

#include <algorithm>
#include <numeric>

#include "blocks/mesh/ZRFxElementBlock.h"
#include "blocks/mesh/ZRFxElementBlockGroup.h"
#include "blocks/mesh/ZRFxGeometryBlock.h"
#include "blocks/mesh/ZRFxGeometryInfoBlock.h"
#include "blocks/mesh/ZRFxNodeBlock.h"
#include "content/Content.h"

namespace tools {
namespace {

using namespace unstruct;

void addGroup(const ZRFxElementBlockGroup& group, ElementItems& items) {
    const auto perElement = static_cast<std::size_t>(ZRFEMNodesPerElement(group.m_iElementType));
    for (std::int64_t i = 0; i < group.m_iNumElements; ++i) {
        const std::size_t count =
            group.IsPolyhedron()
                ? static_cast<std::size_t>(group.m_aiPolyhedronElementNodeCounts[i])
                : perElement;
        items.begins.push_back(items.begins.back() + count);
        items.surfaceCounts.push_back(group.IsPolyhedron()
                                          ? group.m_aiPolyhedronFaceCounts[i]
                                          : ZRFEMSurfacesPerElement(group.m_iElementType));
    }
    items.types.insert(items.types.end(), static_cast<std::size_t>(group.m_iNumElements),
                       group.m_iElementType);
    const auto nodes = itemsOf(group.m_aiConnectivity);
    items.nodes.insert(items.nodes.end(), nodes.begin(), nodes.end());
    const auto ids = itemsOf(group.m_aiIDs);
    items.ids.insert(items.ids.end(), ids.begin(), ids.end());
}

template <typename Items>
void numberWithoutIds(std::size_t count, Items& items) {
    if (!items.ids.empty()) return;
    items.ids.resize(count);
    std::iota(items.ids.begin(), items.ids.end(), 0);
}

// The record of a state; the first one for a state that has none.
const ZRFxGeometryState* stateOf(const ZRFxGeometryBlock& geometry, int state) {
    if (const ZRFxGeometryState* found = geometry.FindState(state)) return found;
    return geometry.GetStateCount() > 0 ? geometry.GetState(0) : nullptr;
}

void addParts(const ZRFxGeometryState& state, std::vector<PartItems>& parts) {
    for (int g = 0; g < state.GetGeometryCountPerState(); ++g) {
        for (int p = 0; p < state.GetPartCount(g); ++p) {
            const ZRFxGeometryPart part = state.GetPart(g, p);
            if (part.blockType != BLOCK_ELEMENTS) continue;
            auto found = std::ranges::find(parts, part.partID, &PartItems::id);
            if (found == parts.end()) found = parts.insert(found, {part.partID, {}, {}});
            found->elementBlocks.push_back(part.blockID);
        }
    }
}

void takeNames(const ZRFxGeometryInfoBlock& block, std::map<int, std::string>& names) {
    for (int g = 0; g < block.GetGeometryCountPerState(); ++g) {
        for (int p = 0; p < block.GetPartInfos(g)->GetPartCount(); ++p) {
            const ZRFxPartInfo part = block.GetPartInfos(g)->GetPartInfo(p);
            names.try_emplace(part.partID, part.partName.Bytes());
        }
    }
}

}  // namespace

const NodeItems* ModelItems::nodes(int block) {
    const auto [found, isNew] = m_nodes.try_emplace(block);
    if (isNew) found->second = loadNodes(block);
    return found->second.get();
}

const ElementItems* ModelItems::elements(int block) {
    const auto [found, isNew] = m_elements.try_emplace(block);
    if (isNew) found->second = loadElements(block);
    return found->second.get();
}

const std::vector<PartItems>& ModelItems::parts(int state) {
    const auto [found, isNew] = m_parts.try_emplace(state);
    if (isNew) found->second = loadParts(state);
    return found->second;
}

std::unique_ptr<NodeItems> ModelItems::loadNodes(int block) {
    const auto read = readBlock<ZRFxNodeBlock>(m_database, block);
    if (read.isNull()) return nullptr;
    auto items = std::make_unique<NodeItems>();
    const auto positions = itemsOf(read->GetNodes());
    items->positions.assign(positions.begin(), positions.end());
    if (const ZRIntArray* ids = read->GetNodeIDs()) {
        items->ids.assign(itemsOf(*ids).begin(), itemsOf(*ids).end());
    }
    numberWithoutIds(positions.size(), *items);
    return items;
}

std::unique_ptr<ElementItems> ModelItems::loadElements(int block) {
    const auto read = readBlock<ZRFxElementBlock>(m_database, block);
    if (read.isNull()) return nullptr;
    auto items = std::make_unique<ElementItems>();
    items->nodeBlock = read->GetNodeBlockID();
    for (std::int64_t g = 0; g < read->GetNumElementGroups(); ++g) {
        addGroup(*read->GetElementGroup(g), *items);
    }
    numberWithoutIds(items->begins.size() - 1, *items);
    const auto nodeBlock = readBlock<ZRFxNodeBlock>(m_database, items->nodeBlock);
    for (std::int64_t& node : items->nodes) {
        const std::int64_t count = nodeBlock.isNull() ? 0 : nodeBlock->GetNodes().GetSize();
        if (read->GetMapToNodeIDs() && count > 0) {
            node = nodeBlock->GetNodeIndex(static_cast<int>(node));
        }
        if (node >= count) node = -1;
    }
    return items;
}

std::map<int, std::string> ModelItems::partNames() {
    std::map<int, std::string> names;
    for (const int id : blockIds(m_database, BLOCK_GEOMETRY_INFO)) {
        const auto info = readBlock<ZRFxGeometryInfoBlock>(m_database, id);
        if (info.notNull()) takeNames(*info, names);
    }
    return names;
}

std::vector<PartItems> ModelItems::loadParts(int state) {
    std::vector<PartItems> parts;
    std::map<int, std::string> names = partNames();
    for (const int id : blockIds(m_database, BLOCK_GEOMETRY)) {
        const auto geometry = readBlock<ZRFxGeometryBlock>(m_database, id);
        if (geometry.isNull()) continue;
        if (const ZRFxGeometryState* record = stateOf(*geometry, state)) addParts(*record, parts);
        ZRFxGeometryInfoBlock legacy(&m_database, id);
        if (names.empty() && !geometry->HasGeometryCountPerState() &&
            geometry->GetLegacyGeometryInfo(&legacy)) {
            takeNames(legacy, names);
        }
    }
    for (PartItems& part : parts) part.name = names[part.id];
    return parts;
}

const PartItems* ModelItems::partOfElements(int state, int block) {
    for (const PartItems& part : parts(state)) {
        if (std::ranges::find(part.elementBlocks, block) != part.elementBlocks.end()) return &part;
    }
    return nullptr;
}

void ModelItems::markNodes(const PartItems& part, int number, int nodeBlock,
                           std::vector<int>& marked) {
    for (const int block : part.elementBlocks) {
        const ElementItems* items = elements(block);
        if (!items || items->nodeBlock != nodeBlock) continue;
        for (const std::int64_t node : items->nodes) {
            if (node >= 0 && marked[static_cast<std::size_t>(node)] < 0) {
                marked[static_cast<std::size_t>(node)] = number;
            }
        }
    }
}

const PartItems* ModelItems::partOfNode(int state, int block, std::size_t index) {
    const NodeItems* items = nodes(block);
    if (!items || index >= items->ids.size()) return nullptr;
    const auto& all = parts(state);
    if (m_nodePartsOf != std::pair(state, block)) {
        m_nodePartsOf = {state, block};
        m_nodeParts.assign(items->ids.size(), -1);
        for (std::size_t p = 0; p < all.size(); ++p) {
            markNodes(all[p], static_cast<int>(p), block, m_nodeParts);
        }
    }
    const int number = m_nodeParts[index];
    return number < 0 ? nullptr : &all[static_cast<std::size_t>(number)];
}

nuo::Vec3f ModelItems::centre(const ElementItems& elements, std::size_t index) {
    const NodeItems* items = nodes(elements.nodeBlock);
    double sum[3] = {};
    int count = 0;
    for (std::size_t n = elements.begins[index]; items && n < elements.begins[index + 1]; ++n) {
        if (elements.nodes[n] < 0) continue;
        const nuo::Vec3f& position = items->positions[static_cast<std::size_t>(elements.nodes[n])];
        sum[0] += double{position.x};
        sum[1] += double{position.y};
        sum[2] += double{position.z};
        ++count;
    }
    if (count == 0) return {};
    return {static_cast<float>(sum[0] / count), static_cast<float>(sum[1] / count),
            static_cast<float>(sum[2] / count)};
}

}  // namespace tools
