#include "app/entities/CircleEntity.h"

#include "app/App.h"
#include "app/entities/AppLinks.h"
#include "app/EntitySerializer.h"
#include "app/entities/PolyEntity.h"
#include "app/entities/ShapeGeometry.h"
#include "math/MatrixGL.h"
#include "physics/Polygon.h"

#include <GL/gl.h>

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

void DrawCircle(float r, bool cake)
{
    int first, last;
    CircleFanRange(cake, first, last);
    const std::vector<math::Vec2>& vecs = CircleVecs();
    glBegin(GL_TRIANGLE_FAN);
    glVertex2f(0, 0);
    for (int i = first; i <= last; ++i)
        glVertex2f(vecs[i].x * r, vecs[i].y * r);
    glEnd();
}

void Color(const math::Vec4& c)
{
    glColor4f(c.x, c.y, c.z, c.w);
}
} // namespace

CircleEntity::CircleEntity(util::SharedPtr<physics::Circle> circle) : FiniteGeomEntity(circle), m_circle(circle) {}

bool CircleEntity::IsTooBigForTexture(float radius, float pixelSize)
{
    return 2.0f * radius > MAX_TEXTURE_PIXELS * pixelSize;
}

void CircleEntity::Draw() const
{
    const App& app = *App::GetInstancePtr();
    const bool showBorder = app.m_borders || m_selectedLook || m_markedLook;
    const float r = GetRadius();
    const float bw = app.GetObjectBorderWidth();
    glPushMatrix();
    m_geom->GetPose().MultToGL();
    // The inside in front, the whole disc in the border colour behind it; the slice of the inside is left
    // out, so the border colour shows the rotation.
    glEnable(GL_DEPTH_TEST);
    Color(m_color);
    DrawCircle(showBorder ? r - bw : r, true);
    Color(links::BorderColor(this));
    DrawCircle(r, false);
    glDisable(GL_DEPTH_TEST);
    glPopMatrix();
}

void CircleEntity::DrawBlack() const
{
    glPushMatrix();
    m_geom->GetPose().MultToGL();
    glColor4f(0, 0, 0, 0);
    DrawCircle(GetRadius(), false);
    glPopMatrix();
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
            circle->SetWorldPose(circle->GetPose() * math::Mat2D::Rotation(math::PIf - 2.0f * circle->GetAngle()));
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

} // namespace app
