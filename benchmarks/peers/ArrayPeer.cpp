#include "ArrayPeer.h"

void ArrayPeer::Prepare(const PeerDataSet& data) {
    m_aMesh.push_back({"Coordinates", BytesOf(data.aCoordinates), 3, true});
    for (size_t i = 0; i < data.aElements.size(); ++i) {
        const PeerDataSet::Elements& elements = data.aElements[i];
        m_aMesh.push_back({"Elements" + std::to_string(i), BytesOf(elements.aNodes),
                           elements.NodesOfEach(), false});
    }
    for (size_t i = 0; i < data.aStates.size(); ++i) {
        std::vector<PeerArray>& aArrays = m_aaStates.emplace_back();
        for (const PeerDataSet::Field& field : data.aStates[i].aFields) {
            aArrays.push_back({"State" + std::to_string(i) + "_" + field.sName,
                               BytesOf(field.aValues), field.nComponents, true});
        }
    }
}

std::vector<PeerArray> ArrayPeer::Arrays(size_t nStates) const {
    std::vector<PeerArray> aArrays = m_aMesh;
    for (size_t i = 0; i < nStates; ++i) {
        aArrays.insert(aArrays.end(), m_aaStates[i].begin(), m_aaStates[i].end());
    }
    return aArrays;
}

std::vector<PeerBytes> ArrayPeer::AllBytes(const std::vector<PeerArray>& aArrays) {
    std::vector<PeerBytes> aBytes;
    for (const PeerArray& array : aArrays) aBytes.push_back(array.bytes);
    return aBytes;
}
