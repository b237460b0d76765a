#include "types/ZRFxElementType.h"

#include <algorithm>
#include <array>
#include <initializer_list>

#include "nvf/Assert.h"

namespace unstruct {
namespace {

constexpr int kMostSurfaces = 6;
constexpr int kMostSurfaceNodes = 9;

struct Surface {
    int count = 0;
    std::array<unsigned char, kMostSurfaceNodes> nodes{};

    constexpr Surface() = default;
    constexpr Surface(std::initializer_list<int> list) {
        for (const int node : list) {
            nodes[static_cast<std::size_t>(count++)] = static_cast<unsigned char>(node);
        }
    }
};

struct Surfaces {
    int count = 0;
    std::array<Surface, kMostSurfaces> surfaces{};

    constexpr Surfaces(std::initializer_list<Surface> list) {
        for (const Surface& surface : list) surfaces[static_cast<std::size_t>(count++)] = surface;
    }
};

constexpr Surfaces kNone{};
constexpr Surfaces kTriangle{{0, 1, 2}};
constexpr Surfaces kTriangle6{{0, 1, 2, 3, 4, 5}};
constexpr Surfaces kQuad{{0, 1, 2, 3}};
constexpr Surfaces kQuad8{{0, 1, 2, 3, 4, 5, 6, 7}};
constexpr Surfaces kQuad9{{0, 1, 2, 3, 4, 5, 6, 7, 8}};
constexpr Surfaces kTetrahedron{{0, 1, 3}, {1, 2, 3}, {2, 0, 3}, {0, 2, 1}};
constexpr Surfaces kTetrahedron10{
    {0, 1, 3, 4, 8, 7}, {1, 2, 3, 5, 9, 8}, {2, 0, 3, 6, 7, 9}, {0, 2, 1, 6, 5, 4}};
constexpr Surfaces kHexahedron{{0, 4, 7, 3}, {1, 2, 6, 5}, {0, 1, 5, 4},
                               {3, 7, 6, 2}, {0, 3, 2, 1}, {4, 5, 6, 7}};
constexpr Surfaces kHexahedron20{{0, 4, 7, 3, 16, 15, 19, 11}, {1, 2, 6, 5, 9, 18, 13, 17},
                                 {0, 1, 5, 4, 8, 17, 12, 16},  {3, 7, 6, 2, 19, 14, 18, 10},
                                 {0, 3, 2, 1, 11, 10, 9, 8},   {4, 5, 6, 7, 12, 13, 14, 15}};
constexpr Surfaces kPentahedron{{0, 1, 2}, {3, 5, 4}, {0, 3, 4, 1}, {1, 4, 5, 2}, {2, 5, 3, 0}};
constexpr Surfaces kPentahedron15{{0, 1, 2, 6, 7, 8},
                                  {3, 5, 4, 11, 10, 9},
                                  {0, 3, 4, 1, 12, 9, 13, 6},
                                  {1, 4, 5, 2, 13, 10, 14, 7},
                                  {2, 5, 3, 0, 14, 11, 12, 8}};
constexpr Surfaces kPyramid{{0, 3, 2, 1}, {0, 1, 4}, {1, 2, 4}, {2, 3, 4}, {3, 0, 4}};
constexpr Surfaces kPyramid13{{0, 3, 2, 1, 8, 7, 6, 5},
                              {0, 1, 4, 5, 10, 9},
                              {1, 2, 4, 6, 11, 10},
                              {2, 3, 4, 7, 12, 11},
                              {3, 0, 4, 8, 9, 12}};

struct ElementType {
    int code;
    const char* name;
    int nodes;
    int cornerNodes;
    bool isVolume;
    const Surfaces& surfaces;
};

constexpr std::array kTypes{
    ElementType{ELEMENT_BEAM, "Beam", 2, 2, false, kNone},
    ElementType{ELEMENT_BEAM_3, "Beam_3", 3, 2, false, kNone},
    ElementType{ELEMENT_TRIANGLE, "Triangle", 3, 3, false, kTriangle},
    ElementType{ELEMENT_TRIANGLE_6, "Triangle_6", 6, 3, false, kTriangle6},
    ElementType{ELEMENT_QUAD, "Quad", 4, 4, false, kQuad},
    ElementType{ELEMENT_QUAD_8, "Quad_8", 8, 4, false, kQuad8},
    ElementType{ELEMENT_QUAD_9, "Quad_9", 9, 4, false, kQuad9},
    ElementType{ELEMENT_TETRAHEDRON, "Tetrahedron", 4, 4, true, kTetrahedron},
    ElementType{ELEMENT_TETRAHEDRON_10, "Tetrahedron_10", 10, 4, true, kTetrahedron10},
    ElementType{ELEMENT_HEXAHEDRON, "Hexahedron", 8, 8, true, kHexahedron},
    ElementType{ELEMENT_HEXAHEDRON_20, "Hexahedron_20", 20, 8, true, kHexahedron20},
    ElementType{ELEMENT_PENTAHEDRON, "Pentahedron", 6, 6, true, kPentahedron},
    ElementType{ELEMENT_PENTAHEDRON_15, "Pentahedron_15", 15, 6, true, kPentahedron15},
    ElementType{ELEMENT_BRICK, "Brick", 8, 8, true, kHexahedron},
    ElementType{ELEMENT_THICK_SHELL, "Thick shell", 8, 8, true, kHexahedron},
    ElementType{ELEMENT_SHELL, "Shell", 4, 4, false, kQuad},
    ElementType{ELEMENT_RIGID_SHELL, "Rigid Shell", 4, 4, false, kQuad},
    ElementType{ELEMENT_POINT, "Point", 1, 1, false, kNone},
    ElementType{ELEMENT_PYRAMID, "Pyramid", 5, 5, true, kPyramid},
    ElementType{ELEMENT_PYRAMID_13, "Pyramid_13", 13, 5, true, kPyramid13},
    ElementType{ELEMENT_POLYHEDRON, "Polyhedron", 0, 0, true, kNone},
    ElementType{ELEMENT_UNKNOWN, "Unknown", 0, 0, false, kNone},
    ElementType{ELEMENT_NULL, "NULL", 0, 0, false, kNone},
};

constexpr bool eachCodeIsItsIndex() {
    for (std::size_t i = 0; i < kTypes.size(); ++i) {
        if (kTypes[i].code != static_cast<int>(i)) return false;
    }
    return true;
}
static_assert(eachCodeIsItsIndex());

const ElementType& typeOf(int type) {
    NVF_ASSERT(ZRFEMIsValidElementType(type));
    return kTypes[static_cast<std::size_t>(ZRFEMIsValidElementType(type) ? type : ELEMENT_UNKNOWN)];
}

}  // namespace

bool ZRFEMIsValidElementType(int type) {
    return type >= 0 && type < static_cast<int>(kTypes.size());
}

ZRString ZRFEMElementTypeName(int type) {
    return typeOf(type).name;
}

int ZRFEMElementTypeFromName(const ZRString& name) {
    const auto found = std::find_if(kTypes.begin(), kTypes.end(), [&](const ElementType& type) {
        return name.Bytes() == type.name;
    });
    return found == kTypes.end() ? static_cast<int>(ELEMENT_UNKNOWN) : found->code;
}

int ZRFEMNodesPerElement(int type) {
    return typeOf(type).nodes;
}

int ZRFEMCornerNodesPerElement(int type) {
    return typeOf(type).cornerNodes;
}

int ZRFEMSurfacesPerElement(int type) {
    NVF_ASSERT(type != ELEMENT_POLYHEDRON);
    return typeOf(type).surfaces.count;
}

bool ZRFEMIsVolumeElement(int type) {
    return typeOf(type).isVolume;
}

std::vector<unsigned int> ZRFEMElementSurface(int type, int surface) {
    const Surfaces& surfaces = typeOf(type).surfaces;
    NVF_ASSERT(surface >= 0 && surface < surfaces.count);
    if (surface < 0 || surface >= surfaces.count) return {};
    const Surface& found = surfaces.surfaces[static_cast<std::size_t>(surface)];
    return std::vector<unsigned int>(found.nodes.begin(), found.nodes.begin() + found.count);
}

}  // namespace unstruct
