#include "app/entities/PlaneEntity.h"
#include "app/entities/EntityPainter.h"

#include "app/AppSettings.h"
#include "app/Camera.h"
#include "app/Scene.h"
#include "app/entities/ShapeGeometry.h"
#include "physics/Linesegment.h"

namespace app
{
namespace
{
} // namespace

PlaneEntity::PlaneEntity(util::SharedPtr<physics::Plane> plane) : GeomEntity(plane), m_plane(plane) {}

void PlaneEntity::CalcVecsAndDist(math::Vec2 corners[4], float dists[4]) const
{
    const Camera& camera = *Scene::GetInstancePtr()->GetCamera();
    const math::Vec2 size = camera.GetViewSize();
    const math::Vec2 guiCorners[4] = {math::Vec2(0, 0), math::Vec2(0, size.y), size, math::Vec2(size.x, 0)};
    // While a scale drag previews the plane elsewhere, the view is seen from the plane's own place. A
    // preview that flattens everything to a line shows no half plane: the distances of nothing.
    if (m_scaleTransform.Determinant() == 0.0f)
    {
        for (int i = 0; i < 4; ++i)
        {
            corners[i] = math::Vec2(0, 0);
            dists[i] = math::INF;
        }
        return;
    }
    const math::Mat3 unscale = math::Inverted(m_scaleTransform);
    for (int i = 0; i < 4; ++i)
    {
        corners[i] = math::TransformCoordinate(unscale, camera.GUIToWorld(guiCorners[i]));
        dists[i] = m_plane->DistanceWorld(corners[i]);
    }
}

bool PlaneEntity::ErasedBy(const std::vector<physics::Linesegment>& stroke) const
{
    for (const physics::Linesegment& segment : stroke)
        if ((m_plane->DistanceWorld(segment.a) < 0.0f) != (m_plane->DistanceWorld(segment.b) < 0.0f))
            return true;
    return false;
}

bool PlaneEntity::IsContainedBy(const physics::Polygon&) const
{
    return false;
}

void PlaneEntity::GetBoundPoints(std::vector<math::Vec2>&) {}

GeomEntityPtr PlaneEntity::Clone() const
{
    util::SharedPtr<PlaneEntity> clone = QLEX_NEW new PlaneEntity(m_plane->Clone());
    clone->CopyFrom(this);
    return clone;
}

GeomEntityPtr PlaneEntity::ScaledClone(math::Vec2 scale) const
{
    if (scale == math::Vec2(1, 1))
        return Clone();
    // Normals go through the transposed inverse of the scale; the line keeps its point at the pose.
    const math::Vec2 point = m_geom->GetPosition();
    const math::Vec2 n = m_plane->GetPlane().normal;
    math::Plane2D plane = math::Plane2D::FromPointNormal(point, math::Vec2(n.x / scale.x, n.y / scale.y));
    plane.Normalize();
    util::SharedPtr<physics::Plane> newPlane = QLEX_NEW new physics::Plane(plane);
    util::SharedPtr<PlaneEntity> clone = QLEX_NEW new PlaneEntity(newPlane);
    clone->CopyFrom(this);
    return clone;
}

void PlaneEntity::Draw() const
{
    EntityPainter::Paint(*this);
}

void PlaneEntity::DrawBlack() const
{
    EntityPainter::PaintBlack(*this);
}

} // namespace app
