#pragma once

namespace nuo {

/// A colour of three 32-bit floats red, green, blue, each from 0 to 1.
class Color3f {
public:
    constexpr Color3f() = default;
    constexpr Color3f(float red, float green, float blue) : r(red), g(green), b(blue) {}

    float r = 0;
    float g = 0;
    float b = 0;
};

constexpr bool operator==(const Color3f& a, const Color3f& b) {
    return a.r == b.r && a.g == b.g && a.b == b.b;
}
constexpr bool operator!=(const Color3f& a, const Color3f& b) {
    return !(a == b);
}

}  // namespace nuo
