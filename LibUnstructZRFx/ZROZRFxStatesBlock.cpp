#include "ZROZRFxStatesBlock.h"

namespace unstruct {

bool ZRFxStatesBlock::ReadMetaData() {
    nvf::XmlDocument doc;
    const nvf::XmlElement root = GetRootElement(&doc);
    if (root.isNull()) return Log().fail("Invalid XML");
    return DoReadMetaData(root) && ZRFxBlock::ReadMetaData();
}

ZRFxStateValues* ZRFxStatesBlock::AddState(int stateID) {
    SetRead(true);
    return StateValuesOf(stateID, &m_apStates);
}

void ZRFxStatesBlock::RemoveStates(std::int64_t iFrom, std::int64_t iTo) {
    NVF_ASSERT(iTo >= 0 && iTo < m_apStates.GetSize());
    m_apStates.RemoveRange(iFrom, iTo);
}

bool ZRFxStatesBlock::DoReadBlock(const nvf::XmlElement& root) {
    return DoReadMetaData(root) &&
           (ReadStateValues(root, &m_apStates) || Log().fail("Invalid XML"));
}

void ZRFxStatesBlock::DoUnloadData() {
    m_apStates.RemoveAll();
}

}  // namespace unstruct
