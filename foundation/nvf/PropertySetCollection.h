#pragma once

#include <cstddef>
#include <vector>

#include "nvf/Object.h"
#include "nvf/PropertySet.h"

namespace nvf {

/// An ordered list of references to property sets. Shared by reference; used by one thread at a
/// time. A copy has copies of all sets.
class PropertySetCollection : public Object {
public:
    PropertySetCollection() = default;
    explicit PropertySetCollection(const PropertySetCollection& other);

    std::size_t count() const { return m_propertySets.size(); }

    /// The set at an index; null after an assertion when there is none.
    PropertySet* propertySet(std::size_t index) const;

    /// The index-th set, from 0, of a class type; null after an assertion when there are fewer.
    PropertySet* propertySetOfType(const String& classType, std::size_t index) const;

    /// Appends a set; null is an assertion and is left out.
    void addPropertySet(PropertySet* propertySet);

private:
    std::vector<ref<PropertySet>> m_propertySets;
};

}  // namespace nvf
