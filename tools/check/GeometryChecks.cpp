// Nodes, elements, face sets, parts and sets: what the model is made of.
#include <algorithm>
#include <cmath>

#include "Text.h"
#include "ZRUndefined.h"
#include "check/BlockChecks.h"
#include "check/CheckedDatabase.h"
#include "check/ElementVolume.h"
#include "content/Content.h"
#include "types/ZRFxElementType.h"

namespace tools {
namespace {

using namespace unstruct;
using nuo::Vec3d;

void warnDuplicates(const char* what, std::span<const std::int32_t> ids, Reporter reporter) {
    IdIndex::forEachDuplicate(ids, [&](std::size_t i) {
        reporter.warning(numbered(what, static_cast<std::int64_t>(i)),
                         "id " + std::to_string(ids[i]) + " is used before");
    });
}

bool isFinite(const Vec3d& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

/// The nodes that elements or polygons refer to, as the block says: by index, or by id.
class NodeFinder {
public:
    NodeFinder(const CheckedDatabase::Nodes* nodes, bool isById) : m_isById(isById) {
        if (!nodes || (isById && !nodes->ids)) return;
        m_nodes = nodes;
        m_positions = nodes->block->GetNodes().Data();
        m_count = nodes->block->GetNodes().GetSize();
    }

    bool isUsable() const { return m_nodes != nullptr; }

    /// The index of the node that is meant; -1 when there is none.
    std::int64_t indexOf(std::int32_t reference) const {
        if (m_isById) return m_nodes->ids->indexOf(reference);
        return reference >= 0 && reference < m_count ? reference : -1;
    }

    Vec3d position(std::int64_t index) const {
        const nuo::Vec3f& position = m_positions[index];
        return Vec3d(position.x, position.y, position.z);
    }

    std::string missing(std::int32_t reference) const {
        if (m_isById) return "there is no node of id " + std::to_string(reference);
        return "node index " + std::to_string(reference) + " is beyond the " +
               counted(static_cast<std::uint64_t>(m_count), "node");
    }

private:
    const CheckedDatabase::Nodes* m_nodes = nullptr;
    const nuo::Vec3f* m_positions = nullptr;
    std::int64_t m_count = 0;
    const bool m_isById;
};

/// Checks the elements of one group, one after the other.
class GroupCheck {
public:
    GroupCheck(const ZRFxElementBlock& block, const ZRFxElementBlockGroup& group,
               std::int64_t firstElement, const NodeFinder& finder, const CheckedDatabase& checked)
        : m_group(group),
          m_typeName(ZRFEMElementTypeName(group.m_iElementType).Bytes()),
          m_firstElement(firstElement),
          m_finder(finder),
          m_references(checked.reporter("node-reference", block)),
          m_repeated(checked.reporter("repeated-node", block)),
          m_volumes(checked.reporter("volume", block)) {}

    void run() {
        if (m_group.IsPolyhedron()) return runPolyhedrons();
        const int type = m_group.m_iElementType;
        const auto nodesPerElement = static_cast<std::size_t>(ZRFEMNodesPerElement(type));
        if (nodesPerElement == 0) return;
        std::optional<ElementVolume> volume;
        if (ZRFEMIsVolumeElement(type)) volume.emplace(type);
        const auto connectivity = itemsOf(m_group.m_aiConnectivity);
        for (std::int64_t i = 0; i < m_group.m_iNumElements; ++i) {
            const auto nodes = connectivity.subspan(static_cast<std::size_t>(i) * nodesPerElement,
                                                    nodesPerElement);
            const bool isSound = checkReferences(i, nodes) && checkRepeated(i, nodes);
            if (isSound && volume && isPlaced()) reportVolume(i, volume->of(m_positions));
        }
    }

private:
    std::string place(std::int64_t i) const {
        std::string text = numbered("element", m_firstElement + i);
        if (!m_group.m_aiIDs.IsEmpty()) text += numbered(" (id", m_group.m_aiIDs[i]) + ")";
        return text;
    }

    // Takes the positions of the nodes, too.
    bool checkReferences(std::int64_t i, std::span<const std::int32_t> nodes) {
        m_positions.clear();
        bool isSound = true;
        for (const std::int32_t node : nodes) {
            const std::int64_t index = m_finder.indexOf(node);
            if (index >= 0) {
                m_positions.push_back(m_finder.position(index));
            } else {
                m_references.error(place(i), m_finder.missing(node));
                isSound = false;
            }
        }
        return isSound;
    }

    // A collapsed element is a common way of modelling as long as something of it is left: an edge
    // of a beam, a triangle of a surface, a tetrahedron of a volume.
    bool checkRepeated(std::int64_t i, std::span<const std::int32_t> nodes) {
        bool isRepeated = false;
        for (std::size_t a = 1; a < nodes.size() && !isRepeated; ++a) {
            isRepeated = std::ranges::find(nodes.first(a), nodes[a]) != nodes.begin() + a;
        }
        if (!isRepeated) return true;
        const auto corners = nodes.first(std::min<std::size_t>(
            nodes.size(),
            static_cast<std::size_t>(ZRFEMCornerNodesPerElement(m_group.m_iElementType))));
        const std::set<std::int32_t> distinct(corners.begin(), corners.end());
        const bool isVolume = ZRFEMIsVolumeElement(m_group.m_iElementType);
        const std::size_t needed = isVolume ? 4 : corners.size() > 2 ? 3 : 2;
        if (distinct.size() < needed) {
            m_repeated.error(place(i),
                             m_typeName + " has " + counted(distinct.size(), "different corner"));
            return false;
        }
        m_repeated.warning(place(i), m_typeName + " has a node more than once");
        return true;
    }

    bool isPlaced() const { return std::ranges::all_of(m_positions, isFinite); }

    void reportVolume(std::int64_t i, double volume) {
        if (volume > 0) return;
        m_volumes.error(place(i), m_typeName + " has volume " +
                                      numberText(static_cast<float>(volume)) +
                                      (volume < 0 ? ": its nodes are in the wrong order" : ""));
    }

    void runPolyhedrons() {
        const std::int32_t* node = m_group.m_aiConnectivity.Data();
        const std::int32_t* faceNodeCount = m_group.m_aiPolyhedronFaceNodeCounts.Data();
        const std::int32_t* localNode = m_group.m_aiPolyhedronFaceLocalNodes.Data();
        for (std::int64_t i = 0; i < m_group.m_iNumElements; ++i) {
            const auto nodeCount =
                static_cast<std::size_t>(m_group.m_aiPolyhedronElementNodeCounts[i]);
            const std::int32_t faceCount = m_group.m_aiPolyhedronFaceCounts[i];
            const bool isSound = checkReferences(i, {node, nodeCount}) && isPlaced();
            double sixfoldVolume = 0;
            for (std::int32_t face = 0; face < faceCount; ++face) {
                const auto count = static_cast<std::size_t>(*faceNodeCount++);
                if (isSound && count > 0) sixfoldVolume += faceVolume({localNode, count});
                localNode += count;
            }
            if (isSound) reportVolume(i, sixfoldVolume / 6);
            node += nodeCount;
        }
    }

    double faceVolume(std::span<const std::int32_t> localNodes) {
        m_outline.clear();
        const Vec3d& origin = m_positions.front();
        for (const std::int32_t local : localNodes) {
            const Vec3d& node = m_positions[static_cast<std::size_t>(local)];
            m_outline.emplace_back(node.x - origin.x, node.y - origin.y, node.z - origin.z);
        }
        return sixfoldVolumeBelow(m_outline);
    }

    const ZRFxElementBlockGroup& m_group;
    const std::string m_typeName;
    const std::int64_t m_firstElement;
    const NodeFinder& m_finder;
    Reporter m_references;
    Reporter m_repeated;
    Reporter m_volumes;
    std::vector<Vec3d> m_positions;  // of the element at hand
    std::vector<Vec3d> m_outline;
};

void checkElementIds(const ZRFxElementBlock& block, const CheckedDatabase& checked) {
    ZRIntArray ids;
    if (block.GetWithIDs() && block.GetAllElementIDs(&ids)) {
        warnDuplicates("element", itemsOf(ids), checked.reporter("duplicate-id", block));
    }
}

// Whether the nodes that a block refers to can be looked up; says why not where nothing else does.
NodeFinder finderOf(const ZRFxBlock& block, int nodeBlockId, bool isById,
                    CheckedDatabase& checked) {
    const CheckedDatabase::Nodes* nodes = checked.nodes(nodeBlockId);
    if (nodes && isById && !nodes->ids) {
        checked.reporter("node-reference", block)
            .error("", "refers to nodes by ids, but the nodes have none");
    }
    return NodeFinder(nodes, isById);
}

// The parts of a state as ids, in their order.
std::vector<std::pair<int, int>> partsOf(const ZRFxGeometryState& state) {
    std::vector<std::pair<int, int>> parts;
    for (int g = 0; g < state.GetGeometryCountPerState(); ++g) {
        for (int p = 0; p < state.GetPartCount(g); ++p) {
            parts.emplace_back(g, state.GetPart(g, p).partID);
        }
    }
    return parts;
}

void checkPartIds(const ZRFxGeometryBlock& block, const ZRFxGeometryState& state,
                  CheckedDatabase& checked) {
    std::set<std::pair<int, int>> seen;
    for (const auto& [geometry, id] : partsOf(state)) {
        checked.partIds[{block.GetID(), geometry}].insert(id);
        if (seen.insert({geometry, id}).second) continue;
        checked.reporter("duplicate-id", block)
            .error(numbered("state", state.GetStateID()) + numbered(", geometry", geometry),
                   "part id " + std::to_string(id) + " is used more than once");
    }
}

}  // namespace

void checkNodes(const ZRFxNodeBlock& nodes, CheckedDatabase& checked) {
    if (nodes.GetNodeIDs()) {
        warnDuplicates("node", itemsOf(*nodes.GetNodeIDs()),
                       checked.reporter("duplicate-id", nodes));
    }
    Reporter reporter = checked.reporter("number", nodes);
    const auto positions = itemsOf(nodes.GetNodes());
    for (std::size_t i = 0; i < positions.size(); ++i) {
        const nuo::Vec3f& at = positions[i];
        if (std::isfinite(at.x + at.y + at.z) && !IsUndefined(at.x) && !IsUndefined(at.y) &&
            !IsUndefined(at.z)) {
            continue;
        }
        reporter.error(
            numbered("node", static_cast<std::int64_t>(i)),
            "lies at " + numberText(at.x) + " " + numberText(at.y) + " " + numberText(at.z));
    }
}

void checkElements(const ZRFxElementBlock& elements, CheckedDatabase& checked) {
    checkElementIds(elements, checked);
    const NodeFinder finder =
        finderOf(elements, elements.GetNodeBlockID(), elements.GetMapToNodeIDs(), checked);
    if (!finder.isUsable()) return;
    std::int64_t firstElement = 0;
    for (std::int64_t i = 0; i < elements.GetNumElementGroups(); ++i) {
        const ZRFxElementBlockGroup& group = *elements.GetElementGroup(i);
        GroupCheck(elements, group, firstElement, finder, checked).run();
        firstElement += group.m_iNumElements;
    }
}

void checkFaceSet(const ZRFxIndexedFaceSetBlock& faces, CheckedDatabase& checked) {
    const NodeFinder finder =
        finderOf(faces, faces.GetNodeBlockID(), faces.GetMapToNodeIDs(), checked);
    if (!finder.isUsable()) return;
    Reporter reporter = checked.reporter("node-reference", faces);
    const auto starts = itemsOf(faces.GetPolygonStarts());
    const auto connects = itemsOf(faces.GetConnects());
    for (std::size_t i = 0; i < connects.size(); ++i) {
        if (finder.indexOf(connects[i]) >= 0) continue;
        const auto next = std::ranges::upper_bound(starts, static_cast<std::int32_t>(i));
        reporter.error(numbered("polygon", next - starts.begin() - 1), finder.missing(connects[i]));
    }
}

void checkGeometry(const ZRFxGeometryBlock& geometry, CheckedDatabase& checked) {
    std::set<int> states;
    for (std::int64_t s = 0; s < geometry.GetStateCount(); ++s) {
        const ZRFxGeometryState& state = *geometry.GetState(s);
        if (!states.insert(state.GetStateID()).second) {
            checked.reporter("duplicate-id", geometry)
                .error(numbered("record", s),
                       numbered("state", state.GetStateID()) + " has a record already");
        }
        checkPartIds(geometry, state, checked);
        if (partsOf(state) != partsOf(*geometry.GetState(0))) {
            checked.reporter("geometry", geometry)
                .error(numbered("state", state.GetStateID()),
                       "its parts are not those of " +
                           numbered("state", geometry.GetState(0)->GetStateID()));
        }
    }
}

void checkGeometryInfo(const ZRFxGeometryInfoBlock& info, CheckedDatabase& checked) {
    for (int g = 0; g < info.GetGeometryCountPerState(); ++g) {
        std::set<int> ids;
        const auto shown = checked.partIds.find({info.GetID(), g});
        for (int p = 0; p < info.GetPartInfos(g)->GetPartCount(); ++p) {
            const int id = info.GetPartInfos(g)->GetPartInfo(p).partID;
            const std::string place = numbered("geometry", g) + numbered(", part", p);
            if (!ids.insert(id).second) {
                checked.reporter("duplicate-id", info)
                    .error(place, "part id " + std::to_string(id) + " is used more than once");
            } else if (shown == checked.partIds.end() || !shown->second.contains(id)) {
                checked.reporter("reference", info)
                    .warning(place, "there is no part of id " + std::to_string(id));
            }
        }
    }
}

void checkSet(const ZRFxSetBlock& set, CheckedDatabase& checked) {
    Reporter reporter = checked.reporter("set-item", set);
    for (std::int64_t g = 0; g < set.GetItemsCount(); ++g) {
        const ZRFxSetBlockItems& group = *set.GetItems(g);
        const ZRFxItemCounts* counts = checked.model().CountsOf(BLOCK_ELEMENTS, group.m_iBlockID);
        if (!counts) continue;
        const IdIndex* ids =
            set.GetItemsSpecifiedAsIDs() ? checked.elementIds(group.m_iBlockID) : nullptr;
        if (set.GetItemsSpecifiedAsIDs() && !ids) {
            reporter.error(numbered("group", g), "items are ids, but the elements have none");
            continue;
        }
        for (std::int64_t i = 0; i < group.m_aiItems.GetSize(); ++i) {
            const std::int32_t item = group.m_aiItems[i];
            const bool isThere = ids ? ids->indexOf(item) >= 0 : item >= 0 && item < counts->items;
            if (isThere) continue;
            reporter.error(numbered("group", g) + numbered(", item", i),
                           "there is no element " + std::string(ids ? "of id " : "") +
                               std::to_string(item) + " in " + numbered("block", group.m_iBlockID));
        }
    }
}

}  // namespace tools
