#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "quantities/ModelItems.h"

namespace tools {

/// How one cell is drawn.
enum class CellKind : std::uint8_t {
    POINT = 0,
    LINE = 1,
    FACE = 2,
    QUADRATIC_FACE = 3  ///< Every second corner lies in the middle of a side.
};

/// A point, a line or a polygon, and the element that it shows.
struct SurfaceCell {
    CellKind kind;
    int surface;            ///< Number of the element's surface; 0 for points and lines.
    std::uint32_t block;    ///< Place of the element block in OuterSurface::blocks.
    std::uint32_t element;  ///< Its index in the block.
};

/// What can be seen of some element blocks over one node block: beams as lines, points as points,
/// shells as they are, and the faces of solid elements that no two of them share.
struct OuterSurface {
    int nodeBlock = -1;
    std::vector<int> blocks;             ///< Ids of the element blocks.
    std::vector<SurfaceCell> cells;      ///< Block by block, element by element.
    std::vector<std::size_t> begins{0};  ///< Of the corners of each cell, and the end.
    std::vector<std::uint32_t> corners;  ///< Of all cells, as places in `nodes`.
    std::vector<std::uint32_t> nodes;    ///< Those that have a corner, as indices, rising.
    std::int64_t damaged = 0;            ///< Elements whose nodes are missing, which are left out.

    std::size_t size() const { return cells.size(); }
};

enum class QuadraticSides { KEPT, STRAIGHT };

/// The outer surfaces of element blocks, one for each node block that they refer to. Blocks that
/// cannot be read are left out, with the library's message.
std::vector<OuterSurface> outerSurfaces(ModelItems& model, const std::vector<int>& elementBlocks,
                                        QuadraticSides sides);

}  // namespace tools
