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
/// what they belong to. Used by one thread at a time. A set that there was no memory to construct,
/// or to set a value of, which is logged, cannot be stored.
///
///     nuo::PtrRef<nuo::PropertySet> camera = new nuo::PropertySet("camera");
///     camera->setValue("eye", nuo::Vec3d(10, 0, 0));
class NUO_API PropertySet : public RefCountedObject {
public:
    explicit PropertySet(const Str& classType);
    ~PropertySet() override;

    Str classType() const;

    /// Sets the value of a key, in place of the one that it had. The set stays as it is, and cannot
    /// be stored, when there is no memory.
    void setValue(const Str& key, const Variant& value);

    /// The value of a key; invalid when the set does not have it.
    Variant value(const Str& key) const;

    /// All keys, sorted. This and the next give none, with a message, when there is no memory.
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
