#pragma once

#include "math/Vector.h"

namespace math
{

// The points p with Dot(normal, p) + distance = 0. The constructor normalises, so Distance is in length
// units.
struct Plane
{
    Vec3 normal;
    float distance = 0;

    Plane() = default;
    Plane(const Vec3& normal_, float distance_) : normal(normal_), distance(distance_) { Normalize(); }

    static Plane FromPointNormal(const Vec3& p, const Vec3& n) { return Plane(n, -Dot(p, n)); }
    // The normal follows the right-hand rule from (a - b) to (c - b).
    static Plane FromPoints(const Vec3& a, const Vec3& b, const Vec3& c)
    {
        return FromPointNormal(a, Cross(a - b, c - b));
    }

    void Normalize()
    {
        const float length = normal.Length();
        normal /= length;
        distance /= length;
    }

    // Signed: positive on the side the normal points to.
    float Distance(const Vec3& p) const { return Dot(normal, p) + distance; }
};

// The point where three planes meet, by Cramer's rule. Planes sharing a direction have no such point:
// the result is then infinite or NaN, for the caller to test.
inline Vec3 Plane3Intersection(const Plane& a, const Plane& b, const Plane& c)
{
    const Vec3 bc = Cross(b.normal, c.normal);
    const Vec3 ca = Cross(c.normal, a.normal);
    const Vec3 ab = Cross(a.normal, b.normal);
    const float det = Dot(a.normal, bc);
    return (bc * -a.distance + ca * -b.distance + ab * -c.distance) / det;
}

// A line of the plane: the points p with Dot(normal, p) + distance = 0. Not normalised unless asked.
struct Plane2D
{
    Vec2 normal;
    float distance = 0;

    Plane2D() = default;
    Plane2D(const Vec2& normal_, float distance_) : normal(normal_), distance(distance_) {}

    static Plane2D FromPointNormal(const Vec2& p, const Vec2& n) { return Plane2D(n, -Dot(p, n)); }

    void Normalize()
    {
        const float length = normal.Length();
        normal /= length;
        distance /= length;
    }

    // Signed, and in length units once normalised.
    float Distance(const Vec2& p) const { return Dot(normal, p) + distance; }

    friend bool operator==(const Plane2D& a, const Plane2D& b)
    {
        return a.normal == b.normal && a.distance == b.distance;
    }
    friend bool operator!=(const Plane2D& a, const Plane2D& b) { return !(a == b); }
};

} // namespace math
