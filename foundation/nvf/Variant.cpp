#include "nvf/Variant.h"

#include <cstring>

#include "nvf/Assert.h"

namespace nvf {

template <typename T>
Variant::Variant(Type type, const T& value)
    : m_type(type), m_data(reinterpret_cast<const char*>(&value), sizeof(T)) {}

template Variant::Variant(Type, const int&);
template Variant::Variant(Type, const uint&);
template Variant::Variant(Type, const double&);
template Variant::Variant(Type, const float&);
template Variant::Variant(Type, const Vec3d&);
template Variant::Variant(Type, const Color3f&);

Variant::Variant(bool value) : m_type(BOOL), m_data(1, value ? '\1' : '\0') {}

Variant::Variant(const String& value) : m_type(STRING), m_data(value.toUtf8()) {
    m_data.push_back('\0');
}

Variant::Variant(std::vector<Variant> values) : m_type(ARRAY), m_array(std::move(values)) {}

int Variant::getInt() const {
    NVF_ASSERT(m_type == INT);
    NVF_ASSERT(m_data.size() == sizeof(int));
    return payloadAs<int>();
}

uint Variant::getUInt() const {
    NVF_ASSERT(m_type == UINT);
    NVF_ASSERT(m_data.size() == sizeof(uint));
    return payloadAs<uint>();
}

double Variant::getDouble() const {
    NVF_ASSERT(m_type == DOUBLE);
    NVF_ASSERT(m_data.size() == sizeof(double));
    return payloadAs<double>();
}

float Variant::getFloat() const {
    NVF_ASSERT(m_type == FLOAT);
    NVF_ASSERT(m_data.size() == sizeof(float));
    return payloadAs<float>();
}

bool Variant::getBool() const {
    NVF_ASSERT(m_type == BOOL);
    NVF_ASSERT(m_data.size() == 1);
    return m_type == BOOL && m_data != std::string(1, '\0');
}

Vec3d Variant::getVec3d() const {
    NVF_ASSERT(m_type == VEC3D);
    // clang-format off
    NVF_ASSERT(m_data.size() == 3*sizeof(double));
    // clang-format on
    return payloadAs<Vec3d>();
}

Color3f Variant::getColor3f() const {
    NVF_ASSERT(m_type == COLOR3F);
    // clang-format off
    NVF_ASSERT(m_data.size() == 3*sizeof(float));
    // clang-format on
    return payloadAs<Color3f>();
}

String Variant::getString() const {
    NVF_ASSERT(m_type == STRING);
    if (m_type != STRING || m_data.empty()) return String();
    NVF_ASSERT(m_data[m_data.size() - 1] == '\0');
    return String(m_data.c_str());
}

const std::vector<Variant>& Variant::getArray() const {
    NVF_ASSERT(m_type == ARRAY);
    return m_array;
}

// A payload of another size, which only a value of another type has, gives zero.
template <typename T>
T Variant::payloadAs() const {
    T value{};
    if (m_data.size() == sizeof(T)) std::memcpy(&value, m_data.data(), sizeof(T));
    return value;
}

}  // namespace nvf
