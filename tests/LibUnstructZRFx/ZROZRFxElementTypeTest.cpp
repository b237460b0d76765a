#include "ZROZRFxElementType.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include "NuoCore/Vec3d.h"
#include "support/LogCapture.h"

namespace unstruct {
namespace {

using Points = std::vector<nuo::Vec3d>;

// The edges of a cell, in the order in which VTK numbers the nodes at their middles, and corners
// placed as VTK draws the cell.
struct Cell {
    int linear;
    int quadratic;  // -1 when there is none
    Points corners;
    std::vector<std::pair<int, int>> edges;
};

const std::vector<Cell> kCells = {
    {ELEMENT_TETRAHEDRON,
     ELEMENT_TETRAHEDRON_10,
     {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
     {{0, 1}, {1, 2}, {2, 0}, {0, 3}, {1, 3}, {2, 3}}},
    {ELEMENT_HEXAHEDRON,
     ELEMENT_HEXAHEDRON_20,
     {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}},
     {{0, 1},
      {1, 2},
      {2, 3},
      {3, 0},
      {4, 5},
      {5, 6},
      {6, 7},
      {7, 4},
      {0, 4},
      {1, 5},
      {2, 6},
      {3, 7}}},
    {ELEMENT_PENTAHEDRON,
     ELEMENT_PENTAHEDRON_15,
     {{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {0, 0, 1}, {0, 1, 1}, {1, 0, 1}},
     {{0, 1}, {1, 2}, {2, 0}, {3, 4}, {4, 5}, {5, 3}, {0, 3}, {1, 4}, {2, 5}}},
    {ELEMENT_PYRAMID,
     ELEMENT_PYRAMID_13,
     {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0.5, 0.5, 1}},
     {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {0, 4}, {1, 4}, {2, 4}, {3, 4}}},
};

nuo::Vec3d Minus(const nuo::Vec3d& a, const nuo::Vec3d& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

double Volume(const nuo::Vec3d& a, const nuo::Vec3d& b, const nuo::Vec3d& c) {
    return a.x * (b.y * c.z - b.z * c.y) + a.y * (b.z * c.x - b.x * c.z) +
           a.z * (b.x * c.y - b.y * c.x);
}

// Six times the volume under a face, seen from a point.
double VolumeUnder(const Points& corners, const std::vector<unsigned int>& face,
                   const nuo::Vec3d& from) {
    double volume = 0;
    for (std::size_t i = 2; i < face.size(); ++i) {
        volume += Volume(Minus(corners[face[0]], from), Minus(corners[face[i - 1]], from),
                         Minus(corners[face[i]], from));
    }
    return volume;
}

TEST(ZRFEMElementType, FacesOfSolidsPointOutwardsAndClose) {
    for (const Cell& cell : kCells) {
        SCOPED_TRACE(ZRFEMElementTypeName(cell.linear).Bytes());
        std::multiset<std::pair<unsigned int, unsigned int>> directedEdges;
        const nuo::Vec3d inside(0.3, 0.3, 0.3);
        for (int i = 0; i < ZRFEMSurfacesPerElement(cell.linear); ++i) {
            const std::vector<unsigned int> face = ZRFEMElementSurface(cell.linear, i);
            EXPECT_GT(VolumeUnder(cell.corners, face, inside), 0) << "face " << i;
            for (std::size_t at = 0; at < face.size(); ++at) {
                directedEdges.insert({face[at], face[(at + 1) % face.size()]});
            }
        }
        EXPECT_EQ(directedEdges.size(), 2 * cell.edges.size());
        for (const auto& [from, to] : directedEdges) {
            EXPECT_EQ(directedEdges.count({to, from}), 1u) << from << "-" << to;
        }
    }
}

TEST(ZRFEMElementType, QuadraticFacesAreTheLinearOnesWithTheNodesAtTheirEdges) {
    for (const Cell& cell : kCells) {
        SCOPED_TRACE(ZRFEMElementTypeName(cell.quadratic).Bytes());
        const auto middleOf = [&](unsigned int a, unsigned int b) {
            for (std::size_t i = 0; i < cell.edges.size(); ++i) {
                const auto& [from, to] = cell.edges[i];
                if (std::minmax<int>(from, to) ==
                    std::minmax<int>(static_cast<int>(a), static_cast<int>(b)))
                    return cell.corners.size() + i;
            }
            return std::size_t{999};
        };
        EXPECT_EQ(static_cast<std::size_t>(ZRFEMNodesPerElement(cell.quadratic)),
                  cell.corners.size() + cell.edges.size());
        ASSERT_EQ(ZRFEMSurfacesPerElement(cell.quadratic), ZRFEMSurfacesPerElement(cell.linear));
        for (int i = 0; i < ZRFEMSurfacesPerElement(cell.linear); ++i) {
            std::vector<unsigned int> expected = ZRFEMElementSurface(cell.linear, i);
            const std::size_t numCorners = expected.size();
            for (std::size_t at = 0; at < numCorners; ++at) {
                expected.push_back(static_cast<unsigned int>(
                    middleOf(expected[at], expected[(at + 1) % numCorners])));
            }
            EXPECT_EQ(ZRFEMElementSurface(cell.quadratic, i), expected) << "face " << i;
        }
    }
}

TEST(ZRFEMElementType, NamesAndNodeCountsAreThoseOfTheFormat) {
    struct Row {
        const char* name;
        int nodes;
        int corners;
    };
    constexpr Row kRows[] = {{"Beam", 2, 2},
                             {"Beam_3", 3, 2},
                             {"Triangle", 3, 3},
                             {"Triangle_6", 6, 3},
                             {"Quad", 4, 4},
                             {"Quad_8", 8, 4},
                             {"Quad_9", 9, 4},
                             {"Tetrahedron", 4, 4},
                             {"Tetrahedron_10", 10, 4},
                             {"Hexahedron", 8, 8},
                             {"Hexahedron_20", 20, 8},
                             {"Pentahedron", 6, 6},
                             {"Pentahedron_15", 15, 6},
                             {"Brick", 8, 8},
                             {"Thick shell", 8, 8},
                             {"Shell", 4, 4},
                             {"Rigid Shell", 4, 4},
                             {"Point", 1, 1},
                             {"Pyramid", 5, 5},
                             {"Pyramid_13", 13, 5},
                             {"Polyhedron", 0, 0},
                             {"Unknown", 0, 0},
                             {"NULL", 0, 0}};
    int code = 0;
    for (const Row& row : kRows) {
        EXPECT_EQ(ZRFEMElementTypeName(code), row.name);
        EXPECT_EQ(ZRFEMElementTypeFromName(row.name), code);
        EXPECT_EQ(ZRFEMNodesPerElement(code), row.nodes) << row.name;
        EXPECT_EQ(ZRFEMCornerNodesPerElement(code), row.corners) << row.name;
        ++code;
    }
    EXPECT_FALSE(ZRFEMIsValidElementType(code));
    EXPECT_EQ(ZRFEMElementTypeFromName("beam"), ELEMENT_UNKNOWN);
}

using ZRFEMElementTypeFault = test::LogCapture;

TEST_F(ZRFEMElementTypeFault, CodesAndSurfacesThatAreNoneAreAssertions) {
    for (const int code : {-1, 23}) {
        EXPECT_EQ(ZRFEMElementTypeName(code), "Unknown");
        ExpectAssertion("ZRFEMIsValidElementType(type)");
    }
    for (const int surface : {-1, 6}) {
        EXPECT_TRUE(ZRFEMElementSurface(ELEMENT_BRICK, surface).empty());
        ExpectAssertion("surface >= 0 && surface < surfaces.count");
    }
}

}  // namespace
}  // namespace unstruct
