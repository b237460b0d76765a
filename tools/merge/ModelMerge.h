#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "FileReader.h"
#include "blocks/results/ZRFxResultBlock.h"
#include "blocks/results/ZRFxResultValuesBlock.h"
#include "blocks/results/ZRFxStateInfoBlock.h"

namespace tools {

/// Adds one model to another, block by block. Where both have the same nodes and elements, the
/// states of the other go on; where not, its parts come beside those that are there. States are
/// the same when they have one reference value, results when they have one name. The library's log
/// says why an operation failed.
class ModelMerge {
public:
    /// Both must live as long as this object; the first is opened for writing.
    ModelMerge(unstruct::ZRFxDatabase& into, unstruct::ZRFxDatabase& from)
        : m_into(into), m_from(from) {}

    bool run();

    /// What was added, in words, and what was not.
    const std::string& summary() const { return m_summary; }

    /// The states that were added.
    const std::vector<int>& newStates() const { return m_newStates; }

private:
    using IdMap = std::map<int, int>;  // ids in the one of ids in the other

    bool compareMeshes(bool* areSame);
    bool haveSameBlocks(int type, bool* areSame);
    bool addStates();
    bool addGeometryStates();
    bool addParts();
    bool addNodes(int id);
    bool addElements(int id);
    bool addGeometry();
    bool addSets();
    bool addResults();
    bool addResult(const unstruct::ZRFxResultBlock& from);
    bool addValues(int id, int mapping, int* newId);
    nvf::ref<unstruct::ZRFxResultBlock> resultLike(const unstruct::ZRFxResultBlock& from);
    int freeId(int type) const;
    int stateLike(const unstruct::ZRFxStateInfo& from,
                  const unstruct::ZRFxStateInfoBlock& states) const;

    unstruct::ZRFxDatabase& m_into;
    unstruct::ZRFxDatabase& m_from;
    bool m_hasSameMesh = false;
    IdMap m_states;  // with values to be added
    IdMap m_nodes;
    IdMap m_elements;
    std::vector<int> m_newStates;
    int m_leftOutCount = 0;  // states
    int m_partCount = 0;
    std::string m_summary;
};

}  // namespace tools
