#include "frd/FrdMesh.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "NuoZRFx/ElementBlock.h"
#include "NuoZRFx/GeometryBlock.h"
#include "NuoZRFx/GeometryInfoBlock.h"
#include "NuoZRFx/NodeBlock.h"
#include "frd/FrdElementType.h"

namespace tools {
namespace {

using nuo::PtrRef;
using nuo::zrfx::Database;
using nuo::zrfx::ElementBlock;
using nuo::zrfx::GeometryBlock;
using nuo::zrfx::GeometryInfoBlock;
using nuo::zrfx::NodeBlock;

bool fail(std::string* error, std::string reason) {
    *error = std::move(reason);
    return false;
}

float diagonal(const std::vector<float>& coordinates) {
    float sum = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        float low = coordinates[axis];
        float high = low;
        for (std::size_t i = axis; i < coordinates.size(); i += 3) {
            low = std::min(low, coordinates[i]);
            high = std::max(high, coordinates[i]);
        }
        sum += (high - low) * (high - low);
    }
    return std::sqrt(sum);
}

}  // namespace

bool FrdMesh::setNodes(FrdNodes& nodes, std::string* error) {
    if (!m_nodes.ids.empty()) return fail(error, "a second mesh cannot be imported");
    if (nodes.ids.empty()) return fail(error, "the block of nodes is empty");
    m_nodes = std::move(nodes);
    if (!std::all_of(m_nodes.coordinates.begin(), m_nodes.coordinates.end(),
                     [](float value) { return std::isfinite(value); })) {
        return fail(error, "a node has a coordinate that is no finite number");
    }
    m_size = diagonal(m_nodes.coordinates);
    return indexNodes(error);
}

bool FrdMesh::indexNodes(std::string* error) {
    const auto [low, high] = std::minmax_element(m_nodes.ids.begin(), m_nodes.ids.end());
    if (*low < 0) return fail(error, "node id " + std::to_string(*low) + " is negative");
    const std::size_t count = m_nodes.ids.size();
    const bool isDense = static_cast<std::size_t>(*high) < 4 * count + 1024;
    if (isDense) {
        m_indices.assign(static_cast<std::size_t>(*high) + 1, -1);
    } else {
        m_indicesOfSparse.reserve(count);
    }
    for (std::size_t i = 0; i < count; ++i) {
        const int id = m_nodes.ids[i];
        if (nodeIndex(id) >= 0) {
            return fail(error, "node id " + std::to_string(id) + " is there twice");
        }
        (isDense ? m_indices[id] : m_indicesOfSparse[id]) = static_cast<int>(i);
    }
    return true;
}

int FrdMesh::nodeIndex(int nodeId) const {
    if (!m_indices.empty()) {
        const bool isInside = nodeId >= 0 && static_cast<std::size_t>(nodeId) < m_indices.size();
        return isInside ? m_indices[nodeId] : -1;
    }
    const auto found = m_indicesOfSparse.find(nodeId);
    return found == m_indicesOfSparse.end() ? -1 : found->second;
}

bool FrdMesh::setElements(FrdElements& elements, std::string* error) {
    if (m_nodes.ids.empty()) return fail(error, "the elements come before their nodes");
    if (isComplete()) return fail(error, "a second mesh cannot be imported");
    if (elements.empty()) return fail(error, "the block of elements is empty");
    m_elements = std::move(elements);
    for (auto& [key, group] : m_elements) {
        const auto [material, type] = key;
        if (material < 0) return fail(error, "an element has a negative material number");
        if (!convert(type, group, error)) return false;
        m_elementCount += group.ids.size();
        if (!m_parts.empty() && m_parts.back().material == material) continue;
        m_parts.push_back({material, static_cast<int>(m_parts.size()) + 1});
    }
    return true;
}

// In place: node ids in the order of the .frd file become indices in ours.
bool FrdMesh::convert(int type, FrdElementGroup& group, std::string* error) const {
    const std::span<const int> order = frdElementType(type)->order;
    std::array<int, 20> indices{};
    for (std::size_t element = 0; element < group.ids.size(); ++element) {
        const int id = group.ids[element];
        if (id < 0) return fail(error, "element id " + std::to_string(id) + " is negative");
        int* nodes = &group.nodes[element * order.size()];
        for (std::size_t i = 0; i < order.size(); ++i) {
            indices[i] = nodeIndex(nodes[order[i]]);
            if (indices[i] >= 0) continue;
            return fail(error, "element " + std::to_string(id) + " refers to node " +
                                   std::to_string(nodes[order[i]]) + ", which is not there");
        }
        std::copy_n(indices.begin(), order.size(), nodes);
    }
    return true;
}

bool FrdMesh::write(Database& database, const std::map<int, std::string>& materialNames) {
    bool isWritten = writeNodes(database) && writeGeometry(database, materialNames);
    for (const Part& part : m_parts) isWritten = isWritten && writePart(database, part);
    m_nodes.coordinates = {};
    m_elements.clear();
    return isWritten;
}

bool FrdMesh::writeNodes(Database& database) const {
    PtrRef<NodeBlock> block = new NodeBlock(kNodeBlockId, true);
    return block->setNodeData(m_nodes.coordinates.data(), m_nodes.ids.size(), m_nodes.ids.data()) &&
           database.writeBlock(block.p());
}

bool FrdMesh::writePart(Database& database, const Part& part) const {
    PtrRef<ElementBlock> block = new ElementBlock(part.blockId, true, false);
    block->setNodeBlockId(kNodeBlockId);
    for (auto it = m_elements.lower_bound({part.material, 0});
         it != m_elements.end() && it->first.first == part.material; ++it) {
        const FrdElementGroup& group = it->second;
        if (!block->addElementData(frdElementType(it->first.second)->type, group.nodes.data(),
                                   group.ids.size(), group.ids.data())) {
            return false;
        }
    }
    return database.writeBlock(block.p());
}

bool FrdMesh::writeGeometry(Database& database,
                            const std::map<int, std::string>& materialNames) const {
    PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
    PtrRef<GeometryInfoBlock> info = new GeometryInfoBlock(1);
    for (const auto& [material, blockId] : m_parts) {
        const auto found = materialNames.find(material);
        const bool isNamed = found != materialNames.end() && !found->second.empty();
        const std::string name = isNamed ? found->second : "Material " + std::to_string(material);
        if (!geometry->addElementBlock(0, blockId, material) ||
            !info->addPartInfo(0, material, name)) {
            return false;
        }
    }
    return database.writeBlock(geometry.p()) && database.writeBlock(info.p());
}

}  // namespace tools
