#pragma once

#include <string>
#include <vector>

#include "NuoCore/Color3f.h"
#include "NuoCore/Variant.h"
#include "NuoCore/Vec3d.h"
#include "nvf/Object.h"
#include "nvf/String.h"

namespace nvf {

using nuo::Color3f;
using nuo::Vec3d;

/// A tagged value: type and payload, copied together. The payload is kept as the bytes of the
/// value, a string as UTF-8 with its terminator, the elements of an array as variants of their own.
class Variant {
public:
    using Type = nuo::Variant::Type;
    using enum nuo::Variant::Type;

    Variant() = default;
    explicit Variant(int value) : Variant(INT, value) {}
    explicit Variant(uint value) : Variant(UINT, value) {}
    explicit Variant(double value) : Variant(DOUBLE, value) {}
    explicit Variant(float value) : Variant(FLOAT, value) {}
    explicit Variant(bool value);
    explicit Variant(const Vec3d& value) : Variant(VEC3D, value) {}
    explicit Variant(const Color3f& value) : Variant(COLOR3F, value) {}
    explicit Variant(const String& value);
    explicit Variant(std::vector<Variant> values);

    Type type() const { return m_type; }
    bool isValid() const { return m_type != INVALID; }

    /// The value. Asking for a type that it does not have is an assertion and gives zero, false or
    /// an empty value.
    int getInt() const;
    uint getUInt() const;
    double getDouble() const;
    float getFloat() const;
    bool getBool() const;
    Vec3d getVec3d() const;
    Color3f getColor3f() const;
    String getString() const;
    const std::vector<Variant>& getArray() const;

    /// Equal type and equal payload, bit by bit.
    friend bool operator==(const Variant& a, const Variant& b) = default;

private:
    template <typename T>
    Variant(Type type, const T& value);
    template <typename T>
    T payloadAs() const;

    Type m_type = INVALID;
    std::string m_data;
    std::vector<Variant> m_array;
};

}  // namespace nvf
