#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "FileReader.h"
#include "NuoCore/Vec3f.h"

namespace tools {

/// Nodes of one block. Nodes without ids have their indices, from 0, as such.
struct NodeItems {
    std::vector<int> ids;
    std::vector<nuo::Vec3f> positions;
};

/// Elements of one block, with all their nodes as indices into the block of nodes; -1 for one that
/// is missing. Elements without ids have their indices as such.
struct ElementItems {
    int nodeBlock = -1;
    std::vector<int> ids;
    std::vector<int> types;              ///< As ZRFxElementType has them.
    std::vector<std::size_t> begins{0};  ///< Of the nodes of each element, and the end.
    std::vector<std::int64_t> nodes;
    std::vector<int> surfaceCounts;  ///< Of each element.
};

/// A part in one state.
struct PartItems {
    int id;
    std::string name;
    std::vector<int> elementBlocks;
};

/// Nodes, elements, parts and sets of a database, read when they are asked for and kept. What
/// cannot be read is null or missing, with the library's message.
class ModelItems {
public:
    explicit ModelItems(unstruct::ZRFxDatabase& database) : m_database(database) {}

    unstruct::ZRFxDatabase& database() const { return m_database; }

    const NodeItems* nodes(int block);
    const ElementItems* elements(int block);

    /// The parts that a state has.
    const std::vector<PartItems>& parts(int state);

    /// The first part of a state that has the element block, or the node; null when none has.
    const PartItems* partOfElements(int state, int block);
    const PartItems* partOfNode(int state, int block, std::size_t index);

    /// The centre of an element: the mean of its nodes.
    nuo::Vec3f centre(const ElementItems& elements, std::size_t index);

private:
    std::unique_ptr<NodeItems> loadNodes(int block);
    std::unique_ptr<ElementItems> loadElements(int block);
    void markNodes(const PartItems& part, int number, int nodeBlock, std::vector<int>& parts);
    std::vector<PartItems> loadParts(int state);
    std::map<int, std::string> partNames();

    unstruct::ZRFxDatabase& m_database;
    std::map<int, std::unique_ptr<NodeItems>> m_nodes;
    std::map<int, std::unique_ptr<ElementItems>> m_elements;
    std::map<int, std::vector<PartItems>> m_parts;  // by state
    std::pair<int, int> m_nodePartsOf{-1, -1};      // state and node block
    std::vector<int> m_nodeParts;                   // place of the part of each node; -1 without
};

}  // namespace tools
