#include "view/OuterSurface.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "view/ElementCells.h"

namespace tools {
namespace {

using namespace unstruct;

/// The lowest nodes of a face of a solid, by which two elements share it, and where the face comes
/// in the walk over all of them.
struct FaceKey {
    static constexpr std::size_t kNodes = 4;
    std::array<std::uint32_t, kNodes> nodes;
    std::uint32_t face;

    bool operator<(const FaceKey& other) const { return nodes < other.nodes; }
};

FaceKey keyOf(const ElementCell& cell, std::uint32_t face) {
    constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();
    FaceKey key{{kNone, kNone, kNone, kNone}, face};
    // Both elements of a face may have different nodes in the middle of its sides.
    const std::size_t step = cell.kind == CellKind::QUADRATIC_FACE ? 2 : 1;
    for (std::size_t i = 0; i < cell.nodes.size(); i += step) {
        auto node = static_cast<std::uint32_t>(cell.nodes[i]);
        for (std::uint32_t& lowest : key.nodes) {
            if (node < lowest) std::swap(node, lowest);
        }
    }
    return key;
}

/// Builds the surface of the blocks of one node block: once over all faces to find those that are
/// shared, once more to take the others.
class SurfaceBuilder {
public:
    SurfaceBuilder(ModelItems& model, int nodeBlock, QuadraticSides sides)
        : m_model(model), m_sides(sides) {
        m_surface.nodeBlock = nodeBlock;
    }

    void add(int block) { m_surface.blocks.push_back(block); }

    OuterSurface build() {
        findSharedFaces();
        std::uint32_t face = 0;
        for (std::uint32_t b = 0; b < m_surface.blocks.size(); ++b) {
            m_surface.damaged += walk(b, [&](const ElementCell& cell) {
                const bool isHidden = cell.isSolid && m_isShared[face++];
                if (!isHidden) take(cell, b);
            });
        }
        renumberNodes();
        return std::move(m_surface);
    }

private:
    template <typename Take>
    std::int64_t walk(std::size_t place, Take take) {
        const int block = m_surface.blocks[place];
        const auto read = readBlock<ZRFxElementBlock>(m_model.database(), block);
        const ElementItems* items = m_model.elements(block);
        return read.isNull() || !items ? 0 : forEachCell(*read, *items, m_sides, take);
    }

    void findSharedFaces() {
        std::vector<FaceKey> keys;
        for (std::size_t b = 0; b < m_surface.blocks.size(); ++b) {
            walk(b, [&](const ElementCell& cell) {
                const auto face = static_cast<std::uint32_t>(keys.size());
                if (cell.isSolid) keys.push_back(keyOf(cell, face));
            });
        }
        std::ranges::sort(keys, std::less());
        m_isShared.assign(keys.size(), false);
        for (std::size_t i = 1; i < keys.size(); ++i) {
            if (keys[i].nodes != keys[i - 1].nodes) continue;
            m_isShared[keys[i].face] = m_isShared[keys[i - 1].face] = true;
        }
    }

    void take(const ElementCell& cell, std::uint32_t block) {
        m_surface.cells.push_back(
            {cell.kind, cell.surface, block, static_cast<std::uint32_t>(cell.element)});
        for (const std::int64_t node : cell.nodes) {
            m_surface.corners.push_back(static_cast<std::uint32_t>(node));
        }
        m_surface.begins.push_back(m_surface.corners.size());
    }

    void renumberNodes() {
        auto& nodes = m_surface.nodes;
        nodes = m_surface.corners;
        std::ranges::sort(nodes);
        nodes.erase(std::unique(nodes.begin(), nodes.end()), nodes.end());
        for (std::uint32_t& corner : m_surface.corners) {
            const auto place = std::ranges::lower_bound(nodes, corner) - nodes.begin();
            corner = static_cast<std::uint32_t>(place);
        }
    }

    ModelItems& m_model;
    const QuadraticSides m_sides;
    OuterSurface m_surface;
    std::vector<bool> m_isShared;  // each face of a solid, in the order of the walk
};

}  // namespace

std::vector<OuterSurface> outerSurfaces(ModelItems& model, const std::vector<int>& elementBlocks,
                                        QuadraticSides sides) {
    std::map<int, SurfaceBuilder> builders;
    for (const int block : elementBlocks) {
        const ElementItems* items = model.elements(block);
        if (!items || !model.nodes(items->nodeBlock)) continue;
        builders.try_emplace(items->nodeBlock, model, items->nodeBlock, sides)
            .first->second.add(block);
    }
    std::vector<OuterSurface> surfaces;
    for (auto& [nodeBlock, builder] : builders) surfaces.push_back(builder.build());
    return surfaces;
}

}  // namespace tools
