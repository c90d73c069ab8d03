#include "physics/Circle.h"

namespace physics
{
Circle::Circle(const math::Vec2& position, float radius) : Circular(Kind::Circle, radius)
{
    SetWorldPose(math::Mat2D::Translation(position));
}

util::SharedPtr<Circle> Circle::Clone() const
{
    util::SharedPtr<Circle> copy = QLEX_NEW new Circle(*this);
    copy->CopyFrom(*this);
    return copy;
}

int Circle::IntersectCountWorld(const Linesegment& segment) const
{
    const bool aInside = DistanceWorld(segment.a) < 0.0f;
    const bool bInside = DistanceWorld(segment.b) < 0.0f;
    if (aInside != bInside)
        return 1;
    if (aInside)
        return 0;
    return segment.Distance(m_position) < m_radius ? 2 : 0;
}

int Circle::IntersectCountWorld(const std::vector<Linesegment>& segments) const
{
    int count = 0;
    for (const Linesegment& s : segments)
        count += IntersectCountWorld(s);
    return count;
}

} // namespace physics
