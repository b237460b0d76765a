#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "FileReader.h"
#include "nvf/PropertySetCollection.h"
#include "quantities/ModelItems.h"
#include "selection/ModelChoice.h"

namespace unstruct {
class ZRFxElementBlock;
class ZRFxGeometryBlock;
class ZRFxGeometryInfoBlock;
class ZRFxNodeBlock;
class ZRFxResultValuesBlock;
class ZRFxStateInfoBlock;
class ZRFxStatesBlock;
}  // namespace unstruct

namespace tools {

/// Chosen results, states and parts of a database, as blocks that fit together: parts take their
/// elements, nodes, values and sets along. What was computed of the whole model, such as cutting
/// planes, is left out.
class ModelSelection {
public:
    /// Both must live as long as this object.
    ModelSelection(unstruct::ZRFxDatabase& database, const ModelChoice& choice)
        : m_database(database), m_choice(choice), m_model(database) {}

    /// Finds what is chosen. False, with a sentence, when something is not there; with none when a
    /// block cannot be read, as the library's log says.
    bool resolve(std::string* error);

    /// Whether something of a block is wanted.
    bool keeps(int type, int id) const;

    /// What is wanted of a block that has been read: the block itself, changed, or a new one.
    nvf::ref<unstruct::ZRFxBlock> reduced(unstruct::ZRFxBlock& block) const;

    /// The viewer settings of a case that fit what is left.
    nvf::ref<nvf::PropertySetCollection> reduced(const nvf::PropertySetCollection& settings) const;

private:
    using IdSet = std::set<int>;

    // Where the nodes that are left were, and where the others went.
    struct NodeMap {
        std::vector<std::int64_t> oldOfNew;
        std::vector<std::int32_t> newOfOld;  // -1 for those that are left out
        IdSet ids;
    };

    bool resolveStates(std::string* error);
    bool resolveParts(std::string* error);
    bool resolveNodes();
    bool resolveResults(std::string* error);
    bool resolveTransformations();
    bool resolveValues(const unstruct::ZRFxStatesBlock& result, int valuesType, int targetType,
                       bool* hasValues);
    bool resolveSets();
    bool keepsTarget(int type, int id) const;

    void reduceStates(unstruct::ZRFxStateInfoBlock& block) const;
    void reduceResult(unstruct::ZRFxStatesBlock& block, int valuesType) const;
    void reduceNodes(unstruct::ZRFxNodeBlock& block) const;
    void reduceElements(unstruct::ZRFxElementBlock& block) const;
    void reduceValues(unstruct::ZRFxResultValuesBlock& block) const;
    nvf::ref<unstruct::ZRFxBlock> reducedGeometry(const unstruct::ZRFxGeometryBlock& block) const;
    nvf::ref<unstruct::ZRFxBlock> reducedInfo(const unstruct::ZRFxGeometryInfoBlock& block) const;

    unstruct::ZRFxDatabase& m_database;
    const ModelChoice& m_choice;
    ModelItems m_model;
    IdSet m_states;
    IdSet m_parts;
    IdSet m_resultIds;               // as viewer settings have them
    std::map<int, IdSet> m_blocks;   // by type, of the types that are chosen from
    IdSet m_valuesAtNodes;           // the blocks of them
    std::map<int, NodeMap> m_nodes;  // by block, of those that lose nodes
};

}  // namespace tools
