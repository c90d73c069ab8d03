#include "app/App.h"
#include "app/TextEditAction.h"
#include "app/entities/EntityPainter.h"
#include "app/entities/GLEntityPainter.h"

#include "app/AppGUI.h"
#include "app/Camera.h"
#include "app/Group.h"
#include "app/Language.h"
#include "app/LanguageTextLookup.h"
#include "app/ProgramFiles.h"
#include "app/Scene.h"
#include "app/entities/GeomEntity.h"
#include "app/tools/Tools.h"
#include "gui/GUI.h"
#include "input/Input.h"
#include "logging/Log.h"
#include "math/MatrixGL.h"
#include "physics/Body.h"
#include "physics/Contact.h"
#include "physics/Particle.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "rendering/AttribPusher.h"
#include "rendering/ColorPusher.h"
#include "rendering/GLContext.h"
#include "rendering/Renderer.h"
#include "rendering/ShaderManager.h"
#include "rendering/TextureManager.h"
#include "script/Parser.h"
#include "util/ColorUtil.h"
#include "util/FileSystem.h"
#include "util/Profiler.h"

#include <algorithm>
#include <cmath>

namespace app
{
namespace
{
const float TOOL_DEPTH = 0.75f;

float PositiveOrOne(float value)
{
    return std::isfinite(value) && value > 0 ? value : 1.0f;
}

// Inside the entity's scale preview, when a scale drag is under way.
void DrawWithScaleTransform(const Entity& entity)
{
    if (!entity.HasScaleTransform())
    {
        entity.Draw();
        return;
    }
    glPushMatrix();
    math::Mat4FromMat2D(entity.m_scaleTransform).MultToGL();
    entity.Draw();
    glPopMatrix();
}
// Keyboard panning, in GUI units per second.
constexpr float KEY_PAN_SPEED = 400.0f;
// Debug velocity lines show where a body would be in this many seconds.
constexpr float VELOCITY_LINE_SECONDS = 0.025f;
// A contact point turns from white to red at this age, in simulated seconds.
constexpr double NEW_CONTACT_AGE = 0.5;
// Everything glPushAttrib can save.
constexpr GLbitfield ALL_ATTRIBUTES = 0xFFFFF;

bool s_transparencyWarned = false;

bool IsBlack(const math::Vec3& c)
{
    return c.x == 0 && c.y == 0 && c.z == 0;
}

void Line(rendering::Renderer& renderer, const math::Vec2& from, const math::Vec2& vector)
{
    renderer.Vertex(from);
    renderer.Vertex(from + vector);
}
} // namespace

App::App() : m_settings(AppSettings::GetInstancePtr())
{
    SetFillOwner(true);
    m_settings->SetGUIScaleSource([] { return gui::GUI::GetInstancePtr()->GetScale(); });
    EntityPainter::Register(&GLEntityPainter::GetInstance());
    Scene::PointerSource pointer;
    pointer.isModifierHeld = [](input::Modifier modifier)
    { return input::Input::IsUp() && input::Input::GetInstancePtr()->CheckModifier(modifier); };
    pointer.position = []() -> std::optional<math::Vec2>
    {
        if (!input::Input::IsUp())
            return std::nullopt;
        return input::Input::GetInstancePtr()->GetMousePos();
    };
    Scene::GetInstancePtr()->SetPointerSource(std::move(pointer));

    m_frameTextureMentor = QLEX_NEW new util::Mentor<rendering::Texture>(&CreateBigTexture);
    m_waterTextureMentor = QLEX_NEW new util::Mentor<rendering::Texture>(&CreateBigTexture);
    m_metaBallTextureMentor = QLEX_NEW new util::Mentor<rendering::Texture>(&CreateMetaBallTexture);
    m_frameTexture = rendering::TextureProxy(m_frameTextureMentor);
    m_waterTexture = rendering::TextureProxy(m_waterTextureMentor);
    m_metaBallTexture = rendering::TextureProxy(m_metaBallTextureMentor);
    m_simpleWaterTexture = rendering::TextureManager::GetInstancePtr()->Load(
        "simpleWater", rendering::TextureManager::DefaultImageType());
    m_waterShader = rendering::ShaderManager::GetInstancePtr()->Load("water");

    m_background = QLEX_NEW new Background();
    m_background->SetFillOwner(true);
    AddComponent(m_background);
    m_appGUI = QLEX_NEW new AppGUI();
    AddComponent(m_appGUI);
    GetCamera().Reset();

    TextUndoSink::Register();
    LanguageTextLookup::Register();
    // A new language shows in a rebuilt interface.
    Language::GetInstancePtr()->AddOnLoadCallback(util::MakeCallback(&App::CreateGUI, this));
}

App::~App()
{
    TextUndoSink::Unregister();
    LanguageTextLookup::Unregister();
    // Entities drawn after the window's root has gone draw nothing, rather than into a dead window.
    if (EntityPainter::Get() == &GLEntityPainter::GetInstance())
        EntityPainter::Register(nullptr);
    if (Scene::Exists())
        Scene::GetInstancePtr()->SetPointerSource(Scene::PointerSource());
}

Camera& App::GetCamera() const
{
    return *Scene::GetInstancePtr()->GetCamera();
}

void App::SyncViewSize()
{
    GetCamera().SetViewSize(GetOuterSize());
}

void App::OnFormChange()
{
    gui::Component::OnFormChange();
    SyncViewSize();
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
        PanWithArrowKeys(dt);
    physics::Simulation::GetInstancePtr()->Update(dt);
    Scene::GetInstancePtr()->Update(dt);
    GetCamera().Update(dt);
    {
        util::ScopeProfiler contacts("g_sim->GetContacts");
        m_contacts = physics::Simulation::GetInstancePtr()->GetContacts();
    }
    QLEX_ASSERT(math::IsFinite(GetMousePos()));
    m_settings->ServeMirrorRequests();
}

void App::PanWithArrowKeys(float dt)
{
    const input::Input& keys = *input::Input::GetInstancePtr();
    float x = 0, y = 0;
    if (keys.IsKeyDown(SDLK_LEFT))
        x -= 1;
    if (keys.IsKeyDown(SDLK_RIGHT))
        x += 1;
    if (keys.IsKeyDown(SDLK_UP))
        y -= 1;
    if (keys.IsKeyDown(SDLK_DOWN))
        y += 1;
    if (x != 0 || y != 0)
        GetCamera().PanView(math::Vec2(dt * -KEY_PAN_SPEED * x, dt * -KEY_PAN_SPEED * y));
}

void App::OnShutdown()
{
    m_appGUI->SaveSceneAs(Scene_Last, true);
    util::FileSystem::EraseFile(util::FileSystem::GetInstancePtr()->SceneDir() + Scene_Autosave);
}

void App::CreateGUI()
{
    m_appGUI->Rebuild();
}

void App::SetFirstTimeRunning()
{
    m_firstTime = true;
    m_appGUI->SetUpDefaults();
}

math::Vec2 App::GetMousePos() const
{
    return GetCamera().GUIToWorld(GetMousePosLocal());
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

    FillDrawList();
    const std::vector<WaterParticle> water = GatherWater();
    if (!water.empty() && !m_settings->m_simpleWater)
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

    const math::Vec3 fade = m_settings->m_fadeColor;
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
            const math::Vec2 translate = m_settings->m_fadeTranslate;
            const math::Vec2 scale = m_settings->m_fadeScale;
            glTranslatef(translate.x, translate.y, 0);
            glTranslatef(half.x, half.y, 0);
            glRotatef(m_settings->m_fadeRotate, 0, 0, 1);
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
    // GL refuses widths that are not above 0 with an error that would end the program: a script's 0 is
    // taken as the thinnest line GL draws.
    glLineWidth(PositiveOrOne(m_settings->m_lineWidth));
    glPointSize(PositiveOrOne(m_settings->m_pointSize));
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    DrawEntities();
    DrawDebugOverlays(water);
    {
        // The stroke in progress and what the tool shows of its gesture, over the world.
        util::ScopeProfiler tool("Tool::Draw");
        renderer.SetColor4(1, 1, 1, 1);
        // In front of every entity: they take depths from 0 to about a half, and 0 itself is the far
        // plane, where a tool's filled preview would be clipped away.
        glPushMatrix();
        glTranslatef(0, 0, TOOL_DEPTH);
        Tools::GetInstancePtr()->GetTool()->Draw();
        glPopMatrix();
    }

    renderer.SetColor4(1, 1, 1, 1);
    if (!IsBlack(fade))
    {
        const math::TVector2<int> viewport = renderer.GetViewportSize();
        m_frameTexture->Copy(std::min(viewport.x, BIG_TEXTURE_SIZE), std::min(viewport.y, BIG_TEXTURE_SIZE));
    }
    m_drawList.clear();
    glPopMatrix();
}

void App::FillDrawList() const
{
    util::ScopeProfiler culling("Culling");
    const WorldBox view = CalcViewBox();
    m_drawList.clear();
    // A shape under a scale drag or with a clone preview may be drawn where its own box isn't.
    for (const EntityPtr& entity : Scene::GetInstancePtr()->GetEntities())
    {
        if (entity->IsInView(view) || entity->HasScaleTransform() || entity->m_cloneOffset)
            m_drawList.push_back(entity);
    }
}

void App::DrawEntities() const
{
    util::ScopeProfiler profile("Entities");
    const Scene& scene = *Scene::GetInstancePtr();
    if (IsMouseOverInner())
    {
        util::ScopeProfiler mouseOver("Mouse-over");
        const GroupPtr marked = scene.GetSelectionAt(GetMousePos());
        for (const EntityPtr& entity : m_drawList)
            entity->m_markedLook = marked && marked->Contains(entity);
    }

    rendering::ColorPusher color;
    glPushMatrix();
    // Every entity, and every clone preview, one step nearer than the last: later ones lie on top, and
    // all of them stay inside the depth range.
    const float zStep = 1.0f / (2.0f * static_cast<float>(m_drawList.size()) + 3.0f);
    glDisable(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    const GroupPtr& selection = scene.GetSelection();
    const bool ctrl = input::Input::GetInstancePtr()->CheckModifier(input::Ctrl);
    static util::StaticProfilerData s_entityDraw("Entity::Draw");
    for (const EntityPtr& entity : m_drawList)
    {
        util::StaticProfilerScope draw(s_entityDraw);
        glTranslatef(0, 0, zStep);
        const bool selected = selection && selection->Contains(entity);
        // While a clone is dragged, the original looks selected only if Ctrl keeps it in the selection.
        entity->m_selectedLook = entity->m_cloneOffset ? selected && ctrl : selected;
        DrawWithScaleTransform(*entity);
        if (entity->m_cloneOffset)
        {
            glTranslatef(0, 0, zStep);
            entity->m_selectedLook = true;
            glPushMatrix();
            glTranslatef(entity->m_cloneOffset->x, entity->m_cloneOffset->y, 0);
            DrawWithScaleTransform(*entity);
            glPopMatrix();
        }
    }
    glPopMatrix();
}

void App::DrawSelectionOBB() const
{
    const GroupPtr& selection = Scene::GetInstancePtr()->GetSelection();
    if (!selection)
        return;
    const math::OBB2D box = selection->CalcFiniteOBB();
    const float area = box.Area();
    if (!(math::IsFinite(area) && area > 0))
        return;
    math::Vec2 corners[4];
    box.CalcCorners(corners);
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    renderer.SetColor4(0, 0, 1, 0.5f);
    glBegin(GL_QUADS);
    for (const math::Vec2& corner : corners)
        renderer.Vertex(corner);
    glEnd();
}

void App::DrawWater(const std::vector<WaterParticle>& particles) const
{
    util::ScopeProfiler profile("Water");
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    const math::Vec4 color = m_settings->m_waterColor;
    if (!m_settings->m_simpleWater && rendering::ShaderManager::IsUsable(m_waterShader))
    {
        // The program thresholds the field and keeps the colour's own alpha: see-through water needs no
        // constant blend colour.
        const rendering::Shader& shader = *m_waterShader.get();
        shader.Bind();
        shader.SetUniform("Cutoff", float(m_settings->m_metaCutoff));
        shader.SetUniform("Color", color);
        glEnable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, m_waterTexture->GetName());
        DrawBigTextureRect();
        glBindTexture(GL_TEXTURE_2D, 0);
        shader.Unbind();
        return;
    }
    if (!m_settings->m_simpleWater)
    {
        // No shader program draws the surface: the fixed-function alpha test thresholds the field.
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
            else if (!s_transparencyWarned)
            {
                // Once a run: every frame would bury the log.
                s_transparencyWarned = true;
                Log(logging::Warning,
                    "Water transparency not supported by your computer. Try switching on shaders "
                    "(anti-aliasing in the options menu), or upgrade your graphics drivers.");
            }
        }
        renderer.SetColor4(color.x, color.y, color.z, 1.0f);
        glEnable(GL_ALPHA_TEST);
        glAlphaFunc(GL_GREATER, m_settings->m_metaCutoff);
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

    const float size = 2.0f * 2.0f * static_cast<float>(physics::SPH::GetInstancePtr()->m_radius);
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
            const float size = 2.0f * static_cast<float>(physics::SPH::GetInstancePtr()->m_radius) * 4.0f;
            glBindTexture(GL_TEXTURE_2D, m_metaBallTexture->GetName());
            const float reach = size * 0.5f * m_settings->m_waterMaxElongation;
            const std::vector<size_t> visible = CullParticles(particles, CalcViewBox(), reach * reach);
            DrawSplats(particles, visible, size, m_settings->m_waterElongation,
                       m_settings->m_waterMaxElongation);
            glBindTexture(GL_TEXTURE_2D, 0);
        }
        {
            // Water behind a see-through body that it can't enter would show through it: its field is
            // erased there. An opaque body covers the water by itself later.
            util::ScopeProfiler black("Drawing black bodies");
            renderer.SetColor4(0, 0, 0, 0);
            glDisable(GL_BLEND);
            for (const EntityPtr& entity : m_drawList)
            {
                const GeomEntity* geomEntity = dynamic_cast<const GeomEntity*>(entity.get());
                if (geomEntity && geomEntity->m_color.w < 1.0f && geomEntity->GetGeom() &&
                    geomEntity->GetGeom()->GetWaterCollide())
                    geomEntity->DrawBlack();
            }
        }
        const math::TVector2<int> viewport = renderer.GetViewportSize();
        m_waterTexture->Copy(std::min(viewport.x, BIG_TEXTURE_SIZE), std::min(viewport.y, BIG_TEXTURE_SIZE));
        glDepthMask(GL_TRUE);
        glPopMatrix();
    }
}

