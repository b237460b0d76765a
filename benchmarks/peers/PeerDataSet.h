#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "NuoZRFx/ElementBlock.h"

/// The model that every peer writes and reads: nodes, elements and, for each state, fields of one
/// value, vector or tensor a node. Plain values in the layout of the field: interleaved, row after
/// row, indices from 0. Peers that want another layout make it in Peer::Prepare.
struct PeerDataSet {
    using ElementType = nuo::zrfx::ElementBlock::ElementType;

    struct Field {
        std::string sName;
        size_t nComponents = 1;
        std::vector<float> aValues;
    };

    struct State {
        float fTime = 0;
        std::vector<Field> aFields;  // The same ones in each state.
    };

    struct Elements {
        ElementType eType = ElementType::HEXAHEDRONS;
        std::vector<int> aNodes;

        size_t NodesOfEach() const { return nuo::zrfx::ElementBlock::nodesPerElement(eType); }
        size_t Count() const { return aNodes.size() / NodesOfEach(); }
        /// Numbered from 1, in the order that Exodus II and CGNS share.
        std::vector<int> NodesFromOne() const;
    };

    std::vector<float> aCoordinates;
    std::vector<Elements> aElements;
    std::vector<State> aStates;

    size_t NodeCount() const { return aCoordinates.size() / 3; }
    size_t ElementCount() const;

    /// A block of hexahedra with about so many nodes. Each state has displacements, a von Mises
    /// stress and a stress tensor, smooth over the mesh, with noise of relative size 1e-4.
    static PeerDataSet MakeSolid(size_t nNodes, size_t nStates);

    /// The same mesh with the von Mises stress alone.
    static PeerDataSet MakeScalarSolid(size_t nNodes, size_t nStates);

    /// The first database of a ZRFx file, as far as all peers can hold it: its first node block,
    /// the element blocks of that, and the fields that have one value for each node in all states.
    /// Ends the program when there is nothing.
    static PeerDataSet ReadZrfx(const std::string& sPath);

    /// Field after field of 128 values, smooth with noise alike.
    static std::vector<std::vector<float>> MakeObjects(size_t nObjects);
};
