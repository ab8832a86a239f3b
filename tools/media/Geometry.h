// Small 3D vector and rotation types for the figure of the delivered pictures.
#pragma once

#include <cmath>
#include <numbers>

namespace tarvex::media {

struct Vec3 {
    double x = 0;
    double y = 0;
    double z = 0;

    Vec3 operator+(const Vec3& o) const { return {x + o.x, y + o.y, z + o.z}; }
    Vec3 operator-(const Vec3& o) const { return {x - o.x, y - o.y, z - o.z}; }
    Vec3 operator*(double s) const { return {x * s, y * s, z * s}; }
    double Dot(const Vec3& o) const { return x * o.x + y * o.y + z * o.z; }
    double Length() const { return std::sqrt(Dot(*this)); }
};

inline Vec3 Lerp(const Vec3& a, const Vec3& b, double t) {
    return a + (b - a) * t;
}

inline double Radians(double degrees) {
    return degrees * std::numbers::pi / 180.0;
}

// A 3x3 matrix; used for rotations (and, for the mirrored postures, reflections).
struct Mat3 {
    double m[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

    static Mat3 Columns(const Vec3& a, const Vec3& b, const Vec3& c) {
        Mat3 r;
        const Vec3 cols[3] = {a, b, c};
        for (int j = 0; j < 3; ++j) {
            r.m[0][j] = cols[j].x;
            r.m[1][j] = cols[j].y;
            r.m[2][j] = cols[j].z;
        }
        return r;
    }
    // Rotation about the x axis: +y turns towards +z.
    static Mat3 RotX(double degrees) {
        const double c = std::cos(Radians(degrees)), s = std::sin(Radians(degrees));
        return Columns({1, 0, 0}, {0, c, s}, {0, -s, c});
    }
    // Rotation about the y axis: +x turns towards -z.
    static Mat3 RotY(double degrees) {
        const double c = std::cos(Radians(degrees)), s = std::sin(Radians(degrees));
        return Columns({c, 0, -s}, {0, 1, 0}, {s, 0, c});
    }
    // Rotation about the z axis: +x turns towards +y.
    static Mat3 RotZ(double degrees) {
        const double c = std::cos(Radians(degrees)), s = std::sin(Radians(degrees));
        return Columns({c, s, 0}, {-s, c, 0}, {0, 0, 1});
    }

    Vec3 operator*(const Vec3& v) const {
        return {m[0][0] * v.x + m[0][1] * v.y + m[0][2] * v.z,
                m[1][0] * v.x + m[1][1] * v.y + m[1][2] * v.z,
                m[2][0] * v.x + m[2][1] * v.y + m[2][2] * v.z};
    }
    Mat3 operator*(const Mat3& o) const {
        Mat3 r;
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                r.m[i][j] = m[i][0] * o.m[0][j] + m[i][1] * o.m[1][j] + m[i][2] * o.m[2][j];
        return r;
    }
};

} // namespace tarvex::media
