#pragma once

#include "blocks/ZRFxStatesBlock.h"

namespace unstruct {

/// A rigid-body result: which transformation result values blocks hold it in each state.
class ZRFxTransformationResultsBlock : public ZRFxStatesBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_TRANSFORMATION_RESULTS;

    ZRFxTransformationResultsBlock(ZRFxBlockStore* pDatabase, int id);

    const ZRString& GetName() const { return m_sName; }
    void SetName(const ZRString& name) { m_sName = name; }
    int GetResultID() const { return m_iResultID; }
    void SetResultID(int id) { m_iResultID = id; }

protected:
    bool DoReadMetaData(const nvf::XmlElement& root) override;
    void DoWriteHead(nvf::XmlElement root) const override;
    void DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const override;

private:
    ZRString m_sName;
    int m_iResultID = -1;
};

}  // namespace unstruct
