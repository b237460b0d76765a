#include "NuoZRFx/NodeBlock.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "ArrayLimit_p.h"
#include "Log_p.h"
#include "blocks/mesh/ZRFxNodeBlock.h"
#include "nvf/Assert.h"

namespace nuo::zrfx {
namespace {

using unstruct::ZRFxNodeBlock;
using unstruct::ZRIntArray;
using unstruct::ZRVec3fArray;

bool areWhole(const char* operation, std::size_t coordinateCount) {
    return nvf::require(coordinateCount % 3 == 0,
                        "%1: %2 coordinates given, which are not three per node", operation,
                        coordinateCount);
}

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
        const bool hasIds = hasNodeIds();
        return nvf::require(nodeId >= 0 || !hasIds,
                            "addNode: the block was built with node ids, but none is given") &&
               nvf::require(nodeId < 0 || hasIds,
                            "addNode: the block was built without node ids, but %1 is given",
                            nodeId) &&
               m_private->m_nodeBlock->AddNode(node, nodeId);
    });
}

bool NodeBlock::addNode(float x, float y, float z, int nodeId) {
    return addNode(Vec3f(x, y, z), nodeId);
}

bool NodeBlock::setNodes(const std::vector<Vec3f>& nodes, const std::vector<int>& nodeIds) {
    return guarded([&] {
        return checkNodes("setNodes", nodes.data(), nodes.size(), nodeIds.size()) &&
               m_private->m_nodeBlock->SetNodes(nodes.data(),
                                                static_cast<std::int64_t>(nodes.size()),
                                                nodeIds.empty() ? nullptr : nodeIds.data());
    });
}

bool NodeBlock::setNodes(const std::vector<float>& coordinates, const std::vector<int>& nodeIds) {
    return guarded([&] {
        const std::size_t count = coordinates.size() / 3;
        return areWhole("setNodes", coordinates.size()) &&
               checkNodes("setNodes", coordinates.data(), count, nodeIds.size()) &&
               m_private->m_nodeBlock->SetNodes(reinterpret_cast<const Vec3f*>(coordinates.data()),
                                                static_cast<std::int64_t>(count),
                                                nodeIds.empty() ? nullptr : nodeIds.data());
    });
}

bool NodeBlock::setRoundedNodes(Span<const double> coordinates, Span<const int> nodeIds) {
    return guarded([&] {
        const std::size_t count = coordinates.size() / 3;
        if (!areWhole("setNodes", coordinates.size()) ||
            !checkNodes("setNodes", coordinates.data(), count, nodeIds.size())) {
            return false;
        }
        ZRVec3fArray nodes;
        if (!nodes.SetSize(static_cast<std::int64_t>(count))) return false;
        std::transform(coordinates.begin(), coordinates.end(),
                       reinterpret_cast<float*>(nodes.WritableData()),
                       [](double value) { return static_cast<float>(value); });
        auto ids = nodeIds.empty() ? nullptr : std::make_unique<ZRIntArray>();
        if (ids && !ids->Assign(nodeIds.data(), static_cast<std::int64_t>(count))) return false;
        return m_private->m_nodeBlock->SetNodes(std::move(nodes), std::move(ids));
    });
}

bool NodeBlock::setNodeData(const float* coordinates, std::size_t nodeCount, const int* nodeIds) {
    return guarded([&] {
        if (!checkNodes("setNodeData", coordinates, nodeCount, nodeIds ? nodeCount : 0)) {
            return false;
        }
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

bool NodeBlock::setNodeData(Span<const float> coordinates, Span<const int> nodeIds) {
    const std::size_t count = coordinates.size() / 3;
    return areWhole("setNodeData", coordinates.size()) &&
           checkNodes("setNodeData", coordinates.data(), count, nodeIds.size()) &&
           setNodeData(coordinates.data(), count, nodeIds.empty() ? nullptr : nodeIds.data());
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

Span<const float> NodeBlock::coordinates() const {
    return Span<const float>::of(nodeData(), 3 * nodeCount());
}

Span<const int> NodeBlock::ids() const {
    const int* ids = nodeIdData();
    return Span<const int>::of(ids, ids ? nodeCount() : 0);
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

bool NodeBlock::checkNodes(const char* operation, const void* nodes, std::size_t nodeCount,
                           std::size_t idCount) const {
    if (!nodes || nodeCount == 0) {
        return fail("Given pointer to node coordinates was NULL. (block id %1)", blockId());
    }
    const std::size_t expected = hasNodeIds() ? nodeCount : 0;
    return fitsDataFile(operation, nodeCount, sizeof(Vec3f)) &&
           nvf::require(idCount == expected, "%1: %2 node ids given for %3 nodes, expected %4",
                        operation, idCount, nodeCount, expected);
}

}  // namespace nuo::zrfx
