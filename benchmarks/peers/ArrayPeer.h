#pragma once

#include "Peer.h"

/// An array with a name, in the layout of the data set.
struct PeerArray {
    std::string sName;
    PeerBytes bytes;
    size_t nColumns = 1;
    bool bFloats = true;

    size_t RowCount() const { return bytes.size() / (4 * nColumns); }  // Both types have 4 bytes.
};

/// A peer that knows arrays or bytes by name and nothing of models. It refers to the data set,
/// which must outlive it.
class ArrayPeer : public Peer {
public:
    void Prepare(const PeerDataSet& data) override;
    std::vector<PeerBytes> Mesh() const override { return AllBytes(m_aMesh); }
    std::vector<PeerBytes> State(size_t nState) const override {
        return AllBytes(m_aaStates[nState]);
    }

protected:
    const std::vector<PeerArray>& StateArrays(size_t nState) const { return m_aaStates[nState]; }

    /// Mesh and first states.
    std::vector<PeerArray> Arrays(size_t nStates) const;
    std::vector<PeerArray> Arrays() const { return Arrays(m_aaStates.size()); }

private:
    static std::vector<PeerBytes> AllBytes(const std::vector<PeerArray>& aArrays);

    std::vector<PeerArray> m_aMesh;
    std::vector<std::vector<PeerArray>> m_aaStates;
};
