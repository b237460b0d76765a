#pragma once

#include <cstdint>

#include "ZROZRFxBlock.h"
#include "ZROZRFxStateValues.h"

namespace unstruct {

/// A rigid-body result: which transformation result values blocks hold it in each state.
class ZRFxTransformationResultsBlock : public ZRFxBlock {
public:
    ZRFxTransformationResultsBlock(ZRFxDatabase* pDatabase, int id);

    bool ReadMetaData() override;

    const ZRString& GetName() const { return m_sName; }
    void SetName(const ZRString& name) { m_sName = name; }
    int GetResultID() const { return m_iResultID; }
    void SetResultID(int id) { m_iResultID = id; }

    /// The record of a state, added when there is none.
    ZRFxStateValues* AddState(int stateID);
    std::int64_t GetStateCount() const { return m_apStates.GetSize(); }
    ZRFxStateValues* GetState(std::int64_t index) const { return m_apStates[index]; }

    /// Removes a range of states, both ends included.
    void RemoveStates(std::int64_t iFrom, std::int64_t iTo);

protected:
    bool DoReadBlock(const nvf::XmlElement& root) override;
    bool DoWriteBlock(nvf::XmlElement root) override;
    void DoUnloadData() override;

private:
    bool DoReadMetaData(const nvf::XmlElement& root);

    ZRString m_sName;
    int m_iResultID = -1;
    ZRPtrArray<ZRFxStateValues> m_apStates;
};

}  // namespace unstruct
