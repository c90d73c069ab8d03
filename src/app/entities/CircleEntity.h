#pragma once

#include "app/entities/FiniteGeomEntity.h"
#include "physics/Circle.h"

namespace app
{
class CircleEntity final : public FiniteGeomEntity
{
public:
    explicit CircleEntity(util::SharedPtr<physics::Circle> circle);

    void Draw() const override;
    void DrawBlack() const override;
    bool ErasedBy(const std::vector<physics::Linesegment>& stroke) const override;
    bool IsContainedBy(const physics::Polygon& lasso) const override;
    void GetBoundPoints(std::vector<math::Vec2>& points) override;
    GeomEntityPtr Clone() const override;
    GeomEntityPtr ScaledClone(math::Vec2 scale) const override;
    void SerializeTo(EntitySerializer& serializer) const override;
    void Deserialize(const EntitySerializer& serializer) override;

    float GetRadius() const { return m_circle->GetRadius(); }
    // Whether the circle is too big on the screen for its texture, which would blur.
    static bool IsTooBigForTexture(float radius, float pixelSize);

    util::SharedPtr<physics::Circle> m_circle;
};

class PolyEntity;

// Replaces a polygon of the scene by a circle of the same area at its place: same body, density, friction,
// restitution, colour and depth. Joints on the polygon move to the circle; one whose anchor falls outside
// the circle goes. Returns the circle.
util::SharedPtr<CircleEntity> TransformIntoCircle(util::SharedPtr<PolyEntity> polygon);

} // namespace app
