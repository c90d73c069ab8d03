#include "app/App.h"

#include "app/Camera.h"
#include "app/Scene.h"
#include "logging/Log.h"
#include "math/MatrixGL.h"
#include "physics/Simulation.h"
#include "rendering/AttribPusher.h"
#include "rendering/ColorPusher.h"
#include "rendering/GLContext.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"
#include "util/FileSystem.h"
#include "util/Profiler.h"

#include <SDL/SDL.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace app
{
namespace
{
// Keyboard panning, in GUI units per second.
constexpr float KEY_PAN_SPEED = 400.0f;
constexpr float CM_PER_INCH = 2.54f;
constexpr float JOINT_SIZE_CM = 0.66667f;
// Debug velocity lines show where a body would be in this many seconds.
constexpr float VELOCITY_LINE_SECONDS = 0.025f;
// Everything glPushAttrib can save.
constexpr GLbitfield ALL_ATTRIBUTES = 0xFFFFF;
const char* const AUTOSAVE_SCENE = "_AUTOSAVE.qlx";

// INTERIM: the GUI's "scale" attribute (pixels per GUI unit) until the GUI manager is linked in.
constexpr float GUI_SCALE = 1.0f;

// INTERIM: the key state of the event pump until input::Input is linked in; SDL's own table serves.
bool IsKeyDown(SDLKey key)
{
    if (!SDL_WasInit(SDL_INIT_VIDEO))
        return false;
    int count = 0;
    const Uint8* keys = SDL_GetKeyState(&count);
    return keys && int(key) < count && keys[key];
}

bool IsBlack(const math::Vec3& c)
{
    return c.x == 0 && c.y == 0 && c.z == 0;
}
} // namespace

App::App()
    : m_language(this, "language", util::String("English")), m_lineWidth(this, "lineWidth", 4.0f),
      m_pointSize(this, "pointSize", 4.0f), m_drawOBBs(this, "drawOBBs", false),
      m_drawMapOBBs(this, "drawMapOBBs", false), m_drawBCs(this, "drawBCs", false),
      m_drawSelectionOBB(this, "drawSelectionOBB", false), m_drawVertices(this, "drawVertices", false),
      m_drawCollisions(this, "drawCollisions", false), m_drawBodyCenters(this, "drawBodyCenters", false),
      m_drawParticleCenters(this, "drawParticleCenters", false),
      m_drawParticleNeighbors(this, "drawParticleNeighbors", false),
      m_polyTCFactor(this, "polyTCFactor", math::Vec2(10, 10)),
      m_selectColor(this, "selectColor", math::Vec3(1.0f, 0.5f, 0.5f)),
      m_fadeColor(this, "fadeColor", math::Vec3(0, 0, 0)),
      m_fadeScale(this, "fadeScale", math::Vec2(0.95f, 0.95f)),
      m_fadeTranslate(this, "fadeTranslate", math::Vec2(0, 0)), m_fadeRotate(this, "fadeRotate", 0.0f),
      m_minPointDist(this, "minPointDist", 0.2f), m_maxPointDist(this, "maxPointDist", 0.5f),
      m_DPI(this, "DPI", 86.0f), m_maxSPHSpawn(this, "maxSPHSpawn", 10000),
      m_waterElongation(this, "waterElongation", 0.05f),
      m_waterMaxElongation(this, "waterMaxElongation", 2.0f), m_metaCutoff(this, "metaCutoff", 0.5f),
      m_borderWidth(this, "borderWidth", 0.1f), m_maxUndo(this, "maxUndo", 25ul),
      m_autosaveTime(this, "autosaveTime", 30.0f), m_chainDensityFactor(this, "chainDensityFactor", 20.0f),
      m_dragToolStrength(this, "dragToolStrength", 0.25f),
      m_waterColor(this, "waterColor", math::Vec4(0.1f, 0.1f, 1.0f, 0.7f)),
      m_simpleWater(this, "simpleWater", false), m_waterFanceyFactor(this, "waterFanceyFactor", 10.0f),
      m_borders(this, "borders", true)
{
    SetReflectedName("App");

    m_frameTextureMentor = QLEX_NEW new util::Mentor<rendering::Texture>(&CreateBigTexture);
    m_waterTextureMentor = QLEX_NEW new util::Mentor<rendering::Texture>(&CreateBigTexture);
    m_metaBallTextureMentor = QLEX_NEW new util::Mentor<rendering::Texture>(&CreateMetaBallTexture);
    m_frameTexture = rendering::TextureProxy(m_frameTextureMentor);
    m_waterTexture = rendering::TextureProxy(m_waterTextureMentor);
    m_metaBallTexture = rendering::TextureProxy(m_metaBallTextureMentor);
    m_simpleWaterTexture = rendering::TextureManager::GetInstancePtr()->Load(
        "simpleWater", rendering::TextureManager::DefaultImageType());

    m_background = QLEX_NEW new Background();
    AddComponent(m_background);
    GetCamera().Reset();
}

App::~App() = default;

Camera& App::GetCamera() const
{
    return *Scene::GetInstancePtr()->GetCamera();
}

void App::SyncViewSize()
{
    GetCamera().SetViewSize(GetOuterSize());
    m_background->SetInnerSize(GetInnerSize());
}

void App::OnFormChange()
{
    gui::Component::OnFormChange();
    SyncViewSize();
}

void App::OnOwnerFormChange()
{
    // The application fills its owner.
    if (gui::Component* owner = GetOwner())
        SetOuterSize(owner->GetInnerSize());
}

void App::Update(float dt)
{
    util::ScopeProfiler profile("App::Update");
    {
        util::ScopeProfiler base("base::Update");
        gui::Component::Update(dt);
    }
    SyncViewSize();
    if (dt > 0)
    {
        float x = 0, y = 0;
        if (IsKeyDown(SDLK_LEFT))
            x -= 1;
        if (IsKeyDown(SDLK_RIGHT))
            x += 1;
        if (IsKeyDown(SDLK_UP))
            y -= 1;
        if (IsKeyDown(SDLK_DOWN))
            y += 1;
        if (x != 0 || y != 0)
            GetCamera().PanView(math::Vec2(dt * -KEY_PAN_SPEED * x, dt * -KEY_PAN_SPEED * y));
    }
    physics::Simulation::GetInstancePtr()->Update(dt);
    Scene::GetInstancePtr()->Update(dt);
    GetCamera().Update(dt);
    {
        util::ScopeProfiler contacts("g_sim->GetContacts");
        m_contacts = physics::Simulation::GetInstancePtr()->GetContacts();
    }
    QLEX_ASSERT(math::IsFinite(GetMousePos()));
}

void App::OnShutdown()
{
    // The autosaved scene goes only on an orderly end: after a crash the next start finds it first.
    std::error_code error;
    std::filesystem::remove(util::FileSystem::SceneDir() + AUTOSAVE_SCENE, error);
}

void App::CreateGUI() {}

void App::SetFirstTimeRunning()
{
    m_firstTime = true;
}

math::Vec2 App::GetMousePos() const
{
    return GetCamera().GUIToWorld(GetMousePosLocal());
}

float App::GetPixelSize() const
{
    return GetCamera().GUIToWorld()(0, 0) / GUI_SCALE;
}

float App::GetScreenCM() const
{
    return GetPixelSize() * m_DPI / CM_PER_INCH;
}

float App::GetDefaultJointSize() const
{
    return GetScreenCM() * JOINT_SIZE_CM;
}

float App::GetObjectBorderWidth() const
{
    return GetScreenCM() * m_borderWidth;
}

float App::GetMinimumPointDist() const
{
    return GetScreenCM() * m_minPointDist;
}

float App::GetMaximumPointDist() const
{
    return GetScreenCM() * m_maxPointDist;
}

WorldBox App::CalcViewBox() const
{
    return app::CalcViewBox(GetCamera(), GetInnerSize());
}

std::vector<WaterParticle> App::GatherWater()
{
    const auto& particles = physics::Simulation::GetInstancePtr()->GetParticles();
    std::vector<WaterParticle> water;
    water.reserve(particles.size());
    for (const auto& p : particles)
        water.push_back(WaterParticle{p->GetPosition(), p->GetVelocity()});
    return water;
}

math::Vec2 App::BigTextureCoords() const
{
    const math::TVector2<int> viewport = rendering::Renderer::GetInstancePtr()->GetViewportSize();
    return math::Vec2(float(viewport.x) / BIG_TEXTURE_SIZE, float(viewport.y) / BIG_TEXTURE_SIZE);
}

void App::DrawBigTextureRect() const
{
    rendering::Renderer::GetInstancePtr()->DrawRectGUI(math::Vec2(0, 0), GetInnerSize(), BigTextureCoords());
}

void App::DrawComp() const
{
    util::ScopeProfiler profile("App::DrawComp");
    gui::Component::DrawComp();
    const_cast<App*>(this)->SyncViewSize();
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    const Camera& camera = GetCamera();

    {
        // No entities exist yet; the view box is what their culling will test.
        util::ScopeProfiler culling("Culling");
    }
    const std::vector<WaterParticle> water = GatherWater();
    if (!water.empty() && !m_simpleWater)
        DrawMetaTex(water);

    {
        util::ScopeProfiler clear("glClear");
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    }
    glDepthMask(GL_FALSE);
    rendering::AttribPusher attribs(ALL_ATTRIBUTES);
    glPushMatrix();
    renderer.SetColor4(1, 1, 1, 1);

    const math::Vec3 fade = m_fadeColor;
    {
        util::ScopeProfiler setup("Setup");
        glEnable(GL_TEXTURE_2D);
        glEnable(GL_BLEND);
        glBlendFunc(GL_ONE, GL_ONE);
        if (!IsBlack(fade))
        {
            // The last frame, zoomed and turned a little about the centre, added in the fade colour's
            // strength: older frames fade away behind the present one.
            glPushMatrix();
            renderer.SetColor3(fade);
            glBindTexture(GL_TEXTURE_2D, m_frameTexture->GetName());
            const math::Vec2 half = GetInnerSize() * 0.5f;
            const math::Vec2 translate = m_fadeTranslate;
            const math::Vec2 scale = m_fadeScale;
            glTranslatef(translate.x, translate.y, 0);
            glTranslatef(half.x, half.y, 0);
            glRotatef(m_fadeRotate, 0, 0, 1);
            glScalef(scale.x, scale.y, 1);
            glTranslatef(-half.x, -half.y, 0);
            DrawBigTextureRect();
            glBindTexture(GL_TEXTURE_2D, 0);
            glPopMatrix();
        }
    }

    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    m_background->DrawBG(camera);

    if (!water.empty())
        DrawWater(water);

    glDepthMask(GL_TRUE);
    math::Mat4FromMat2D(camera.WorldToGUI()).MultToGL();
    glLineWidth(m_lineWidth);
    glPointSize(m_pointSize);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    {
        util::ScopeProfiler entities("Entities");
        rendering::ColorPusher color;
    }
    DrawDebugOverlays(water);

    renderer.SetColor4(1, 1, 1, 1);
    if (!IsBlack(fade))
    {
        const math::TVector2<int> viewport = renderer.GetViewportSize();
        m_frameTexture->Copy(std::min(viewport.x, BIG_TEXTURE_SIZE), std::min(viewport.y, BIG_TEXTURE_SIZE));
    }
    glPopMatrix();
}

void App::DrawWater(const std::vector<WaterParticle>& particles) const
{
    util::ScopeProfiler profile("Water");
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    const math::Vec4 color = m_waterColor;
    if (!m_simpleWater)
    {
        // Shaders are not part of the program yet: the fixed-function threshold draws the surface.
        rendering::AttribPusher colorBits(GL_COLOR_BUFFER_BIT);
        glDisable(GL_BLEND);
        bool blendColorSet = false;
        if (color.w < 1.0f)
        {
            if (rendering::HasBlendColor())
            {
                glBlendColor(1, 1, 1, color.w);
                glEnable(GL_BLEND);
                glBlendFunc(GL_CONSTANT_ALPHA, GL_ONE_MINUS_CONSTANT_ALPHA);
                blendColorSet = true;
            }
            else
            {
                Log(logging::Warning,
                    "Water transparency not supported by your computer. Try switching on shaders "
                    "(anti-aliasing in the options menu), or upgrade your graphics drivers.");
            }
        }
        renderer.SetColor4(color.x, color.y, color.z, 1.0f);
        glEnable(GL_ALPHA_TEST);
        glAlphaFunc(GL_GREATER, m_metaCutoff);
        glEnable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, m_waterTexture->GetName());
        DrawBigTextureRect();
        glBindTexture(GL_TEXTURE_2D, 0);
        glDisable(GL_ALPHA_TEST);
        renderer.SetColor4(1, 1, 1, 1);
        if (blendColorSet)
            glBlendColor(1, 1, 1, 1);
        return;
    }

    const float size = 2.0f * 2.0f * physics::SPH::GetInstancePtr()->GetRadius();
    const WorldBox view = CalcViewBox();
    glPushMatrix();
    math::Mat4FromMat2D(GetCamera().WorldToGUI()).MultToGL();
    renderer.SetColor4(color);
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, m_simpleWaterTexture->GetName());
    for (const WaterParticle& p : particles)
    {
        if (TestBBCircle(view.min, view.max, p.position, size))
            renderer.DrawRect(p.position, size);
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    glPopMatrix();
}

