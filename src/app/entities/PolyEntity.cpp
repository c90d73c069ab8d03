#include "app/entities/PolyEntity.h"

#include "app/App.h"
#include "app/EntitySerializer.h"
#include "app/entities/DrawColor.h"
#include "app/entities/ShapeGeometry.h"
#include "logging/Log.h"
#include "math/MatrixGL.h"
#include "rendering/GLContext.h"
#include "rendering/Image.h"
#include "rendering/TextureManager.h"

#include <cmath>

namespace app
{
// The distance texture of one polygon, in the texture manager, which makes it again after a window change.
struct PolyEntity::RenderingResources
{
    float m_maxDist = 0;
    rendering::TextureProxy m_texture;

    void Bind() const
    {
        glBindTexture(GL_TEXTURE_2D, m_texture->GetName());
        glEnable(GL_TEXTURE_2D);
    }
    void Unbind() const
    {
        glDisable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, 0);
    }
};

namespace
{
bool s_toldTransparency = false;
// Segments of the debug picture of a bounding circle.
const int BC_SEGMENTS = 64;
const math::Vec4 DEBUG_COLOR(0.2f, 0.2f, 0.5f, 0.5f);

void DrawOutline(const math::OBB2D& box)
{
    math::Vec2 corners[4];
    box.CalcCorners(corners);
    glBegin(GL_LINE_LOOP);
    for (const math::Vec2& c : corners)
        glVertex2f(c.x, c.y);
    glEnd();
}

void DrawMap(const math::Vec2 corners[4])
{
    glBegin(GL_QUADS);
    for (int i = 0; i < 4; ++i)
    {
        const math::Vec2 texCoord = PolygonMapTexCoord(i);
        glTexCoord2f(texCoord.x, texCoord.y);
        glVertex2f(corners[i].x, corners[i].y);
    }
    glEnd();
}

// An alpha test against the distance texture cuts the shape out: texels at or below the threshold stay.
void DrawFixedFunction(const math::Vec2 corners[4], const math::Vec4& color, float threshold)
{
    SetDrawColor(math::Vec4(color.x, color.y, color.z, 1.0f));
    // The texture's alpha goes to the alpha test, so the colour's own alpha needs the constant blend colour.
    if (color.w < 1.0f)
    {
        if (rendering::HasBlendColor())
        {
            glBlendColor(1, 1, 1, color.w);
            glEnable(GL_BLEND);
            glBlendFunc(GL_CONSTANT_ALPHA, GL_ONE_MINUS_CONSTANT_ALPHA);
        }
        else if (!s_toldTransparency)
        {
            // Once: the same picture comes every frame.
            s_toldTransparency = true;
            Log(logging::Error,
                "Polygon transparency not supported by your computer. Try switching on shaders "
                "(anti-aliasing in the options menu), or upgrade your graphics drivers.");
        }
    }
    glEnable(GL_ALPHA_TEST);
    glAlphaFunc(GL_LEQUAL, threshold);
    DrawMap(corners);
    glDisable(GL_ALPHA_TEST);
    if (color.w < 1.0f && rendering::HasBlendColor())
    {
        // Blending off again: an opaque layer after this one (a selected border) would otherwise be
        // blended by the texture's alpha, which is the distance, not a transparency.
        glDisable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glBlendColor(1, 1, 1, 1);
    }
}
} // namespace

PolyEntity::PolyEntity(util::SharedPtr<physics::Polygon> polygon)
    : FiniteGeomEntity(polygon), m_polygon(polygon)
{
}

PolyEntity::~PolyEntity() = default;

float PolyEntity::GetMaxDist() const
{
    return m_resources ? m_resources->m_maxDist : PolygonMaxDist(*m_polygon);
}

