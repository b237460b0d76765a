#include "NuoZRFx/ElementBlock.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <map>
#include <utility>

#include "Convert_p.h"
#include "Log_p.h"
#include "ZROZRFxElementBlock.h"
#include "ZROZRFxElementType.h"
#include "nvf/Assert.h"

namespace nuo::zrfx {
namespace {

using unstruct::ZRFxElementBlock;
using unstruct::ZRFxElementBlockGroup;
using unstruct::ZRIntArray;

// Of every operation that gives an array of a group.
constexpr const char* kNoOutput = "Supplied output is NULL (elementNodes)";

// Grows by parts of what is there, so that adding elements one by one stays linear.
bool append(const int* items, std::size_t count, ZRIntArray& array) {
    const std::int64_t size = array.GetSize();
    const std::int64_t newSize = size + static_cast<std::int64_t>(count);
    if (newSize > array.GetAllocatedSize() && !array.Reserve(std::max(newSize, size + size / 2))) {
        return false;
    }
    if (count == 0) return true;
    if (!array.SetSize(newSize)) return false;
    std::memcpy(array.WritableData() + size, items, count * sizeof(int));
    return true;
}

// Indices count from 0, and ids are never negative: what is written can be read.
bool hasNegative(const int* nodes, std::size_t count) {
    return std::any_of(nodes, nodes + count, [](int node) { return node < 0; });
}

bool isFace(const std::vector<int>& face) {
    return face.size() >= 3 && !hasNegative(face.data(), face.size());
}

std::vector<int> copyOf(const ZRIntArray& array) {
    return std::vector<int>(array.begin(), array.end());
}

}  // namespace

class ElementBlockPrivate {
public:
    nvf::ref<ZRFxElementBlock> m_elementBlock;
};

std::size_t ElementBlock::nodesPerElement(ElementType elementType) {
    if (elementType == POLYHEDRONS) return std::numeric_limits<std::size_t>::max();
    return static_cast<std::size_t>(
        unstruct::ZRFEMNodesPerElement(ZRConvert::fromElementType(elementType)));
}

std::size_t ElementBlock::surfacesPerElement(ElementType elementType) {
    return static_cast<std::size_t>(
        unstruct::ZRFEMSurfacesPerElement(ZRConvert::fromElementType(elementType)));
}

bool ElementBlock::isVolumeElement(ElementType elementType) {
    return unstruct::ZRFEMIsVolumeElement(ZRConvert::fromElementType(elementType));
}

std::vector<unsigned int> ElementBlock::elementSurface(ElementType elementType,
                                                       std::size_t surfaceIndex) {
    NVF_ASSERT(surfaceIndex < surfacesPerElement(elementType));
    if (surfaceIndex >= surfacesPerElement(elementType)) {
        fail("Invalid surface index");
        return {};
    }
    return unstruct::ZRFEMElementSurface(ZRConvert::fromElementType(elementType),
                                         static_cast<int>(surfaceIndex));
}

ElementBlock::ElementBlock(int blockId, bool withElementIds, bool referNodesByIds)
    : Block(blockId, ELEMENTS), m_private(std::make_unique<ElementBlockPrivate>()) {
    m_private->m_elementBlock = new ZRFxElementBlock(nullptr, blockId);
    m_private->m_elementBlock->SetMapToNodeIDs(referNodesByIds);
    m_private->m_elementBlock->SetWithIDs(withElementIds);
}

ElementBlock::ElementBlock(ZRFxElementBlock* elementBlock)
    : Block(elementBlock->GetID(), ELEMENTS), m_private(std::make_unique<ElementBlockPrivate>()) {
    m_private->m_elementBlock = elementBlock;
}

ElementBlock::~ElementBlock() = default;

bool ElementBlock::checkValidity() const {
    if (nodeBlockId() < 0) {
        return fail("Target node block id %1 was invalid on element block (block id %2)",
                    nodeBlockId(), blockId());
    }
    return Block::checkValidity();
}

unstruct::ZRFxBlock* ElementBlock::internal_zrfxBlock() const {
    return m_private->m_elementBlock.p();
}

bool ElementBlock::hasElementIds() const {
    return m_private->m_elementBlock->GetWithIDs();
}

bool ElementBlock::referNodesByIds() const {
    return m_private->m_elementBlock->GetMapToNodeIDs();
}

int ElementBlock::nodeBlockId() const {
    return m_private->m_elementBlock->GetNodeBlockID();
}

void ElementBlock::setNodeBlockId(int nodeBlockId) {
    m_private->m_elementBlock->SetNodeBlockID(nodeBlockId);
}

bool ElementBlock::addElement(ElementType elementType, const std::vector<int>& elementNodes,
                              int elementId) {
    return addElement(elementType, elementNodes.data(), elementNodes.size(), elementId);
}

bool ElementBlock::addElement(ElementType elementType, const int* elementNodes,
                              std::size_t nodeCount, int elementId) {
    const bool isWhole = elementType == POLYHEDRONS || nodeCount == nodesPerElement(elementType);
    NVF_ASSERT(isWhole);
    return isWhole &&
           addElements(elementType, elementNodes, 1, elementId >= 0 ? &elementId : nullptr);
}

bool ElementBlock::addPolyhedron(const std::vector<std::vector<int>>& faces, int elementId) {
    const bool isSolid = faces.size() >= 4 && std::all_of(faces.begin(), faces.end(), isFace);
    NVF_ASSERT(isSolid);
    if (!isSolid || !checkIds(elementId >= 0)) return false;
    ZRIntArray elementNodes;
    ZRIntArray localNodes;
    std::map<int, int> localOfNode;
    for (const std::vector<int>& face : faces) {
        for (const int node : face) {
            const auto [found, isNew] =
                localOfNode.emplace(node, static_cast<int>(localOfNode.size()));
            if (isNew) elementNodes.Add(node);
            localNodes.Add(found->second);
        }
    }
    auto group = std::make_unique<ZRFxElementBlockGroup>();
    group->m_iElementType = unstruct::ELEMENT_POLYHEDRON;
    ZRFxElementBlockGroup* target = lastGroupOf(unstruct::ELEMENT_POLYHEDRON);
    ZRFxElementBlockGroup& extended = target ? *target : *group;
    append(elementNodes.Data(), static_cast<std::size_t>(elementNodes.GetSize()),
           extended.m_aiConnectivity);
    append(localNodes.Data(), static_cast<std::size_t>(localNodes.GetSize()),
           extended.m_aiPolyhedronFaceLocalNodes);
    for (const std::vector<int>& face : faces) {
        extended.m_aiPolyhedronFaceNodeCounts.Add(static_cast<int>(face.size()));
    }
    extended.m_aiPolyhedronElementNodeCounts.Add(static_cast<int>(elementNodes.GetSize()));
    extended.m_aiPolyhedronFaceCounts.Add(static_cast<int>(faces.size()));
    if (elementId >= 0) extended.m_aiIDs.Add(elementId);
    ++extended.m_iNumElements;
    return target || m_private->m_elementBlock->AddElementGroup(group);
}

bool ElementBlock::addElements(ElementType elementType, const std::vector<int>& elementNodes,
                               const std::vector<int>& elementIds) {
    std::size_t elementCount = 0;
    return countElements(elementType, elementNodes, elementIds, &elementCount) &&
           addElements(elementType, elementNodes.data(), elementCount,
                       elementIds.empty() ? nullptr : elementIds.data());
}

bool ElementBlock::addElements(ElementType elementType, const int* elementNodes,
                               std::size_t elementCount, const int* elementIds) {
    if (!checkElements(elementType, elementNodes, elementCount, elementIds)) return false;
    const int zrType = ZRConvert::fromElementType(elementType);
    auto group = std::make_unique<ZRFxElementBlockGroup>();
    group->m_iElementType = zrType;
    ZRFxElementBlockGroup* target = lastGroupOf(zrType);
    ZRFxElementBlockGroup& extended = target ? *target : *group;
    if (!append(elementNodes, elementCount * nodesPerElement(elementType),
                extended.m_aiConnectivity) ||
        (elementIds && !append(elementIds, elementCount, extended.m_aiIDs))) {
        return false;
    }
    extended.m_iNumElements += static_cast<std::int64_t>(elementCount);
    return target || m_private->m_elementBlock->AddElementGroup(group);
}

bool ElementBlock::setElements(ElementType elementType, const std::vector<int>& elementNodes,
                               const std::vector<int>& elementIds) {
    std::size_t elementCount = 0;
    const int* ids = elementIds.empty() ? nullptr : elementIds.data();
    if (!countElements(elementType, elementNodes, elementIds, &elementCount) ||
        !checkElements(elementType, elementNodes.data(), elementCount, ids)) {
        return false;
    }
    m_private->m_elementBlock->UnloadData();
    return addElements(elementType, elementNodes.data(), elementCount, ids);
}

bool ElementBlock::addElementData(ElementType elementType, const int* elementNodes,
                                  std::size_t elementCount, const int* elementIds) {
    if (!checkElements(elementType, elementNodes, elementCount, elementIds)) return false;
    const auto count = static_cast<std::int64_t>(elementCount);
    auto group = std::make_unique<ZRFxElementBlockGroup>();
    group->m_iElementType = ZRConvert::fromElementType(elementType);
    group->m_iNumElements = count;
    group->m_aiConnectivity.Refer(elementNodes,
                                  count * static_cast<std::int64_t>(nodesPerElement(elementType)));
    if (elementIds) group->m_aiIDs.Refer(elementIds, count);
    return m_private->m_elementBlock->AddElementGroup(group);
}

std::size_t ElementBlock::elementCount() const {
    return static_cast<std::size_t>(m_private->m_elementBlock->GetNumElements());
}

std::size_t ElementBlock::elementNodeCount() const {
    std::size_t count = 0;
    for (std::size_t i = 0; i < elementGroupCount(); ++i) count += elementGroupElementNodeCount(i);
    return count;
}

std::size_t ElementBlock::elementGroupCount() const {
    return static_cast<std::size_t>(m_private->m_elementBlock->GetNumElementGroups());
}

ElementBlock::ElementType ElementBlock::elementGroupType(std::size_t groupIndex) const {
    const ZRFxElementBlockGroup* group = groupAt(groupIndex);
    return group ? ZRConvert::toElementType(group->m_iElementType) : UNKNOWN;
}

std::size_t ElementBlock::elementGroupElementCount(std::size_t groupIndex) const {
    const ZRFxElementBlockGroup* group = groupAt(groupIndex);
    return group ? static_cast<std::size_t>(group->m_iNumElements) : 0;
}

std::size_t ElementBlock::elementGroupElementNodeCount(std::size_t groupIndex) const {
    const ZRFxElementBlockGroup* group = groupAt(groupIndex);
    return group ? static_cast<std::size_t>(group->m_aiConnectivity.GetSize()) : 0;
}

bool ElementBlock::elementGroup(std::size_t groupIndex, std::vector<int>* elementNodes,
                                std::vector<int>* elementIds) const {
    if (!elementNodes) return fail(kNoOutput);
    const ZRFxElementBlockGroup* group = groupAt(groupIndex);
    if (!group) return false;
    *elementNodes = copyOf(group->m_aiConnectivity);
    if (elementIds) *elementIds = copyOf(group->m_aiIDs);
    return true;
}

const int* ElementBlock::elementNodeData(std::size_t groupIndex) const {
    const ZRFxElementBlockGroup* group = groupAt(groupIndex);
    return group ? group->m_aiConnectivity.Data() : nullptr;
}

const int* ElementBlock::elementIdData(std::size_t groupIndex) const {
    const ZRFxElementBlockGroup* group = groupAt(groupIndex);
    return group && !group->m_aiIDs.IsEmpty() ? group->m_aiIDs.Data() : nullptr;
}

bool ElementBlock::elementIndices(std::size_t groupIndex, std::vector<int>* indices) const {
    return copyGroupArray(groupIndex, indices, &ZRFxElementBlockGroup::m_aiElementIndices);
}

bool ElementBlock::polyhedronsElementNodeCounts(std::size_t groupIndex,
                                                std::vector<int>* counts) const {
    return copyGroupArray(groupIndex, counts,
                          &ZRFxElementBlockGroup::m_aiPolyhedronElementNodeCounts);
}

bool ElementBlock::polyhedronsFaceCounts(std::size_t groupIndex, std::vector<int>* counts) const {
    return copyGroupArray(groupIndex, counts, &ZRFxElementBlockGroup::m_aiPolyhedronFaceCounts);
}

bool ElementBlock::polyhedronsFaceNodeCounts(std::size_t groupIndex,
                                             std::vector<int>* counts) const {
    return copyGroupArray(groupIndex, counts, &ZRFxElementBlockGroup::m_aiPolyhedronFaceNodeCounts);
}

bool ElementBlock::polyhedronsLocalNodes(std::size_t groupIndex,
                                         std::vector<int>* localNodes) const {
    return copyGroupArray(groupIndex, localNodes,
                          &ZRFxElementBlockGroup::m_aiPolyhedronFaceLocalNodes);
}

bool ElementBlock::checkIds(bool isGiven) const {
    const bool m_hasElementIds = hasElementIds();
    NVF_ASSERT(isGiven == m_hasElementIds);
    return isGiven == m_hasElementIds;
}

bool ElementBlock::countElements(ElementType elementType, const std::vector<int>& elementNodes,
                                 const std::vector<int>& elementIds, std::size_t* elementCount) {
    const std::size_t nodeCount = nodesPerElement(elementType);
    const bool isWhole = nodeCount > 0 && elementNodes.size() % nodeCount == 0;
    NVF_ASSERT(isWhole);
    if (!isWhole) return false;
    *elementCount = elementNodes.size() / nodeCount;
    NVF_ASSERT(elementIds.empty() || elementIds.size() == *elementCount);
    return elementIds.empty() || elementIds.size() == *elementCount;
}

bool ElementBlock::checkElements(ElementType elementType, const int* elementNodes,
                                 std::size_t elementCount, const int* elementIds) const {
    const bool hasFixedNodes = elementType != POLYHEDRONS && nodesPerElement(elementType) > 0;
    NVF_ASSERT(elementNodes && elementCount > 0);
    NVF_ASSERT(hasFixedNodes);
    if (!elementNodes || elementCount == 0 || !hasFixedNodes || !checkIds(elementIds != nullptr)) {
        return false;
    }
    const bool areNodes = !hasNegative(elementNodes, elementCount * nodesPerElement(elementType));
    NVF_ASSERT(areNodes);
    return areNodes;
}

ZRFxElementBlockGroup* ElementBlock::lastGroupOf(int zrElementType) const {
    const std::int64_t count = m_private->m_elementBlock->GetNumElementGroups();
    if (count == 0) return nullptr;
    ZRFxElementBlockGroup* last = m_private->m_elementBlock->GetElementGroup(count - 1);
    return last->m_iElementType == zrElementType ? last : nullptr;
}

const ZRFxElementBlockGroup* ElementBlock::groupAt(std::size_t groupIndex) const {
    const std::size_t count = elementGroupCount();
    if (groupIndex < count) {
        return m_private->m_elementBlock->GetElementGroup(static_cast<std::int64_t>(groupIndex));
    }
    if (count == 0) {
        fail("Given group index %1 was invalid", groupIndex);
    } else {
        fail("Given group index %1 out of range [%2, %3]", groupIndex, 0, count - 1);
    }
    return nullptr;
}

bool ElementBlock::copyGroupArray(std::size_t groupIndex, std::vector<int>* items,
                                  ZRIntArray ZRFxElementBlockGroup::*array) const {
    if (!items) return fail(kNoOutput);
    const ZRFxElementBlockGroup* group = groupAt(groupIndex);
    if (!group) return false;
    *items = copyOf(group->*array);
    return true;
}

}  // namespace nuo::zrfx
