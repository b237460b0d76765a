#pragma once

#include "ZRString.h"
#include "nvf/PropertySetCollection.h"

namespace unstruct {

class ZRFxAccess;

/// Property sets as a document of their own. Failures are logged and give false.

/// Stores the properties in place of the entry of that name.
bool WritePropertiesEntry(ZRFxAccess& access, const ZRString& name,
                          const nvf::PropertySetCollection& collection);
bool ReadPropertiesEntry(ZRFxAccess& access, const ZRString& name,
                         nvf::PropertySetCollection* collection);

}  // namespace unstruct
