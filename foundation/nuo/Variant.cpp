#include "NuoCore/Variant.h"

#include <new>

#include "nuo/Convert.h"
#include "nuo/Guard.h"
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

// A value that cannot be made is a lost one.
template <typename Make>
void Variant::take(Make make) {
    std::unique_ptr<nvf::Variant> made;
    m_isLost = !guarded(false, [&] {
        made = std::make_unique<nvf::Variant>(make());
        return true;
    });
    m_value.swap(made);
}

Variant::Variant() noexcept = default;
Variant::Variant(int value) {
    take([&] { return nvf::Variant(value); });
}
Variant::Variant(unsigned int value) {
    take([&] { return nvf::Variant(value); });
}
Variant::Variant(double value) {
    take([&] { return nvf::Variant(value); });
}
Variant::Variant(float value) {
    take([&] { return nvf::Variant(value); });
}
Variant::Variant(bool value) {
    take([&] { return nvf::Variant(value); });
}
Variant::Variant(const Vec3d& value) {
    take([&] { return nvf::Variant(value); });
}
Variant::Variant(const Color3f& value) {
    take([&] { return nvf::Variant(value); });
}
Variant::Variant(const Str& value) {
    take([&] { return nvf::Variant(Convert::toNvfString(value)); });
}
Variant::Variant(const char* utf8) : Variant(Str(utf8)) {}
Variant::Variant(const wchar_t* text) : Variant(Str(text)) {}
Variant::Variant(const std::vector<Variant>& values) {
    take([&] { return nvf::Variant(toNvfArray(values)); });
}
Variant::Variant(const nvf::Variant& value) : m_value(std::make_unique<nvf::Variant>(value)) {}
Variant::Variant(const Variant& other) {
    *this = other;
}
Variant::Variant(Variant&& other) noexcept = default;
Variant::~Variant() = default;

Variant& Variant::operator=(const Variant& other) {
    if (this == &other) return *this;
    take([&] { return other.held(); });
    m_isLost = m_isLost || other.m_isLost;
    return *this;
}

Variant& Variant::operator=(Variant&& other) noexcept = default;

Variant::Type Variant::type() const {
    return held().type();
}
int Variant::toInt() const {
    return held().getInt();
}
unsigned int Variant::toUInt() const {
    return held().getUInt();
}
double Variant::toDouble() const {
    return held().getDouble();
}
float Variant::toFloat() const {
    return held().getFloat();
}
bool Variant::toBool() const {
    return held().getBool();
}
Vec3d Variant::toVec3d() const {
    return held().getVec3d();
}
Color3f Variant::toColor3f() const {
    return held().getColor3f();
}

Str Variant::toStr() const {
    Str text;
    guarded([&] { text = Convert::toStr(held().getString()); });
    return text;
}

std::vector<Variant> Variant::toArray() const {
    return guarded([&] {
        std::vector<Variant> values;
        for (const nvf::Variant& value : held().getArray()) values.emplace_back(value);
        return values;
    });
}

const nvf::Variant& Variant::internal_nvfVariant() const {
    if (m_isLost) throw std::bad_alloc();
    return held();
}

const nvf::Variant& Variant::held() const {
    static const nvf::Variant kInvalid;
    return m_value ? *m_value : kInvalid;
}

}  // namespace nuo
