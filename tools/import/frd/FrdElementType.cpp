#include "import/frd/FrdElementType.h"

#include <array>

namespace tools {
namespace {

using nuo::zrfx::ElementBlock;

constexpr int kStraight[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};

// The file has the upright edges before those of the top; here they come after them.
constexpr int kHexahedron20[] = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,
                                 10, 11, 16, 17, 18, 19, 12, 13, 14, 15};

// The normal of the base points to the top in the file, away from it here.
constexpr int kPentahedron6[] = {0, 2, 1, 3, 5, 4};
constexpr int kPentahedron15[] = {0, 2, 1, 3, 5, 4, 8, 7, 6, 14, 13, 12, 9, 11, 10};

std::span<const int> straight(std::size_t count) {
    return std::span(kStraight).first(count);
}

const std::array kTypes{FrdElementType{"he8", ElementBlock::HEXAHEDRONS, straight(8)},
                        FrdElementType{"pe6", ElementBlock::PENTAHEDRONS, kPentahedron6},
                        FrdElementType{"te4", ElementBlock::TETRAHEDRONS, straight(4)},
                        FrdElementType{"he20", ElementBlock::HEXAHEDRONS_20, kHexahedron20},
                        FrdElementType{"pe15", ElementBlock::PENTAHEDRONS_15, kPentahedron15},
                        FrdElementType{"te10", ElementBlock::TETRAHEDRONS_10, straight(10)},
                        FrdElementType{"tr3", ElementBlock::TRIANGLES, straight(3)},
                        FrdElementType{"tr6", ElementBlock::TRIANGLES_6, straight(6)},
                        FrdElementType{"qu4", ElementBlock::QUADS, straight(4)},
                        FrdElementType{"qu8", ElementBlock::QUADS_8, straight(8)},
                        FrdElementType{"be2", ElementBlock::BEAMS, straight(2)},
                        FrdElementType{"be3", ElementBlock::BEAMS_3, straight(3)}};

}  // namespace

const FrdElementType* frdElementType(int type) {
    return type >= 1 && type <= static_cast<int>(kTypes.size()) ? &kTypes[type - 1] : nullptr;
}

}  // namespace tools
