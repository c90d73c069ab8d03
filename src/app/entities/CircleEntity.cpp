#include "app/entities/CircleEntity.h"
#include "app/entities/EntityPainter.h"

#include "app/AppSettings.h"
#include "app/EntitySerializer.h"
#include "app/Scene.h"
#include "app/entities/JointEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/entities/ShapeGeometry.h"
#include "physics/Polygon.h"

#include <cmath>

namespace app
{
namespace
{
// Points of the outline that bound a circle for oriented boxes.
const int BOUND_POINTS = 32;
// Segments of the polygon that a circle becomes when scaled unevenly.
const int SCALED_POLYGON_SEGMENTS = 64;
// Past this many pixels across, the circle texture would be magnified and blur.
const float MAX_TEXTURE_PIXELS = 1024.0f;

} // namespace

CircleEntity::CircleEntity(util::SharedPtr<physics::Circle> circle)
    : FiniteGeomEntity(circle), m_circle(circle)
{
}

bool CircleEntity::IsTooBigForTexture(float radius, float pixelSize)
{
    return 2.0f * radius > MAX_TEXTURE_PIXELS * pixelSize;
}

bool CircleEntity::ErasedBy(const std::vector<physics::Linesegment>& stroke) const
{
    return m_circle->IntersectCountWorld(stroke) > 1;
}

bool CircleEntity::IsContainedBy(const physics::Polygon& lasso) const
{
    return lasso.DistanceWorld(m_geom->GetPosition()) < -GetRadius();
}

void CircleEntity::GetBoundPoints(std::vector<math::Vec2>& points)
{
    const std::vector<math::Vec2> vecs = CalcVecs(BOUND_POINTS);
    for (int i = 0; i < BOUND_POINTS; ++i)
        points.push_back(m_geom->GetPosition() + vecs[i] * GetRadius());
}

GeomEntityPtr CircleEntity::Clone() const
{
    util::SharedPtr<CircleEntity> clone = QLEX_NEW new CircleEntity(m_circle->Clone());
    clone->CopyFrom(this);
    return clone;
}

GeomEntityPtr CircleEntity::ScaledClone(math::Vec2 scale) const
{
    if (scale == math::Vec2(1, 1))
        return Clone();
    const float r = GetRadius();
    GeomEntityPtr clone;
    if (std::fabs(scale.x) == std::fabs(scale.y))
    {
        util::SharedPtr<physics::Circle> circle =
            QLEX_NEW new physics::Circle(m_geom->GetPosition(), std::fabs(scale.x) * r);
        circle->CopyFrom(*m_circle);
        // A mirror shows in the marker: its angle is reflected like the shape.
        if (scale.x < 0.0f)
            circle->SetWorldPose(circle->GetPose() *
                                 math::Mat2D::Rotation(math::PIf - 2.0f * circle->GetAngle()));
        if (scale.y < 0.0f)
            circle->SetWorldPose(circle->GetPose() * math::Mat2D::Rotation(-2.0f * circle->GetAngle()));
        clone = QLEX_NEW new CircleEntity(circle);
    }
    else
    {
        std::vector<math::Vec2> points = CalcVecs(SCALED_POLYGON_SEGMENTS);
        // The table closes the loop with its first point again.
        points.pop_back();
        for (math::Vec2& p : points)
            p = m_geom->GetPosition() + math::Vec2(p.x * scale.x * r, p.y * scale.y * r);
        clone = QLEX_NEW new PolyEntity(QLEX_NEW new physics::Polygon(points));
    }
    clone->CopyFrom(this);
    return clone;
}

void CircleEntity::SerializeTo(EntitySerializer& serializer) const
{
    FiniteGeomEntity::SerializeTo(serializer);
    serializer.Set("radius", GetRadius());
}

void CircleEntity::Deserialize(const EntitySerializer& serializer)
{
    // The radius is the circle's from its making: the serializer builds the circle with it.
    FiniteGeomEntity::Deserialize(serializer);
}

util::SharedPtr<CircleEntity> TransformIntoCircle(util::SharedPtr<PolyEntity> polygon)
{
    QLEX_ASSERT(polygon);
    Scene& scene = *Scene::GetInstancePtr();
    const GeomPtr oldGeom = polygon->GetGeom();
    const float radius = std::sqrt(oldGeom->Area() / math::PIf);
    util::SharedPtr<physics::Circle> circle = QLEX_NEW new physics::Circle(oldGeom->GetPosition(), radius);
    circle->SetWorldPose(oldGeom->GetPose());
    circle->SetDensity(oldGeom->GetDensity());
    circle->SetFriction(oldGeom->GetFriction());
    circle->SetRestitution(oldGeom->GetRestitution());
    util::SharedPtr<CircleEntity> entity = QLEX_NEW new CircleEntity(circle);
    entity->SetColor(polygon->GetColor());
    entity->m_zDepth = polygon->m_zDepth;

    // The circle takes the polygon's place on its body, so glued shapes stay glued.
    if (const util::SharedPtr<physics::Body> body = polygon->GetBody())
    {
        physics::Body::GeomSet geoms = body->GetGeoms();
        geoms.erase(oldGeom);
        geoms.insert(circle);
        body->SetGeoms(geoms);
    }
    scene.AddEntity(entity);

    for (const EntityPtr& e : std::vector<EntityPtr>(scene.GetEntities()))
    {
        JointEntity* joint = dynamic_cast<JointEntity*>(e.get());
        if (!joint || (joint->m_geoms[0] != oldGeom && joint->m_geoms[1] != oldGeom))
            continue;
        // The anchors keep their local points, now on the circle.
        const math::Vec2 local[2] = {joint->m_localPos[0], joint->m_localPos[1]};
        const GeomPtr geoms[2] = {joint->m_geoms[0] == oldGeom ? GeomPtr(circle) : joint->m_geoms[0],
                                  joint->m_geoms[1] == oldGeom ? GeomPtr(circle) : joint->m_geoms[1]};
        joint->AttachToLocal(geoms[0], local[0], geoms[1], local[1]);
        for (int i = 0; i < 2; ++i)
            if (geoms[i] == GeomPtr(circle) && local[i].Length() > radius)
            {
                scene.RemoveEntity(e);
                break;
            }
    }
    scene.RemoveEntity(polygon);
    return entity;
}

void CircleEntity::Draw() const
{
    EntityPainter::Paint(*this);
}

void CircleEntity::DrawBlack() const
{
    EntityPainter::PaintBlack(*this);
}

} // namespace app
