#pragma once

namespace nuo {

/// Three 64-bit floats x, y, z: a point, a direction or a normal of the viewer settings.
class Vec3d {
public:
    constexpr Vec3d() = default;
    constexpr Vec3d(double xValue, double yValue, double zValue)
        : x(xValue), y(yValue), z(zValue) {}

    double x = 0;
    double y = 0;
    double z = 0;
};

constexpr bool operator==(const Vec3d& a, const Vec3d& b) {
    return a.x == b.x && a.y == b.y && a.z == b.z;
}
constexpr bool operator!=(const Vec3d& a, const Vec3d& b) {
    return !(a == b);
}

}  // namespace nuo
