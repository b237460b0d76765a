#include "ZROZRFxStatesBlock.h"

#include <memory>

namespace unstruct {

bool ZRFxStatesBlock::ReadMetaData() {
    nvf::XmlDocument doc;
    const nvf::XmlElement root = GetRootElement(&doc);
    if (root.isNull()) return Log().fail("Invalid XML");
    return DoReadMetaData(root) && ZRFxBlock::ReadMetaData();
}

ZRFxStateValues* ZRFxStatesBlock::AddState(int stateID) {
    SetRead(true);
    const std::int64_t index = GetStateIndex(stateID);
    Touch(index >= 0 ? index : GetStateCount());
    if (index >= 0) return m_apStates[index];
    m_indices.Add(stateID);
    return m_apStates.Add(std::make_unique<ZRFxStateValues>(stateID));
}

void ZRFxStatesBlock::RemoveStates(std::int64_t iFrom, std::int64_t iTo) {
    NVF_ASSERT(iTo >= 0 && iTo < m_apStates.GetSize());
    m_apStates.RemoveRange(iFrom, iTo);
    Touch(iFrom);
    UpdateIndices();
}

bool ZRFxStatesBlock::DoReadBlock(const nvf::XmlElement& root) {
    if (!DoReadMetaData(root)) return false;
    const bool isRead = ReadStateValues(root, &m_apStates);
    Touch(0);
    UpdateIndices();
    return isRead || Log().fail("Invalid XML");
}

void ZRFxStatesBlock::DoUnloadData() {
    m_apStates.RemoveAll();
    Touch(0);
    UpdateIndices();
}

void ZRFxStatesBlock::WriteItem(nvf::XmlElement root, std::int64_t index) const {
    WriteStateValues(root, *m_apStates[index]);
}

void ZRFxStatesBlock::UpdateIndices() {
    m_indices = ZRIDLookup();
    for (const auto& pState : m_apStates) m_indices.Add(pState->m_iStateID);
}

}  // namespace unstruct
