#include "app/entities/PolyEntity.h"
#include "app/entities/EntityPainter.h"

#include "app/AppSettings.h"
#include "app/EntitySerializer.h"
#include "app/entities/ShapeGeometry.h"
#include "logging/Log.h"

#include <cmath>

namespace app
{

PolyEntity::PolyEntity(util::SharedPtr<physics::Polygon> polygon)
    : FiniteGeomEntity(polygon), m_polygon(polygon)
{
}

PolyEntity::~PolyEntity() = default;

float PolyEntity::GetMaxDist() const
{
    return PolygonMaxDist(*m_polygon);
}

bool PolyEntity::ErasedBy(const std::vector<physics::Linesegment>& stroke) const
{
    return m_polygon->IntersectCount(stroke) > 1;
}

bool PolyEntity::IsContainedBy(const physics::Polygon& lasso) const
{
    return lasso.Contains(*m_polygon);
}

void PolyEntity::GetBoundPoints(std::vector<math::Vec2>& points)
{
    const std::vector<math::Vec2>& vertices = m_polygon->GetWorldVertices();
    points.insert(points.end(), vertices.begin(), vertices.end());
}

GeomEntityPtr PolyEntity::Clone() const
{
    util::SharedPtr<PolyEntity> clone = QLEX_NEW new PolyEntity(m_polygon->Clone());
    clone->m_resources = m_resources;
    clone->CopyFrom(this);
    return clone;
}

GeomEntityPtr PolyEntity::ScaledClone(math::Vec2 scale) const
{
    if (scale == math::Vec2(1, 1))
        return Clone();
    util::SharedPtr<physics::Polygon> polygon = m_polygon->Scale(scale);
    polygon->SetPos(m_geom->GetPosition());
    util::SharedPtr<PolyEntity> clone = QLEX_NEW new PolyEntity(polygon);
    clone->CopyFrom(this);
    return clone;
}

void PolyEntity::SerializeTo(EntitySerializer& serializer) const
{
    FiniteGeomEntity::SerializeTo(serializer);
    serializer.Set("vecs", m_polygon->GetVertices());
}

void PolyEntity::Draw() const
{
    EntityPainter::Paint(*this);
}

void PolyEntity::DrawBlack() const
{
    EntityPainter::PaintBlack(*this);
}

} // namespace app
