#include "app/entities/GLEntityPainter.h"

#include "app/AppSettings.h"
#include "app/entities/BoxEntity.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/DrawColor.h"
#include "app/entities/FixJointEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/PenEntity.h"
#include "app/entities/PlaneEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/entities/ShapeGeometry.h"
#include "app/entities/SpringEntity.h"
#include "logging/Log.h"
#include "math/MatrixGL.h"
#include "rendering/GLContext.h"
#include "rendering/Image.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"
#include "util/Profiler.h"

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
const math::Vec4 BLACK(0, 0, 0, 0);

// Segments of a hinge's disc.
const int RING_SEGMENTS = 32;
// Turns of a spring's zigzag.
const int ZIGZAG_TEETH = 12;
// Segments of the debug picture of a polygon's bounding circle.
const int BC_SEGMENTS = 64;
const math::Vec4 DEBUG_COLOR(0.2f, 0.2f, 0.5f, 0.5f);
// A pen's tail strip is this share of the pen's size wide.
const float TAIL_WIDTH = 0.7f;
// A pen's selection ring is this much larger than the pen.
const float RING_SCALE = 1.3f;

bool s_toldTransparency = false;

const AppSettings& Settings()
{
    return *AppSettings::GetInstancePtr();
}

bool ShowsBorder(const Entity& entity)
{
    return Settings().m_borders || entity.m_selectedLook || entity.m_markedLook;
}

// Lines have no room for a border: a selected or marked line takes the border colour as a whole.
math::Vec4 LineColor(const Entity& entity)
{
    return entity.m_selectedLook || entity.m_markedLook ? Settings().GetBorderColor(&entity) : entity.m_color;
}

void DrawBox(math::Vec2 half)
{
    glBegin(GL_QUADS);
    for (const math::Vec2& corner : BoxQuad(half))
    {
        glTexCoord2f(corner.x, corner.y);
        glVertex2f(corner.x, corner.y);
    }
    glEnd();
}

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

rendering::Texture* MakeAlphaTexture(const std::vector<float>& texels, int size)
{
    rendering::ImageFloatPtr image = QLEX_NEW new rendering::ImageFloat(size, size);
    for (int j = 0; j < size; ++j)
        for (int i = 0; i < size; ++i)
            (*image)(i, j) = texels[size_t(j) * size + i];
    // Mipmapped, so that small pictures stay smooth; clamped, so that the edge doesn't wrap.
    return new rendering::Texture(
        image, rendering::Texture::ImageType(GL_ALPHA, true, rendering::Texture::Quality(1, 1, 1, 1, 1)));
}

// The textured square of a circle of radius r about the origin.
void DrawCircleRect(const rendering::Texture& texture, float r)
{
    if (r <= 0.0f)
        return;
    glBindTexture(GL_TEXTURE_2D, texture.GetName());
    rendering::Renderer::GetInstancePtr()->DrawRect(math::Vec2(0, 0), 2.0f * r * SquareScale);
}

// A textured square of side `size` about c.
void DrawSprite(util::Mentor<rendering::Texture>& mentor, math::Vec2 c, float size)
{
    glPushAttrib(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_TEXTURE_BIT);
    // Made, if it must be, inside the saved state: making a texture leaves it bound, and the next picture
    // without a texture of its own would be painted with it.
    const util::SharedPtr<rendering::Texture> texture = mentor.GetPtr();
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glBindTexture(GL_TEXTURE_2D, texture->GetName());
    rendering::Renderer::GetInstancePtr()->DrawRect(c, size);
    glBindTexture(GL_TEXTURE_2D, 0);
    glPopAttrib();
}

void DrawPlaneSegment(const math::Vec2 corners[4], const float dists[4], float lo, float hi)
{
    glBegin(GL_TRIANGLE_FAN);
    for (const math::Vec2& p : PlaneSegment(corners, dists, lo, hi))
        glVertex2f(p.x, p.y);
    glEnd();
}

void DrawDisc(math::Vec2 c, float r)
{
    glBegin(GL_TRIANGLE_FAN);
    glVertex2f(c.x, c.y);
    for (int i = 0; i <= RING_SEGMENTS; ++i)
    {
        const float t = 2.0f * math::PIf * i / RING_SEGMENTS;
        glVertex2f(c.x + r * std::cos(t), c.y + r * std::sin(t));
    }
    glEnd();
}

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

GLEntityPainter::TextureMentorPtr GLEntityPainter::s_circleTex;
GLEntityPainter::TextureMentorPtr GLEntityPainter::s_circleTexNoCake;
GLEntityPainter::TextureMentorPtr GLEntityPainter::s_penTex;
GLEntityPainter::TextureMentorPtr GLEntityPainter::s_ringTex;

