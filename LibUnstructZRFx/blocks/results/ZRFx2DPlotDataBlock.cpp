#include "blocks/results/ZRFx2DPlotDataBlock.h"

#include <utility>

#include "documents/ZRFxXml.h"

namespace unstruct {

ZRFx2DPlotDataBlock::ZRFx2DPlotDataBlock(ZRFxBlockStore* pDatabase, int id)
    : ZRFxBlock(pDatabase, id, kType) {}

void ZRFx2DPlotDataBlock::AddVariable(std::unique_ptr<ZRFxPlotVariable> pVariable) {
    NVF_ASSERT(pVariable);
    if (!pVariable) return;
    m_apVariables.Add(std::move(pVariable));
    SetRead(true);
}

bool ZRFx2DPlotDataBlock::DoReadBlock(const nvf::XmlElement& root) {
    DoUnloadData();
    m_sName = GetAttribute(root, "Name");
    for (nvf::XmlElement element = root.firstChildElement("Variable"); element.notNull();
         element = element.nextSiblingElement("Variable")) {
        if (!ReadVariable(element)) return false;
    }
    return true;
}

bool ZRFx2DPlotDataBlock::DoWriteBlock(nvf::XmlElement root) {
    SetAttribute(root, "Name", m_sName);
    for (std::int64_t i = 0; i < m_apVariables.GetSize(); ++i) {
        NVF_ASSERT(m_apVariables[i]);
        if (!WriteVariable(root, *m_apVariables[i], i + 1)) return false;
    }
    return true;
}

void ZRFx2DPlotDataBlock::DoOutline(const nvf::XmlElement&, ZRFxOutline*) const {}

void ZRFx2DPlotDataBlock::DoUnloadData() {
    m_apVariables.RemoveAll();
}

bool ZRFx2DPlotDataBlock::ReadVariable(const nvf::XmlElement& element) {
    auto variable = std::make_unique<ZRFxPlotVariable>();
    variable->name = GetAttribute(element, "Name");
    if (element.firstChildElement("File").isNull()) {
        return Log().fail("No data file specified for plot");
    }
    if (!ReadFile(element, "File", &variable->values)) {
        return Log().fail("Error reading plot data");
    }
    AddVariable(std::move(variable));
    return true;
}

bool ZRFx2DPlotDataBlock::WriteVariable(nvf::XmlElement root, const ZRFxPlotVariable& variable,
                                        std::int64_t number) {
    nvf::XmlElement element = root.addChildElement("Variable");
    SetAttribute(element, "Name", variable.name);
    return WriteFile(element, "File", GetFilebase(number), variable.values);
}

}  // namespace unstruct
