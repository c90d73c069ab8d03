#pragma once

#include "physics/Geom.h"

namespace physics
{
// A half-plane: everything behind the line is inside. The pose's x axis is the normal.
class Plane final : public Geom
{
public:
    explicit Plane(const math::Plane2D& plane);

    util::SharedPtr<Plane> Clone() const;

    const math::Plane2D& GetPlane() const { return m_plane; }

    void SetWorldPose(const math::Mat2D& m) override;
    float DistanceWorld(const math::Vec2& p) const override;
    math::Vec2 NormalWorld(const math::Vec2& p) const override;
    float Area() const override;
    float InertiaSansMass() const override;
    math::Vec2 GetClosestEdge(math::Vec2 p) const override;
    BoundingBox2 GetAABBWorld() const override;
    math::OBB2D GetOBBWorld() const override;
    BoundingCircle GetBCWorld() const override;

private:
    Plane(const Plane& other) = default;

    math::Plane2D m_plane;
};

} // namespace physics
