#include "nuo/PropertyConvert.h"

#include <new>

namespace nuo {

PtrRef<PropertySet> PropertyConvert::toPropertySet(const nvf::PropertySet& source) {
    return new PropertySet(source);
}

nvf::ref<nvf::PropertySetCollection> PropertyConvert::toNvfPropertySetCollection(
    const PropertySetCollection& source) {
    if (!source.internal_isComplete()) throw std::bad_alloc();
    nvf::ref<nvf::PropertySetCollection> collection = new nvf::PropertySetCollection;
    for (std::size_t i = 0; i < source.count(); ++i) {
        const nvf::ref<nvf::PropertySet> copy =
            new nvf::PropertySet(source.propertySet(i)->internal_nvfPropertySet());
        collection->addPropertySet(copy.p());
    }
    return collection;
}

}  // namespace nuo
