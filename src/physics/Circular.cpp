#include "physics/Circular.h"

namespace physics
{
Circular::Circular(Kind kind, float radius) : Geom(kind), m_radius(radius) {}

float Circular::DistanceWorld(const math::Vec2& p) const
{
    return (p - m_position).Length() - m_radius;
}

math::Vec2 Circular::NormalWorld(const math::Vec2& p) const
{
    math::Vec2 n = p - m_position;
    n.Normalize();
    return n;
}

float Circular::Area() const
{
    return math::PIf * m_radius * m_radius;
}

float Circular::InertiaSansMass() const
{
    return m_radius * m_radius / 2.0f;
}

math::Vec2 Circular::GetClosestEdge(math::Vec2 p) const
{
    math::Vec2 n = p - m_position;
    if (n.Normalize() == 0.0f)
        return m_position + math::Vec2(m_radius, 0.0f);
    return m_position + n * m_radius;
}

BoundingBox2 Circular::GetAABBWorld() const
{
    const math::Vec2 r(m_radius, m_radius);
    return BoundingBox2(m_position - r, m_position + r);
}

math::OBB2D Circular::GetOBBWorld() const
{
    return math::OBB2D::FromCenterRad(m_position, m_radius);
}

BoundingCircle Circular::GetBCWorld() const
{
    return BoundingCircle(m_position, m_radius);
}

} // namespace physics
