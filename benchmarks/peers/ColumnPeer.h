#pragma once

#include "Peer.h"

/// A peer that keeps each component of a field in an array of its own and numbers nodes from 1.
class ColumnPeer : public Peer {
public:
    struct Elements {
        PeerDataSet::ElementType eType = PeerDataSet::ElementType::HEXAHEDRONS;
        size_t nCount = 0;
        std::vector<int> aNodes;
    };

    using Column = std::vector<float>;

    void Prepare(const PeerDataSet& data) override;
    std::vector<PeerBytes> Mesh() const override;
    std::vector<PeerBytes> State(size_t nState) const override;

protected:
    /// Node ranges are ints in the libraries.
    int NodeCount() const { return static_cast<int>(m_aCoordinates[0].size()); }
    int ElementCount() const;
    const std::vector<Column>& Coordinates() const { return m_aCoordinates; }
    const std::vector<Elements>& AllElements() const { return m_aElements; }
    size_t StateCount() const { return m_aaStates.size(); }
    float Time(size_t nState) const { return m_afTimes[nState]; }

    /// One for each component of each field.
    const std::vector<Column>& Columns(size_t nState) const { return m_aaStates[nState]; }
    const std::vector<std::string>& ColumnNames() const { return m_asNames; }

private:
    std::vector<Column> m_aCoordinates;
    std::vector<Elements> m_aElements;
    std::vector<float> m_afTimes;
    std::vector<std::vector<Column>> m_aaStates;
    std::vector<std::string> m_asNames;
};
