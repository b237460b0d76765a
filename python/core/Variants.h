#pragma once

#include <pybind11/pybind11.h>

#include "NuoCore/PropertySetCollection.h"
#include "NuoCore/PtrRef.h"

namespace nuo::python {

namespace py = pybind11;

/// Viewer settings as Python has them: a list of pairs of class type and dict. Values are int,
/// float, bool, str, list, numpy.uint32 and numpy.float32 (the unsigned and the short type of the
/// catalogue), a tuple of three floats for a vector, zrfx.Color for a colour.
py::list listOf(const PropertySetCollection& collection);

/// The reverse. Raises TypeError for a value of another type.
PtrRef<PropertySetCollection> collectionOf(const py::handle& list);

}  // namespace nuo::python
