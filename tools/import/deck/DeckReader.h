#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <unordered_set>
#include <vector>

#include "IdIndex.h"
#include "import/deck/DeckFile.h"
#include "import/deck/DeckModel.h"

namespace tools {

/// Reads from a deck what a mesh lacks. Names are the same in capitals and in small letters.
class DeckReader {
public:
    /// The ids of nodes and elements of the mesh, which must live as long as this object: a deck
    /// may name any others.
    DeckReader(std::span<const int> nodes, std::span<const int> elements)
        : m_nodes(nodes), m_elements(elements), m_nodeIndex(nodes), m_elementIndex(elements) {}

    /// False, with the reason, when the deck cannot be read or is not sound.
    bool read(const std::string& path, std::string* error);

    DeckModel& model() { return m_model; }

private:
    using Take = bool (DeckReader::*)(const DeckLine& line);

    // A set while it is read.
    struct Target {
        std::vector<DeckSet>* sets = nullptr;
        std::map<std::string, std::size_t>* places = nullptr;
        std::span<const int> ids;  // of the mesh
        const IdIndex* index = nullptr;
    };
    using Places = std::map<std::string, std::size_t>;

    bool fail(const std::string& reason);
    void begin(const DeckLine& line);
    void beginSet(const Target& target, const std::string& name, Take take);
    void beginElements(const DeckLine& line);
    void beginSection(const DeckLine& line);
    void beginSurface(const DeckLine& line);
    DeckSet& set() { return (*m_target.sets)[m_setIndex]; }
    const DeckSet* findSet(const Target& target, const std::string& name);

    bool takeItems(const DeckLine& line);
    bool takeRange(const DeckLine& line);
    bool takeFirst(const DeckLine& line);
    bool takeElement(const DeckLine& line);
    bool takeFace(const DeckLine& line);
    bool addId(int id);
    void addFace(int element, int face);
    bool addRange(std::int64_t first, std::int64_t last, std::int64_t step);
    bool addSet(const std::string& name);
    bool count(std::size_t added);

    Target nodeTarget() { return {&m_model.nodeSets, &m_nodeSets, m_nodes, &m_nodeIndex}; }
    Target elementTarget() {
        return {&m_model.elementSets, &m_elementSets, m_elements, &m_elementIndex};
    }

    const std::span<const int> m_nodes;
    const std::span<const int> m_elements;
    const IdIndex m_nodeIndex;
    const IdIndex m_elementIndex;
    DeckFile m_file;
    DeckModel m_model;
    Places m_nodeSets;  // by name in capitals
    Places m_elementSets;
    std::unordered_set<int> m_otherElements;  // than volumes
    std::string m_error;
    std::size_t m_itemCount = 0;

    // Of the keyword whose data are read.
    Take m_take = nullptr;
    Target m_target;
    std::size_t m_setIndex = 0;
    std::size_t m_nodesPerElement = 0;  // 0 when the type is not known
    std::size_t m_missingFields = 0;    // of an element that goes on in the next line
    bool m_goesOn = false;
    bool m_isVolume = false;
};

}  // namespace tools
