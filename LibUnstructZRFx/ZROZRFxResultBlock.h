#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "ZROZRFxBlock.h"
#include "ZROZRFxResultTypes.h"
#include "ZROZRFxStateValues.h"

namespace unstruct {

/// What describes a result, apart from its values.
struct ZRFxResultDescription {
    ZRString name;
    int resultType = RESULT_SCALAR;
    int strainType = STRAIN_NONE;
    int resultMapping = MAPPING_UNKNOWN;
    int resultID = -1;
    int sectionID = -1;
    float defaultScaleFactor = 1;
    bool relativeDisplacements = false;
    int baseResultID = -1;
    int baseResultType = RESULT_UNKNOWN;
    int deriveOperation = kComponentNone;
    std::vector<std::pair<ZRString, ZRString>> attributes;  ///< Names and values of the user.
};

/// One result of a model: what it is, and which values blocks hold it in each state.
class ZRFxResultBlock : public ZRFxBlock {
public:
    ZRFxResultBlock(ZRFxDatabase* pDatabase, int id);

    bool ReadMetaData() override;

    const ZRFxResultDescription& GetDescription() const { return m_description; }
    ZRFxResultDescription& GetDescription() { return m_description; }

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

    ZRFxResultDescription m_description;
    ZRPtrArray<ZRFxStateValues> m_apStates;
};

}  // namespace unstruct
