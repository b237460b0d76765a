#include "NuoCore/Variant.h"

#include "nuo/Convert.h"
#include "nvf/Variant.h"

namespace nuo {
namespace {

std::vector<nvf::Variant> toNvfArray(const std::vector<Variant>& values) {
    std::vector<nvf::Variant> array;
    array.reserve(values.size());
    for (const Variant& value : values) array.push_back(value.internal_nvfVariant());
    return array;
}

}  // namespace

Variant::Variant() : Variant(nvf::Variant()) {}
Variant::Variant(int value) : Variant(nvf::Variant(value)) {}
Variant::Variant(unsigned int value) : Variant(nvf::Variant(value)) {}
Variant::Variant(double value) : Variant(nvf::Variant(value)) {}
Variant::Variant(float value) : Variant(nvf::Variant(value)) {}
Variant::Variant(bool value) : Variant(nvf::Variant(value)) {}
Variant::Variant(const Vec3d& value) : Variant(nvf::Variant(value)) {}
Variant::Variant(const Color3f& value) : Variant(nvf::Variant(value)) {}
Variant::Variant(const Str& value) : Variant(nvf::Variant(Convert::toNvfString(value))) {}
Variant::Variant(const char* utf8) : Variant(Str(utf8)) {}
Variant::Variant(const wchar_t* text) : Variant(Str(text)) {}
Variant::Variant(const std::vector<Variant>& values) : Variant(nvf::Variant(toNvfArray(values))) {}
Variant::Variant(const nvf::Variant& value) : m_value(std::make_unique<nvf::Variant>(value)) {}
Variant::Variant(const Variant& other) : Variant(*other.m_value) {}
Variant::Variant(Variant&& other) : Variant() {
    m_value.swap(other.m_value);
}
Variant::~Variant() = default;

Variant& Variant::operator=(const Variant& other) {
    *m_value = *other.m_value;
    return *this;
}

Variant& Variant::operator=(Variant&& other) noexcept {
    m_value.swap(other.m_value);
    return *this;
}

Variant::Type Variant::type() const {
    return m_value->type();
}
int Variant::toInt() const {
    return m_value->getInt();
}
unsigned int Variant::toUInt() const {
    return m_value->getUInt();
}
double Variant::toDouble() const {
    return m_value->getDouble();
}
float Variant::toFloat() const {
    return m_value->getFloat();
}
bool Variant::toBool() const {
    return m_value->getBool();
}
Vec3d Variant::toVec3d() const {
    return m_value->getVec3d();
}
Color3f Variant::toColor3f() const {
    return m_value->getColor3f();
}
Str Variant::toStr() const {
    return Convert::toStr(m_value->getString());
}

std::vector<Variant> Variant::toArray() const {
    std::vector<Variant> values;
    for (const nvf::Variant& value : m_value->getArray()) values.emplace_back(value);
    return values;
}

const nvf::Variant& Variant::internal_nvfVariant() const {
    return *m_value;
}

}  // namespace nuo
