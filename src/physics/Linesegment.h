#pragma once

#include "math/Math.h"

#include <vector>

namespace physics
{
// A segment from a to b.
class Linesegment
{
public:
    Linesegment() = default;
    Linesegment(const math::Vec2& a_, const math::Vec2& b_) : a(a_), b(b_) {}

    // The closest point and its parameter t along a..b (0 at a, 1 at b). A degenerate segment gives p.
    math::Vec2 ClosestPoint(const math::Vec2& p, float& t) const;
    math::Vec2 ClosestPoint(const math::Vec2& p) const;
    float DistanceSq(const math::Vec2& p) const;
    float Distance(const math::Vec2& p) const;
    bool IsPointOnTheLeft(const math::Vec2& p) const;

    math::Vec2 a;
    math::Vec2 b;
};

// Two segments joined end to start don't intersect; two sharing their first or their last point do.
bool LineSegmentIntersectTest(const math::Vec2& a, const math::Vec2& b, const math::Vec2& c,
                              const math::Vec2& d, math::Vec2* out = nullptr);
bool Intersects(const Linesegment& s0, const Linesegment& s1, math::Vec2* out = nullptr);
int IntersectCount(const Linesegment& segment, const std::vector<Linesegment>& list);
int IntersectCount(const std::vector<Linesegment>& list0, const std::vector<Linesegment>& list1);
Linesegment Transform(const math::Mat2D& m, const Linesegment& segment);

} // namespace physics
