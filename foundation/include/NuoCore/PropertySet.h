#pragma once

#include <vector>

#include "NuoCore/Export.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoCore/RefCountedObject.h"
#include "NuoCore/Str.h"
#include "NuoCore/Variant.h"

namespace nvf {
class PropertySet;
}

namespace nuo {

/// A group of viewer settings: typed values by key, under a class type such as "camera" that says
/// what they belong to. Used by one thread at a time. A set that ran out of memory when it was
/// constructed or given a value logs that and cannot be stored.
///
///     nuo::PtrRef<nuo::PropertySet> camera = new nuo::PropertySet("camera");
///     camera->setValue("eye", nuo::Vec3d(10, 0, 0));
class NUO_API PropertySet : public RefCountedObject {
public:
    explicit PropertySet(const Str& classType);
    ~PropertySet() override;

    Str classType() const;

    /// Sets or replaces the value of a key. Without memory the set stays as it is, and cannot be
    /// stored.
    void setValue(const Str& key, const Variant& value);

    /// The value of a key; invalid when the set does not have it.
    Variant value(const Str& key) const;

    /// All keys, sorted. Empty, with a message, when there is no memory; so is allValues().
    std::vector<Str> allKeys() const;

    /// The values of all keys, in the order of allKeys().
    std::vector<Variant> allValues() const;

    /// For the library's own use. Both throw std::bad_alloc, the second for a set that cannot be
    /// stored.
    explicit PropertySet(const nvf::PropertySet& source);
    const nvf::PropertySet& internal_nvfPropertySet() const;

private:
    PrivatePtr<class PropertySetPrivate> m_private;
};

}  // namespace nuo
