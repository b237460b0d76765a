#pragma once

#include "NuoCore/PropertySetCollection.h"
#include "Text.h"

namespace tools {

/// Viewer settings as a list of objects with "classType" and "values", an object by key; an empty
/// list for null. Vectors and colours are lists of three numbers.
Json propertiesJson(const nuo::PropertySetCollection* properties);

}  // namespace tools
