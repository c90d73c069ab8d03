#include "app/entities/CircleEntity.h"

#include "app/App.h"
#include "app/EntitySerializer.h"
#include "app/Scene.h"
#include "app/entities/DrawColor.h"
#include "app/entities/JointEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/entities/ShapeGeometry.h"
#include "math/MatrixGL.h"
#include "physics/Polygon.h"
#include "rendering/GLContext.h"
#include "rendering/Image.h"
#include "rendering/Renderer.h"

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
    // A border wider than the circle leaves no inside; a fan of negative radius would be a mirrored disc.
    if (r <= 0.0f)
        return;
    int first, last;
    CircleFanRange(cake, first, last);
    const std::vector<math::Vec2>& vecs = CircleVecs();
    glBegin(GL_TRIANGLE_FAN);
    glVertex2f(0, 0);
    for (int i = first; i <= last; ++i)
        glVertex2f(vecs[i].x * r, vecs[i].y * r);
    glEnd();
}

rendering::Texture* CreateTexture(bool cake)
{
    const std::vector<float> texels = CircleTexture(CIRCLE_TEXTURE_SIZE, cake);
    rendering::ImageFloatPtr image =
        QLEX_NEW new rendering::ImageFloat(CIRCLE_TEXTURE_SIZE, CIRCLE_TEXTURE_SIZE);
    for (int j = 0; j < CIRCLE_TEXTURE_SIZE; ++j)
        for (int i = 0; i < CIRCLE_TEXTURE_SIZE; ++i)
            (*image)(i, j) = texels[size_t(j) * CIRCLE_TEXTURE_SIZE + i];
    // Mipmapped, so that small circles stay smooth; clamped, so that the edge doesn't wrap.
    return new rendering::Texture(
        image, rendering::Texture::ImageType(GL_ALPHA, true, rendering::Texture::Quality(1, 1, 1, 1, 1)));
}

// The textured square of a circle of radius r about the origin.
void DrawRect(const rendering::Texture& texture, float r)
{
    if (r <= 0.0f)
        return;
    glBindTexture(GL_TEXTURE_2D, texture.GetName());
    rendering::Renderer::GetInstancePtr()->DrawRect(math::Vec2(0, 0), 2.0f * r * SquareScale);
}
} // namespace

util::SharedPtr<util::Mentor<rendering::Texture>> CircleEntity::s_circleTex;
util::SharedPtr<util::Mentor<rendering::Texture>> CircleEntity::s_circleTexNoCake;

void CircleEntity::LoadResources()
{
    if (s_circleTex)
        return;
    s_circleTex = QLEX_NEW new util::Mentor<rendering::Texture>([] { return CreateTexture(true); });
    s_circleTexNoCake = QLEX_NEW new util::Mentor<rendering::Texture>([] { return CreateTexture(false); });
}

CircleEntity::CircleEntity(util::SharedPtr<physics::Circle> circle)
    : FiniteGeomEntity(circle), m_circle(circle)
{
}

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
    const float inside = showBorder ? r - bw : r;
    const math::Vec4 border = App::GetInstancePtr()->GetBorderColor(this);
    glPushMatrix();
    m_geom->GetPose().MultToGL();
    if (m_color.w < 1.0f || IsTooBigForTexture(r, app.GetPixelSize()))
    {
        // Geometry: the inside in front, the whole disc in the border colour behind it. The inside leaves
        // the slice out, so the border colour shows the rotation.
        glEnable(GL_DEPTH_TEST);
        SetDrawColor(m_color);
        DrawCircle(inside, true);
        SetDrawColor(border);
        DrawCircle(r, false);
        glDisable(GL_DEPTH_TEST);
    }
    else
    {
        // The smooth pictures: the border colour's disc, and over it the inside with its slice cut out.
        LoadResources();
        glPushAttrib(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_TEXTURE_BIT);
        glEnable(GL_TEXTURE_2D);
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        SetDrawColor(border);
        DrawRect(*s_circleTexNoCake->GetPtr(), r);
        SetDrawColor(m_color);
        DrawRect(*s_circleTex->GetPtr(), inside);
        glBindTexture(GL_TEXTURE_2D, 0);
        glPopAttrib();
    }
    glPopMatrix();
}

void CircleEntity::DrawBlack() const
{
    glPushMatrix();
    m_geom->GetPose().MultToGL();
    SetDrawColor(math::Vec4(0, 0, 0, 0));
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

} // namespace app
