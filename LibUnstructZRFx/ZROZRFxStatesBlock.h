#pragma once

#include <cstdint>

#include "ZRIDLookup.h"
#include "ZROZRFxBlock.h"
#include "ZROZRFxStateValues.h"

namespace unstruct {

/// Base of the blocks that describe a result and list, for each state, the blocks that hold it. The
/// description can be read without the states.
class ZRFxStatesBlock : public ZRFxBlock {
public:
    bool ReadMetaData() override;

    /// The record of a state, added when there is none.
    ZRFxStateValues* AddState(int stateID);
    std::int64_t GetStateCount() const { return m_apStates.GetSize(); }
    ZRFxStateValues* GetState(std::int64_t index) const { return m_apStates[index]; }

    /// The index of the first record of a state; -1 when it has none.
    std::int64_t GetStateIndex(int stateID) const { return m_indices.IndexOf(stateID); }

    /// Removes a range of states, both ends included.
    void RemoveStates(std::int64_t iFrom, std::int64_t iTo);

protected:
    using ZRFxBlock::ZRFxBlock;

    bool DoReadBlock(const nvf::XmlElement& root) final;
    void DoUnloadData() final;
    void WriteStates(nvf::XmlElement root) const { WriteStateValues(root, m_apStates); }

    /// Reads the description.
    virtual bool DoReadMetaData(const nvf::XmlElement& root) = 0;

private:
    void UpdateIndices();

    ZRPtrArray<ZRFxStateValues> m_apStates;
    ZRIDLookup m_indices;  // Of the states.
};

}  // namespace unstruct
