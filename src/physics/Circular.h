#pragma once

#include "physics/Geom.h"

namespace physics
{
// A disc: the base of circles and of water particles' shapes.
class Circular : public Geom
{
public:
    float DistanceWorld(const math::Vec2& p) const override;
    math::Vec2 NormalWorld(const math::Vec2& p) const override;
    float Area() const override;
    float InertiaSansMass() const override;
    math::Vec2 GetClosestEdge(math::Vec2 p) const override;
    BoundingBox2 GetAABBWorld() const override;
    math::OBB2D GetOBBWorld() const override;
    BoundingCircle GetBCWorld() const override;

    float GetRadius() const { return m_radius; }

protected:
    Circular(Kind kind, float radius);
    Circular(const Circular& other) = default;

    float m_radius;
};

} // namespace physics
