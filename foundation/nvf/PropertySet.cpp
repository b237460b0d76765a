#include "nvf/PropertySet.h"

namespace nvf {

std::vector<String> PropertySet::allKeys() const {
    std::vector<String> keys;
    for (const auto& [key, value] : m_values) keys.push_back(key);
    return keys;
}

std::vector<Variant> PropertySet::allValues() const {
    std::vector<Variant> values;
    for (const auto& [key, value] : m_values) values.push_back(value);
    return values;
}

void PropertySet::setValue(const String& key, const Variant& value) {
    m_values[key] = value;
}

}  // namespace nvf
