#include "nvf/PropertySet.h"

#include <utility>

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

// Keys mostly come in order: the place after the last one is tried first.
void PropertySet::setValue(String key, Variant value) {
    m_values.insert_or_assign(m_values.end(), std::move(key), std::move(value));
}

}  // namespace nvf
