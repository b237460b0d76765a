#pragma once

#include <cstddef>
#include <vector>

#include "NuoCore/Export.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoCore/Span.h"
#include "NuoZRFx/Block.h"

namespace unstruct {
class ZRFxElementBlock;
struct ZRFxElementBlockGroup;
template <typename T>
class ZRArray;
}  // namespace unstruct

namespace nuo::zrfx {

/// The elements of one part of a model, in groups: one for each run of elements of one type.
/// Elements name their nodes by 0-based index into one node block, or by node id. The nodes of an
/// element come in the order that VTK documents for its cell of the same kind.
class NUO_API ElementBlock : public Block {
public:
    enum ElementType : int {
        POINTS = 0,
        BEAMS = 1,
        BEAMS_3 = 2,
        TRIANGLES = 3,
        TRIANGLES_6 = 4,
        QUADS = 5,
        QUADS_8 = 6,
        QUADS_9 = 7,
        PYRAMIDS = 8,
        PYRAMIDS_13 = 9,
        TETRAHEDRONS = 10,
        TETRAHEDRONS_10 = 11,
        HEXAHEDRONS = 12,
        HEXAHEDRONS_20 = 13,
        PENTAHEDRONS = 14,
        PENTAHEDRONS_15 = 15,
        POLYHEDRONS = 16,
        UNKNOWN = 17
    };

    static constexpr BlockType kBlockType = ELEMENTS;

    /// The name of an enumerator, such as "QUADS"; empty for a value that is none.
    static const char* elementTypeName(ElementType elementType);

    /// The number of nodes of an element; for POLYHEDRONS, where it varies, the largest value. 0
    /// for UNKNOWN.
    static std::size_t nodesPerElement(ElementType elementType);

    /// The number of faces of a volume, 1 of a shell; 0 for points, beams, POLYHEDRONS and UNKNOWN.
    static std::size_t surfacesPerElement(ElementType elementType);
    static bool isVolumeElement(ElementType elementType);

    /// The local nodes of a surface: corners with the normal of the right-hand rule pointing out of
    /// the element, then mid-side nodes in the same sense. Empty, with a message, when there is
    /// none.
    static std::vector<unsigned int> elementSurface(ElementType elementType,
                                                    std::size_t surfaceIndex);

    /// With ids, every element gets one, 0 or more and its own. `referNodesByIds` says whether
    /// elements name nodes by node id, or by index into the node block.
    ElementBlock(int blockId, bool withElementIds, bool referNodesByIds);
    ~ElementBlock() override;

    bool checkValidity() const override;
    unstruct::ZRFxBlock* internal_zrfxBlock() const override;

    bool hasElementIds() const;
    bool referNodesByIds() const;

    /// The node block that the elements refer to; -1 until it is set.
    int nodeBlockId() const;
    void setNodeBlockId(int nodeBlockId);

    /// Appends one element. An id of 0 or more goes with a block built with ids, a negative one
    /// with a block built without. The number of nodes must be that of the type, and none may be
    /// negative. This and the operations below add nothing, after an assertion, when what they get
    /// does not fit.
    bool addElement(ElementType elementType, const std::vector<int>& elementNodes,
                    int elementId = -1);
    bool addElement(ElementType elementType, const int* elementNodes, std::size_t nodeCount,
                    int elementId = -1);

    /// Appends a polyhedron, given by its faces as lists of nodes: at least four faces of at least
    /// three nodes, each so ordered that its normal points outward.
    bool addPolyhedron(const std::vector<std::vector<int>>& faces, int elementId = -1);

    /// Appends copies of many elements: all their nodes, element after element, and one id per
    /// element if, and only if, the block was built with ids.
    bool addElements(ElementType elementType, const std::vector<int>& elementNodes,
                     const std::vector<int>& elementIds);
    bool addElements(ElementType elementType, const int* elementNodes, std::size_t elementCount,
                     const int* elementIds);

