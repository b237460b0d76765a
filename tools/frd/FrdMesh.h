#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "NuoCore/PtrRef.h"
#include "NuoZRFx/Database.h"
#include "frd/FrdData.h"

namespace tools {

/// The nodes and elements of a result file as blocks: one block of nodes, and for each material a
/// part, which is a block of elements of one group a type. Ids are kept.
class FrdMesh {
public:
    /// Block ids.
    static constexpr int kNodeBlockId = 1;

    struct Part {
        int material;
        int blockId;
    };

    /// Takes nodes, then the elements between them. On failure, the reason.
    bool setNodes(FrdNodes& nodes, std::string* error);
    bool setElements(FrdElements& elements, std::string* error);
    bool isComplete() const { return !m_parts.empty(); }

    /// Writes all blocks of the mesh and lets go of what the operations below do not need. The
    /// library's log says why it failed.
    bool write(nuo::zrfx::Database& database, const std::map<int, std::string>& materialNames);

    const std::vector<int>& nodeIds() const { return m_nodes.ids; }

    /// -1 when there is no such node.
    int nodeIndex(int nodeId) const;

    const std::vector<Part>& parts() const { return m_parts; }
    std::size_t elementCount() const { return m_elementCount; }

    /// Length of the diagonal of the box around all nodes.
    float size() const { return m_size; }

private:
    bool indexNodes(std::string* error);
    bool convert(int type, FrdElementGroup& group, std::string* error) const;
    bool writeNodes(nuo::zrfx::Database& database) const;
    bool writePart(nuo::zrfx::Database& database, const Part& part) const;
    bool writeGeometry(nuo::zrfx::Database& database,
                       const std::map<int, std::string>& materialNames) const;

    FrdNodes m_nodes;
    FrdElements m_elements;
    std::vector<Part> m_parts;
    std::vector<int> m_indices;                      // by node id, where ids are dense
    std::unordered_map<int, int> m_indicesOfSparse;  // where they are not
    std::size_t m_elementCount = 0;
    float m_size = 0;
};

}  // namespace tools
