#pragma once

#include "nvf/PropertySetCollection.h"
#include "nvf/XmlElement.h"

namespace nvf {

/// Writes property sets as XML elements and reads them back. Values are named by type, "Int" to
/// "Array", and read without regard to the case of that name. A double keeps 15 significant digits,
/// a float 6.
class PropertyXmlSerializer {
public:
    /// Nested arrays are read down to this depth; deeper ones are left out.
    static constexpr int kDeepestArray = 100;

    /// Whether arrays nest deeper than that, so that they could not be read back.
    static bool nestsTooDeep(const Variant& value);
    static bool nestsTooDeep(const PropertySetCollection& collection);

    /// Appends a PropertySetCollection element to `parent`.
    static void toXml(const PropertySetCollection& collection, XmlElement* parent);

    /// Appends a PropertySet element to `parent`. Invalid values are left out.
    static void toXml(const PropertySet& propertySet, XmlElement* parent);

    /// Appends the element of one value and returns it; null for an invalid value. Invalid values
    /// within an array are left out.
    static XmlElement variantToXml(const Variant& value, XmlElement* parent);

    /// Appends every set below the element to `collection`.
    static void toPropertySetCollection(const XmlElement& xmlPropertySetCollectionElement,
                                        PropertySetCollection* propertySetCollection);

    /// The set of an element. Values of an unknown type, that do not convert or without a key are
    /// left out.
    static ref<PropertySet> toPropertySet(const XmlElement& xmlPropertySetElement);

    /// The value of an element; invalid when its type is unknown or its text does not convert.
    static Variant variantFromXml(const XmlElement& xmlVariantElement);
};

}  // namespace nvf
