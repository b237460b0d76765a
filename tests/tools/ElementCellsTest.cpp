// The cells that elements of each type are drawn as.
#include <gmock/gmock.h>

#include <memory>
#include <numeric>
#include <set>
#include <utility>

#include "types/ZRFxElementType.h"
#include "view/ElementCells.h"

namespace tools {
namespace {

using namespace unstruct;
using Nodes = std::vector<std::int64_t>;

struct Cell {
    CellKind kind;
    bool isSolid;
    Nodes nodes;
};

// The cells of one element that has the nodes.
std::vector<Cell> cellsOf(int type, const Nodes& nodes, QuadraticSides sides = QuadraticSides::KEPT,
                          std::int64_t expectedDamage = 0) {
    ZRFxElementBlock block(nullptr, 1);
    auto group = std::make_unique<ZRFxElementBlockGroup>();
    group->m_iElementType = type;
    group->m_iNumElements = 1;
    EXPECT_TRUE(block.AddElementGroup(group));
    ElementItems items;
    items.ids = {1};
    items.nodes = nodes;
    items.begins = {0, nodes.size()};
    std::vector<Cell> cells;
    const auto damaged = forEachCell(block, items, sides, [&](const ElementCell& cell) {
        cells.push_back({cell.kind, cell.isSolid, Nodes(cell.nodes.begin(), cell.nodes.end())});
    });
    EXPECT_EQ(damaged, expectedDamage);
    return cells;
}

Nodes firstNodes(int count) {
    Nodes nodes(static_cast<std::size_t>(count));
    std::iota(nodes.begin(), nodes.end(), 0);
    return nodes;
}

// Whether every side of a face is that of another face, in the other direction.
bool isClosed(const std::vector<Cell>& faces) {
    std::multiset<std::pair<std::int64_t, std::int64_t>> sides;
    for (const Cell& face : faces) {
        for (std::size_t i = 0; i < face.nodes.size(); ++i) {
            sides.emplace(face.nodes[i], face.nodes[(i + 1) % face.nodes.size()]);
        }
    }
    for (const auto& [from, to] : sides) {
        if (sides.count({from, to}) != 1 || sides.count({to, from}) != 1) return false;
    }
    return !sides.empty();
}

TEST(ElementCellsTest, SolidsAreClosed) {
    for (int type = 0; ZRFEMIsValidElementType(type); ++type) {
        if (!ZRFEMIsVolumeElement(type) || type == ELEMENT_POLYHEDRON) continue;
        SCOPED_TRACE(ZRFEMElementTypeName(type).Bytes());
        for (const auto sides : {QuadraticSides::KEPT, QuadraticSides::STRAIGHT}) {
            const auto faces = cellsOf(type, firstNodes(ZRFEMNodesPerElement(type)), sides);
            EXPECT_TRUE(isClosed(faces));
            std::set<std::int64_t> nodes;
            for (const Cell& face : faces) {
                EXPECT_TRUE(face.isSolid);
                nodes.insert(face.nodes.begin(), face.nodes.end());
            }
            const int shown = sides == QuadraticSides::KEPT ? ZRFEMNodesPerElement(type)
                                                            : ZRFEMCornerNodesPerElement(type);
            EXPECT_EQ(nodes.size(), static_cast<std::size_t>(shown));
        }
    }
}

TEST(ElementCellsTest, ElementsWithoutVolumeAreOneCell) {
    const struct {
        int type;
        CellKind kind;
        Nodes nodes;
    } cases[] = {
        {ELEMENT_POINT, CellKind::POINT, {0}},
        {ELEMENT_BEAM, CellKind::LINE, {0, 1}},
        {ELEMENT_BEAM_3, CellKind::LINE, {0, 2, 1}},
        {ELEMENT_TRIANGLE, CellKind::FACE, {0, 1, 2}},
        {ELEMENT_TRIANGLE_6, CellKind::QUADRATIC_FACE, {0, 3, 1, 4, 2, 5}},
        {ELEMENT_QUAD, CellKind::FACE, {0, 1, 2, 3}},
        {ELEMENT_QUAD_8, CellKind::QUADRATIC_FACE, {0, 4, 1, 5, 2, 6, 3, 7}},
        {ELEMENT_QUAD_9, CellKind::QUADRATIC_FACE, {0, 4, 1, 5, 2, 6, 3, 7}},
        {ELEMENT_SHELL, CellKind::FACE, {0, 1, 2, 3}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(ZRFEMElementTypeName(c.type).Bytes());
        const auto cells = cellsOf(c.type, firstNodes(ZRFEMNodesPerElement(c.type)));
        ASSERT_EQ(cells.size(), 1u);
        EXPECT_EQ(cells[0].kind, c.kind);
        EXPECT_EQ(cells[0].nodes, c.nodes);
        EXPECT_FALSE(cells[0].isSolid);
    }
}

TEST(ElementCellsTest, CollapsedAndDamagedFacesAreLeftOut) {
    // A hexahedron in the place of a wedge: one face is a line, two are triangles.
    const auto wedge = cellsOf(ELEMENT_HEXAHEDRON, {0, 1, 2, 2, 4, 5, 6, 6});
    EXPECT_EQ(wedge.size(), 5u);
    EXPECT_TRUE(isClosed(wedge));
    EXPECT_EQ(cellsOf(ELEMENT_TETRAHEDRON, {0, 1, 2, -1}, QuadraticSides::KEPT, 1).size(), 1u);
    EXPECT_TRUE(cellsOf(ELEMENT_QUAD, {0, 1}, QuadraticSides::KEPT, 1).empty());
}

}  // namespace
}  // namespace tools
