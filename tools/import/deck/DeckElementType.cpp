#include "import/deck/DeckElementType.h"

#include <algorithm>
#include <array>

namespace tools {
namespace {

using nuo::zrfx::ElementBlock;

struct NodeCount {
    const char* type;  // the beginning of it, in capitals
    std::size_t count;
};

// The first that fits counts.
constexpr NodeCount kNodeCounts[] = {
    {"C3D20", 20},  {"C3D15", 15},  {"C3D10", 10},   {"C3D8", 8},    {"C3D6", 6},    {"C3D4", 4},
    {"F3D8", 8},    {"F3D6", 6},    {"F3D4", 4},     {"CPE8", 8},    {"CPE6", 6},    {"CPE4", 4},
    {"CPE3", 3},    {"CPS8", 8},    {"CPS6", 6},     {"CPS4", 4},    {"CPS3", 3},    {"CAX8", 8},
    {"CAX6", 6},    {"CAX4", 4},    {"CAX3", 3},     {"M3D8", 8},    {"M3D6", 6},    {"M3D4", 4},
    {"M3D3", 3},    {"DC3D20", 20}, {"DC3D15", 15},  {"DC3D10", 10}, {"DC3D8", 8},   {"DC3D6", 6},
    {"DC3D4", 4},   {"S8", 8},      {"S6", 6},       {"S4", 4},      {"S3", 3},      {"B32", 3},
    {"B31", 2},     {"B21", 2},     {"T3D3", 3},     {"T3D2", 2},    {"T2D2", 2},    {"SPRING1", 1},
    {"SPRING2", 2}, {"SPRINGA", 2}, {"DASHPOTA", 2}, {"GAPUNI", 2},  {"DCOUP3D", 1}, {"MASS", 1},
    {"D", 3}};

// Places in an element of the solver; -1 after the third corner of a triangle.
using Face = std::array<int, 4>;
constexpr Face kHexahedron[] = {{0, 1, 2, 3}, {4, 7, 6, 5}, {0, 4, 5, 1},
                                {1, 5, 6, 2}, {2, 6, 7, 3}, {3, 7, 4, 0}};
constexpr Face kTetrahedron[] = {{0, 1, 2, -1}, {0, 3, 1, -1}, {1, 3, 2, -1}, {2, 3, 0, -1}};
constexpr Face kPentahedron[] = {
    {0, 1, 2, -1}, {3, 4, 5, -1}, {0, 1, 4, 3}, {1, 2, 5, 4}, {2, 0, 3, 5}};

std::span<const Face> facesOf(ElementBlock::ElementType type) {
    switch (type) {
        case ElementBlock::HEXAHEDRONS:
        case ElementBlock::HEXAHEDRONS_20:
            return kHexahedron;
        case ElementBlock::TETRAHEDRONS:
        case ElementBlock::TETRAHEDRONS_10:
            return kTetrahedron;
        case ElementBlock::PENTAHEDRONS:
        case ElementBlock::PENTAHEDRONS_15:
            return kPentahedron;
        default:
            return {};
    }
}

}  // namespace

std::size_t deckNodesPerElement(const std::string& type) {
    const auto found = std::ranges::find_if(
        kNodeCounts, [&](const NodeCount& known) { return type.starts_with(known.type); });
    return found == std::end(kNodeCounts) ? 0 : found->count;
}

bool isDeckVolume(const std::string& type) {
    return type.starts_with("C3D") || type.starts_with("F3D") || type.starts_with("DC3D");
}

std::span<const int> deckFaceCorners(ElementBlock::ElementType type, int face) {
    const auto faces = facesOf(type);
    if (face < 1 || static_cast<std::size_t>(face) > faces.size()) return {};
    const Face& corners = faces[static_cast<std::size_t>(face) - 1];
    return std::span(corners).first(corners.back() < 0 ? 3 : 4);
}

}  // namespace tools
