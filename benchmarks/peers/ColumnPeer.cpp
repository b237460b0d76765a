#include "ColumnPeer.h"

namespace {

void AppendColumns(const std::vector<float>& aValues, size_t nColumns,
                   std::vector<ColumnPeer::Column>& aColumns) {
    for (size_t c = 0; c < nColumns; ++c) {
        ColumnPeer::Column& column = aColumns.emplace_back(aValues.size() / nColumns);
        for (size_t i = 0; i < column.size(); ++i) column[i] = aValues[i * nColumns + c];
    }
}

std::vector<PeerBytes> AllBytes(const std::vector<ColumnPeer::Column>& aColumns) {
    std::vector<PeerBytes> aBytes;
    for (const ColumnPeer::Column& column : aColumns) aBytes.push_back(BytesOf(column));
    return aBytes;
}

}  // namespace

void ColumnPeer::Prepare(const PeerDataSet& data) {
    AppendColumns(data.aCoordinates, 3, m_aCoordinates);
    for (const PeerDataSet::Elements& elements : data.aElements) {
        m_aElements.push_back({elements.eType, elements.Count(), elements.NodesFromOne()});
    }
    for (const PeerDataSet::State& state : data.aStates) {
        m_afTimes.push_back(state.fTime);
        std::vector<Column>& aColumns = m_aaStates.emplace_back();
        for (const PeerDataSet::Field& field : state.aFields) {
            AppendColumns(field.aValues, field.nComponents, aColumns);
        }
    }
    for (const PeerDataSet::Field& field : data.aStates[0].aFields) {
        for (size_t c = 0; c < field.nComponents; ++c) {
            m_asNames.push_back(field.sName + "_" + std::to_string(c + 1));
        }
    }
}

std::vector<PeerBytes> ColumnPeer::Mesh() const {
    std::vector<PeerBytes> aBytes = AllBytes(m_aCoordinates);
    for (const Elements& elements : m_aElements) aBytes.push_back(BytesOf(elements.aNodes));
    return aBytes;
}

std::vector<PeerBytes> ColumnPeer::State(size_t nState) const {
    return AllBytes(m_aaStates[nState]);
}

int ColumnPeer::ElementCount() const {
    size_t nCount = 0;
    for (const Elements& elements : m_aElements) nCount += elements.nCount;
    return static_cast<int>(nCount);
}
