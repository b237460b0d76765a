#pragma once

#include <cstdint>

#include "ZRArray.h"
#include "types/ZRFxElementType.h"

namespace unstruct {

/// Elements of one type, as an element block holds them. Which arrays are filled depends on the
/// type and on the block: ids when the block has them, the polyhedron arrays for polyhedrons, the
/// expansion arrays for beams with cross sections.
struct ZRFxElementBlockGroup {
    int m_iElementType = ELEMENT_UNKNOWN;
    std::int64_t m_iNumElements = 0;

    /// The nodes of all elements, element after element: indices from 0, or node ids.
    ZRIntArray m_aiConnectivity;
    ZRIntArray m_aiIDs;
    ZRIntArray m_aiElementIndices;

    /// Of a polyhedron: the number of its nodes; the number of its faces; of each face the nodes,
    /// as local indices into the nodes of the element; of each face the number of its nodes.
    ZRIntArray m_aiPolyhedronElementNodeCounts;
    ZRIntArray m_aiPolyhedronFaceCounts;
    ZRIntArray m_aiPolyhedronFaceLocalNodes;
    ZRIntArray m_aiPolyhedronFaceNodeCounts;

    /// Of a beam: the index of its cross section; where it points; its eccentricities.
    ZRIntArray m_aiExpansionMapping;
    ZRVec3fArray m_aDirections;
    ZRVec3fArray m_aEccentricities;

    bool IsPolyhedron() const { return m_iElementType == ELEMENT_POLYHEDRON; }
};

}  // namespace unstruct
