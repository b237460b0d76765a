#include "types/ZRFxElementType.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <sstream>

#include "NuoCore/Vec3d.h"
#include "support/LogCapture.h"

namespace unstruct {
namespace {

using Points = std::vector<nuo::Vec3d>;

// The edges of a cell, in the order in which VTK numbers the nodes at their middles, and corners
// placed as VTK draws the cell, each a digit for x, y and z.
struct Cell {
    int linear;
    int quadratic;
    const char* drawnCorners;
    const char* drawnEdges;

    Points corners() const {
        Points points;
        for (const std::string& s : Words(drawnCorners)) {
            points.emplace_back(s[0] - '0', s[1] - '0', s[2] - '0');
        }
        return points;
    }
    std::vector<std::pair<int, int>> edges() const {
        std::vector<std::pair<int, int>> pairs;
        for (const std::string& s : Words(drawnEdges)) pairs.emplace_back(s[0] - '0', s[1] - '0');
        return pairs;
    }

private:
    static std::vector<std::string> Words(const char* text) {
        std::istringstream stream(text);
        return {std::istream_iterator<std::string>(stream), {}};
    }
};

constexpr Cell kCells[] = {
    {ELEMENT_TETRAHEDRON, ELEMENT_TETRAHEDRON_10, "000 200 020 002", "01 12 20 03 13 23"},
    {ELEMENT_HEXAHEDRON, ELEMENT_HEXAHEDRON_20, "000 200 220 020 002 202 222 022",
     "01 12 23 30 45 56 67 74 04 15 26 37"},
    {ELEMENT_PENTAHEDRON, ELEMENT_PENTAHEDRON_15, "000 020 200 002 022 202",
     "01 12 20 34 45 53 03 14 25"},
    {ELEMENT_PYRAMID, ELEMENT_PYRAMID_13, "000 200 220 020 112", "01 12 23 30 04 14 24 34"},
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
        const nuo::Vec3d inside(0.6, 0.6, 0.6);
        for (int i = 0; i < ZRFEMSurfacesPerElement(cell.linear); ++i) {
            const std::vector<unsigned int> face = ZRFEMElementSurface(cell.linear, i);
            EXPECT_GT(VolumeUnder(cell.corners(), face, inside), 0) << "face " << i;
            for (std::size_t at = 0; at < face.size(); ++at) {
                directedEdges.insert({face[at], face[(at + 1) % face.size()]});
            }
        }
        EXPECT_EQ(directedEdges.size(), 2 * cell.edges().size());
        for (const auto& [from, to] : directedEdges) {
            EXPECT_EQ(directedEdges.count({to, from}), 1u) << from << "-" << to;
        }
    }
}

TEST(ZRFEMElementType, QuadraticFacesAreTheLinearOnesWithTheNodesAtTheirEdges) {
    for (const Cell& cell : kCells) {
        SCOPED_TRACE(ZRFEMElementTypeName(cell.quadratic).Bytes());
        const auto middleOf = [&](unsigned int a, unsigned int b) {
            for (std::size_t i = 0; i < cell.edges().size(); ++i) {
                const auto [from, to] = cell.edges()[i];
                if (std::minmax<int>(from, to) ==
                    std::minmax<int>(static_cast<int>(a), static_cast<int>(b)))
                    return cell.corners().size() + i;
            }
            return std::size_t{999};
        };
        EXPECT_EQ(static_cast<std::size_t>(ZRFEMNodesPerElement(cell.quadratic)),
                  cell.corners().size() + cell.edges().size());
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

TEST(ZRFEMElementType, NamesReadAsTheirCodesAndNodesCountAsInTheFormat) {
    constexpr int kNodes[] = {2,  3, 3, 6, 4, 8, 9, 4,  10, 8, 20, 6,
                              15, 8, 8, 4, 4, 1, 5, 13, 0,  0, 0};
    constexpr int kCorners[] = {2, 2, 3, 3, 4, 4, 4, 4, 4, 8, 8, 6,
                                6, 8, 8, 4, 4, 1, 5, 5, 0, 0, 0};
    for (int code = 0; ZRFEMIsValidElementType(code); ++code) {
        EXPECT_EQ(ZRFEMElementTypeFromName(ZRFEMElementTypeName(code)), code);
        EXPECT_EQ(ZRFEMNodesPerElement(code), kNodes[code]) << code;
        EXPECT_EQ(ZRFEMCornerNodesPerElement(code), kCorners[code]) << code;
    }
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
