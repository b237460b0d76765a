#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "IdIndex.h"
#include "import/ImportData.h"
#include "import/deck/DeckModel.h"

namespace tools {

/// Adds to the elements of a mesh what a deck knows of them: sections become parts, sets of
/// elements sets, and what the format has no place for becomes a part of its own: a set of nodes
/// one of points, a surface one of its faces.
class DeckSets {
public:
    /// Nodes of the elements are in the order of the solver; the names are those of its results.
    /// The number is that of all nodes of the mesh.
    DeckSets(ImportElements& elements, std::map<int, std::string> partNames, std::size_t nodeCount);

    void add(const DeckModel& model);

    /// On what was left out, one line each.
    const std::vector<std::string>& notes() const { return m_notes; }

private:
    using ElementType = nuo::zrfx::ElementBlock::ElementType;

    // Where an element lies.
    struct Place {
        std::size_t group;
        std::size_t index;
    };

    void findElements();
    std::vector<int> sectionsOf(std::span<const DeckSection> sections) const;
    void divide(std::span<const DeckSection> sections);
    static void moveElement(const ImportElementGroup& from, std::size_t index, int part,
                            ImportElementGroup& to);
    bool hasIdsFor(std::size_t elementCount) const;
    std::string partName(int part) const;
    void addSet(const DeckSet& set);
    // Sets of all nodes say nothing, and would take the most.
    void addPoints(const DeckSet& set);
    void addSurface(const DeckSurface& surface);
    std::vector<int> faceNodes(int element, int face) const;
    ImportElementGroup newGroup(int part, ElementType type) const;
    int newPart(const std::string& name, const char* kind);
    void note(const std::string& what, const std::string& name, const char* reason);

    ImportElements& m_elements;
    const std::map<int, std::string> m_partNames;
    const std::size_t m_nodeCount;
    std::vector<Place> m_places;
    std::optional<IdIndex> m_index;  // of m_places
    int m_lastPart = 0;
    int m_lastElement = 0;
    std::vector<std::string> m_notes;
};

}  // namespace tools