void App::DrawDebugOverlays(const std::vector<WaterParticle>& particles) const
{
    glDisable(GL_TEXTURE_2D);
    if (m_settings->m_drawSelectionOBB)
        DrawSelectionOBB();
    if (m_settings->m_drawBodyCenters)
        DrawBodyCenters();
    if (m_settings->m_drawParticleCenters)
        DrawParticleCenters(particles);
    if (m_settings->m_drawParticleNeighbors)
        DrawParticleNeighbors();
    if (m_settings->m_drawCollisions)
        DrawCollisions();
}

void App::DrawBodyCenters() const
{
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    const physics::Simulation& sim = *physics::Simulation::GetInstancePtr();
    std::vector<const physics::AbstractBody*> bodies;
    for (const util::SharedPtr<physics::Body>& body : sim.GetBodies())
    {
        if (!body->IsImmovable())
            bodies.push_back(body.get());
    }
    for (const util::SharedPtr<physics::Particle>& particle : sim.GetParticles())
        bodies.push_back(particle.get());

    renderer.SetColor4(0, 1, 0, 0.5f);
    glBegin(GL_LINES);
    for (const physics::AbstractBody* body : bodies)
        Line(renderer, body->GetPosition(), body->GetVelocity() * VELOCITY_LINE_SECONDS);
    glEnd();
    renderer.SetColor4(0, 1, 0, 0.9f);
    glBegin(GL_POINTS);
    for (const physics::AbstractBody* body : bodies)
        renderer.Vertex(body->GetPosition());
    glEnd();
}