    /// The same, but replaces the elements of the block; on failure they stay.
    bool setElements(ElementType elementType, const std::vector<int>& elementNodes,
                     const std::vector<int>& elementIds);

    /// Appends a group without copying: the block refers to the nodes and, unless null, the ids.
    /// They must stay unchanged until the block has been written, and for as long as it is used
    /// after that. A later addElements of the same type copies and extends the group.
    bool addElementData(ElementType elementType, const int* elementNodes, std::size_t elementCount,
                        const int* elementIds);
    bool addElementData(ElementType elementType, Span<const int> elementNodes,
                        Span<const int> elementIds = {});

    /// The number of elements, and of node references, in all groups.
    std::size_t elementCount() const;
    std::size_t elementNodeCount() const;

    std::size_t elementGroupCount() const;

    /// UNKNOWN, or 0, with a message, when there is no such group.
    ElementType elementGroupType(std::size_t groupIndex) const;
    std::size_t elementGroupElementCount(std::size_t groupIndex) const;
    std::size_t elementGroupElementNodeCount(std::size_t groupIndex) const;

    /// Copies of the nodes of a group, element after element, and of its ids, empty when the block
    /// has none. `elementIds` may be null. False, with a message, when there is no such group; so
    /// for all operations below.
    bool elementGroup(std::size_t groupIndex, std::vector<int>* elementNodes,
                      std::vector<int>* elementIds) const;

    /// The index, from 0, of the element with an id among the elements of all groups in their
    /// order; -1 when there is none. The first call after a change takes time with the number of
    /// elements.
    int elementIndex(int elementId) const;

    /// The nodes of a group, element after element, and its ids, empty when the block has none;
    /// valid while the block lives and is not changed.
    Span<const int> elementGroupNodes(std::size_t groupIndex) const;
    Span<const int> elementGroupIds(std::size_t groupIndex) const;

    /// elementGroupElementNodeCount() nodes, valid while the block lives and is not changed.
    const int* elementNodeData(std::size_t groupIndex) const;

    /// elementGroupElementCount() ids, valid alike; null when the block has none.
    const int* elementIdData(std::size_t groupIndex) const;

    /// The element indices that were stored with a group; empty when there are none.
    bool elementIndices(std::size_t groupIndex, std::vector<int>* indices) const;

    /// Of a group of polyhedrons: nodes of each element; faces of each element; nodes of each face;
    /// the nodes of the faces, as local indices into the nodes of their element.
    bool polyhedronsElementNodeCounts(std::size_t groupIndex, std::vector<int>* counts) const;
    bool polyhedronsFaceCounts(std::size_t groupIndex, std::vector<int>* counts) const;
    bool polyhedronsFaceNodeCounts(std::size_t groupIndex, std::vector<int>* counts) const;
    bool polyhedronsLocalNodes(std::size_t groupIndex, std::vector<int>* localNodes) const;

private:
    friend class DatabasePrivate;
    explicit ElementBlock(unstruct::ZRFxElementBlock* elementBlock);
    bool checkIds(const char* operation, bool isGiven) const;
    static bool countElements(const char* operation, ElementType elementType,
                              Span<const int> elementNodes, Span<const int> elementIds,
                              std::size_t* elementCount);
    bool checkElements(const char* operation, ElementType elementType, const int* elementNodes,
                       std::size_t elementCount, const int* elementIds) const;
    bool addElements(const char* operation, ElementType elementType, const int* elementNodes,
                     std::size_t elementCount, const int* elementIds);
    bool addGroup(const unstruct::ZRFxElementBlockGroup& added);
    unstruct::ZRFxElementBlockGroup* lastGroupOf(int zrElementType) const;
    const unstruct::ZRFxElementBlockGroup* groupAt(std::size_t groupIndex) const;
    bool copyGroupArray(std::size_t groupIndex, std::vector<int>* items,
                        unstruct::ZRArray<int> unstruct::ZRFxElementBlockGroup::*array) const;

    PrivatePtr<class ElementBlockPrivate> m_private;
};

}  // namespace nuo::zrfx
