#include "physics/WorldGeom.h"

namespace physics
{
WorldGeom::WorldGeom() : Geom(Kind::World) {}

float WorldGeom::DistanceWorld(const math::Vec2&) const
{
    return -1.0f;
}

math::Vec2 WorldGeom::NormalWorld(const math::Vec2&) const
{
    return math::Vec2(0.0f, 0.0f);
}

float WorldGeom::Area() const
{
    return math::INF;
}

float WorldGeom::InertiaSansMass() const
{
    return math::INF;
}

math::Vec2 WorldGeom::GetClosestEdge(math::Vec2 p) const
{
    return p;
}

BoundingBox2 WorldGeom::GetAABBWorld() const
{
    return BoundingBox2::Empty();
}

math::OBB2D WorldGeom::GetOBBWorld() const
{
    return math::OBB2D::Empty();
}

BoundingCircle WorldGeom::GetBCWorld() const
{
    return BoundingCircle::Empty();
}

} // namespace physics
