#pragma once

#include <cstddef>
#include <type_traits>
#include <vector>

#include "NuoCore/Export.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoCore/Span.h"
#include "NuoCore/Vec3f.h"
#include "NuoZRFx/Block.h"

namespace unstruct {
class ZRFxNodeBlock;
}

namespace nuo::zrfx {

/// The nodes of a model: coordinates and, if the block is built with ids, one user id per node.
class NUO_API NodeBlock : public Block {
public:
    static constexpr BlockType kBlockType = NODES;

    /// With ids, every node gets one, 0 or more and its own; elements can then name nodes by id.
    NodeBlock(int blockId, bool withNodeIds);
    ~NodeBlock() override;

    unstruct::ZRFxBlock* internal_zrfxBlock() const override;

    /// Reserves room for a total number of nodes; false when there is not enough memory.
    bool allocateNodes(std::size_t count);

    /// Appends a node. An id of 0 or more goes with a block built with ids, a negative one with a
    /// block built without; anything else is an assertion and adds nothing.
    bool addNode(const Vec3f& node, int nodeId = -1);
    bool addNode(float x, float y, float z, int nodeId = -1);

    /// Replaces all nodes by copies. Coordinates are interleaved x y z, three per node; there is
    /// one id per node if, and only if, the block was built with ids.
    bool setNodes(const std::vector<Vec3f>& nodes, const std::vector<int>& nodeIds);
    bool setNodes(const std::vector<float>& coordinates, const std::vector<int>& nodeIds);

    /// The same without copying: the block refers to 3 * nodeCount floats and, unless null,
    /// nodeCount ids. They must stay unchanged until the block has been written, and for as long as
    /// it is used after that.
    bool setNodeData(const float* coordinates, std::size_t nodeCount, const int* nodeIds);
    bool setNodeData(Span<const float> coordinates, Span<const int> nodeIds = {});

    /// Replaces all nodes by coordinates in double precision, from a vector, an array or a
    /// Span<const double>. Files hold single precision, to which they are rounded.
    template <typename Doubles, typename = std::enable_if_t<
                                    std::is_convertible_v<const Doubles&, Span<const double>>>>
    bool setNodes(const Doubles& coordinates, Span<const int> nodeIds = {}) {
        return setRoundedNodes(coordinates, nodeIds);
    }

    std::size_t nodeCount() const;
    bool hasNodeIds() const;

    /// Copies of the coordinates and of the ids, empty when the block has none.
    std::vector<Vec3f> nodes() const;
    std::vector<int> nodeIds() const;

    /// x y z of each node, and the ids, empty when the block has none; valid while the block lives
    /// and is not changed.
    Span<const float> coordinates() const;
    Span<const int> ids() const;

    /// 3 * nodeCount() floats, x y z interleaved; valid while the block lives and is not changed.
    const float* nodeData() const;

    /// nodeCount() ids, valid alike; null when the block has none.
    const int* nodeIdData() const;

    /// The index of the node with an id; -1 when there is none.
    int nodeIndex(int nodeId) const;

private:
    friend class DatabasePrivate;
    explicit NodeBlock(unstruct::ZRFxNodeBlock* nodeBlock);
    bool checkNodes(const char* operation, const void* nodes, std::size_t nodeCount,
                    std::size_t idCount) const;
    bool setRoundedNodes(Span<const double> coordinates, Span<const int> nodeIds);

    PrivatePtr<class NodeBlockPrivate> m_private;
};

}  // namespace nuo::zrfx
