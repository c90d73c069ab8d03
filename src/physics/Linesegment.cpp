#include "physics/Linesegment.h"

namespace physics
{
math::Vec2 Linesegment::ClosestPoint(const math::Vec2& p, float& t) const
{
    const math::Vec2 ab = b - a;
    t = math::Dot(p - a, ab) / math::Dot(ab, ab);
    if (!math::IsFiniteFloat(t))
        return p;
    if (t <= 0.0f)
    {
        t = 0.0f;
        return a;
    }
    if (t >= 1.0f)
    {
        t = 1.0f;
        return b;
    }
    return a + ab * t;
}

math::Vec2 Linesegment::ClosestPoint(const math::Vec2& p) const
{
    float t;
    return ClosestPoint(p, t);
}

float Linesegment::DistanceSq(const math::Vec2& p) const
{
    return math::DistanceSq(p, ClosestPoint(p));
}

float Linesegment::Distance(const math::Vec2& p) const
{
    return math::Distance(p, ClosestPoint(p));
}

bool Linesegment::IsPointOnTheLeft(const math::Vec2& p) const
{
    return math::Dot(math::Rot90CCW(b - a), p - a) > 0.0f;
}

bool LineSegmentIntersectTest(const math::Vec2& a, const math::Vec2& b, const math::Vec2& c,
                              const math::Vec2& d, math::Vec2* out)
{
    if (a == c || b == d)
        return true;
    if (a == d || b == c)
        return false;
    // Solve a + s (b - a) = c + t (d - c) for s and t.
    const math::Vec2 r = b - a;
    const math::Vec2 q = d - c;
    const float det = math::Cross(r, q);
    if (math::IsZero(det))
        return false;
    const math::Vec2 ac = c - a;
    const float s = math::Cross(ac, q) / det;
    const float t = math::Cross(ac, r) / det;
    if (s < 0.0f || s > 1.0f || t < 0.0f || t > 1.0f)
        return false;
    if (out)
        *out = a + r * s;
    return true;
}

bool Intersects(const Linesegment& s0, const Linesegment& s1, math::Vec2* out)
{
    return LineSegmentIntersectTest(s0.a, s0.b, s1.a, s1.b, out);
}

int IntersectCount(const Linesegment& segment, const std::vector<Linesegment>& list)
{
    int count = 0;
    for (const Linesegment& other : list)
        count += Intersects(segment, other) ? 1 : 0;
    return count;
}

int IntersectCount(const std::vector<Linesegment>& list0, const std::vector<Linesegment>& list1)
{
    int count = 0;
    for (const Linesegment& s : list0)
        count += IntersectCount(s, list1);
    return count;
}

Linesegment Transform(const math::Mat2D& m, const Linesegment& segment)
{
    return Linesegment(math::TransformCoordinate(m, segment.a), math::TransformCoordinate(m, segment.b));
}

} // namespace physics
