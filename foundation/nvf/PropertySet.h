#pragma once

#include <map>
#include <vector>

#include "nvf/Object.h"
#include "nvf/String.h"
#include "nvf/Variant.h"

namespace nvf {

/// Typed values by key, in key order, under a class type such as "camera". Shared by reference;
/// used by one thread at a time.
class PropertySet : public Object {
public:
    explicit PropertySet(const String& classType) : m_classType(classType) {}
    explicit PropertySet(const PropertySet& other)
        : Object(), m_classType(other.m_classType), m_values(other.m_values) {}

    const String& classType() const { return m_classType; }
    const std::map<String, Variant>& valuesByKey() const { return m_values; }
    std::vector<String> allKeys() const;
    std::vector<Variant> allValues() const;

    /// Inserts a value or replaces the one that the key had.
    void setValue(String key, Variant value);

private:
    String m_classType;
    std::map<String, Variant> m_values;
};

}  // namespace nvf
