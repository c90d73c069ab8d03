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
#include "rendering/Shader.h"
#include "rendering/ShaderManager.h"
#include "rendering/TextureManager.h"
#include "util/Profiler.h"

#include <cmath>
#include <map>
#include <string>

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

const AppSettings& Settings();

// One shader of the pictures, with its uniforms, whose locations survive a reload of the program.
class ShapeProgram
{
public:
    explicit ShapeProgram(const char* name) : m_name(name) {}

    // True when shaders are on and this one has a working program: the caller then draws with it.
    bool IsUsable()
    {
        if (!rendering::ShaderManager::AreShadersOn())
            return false;
        if (!m_shader.GetMentor())
            m_shader = rendering::ShaderManager::GetInstancePtr()->Load(m_name);
        return rendering::ShaderManager::IsUsable(m_shader);
    }
    // Registers the program with the resources, without loading it.
    void Prefetch()
    {
        if (!m_shader.GetMentor())
            m_shader = rendering::ShaderManager::GetInstancePtr()->Load(m_name);
    }
    void Bind() const { m_shader->Bind(); }
    void Unbind() const { m_shader->Unbind(); }

    template <class T> void Set(const char* name, const T& value)
    {
        util::SharedPtr<rendering::Uniform>& uniform = m_uniforms[name];
        if (!uniform)
            uniform = QLEX_NEW new rendering::Uniform(m_shader, name);
        uniform->Set(value);
    }

    // The uniforms every solid shape has: the border colour is the inside colour when no border shows,
    // so that one program serves both looks.
    void SetShapeUniforms(const Entity& entity, bool showBorder, float borderWidth, float pixelSize)
    {
        Set("InsideColor", entity.m_color);
        Set("BorderColor", showBorder ? Settings().GetBorderColor(&entity) : entity.m_color);
        Set("BorderWidth", borderWidth);
        Set("PixelSize", pixelSize);
    }

private:
    const char* m_name;
    rendering::ShaderProxy m_shader;
    std::map<std::string, util::SharedPtr<rendering::Uniform>> m_uniforms;
};

// Made once and kept to the end of the process: their mentors must not outlive the tracker of all mentors
// in the order of static destruction.
ShapeProgram& BoxProgram()
{
    static ShapeProgram* const program = new ShapeProgram("box");
    return *program;
}
ShapeProgram& CircleProgram()
{
    static ShapeProgram* const program = new ShapeProgram("circle");
    return *program;
}
ShapeProgram& PolygonProgram()
{
    static ShapeProgram* const program = new ShapeProgram("polygon");
    return *program;
}
ShapeProgram& PlaneProgram()
{
    static ShapeProgram* const program = new ShapeProgram("plane");
    return *program;
}
ShapeProgram& LineProgram()
{
    static ShapeProgram* const program = new ShapeProgram("line");
    return *program;
}

// Binds a program for the scope of one picture.
class ProgramBinding
{
public:
    explicit ProgramBinding(ShapeProgram& program) : m_program(program) { m_program.Bind(); }
    ~ProgramBinding() { m_program.Unbind(); }
    ProgramBinding(const ProgramBinding&) = delete;
    ProgramBinding& operator=(const ProgramBinding&) = delete;

private:
    ShapeProgram& m_program;
};

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