GLEntityPainter& GLEntityPainter::GetInstance()
{
    static GLEntityPainter painter;
    return painter;
}

void GLEntityPainter::LoadResources()
{
    if (s_circleTex)
        return;
    s_circleTex = QLEX_NEW new util::Mentor<rendering::Texture>(
        [] { return MakeAlphaTexture(CircleTexture(CIRCLE_TEXTURE_SIZE, true), CIRCLE_TEXTURE_SIZE); });
    s_circleTexNoCake = QLEX_NEW new util::Mentor<rendering::Texture>(
        [] { return MakeAlphaTexture(CircleTexture(CIRCLE_TEXTURE_SIZE, false), CIRCLE_TEXTURE_SIZE); });
    s_penTex = QLEX_NEW new util::Mentor<rendering::Texture>(
        [] { return MakeAlphaTexture(PenTexture(PEN_TEXTURE_SIZE), PEN_TEXTURE_SIZE); });
    s_ringTex = QLEX_NEW new util::Mentor<rendering::Texture>(
        [] { return MakeAlphaTexture(RingTexture(PEN_TEXTURE_SIZE), PEN_TEXTURE_SIZE); });
}

void GLEntityPainter::Draw(const BoxEntity& box)
{
    const math::Vec2 half = box.GetHalfSize();
    glPushMatrix();
    box.m_geom->GetPose().MultToGL();
    if (ShowsBorder(box))
    {
        math::Vec2 inside;
        glEnable(GL_DEPTH_TEST);
        if (BoxInside(half, Settings().GetObjectBorderWidth(), inside))
        {
            SetDrawColor(box.m_color);
            DrawBox(inside);
        }
        SetDrawColor(Settings().GetBorderColor(&box));
        DrawBox(half);
        glDisable(GL_DEPTH_TEST);
    }
    else
    {
        SetDrawColor(box.m_color);
        DrawBox(half);
    }
    glPopMatrix();
}

void GLEntityPainter::DrawBlack(const BoxEntity& box)
{
    glPushMatrix();
    box.m_geom->GetPose().MultToGL();
    SetDrawColor(BLACK);
    DrawBox(box.GetHalfSize());
    glPopMatrix();
}

void GLEntityPainter::Draw(const CircleEntity& circle)
{
    const AppSettings& settings = Settings();
    const float r = circle.GetRadius();
    const float inside = ShowsBorder(circle) ? r - settings.GetObjectBorderWidth() : r;
    const math::Vec4 border = settings.GetBorderColor(&circle);
    glPushMatrix();
    circle.m_geom->GetPose().MultToGL();
    if (circle.m_color.w < 1.0f || CircleEntity::IsTooBigForTexture(r, settings.GetPixelSize()))
    {
        // Geometry: the inside in front, the whole disc in the border colour behind it. The inside leaves
        // the slice out, so the border colour shows the rotation.
        glEnable(GL_DEPTH_TEST);
        SetDrawColor(circle.m_color);
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
        DrawCircleRect(*s_circleTexNoCake->GetPtr(), r);
        SetDrawColor(circle.m_color);
        DrawCircleRect(*s_circleTex->GetPtr(), inside);
        glBindTexture(GL_TEXTURE_2D, 0);
        glPopAttrib();
    }
    glPopMatrix();
}

void GLEntityPainter::DrawBlack(const CircleEntity& circle)
{
    glPushMatrix();
    circle.m_geom->GetPose().MultToGL();
    SetDrawColor(BLACK);
    DrawCircle(circle.GetRadius(), false);
    glPopMatrix();
}

void GLEntityPainter::LoadRenderingResources(const PolyEntity& polygon)
{
    std::shared_ptr<PolyEntity::RenderingResources>& cache = polygon.GetPictureResources();
    if (cache)
        return;
    const physics::Polygon& shape = *polygon.m_polygon;
    auto resources = std::make_shared<PolyEntity::RenderingResources>();
    resources->m_maxDist = PolygonMaxDist(shape);
    const std::vector<float> texels = PolygonDistanceTexture(shape, resources->m_maxDist);
    const unsigned w = shape.GetDistanceMap().GetWidth();
    const unsigned h = shape.GetDistanceMap().GetHeight();
    rendering::ImageFloatPtr image = QLEX_NEW new rendering::ImageFloat(w, h);
    for (unsigned j = 0; j < h; ++j)
        for (unsigned i = 0; i < w; ++i)
            (*image)(i, j) = texels[size_t(j) * w + i];
    // Not mipmapped: the alpha test cuts at exact distances, which averaged levels would move.
    resources->m_texture = rendering::TextureManager::GetInstancePtr()->Load(
        image, rendering::Texture::ImageType(GL_ALPHA, false, rendering::Texture::Quality(1, 1, 1, 1, 0)));
    cache = resources;
}