void App::DrawParticleCenters(const std::vector<WaterParticle>& particles) const
{
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    renderer.SetColor4(1, 0, 0, 0.5f);
    glBegin(GL_LINES);
    for (const WaterParticle& p : particles)
        Line(renderer, p.position, p.velocity * VELOCITY_LINE_SECONDS);
    glEnd();
    renderer.SetColor4(1, 0, 0, 1);
    glBegin(GL_POINTS);
    for (const WaterParticle& p : particles)
        renderer.Vertex(p.position);
    glEnd();
}

void App::DrawParticleNeighbors() const
{
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    // A copy: drawing must not hold the simulation's own list.
    const std::vector<util::SharedPtr<physics::Particle>> particles =
        physics::Simulation::GetInstancePtr()->GetParticles();
    renderer.SetColor4(0, 1, 0, 0.5f);
    glBegin(GL_LINES);
    for (const util::SharedPtr<physics::Particle>& p : particles)
    {
        for (const physics::Particle::Neighbor& neighbor : p->GetNeighbors())
        {
            if (neighbor.distance != 0)
                Line(renderer, p->GetPosition(), neighbor.offset);
        }
    }
    glEnd();
}

void App::DrawCollisions() const
{
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    const double now = physics::GetSimTime();
    glBegin(GL_LINES);
    for (const util::SharedPtr<physics::Contact>& contact : m_contacts)
    {
        renderer.SetColor4(0.5f, 0, 0, 0.5f);
        Line(renderer, contact->GetPoint(), contact->GetTotalImpulse());
        renderer.SetColor4(0, 1, 0, 0.5f);
        Line(renderer, contact->GetPoint(), contact->GetNormal() * contact->GetDepth());
    }
    glEnd();
    glBegin(GL_POINTS);
    for (const util::SharedPtr<physics::Contact>& contact : m_contacts)
    {
        if (now - contact->GetBirthTime() < NEW_CONTACT_AGE)
            renderer.SetColor4(1, 1, 1, 1);
        else
            renderer.SetColor4(1, 0, 0, 1);
        renderer.Vertex(contact->GetPoint());
    }
    glEnd();
}

} // namespace app
