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
    const bool isGiven = nvf::requireThat("propertySet", propertySet != nullptr,
                                          "addPropertySet: the property set is null");
    if (!isGiven) return;
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
    const std::size_t size = count();
    return nvf::require(index < size, "propertySet: set %1 of %2 asked for", index, size)
               ? m_private->m_propertySets[index].p()
               : nullptr;
}

bool PropertySetCollection::internal_isComplete() const {
    return guarded([&] { return m_private->m_isComplete; });
}

void PropertySetCollection::internal_setIncomplete() {
    guarded([&] { m_private->m_isComplete = false; });
}

}  // namespace nuo
