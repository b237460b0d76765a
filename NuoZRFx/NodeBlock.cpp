#include "NuoZRFx/NodeBlock.h"

#include <limits>
#include <utility>

#include "Log_p.h"
#include "blocks/mesh/ZRFxNodeBlock.h"
#include "nvf/Assert.h"

namespace nuo::zrfx {
namespace {

using unstruct::ZRFxNodeBlock;
using unstruct::ZRIntArray;
using unstruct::ZRVec3fArray;

}  // namespace

class NodeBlockPrivate {
public:
    nvf::ref<ZRFxNodeBlock> m_nodeBlock;
    bool m_hasNodeIds = false;
};

NodeBlock::NodeBlock(int blockId, bool withNodeIds) : Block(blockId, NODES) {
    guarded([&] {
        auto made = std::make_unique<NodeBlockPrivate>();
        made->m_nodeBlock = new ZRFxNodeBlock(nullptr, blockId);
        made->m_hasNodeIds = withNodeIds;
        made->m_nodeBlock->SetNodes(ZRVec3fArray(),
                                    withNodeIds ? std::make_unique<ZRIntArray>() : nullptr);
        m_private.take(std::move(made));
    });
}

NodeBlock::NodeBlock(ZRFxNodeBlock* nodeBlock)
    : Block(nodeBlock->GetID(), NODES), m_private(std::make_unique<NodeBlockPrivate>()) {
    m_private->m_nodeBlock = nodeBlock;
    m_private->m_hasNodeIds = nodeBlock->GetNodeIDs() != nullptr;
}

NodeBlock::~NodeBlock() = default;

unstruct::ZRFxBlock* NodeBlock::internal_zrfxBlock() const {
    return guarded([&] { return m_private->m_nodeBlock.p(); });
}

bool NodeBlock::allocateNodes(std::size_t count) {
    return guarded([&] {
        return count <= std::numeric_limits<std::int64_t>::max() &&
               m_private->m_nodeBlock->Reserve(static_cast<std::int64_t>(count));
    });
}

bool NodeBlock::addNode(const Vec3f& node, int nodeId) {
    return guarded([&] {
        const bool withNodeIds = hasNodeIds();
        NVF_ASSERT((nodeId >= 0 && withNodeIds) || (nodeId < 0 && !withNodeIds));
        return (nodeId >= 0) == withNodeIds && m_private->m_nodeBlock->AddNode(node, nodeId);
    });
}

bool NodeBlock::addNode(float x, float y, float z, int nodeId) {
    return addNode(Vec3f(x, y, z), nodeId);
}

bool NodeBlock::setNodes(const std::vector<Vec3f>& nodes, const std::vector<int>& nodeIds) {
    return guarded([&] {
        if (!checkIds(nodes.data(), nodes.size(), nodeIds)) return false;
        return m_private->m_nodeBlock->SetNodes(nodes.data(),
                                                static_cast<std::int64_t>(nodes.size()),
                                                nodeIds.empty() ? nullptr : nodeIds.data());
    });
}

bool NodeBlock::setNodes(const std::vector<float>& coordinates, const std::vector<int>& nodeIds) {
    return guarded([&] {
        NVF_ASSERT(coordinates.size() % 3 == 0);
        if (coordinates.size() % 3 != 0) return false;
        const auto* nodes = reinterpret_cast<const Vec3f*>(coordinates.data());
        if (!checkIds(nodes, coordinates.size() / 3, nodeIds)) return false;
        return m_private->m_nodeBlock->SetNodes(nodes,
                                                static_cast<std::int64_t>(coordinates.size() / 3),
                                                nodeIds.empty() ? nullptr : nodeIds.data());
    });
}

bool NodeBlock::setNodeData(const float* coordinates, std::size_t nodeCount, const int* nodeIds) {
    return guarded([&] {
        if (!coordinates || nodeCount == 0) {
            return fail("Given pointer to node coordinates was NULL. (block id %1)", blockId());
        }
        const bool withNodeIds = hasNodeIds();
        NVF_ASSERT((nodeIds != nullptr) == withNodeIds);
        if ((nodeIds != nullptr) != withNodeIds) return false;
        const auto count = static_cast<std::int64_t>(nodeCount);
        ZRVec3fArray nodes;
        nodes.Refer(reinterpret_cast<const Vec3f*>(coordinates), count);
        std::unique_ptr<ZRIntArray> ids;
        if (nodeIds) {
            ids = std::make_unique<ZRIntArray>();
            ids->Refer(nodeIds, count);
        }
        return m_private->m_nodeBlock->SetNodes(std::move(nodes), std::move(ids));
    });
}

std::size_t NodeBlock::nodeCount() const {
    return guarded([&] { return static_cast<std::size_t>(m_private->m_nodeBlock->GetNumNodes()); });
}

bool NodeBlock::hasNodeIds() const {
    return guarded([&] { return m_private->m_hasNodeIds; });
}

std::vector<Vec3f> NodeBlock::nodes() const {
    return guarded([&] {
        const ZRVec3fArray& nodes = m_private->m_nodeBlock->GetNodes();
        return std::vector<Vec3f>(nodes.begin(), nodes.end());
    });
}

std::vector<int> NodeBlock::nodeIds() const {
    return guarded([&] {
        const ZRIntArray* ids = m_private->m_nodeBlock->GetNodeIDs();
        return ids ? std::vector<int>(ids->begin(), ids->end()) : std::vector<int>();
    });
}

const float* NodeBlock::nodeData() const {
    return guarded(
        [&] { return reinterpret_cast<const float*>(m_private->m_nodeBlock->GetNodes().Data()); });
}

const int* NodeBlock::nodeIdData() const {
    return guarded([&] {
        const ZRIntArray* ids = m_private->m_nodeBlock->GetNodeIDs();
        return ids ? ids->Data() : nullptr;
    });
}

int NodeBlock::nodeIndex(int nodeId) const {
    return guarded(-1,
                   [&] { return static_cast<int>(m_private->m_nodeBlock->GetNodeIndex(nodeId)); });
}

bool NodeBlock::checkIds(const Vec3f* nodes, std::size_t nodeCount,
                         const std::vector<int>& nodeIds) const {
    if (!nodes || nodeCount == 0) {
        return fail("Given pointer to node coordinates was NULL. (block id %1)", blockId());
    }
    const bool withNodeIds = hasNodeIds();
    NVF_ASSERT(nodeIds.size() == (withNodeIds ? nodeCount : 0));
    return nodeIds.size() == (withNodeIds ? nodeCount : 0);
}

}  // namespace nuo::zrfx
