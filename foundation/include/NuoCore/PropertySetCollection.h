#pragma once

#include <cstddef>

#include "NuoCore/Export.h"
#include "NuoCore/PrivatePtr.h"
#include "NuoCore/PropertySet.h"
#include "NuoCore/PtrRef.h"
#include "NuoCore/RefCountedObject.h"

namespace nuo {

/// An ordered list of property sets: the viewer settings of one case. Used by one thread at a time.
class NUO_API PropertySetCollection : public RefCountedObject {
public:
    PropertySetCollection();
    ~PropertySetCollection() override;

    /// Appends a set and keeps a reference to it. A null set is an assertion and is left out.
    /// Without memory the list stays as it is, which is logged, and cannot be stored.
    void addPropertySet(PropertySet* propertySet);

    std::size_t count() const;

    /// The set at an index below count(); null after an assertion otherwise.
    PropertySet* propertySet(std::size_t index) const;

    /// Whether nothing is missing from the list for lack of memory; for the library itself.
    bool internal_isComplete() const;
    void internal_setIncomplete();

private:
    PrivatePtr<class PropertySetCollectionPrivate> m_private;
};

}  // namespace nuo
