#include "NuoCore/PropertySet.h"

#include "nuo/Convert.h"
#include "nvf/PropertySet.h"

namespace nuo {

class PropertySetPrivate {
public:
    explicit PropertySetPrivate(const Str& classType) : m_set(Convert::toNvfString(classType)) {}

    nvf::PropertySet m_set;
};

PropertySet::PropertySet(const Str& classType)
    : m_private(std::make_unique<PropertySetPrivate>(classType)) {}

PropertySet::~PropertySet() = default;

Str PropertySet::classType() const {
    return Convert::toStr(m_private->m_set.classType());
}

void PropertySet::setValue(const Str& key, const Variant& value) {
    m_private->m_set.setValue(Convert::toNvfString(key), value.internal_nvfVariant());
}

Variant PropertySet::value(const Str& key) const {
    const auto& values = m_private->m_set.valuesByKey();
    const auto found = values.find(Convert::toNvfString(key));
    return found == values.end() ? Variant() : Variant(found->second);
}

std::vector<Str> PropertySet::allKeys() const {
    std::vector<Str> keys;
    for (const auto& [key, value] : m_private->m_set.valuesByKey()) {
        keys.push_back(Convert::toStr(key));
    }
    return keys;
}

std::vector<Variant> PropertySet::allValues() const {
    std::vector<Variant> values;
    for (const auto& [key, value] : m_private->m_set.valuesByKey()) values.emplace_back(value);
    return values;
}

const nvf::PropertySet& PropertySet::internal_nvfPropertySet() const {
    return m_private->m_set;
}

}  // namespace nuo
