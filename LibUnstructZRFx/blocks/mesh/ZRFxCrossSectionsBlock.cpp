#include "blocks/mesh/ZRFxCrossSectionsBlock.h"

#include <algorithm>
#include <array>
#include <memory>
#include <set>
#include <string>

#include "documents/ZRFxXml.h"
#include "nvf/Number.h"

namespace unstruct {
namespace {

constexpr std::array kTypeNames{"IORH",    "PIPE", "BOX",           "CYLINDER", "L",
                                "CHANNEL", "BAR",  "UNSYMMETRIC_I", "CONE"};

constexpr const char* kTypeAttribute = "Type";

// Parameters are stored as attributes under their own names.
bool isParameterName(const std::string& name) {
    const auto isLetter = [](char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; };
    return !name.empty() && name != kTypeAttribute && (isLetter(name[0]) || name[0] == '_') &&
           std::all_of(name.begin(), name.end(), [&](char c) {
               return isLetter(c) || (c >= '0' && c <= '9') || c == '_' || c == '-' || c == '.';
           });
}

}  // namespace

ZRString CrossSectionTypeName(int type) {
    if (type >= 0 && type < static_cast<int>(kTypeNames.size())) {
        return kTypeNames[static_cast<std::size_t>(type)];
    }
    if (type != CROSS_SECTION_UNKNOWN) NVF_FAIL("Unhandled cross section type");
    return "UNKNOWN";
}

int CrossSectionTypeFromName(const ZRString& name) {
    for (std::size_t i = 0; i < kTypeNames.size(); ++i) {
        if (name.ToUpper() == kTypeNames[i]) return static_cast<int>(i);
    }
    return CROSS_SECTION_UNKNOWN;
}

bool ZRFxCrossSection::AreParameterNames(const ZRStringArray& names) {
    std::set<std::string> found;
    return std::all_of(names.begin(), names.end(), [&](const ZRString& name) {
        return isParameterName(name.Bytes()) && found.insert(name.Bytes()).second;
    });
}

bool ZRFxCrossSection::SetParameters(const ZRStringArray& names, const std::vector<float>& values) {
    NVF_ASSERT(names.size() == values.size());
    if (names.size() != values.size()) return false;
    const bool areNames = AreParameterNames(names);
    NVF_ASSERT(areNames);
    if (!areNames) return false;
    m_names = names;
    m_values = values;
    return true;
}

ZRFxCrossSectionsBlock::ZRFxCrossSectionsBlock(ZRFxBlockStore* pDatabase, int id)
    : ZRFxBlock(pDatabase, id, kType) {}

void ZRFxCrossSectionsBlock::AddCrossSection(const ZRFxCrossSection& crossSection) {
    m_apCrossSections.Add(std::make_unique<ZRFxCrossSection>(crossSection));
    SetRead(true);
}

bool ZRFxCrossSectionsBlock::DoReadBlock(const nvf::XmlElement& root) {
    DoUnloadData();
    for (nvf::XmlElement element = root.firstChildElement("CrossSection"); element.notNull();
         element = element.nextSiblingElement("CrossSection")) {
        if (!ReadCrossSection(element)) {
            return Log().fail("Error reading cross section parameters");
        }
    }
    return true;
}

bool ZRFxCrossSectionsBlock::DoWriteBlock(nvf::XmlElement root) {
    for (const auto& crossSection : m_apCrossSections) {
        NVF_ASSERT(crossSection);
        WriteCrossSection(root, *crossSection);
    }
    return true;
}

void ZRFxCrossSectionsBlock::DoOutline(const nvf::XmlElement&, ZRFxOutline*) const {}

void ZRFxCrossSectionsBlock::DoUnloadData() {
    m_apCrossSections.RemoveAll();
}

bool ZRFxCrossSectionsBlock::ReadCrossSection(const nvf::XmlElement& element) {
    ZRStringArray names;
    std::vector<float> values;
    for (const std::string& name : element.attributeNamesUtf8()) {
        if (name == kTypeAttribute) continue;
        float value = 0;
        if (!nvf::parseNumber(element.getAttributeUtf8(name.c_str(), ""), value)) return false;
        names.push_back(name);
        values.push_back(value);
    }
    if (!ZRFxCrossSection::AreParameterNames(names)) return false;
    ZRFxCrossSection crossSection(CrossSectionTypeFromName(GetAttribute(element, kTypeAttribute)));
    crossSection.SetParameters(names, values);
    AddCrossSection(crossSection);
    return true;
}

void ZRFxCrossSectionsBlock::WriteCrossSection(nvf::XmlElement root,
                                               const ZRFxCrossSection& crossSection) {
    nvf::XmlElement element = root.addChildElement("CrossSection");
    SetAttribute(element, kTypeAttribute, CrossSectionTypeName(crossSection.GetType()));
    for (std::size_t i = 0; i < crossSection.GetParameters().size(); ++i) {
        element.setAttributeFloat(crossSection.GetParameterNames()[i].CStr(),
                                  crossSection.GetParameters()[i]);
    }
}

}  // namespace unstruct
