#pragma once

#include "physics/Geom.h"

namespace physics
{
// The shape of the fixed world: everything is inside it, and nothing collides with it.
class WorldGeom final : public Geom
{
public:
    WorldGeom();

    float DistanceWorld(const math::Vec2& p) const override;
    math::Vec2 NormalWorld(const math::Vec2& p) const override;
    float Area() const override;
    float InertiaSansMass() const override;
    math::Vec2 GetClosestEdge(math::Vec2 p) const override;
    BoundingBox2 GetAABBWorld() const override;
    math::OBB2D GetOBBWorld() const override;
    BoundingCircle GetBCWorld() const override;
};

} // namespace physics
