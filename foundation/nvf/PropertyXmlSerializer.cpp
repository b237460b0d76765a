#include "nvf/PropertyXmlSerializer.h"

#include <algorithm>
#include <array>
#include <optional>

#include "nvf/Assert.h"
#include "nvf/Number.h"

namespace nvf {
namespace {

constexpr int kDoubleDigits = 15;
constexpr int kFloatDigits = 6;

std::string textOf(double value, int digits) {
    return textOfNumber(value, 'g', digits);
}

std::string textOfThree(double a, double b, double c, int digits) {
    return textOf(a, digits) + ' ' + textOf(b, digits) + ' ' + textOf(c, digits);
}

std::string textOf(const Vec3d& v) {
    return textOfThree(v.x, v.y, v.z, kDoubleDigits);
}

std::string textOf(const Color3f& c) {
    return textOfThree(c.r, c.g, c.b, kFloatDigits);
}

XmlElement arrayToXml(const Variant& array, XmlElement* parent) {
    XmlElement element = parent->addChildElement("Array");
    for (const Variant& value : array.getArray()) {
        if (value.isValid()) PropertyXmlSerializer::variantToXml(value, &element);
    }
    return element;
}

template <typename T>
Variant numberFromText(const std::string& text) {
    T value{};
    return parseNumber(text, value) ? Variant(value) : Variant();
}

// Exactly three numbers with single blanks between them.
template <typename Number, typename Three>
Variant threeFromText(std::string_view text) {
    std::array<Number, 3> values{};
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::size_t blank = text.find(' ');
        const bool isLast = i + 1 == values.size();
        if ((blank == std::string_view::npos) != isLast) return Variant();
        if (!parseNumber(text.substr(0, blank), values[i])) return Variant();
        text = isLast ? "" : text.substr(blank + 1);
    }
    return Variant(Three(values[0], values[1], values[2]));
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c += 'a' - 'A';
    }
    return lower;
}

bool nestsDeeper(const Variant& value, int levels) {
    if (value.type() != Variant::ARRAY) return false;
    const auto& values = value.getArray();
    return levels == 0 || std::any_of(values.begin(), values.end(), [levels](const Variant& item) {
               return nestsDeeper(item, levels - 1);
           });
}

Variant variantFromXml(const XmlElement& element, int arrayDepth);

Variant arrayFromXml(const XmlElement& xmlArrayVariantElement, int arrayDepth) {
    NVF_ASSERT(xmlArrayVariantElement.name().toLower() == "array");
    if (arrayDepth > PropertyXmlSerializer::kDeepestArray) return Variant();
    std::vector<Variant> values;
    for (XmlElement child = xmlArrayVariantElement.firstChildElement(); child.notNull();
         child = child.nextSiblingElement()) {
        Variant value = variantFromXml(child, arrayDepth);
        if (value.isValid()) values.push_back(std::move(value));
    }
    return Variant(std::move(values));
}

Variant variantFromXml(const XmlElement& element, int arrayDepth) {
    const std::string type = lowerCase(element.nameUtf8());
    if (type == "array") return arrayFromXml(element, arrayDepth + 1);
    const std::string text = element.textUtf8();
    if (type == "int") return numberFromText<int>(text);
    if (type == "uint") return numberFromText<uint>(text);
    if (type == "double") return numberFromText<double>(text);
    if (type == "float") return numberFromText<float>(text);
    if (type == "bool") return Variant(lowerCase(text) == "true");
    if (type == "vec3d") return threeFromText<double, Vec3d>(text);
    if (type == "color3f") return threeFromText<float, Color3f>(text);
    if (type == "string") return Variant(String(text));
    return Variant();
}

}  // namespace

bool PropertyXmlSerializer::nestsTooDeep(const Variant& value) {
    return nestsDeeper(value, kDeepestArray);
}

bool PropertyXmlSerializer::nestsTooDeep(const PropertySetCollection& collection) {
    for (std::size_t i = 0; i < collection.count(); ++i) {
        for (const auto& [key, value] : collection.propertySet(i)->valuesByKey()) {
            if (nestsTooDeep(value)) return true;
        }
    }
    return false;
}

void PropertyXmlSerializer::toXml(const PropertySetCollection& collection, XmlElement* parent) {
    NVF_ASSERT(parent);
    if (!parent) return;
    XmlElement element = parent->addChildElement("PropertySetCollection");
    for (std::size_t i = 0; i < collection.count(); ++i) {
        toXml(*collection.propertySet(i), &element);
    }
}

void PropertyXmlSerializer::toXml(const PropertySet& propertySet, XmlElement* parent) {
    NVF_ASSERT(parent);
    if (!parent) return;
    XmlElement element = parent->addChildElement("PropertySet");
    element.setAttributeString("classType", propertySet.classType());
    for (const auto& [key, value] : propertySet.valuesByKey()) {
        variantToXml(value, &element).setAttributeString("key", key);
    }
}

XmlElement PropertyXmlSerializer::variantToXml(const Variant& value, XmlElement* parent) {
    NVF_ASSERT(parent);
    if (!parent) return XmlElement();
    switch (value.type()) {
        case Variant::INVALID:
            return XmlElement();
        case Variant::INT:
            return parent->addChildElementUtf8("Int", std::to_string(value.getInt()));
        case Variant::UINT:
            return parent->addChildElementUtf8("UInt", std::to_string(value.getUInt()));
        case Variant::DOUBLE:
            return parent->addChildElementUtf8("Double", textOf(value.getDouble(), kDoubleDigits));
        case Variant::FLOAT:
            return parent->addChildElementUtf8("Float", textOf(value.getFloat(), kFloatDigits));
        case Variant::BOOL:
            return parent->addChildElementUtf8("Bool", value.getBool() ? "true" : "false");
        case Variant::VEC3D:
            return parent->addChildElementUtf8("Vec3d", textOf(value.getVec3d()));
        case Variant::COLOR3F:
            return parent->addChildElementUtf8("Color3f", textOf(value.getColor3f()));
        case Variant::STRING:
            return parent->addChildElement("String", value.getString());
        case Variant::ARRAY:
            return arrayToXml(value, parent);
    }
    NVF_FAIL("Unhandled variant type");
    return XmlElement();
}

void PropertyXmlSerializer::toPropertySetCollection(
    const XmlElement& xmlPropertySetCollectionElement,
    PropertySetCollection* propertySetCollection) {
    NVF_ASSERT(xmlPropertySetCollectionElement.name() == "PropertySetCollection");
    NVF_ASSERT(propertySetCollection);
    if (!propertySetCollection) return;
    for (XmlElement set = xmlPropertySetCollectionElement.firstChildElement("PropertySet");
         set.notNull(); set = set.nextSiblingElement("PropertySet")) {
        propertySetCollection->addPropertySet(toPropertySet(set).p());
    }
}

ref<PropertySet> PropertyXmlSerializer::toPropertySet(const XmlElement& xmlPropertySetElement) {
    ref<PropertySet> set =
        new PropertySet(xmlPropertySetElement.getAttributeString("classType", ""));
    for (XmlElement element = xmlPropertySetElement.firstChildElement(); element.notNull();
         element = element.nextSiblingElement()) {
        Variant value = variantFromXml(element);
        String key = element.getAttributeString("key", "");
        if (value.isValid() && !key.isEmpty()) set->setValue(std::move(key), std::move(value));
    }
    return set;
}

Variant PropertyXmlSerializer::variantFromXml(const XmlElement& xmlVariantElement) {
    return nvf::variantFromXml(xmlVariantElement, 0);
}

}  // namespace nvf
