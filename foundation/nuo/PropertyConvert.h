#pragma once

#include "NuoCore/PropertySet.h"
#include "NuoCore/PropertySetCollection.h"
#include "nvf/PropertySet.h"
#include "nvf/PropertySetCollection.h"

namespace nuo {

/// Copies property sets between the public interface and the framework, value by value. Throws
/// std::bad_alloc when there is no memory, and for a set or value that was lost for lack of it.
class PropertyConvert {
public:
    static PtrRef<PropertySet> toPropertySet(const nvf::PropertySet& source);
    static nvf::ref<nvf::PropertySetCollection> toNvfPropertySetCollection(
        const PropertySetCollection& source);
};

}  // namespace nuo
