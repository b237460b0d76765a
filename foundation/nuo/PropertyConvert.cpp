#include "nuo/PropertyConvert.h"

#include "nuo/Convert.h"

namespace nuo {

PtrRef<PropertySet> PropertyConvert::toPropertySet(const nvf::PropertySet& source) {
    PtrRef<PropertySet> set = new PropertySet(Convert::toStr(source.classType()));
    for (const auto& [key, value] : source.valuesByKey()) {
        set->setValue(Convert::toStr(key), Variant(value));
    }
    return set;
}

nvf::ref<nvf::PropertySetCollection> PropertyConvert::toNvfPropertySetCollection(
    const PropertySetCollection& source) {
    nvf::ref<nvf::PropertySetCollection> collection = new nvf::PropertySetCollection;
    for (std::size_t i = 0; i < source.count(); ++i) {
        collection->addPropertySet(
            new nvf::PropertySet(source.propertySet(i)->internal_nvfPropertySet()));
    }
    return collection;
}

}  // namespace nuo
