#include "blocks/results/ZRFxResultBlock.h"

#include <algorithm>
#include <string>

#include "blocks/ZRFxBlockStore.h"
#include "blocks/ZRFxOutline.h"
#include "documents/ZRFxXml.h"
#include "nvf/Number.h"
#include "types/ZRFxValueKind.h"

namespace unstruct {
namespace {

constexpr const char* kSignificantDigits = "SignificantDigits";

void writeAttribute(nvf::XmlElement root, const ZRString& name, const ZRString& value) {
    nvf::XmlElement attribute = root.addChildElement("Attribute");
    SetAttribute(attribute, "Name", name);
    SetAttribute(attribute, "Value", value);
}

}  // namespace

int ZRFxResultDescription::GetSignificantDigits() const {
    int digits = 0;
    for (const auto& [key, value] : attributes) {
        if (key == kSignificantDigits && !nvf::parseNumber(value.Bytes(), digits)) digits = 0;
    }
    return std::max(digits, 0);
}

void ZRFxResultDescription::SetSignificantDigits(int digits) {
    std::erase_if(attributes,
                  [](const auto& attribute) { return attribute.first == kSignificantDigits; });
    if (digits > 0) attributes.emplace_back(kSignificantDigits, std::to_string(digits));
}

ZRFxResultBlock::ZRFxResultBlock(ZRFxBlockStore* pDatabase, int id)
    : ZRFxStatesBlock(pDatabase, id, kType) {}

void ZRFxResultBlock::DoWriteHead(nvf::XmlElement root) const {
    const ZRFxResultDescription& d = m_description;
    SetAttribute(root, "Name", d.name);
    SetAttribute(root, "ResultType", ResultTypeName(d.resultType));
    if (d.strainType != STRAIN_NONE) SetAttribute(root, "StrainType", StrainTypeName(d.strainType));
    SetAttribute(root, "ResultMapping", ResultMappingName(d.resultMapping));
    root.setAttributeInt("ResultID", d.resultID);
    root.setAttributeInt("SectionID", d.sectionID);
    root.setAttributeFloat("DefaultScaleFactor", d.defaultScaleFactor);
    root.setAttributeBool("RelativeDisplacements", d.relativeDisplacements);
    root.setAttributeInt("BaseResultID", d.baseResultID);
    SetAttribute(root, "BaseResultType", ResultTypeName(d.baseResultType));
    SetAttribute(root, "DeriveOperation", ComponentName(d.deriveOperation));
    for (const auto& [name, value] : d.attributes) writeAttribute(root, name, value);
    const int digits = m_pDatabase->GetSignificantDigits();
    if (digits > 0 && d.GetSignificantDigits() == 0) {
        writeAttribute(root, kSignificantDigits, std::to_string(digits));
    }
}

void ZRFxResultBlock::DoOutline(const nvf::XmlElement&, ZRFxOutline* outline) const {
    const ZRFxResultDescription& d = m_description;
    outline->result =
        ZRFxResultOutline{d.resultID, d.resultMapping, d.resultType == RESULT_DISPLACEMENT};
    outline->AddOptionalResult(d.baseResultID, "base result");
    OutlineStates(BLOCK_RESULT_VALUES, outline);
    for (std::int64_t s = 0; s < GetStateCount(); ++s) {
        for (const std::int32_t id : GetState(s)->m_aiValuesBlockIDs) {
            outline->valuesUses.push_back(
                {id, d.resultMapping, ZRFxDimensionOfResult(d.resultType)});
        }
    }
}

bool ZRFxResultBlock::DoReadMetaData(const nvf::XmlElement& root) {
    ZRFxResultDescription& d = m_description;
    d = ZRFxResultDescription();
    d.name = GetAttribute(root, "Name");
    d.resultType = ResultTypeFromName(GetAttribute(root, "ResultType"));
    d.strainType = StrainTypeFromName(GetAttribute(root, "StrainType"));
    d.resultMapping = ResultMappingFromName(GetAttribute(root, "ResultMapping"));
    d.resultID = root.getAttributeInt("ResultID", -1);
    d.sectionID = root.getAttributeInt("SectionID", -1);
    d.defaultScaleFactor = root.getAttributeFloat("DefaultScaleFactor", 1);
    d.relativeDisplacements = root.getAttributeBool("RelativeDisplacements", false);
    d.baseResultID = root.getAttributeInt("BaseResultID", -1);
    const ZRString baseType = GetAttribute(root, "BaseResultType");
    const bool isUnknown = baseType.IsBlank() || baseType == ResultTypeName(RESULT_UNKNOWN);
    d.baseResultType = isUnknown ? static_cast<int>(RESULT_UNKNOWN) : ResultTypeFromName(baseType);
    d.deriveOperation = root.hasAttribute("DeriveOperation")
                            ? ComponentFromName(GetAttribute(root, "DeriveOperation"))
                            : kComponentNone;
    for (nvf::XmlElement attribute = root.firstChildElement("Attribute"); attribute.notNull();
         attribute = attribute.nextSiblingElement("Attribute")) {
        d.attributes.emplace_back(GetAttribute(attribute, "Name"),
                                  GetAttribute(attribute, "Value"));
    }
    return true;
}

}  // namespace unstruct
