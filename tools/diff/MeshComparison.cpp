#include "diff/MeshComparison.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "blocks/sets/ZRFxSetBlock.h"
#include "content/Content.h"
#include "diff/ItemPairs.h"

namespace tools {
namespace {

using namespace unstruct;

// Mixes one more number into a hash (FNV-1a by words, with a final shift).
std::uint64_t mixed(std::uint64_t hash, std::int64_t number) {
    hash = (hash ^ static_cast<std::uint64_t>(number)) * 0x100000001b3ULL;
    return hash ^ (hash >> 29);
}

std::array<float, 3> coordinatesOf(const nuo::Vec3f& position) {
    return {position.x, position.y, position.z};
}

std::string positionText(const nuo::Vec3f& position) {
    return "(" + numberText(position.x) + ", " + numberText(position.y) + ", " +
           numberText(position.z) + ")";
}

double distance(const nuo::Vec3f& a, const nuo::Vec3f& b) {
    return std::hypot(double{a.x} - double{b.x}, double{a.y} - double{b.y},
                      double{a.z} - double{b.z});
}

// What a part is called: by a name that no other part has, else by its id.
std::string titleOf(const PartItems& part, const std::vector<PartItems>& all) {
    const auto sameCount = std::ranges::count(all, part.name, &PartItems::name);
    return part.name.empty() || sameCount > 1 ? std::to_string(part.id) : part.name;
}

bool areSame(const std::vector<PartItems>& a, const std::vector<PartItems>& b) {
    return std::ranges::equal(a, b, [](const PartItems& x, const PartItems& y) {
        return x.id == y.id && x.name == y.name && x.elementBlocks == y.elementBlocks;
    });
}

std::vector<int> idsAt(const std::vector<int>& ids, const std::vector<std::size_t>& indices) {
    std::vector<int> chosen;
    for (const std::size_t index : indices) chosen.push_back(ids[index]);
    return chosen;
}

}  // namespace

bool MeshComparison::gatherNodes(ModelItems& model, Nodes& nodes) {
    for (const int block : blockIds(model.database(), BLOCK_NODES)) {
        const NodeItems* items = model.nodes(block);
        if (!items) return false;
        nodes.ids.insert(nodes.ids.end(), items->ids.begin(), items->ids.end());
        nodes.positions.insert(nodes.positions.end(), items->positions.begin(),
                               items->positions.end());
    }
    return true;
}

bool MeshComparison::gatherElements(ModelItems& model, const Numbering& numbering,
                                    Elements& elements) {
    for (const int block : blockIds(model.database(), BLOCK_ELEMENTS)) {
        const ElementItems* items = model.elements(block);
        const NodeItems* nodes = items ? model.nodes(items->nodeBlock) : nullptr;
        if (!nodes) return false;
        elements.ids.insert(elements.ids.end(), items->ids.begin(), items->ids.end());
        for (std::size_t e = 0; e < items->ids.size(); ++e) {
            std::uint64_t hash = mixed(0xcbf29ce484222325ULL, items->types[e]);
            hash = mixed(hash, items->surfaceCounts[e]);
            for (std::size_t n = items->begins[e]; n < items->begins[e + 1]; ++n) {
                const std::int64_t node = items->nodes[n];
                const bool isThere = node >= 0;
                hash = mixed(
                    hash, isThere ? numbering.of(nodes->ids[static_cast<std::size_t>(node)]) : -1);
            }
            elements.contents.push_back(hash);
        }
    }
    return true;
}

Side MeshComparison::run() {
    Nodes nodesOfA;
    Nodes nodesOfB;
    if (!gatherNodes(m_a, nodesOfA)) return Side::A;
    if (!gatherNodes(m_b, nodesOfB)) return Side::B;
    compareNodes(nodesOfA, nodesOfB);
    Elements elementsOfA;
    Elements elementsOfB;
    if (!gatherElements(m_a, m_numberings.nodes, elementsOfA)) return Side::A;
    if (!gatherElements(m_b, {}, elementsOfB)) return Side::B;
    compareElements(elementsOfA, elementsOfB);
    compareGroups("set", setsOf(m_a, m_numberings.elements), setsOf(m_b, {}));
    return Side::NONE;
}

void MeshComparison::compareNodes(const Nodes& a, const Nodes& b) {
    const ItemPairs byId = pairByKey(a.ids, b.ids);
    std::vector<ItemPairs::Pair> moved;
    for (const ItemPairs::Pair& pair : byId.both) {
        const auto from = coordinatesOf(a.positions[pair.a]);
        const auto to = coordinatesOf(b.positions[pair.b]);
        const bool isSame =
            std::ranges::equal(from, to, [&](float x, float y) { return m_tolerance.holds(x, y); });
        if (!isSame) moved.push_back(pair);
    }
    if ((byId.isComplete() && moved.empty()) || areRenumbered(a, b)) return;
    addMissing("nodes", idsAt(a.ids, byId.onlyA), idsAt(b.ids, byId.onlyB));
    if (!moved.empty()) addMoved(a, b, moved, byId.both.size());
}

bool MeshComparison::areRenumbered(const Nodes& a, const Nodes& b) {
    std::vector<std::array<float, 3>> keysOfA(a.positions.size());
    std::vector<std::array<float, 3>> keysOfB(b.positions.size());
    std::ranges::transform(a.positions, keysOfA.begin(), coordinatesOf);
    std::ranges::transform(b.positions, keysOfB.begin(), coordinatesOf);
    const ItemPairs byPosition = pairByKey(keysOfA, keysOfB);
    if (!byPosition.isComplete()) return false;
    for (const auto& [i, j] : byPosition.both) m_numberings.nodes.add(a.ids[i], b.ids[j]);
    addRenumbered("nodes", m_numberings.nodes.changedCount(), a.ids.size());
    return true;
}

void MeshComparison::addMoved(const Nodes& a, const Nodes& b,
                              const std::vector<ItemPairs::Pair>& moved, std::size_t all) {
    const auto lengthOf = [&](const ItemPairs::Pair& pair) {
        return distance(a.positions[pair.a], b.positions[pair.b]);
    };
    const ItemPairs::Pair farthest = *std::ranges::max_element(moved, {}, lengthOf);
    m_differences.add(m_place + ", nodes", std::to_string(moved.size()) + " of " +
                                               std::to_string(all) + " lie elsewhere, farthest " +
                                               numbered("node", a.ids[farthest.a]) + " by " +
                                               numberText(static_cast<float>(lengthOf(farthest))) +
                                               ": " + positionText(a.positions[farthest.a]) +
                                               " and " + positionText(b.positions[farthest.b]));
}

void MeshComparison::compareElements(const Elements& a, const Elements& b) {
    const ItemPairs byId = pairByKey(a.ids, b.ids);
    std::vector<int> changed;
    for (const auto& [i, j] : byId.both) {
        if (a.contents[i] != b.contents[j]) changed.push_back(a.ids[i]);
    }
    if (byId.isComplete() && changed.empty()) return;
    const ItemPairs byContent = pairByKey(a.contents, b.contents);
    if (byContent.isComplete()) {
        for (const auto& [i, j] : byContent.both) m_numberings.elements.add(a.ids[i], b.ids[j]);
        return addRenumbered("elements", m_numberings.elements.changedCount(), a.ids.size());
    }
    addMissing("elements", idsAt(a.ids, byId.onlyA), idsAt(b.ids, byId.onlyB));
    if (changed.empty()) return;
    m_differences.add(m_place + ", elements", std::to_string(changed.size()) + " of " +
                                                  std::to_string(byId.both.size()) +
                                                  " have another type or other nodes, first " +
                                                  numbered("element", std::ranges::min(changed)));
}

void MeshComparison::addRenumbered(const std::string& what, std::size_t count, std::size_t all) {
    const std::string same = what == "nodes" ? "position" : "type and nodes";
    m_differences.add(m_place + ", " + what,
                      std::to_string(count) + " of " + std::to_string(all) +
                          " are numbered otherwise; the rest is compared by " + same);
}

void MeshComparison::addMissing(const std::string& what, const Ids& onlyA, const Ids& onlyB) {
    for (const bool isInA : {true, false}) {
        const Ids& ids = isInA ? onlyA : onlyB;
        if (ids.empty()) continue;
        m_differences.add(m_place + ", " + what,
                          std::to_string(ids.size()) + " only in " +
                              (isInA ? m_differences.nameOfA() : m_differences.nameOfB()) +
                              ", the first is " + std::to_string(std::ranges::min(ids)));
    }
}

std::map<std::string, MeshComparison::Ids> MeshComparison::setsOf(ModelItems& model,
                                                                  const Numbering& numbering) {
    std::map<std::string, Ids> sets;
    for (const int id : blockIds(model.database(), BLOCK_SET)) {
        const auto set = readBlock<ZRFxSetBlock>(model.database(), id);
        if (set.isNull()) continue;
        const bool hasName = !set->GetName().Bytes().empty();
        Ids& ids = sets[hasName ? set->GetName().Bytes() : std::to_string(set->GetSetID())];
        for (std::int64_t g = 0; g < set->GetItemsCount(); ++g) {
            const ElementItems* elements = model.elements(set->GetItems(g)->m_iBlockID);
            for (const int item : itemsOf(set->GetItems(g)->m_aiItems)) {
                const auto index = static_cast<std::size_t>(item);
                const bool isIndex =
                    !set->GetItemsSpecifiedAsIDs() && elements && index < elements->ids.size();
                ids.push_back(numbering.of(isIndex ? elements->ids[index] : item));
            }
        }
    }
    for (auto& [name, ids] : sets) std::ranges::sort(ids);
    return sets;
}

std::map<std::string, MeshComparison::Ids> MeshComparison::partsOf(ModelItems& model, int state,
                                                                   const Numbering& numbering) {
    std::map<std::string, Ids> parts;
    const auto& all = model.parts(state);
    for (const PartItems& part : all) {
        Ids& ids = parts[titleOf(part, all)];
        for (const int block : part.elementBlocks) {
            const ElementItems* elements = model.elements(block);
            if (!elements) continue;
            for (const int id : elements->ids) ids.push_back(numbering.of(id));
        }
        std::ranges::sort(ids);
    }
    return parts;
}

void MeshComparison::compareParts(int stateOfA, int stateOfB) {
    const auto& a = m_a.parts(stateOfA);
    const auto& b = m_b.parts(stateOfB);
    if (areSame(a, m_lastPartsOfA) && areSame(b, m_lastPartsOfB)) return;
    m_lastPartsOfA = a;
    m_lastPartsOfB = b;
    compareGroups("part", partsOf(m_a, stateOfA, m_numberings.elements),
                  partsOf(m_b, stateOfB, {}));
}

void MeshComparison::compareGroups(const std::string& what, const std::map<std::string, Ids>& a,
                                   const std::map<std::string, Ids>& b) {
    for (const auto& [name, ids] : a) {
        const std::string group = what + " " + name;
        const auto other = b.find(name);
        if (other == b.end()) {
            m_differences.onlyInA(m_place + ", " + group);
            continue;
        }
        Ids onlyA;
        Ids onlyB;
        std::ranges::set_difference(ids, other->second, std::back_inserter(onlyA));
        std::ranges::set_difference(other->second, ids, std::back_inserter(onlyB));
        addMissing(group + ", elements", onlyA, onlyB);
    }
    for (const auto& [name, ids] : b) {
        if (!a.contains(name)) m_differences.onlyInB(m_place + ", " + what + " " + name);
    }
}

}  // namespace tools
