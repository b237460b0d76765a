#include "NuoZRFx/ElementBlock.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <map>
#include <utility>

#include "ArrayLimit_p.h"
#include "Convert_p.h"
#include "Log_p.h"
#include "ZRIDLookup.h"
#include "blocks/mesh/ZRFxElementBlock.h"
#include "nvf/Assert.h"
#include "types/ZRFxElementType.h"

namespace nuo::zrfx {
namespace {

using unstruct::ZRFxElementBlock;
using unstruct::ZRFxElementBlockGroup;
using unstruct::ZRIntArray;

// Of every operation that gives an array of a group.
constexpr const char* kNoOutput = "Supplied output is NULL (elementNodes)";

// What a group holds of its elements.
constexpr std::array kGroupArrays{&ZRFxElementBlockGroup::m_aiConnectivity,
                                  &ZRFxElementBlockGroup::m_aiIDs,
                                  &ZRFxElementBlockGroup::m_aiPolyhedronElementNodeCounts,
                                  &ZRFxElementBlockGroup::m_aiPolyhedronFaceCounts,
                                  &ZRFxElementBlockGroup::m_aiPolyhedronFaceNodeCounts,
                                  &ZRFxElementBlockGroup::m_aiPolyhedronFaceLocalNodes};

// Grows by parts of what is there, so that adding elements one by one stays linear.
bool makeRoom(const ZRIntArray& items, ZRIntArray& array) {
    const std::int64_t size = array.GetSize();
    const std::int64_t newSize = size + items.GetSize();
    return items.IsEmpty() || newSize <= array.GetAllocatedSize() ||
           array.Reserve(std::max(newSize, size + size / 2));
}

bool append(const ZRIntArray& items, ZRIntArray& array) {
    if (items.IsEmpty()) return true;
    const std::int64_t size = array.GetSize();
    if (!makeRoom(items, array) || !array.SetSize(size + items.GetSize())) return false;
    std::memcpy(array.WritableData() + size, items.Data(),
                static_cast<std::size_t>(items.GetSize()) * sizeof(int));
    return true;
}

// All of the elements, or none when there is no memory.
bool extend(ZRFxElementBlockGroup& group, const ZRFxElementBlockGroup& added) {
    for (const auto array : kGroupArrays) {
        if (!makeRoom(added.*array, group.*array)) return false;
    }
    for (const auto array : kGroupArrays) {
        if (!append(added.*array, group.*array)) return false;
    }
    group.m_iElementType = added.m_iElementType;
    group.m_iNumElements += added.m_iNumElements;
    return true;
}

ZRFxElementBlockGroup groupReferringTo(ElementBlock::ElementType elementType,
                                       const int* elementNodes, std::size_t elementCount,
                                       const int* elementIds) {
    const auto count = static_cast<std::int64_t>(elementCount);
    const auto nodesPerElement = ElementBlock::nodesPerElement(elementType);
    ZRFxElementBlockGroup group;
    group.m_iElementType = ZRConvert::fromElementType(elementType);
    group.m_iNumElements = count;
    group.m_aiConnectivity.Refer(elementNodes, count * static_cast<std::int64_t>(nodesPerElement));
    if (elementIds) group.m_aiIDs.Refer(elementIds, count);
    return group;
}

bool takePolyhedron(const std::vector<std::vector<int>>& faces, ZRFxElementBlockGroup& group) {
    std::map<int, int> localOfNode;
    for (const std::vector<int>& face : faces) {
        for (const int node : face) {
            const auto [found, isNew] =
                localOfNode.emplace(node, static_cast<int>(localOfNode.size()));
            if (isNew && !group.m_aiConnectivity.Add(node)) return false;
            if (!group.m_aiPolyhedronFaceLocalNodes.Add(found->second)) return false;
        }
        if (!group.m_aiPolyhedronFaceNodeCounts.Add(static_cast<int>(face.size()))) return false;
    }
    group.m_iElementType = unstruct::ELEMENT_POLYHEDRON;
    group.m_iNumElements = 1;
    return group.m_aiPolyhedronElementNodeCounts.Add(static_cast<int>(localOfNode.size())) &&
           group.m_aiPolyhedronFaceCounts.Add(static_cast<int>(faces.size()));
}

// Indices count from 0, and ids are never negative: what is written can be read.
bool hasNegative(const int* nodes, std::size_t count) {
    return std::any_of(nodes, nodes + count, [](int node) { return node < 0; });
}

bool isFace(const std::vector<int>& face) {
    return face.size() >= 3 && !hasNegative(face.data(), face.size());
}

Span<const int> spanOf(const ZRIntArray& array) {
    return Span<const int>::of(array.Data(), static_cast<std::size_t>(array.GetSize()));
}

std::vector<int> copyOf(const ZRIntArray& array) {
    return std::vector<int>(array.begin(), array.end());
}

}  // namespace

class ElementBlockPrivate {
public:
    // Enters the ids of elements that were added since the last time.
    void enterIds() {
        std::int64_t first = 0;
        for (std::int64_t i = 0; i < m_elementBlock->GetNumElementGroups(); ++i) {
            const ZRIntArray& ids = m_elementBlock->GetElementGroup(i)->m_aiIDs;
            for (std::int64_t at = m_indices.GetNumItems() - first; at < ids.GetSize(); ++at) {
                m_indices.Add(ids[at]);
            }
            first += ids.GetSize();
        }
    }

