#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "import/ImportData.h"
#include "import/gmsh/GmshElementType.h"

namespace tools {

/// Sorts the elements of a gmsh file into parts. A part is a physical group, or, of elements
/// without one, a geometric entity. Elements of lower dimension than the model are parts when they
/// have a group, else they are its boundary and left out. Of elements with more than one group the
/// first one is the part, and the others are sets.
class GmshMesh {
public:
    /// A physical group or a geometric entity; both are numbered for each dimension.
    struct Tag {
        int dimension;
        int number;

        auto operator<=>(const Tag&) const = default;
    };

    void nameGroup(Tag group, const std::string& name) { m_groupNames[group] = name; }
    void addGroupOfEntity(Tag entity, int group);
    const std::vector<int>& groupsOf(Tag entity) const;

    /// Begins elements of a type, of an entity and some groups.
    void beginElements(const GmshElementType& type, int entity, const std::vector<int>& groups);

    /// Adds one of those; `nodes` are as many as the type has in the file.
    void addElement(int id, const std::vector<int>& nodes);

    bool isEmpty() const { return m_collections.empty(); }

    /// Takes the elements and the names of their parts; says what was left out.
    void deliver(ImportData& data);

private:
    // The elements of one group, or, without one, of one entity.
    struct Key {
        Tag tag;
        bool isEntity;

        auto operator<=>(const Key&) const = default;
    };

    using Collections = std::map<Key, std::map<int, ImportElementGroup>>;  // by gmsh's element type

    void dropBoundary(ImportData& data);
    std::map<Key, int> numberParts() const;
    std::string nameOf(const Key& key) const;
    std::string nameOfGroup(Tag group) const;
    void deliverSets(ImportData& data);

    std::map<Tag, std::string> m_groupNames;
    std::map<Tag, std::vector<int>> m_groupsOfEntities;
    Collections m_collections;
    std::map<Tag, std::vector<int>> m_sets;  // ids of elements that have another group before
    ImportElementGroup* m_current = nullptr;
    std::size_t m_nodeCount = 0;  // of the current type
    std::vector<std::vector<int>*> m_currentSets;
};

}  // namespace tools
