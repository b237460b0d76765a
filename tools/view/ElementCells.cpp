#include "view/ElementCells.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "types/ZRFxElementType.h"

namespace tools {
namespace {

using namespace unstruct;
using LocalNodes = std::vector<unsigned int>;

constexpr std::size_t kMostCorners = std::numeric_limits<std::uint16_t>::max();

/// A cell of every element of a type, by the element's own numbers of its nodes.
struct CellShape {
    CellKind kind;
    LocalNodes nodes;
};

// From the corners, then the mid-side nodes, each behind its corner; a node in the middle of the
// face is not of its edge.
CellShape faceShape(const LocalNodes& surface, QuadraticSides sides) {
    const std::size_t corners = surface.size() < 6 ? surface.size() : surface.size() == 6 ? 3 : 4;
    if (corners == surface.size() || sides == QuadraticSides::STRAIGHT) {
        return {CellKind::FACE, {surface.begin(), surface.begin() + std::ptrdiff_t(corners)}};
    }
    CellShape shape{CellKind::QUADRATIC_FACE, {}};
    for (std::size_t i = 0; i < corners; ++i) {
        shape.nodes.push_back(surface[i]);
        shape.nodes.push_back(surface[corners + i]);
    }
    return shape;
}

std::vector<CellShape> shapesOf(int type, QuadraticSides sides) {
    if (type == ELEMENT_POINT) return {{CellKind::POINT, {0}}};
    if (type == ELEMENT_BEAM) return {{CellKind::LINE, {0, 1}}};
    if (type == ELEMENT_BEAM_3) return {{CellKind::LINE, {0, 2, 1}}};
    std::vector<CellShape> shapes;
    for (int s = 0; s < ZRFEMSurfacesPerElement(type); ++s) {
        shapes.push_back(faceShape(ZRFEMElementSurface(type, s), sides));
    }
    return shapes;
}

/// Hands out the cells of one block.
class CellWalk {
public:
    CellWalk(const ElementItems& items, QuadraticSides sides,
             const std::function<void(const ElementCell&)>& take)
        : m_items(items), m_sides(sides), m_take(take) {}

    void walk(const ZRFxElementBlockGroup& group) {
        group.IsPolyhedron() ? walkPolyhedrons(group) : walkShapes(group);
    }

    std::int64_t damaged() const { return m_damaged; }

private:
    void walkShapes(const ZRFxElementBlockGroup& group) {
        const auto shapes = shapesOf(group.m_iElementType, m_sides);
        const bool isSolid = ZRFEMIsVolumeElement(group.m_iElementType);
        for (std::int64_t i = 0; i < group.m_iNumElements; ++i, ++m_element) {
            bool isWhole = true;
            for (std::size_t s = 0; s < shapes.size(); ++s) {
                const LocalNodes& local = shapes[s].nodes;
                isWhole &= hand(shapes[s].kind, static_cast<int>(s), isSolid, local);
            }
            m_damaged += isWhole ? 0 : 1;
        }
    }

    void walkPolyhedrons(const ZRFxElementBlockGroup& group) {
        std::int64_t face = 0;
        std::int64_t at = 0;
        LocalNodes local;
        for (std::int64_t i = 0; i < group.m_iNumElements; ++i, ++m_element) {
            bool isWhole = true;
            for (int s = 0; s < group.m_aiPolyhedronFaceCounts[i]; ++s, ++face) {
                const int count = group.m_aiPolyhedronFaceNodeCounts[face];
                local.clear();
                for (int n = 0; n < count; ++n, ++at) {
                    const int node = group.m_aiPolyhedronFaceLocalNodes[at];
                    local.push_back(static_cast<unsigned int>(node));
                }
                isWhole &= hand(CellKind::FACE, s, true, local);
            }
            m_damaged += isWhole ? 0 : 1;
        }
    }

    // The node of the element of a local number; -1 when it is missing.
    std::int64_t nodeOf(unsigned int local) const {
        const std::size_t at = m_items.begins[m_element] + local;
        return at < m_items.begins[m_element + 1] ? m_items.nodes[at] : -1;
    }

    // False when a node is missing, or there are too many.
    bool hand(CellKind kind, int surface, bool isSolid, const LocalNodes& local) {
        if (local.size() > kMostCorners) return false;
        m_nodes.clear();
        for (const unsigned int node : local) m_nodes.push_back(nodeOf(node));
        if (std::ranges::find(m_nodes, -1) != m_nodes.end()) return false;
        if (kind == CellKind::FACE || kind == CellKind::QUADRATIC_FACE) removeCollapsedSides(kind);
        const std::size_t fewest = kind == CellKind::POINT ? 1 : kind == CellKind::LINE ? 2 : 3;
        if (m_nodes.size() >= fewest) m_take({kind, m_element, surface, isSolid, m_nodes});
        return true;
    }

    // Elements may repeat a node, as a hexahedron in the place of a wedge does.
    void removeCollapsedSides(CellKind& kind) {
        const std::size_t before = m_nodes.size();
        m_nodes.erase(std::unique(m_nodes.begin(), m_nodes.end()), m_nodes.end());
        if (m_nodes.size() > 1 && m_nodes.front() == m_nodes.back()) m_nodes.pop_back();
        if (m_nodes.size() != before) kind = CellKind::FACE;
    }

    const ElementItems& m_items;
    const QuadraticSides m_sides;
    const std::function<void(const ElementCell&)>& m_take;
    std::size_t m_element = 0;
    std::vector<std::int64_t> m_nodes;  // of the cell at hand
    std::int64_t m_damaged = 0;
};

}  // namespace

std::int64_t forEachCell(const ZRFxElementBlock& block, const ElementItems& items,
                         QuadraticSides sides,
                         const std::function<void(const ElementCell&)>& take) {
    CellWalk walk(items, sides, take);
    for (std::int64_t g = 0; g < block.GetNumElementGroups(); ++g) {
        walk.walk(*block.GetElementGroup(g));
    }
    return walk.damaged();
}

}  // namespace tools
