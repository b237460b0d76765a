#pragma once

namespace nuo {

/// Three 32-bit floats x, y, z without padding, so that an array of Vec3f is an interleaved
/// coordinate array.
class Vec3f {
public:
    constexpr Vec3f() = default;
    constexpr Vec3f(float xValue, float yValue, float zValue) : x(xValue), y(yValue), z(zValue) {}

    float x = 0;
    float y = 0;
    float z = 0;
};

constexpr bool operator==(const Vec3f& a, const Vec3f& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z;
}
constexpr bool operator!=(const Vec3f& a, const Vec3f& b) {
    return !(a == b);
}

}  // namespace nuo
