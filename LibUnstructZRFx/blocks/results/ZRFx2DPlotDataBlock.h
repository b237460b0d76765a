#pragma once

#include <cstdint>
#include <memory>

#include "ZRArray.h"
#include "ZRPtrArray.h"
#include "blocks/ZRFxBlock.h"

namespace unstruct {

/// One column of a plot.
struct ZRFxPlotVariable {
    ZRString name;
    ZRFloatArray values;
};

/// The data of a 2D plot: named columns of floats.
class ZRFx2DPlotDataBlock : public ZRFxBlock {
public:
    static constexpr ZRFxBlockType kType = BLOCK_PLOT_2D;

    ZRFx2DPlotDataBlock(ZRFxBlockStore* pDatabase, int id);

    void AddVariable(std::unique_ptr<ZRFxPlotVariable> pVariable);
    std::int64_t GetVariableCount() const { return m_apVariables.GetSize(); }
    ZRFxPlotVariable* GetVariable(std::int64_t index) const { return m_apVariables[index]; }
    const ZRString& GetName() const { return m_sName; }
    void SetName(const ZRString& name) { m_sName = name; }

protected:
    bool DoReadBlock(const nvf::XmlElement& root) override;
    bool DoWriteBlock(nvf::XmlElement root) override;
    void DoOutline(const nvf::XmlElement& root, ZRFxOutline* outline) const override;
    void DoUnloadData() override;

private:
    bool ReadVariable(const nvf::XmlElement& element);
    bool WriteVariable(nvf::XmlElement root, const ZRFxPlotVariable& variable, std::int64_t number);

    ZRString m_sName;
    ZRPtrArray<ZRFxPlotVariable> m_apVariables;
};

}  // namespace unstruct
