#include "catalogue/ZROZRFxPropDef.h"

#include <algorithm>
#include <string>

#include "nvf/Assert.h"
#include "nvf/PropertyXmlSerializer.h"

namespace unstruct {
namespace {

using nvf::String;
using nvf::Variant;

String textOf(std::string_view ascii) {
    return String(std::wstring(ascii.begin(), ascii.end()));
}

bool isLess(std::string_view ascii, const String& text) {
    return std::ranges::lexicographical_compare(ascii, text.text());
}

bool isEqual(std::string_view ascii, const String& text) {
    return std::ranges::equal(ascii, text.text());
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\n\v\f\r";
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

bool isLegal(const String& value, std::string_view legalValues) {
    for (;;) {
        const std::size_t comma = legalValues.find(',');
        if (isEqual(trimmed(legalValues.substr(0, comma)), value)) return true;
        if (comma == std::string_view::npos) return false;
        legalValues.remove_prefix(comma + 1);
    }
}

// As messages name the types; the elements of the XML form are spelled otherwise.
String typeName(Variant::Type type) {
    switch (type) {
        case Variant::INVALID:
            return "Invalid";
        case Variant::INT:
            return "Int";
        case Variant::UINT:
            return "Uint";
        case Variant::DOUBLE:
            return "Double";
        case Variant::FLOAT:
            return "Float";
        case Variant::BOOL:
            return "Bool";
        case Variant::VEC3D:
            return "Vec3d";
        case Variant::COLOR3F:
            return "Color3f";
        case Variant::STRING:
            return "String";
        case Variant::ARRAY:
            return "Array";
    }
    NVF_FAIL("Unhandled enum");
    return String();
}

// Appends what is wrong with one value of a set.
void validateValue(const PropClassDef& group, const String& key, const Variant& value,
                   std::vector<String>& errors) {
    const PropDef* def = group.findPropDef(key);
    if (!def) {
        errors.push_back(
            String("Property %1::%2 does not exist.").args({textOf(group.className()), key}));
        return;
    }
    if (value.type() != def->type) {
        errors.push_back(
            String("Property %1::%2 has illegal data type. Type is '%3' but should be '%4'.")
                .args(
                    {textOf(group.className()), key, typeName(value.type()), typeName(def->type)}));
        return;
    }
    if (nvf::PropertyXmlSerializer::nestsTooDeep(value)) {
        errors.push_back(String("Property %1::%2 nests arrays deeper than %3 levels.")
                             .args({textOf(group.className()), key,
                                    String::number(nvf::PropertyXmlSerializer::kDeepestArray)}));
        return;
    }
    if (def->type != Variant::STRING || def->legalValues.empty()) return;
    const String text = value.getString();
    if (isLegal(text, def->legalValues)) return;
    errors.push_back(
        String("Property %1::%2 has illegal value. Value is '%3', but legal values are '%4'.")
            .args({textOf(group.className()), key, text, textOf(def->legalValues)}));
}

}  // namespace

const PropClassDef* PropClassDef::find(const String& className) {
    const auto groups = all();
    const auto found = std::ranges::partition_point(
        groups, [&](const PropClassDef& group) { return isLess(group.className(), className); });
    return found != groups.end() && isEqual(found->className(), className) ? &*found : nullptr;
}

const PropDef* PropClassDef::findPropDef(const String& name) const {
    const auto found = std::ranges::partition_point(
        m_byName, [&](std::uint8_t index) { return isLess(m_propDefs[index].name, name); });
    const bool isFound = found != m_byName.end() && isEqual(m_propDefs[*found].name, name);
    return isFound ? &m_propDefs[*found] : nullptr;
}

bool validateProperties(const nvf::PropertySetCollection& collection, std::vector<String>& errors) {
    const std::size_t errorsBefore = errors.size();
    for (std::size_t i = 0; i < collection.count(); ++i) {
        const nvf::PropertySet& set = *collection.propertySet(i);
        const PropClassDef* group = PropClassDef::find(set.classType());
        if (!group) {
            errors.push_back(String("Property group '%1' does not exist.").arg(set.classType()));
            continue;
        }
        for (const auto& [key, value] : set.valuesByKey()) {
            validateValue(*group, key, value, errors);
        }
    }
    return errors.size() == errorsBefore;
}

}  // namespace unstruct
