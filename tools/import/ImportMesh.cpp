#include "import/ImportMesh.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "NuoZRFx/ElementBlock.h"
#include "NuoZRFx/GeometryBlock.h"
#include "NuoZRFx/GeometryInfoBlock.h"
#include "NuoZRFx/NodeBlock.h"
#include "NuoZRFx/SetBlock.h"

namespace tools {
namespace {

using nuo::PtrRef;
using nuo::zrfx::Database;
using nuo::zrfx::ElementBlock;
using nuo::zrfx::GeometryBlock;
using nuo::zrfx::GeometryInfoBlock;
using nuo::zrfx::NodeBlock;
using nuo::zrfx::SetBlock;

constexpr std::size_t kMostNodes = 20;  // of an element of a fixed number of nodes

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

bool ImportMesh::setNodes(ImportNodes& nodes, std::string* error) {
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

bool ImportMesh::indexNodes(std::string* error) {
    const int lowest = *std::min_element(m_nodes.ids.begin(), m_nodes.ids.end());
    if (lowest < 0) return fail(error, "node id " + std::to_string(lowest) + " is negative");
    m_nodeIndex.emplace(m_nodes.ids);
    for (std::size_t i = 0; i < m_nodes.ids.size(); ++i) {
        const int id = m_nodes.ids[i];
        if (nodeIndex(id) == static_cast<std::int64_t>(i)) continue;
        return fail(error, "node id " + std::to_string(id) + " is there twice");
    }
    return true;
}

bool ImportMesh::setElements(ImportElements& elements, std::string* error) {
    if (m_nodes.ids.empty()) return fail(error, "the elements come before their nodes");
    if (isComplete()) return fail(error, "a second mesh cannot be imported");
    if (elements.groups.empty()) return fail(error, "the block of elements is empty");
    m_elements = std::move(elements);
    std::ranges::stable_sort(m_elements.groups, {}, &ImportElementGroup::partId);
    for (std::size_t i = 0; i < m_elements.groups.size(); ++i) {
        if (!convert(m_elements.groups[i], error)) return false;
        addToParts(i);
    }
    return true;
}

// In place: node ids in the order of the file become indices in ours.
bool ImportMesh::convert(ImportElementGroup& group, std::string* error) const {
    const std::size_t count = ElementBlock::nodesPerElement(group.type);
    std::array<int, kMostNodes> given{};
    for (std::size_t element = 0; element < group.ids.size(); ++element) {
        const int id = group.ids[element];
        if (id < 0) return fail(error, "element id " + std::to_string(id) + " is negative");
        int* nodes = &group.nodes[element * count];
        std::copy_n(nodes, count, given.begin());
        for (std::size_t i = 0; i < count; ++i) {
            const int node = given[group.placeInFile(i)];
            nodes[i] = static_cast<int>(nodeIndex(node));
            if (nodes[i] >= 0) continue;
            return fail(error, "element " + std::to_string(id) + " refers to node " +
                                   std::to_string(node) + ", which is not there");
        }
    }
    return true;
}

void ImportMesh::addToParts(std::size_t groupIndex) {
    const ImportElementGroup& group = m_elements.groups[groupIndex];
    if (m_parts.empty() || m_parts.back().id != group.partId) {
        const int blockId = static_cast<int>(m_parts.size()) + 1;
        m_parts.push_back({group.partId, blockId, group.isHidden, groupIndex, elementCount()});
    }
    ++m_parts.back().groupCount;
    m_parts.back().elementCount += group.ids.size();
}

std::size_t ImportMesh::elementCount() const {
    return m_parts.empty() ? 0 : m_parts.back().firstElement + m_parts.back().elementCount;
}

std::int64_t ImportMesh::elementIndex(int elementId) const {
    if (!m_elementIndex) {
        std::vector<int> ids;
        for (const ImportElementGroup& group : groups()) {
            ids.insert(ids.end(), group.ids.begin(), group.ids.end());
        }
        m_elementIndex.emplace(ids);
    }
    return m_elementIndex->indexOf(elementId);
}

bool ImportMesh::write(Database& database, const std::map<int, std::string>& partNames) {
    bool isWritten = writeNodes(database) && writeGeometry(database, partNames);
    for (const Part& part : m_parts) isWritten = isWritten && writePart(database, part);
    int setId = 0;
    for (const ImportSet& set : m_elements.sets) {
        isWritten = isWritten && writeSet(database, ++setId, set);
    }
    m_nodes.coordinates = {};
    m_elements.sets.clear();
    for (ImportElementGroup& group : m_elements.groups) group.nodes = {};
    return isWritten;
}

bool ImportMesh::writeNodes(Database& database) const {
    PtrRef<NodeBlock> block = new NodeBlock(kNodeBlockId, true);
    return block->setNodeData(m_nodes.coordinates.data(), m_nodes.ids.size(), m_nodes.ids.data()) &&
           database.writeBlock(block.p());
}

bool ImportMesh::writePart(Database& database, const Part& part) const {
    PtrRef<ElementBlock> block = new ElementBlock(part.blockId, true, false);
    block->setNodeBlockId(kNodeBlockId);
    for (std::size_t i = 0; i < part.groupCount; ++i) {
        const ImportElementGroup& group = groups()[part.firstGroup + i];
        if (!block->addElementData(group.type, group.nodes.data(), group.ids.size(),
                                   group.ids.data())) {
            return false;
        }
    }
    return database.writeBlock(block.p());
}

std::string ImportMesh::partName(int id, const std::map<int, std::string>& partNames) const {
    for (const auto* names : {&m_elements.partNames, &partNames}) {
        const auto found = names->find(id);
        if (found != names->end() && !found->second.empty()) return found->second;
    }
    return "Part " + std::to_string(id);
}

bool ImportMesh::writeGeometry(Database& database,
                               const std::map<int, std::string>& partNames) const {
    PtrRef<GeometryBlock> geometry = new GeometryBlock(1);
    PtrRef<GeometryInfoBlock> info = new GeometryInfoBlock(1);
    for (const Part& part : m_parts) {
        const std::string name = partName(part.id, partNames);
        if (!geometry->addElementBlock(0, part.blockId, part.id) ||
            !info->addPartInfo(0, part.id, name)) {
            return false;
        }
    }
    return database.writeBlock(geometry.p()) && database.writeBlock(info.p());
}

// Ids of elements that are not there are left out.
bool ImportMesh::writeSet(Database& database, int id, const ImportSet& set) const {
    PtrRef<SetBlock> block = new SetBlock(id, true);
    block->setSetId(id);
    block->setSetName(set.name);
    block->setItemType(SetBlock::ELEMENT_ITEMS);
    for (const int element : set.elementIds) {
        const std::int64_t index = elementIndex(element);
        if (index >= 0) block->addItem(element, partOf(index).blockId);
    }
    return database.writeBlock(block.p());
}

const ImportMesh::Part& ImportMesh::partOf(std::int64_t elementIndex) const {
    const auto after = std::ranges::upper_bound(m_parts, static_cast<std::size_t>(elementIndex), {},
                                                &Part::firstElement);
    return *std::prev(after);
}

}  // namespace tools
