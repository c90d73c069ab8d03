#include "app/entities/BoxEntity.h"
#include "app/entities/EntityPainter.h"

#include "app/AppSettings.h"
#include "app/EntitySerializer.h"
#include "app/entities/PolyEntity.h"
#include "app/entities/ShapeGeometry.h"
#include "physics/Polygon.h"
#include "util/StringUtil.h"

#include <cmath>

namespace app
{
namespace
{
// Axes closer to perpendicular than this still make a box.
const float PERPENDICULAR_TOLERANCE = 0.0001f;

} // namespace

BoxEntity::BoxEntity(util::SharedPtr<physics::Box> box) : FiniteGeomEntity(box), m_box(box) {}

math::Vec2 BoxEntity::GetHalfSize() const
{
    const math::OBB2D& local = m_box->GetLocalOBB();
    return math::Vec2(local.halfExtent[0], local.halfExtent[1]);
}

std::vector<physics::Linesegment> BoxEntity::GetSides() const
{
    math::Vec2 corners[4];
    m_box->GetWorldOBB().CalcCorners(corners);
    std::vector<physics::Linesegment> sides;
    for (int i = 0; i < 4; ++i)
        sides.push_back(physics::Linesegment(corners[i], corners[(i + 1) % 4]));
    return sides;
}

bool BoxEntity::ErasedBy(const std::vector<physics::Linesegment>& stroke) const
{
    return physics::IntersectCount(stroke, GetSides()) == 2;
}

bool BoxEntity::IsContainedBy(const physics::Polygon& lasso) const
{
    math::Vec2 corners[4];
    m_box->GetWorldOBB().CalcCorners(corners);
    for (const math::Vec2& corner : corners)
        if (lasso.DistanceWorld(corner) > 0.0f)
            return false;
    return physics::IntersectCount(lasso.GetWorldLines(), GetSides()) == 0;
}

void BoxEntity::GetBoundPoints(std::vector<math::Vec2>& points)
{
    math::Vec2 corners[4];
    m_box->GetWorldOBB().CalcCorners(corners);
    points.insert(points.end(), corners, corners + 4);
}

GeomEntityPtr BoxEntity::Clone() const
{
    util::SharedPtr<BoxEntity> clone = QLEX_NEW new BoxEntity(m_box->Clone());
    clone->CopyFrom(this);
    return clone;
}

GeomEntityPtr BoxEntity::ScaledClone(math::Vec2 scale) const
{
    if (scale == math::Vec2(1, 1))
        return Clone();
    const math::OBB2D box = m_box->GetWorldOBB();
    math::Vec2 axes[2];
    float half[2];
    for (int i = 0; i < 2; ++i)
    {
        const math::Vec2 scaled(box.axis[i].x * scale.x, box.axis[i].y * scale.y);
        axes[i] = scaled / scaled.Length();
        half[i] = box.halfExtent[i] * scaled.Length();
    }
    GeomEntityPtr clone;
    if (std::fabs(math::Dot(axes[0], axes[1])) < PERPENDICULAR_TOLERANCE)
    {
        // A mirror turns the pair left-handed; swapping the axes makes it a proper rotation again.
        if (math::Cross(axes[0], axes[1]) < 0.0f)
        {
            std::swap(axes[0], axes[1]);
            std::swap(half[0], half[1]);
        }
        util::SharedPtr<physics::Box> newBox = m_box->Clone();
        newBox->SetSize(math::Vec2(2.0f * half[0], 2.0f * half[1]));
        math::Mat2D pose = math::Mat2D::Translation(box.center);
        pose.SetColumn0(axes[0]);
        newBox->SetWorldPose(pose);
        clone = QLEX_NEW new BoxEntity(newBox);
    }
    else
    {
        // A skewed box is a parallelogram: a polygon through the four scaled corners.
        const math::Vec2 a0 = axes[0] * half[0];
        const math::Vec2 a1 = axes[1] * half[1];
        const math::Vec2 corners[4] = {box.center + a0 + a1, box.center + a0 - a1, box.center - a0 - a1,
                                       box.center - a0 + a1};
        std::vector<math::Vec2> points;
        for (int i = 0; i < 4; ++i)
            physics::AddPolygonSide(points, corners[i], corners[(i + 1) % 4]);
        util::SharedPtr<physics::Polygon> polygon = QLEX_NEW new physics::Polygon(points);
        clone = QLEX_NEW new PolyEntity(polygon);
    }
    clone->CopyFrom(this);
    return clone;
}

void BoxEntity::SerializeTo(EntitySerializer& serializer) const
{
    FiniteGeomEntity::SerializeTo(serializer);
    serializer.Set("size", GetHalfSize() * 2.0f);
}

void BoxEntity::Deserialize(const EntitySerializer& serializer)
{
    if (serializer.Has("size"))
    {
        const math::Vec2 size = serializer.Get<math::Vec2>("size");
        // A box without extent has no mass and no outline: physics would drop it at once.
        if (!(size.x > 0.0f && size.y > 0.0f && math::IsFinite(size.x) && math::IsFinite(size.y)))
            QLEX_THROW(BadDataException("Box size must be positive: " + util::ToString(size.x) + ", " +
                                        util::ToString(size.y)));
        m_box->SetSize(size);
    }
    FiniteGeomEntity::Deserialize(serializer);
}

void BoxEntity::Draw() const
{
    EntityPainter::Paint(*this);
}

void BoxEntity::DrawBlack() const
{
    EntityPainter::PaintBlack(*this);
}

} // namespace app
