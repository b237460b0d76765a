#include "import/ImportElementValues.h"

#include <algorithm>

namespace tools {

using nuo::zrfx::ElementBlock;
using nuo::zrfx::ResultBlock;

ImportElementValues::ImportElementValues(const ImportMesh& mesh, const ImportValues& values)
    : m_mesh(mesh), m_values(values) {
    for (const ImportField& field : values.fields) m_rowSize += field.size();
    std::size_t element = 0;
    for (const ImportElementGroup& group : mesh.groups()) {
        const std::size_t nodeCount = ElementBlock::nodesPerElement(group.type);
        m_groups.push_back({element, m_nodeCount, nodeCount, &group});
        element += group.ids.size();
        m_nodeCount += group.ids.size() * nodeCount;
    }
    std::size_t row = 0;
    for (std::size_t i = 0; i < values.ids.size(); ++i) {
        addItem(i, row);
        row += isAtNodes() ? static_cast<std::size_t>(values.rowCounts[i]) : 1;
    }
    m_strayCount = values.ids.size() - m_items.size();
    std::ranges::stable_sort(m_items, {}, &Item::element);
}

bool ImportElementValues::isAtNodes() const {
    return m_values.mapping == ResultBlock::ELEMENT_NODE_MAPPING;
}

void ImportElementValues::addItem(std::size_t index, std::size_t row) {
    const std::int64_t found = m_mesh.elementIndex(m_values.ids[index]);
    if (found < 0) return;
    const auto element = static_cast<std::size_t>(found);
    if (isAtNodes()) {
        const auto rowCount = static_cast<std::size_t>(m_values.rowCounts[index]);
        if (rowCount < groupOf(element).nodeCount) return;
    }
    m_items.push_back({element, row});
}

const ImportElementValues::Group& ImportElementValues::groupOf(std::size_t element) const {
    return *std::prev(std::ranges::upper_bound(m_groups, element, {}, &Group::firstElement));
}

ImportElementValues::PartValues ImportElementValues::ofPart(const ImportMesh::Part& part,
                                                            std::size_t first,
                                                            std::size_t size) const {
    const auto begin = std::ranges::lower_bound(m_items, part.firstElement, {}, &Item::element);
    const auto end = std::ranges::lower_bound(m_items, part.firstElement + part.elementCount, {},
                                              &Item::element);
    if (begin == end) return {};
    return isAtNodes() ? atNodes({begin, end}, part, first, size)
                       : atElements({begin, end}, part, first, size);
}

ImportElementValues::PartValues ImportElementValues::atElements(std::span<const Item> items,
                                                                const ImportMesh::Part& part,
                                                                std::size_t first,
                                                                std::size_t size) const {
    PartValues taken;
    bool isWhole = items.size() == part.elementCount;
    for (std::size_t i = 0; i < items.size(); ++i) {
        isWhole = isWhole && items[i].element == part.firstElement + i;
        taken.ids.push_back(m_values.ids[items[i].row]);
        const auto values =
            m_values.values.begin() + static_cast<std::ptrdiff_t>(items[i].row * m_rowSize + first);
        taken.values.insert(taken.values.end(), values, values + static_cast<std::ptrdiff_t>(size));
    }
    if (isWhole) taken.ids.clear();
    return taken;
}

ImportElementValues::PartValues ImportElementValues::atNodes(std::span<const Item> items,
                                                             const ImportMesh::Part& part,
                                                             std::size_t first,
                                                             std::size_t size) const {
    const std::size_t lastGroup = part.firstGroup + part.groupCount;
    const std::size_t firstNode = m_groups[part.firstGroup].firstNode;
    const std::size_t end =
        lastGroup < m_groups.size() ? m_groups[lastGroup].firstNode : m_nodeCount;
    PartValues taken{{}, std::vector<float>((end - firstNode) * size, kUndefined)};
    for (const Item& item : items) {
        const Group& group = groupOf(item.element);
        std::size_t node =
            group.firstNode + (item.element - group.firstElement) * group.nodeCount - firstNode;
        for (std::size_t i = 0; i < group.nodeCount; ++i, ++node) {
            const std::size_t row = item.row + group.content->placeInFile(i);
            std::copy_n(&m_values.values[row * m_rowSize + first], size,
                        &taken.values[node * size]);
        }
    }
    return taken;
}

}  // namespace tools
