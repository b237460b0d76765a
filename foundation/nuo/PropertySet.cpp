#include "NuoCore/PropertySet.h"

#include <new>
#include <utility>

#include "nuo/Convert.h"
#include "nuo/Guard.h"
#include "nvf/PropertySet.h"

namespace nuo {

class PropertySetPrivate {
public:
    explicit PropertySetPrivate(const nvf::PropertySet& set) : m_set(set) {}

    nvf::PropertySet m_set;
    bool m_isIncomplete = false;
};

PropertySet::PropertySet(const Str& classType) {
    guarded([&] {
        m_private.take(std::make_unique<PropertySetPrivate>(
            nvf::PropertySet(Convert::toNvfString(classType))));
    });
}

PropertySet::PropertySet(const nvf::PropertySet& source) {
    m_private.take(std::make_unique<PropertySetPrivate>(source));
}

PropertySet::~PropertySet() = default;

Str PropertySet::classType() const {
    return guarded([&] { return Convert::toStr(m_private->m_set.classType()); });
}

void PropertySet::setValue(const Str& key, const Variant& value) {
    guarded([&] {
        const bool wasIncomplete = std::exchange(m_private->m_isIncomplete, true);
        m_private->m_set.setValue(Convert::toNvfString(key), value.internal_nvfVariant());
        m_private->m_isIncomplete = wasIncomplete;
    });
}

Variant PropertySet::value(const Str& key) const {
    return guarded([&] {
        const auto& values = m_private->m_set.valuesByKey();
        const auto found = values.find(Convert::toNvfString(key));
        return found == values.end() ? Variant() : Variant(found->second);
    });
}

std::vector<Str> PropertySet::allKeys() const {
    return guarded([&] {
        std::vector<Str> keys;
        for (const auto& [key, value] : m_private->m_set.valuesByKey()) {
            keys.push_back(Convert::toStr(key));
        }
        return keys;
    });
}

std::vector<Variant> PropertySet::allValues() const {
    return guarded([&] {
        std::vector<Variant> values;
        for (const auto& [key, value] : m_private->m_set.valuesByKey()) values.emplace_back(value);
        return values;
    });
}

const nvf::PropertySet& PropertySet::internal_nvfPropertySet() const {
    if (m_private->m_isIncomplete) throw std::bad_alloc();
    return m_private->m_set;
}

}  // namespace nuo
