#include "Variants.h"

#include "Handle.h"
#include "NuoCore/NuoCore.h"

namespace nuo::python {
namespace {

py::object classOf(const char* module, const char* name) {
    return py::module_::import(module).attr(name);
}

py::object objectOf(const Variant& value) {
    switch (value.type()) {
        case Variant::INT:
            return py::int_(value.toInt());
        case Variant::UINT:
            return classOf("numpy", "uint32")(value.toUInt());
        case Variant::DOUBLE:
            return py::float_(value.toDouble());
        case Variant::FLOAT:
            return classOf("numpy", "float32")(value.toFloat());
        case Variant::BOOL:
            return py::bool_(value.toBool());
        case Variant::VEC3D:
            return py::make_tuple(value.toVec3d().x, value.toVec3d().y, value.toVec3d().z);
        case Variant::COLOR3F: {
            const Color3f color = value.toColor3f();
            return classOf("zrfx.settings", "Color")(color.r, color.g, color.b);
        }
        case Variant::STRING:
            return py::cast(value.toStr());
        case Variant::ARRAY: {
            py::list items;
            for (const Variant& item : value.toArray()) items.append(objectOf(item));
            return items;
        }
        default:
            return py::none();
    }
}

Variant vectorOf(const py::tuple& numbers) {
    if (numbers.size() != 3) throw py::type_error("a vector has three numbers");
    return Vec3d(numbers[0].cast<double>(), numbers[1].cast<double>(), numbers[2].cast<double>());
}

Variant variantOf(const py::handle& value);

Variant arrayOf(const py::list& items) {
    std::vector<Variant> values;
    for (const py::handle item : items) values.push_back(variantOf(item));
    return values;
}

Variant colorOf(const py::handle& color) {
    return Color3f(color.attr("red").cast<float>(), color.attr("green").cast<float>(),
                   color.attr("blue").cast<float>());
}

Variant variantOf(const py::handle& value) {
    if (py::isinstance<py::bool_>(value)) return value.cast<bool>();
    if (py::isinstance<py::str>(value)) return value.cast<Str>();
    if (py::isinstance<py::list>(value)) return arrayOf(value.cast<py::list>());
    if (py::isinstance(value, classOf("zrfx.settings", "Color"))) return colorOf(value);
    if (py::isinstance<py::tuple>(value)) return vectorOf(value.cast<py::tuple>());
    if (py::isinstance(value, classOf("numpy", "float32"))) return value.cast<float>();
    if (py::isinstance(value, classOf("numpy", "uint32")))
        return py::int_(py::reinterpret_borrow<py::object>(value)).cast<unsigned int>();
    if (py::isinstance<py::float_>(value)) return value.cast<double>();
    if (PyIndex_Check(value.ptr())) return value.cast<int>();
    throw py::type_error("no type of viewer settings: " +
                         std::string(py::str(py::type::of(value))));
}

}  // namespace

py::list listOf(const PropertySetCollection& collection) {
    py::list sets;
    for (std::size_t i = 0; i < collection.count(); ++i) {
        const PropertySet& set = *collection.propertySet(i);
        py::dict values;
        for (const Str& key : set.allKeys()) values[py::cast(key)] = objectOf(set.value(key));
        sets.append(py::make_tuple(set.classType(), values));
    }
    return sets;
}

PtrRef<PropertySetCollection> collectionOf(const py::handle& list) {
    PtrRef<PropertySetCollection> collection = new PropertySetCollection;
    for (const py::handle item : list) {
        const auto pair = item.cast<py::tuple>();
        const PtrRef<PropertySet> set = new PropertySet(pair[0].cast<Str>());
        for (const auto& [key, value] : pair[1].cast<py::dict>()) {
            set->setValue(key.cast<Str>(), variantOf(value));
        }
        collection->addPropertySet(set.p());
    }
    return collection;
}

}  // namespace nuo::python
