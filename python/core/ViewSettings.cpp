#include "NuoZRFx/ViewSettings.h"

#include "Bindings.h"
#include "Names.h"
#include "Variants.h"

namespace nuo::python {
namespace {

using zrfx::ViewSettings;

Vec3d vectorOf(const py::sequence& xyz) {
    if (xyz.size() != 3) throw py::value_error("a point has three coordinates");
    return {xyz[0].cast<double>(), xyz[1].cast<double>(), xyz[2].cast<double>()};
}

std::vector<int> intsOf(const py::iterable& items) {
    std::vector<int> ints;
    for (const py::handle item : items) ints.push_back(item.cast<int>());
    return ints;
}

constexpr const char* kDrawStyles[] = {"surface", "surface_mesh", "surface_outline_mesh", "line",
                                       "point",   "outline",      "hidden_line_removed",  "none"};

const char* drawStyleName(ViewSettings::DrawStyle style) {
    const auto index = static_cast<std::size_t>(style);
    return index < std::size(kDrawStyles) ? kDrawStyles[index] : "";
}

void setPart(ViewSettings& settings, int part, unsigned int geometry, const py::object& visible,
             const py::object& style, const py::object& color, const py::object& opacity) {
    if (!visible.is_none()) settings.setPartVisible(part, visible.cast<bool>(), geometry);
    if (!style.is_none()) {
        settings.setPartDrawStyle(part, fromName(style.cast<std::string>(), &drawStyleName),
                                  geometry);
    }
    if (!color.is_none()) {
        const auto rgb = color.cast<py::sequence>();
        settings.setPartColor(
            part, Color3f(rgb[0].cast<float>(), rgb[1].cast<float>(), rgb[2].cast<float>()),
            geometry);
    }
    if (!opacity.is_none()) settings.setPartOpacity(part, opacity.cast<float>(), geometry);
}

}  // namespace

void bindViewSettings(py::module_& module) {
    py::class_<ViewSettings>(module, "ViewSettings")
        .def(py::init<>())
        .def("perspective_camera",
             [](ViewSettings& settings, const py::sequence& eye, const py::sequence& target,
                const py::sequence& up, double degrees) {
                 settings.setPerspectiveCamera(vectorOf(eye), vectorOf(target), vectorOf(up),
                                               degrees);
             })
        .def("ortho_camera",
             [](ViewSettings& settings, const py::sequence& eye, const py::sequence& target,
                const py::sequence& up, double height) {
                 settings.setOrthoCamera(vectorOf(eye), vectorOf(target), vectorOf(up), height);
             })
        .def("fringes", &ViewSettings::showFringes)
        .def("fringes_range", &ViewSettings::setFringesRange)
        .def("displacements",
             [](ViewSettings& settings, int result, const py::iterable& parts) {
                 settings.showDisplacements(result, intsOf(parts));
             })
        .def("vectors", [](ViewSettings& settings,
                           const py::iterable& results) { settings.showVectors(intsOf(results)); })
        .def("part", &setPart)
        .def("states", [](ViewSettings& settings,
                          const py::iterable& ids) { settings.showStates(intsOf(ids)); })
        .def("mode_shape", &ViewSettings::showModeShape)
        .def("properties",
             [](const ViewSettings& settings) { return listOf(*settings.properties()); });
}

}  // namespace nuo::python
