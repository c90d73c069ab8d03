#include "physics/Plane.h"

namespace physics
{
Plane::Plane(const math::Plane2D& plane) : Geom(Kind::Plane), m_plane(plane)
{
    // The pose turns x onto the normal: its cosine and sine are the unit normal itself, which keeps an
    // axis-aligned plane exact where the cosine of a computed angle would not be. A zero normal has angle 0.
    math::Mat2D rotation;
    if (plane.normal.Length() > 0.0f)
    {
        m_plane.Normalize();
        rotation = math::Mat2D(m_plane.normal.x, m_plane.normal.y, 0.0f, 0.0f);
    }
    SetWorldPose(math::Mat2D::Translation(m_plane.normal * -m_plane.distance) * rotation);
}

util::SharedPtr<Plane> Plane::Clone() const
{
    util::SharedPtr<Plane> copy = QLEX_NEW new Plane(*this);
    copy->CopyFrom(*this);
    return copy;
}

void Plane::SetWorldPose(const math::Mat2D& m)
{
    Geom::SetWorldPose(m);
    m_plane.normal = math::Vec2(m.c, m.s);
    m_plane.distance = -math::Dot(m_plane.normal, math::Vec2(m.tx, m.ty));
}

float Plane::DistanceWorld(const math::Vec2& p) const
{
    return math::Dot(p, m_plane.normal) + m_plane.distance;
}

math::Vec2 Plane::NormalWorld(const math::Vec2&) const
{
    return m_plane.normal;
}

float Plane::Area() const
{
    return math::INF;
}

float Plane::InertiaSansMass() const
{
    return math::INF;
}

math::Vec2 Plane::GetClosestEdge(math::Vec2 p) const
{
    return p - m_plane.normal * DistanceWorld(p);
}

BoundingBox2 Plane::GetAABBWorld() const
{
    return BoundingBox2::Everything();
}

math::OBB2D Plane::GetOBBWorld() const
{
    return math::OBB2D::Everything();
}

BoundingCircle Plane::GetBCWorld() const
{
    return BoundingCircle::Everything();
}

} // namespace physics
