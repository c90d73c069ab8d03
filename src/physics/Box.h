#pragma once

#include "physics/Geom.h"

namespace physics
{
// A rectangle. The world box is kept in step with the pose, so that collision reads it without work.
class Box final : public Geom
{
public:
    Box(const math::Vec2& size, const math::Vec2& position);

    util::SharedPtr<Box> Clone() const;

    void SetSize(const math::Vec2& size);
    void SetOBB(const math::OBB2D& box);
    const math::OBB2D& GetLocalOBB() const { return m_localBox; }
    const math::OBB2D& GetWorldOBB() const { return m_worldBox; }

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
    Box(const Box& other) = default;

    math::OBB2D m_localBox;
    math::OBB2D m_worldBox;
};

} // namespace physics
