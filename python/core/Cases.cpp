// Cases: name, description, pictures, viewer settings.
#include "Bindings.h"
#include "Buffers.h"
#include "Call.h"
#include "Variants.h"

namespace nuo::python {
namespace {

using zrfx::Case;
using zrfx::File;

CaseHandle addCase(const FileHandle& handle, const Str& name, int id, int databaseId) {
    return add<Case>(handle, [&](File& file) { return new Case(&file, name, id, databaseId); });
}

Array arrayOf(const Image& image) {
    std::vector<unsigned char> rgb(std::size_t{3} * image.width() * image.height());
    image.getAsRgb(rgb.data(), rgb.size());
    Array array = Array::of(std::move(rgb));
    array.reshape(
        {static_cast<py::ssize_t>(image.height()), static_cast<py::ssize_t>(image.width()), 3});
    return array;
}

Image imageOf(const py::object& pixels, unsigned int width, unsigned int height) {
    const Input<unsigned char> input(pixels);
    if (input.items().size() != std::size_t{3} * width * height) {
        throw py::value_error("an image has the shape (height, width, 3)");
    }
    Image image;
    if (!image.setFromRgb(input.items().data(), width, height)) throw std::bad_alloc();
    return image;
}

// The image belongs to the case until its next call, so it is copied while the file is locked.
struct Found {
    Image image;
    bool isFound = false;

    explicit Found(const Image* source) : isFound(source != nullptr) {
        if (source) image = *source;
    }
    explicit operator bool() const { return isFound; }
};

py::object snapshot(const CaseHandle& handle) {
    if (!ask(handle, [](Case& c) { return c.hasSnapshot(); })) return py::none();
    return py::cast(arrayOf(call(handle, [](Case& c) { return Found(c.snapshot()); }).image));
}

void setSnapshot(const CaseHandle& handle, const py::object& pixels, unsigned int width,
                 unsigned int height) {
    Image image;
    if (!pixels.is_none()) image = imageOf(pixels, width, height);
    Image* given = pixels.is_none() ? nullptr : &image;
    ask(handle, [&](Case& fileCase) { return fileCase.setSnapshot(given), true; });
}

py::list imageNames(const CaseHandle& handle) {
    py::list names;
    const auto found = ask(handle, [](Case& fileCase) {
        std::vector<Str> all;
        for (std::size_t i = 0; i < fileCase.imageCount(); ++i)
            all.push_back(fileCase.imageName(i));
        return all;
    });
    for (const Str& name : found) names.append(name);
    return names;
}

Array image(const CaseHandle& handle, std::size_t index) {
    return arrayOf(call(handle, [&](Case& c) { return Found(c.image(index)); }).image);
}

void addImage(const CaseHandle& handle, const Str& name, const py::object& pixels,
              unsigned int width, unsigned int height) {
    Image added = imageOf(pixels, width, height);
    call(handle, [&](Case& fileCase) { return fileCase.addImage(name, &added); });
}

py::list properties(const CaseHandle& handle) {
    const auto found = ask(handle, [](Case& fileCase) {
        return PtrRef<const PropertySetCollection>(fileCase.properties());
    });
    return found ? listOf(*found) : py::list();
}

void setProperties(const CaseHandle& handle, const py::list& given) {
    const auto collection = collectionOf(given);
    call(handle, [&](Case& fileCase) { return fileCase.setProperties(collection.p()); });
}

}  // namespace

void bindCases(py::module_& module) {
    module.def("add_case", &addCase);
    py::class_<CaseHandle> fileCase(module, "Case");
    const auto property = [&](const char* name, auto get, auto set) {
        using Value = std::decay_t<decltype((std::declval<Case&>().*get)())>;
        fileCase.def_property(
            name,
            [get](const CaseHandle& h) { return ask(h, [&](Case& c) { return (c.*get)(); }); },
            [set](const CaseHandle& h, const Value& value) {
                ask(h, [&](Case& c) { return (c.*set)(value), true; });
            });
    };
    property("name", &Case::name, &Case::setName);
    property("description", &Case::description, &Case::setDescription);
    property("derived_disabled", &Case::derivedResultsDisabled, &Case::setDerivedResultsDisabled);
    fileCase
        .def_property_readonly(
            "id", [](const CaseHandle& h) { return ask(h, [](Case& c) { return c.id(); }); })
        .def_property_readonly(
            "database_id",
            [](const CaseHandle& h) { return ask(h, [](Case& c) { return c.databaseId(); }); })
        .def("snapshot", &snapshot)
        .def("set_snapshot", &setSnapshot)
        .def("image_names", &imageNames)
        .def("image", &image)
        .def("add_image", &addImage)
        .def("properties", &properties)
        .def("set_properties", &setProperties);
}

}  // namespace nuo::python
