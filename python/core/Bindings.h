#pragma once

#include "Handle.h"
#include "NuoZRFx/NuoZRFx.h"

namespace nuo::python {

using FileHandle = Handle<zrfx::File>;
using DatabaseHandle = Handle<zrfx::Database>;
using CaseHandle = Handle<zrfx::Case>;
using DatabaseClass = py::class_<DatabaseHandle>;

/// Each adds the classes and operations of one subject to the module.
void bindFile(py::module_& module);
DatabaseClass bindDatabase(py::module_& module);
void bindMesh(py::module_& module, DatabaseClass& database);
void bindParts(DatabaseClass& database);
void bindGeometry(DatabaseClass& database);
void bindResults(DatabaseClass& database);
void bindTransformations(DatabaseClass& database);
void bindSets(DatabaseClass& database);
void bindCases(py::module_& module);
void bindViewSettings(py::module_& module);

}  // namespace nuo::python
