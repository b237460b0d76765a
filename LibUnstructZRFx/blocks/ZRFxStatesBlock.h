#pragma once

#include <cstdint>
#include <memory>

#include "ZRIDLookup.h"
#include "blocks/ZRFxListBlock.h"
#include "blocks/ZRFxStateValues.h"

namespace unstruct {

/// Base of the blocks that describe a result and list, for each state, the blocks that hold it. The
/// description can be read without the states.
class ZRFxStatesBlock : public ZRFxListBlock {
public:
    bool ReadMetaData() override;

    /// The record of a state, added when there is none; to be changed before the block is written.
    ZRFxStateValues* AddState(int stateID);

    /// Appends the record of a state that has none.
    ZRFxStateValues* AddState(std::unique_ptr<ZRFxStateValues> pState);
    std::int64_t GetStateCount() const { return m_apStates.GetSize(); }
    const ZRFxStateValues* GetState(std::int64_t index) const { return m_apStates[index]; }

    /// The index of the first record of a state; -1 when it has none.
    std::int64_t GetStateIndex(int stateID) const { return m_indices.IndexOf(stateID); }

    /// Removes a range of states, both ends included.
    void RemoveStates(std::int64_t iFrom, std::int64_t iTo);

protected:
    using ZRFxListBlock::ZRFxListBlock;

    bool DoReadBlock(const nvf::XmlElement& root) final;
    void DoUnloadData() final;

    /// Adds the states and the blocks of their values, which are of one type.
    void OutlineStates(int valuesType, ZRFxOutline* outline) const;

    /// Reads the description.
    virtual bool DoReadMetaData(const nvf::XmlElement& root) = 0;

private:
    void WriteItem(nvf::XmlElement root, std::int64_t index) const final;
    std::int64_t GetItemCount() const final { return GetStateCount(); }
    void UpdateIndices();

    ZRPtrArray<ZRFxStateValues> m_apStates;
    ZRIDLookup m_indices;  // Of the states.
};

}  // namespace unstruct