// The inside in front, the whole shape in the border colour behind it, cut from the bound distance texture.
void DrawPolygonFixedFunction(const PolyEntity& polygon, const math::Vec2 corners[4], float bw, float maxDist)
{
    if (ShowsBorder(polygon))
    {
        glEnable(GL_DEPTH_TEST);
        DrawFixedFunction(corners, polygon.m_color, PolygonInsideThreshold(bw, maxDist));
        DrawFixedFunction(corners, Settings().GetBorderColor(&polygon), 0.5f);
        glDisable(GL_DEPTH_TEST);
    }
    else
        DrawFixedFunction(corners, polygon.m_color, 0.5f);
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
    for (ShapeProgram* program :
         {&BoxProgram(), &CircleProgram(), &PolygonProgram(), &PlaneProgram(), &LineProgram()})
        program->Prefetch();
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
    ShapeProgram& program = BoxProgram();
    if (program.IsUsable())
    {
        const AppSettings& settings = Settings();
        const float pixel = settings.GetPixelSize();
        ProgramBinding binding(program);
        program.SetShapeUniforms(box, ShowsBorder(box), settings.GetObjectBorderWidth(), pixel);
        program.Set("HalfSize", half);
        // One pixel more on each side: the smoothed edge lies half in, half out of the true outline.
        DrawBox(half + math::Vec2(pixel, pixel));
    }
    else if (ShowsBorder(box))
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
    const bool tooBig = CircleEntity::IsTooBigForTexture(r, settings.GetPixelSize());
    ShapeProgram& program = CircleProgram();
    if ((circle.m_color.w < 1.0f || tooBig) && program.IsUsable())
    {
        ProgramBinding binding(program);
        program.SetShapeUniforms(circle, ShowsBorder(circle), settings.GetObjectBorderWidth(),
                                 settings.GetPixelSize());
        program.Set("Radius", r);
        program.Set("SquareScale", SquareScale);
        program.Set("CakeSize", CakeSize);
        program.Set("CakeSlizeColor", border);
        rendering::Renderer::GetInstancePtr()->DrawRect(math::Vec2(0, 0), 2.0f * r * SquareScale);
    }
    else if (circle.m_color.w < 1.0f || tooBig)
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
    ShapeProgram& program = PolygonProgram();
    if (rendering::HasMultiTexturing() && program.IsUsable())
    {
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glActiveTexture(GL_TEXTURE0);
        resources.Bind();
        {
            ProgramBinding binding(program);
            program.SetShapeUniforms(polygon, ShowsBorder(polygon), bw,
                                     std::min(settings.GetPixelSize(), bw));
            program.Set("DistSampler", 0);
            program.Set("DistScale", maxDist);
            DrawMap(corners);
        }
        resources.Unbind();
    }
    else
    {
        glDisable(GL_BLEND);
        resources.Bind();
        DrawPolygonFixedFunction(polygon, corners, bw, maxDist);
        resources.Unbind();
    }
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
    ShapeProgram& program = PlaneProgram();
    if (program.IsUsable())
    {
        const AppSettings& settings = Settings();
        const float bw = settings.GetObjectBorderWidth();
        const float pixel = settings.GetPixelSize();
        // The deep inside is flat: the program only runs over the band where the border and edge lie.
        SetDrawColor(plane.m_color);
        DrawPlaneSegment(corners, dists, -math::INF, -bw - pixel);
        ProgramBinding binding(program);
        program.SetShapeUniforms(plane, ShowsBorder(plane), bw, pixel);
        const math::Plane2D& p = plane.m_plane->GetPlane();
        program.Set("Plane", math::Vec3(p.normal.x, p.normal.y, p.distance));
        DrawPlaneSegment(corners, dists, -bw - pixel, pixel);
    }
    else if (ShowsBorder(plane))
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
        ShapeProgram& program = LineProgram();
        const bool shaded = program.IsUsable();
        if (shaded)
        {
            // The program smooths the strip's edges over a pixel, which needs that pixel of room.
            w += Settings().GetPixelSize();
            program.Bind();
            program.Set("Color", pen.m_color);
            program.Set("Width", w);
            program.Set("PixelSize", Settings().GetPixelSize());
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
            const math::Vec2 p0 = e.position - e.normal * half;
            const math::Vec2 p1 = e.position + e.normal * half;
            if (shaded)
            {
                // Across the strip in s, the fade in t.
                glTexCoord2f(0, a);
                glVertex2f(p0.x, p0.y);
                glTexCoord2f(1, a);
                glVertex2f(p1.x, p1.y);
                continue;
            }
            SetDrawColor(math::Vec4(color.x, color.y, color.z, color.w * a));
            glVertex2f(p0.x, p0.y);
            glVertex2f(p1.x, p1.y);
        }
        glEnd();
        if (shaded)
            program.Unbind();
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
