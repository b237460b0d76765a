#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "nvf/PropertySetCollection.h"
#include "nvf/String.h"
#include "nvf/Variant.h"

namespace unstruct {

/// The definition of one viewer property: a constant record of the catalogue. The texts are
/// ASCII, only descriptions UTF-8.
struct PropDef {
    std::string_view name;  ///< The key in a property set.
    nvf::Variant::Type type;
    std::string_view description;
    std::string_view defaultValue = {};  ///< What a viewer assumes; empty when it decides itself.
    std::string_view legalValues = {};   ///< Separated by commas; empty when any value is legal.
    bool marked = false;                 ///< Carried for the viewers; this library does not use it.
};

/// A group of viewer properties, named as the class type of the property sets that it describes.
/// The groups are constants, made at compile time: they are never copied, and any thread may ask.
class PropClassDef {
public:
    /// `byName` holds the indices of `propDefs` in ascending order of their names.
    constexpr PropClassDef(std::string_view className, std::string_view description,
                           std::span<const PropDef> propDefs, std::span<const std::uint8_t> byName)
        : m_className(className),
          m_description(description),
          m_propDefs(propDefs),
          m_byName(byName) {}
    PropClassDef(const PropClassDef&) = delete;

    /// All groups, in ascending order of their class names.
    static std::span<const PropClassDef> all();

    /// The group of a class type, case-sensitive; null when there is none.
    static const PropClassDef* find(const nvf::String& className);

    constexpr std::string_view className() const { return m_className; }
    constexpr std::string_view description() const { return m_description; }

    /// The definitions in the order of the catalogue.
    constexpr std::span<const PropDef> propDefs() const { return m_propDefs; }

    /// The definition of a key, case-sensitive; null when the group does not have it.
    const PropDef* findPropDef(const nvf::String& name) const;

private:
    std::string_view m_className;
    std::string_view m_description;
    std::span<const PropDef> m_propDefs;
    std::span<const std::uint8_t> m_byName;
};

/// Checks every set of a collection against the catalogue: its group, and of each value the key,
/// the type and, for a string, the legal values. A set may hold any part of the keys of its group.
/// Appends a message to `errors` for every problem; true when there was none.
bool validateProperties(const nvf::PropertySetCollection& collection,
                        std::vector<nvf::String>& errors);

}  // namespace unstruct
