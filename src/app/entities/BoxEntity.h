#pragma once

#include "app/entities/FiniteGeomEntity.h"
#include "physics/Box.h"
#include "physics/Linesegment.h"

namespace app
{
class BoxEntity final : public FiniteGeomEntity
{
public:
    explicit BoxEntity(util::SharedPtr<physics::Box> box);

    void Draw() const override;
    void DrawBlack() const override;
    bool ErasedBy(const std::vector<physics::Linesegment>& stroke) const override;
    bool IsContainedBy(const physics::Polygon& lasso) const override;
    void GetBoundPoints(std::vector<math::Vec2>& points) override;
    GeomEntityPtr Clone() const override;
    GeomEntityPtr ScaledClone(math::Vec2 scale) const override;
    void SerializeTo(EntitySerializer& serializer) const override;
    void Deserialize(const EntitySerializer& serializer) override;

    // The four sides in world coordinates, in corner order.
    std::vector<physics::Linesegment> GetSides() const;
    math::Vec2 GetHalfSize() const;

    util::SharedPtr<physics::Box> m_box;
};

} // namespace app