    nvf::ref<ZRFxElementBlock> m_elementBlock;
    unstruct::ZRIDLookup m_indices;  // Of the elements that were there when one was last asked for.
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
    const std::size_t count = surfacesPerElement(elementType);
    if (!nvf::requireThat("surfaceIndex < surfacesPerElement(elementType)", surfaceIndex < count,
                          "elementSurface: %1 have %2 surfaces, %3 asked for",
                          elementTypeName(elementType), count, surfaceIndex)) {
        fail("Invalid surface index");
        return {};
    }
    return guarded([&] {
        return unstruct::ZRFEMElementSurface(ZRConvert::fromElementType(elementType),
                                             static_cast<int>(surfaceIndex));
    });
}

ElementBlock::ElementBlock(int blockId, bool withElementIds, bool referNodesByIds)
    : Block(blockId, ELEMENTS) {
    guarded([&] {
        auto made = std::make_unique<ElementBlockPrivate>();
        made->m_elementBlock = new ZRFxElementBlock(nullptr, blockId);
        made->m_elementBlock->SetMapToNodeIDs(referNodesByIds);
        made->m_elementBlock->SetWithIDs(withElementIds);
        m_private.take(std::move(made));
    });
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
    return guarded([&] { return m_private->m_elementBlock.p(); });
}

bool ElementBlock::hasElementIds() const {
    return guarded([&] { return m_private->m_elementBlock->GetWithIDs(); });
}

bool ElementBlock::referNodesByIds() const {
    return guarded([&] { return m_private->m_elementBlock->GetMapToNodeIDs(); });
}

int ElementBlock::nodeBlockId() const {
    return guarded(-1, [&] { return m_private->m_elementBlock->GetNodeBlockID(); });
}

void ElementBlock::setNodeBlockId(int nodeBlockId) {
    guarded([&] { m_private->m_elementBlock->SetNodeBlockID(nodeBlockId); });
}

bool ElementBlock::addElement(ElementType elementType, const std::vector<int>& elementNodes,
                              int elementId) {
    return addElement(elementType, elementNodes.data(), elementNodes.size(), elementId);
}

bool ElementBlock::addElement(ElementType elementType, const int* elementNodes,
                              std::size_t nodeCount, int elementId) {
    const std::size_t expected = nodesPerElement(elementType);
    return guarded([&] {
        return (elementType == POLYHEDRONS ||
                nvf::require(nodeCount == expected, "addElement: %1 take %2 nodes, %3 given",
                             elementTypeName(elementType), expected, nodeCount)) &&
               addElements("addElement", elementType, elementNodes, 1,
                           elementId >= 0 ? &elementId : nullptr);
    });
}

bool ElementBlock::addPolyhedron(const std::vector<std::vector<int>>& faces, int elementId) {
    return guarded([&] {
        const auto wrong = std::find_if_not(faces.begin(), faces.end(), isFace);
        if (!nvf::require(faces.size() >= 4, "addPolyhedron: %1 faces given, expected 4 at least",
                          faces.size()) ||
            !nvf::require(wrong == faces.end(),
                          "addPolyhedron: face %1 has less than 3 nodes, or a negative one",
                          wrong - faces.begin()) ||
            !checkIds("addPolyhedron", elementId >= 0)) {
            return false;
        }
        ZRFxElementBlockGroup added;
        if (!takePolyhedron(faces, added)) return false;
        if (elementId >= 0) added.m_aiIDs.Refer(&elementId, 1);
        return addGroup(added);
    });
}

bool ElementBlock::addElements(ElementType elementType, const std::vector<int>& elementNodes,
                               const std::vector<int>& elementIds) {
    std::size_t elementCount = 0;
    return countElements("addElements", elementType, elementNodes, elementIds, &elementCount) &&
           addElements(elementType, elementNodes.data(), elementCount,
                       elementIds.empty() ? nullptr : elementIds.data());
}

bool ElementBlock::addElements(ElementType elementType, const int* elementNodes,
                               std::size_t elementCount, const int* elementIds) {
    return guarded([&] {
        return addElements("addElements", elementType, elementNodes, elementCount, elementIds);
    });
}

bool ElementBlock::addElements(const char* operation, ElementType elementType,
                               const int* elementNodes, std::size_t elementCount,
                               const int* elementIds) {
    return checkElements(operation, elementType, elementNodes, elementCount, elementIds) &&
           addGroup(groupReferringTo(elementType, elementNodes, elementCount, elementIds));
}

bool ElementBlock::setElements(ElementType elementType, const std::vector<int>& elementNodes,
                               const std::vector<int>& elementIds) {
    return guarded([&] {
        std::size_t elementCount = 0;
        const int* ids = elementIds.empty() ? nullptr : elementIds.data();
        if (!countElements("setElements", elementType, elementNodes, elementIds, &elementCount) ||
            !checkElements("setElements", elementType, elementNodes.data(), elementCount, ids)) {
            return false;
        }
        auto group = std::make_unique<ZRFxElementBlockGroup>();
        if (!extend(*group,
                    groupReferringTo(elementType, elementNodes.data(), elementCount, ids))) {
            return false;
        }
        m_private->m_elementBlock->UnloadData();
        m_private->m_indices = {};
        return m_private->m_elementBlock->AddElementGroup(group);
    });
}

bool ElementBlock::addElementData(ElementType elementType, const int* elementNodes,
                                  std::size_t elementCount, const int* elementIds) {
    return guarded([&] {
        if (!checkElements("addElementData", elementType, elementNodes, elementCount, elementIds)) {
            return false;
        }
        auto group = std::make_unique<ZRFxElementBlockGroup>(
            groupReferringTo(elementType, elementNodes, elementCount, elementIds));
        return m_private->m_elementBlock->AddElementGroup(group);
    });
}

bool ElementBlock::addElementData(ElementType elementType, Span<const int> elementNodes,
                                  Span<const int> elementIds) {
    std::size_t elementCount = 0;
    return countElements("addElementData", elementType, elementNodes, elementIds, &elementCount) &&
           addElementData(elementType, elementNodes.data(), elementCount,
                          elementIds.empty() ? nullptr : elementIds.data());
}

std::size_t ElementBlock::elementCount() const {
    return guarded(
        [&] { return static_cast<std::size_t>(m_private->m_elementBlock->GetNumElements()); });
}

std::size_t ElementBlock::elementNodeCount() const {
    std::size_t count = 0;
    for (std::size_t i = 0; i < elementGroupCount(); ++i) count += elementGroupElementNodeCount(i);
    return count;
}

std::size_t ElementBlock::elementGroupCount() const {
    return guarded(
        [&] { return static_cast<std::size_t>(m_private->m_elementBlock->GetNumElementGroups()); });
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
    return guarded([&] {
        if (!elementNodes) return fail(kNoOutput);
        const ZRFxElementBlockGroup* group = groupAt(groupIndex);
        if (!group) return false;
        *elementNodes = copyOf(group->m_aiConnectivity);
        if (elementIds) *elementIds = copyOf(group->m_aiIDs);
        return true;
    });
}

int ElementBlock::elementIndex(int elementId) const {
    return guarded(-1, [&] {
        m_private->enterIds();
        return static_cast<int>(m_private->m_indices.IndexOf(elementId));
    });
}

Span<const int> ElementBlock::elementGroupNodes(std::size_t groupIndex) const {
    const ZRFxElementBlockGroup* group = groupAt(groupIndex);
    return group ? spanOf(group->m_aiConnectivity) : Span<const int>();
}

Span<const int> ElementBlock::elementGroupIds(std::size_t groupIndex) const {
    const ZRFxElementBlockGroup* group = groupAt(groupIndex);
    return group ? spanOf(group->m_aiIDs) : Span<const int>();
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
    return guarded([&] {
        return copyGroupArray(groupIndex, indices, &ZRFxElementBlockGroup::m_aiElementIndices);
    });
}

bool ElementBlock::polyhedronsElementNodeCounts(std::size_t groupIndex,
                                                std::vector<int>* counts) const {
    return guarded([&] {
        return copyGroupArray(groupIndex, counts,
                              &ZRFxElementBlockGroup::m_aiPolyhedronElementNodeCounts);
    });
}

bool ElementBlock::polyhedronsFaceCounts(std::size_t groupIndex, std::vector<int>* counts) const {
    return guarded([&] {
        return copyGroupArray(groupIndex, counts, &ZRFxElementBlockGroup::m_aiPolyhedronFaceCounts);
    });
}

bool ElementBlock::polyhedronsFaceNodeCounts(std::size_t groupIndex,
                                             std::vector<int>* counts) const {
    return guarded([&] {
        return copyGroupArray(groupIndex, counts,
                              &ZRFxElementBlockGroup::m_aiPolyhedronFaceNodeCounts);
    });
}

bool ElementBlock::polyhedronsLocalNodes(std::size_t groupIndex,
                                         std::vector<int>* localNodes) const {
    return guarded([&] {
        return copyGroupArray(groupIndex, localNodes,
                              &ZRFxElementBlockGroup::m_aiPolyhedronFaceLocalNodes);
    });
}

bool ElementBlock::checkIds(const char* operation, bool isGiven) const {
    const bool isExpected = hasElementIds();
    return nvf::require(isGiven || !isExpected,
                        "%1: the block was built with element ids, but none are given",
                        operation) &&
           nvf::require(!isGiven || isExpected,
                        "%1: the block was built without element ids, but ids are given",
                        operation);
}

bool ElementBlock::countElements(const char* operation, ElementType elementType,
                                 Span<const int> elementNodes, Span<const int> elementIds,
                                 std::size_t* elementCount) {
    const std::size_t nodeCount = nodesPerElement(elementType);
    const bool hasFixedNodes = elementType != POLYHEDRONS && nodeCount > 0;
    if (!nvf::require(hasFixedNodes, "%1: elements of type %2 have no fixed number of nodes",
                      operation, static_cast<int>(elementType)) ||
        !nvf::require(elementNodes.size() % nodeCount == 0,
                      "%1: %2 take %3 nodes each, %4 given do not divide", operation,
                      elementTypeName(elementType), nodeCount, elementNodes.size())) {
        return false;
    }
    *elementCount = elementNodes.size() / nodeCount;
    return nvf::require(elementIds.empty() || elementIds.size() == *elementCount,
                        "%1: %2 ids given for %3 elements", operation, elementIds.size(),
                        *elementCount);
}

bool ElementBlock::checkElements(const char* operation, ElementType elementType,
                                 const int* elementNodes, std::size_t elementCount,
                                 const int* elementIds) const {
    const std::size_t nodeCount = nodesPerElement(elementType);
    const bool hasFixedNodes = elementType != POLYHEDRONS && nodeCount > 0;
    return nvf::require(elementNodes && elementCount > 0, "%1: no elements are given", operation) &&
           nvf::require(hasFixedNodes, "%1: elements of type %2 have no fixed number of nodes",
                        operation, static_cast<int>(elementType)) &&
           checkIds(operation, elementIds != nullptr) &&
           fitsDataFile(operation, elementCount, nodeCount * sizeof(int)) &&
           nvf::require(!hasNegative(elementNodes, elementCount * nodeCount),
                        "%1: a node index or id is negative", operation);
}

bool ElementBlock::addGroup(const ZRFxElementBlockGroup& added) {
    ZRFxElementBlockGroup* last = lastGroupOf(added.m_iElementType);
    if (last) return extend(*last, added);
    auto group = std::make_unique<ZRFxElementBlockGroup>();
    return extend(*group, added) && m_private->m_elementBlock->AddElementGroup(group);
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
