#include "NuoCore/PropertySetCollection.h"

#include <utility>
#include <vector>

#include "nuo/Guard.h"
#include "nvf/Assert.h"

namespace nuo {

class PropertySetCollectionPrivate {
public:
    std::vector<PtrRef<PropertySet>> m_propertySets;
    bool m_isComplete = true;
};

PropertySetCollection::PropertySetCollection() {
    guarded([&] { m_private.take(std::make_unique<PropertySetCollectionPrivate>()); });
}

PropertySetCollection::~PropertySetCollection() = default;

void PropertySetCollection::addPropertySet(PropertySet* propertySet) {
    NVF_ASSERT(propertySet);
    if (!propertySet) return;
    guarded([&] {
        const bool wasComplete = std::exchange(m_private->m_isComplete, false);
        m_private->m_propertySets.emplace_back(propertySet);
        m_private->m_isComplete = wasComplete;
    });
}

std::size_t PropertySetCollection::count() const {
    return guarded([&] { return m_private->m_propertySets.size(); });
}

PropertySet* PropertySetCollection::propertySet(std::size_t index) const {
    NVF_ASSERT(index < count());
    return index < count() ? m_private->m_propertySets[index].p() : nullptr;
}

bool PropertySetCollection::internal_isComplete() const {
    return guarded([&] { return m_private->m_isComplete; });
}

}  // namespace nuo