void GLEntityPainter::DrawDebugPictures(const PolyEntity& polygon, const AppSettings& settings)
{
    if (!settings.m_drawOBBs && !settings.m_drawMapOBBs && !settings.m_drawBCs)
        return;
    SetDrawColor(DEBUG_COLOR);
    if (settings.m_drawOBBs)
        DrawOutline(polygon.m_polygon->GetLocalOBB());
    if (settings.m_drawMapOBBs)
        DrawOutline(polygon.m_polygon->GetMapBox());
    if (settings.m_drawBCs)
    {
        // In the polygon's frame: the world circle brought back through the pose.
        const physics::BoundingCircle bc = polygon.m_polygon->GetBCWorld();
        const math::Vec2 c = math::TransformCoordinate(polygon.m_geom->GetWorldToGeom(), bc.center);
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

void GLEntityPainter::Draw(const PolyEntity& polygon)
{
    LoadRenderingResources(polygon);
    const PolyEntity::RenderingResources& resources = *polygon.GetPictureResources();
    const AppSettings& settings = Settings();
    const float maxDist = resources.m_maxDist;
    // A wider border than the texture holds would cut the inside off.
    const float bw = std::min(settings.GetObjectBorderWidth(), maxDist * 127.0f / 256.0f);
    math::Vec2 corners[4];
    PolygonMapCorners(*polygon.m_polygon, corners);

    glPushAttrib(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_TEXTURE_BIT | GL_DEPTH_BUFFER_BIT);
    glPushMatrix();
    polygon.m_geom->GetPose().MultToGL();
    DrawDebugPictures(polygon, settings);
    glDisable(GL_BLEND);
    resources.Bind();
    if (ShowsBorder(polygon))
    {
        glEnable(GL_DEPTH_TEST);
        DrawFixedFunction(corners, polygon.m_color, PolygonInsideThreshold(bw, maxDist));
        DrawFixedFunction(corners, settings.GetBorderColor(&polygon), 0.5f);
        glDisable(GL_DEPTH_TEST);
    }
    else
        DrawFixedFunction(corners, polygon.m_color, 0.5f);
    resources.Unbind();
    if (settings.m_drawVertices)
    {
        glBegin(GL_POINTS);
        SetDrawColor(math::Vec4(0, 1, 0, 1));
        for (const math::Vec2& v : polygon.m_polygon->GetVertices())
            glVertex2f(v.x, v.y);
        SetDrawColor(math::Vec4(0.5f, 0.5f, 1, 1));
        glVertex2f(0, 0);
        glEnd();
    }
    glPopMatrix();
    glPopAttrib();
}

void GLEntityPainter::DrawBlack(const PolyEntity& polygon)
{
    LoadRenderingResources(polygon);
    math::Vec2 corners[4];
    PolygonMapCorners(*polygon.m_polygon, corners);
    glPushAttrib(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_TEXTURE_BIT | GL_DEPTH_BUFFER_BIT);
    glPushMatrix();
    polygon.m_geom->GetPose().MultToGL();
    polygon.GetPictureResources()->Bind();
    DrawFixedFunction(corners, math::Vec4(0, 0, 0, 1), 0.5f);
    polygon.GetPictureResources()->Unbind();
    glPopMatrix();
    glPopAttrib();
}

void GLEntityPainter::Draw(const PlaneEntity& plane)
{
    math::Vec2 corners[4];
    float dists[4];
    plane.CalcVecsAndDist(corners, dists);
    if (ShowsBorder(plane))
    {
        const float bw = Settings().GetObjectBorderWidth();
        glEnable(GL_DEPTH_TEST);
        SetDrawColor(plane.m_color);
        DrawPlaneSegment(corners, dists, -math::INF, -bw);
        SetDrawColor(Settings().GetBorderColor(&plane));
        DrawPlaneSegment(corners, dists, -math::INF, 0.0f);
        glDisable(GL_DEPTH_TEST);
    }
    else
    {
        SetDrawColor(plane.m_color);
        DrawPlaneSegment(corners, dists, -math::INF, 0.0f);
    }
}

void GLEntityPainter::DrawBlack(const PlaneEntity& plane)
{
    math::Vec2 corners[4];
    float dists[4];
    plane.CalcVecsAndDist(corners, dists);
    SetDrawColor(BLACK);
    DrawPlaneSegment(corners, dists, -math::INF, 0.0f);
}

void GLEntityPainter::Draw(const HingeEntity& hinge)
{
    const float inside = hinge.m_size / 2.0f - Settings().GetObjectBorderWidth();
    // The look of the shapes: the inside in front, the whole disc in the border colour behind it, so that a
    // see-through hinge doesn't show its rim through its inside.
    glEnable(GL_DEPTH_TEST);
    if (inside > 0.0f)
    {
        SetDrawColor(hinge.m_color);
        DrawDisc(hinge.GetMidpoint(), inside);
    }
    SetDrawColor(Settings().GetBorderColor(&hinge));
    DrawDisc(hinge.GetMidpoint(), hinge.m_size / 2.0f);
    glDisable(GL_DEPTH_TEST);
}

void GLEntityPainter::Draw(const SpringEntity& spring)
{
    const math::Vec2 a = spring.m_worldPos[0];
    const math::Vec2 d = spring.m_worldPos[1] - a;
    const float length = d.Length();
    const math::Vec2 across =
        length > 0.0f ? math::Rot90CCW(d / length) * (spring.m_size / 2.0f) : math::Vec2(0, 0);
    SetDrawColor(LineColor(spring));
    glBegin(GL_LINE_STRIP);
    glVertex2f(a.x, a.y);
    for (int i = 1; i < 2 * ZIGZAG_TEETH; ++i)
    {
        const math::Vec2 p = a + d * (float(i) / (2 * ZIGZAG_TEETH)) + across * (i % 2 ? 1.0f : -1.0f);
        glVertex2f(p.x, p.y);
    }
    glVertex2f(spring.m_worldPos[1].x, spring.m_worldPos[1].y);
    glEnd();
}

void GLEntityPainter::Draw(const FixJointEntity& fixate)
{
    const math::Vec2 c = fixate.GetMidpoint();
    const float h = fixate.m_size / 2.0f;
    SetDrawColor(LineColor(fixate));
    // Two crossing strokes: the gesture that makes a fixate.
    glBegin(GL_LINES);
    glVertex2f(c.x - h, c.y - h);
    glVertex2f(c.x + h, c.y + h);
    glVertex2f(c.x - h, c.y + h);
    glVertex2f(c.x + h, c.y - h);
    glEnd();
}

void GLEntityPainter::Draw(const PenEntity& pen)
{
    const util::ScopeProfiler profile("Pen::Draw");
    const std::deque<PenEntity::TailElem>& tail = pen.GetTail();
    // A preview that flattens the pen to a line can't be undone for the tail: the tail waits for a
    // preview it can see through.
    const bool tailVisible = !pen.HasScaleTransform() || pen.m_scaleTransform.Determinant() != 0.0f;
    const float fadeTime = pen.m_fadeTime;
    if (tail.size() >= 2 && fadeTime > 0.0f && tailVisible)
    {
        const util::ScopeProfiler tailProfile("Pen::DrawTail");
        float w = TAIL_WIDTH * pen.m_size;
        glPushMatrix();
        // The tail stays where it was while a scale drag previews the pen elsewhere.
        if (pen.HasScaleTransform())
        {
            const math::Mat3& scale = pen.m_scaleTransform;
            const math::Mat3 inverse = math::Inverted(scale);
            const float m[16] = {
                inverse(0, 0), inverse(1, 0), 0, 0, inverse(0, 1), inverse(1, 1), 0, 0, 0, 0, 1, 0,
                inverse(0, 2), inverse(1, 2), 0, 1};
            glMultMatrixf(m);
            w *= std::sqrt(std::fabs(scale(0, 0) * scale(1, 1)));
        }
        const float half = w / 2.0f;
        const math::Vec4& color = pen.m_color;
        // The tail fades through its alpha.
        glPushAttrib(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT);
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glBegin(GL_TRIANGLE_STRIP);
        for (size_t i = pen.FindBegin(); i < tail.size(); ++i)
        {
            const PenEntity::TailElem& e = tail[i];
            const float a = 1.0f - float(pen.m_time - e.time) / fadeTime;
            SetDrawColor(math::Vec4(color.x, color.y, color.z, color.w * a));
            const math::Vec2 p0 = e.position - e.normal * half;
            const math::Vec2 p1 = e.position + e.normal * half;
            glVertex2f(p0.x, p0.y);
            glVertex2f(p1.x, p1.y);
        }
        glEnd();
        glPopAttrib();
        glPopMatrix();
    }
    LoadResources();
    SetDrawColor(pen.m_color);
    DrawSprite(*s_penTex, pen.GetPos(), pen.m_size);
    if (pen.m_selectedLook || pen.m_markedLook)
    {
        SetDrawColor(Settings().GetBorderColor(&pen));
        DrawSprite(*s_ringTex, pen.GetPos(), RING_SCALE * pen.m_size);
    }
}

} // namespace app
