#include "import/gmsh/GmshElementType.h"

#include <algorithm>

namespace tools {
namespace {

using nuo::zrfx::ElementBlock;

// The normal of the base points to the top in the file, away from it here.
constexpr int kPentahedron[] = {0, 2, 1, 3, 5, 4};

// gmsh sorts edges by their corners.
constexpr int kTetrahedron10[] = {0, 1, 2, 3, 4, 5, 6, 7, 9, 8};
constexpr int kHexahedron20[] = {0,  1, 2,  3,  4,  5,  6,  7,  8,  11,
                                 13, 9, 16, 18, 19, 17, 10, 12, 14, 15};
constexpr int kPentahedron15[] = {0, 2, 1, 3, 5, 4, 7, 9, 6, 13, 14, 12, 8, 11, 10};
constexpr int kPyramid13[] = {0, 1, 2, 3, 4, 5, 8, 10, 6, 7, 9, 11, 12};

// Nodes of faces and bodies, which our types do not have, are the last ones in the file.
constexpr GmshElementType kTypes[] = {
    {1, 1, 2, ElementBlock::BEAMS, {}},
    {2, 2, 3, ElementBlock::TRIANGLES, {}},
    {3, 2, 4, ElementBlock::QUADS, {}},
    {4, 3, 4, ElementBlock::TETRAHEDRONS, {}},
    {5, 3, 8, ElementBlock::HEXAHEDRONS, {}},
    {6, 3, 6, ElementBlock::PENTAHEDRONS, kPentahedron},
    {7, 3, 5, ElementBlock::PYRAMIDS, {}},
    {8, 1, 3, ElementBlock::BEAMS_3, {}},
    {9, 2, 6, ElementBlock::TRIANGLES_6, {}},
    {10, 2, 9, ElementBlock::QUADS_9, {}},
    {11, 3, 10, ElementBlock::TETRAHEDRONS_10, kTetrahedron10},
    {12, 3, 27, ElementBlock::HEXAHEDRONS_20, kHexahedron20},
    {13, 3, 18, ElementBlock::PENTAHEDRONS_15, kPentahedron15},
    {14, 3, 14, ElementBlock::PYRAMIDS_13, kPyramid13},
    {15, 0, 1, ElementBlock::POINTS, {}},
    {16, 2, 8, ElementBlock::QUADS_8, {}},
    {17, 3, 20, ElementBlock::HEXAHEDRONS_20, kHexahedron20},
    {18, 3, 15, ElementBlock::PENTAHEDRONS_15, kPentahedron15},
    {19, 3, 13, ElementBlock::PYRAMIDS_13, kPyramid13},
};

}  // namespace

const GmshElementType* gmshElementType(int number) {
    const auto found = std::ranges::find(kTypes, number, &GmshElementType::number);
    return found == std::end(kTypes) ? nullptr : found;
}

}  // namespace tools