void PolyEntity::LoadRenderingResources() const
{
    if (m_resources)
        return;
    auto resources = std::make_shared<RenderingResources>();
    resources->m_maxDist = PolygonMaxDist(*m_polygon);
    const std::vector<float> texels = PolygonDistanceTexture(*m_polygon, resources->m_maxDist);
    const unsigned w = m_polygon->GetDistanceMap().GetWidth();
    const unsigned h = m_polygon->GetDistanceMap().GetHeight();
    rendering::ImageFloatPtr image = QLEX_NEW new rendering::ImageFloat(w, h);
    for (unsigned j = 0; j < h; ++j)
        for (unsigned i = 0; i < w; ++i)
            (*image)(i, j) = texels[size_t(j) * w + i];
    // Not mipmapped: the alpha test cuts at exact distances, which averaged levels would move.
    resources->m_texture = rendering::TextureManager::GetInstancePtr()->Load(
        image, rendering::Texture::ImageType(GL_ALPHA, false, rendering::Texture::Quality(1, 1, 1, 1, 0)));
    const_cast<PolyEntity*>(this)->m_resources = resources;
}

void PolyEntity::DrawDebugPictures(const App& app) const
{
    if (!app.m_drawOBBs && !app.m_drawMapOBBs && !app.m_drawBCs)
        return;
    SetDrawColor(DEBUG_COLOR);
    if (app.m_drawOBBs)
        DrawOutline(m_polygon->GetLocalOBB());
    if (app.m_drawMapOBBs)
        DrawOutline(m_polygon->GetMapBox());
    if (app.m_drawBCs)
    {
        // In the polygon's frame: the world circle brought back through the pose.
        const physics::BoundingCircle bc = m_polygon->GetBCWorld();
        const math::Vec2 c = math::TransformCoordinate(m_geom->GetWorldToGeom(), bc.center);
        glEnable(GL_BLEND);
        glBlendFunc(GL_ONE, GL_ONE);
        glBegin(GL_TRIANGLE_FAN);
        glVertex2f(c.x, c.y);
        for (const math::Vec2& v : CalcVecs(BC_SEGMENTS))
            glVertex2f(c.x + v.x * bc.radius, c.y + v.y * bc.radius);
        glEnd();
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    }
}

void PolyEntity::Draw() const
{
    LoadRenderingResources();
    const App& app = *App::GetInstancePtr();
    const bool showBorder = app.m_borders || m_selectedLook || m_markedLook;
    const float maxDist = m_resources->m_maxDist;
    // A wider border than the texture holds would cut the inside off.
    const float bw = std::min(app.GetObjectBorderWidth(), maxDist * 127.0f / 256.0f);
    math::Vec2 corners[4];
    PolygonMapCorners(*m_polygon, corners);

    glPushAttrib(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_TEXTURE_BIT | GL_DEPTH_BUFFER_BIT);
    glPushMatrix();
    m_geom->GetPose().MultToGL();
    DrawDebugPictures(app);
    glDisable(GL_BLEND);
    m_resources->Bind();
    if (showBorder)
    {
        glEnable(GL_DEPTH_TEST);
        DrawFixedFunction(corners, m_color, PolygonInsideThreshold(bw, maxDist));
        DrawFixedFunction(corners, App::GetInstancePtr()->GetBorderColor(this), 0.5f);
        glDisable(GL_DEPTH_TEST);
    }
    else
        DrawFixedFunction(corners, m_color, 0.5f);
    m_resources->Unbind();
    if (app.m_drawVertices)
    {
        glBegin(GL_POINTS);
        SetDrawColor(math::Vec4(0, 1, 0, 1));
        for (const math::Vec2& v : m_polygon->GetVertices())
            glVertex2f(v.x, v.y);
        SetDrawColor(math::Vec4(0.5f, 0.5f, 1, 1));
        glVertex2f(0, 0);
        glEnd();
    }
    glPopMatrix();
    glPopAttrib();
}

void PolyEntity::DrawBlack() const
{
    LoadRenderingResources();
    math::Vec2 corners[4];
    PolygonMapCorners(*m_polygon, corners);
    glPushAttrib(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_TEXTURE_BIT | GL_DEPTH_BUFFER_BIT);
    glPushMatrix();
    m_geom->GetPose().MultToGL();
    m_resources->Bind();
    DrawFixedFunction(corners, math::Vec4(0, 0, 0, 1), 0.5f);
    m_resources->Unbind();
    glPopMatrix();
    glPopAttrib();
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

} // namespace app
