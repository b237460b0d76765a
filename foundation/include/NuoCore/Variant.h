#pragma once

#include <memory>
#include <vector>

#include "NuoCore/Color3f.h"
#include "NuoCore/Export.h"
#include "NuoCore/Str.h"
#include "NuoCore/Vec3d.h"

namespace nvf {
class Variant;
}

namespace nuo {

/// One value of a PropertySet, tagged with its type: a value type. It converts from each type that
/// it can hold, so a plain value can be passed for a Variant; write 1.0 where a property is a
/// double and 1.0f where it is a float. A value that there was no memory to make or copy is lost,
/// which is logged: it is invalid, and a property set that receives it cannot be stored.
class NUO_API Variant {
public:
    /// The types, with the codes that the file format uses.
    enum Type : int {
        INVALID = 0,
        INT = 1,
        UINT = 2,
        DOUBLE = 3,
        FLOAT = 4,
        BOOL = 5,
        VEC3D = 6,
        COLOR3F = 7,
        STRING = 8,
        ARRAY = 9
    };

    Variant() noexcept;
    Variant(int value);
    Variant(unsigned int value);
    Variant(double value);
    Variant(float value);
    Variant(bool value);
    Variant(const Vec3d& value);
    Variant(const Color3f& value);
    Variant(const Str& value);
    Variant(const char* utf8);
    Variant(const wchar_t* text);
    template <typename T>
    Variant(T*) = delete;  // would become a boolean
    Variant(const std::vector<Variant>& values);
    Variant(const Variant& other);
    Variant(Variant&& other) noexcept;
    Variant& operator=(const Variant& other);
    Variant& operator=(Variant&& other) noexcept;
    ~Variant();

    Type type() const;
    bool isValid() const { return type() != INVALID; }

    /// The value. Asking for a type that it does not have is an assertion and gives zero, false or
    /// an empty value, as does, with a message, a lack of memory for the copy.
    int toInt() const;
    unsigned int toUInt() const;
    double toDouble() const;
    float toFloat() const;
    bool toBool() const;
    Vec3d toVec3d() const;
    Color3f toColor3f() const;
    Str toStr() const;
    std::vector<Variant> toArray() const;

    /// For the library's own use. Both throw std::bad_alloc, the second for a lost value.
    explicit Variant(const nvf::Variant& value);
    const nvf::Variant& internal_nvfVariant() const;

private:
    template <typename Make>
    void take(Make make);
    const nvf::Variant& held() const;

    std::unique_ptr<nvf::Variant> m_value;  // null when invalid
    bool m_isLost = false;
};

}  // namespace nuo
