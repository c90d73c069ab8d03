#include "app/entities/PolyEntity.h"

#include "app/App.h"
#include "app/entities/AppLinks.h"
#include "app/EntitySerializer.h"
#include "app/entities/ShapeGeometry.h"
#include "logging/Log.h"
#include "math/MatrixGL.h"

#include <GL/gl.h>

#include <cmath>

namespace app
{
// The distance texture of one polygon. GL objects die with the window, so the texture is made again
// whenever GL no longer knows it.
struct PolyEntity::RenderingResources
{
    std::vector<float> texels;
    int width = 0;
    int height = 0;
    float maxDist = 0;
    GLuint texture = 0;

    void Bind()
    {
        if (texture == 0 || !glIsTexture(texture))
        {
            glGenTextures(1, &texture);
            glBindTexture(GL_TEXTURE_2D, texture);
            glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
            glTexImage2D(GL_TEXTURE_2D, 0, GL_ALPHA, width, height, 0, GL_ALPHA, GL_FLOAT, texels.data());
        }
        glBindTexture(GL_TEXTURE_2D, texture);
        glEnable(GL_TEXTURE_2D);
    }
    void Unbind()
    {
        glDisable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, 0);
    }
};

namespace
{
void DrawMap(const math::Vec2 corners[4])
{
    const float texCoords[4][2] = {{1, 1}, {1, 0}, {0, 0}, {0, 1}};
    glBegin(GL_QUADS);
    for (int i = 0; i < 4; ++i)
    {
        glTexCoord2f(texCoords[i][0], texCoords[i][1]);
        glVertex2f(corners[i].x, corners[i].y);
    }
    glEnd();
}

// An alpha test against the distance texture cuts the shape out: texels at or below the threshold stay.
void DrawFixedFunction(const math::Vec2 corners[4], const math::Vec4& color, float threshold)
{
    glColor4f(color.x, color.y, color.z, 1.0f);
    if (color.w < 1.0f)
        Log(logging::Error, "Polygon transparency not supported by your computer. Try switching on shaders "
                            "(anti-aliasing in the options menu), or upgrade your graphics drivers.");
    glEnable(GL_ALPHA_TEST);
    glAlphaFunc(GL_LEQUAL, threshold);
    DrawMap(corners);
    glDisable(GL_ALPHA_TEST);
}
} // namespace

PolyEntity::PolyEntity(util::SharedPtr<physics::Polygon> polygon) : FiniteGeomEntity(polygon), m_polygon(polygon)
{
}

PolyEntity::~PolyEntity() = default;

float PolyEntity::GetMaxDist() const
{
    return m_resources ? m_resources->maxDist : PolygonMaxDist(*m_polygon);
}

void PolyEntity::LoadRenderingResources() const
{
    if (m_resources)
        return;
    auto resources = std::make_shared<RenderingResources>();
    resources->maxDist = PolygonMaxDist(*m_polygon);
    resources->texels = PolygonDistanceTexture(*m_polygon, resources->maxDist);
    resources->width = int(m_polygon->GetDistanceMap().GetWidth());
    resources->height = int(m_polygon->GetDistanceMap().GetHeight());
    const_cast<PolyEntity*>(this)->m_resources = resources;
}

void PolyEntity::Draw() const
{
    LoadRenderingResources();
    const App& app = *App::GetInstancePtr();
    const bool showBorder = app.m_borders || m_selectedLook || m_markedLook;
    const float maxDist = m_resources->maxDist;
    // A wider border than the texture holds would cut the inside off.
    const float bw = std::min(app.GetObjectBorderWidth(), maxDist * 127.0f / 256.0f);
    math::Vec2 corners[4];
    PolygonMapCorners(*m_polygon, corners);

    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPushMatrix();
    m_geom->GetPose().MultToGL();
    glDisable(GL_BLEND);
    m_resources->Bind();
    if (showBorder)
    {
        glEnable(GL_DEPTH_TEST);
        DrawFixedFunction(corners, m_color, PolygonInsideThreshold(bw, maxDist));
        DrawFixedFunction(corners, links::BorderColor(this), 0.5f);
        glDisable(GL_DEPTH_TEST);
    }
    else
        DrawFixedFunction(corners, m_color, 0.5f);
    m_resources->Unbind();
    if (app.m_drawVertices)
    {
        glBegin(GL_POINTS);
        glColor3f(0, 1, 0);
        for (const math::Vec2& v : m_polygon->GetVertices())
            glVertex2f(v.x, v.y);
        glColor3f(0.5f, 0.5f, 1);
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
    glPushAttrib(GL_ALL_ATTRIB_BITS);
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
