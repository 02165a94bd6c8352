// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>

namespace starbloom {

/// A direction or velocity in space: x to the right, y up, z towards the viewer.
struct Vector3 {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

constexpr Vector3 operator*(double factor, const Vector3& v) {
    return {factor * v.x, factor * v.y, factor * v.z};
}

constexpr Vector3 operator+(const Vector3& a, const Vector3& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

constexpr double dot(const Vector3& a, const Vector3& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

constexpr Vector3 cross(const Vector3& a, const Vector3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline double length(const Vector3& v) {
    return std::sqrt(dot(v, v));
}

/// Three perpendicular unit vectors.
struct Orientation {
    Vector3 forward{1.0, 0.0, 0.0};
    Vector3 left{0.0, 1.0, 0.0};
    Vector3 up{0.0, 0.0, 1.0};

    constexpr Vector3 toSpace(const Vector3& v) const { return v.x * forward + v.y * left + v.z * up; }
};

/// The orientation that looks along `direction`, with `left` as near to the plane of the picture as can be: for a
/// direction in that plane it is the direction turned by a quarter, counter-clockwise. The direction need not have unit
/// length; one without length gives that of the stage itself.
inline Orientation orientationAlong(const Vector3& direction) {
    const double size = length(direction);
    if (!(size > 0.0)) {
        return {};
    }
    const Vector3 forward = (1.0 / size) * direction;
    // Straight at the viewer the usual helper would leave no room for the other two.
    const Vector3 helper = std::abs(forward.z) < 0.999 ? Vector3{0.0, 0.0, 1.0} : Vector3{0.0, 1.0, 0.0};
    const Vector3 rise = helper + (-dot(helper, forward)) * forward;
    const Vector3 up = (1.0 / length(rise)) * rise;
    return {forward, cross(up, forward), up};
}

} // namespace starbloom
