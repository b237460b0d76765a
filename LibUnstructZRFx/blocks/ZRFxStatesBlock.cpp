#include "blocks/ZRFxStatesBlock.h"

#include <memory>
#include <utility>

#include "blocks/ZRFxOutline.h"

namespace unstruct {

bool ZRFxStatesBlock::ReadMetaData() {
    nvf::XmlDocument doc;
    const nvf::XmlElement root = GetRootElement(&doc);
    if (root.isNull()) return Log().fail("Invalid XML");
    return DoReadMetaData(root) && ZRFxBlock::ReadMetaData();
}

ZRFxStateValues* ZRFxStatesBlock::AddState(int stateID) {
    const std::int64_t index = GetStateIndex(stateID);
    if (index < 0) return AddState(std::make_unique<ZRFxStateValues>(stateID));
    Touch(index);
    return m_apStates[index];
}

ZRFxStateValues* ZRFxStatesBlock::AddState(std::unique_ptr<ZRFxStateValues> pState) {
    NVF_ASSERT(pState);
    if (!pState) return nullptr;
    SetRead(true);
    m_apStates.MakeRoom();
    m_indices.Add(pState->m_iStateID);
    return m_apStates.Add(std::move(pState));
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

void ZRFxStatesBlock::OutlineStates(int valuesType, ZRFxOutline* outline) const {
    for (const auto& pState : m_apStates) {
        const std::string place = NumberedPlace("state", pState->m_iStateID);
        outline->stateIDs.push_back(pState->m_iStateID);
        outline->AddState(pState->m_iStateID, place);
        for (const std::int32_t id : pState->m_aiValuesBlockIDs) {
            outline->AddBlock(valuesType, id, place);
        }
    }
}

void ZRFxStatesBlock::WriteItem(nvf::XmlElement root, std::int64_t index) const {
    WriteStateValues(root, *m_apStates[index]);
}

void ZRFxStatesBlock::UpdateIndices() {
    ZRIDLookup indices;
    for (const auto& state : m_apStates) indices.Add(state->m_iStateID);
    m_indices = std::move(indices);
}

}  // namespace unstruct
