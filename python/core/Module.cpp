#include "Bindings.h"
#include "Buffers.h"
#include "Messages.h"

PYBIND11_MODULE(_core, module) {
    using namespace nuo;
    using namespace nuo::python;
    module.doc() = "The library as the package zrfx uses it; call the package instead.";
    bindBuffers(module);
    bindCases(module);
    bindViewSettings(module);
    auto database = bindDatabase(module);
    bindMesh(module, database);
    bindParts(database);
    bindGeometry(database);
    bindResults(database);
    bindTransformations(database);
    bindSets(database);
    bindFile(module);
    module.def("version", &zrfx::ZRFxComponent::versionString);
    module.def("initialize", &initializeLibrary);
    module.def("log_to_python", &logToPython);
}
