#include "nvf/PropertySetCollection.h"

#include "nvf/Assert.h"

namespace nvf {

PropertySetCollection::PropertySetCollection(const PropertySetCollection& other) : Object() {
    for (const ref<PropertySet>& sourceSet : other.m_propertySets) {
        NVF_ASSERT(sourceSet.notNull());
        const ref<PropertySet> copy = sourceSet ? new PropertySet(*sourceSet) : nullptr;
        if (copy) addPropertySet(copy.p());
    }
}

PropertySet* PropertySetCollection::propertySet(std::size_t index) const {
    NVF_ASSERT(index < m_propertySets.size());
    return index < m_propertySets.size() ? m_propertySets[index].p() : nullptr;
}

PropertySet* PropertySetCollection::propertySetOfType(const String& classType,
                                                      std::size_t index) const {
    for (const ref<PropertySet>& set : m_propertySets) {
        if (set->classType() == classType && index-- == 0) return set.p();
    }
    NVF_FAIL("Specified index is of of range");
    return nullptr;
}

void PropertySetCollection::addPropertySet(PropertySet* propertySet) {
    NVF_ASSERT(propertySet);
    if (propertySet) m_propertySets.emplace_back(propertySet);
}

}  // namespace nvf
