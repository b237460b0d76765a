#pragma once

#include <utility>
#include <vector>

#include "blocks/ZRFxStatesBlock.h"
#include "types/ZRFxResultTypes.h"

namespace unstruct {

/// The description of a result, apart from its values.
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

    /// An attribute says how many significant digits the values have; 0 where there is none.
    int GetSignificantDigits() const;

    /// Sets the attribute; 0 takes it away.
    void SetSignificantDigits(int digits);
};

/// One result of a model: what it is, and which values blocks hold it in each state.
class ZRFxResultBlock : public ZRFxStatesBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_RESULTS;

    ZRFxResultBlock(ZRFxBlockStore* pDatabase, int id);

    const ZRFxResultDescription& GetDescription() const { return m_description; }
    ZRFxResultDescription& GetDescription() { return m_description; }

protected:
    bool DoReadMetaData(const nvf::XmlElement& root) override;
    void DoWriteHead(nvf::XmlElement root) const override;
    void DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const override;

private:
    ZRFxResultDescription m_description;
};

}  // namespace unstruct
