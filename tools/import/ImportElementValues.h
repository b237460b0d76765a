#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "import/ImportData.h"
#include "import/ImportMesh.h"

namespace tools {

/// Values at elements, or at the nodes of elements, sorted by the parts of the mesh. Both must live
/// as long as this object.
class ImportElementValues {
public:
    ImportElementValues(const ImportMesh& mesh, const ImportValues& values);

    /// Elements that the mesh does not have, or whose values are fewer than their nodes; they are
    /// left out.
    std::size_t strayCount() const { return m_strayCount; }

    /// The contents of one values block.
    struct PartValues {
        std::vector<int> ids;  ///< Empty when there is a value for each item.
        std::vector<float> values;
    };

    /// The values of a part, in the order of its elements: `size` numbers of each row from `first`
    /// on. No values when none are of this part. Nodes of elements have no ids: where only some
    /// elements have values, those of the others are undefined.
    PartValues ofPart(const ImportMesh::Part& part, std::size_t first, std::size_t size) const;

private:
    // An element that has values.
    struct Item {
        std::size_t element;  // over all parts
        std::size_t row;      // the first one
    };

    // Where the elements of a group and their nodes begin, over all parts.
    struct Group {
        std::size_t firstElement;
        std::size_t firstNode;
        std::size_t nodeCount;  // of each element
        const ImportElementGroup* content;
    };

    bool isAtNodes() const;
    void addItem(std::size_t index, std::size_t row);
    const Group& groupOf(std::size_t element) const;
    PartValues atElements(std::span<const Item> items, const ImportMesh::Part& part,
                          std::size_t first, std::size_t size) const;
    PartValues atNodes(std::span<const Item> items, const ImportMesh::Part& part, std::size_t first,
                       std::size_t size) const;

    const ImportMesh& m_mesh;
    const ImportValues& m_values;
    std::size_t m_rowSize = 0;
    std::vector<Group> m_groups;
    std::size_t m_nodeCount = 0;  // of all elements
    std::vector<Item> m_items;    // by element
    std::size_t m_strayCount = 0;
};

}  // namespace tools
