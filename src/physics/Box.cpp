#include "physics/Box.h"

#include <cmath>

namespace physics
{
Box::Box(const math::Vec2& size, const math::Vec2& position)
    : Geom(Kind::Box), m_localBox(math::OBB2D::FromCenterRad(math::Vec2(0.0f, 0.0f), 0.0f))
{
    m_localBox.halfExtent[0] = size.x / 2.0f;
    m_localBox.halfExtent[1] = size.y / 2.0f;
    m_worldBox = m_localBox;
    SetWorldPose(math::Mat2D::Translation(position));
}

util::SharedPtr<Box> Box::Clone() const
{
    util::SharedPtr<Box> copy = QLEX_NEW new Box(*this);
    copy->CopyFrom(*this);
    return copy;
}

void Box::SetSize(const math::Vec2& size)
{
    m_localBox.halfExtent[0] = size.x / 2.0f;
    m_localBox.halfExtent[1] = size.y / 2.0f;
    m_worldBox.halfExtent[0] = m_localBox.halfExtent[0];
    m_worldBox.halfExtent[1] = m_localBox.halfExtent[1];
    OnGeomChange();
}

void Box::SetOBB(const math::OBB2D& box)
{
    m_localBox = box;
    m_worldBox = math::Transform(m_pose, m_localBox);
    OnGeomChange();
}

void Box::SetWorldPose(const math::Mat2D& m)
{
    Geom::SetWorldPose(m);
    m_worldBox = math::Transform(m, m_localBox);
}

float Box::DistanceWorld(const math::Vec2& p) const
{
    return m_worldBox.Distance(p);
}

math::Vec2 Box::NormalWorld(const math::Vec2& p) const
{
    // The nearest face decides; at a tie, the second axis.
    const math::Vec2 d = p - m_worldBox.center;
    const float s0 = math::Dot(d, m_worldBox.axis[0]);
    const float s1 = math::Dot(d, m_worldBox.axis[1]);
    if (std::fabs(std::fabs(s1) - m_worldBox.halfExtent[1]) >
        std::fabs(std::fabs(s0) - m_worldBox.halfExtent[0]))
        return s0 >= 0.0f ? m_worldBox.axis[0] : -m_worldBox.axis[0];
    return s1 >= 0.0f ? m_worldBox.axis[1] : -m_worldBox.axis[1];
}

float Box::Area() const
{
    return 4.0f * m_localBox.halfExtent[0] * m_localBox.halfExtent[1];
}

float Box::InertiaSansMass() const
{
    const float w = 2.0f * m_localBox.halfExtent[0];
    const float h = 2.0f * m_localBox.halfExtent[1];
    return (w * w + h * h) / 12.0f;
}

math::Vec2 Box::GetClosestEdge(math::Vec2 p) const
{
    return p - NormalWorld(p) * DistanceWorld(p);
}

BoundingBox2 Box::GetAABBWorld() const
{
    math::Vec2 corners[4];
    m_worldBox.CalcCorners(corners);
    BoundingBox2 box = BoundingBox2::Empty();
    for (const math::Vec2& c : corners)
        box.Include(c);
    return box;
}

math::OBB2D Box::GetOBBWorld() const
{
    return m_worldBox;
}

BoundingCircle Box::GetBCWorld() const
{
    const math::Vec2 e(m_worldBox.halfExtent[0], m_worldBox.halfExtent[1]);
    return BoundingCircle(m_worldBox.center, e.Length());
}

} // namespace physics
