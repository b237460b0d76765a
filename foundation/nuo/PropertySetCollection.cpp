#include "NuoCore/PropertySetCollection.h"

#include <vector>

#include "nvf/Assert.h"

namespace nuo {

class PropertySetCollectionPrivate {
public:
    std::vector<PtrRef<PropertySet>> m_propertySets;
};

PropertySetCollection::PropertySetCollection()
    : m_private(std::make_unique<PropertySetCollectionPrivate>()) {}

PropertySetCollection::~PropertySetCollection() = default;

void PropertySetCollection::addPropertySet(PropertySet* propertySet) {
    NVF_ASSERT(propertySet);
    if (propertySet) m_private->m_propertySets.emplace_back(propertySet);
}

std::size_t PropertySetCollection::count() const {
    return m_private->m_propertySets.size();
}

PropertySet* PropertySetCollection::propertySet(std::size_t index) const {
    NVF_ASSERT(index < count());
    return index < count() ? m_private->m_propertySets[index].p() : nullptr;
}

}  // namespace nuo