void App::DrawMetaTex(const std::vector<WaterParticle>& particles) const
{
    util::ScopeProfiler profile("DrawMetaTex");
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    // The back buffer is the scratch surface: DrawComp clears it again before the true frame.
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    {
        rendering::AttribPusher attribs(ALL_ATTRIBUTES);
        glPushMatrix();
        renderer.SetColor4(1, 1, 1, 1);
        glDepthMask(GL_FALSE);
        glEnable(GL_TEXTURE_2D);
        glEnable(GL_BLEND);
        glBlendFunc(GL_ONE, GL_ONE);
        math::Mat4FromMat2D(GetCamera().WorldToGUI()).MultToGL();
        {
            util::ScopeProfiler drawing("Drawing particles");
            const float size = 2.0f * physics::SPH::GetInstancePtr()->GetRadius() * 4.0f;
            glBindTexture(GL_TEXTURE_2D, m_metaBallTexture->GetName());
            const float reach = size * 0.5f * m_waterMaxElongation;
            const std::vector<size_t> visible = CullParticles(particles, CalcViewBox(), reach * reach);
            DrawSplats(particles, visible, size, m_waterElongation, m_waterMaxElongation);
            glBindTexture(GL_TEXTURE_2D, 0);
        }
        {
            // Half-transparent bodies that water can't enter are drawn black here once entities exist.
            util::ScopeProfiler black("Drawing black bodies");
            renderer.SetColor4(0, 0, 0, 0);
            glDisable(GL_BLEND);
        }
        const math::TVector2<int> viewport = renderer.GetViewportSize();
        m_waterTexture->Copy(std::min(viewport.x, BIG_TEXTURE_SIZE), std::min(viewport.y, BIG_TEXTURE_SIZE));
        glDepthMask(GL_TRUE);
        glPopMatrix();
    }
}

void App::DrawDebugOverlays(const std::vector<WaterParticle>& particles) const
{
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    glDisable(GL_TEXTURE_2D);
    if (m_drawBodyCenters || m_drawParticleCenters)
    {
        // Bodies join these lines once the simulation's bodies are part of the program.
        const bool asBodies = m_drawBodyCenters;
        renderer.SetColor4(asBodies ? math::Vec4(0, 1, 0, 0.5f) : math::Vec4(1, 0, 0, 0.5f));
        glBegin(GL_LINES);
        for (const WaterParticle& p : particles)
        {
            renderer.Vertex(p.position);
            renderer.Vertex(p.position + p.velocity * VELOCITY_LINE_SECONDS);
        }
        glEnd();
        renderer.SetColor4(asBodies ? math::Vec4(0, 1, 0, 0.9f) : math::Vec4(1, 0, 0, 1));
        glBegin(GL_POINTS);
        for (const WaterParticle& p : particles)
            renderer.Vertex(p.position);
        glEnd();
    }
}

} // namespace app
