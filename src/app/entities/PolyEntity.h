#pragma once

#include "app/entities/FiniteGeomEntity.h"
#include "physics/Polygon.h"

#include <memory>

namespace app
{
class App;

class PolyEntity final : public FiniteGeomEntity
{
public:
    // What a polygon draws with, made on its first drawing and shared with its clones.
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
    void LoadRenderingResources() const;

    util::SharedPtr<physics::Polygon> m_polygon;

private:
    // Boxes and circle of the polygon, as the application's debug switches ask.
    void DrawDebugPictures(const App& app) const;

    std::shared_ptr<RenderingResources> m_resources;
};

} // namespace app
