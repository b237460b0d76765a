#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "IdIndex.h"
#include "NuoCore/PtrRef.h"
#include "NuoZRFx/Database.h"
#include "import/ImportData.h"

namespace tools {

/// The nodes and elements of a model as blocks: one block of nodes, and for each part a block of
/// elements with the groups of the part. Ids are kept.
class ImportMesh {
public:
    /// Block ids.
    static constexpr int kNodeBlockId = 1;

    struct Part {
        int id;
        int blockId;
        bool isHidden;
        std::size_t firstGroup;    ///< Of its groups, which follow one another.
        std::size_t firstElement;  ///< Of its elements, counted over all parts.
        std::size_t groupCount = 0;
        std::size_t elementCount = 0;
    };

    /// Takes nodes, then the elements between them. On failure, the reason.
    bool setNodes(ImportNodes& nodes, std::string* error);
    bool setElements(ImportElements& elements, std::string* error);
    bool isComplete() const { return !m_parts.empty(); }

    /// Writes all blocks of the mesh and lets go of what the operations below do not need. The
    /// library's log says why it failed.
    bool write(nuo::zrfx::Database& database, const std::map<int, std::string>& partNames);

    const std::vector<int>& nodeIds() const { return m_nodes.ids; }

    /// The index of a node, and of an element over all parts in their order; -1 when there is none
    /// of that id.
    std::int64_t nodeIndex(int nodeId) const { return m_nodeIndex->indexOf(nodeId); }
    std::int64_t elementIndex(int elementId) const;

    /// In the order of their ids.
    const std::vector<Part>& parts() const { return m_parts; }
    const Part& partOf(std::int64_t elementIndex) const;
    std::size_t elementCount() const;

    /// The groups, part after part. They have no nodes any more once they are written.
    const std::vector<ImportElementGroup>& groups() const { return m_elements.groups; }

    /// Length of the diagonal of the box around all nodes.
    float size() const { return m_size; }

private:
    bool indexNodes(std::string* error);
    bool convert(ImportElementGroup& group, std::string* error) const;
    void addToParts(std::size_t groupIndex);
    bool writeNodes(nuo::zrfx::Database& database) const;
    bool writePart(nuo::zrfx::Database& database, const Part& part) const;
    std::string partName(int id, const std::map<int, std::string>& partNames) const;
    bool writeGeometry(nuo::zrfx::Database& database,
                       const std::map<int, std::string>& partNames) const;
    bool writeSet(nuo::zrfx::Database& database, int id, const ImportSet& set) const;

    ImportNodes m_nodes;
    ImportElements m_elements;
    std::vector<Part> m_parts;
    std::optional<IdIndex> m_nodeIndex;
    mutable std::optional<IdIndex> m_elementIndex;  // made when it is needed first
    float m_size = 0;
};

}  // namespace tools
