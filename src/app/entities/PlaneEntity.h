#pragma once

#include "app/entities/GeomEntity.h"
#include "physics/Plane.h"

namespace app
{
// A half-plane: infinite, so its picture is the part of the view behind its line.
class PlaneEntity final : public GeomEntity
{
public:
    explicit PlaneEntity(util::SharedPtr<physics::Plane> plane);

    void Draw() const override;
    void DrawBlack() const override;
    bool ErasedBy(const std::vector<physics::Linesegment>& stroke) const override;
    bool IsContainedBy(const physics::Polygon& lasso) const override;
    void GetBoundPoints(std::vector<math::Vec2>& points) override;
    GeomEntityPtr Clone() const override;
    GeomEntityPtr ScaledClone(math::Vec2 scale) const override;

    // The corners of the view in world coordinates, from the camera, and the plane's signed distance at each.
    void CalcVecsAndDist(math::Vec2 corners[4], float dists[4]) const;

    util::SharedPtr<physics::Plane> m_plane;
};

} // namespace app
