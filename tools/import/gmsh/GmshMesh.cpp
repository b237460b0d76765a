#include "import/gmsh/GmshMesh.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <set>
#include <tuple>

#include "NuoZRFx/ElementBlock.h"
#include "Text.h"

namespace tools {
namespace {

using nuo::zrfx::ElementBlock;

// The sign of a number is an orientation.
int unsignedNumber(int number) {
    return std::abs(std::max(number, -std::numeric_limits<int>::max()));
}

constexpr const char* kEntityNames[] = {"point", "curve", "surface", "volume"};

}  // namespace

void GmshMesh::addGroupOfEntity(Tag entity, int group) {
    m_groupsOfEntities[entity].push_back(group);
}

const std::vector<int>& GmshMesh::groupsOf(Tag entity) const {
    static const std::vector<int> none;
    const auto found = m_groupsOfEntities.find(entity);
    return found == m_groupsOfEntities.end() ? none : found->second;
}

void GmshMesh::beginElements(const GmshElementType& type, int entity,
                             const std::vector<int>& groups) {
    const bool isEntity = groups.empty();
    const Key key{{type.dimension, unsignedNumber(isEntity ? entity : groups.front())}, isEntity};
    m_current = &m_collections[key][type.number];
    m_current->type = type.type;
    m_current->order = type.order;
    m_nodeCount = ElementBlock::nodesPerElement(type.type);
    m_currentSets.clear();
    for (std::size_t i = 1; i < groups.size(); ++i) {
        m_currentSets.push_back(&m_sets[{type.dimension, unsignedNumber(groups[i])}]);
    }
}

void GmshMesh::addElement(int id, const std::vector<int>& nodes) {
    m_current->ids.push_back(id);
    m_current->nodes.insert(m_current->nodes.end(), nodes.begin(),
                            nodes.begin() + static_cast<std::ptrdiff_t>(m_nodeCount));
    for (std::vector<int>* set : m_currentSets) set->push_back(id);
}

void GmshMesh::deliver(ImportData& data) {
    dropBoundary(data);
    deliverSets(data);
    for (const auto& [key, partId] : numberParts()) {
        data.header.partNames[partId] = nameOf(key);
        for (auto& [type, group] : m_collections[key]) {
            group.partId = partId;
            data.elements.groups.push_back(std::move(group));
        }
    }
    m_collections.clear();
}

void GmshMesh::dropBoundary(ImportData& data) {
    int highest = 0;
    for (const auto& [key, groups] : m_collections) {
        highest = std::max(highest, key.tag.dimension);
    }
    std::size_t count = 0;
    std::erase_if(m_collections, [&](const auto& collection) {
        const auto& [key, groups] = collection;
        if (!key.isEntity || key.tag.dimension == highest) return false;
        for (const auto& [type, group] : groups) count += group.ids.size();
        return true;
    });
    if (count == 0) return;
    data.notes.push_back(counted(count, "element") +
                         " of the boundary that are in no physical group were left out");
}

// Parts have the numbers of their groups or entities. Where a number is taken, that of the higher
// dimension keeps it, and the groups go before the entities; the others get the lowest free ones.
std::map<GmshMesh::Key, int> GmshMesh::numberParts() const {
    std::vector<Key> keys;
    for (const auto& [key, groups] : m_collections) keys.push_back(key);
    std::ranges::sort(keys, {}, [](const Key& key) {
        return std::tuple(key.isEntity, -key.tag.dimension, key.tag.number);
    });
    std::map<Key, int> numbers;
    std::set<int> taken;
    std::vector<Key> others;
    for (const Key& key : keys) {
        if (taken.insert(key.tag.number).second) {
            numbers[key] = key.tag.number;
        } else {
            others.push_back(key);
        }
    }
    int free = 1;
    for (const Key& key : others) {
        while (!taken.insert(free).second) ++free;
        numbers[key] = free;
    }
    return numbers;
}

std::string GmshMesh::nameOf(const Key& key) const {
    if (!key.isEntity) return nameOfGroup(key.tag);
    std::string name = kEntityNames[key.tag.dimension];
    name[0] = static_cast<char>(name[0] - 'a' + 'A');
    return numbered(name, key.tag.number);
}

std::string GmshMesh::nameOfGroup(Tag group) const {
    const auto found = m_groupNames.find(group);
    if (found != m_groupNames.end() && !found->second.empty()) return found->second;
    return numbered(std::string("Physical ") + kEntityNames[group.dimension], group.number);
}

// A group that is the part of other elements is a set of both.
void GmshMesh::deliverSets(ImportData& data) {
    for (auto& [tag, ids] : m_sets) {
        const auto part = m_collections.find({tag, false});
        if (part != m_collections.end()) {
            for (const auto& [type, group] : part->second) {
                ids.insert(ids.end(), group.ids.begin(), group.ids.end());
            }
        }
        data.elements.sets.push_back({nameOfGroup(tag), std::move(ids)});
    }
    m_sets.clear();
}

}  // namespace tools
