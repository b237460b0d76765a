#include "import/deck/DeckSets.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "import/deck/DeckElementType.h"

namespace tools {
namespace {

using nuo::zrfx::ElementBlock;

constexpr const char* kNoIds = "is left out: no ids are free above those of the mesh";

// A face by the number of its nodes.
ElementBlock::ElementType faceType(std::size_t nodeCount) {
    switch (nodeCount) {
        case 3:
            return ElementBlock::TRIANGLES;
        case 4:
            return ElementBlock::QUADS;
        case 6:
            return ElementBlock::TRIANGLES_6;
        default:
            return ElementBlock::QUADS_8;
    }
}

}  // namespace

DeckSets::DeckSets(ImportElements& elements, std::map<int, std::string> partNames,
                   std::size_t nodeCount)
    : m_elements(elements), m_partNames(std::move(partNames)), m_nodeCount(nodeCount) {
    for (const ImportElementGroup& group : elements.groups) {
        m_lastPart = std::max(m_lastPart, group.partId);
        for (const int id : group.ids) m_lastElement = std::max(m_lastElement, id);
    }
    findElements();
}

void DeckSets::findElements() {
    std::vector<int> ids;
    m_places.clear();
    for (std::size_t g = 0; g < m_elements.groups.size(); ++g) {
        const auto& group = m_elements.groups[g];
        ids.insert(ids.end(), group.ids.begin(), group.ids.end());
        for (std::size_t i = 0; i < group.ids.size(); ++i) m_places.push_back({g, i});
    }
    m_index.emplace(ids);
}

void DeckSets::add(const DeckModel& model) {
    if (!model.sections.empty()) divide(model.sections);
    for (const DeckSet& set : model.elementSets) addSet(set);
    // Before points and faces are elements as well.
    if (!model.surfaces.empty()) findElements();
    for (const DeckSurface& surface : model.surfaces) addSurface(surface);
    for (const DeckSet& set : model.nodeSets) addPoints(set);
}

// The section of each element, the last one that has it; -1 where there is none.
std::vector<int> DeckSets::sectionsOf(std::span<const DeckSection> sections) const {
    std::vector<int> found(m_places.size(), -1);
    for (std::size_t s = 0; s < sections.size(); ++s) {
        for (const int id : sections[s].elementIds) {
            const std::int64_t place = m_index->indexOf(id);
            if (place >= 0) found[static_cast<std::size_t>(place)] = static_cast<int>(s);
        }
    }
    return found;
}

std::string DeckSets::partName(int part) const {
    const auto found = m_partNames.find(part);
    return found == m_partNames.end() ? "" : found->second;
}

// Parts have the number of their section, from 1; elements without one keep their part, under a
// number above these.
void DeckSets::divide(std::span<const DeckSection> sections) {
    const std::vector<int> sectionOf = sectionsOf(sections);
    const int sectionCount = static_cast<int>(sections.size());
    std::map<int, int> restParts;  // by the old id
    for (const ImportElementGroup& group : m_elements.groups) restParts[group.partId] = 0;
    m_lastPart = sectionCount;
    for (auto& [old, part] : restParts) {
        part = ++m_lastPart;
        m_elements.partNames[part] = partName(old);
    }
    for (int s = 0; s < sectionCount; ++s) {
        m_elements.partNames[s + 1] = sections[static_cast<std::size_t>(s)].name;
    }
    std::map<std::pair<int, std::size_t>, ImportElementGroup> divided;  // by part and old group
    for (std::size_t e = 0; e < m_places.size(); ++e) {
        const ImportElementGroup& from = m_elements.groups[m_places[e].group];
        const int part = sectionOf[e] >= 0 ? sectionOf[e] + 1 : restParts[from.partId];
        moveElement(from, m_places[e].index, part, divided[{part, m_places[e].group}]);
    }
    m_elements.groups.clear();
    for (auto& [key, group] : divided) m_elements.groups.push_back(std::move(group));
}

void DeckSets::moveElement(const ImportElementGroup& from, std::size_t index, int part,
                           ImportElementGroup& to) {
    const auto count = static_cast<std::ptrdiff_t>(ElementBlock::nodesPerElement(from.type));
    const auto nodes = from.nodes.begin() + static_cast<std::ptrdiff_t>(index) * count;
    to.partId = part;
    to.type = from.type;
    to.order = from.order;
    to.ids.push_back(from.ids[index]);
    to.nodes.insert(to.nodes.end(), nodes, nodes + count);
}

void DeckSets::note(const std::string& what, const std::string& name, const char* reason) {
    m_notes.push_back("the " + what + " " + name + " " + reason);
}

void DeckSets::addSet(const DeckSet& set) {
    if (set.lacksItems) note("set of elements", set.name, "has elements that the results lack");
    if (!set.ids.empty()) m_elements.sets.push_back({set.name, set.ids});
}

// Of a part and its elements.
bool DeckSets::hasIdsFor(std::size_t elementCount) const {
    constexpr int kHighest = std::numeric_limits<int>::max();
    return m_lastPart < kHighest &&
           elementCount <= static_cast<std::size_t>(kHighest - m_lastElement);
}

int DeckSets::newPart(const std::string& name, const char* kind) {
    const bool isTaken = std::ranges::any_of(m_elements.partNames,
                                             [&](const auto& part) { return part.second == name; });
    m_elements.partNames[++m_lastPart] = isTaken ? name + " (" + kind + ")" : name;
    return m_lastPart;
}

ImportElementGroup DeckSets::newGroup(int part, ElementType type) const {
    ImportElementGroup group;
    group.partId = part;
    group.type = type;
    group.isHidden = true;
    return group;
}

void DeckSets::addPoints(const DeckSet& set) {
    if (set.lacksItems) note("set of nodes", set.name, "has nodes that the results lack");
    if (set.ids.empty() || set.ids.size() == m_nodeCount) return;
    if (!hasIdsFor(set.ids.size())) return note("set of nodes", set.name, kNoIds);
    ImportElementGroup group = newGroup(newPart(set.name, "nodes"), ElementBlock::POINTS);
    group.nodes = set.ids;
    for (std::size_t i = 0; i < set.ids.size(); ++i) group.ids.push_back(++m_lastElement);
    m_elements.groups.push_back(std::move(group));
}

// The nodes of a face in the order of an element of its own; none when there is no such face.
std::vector<int> DeckSets::faceNodes(int element, int face) const {
    const std::int64_t found = m_index->indexOf(element);
    if (found < 0) return {};
    const auto [g, index] = m_places[static_cast<std::size_t>(found)];
    const ImportElementGroup& group = m_elements.groups[g];
    const auto corners = deckFaceCorners(group.type, face);
    if (corners.empty()) return {};
    const int* given = &group.nodes[index * ElementBlock::nodesPerElement(group.type)];
    for (std::size_t s = 0; s < ElementBlock::surfacesPerElement(group.type); ++s) {
        std::vector<int> nodes;
        std::size_t cornerCount = 0;
        for (const unsigned int node : ElementBlock::elementSurface(group.type, s)) {
            const auto place = static_cast<int>(group.placeInFile(node));
            nodes.push_back(given[place]);
            if (std::ranges::find(corners, place) != corners.end()) ++cornerCount;
        }
        if (cornerCount == corners.size()) return nodes;
    }
    return {};
}

void DeckSets::addSurface(const DeckSurface& surface) {
    if (!hasIdsFor(surface.faces.size())) return note("surface", surface.name, kNoIds);
    std::map<ElementType, ImportElementGroup> groups;
    bool lacksFaces = surface.lacksFaces;
    int part = 0;
    for (const auto& [element, face] : surface.faces) {
        const std::vector<int> nodes = faceNodes(element, face);
        lacksFaces |= nodes.empty();
        if (nodes.empty()) continue;
        if (part == 0) part = newPart(surface.name, "surface");
        const ElementType type = faceType(nodes.size());
        auto& group = groups.try_emplace(type, newGroup(part, type)).first->second;
        group.ids.push_back(++m_lastElement);
        group.nodes.insert(group.nodes.end(), nodes.begin(), nodes.end());
    }
    for (auto& [type, group] : groups) m_elements.groups.push_back(std::move(group));
    if (lacksFaces) note("surface", surface.name, "has faces that are those of no volume");
}

}  // namespace tools
