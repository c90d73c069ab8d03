#pragma once

#include "app/entities/FiniteGeomEntity.h"
#include "physics/Polygon.h"

#include <memory>

namespace app
{
class PolyEntity final : public FiniteGeomEntity
{
public:
    // What a polygon draws with, made by the painter on its first picture and shared with its clones.
    struct RenderingResources;

    explicit PolyEntity(util::SharedPtr<physics::Polygon> polygon);
    ~PolyEntity() override;

    void Draw() const override;
    void DrawBlack() const override;
    bool ErasedBy(const std::vector<physics::Linesegment>& stroke) const override;
    bool IsContainedBy(const physics::Polygon& lasso) const override;
    void GetBoundPoints(std::vector<math::Vec2>& points) override;
    GeomEntityPtr Clone() const override;
    GeomEntityPtr ScaledClone(math::Vec2 scale) const override;
    void SerializeTo(EntitySerializer& serializer) const override;

    // The distance at which the picture's distance texture is cut off.
    float GetMaxDist() const;
    // What the painter keeps for the polygon's picture; clones share it.
    std::shared_ptr<RenderingResources>& GetPictureResources() const { return m_resources; }

    util::SharedPtr<physics::Polygon> m_polygon;

private:
    mutable std::shared_ptr<RenderingResources> m_resources;
};

} // namespace app
