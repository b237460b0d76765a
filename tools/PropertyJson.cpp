#include "PropertyJson.h"

#include "NuoCore/PropertySet.h"
#include "NuoCore/Variant.h"

namespace tools {
namespace {

Json valueJson(const nuo::Variant& value) {
    switch (value.type()) {
        case nuo::Variant::INT:
            return value.toInt();
        case nuo::Variant::UINT:
            return value.toUInt();
        case nuo::Variant::DOUBLE:
            return value.toDouble();
        case nuo::Variant::FLOAT:
            return jsonNumber(value.toFloat());
        case nuo::Variant::BOOL:
            return value.toBool();
        case nuo::Variant::VEC3D:
            return {value.toVec3d().x, value.toVec3d().y, value.toVec3d().z};
        case nuo::Variant::COLOR3F:
            return {jsonNumber(value.toColor3f().r), jsonNumber(value.toColor3f().g),
                    jsonNumber(value.toColor3f().b)};
        case nuo::Variant::STRING:
            return utf8(value.toStr());
        case nuo::Variant::ARRAY: {
            Json items = Json::array();
            for (const nuo::Variant& item : value.toArray()) items.push_back(valueJson(item));
            return items;
        }
        case nuo::Variant::INVALID:
            return nullptr;
    }
    return nullptr;
}

}  // namespace

Json propertiesJson(const nuo::PropertySetCollection* properties) {
    Json list = Json::array();
    for (std::size_t i = 0; properties && i < properties->count(); ++i) {
        const nuo::PropertySet& set = *properties->propertySet(i);
        Json values = Json::object();
        for (const nuo::Str& key : set.allKeys()) values[utf8(key)] = valueJson(set.value(key));
        list.push_back({{"classType", utf8(set.classType())}, {"values", values}});
    }
    return list;
}

}  // namespace tools
