#include "app/AppSettings.h"

#include "app/Camera.h"
#include "app/Group.h"
#include "app/Scene.h"
#include "app/Undoer.h"
#include "script/Parser.h"
#include "util/ColorUtil.h"
#include "util/Profiler.h"

#include <cmath>

namespace app
{
namespace
{
constexpr float CM_PER_INCH = 2.54f;
constexpr float JOINT_SIZE_CM = 0.66667f;
// A new object's colour keeps at least this intensity and this distance (in RGB) from the sky.
constexpr float MIN_ENTITY_INTENSITY = 0.05f;
constexpr float MIN_SKY_DISTANCE = 0.1f;
} // namespace

AppSettings::AppSettings()
    : m_reflected(QLEX_NEW new script::Reflected("App")),
      m_language(m_reflected.get(), "language", util::String("English")),
      m_lineWidth(m_reflected.get(), "lineWidth", 4.0f), m_pointSize(m_reflected.get(), "pointSize", 4.0f),
      m_drawOBBs(m_reflected.get(), "drawOBBs", false),
      m_drawMapOBBs(m_reflected.get(), "drawMapOBBs", false), m_drawBCs(m_reflected.get(), "drawBCs", false),
      m_drawSelectionOBB(m_reflected.get(), "drawSelectionOBB", false),
      m_drawVertices(m_reflected.get(), "drawVertices", false),
      m_drawCollisions(m_reflected.get(), "drawCollisions", false),
      m_drawBodyCenters(m_reflected.get(), "drawBodyCenters", false),
      m_drawParticleCenters(m_reflected.get(), "drawParticleCenters", false),
      m_drawParticleNeighbors(m_reflected.get(), "drawParticleNeighbors", false),
      m_polyTCFactor(m_reflected.get(), "polyTCFactor", math::Vec2(10, 10)),
      m_selectColor(m_reflected.get(), "selectColor", math::Vec3(1.0f, 0.5f, 0.5f)),
      m_fadeColor(m_reflected.get(), "fadeColor", math::Vec3(0, 0, 0)),
      m_fadeScale(m_reflected.get(), "fadeScale", math::Vec2(0.95f, 0.95f)),
      m_fadeTranslate(m_reflected.get(), "fadeTranslate", math::Vec2(0, 0)),
      m_fadeRotate(m_reflected.get(), "fadeRotate", 0.0f),
      m_minPointDist(m_reflected.get(), "minPointDist", 0.2f),
      m_maxPointDist(m_reflected.get(), "maxPointDist", 0.5f), m_DPI(m_reflected.get(), "DPI", 86.0f),
      m_maxSPHSpawn(m_reflected.get(), "maxSPHSpawn", 10000),
      m_waterElongation(m_reflected.get(), "waterElongation", 0.05f),
      m_waterMaxElongation(m_reflected.get(), "waterMaxElongation", 2.0f),
      m_metaCutoff(m_reflected.get(), "metaCutoff", 0.5f),
      m_borderWidth(m_reflected.get(), "borderWidth", 0.1f), m_maxUndo(m_reflected.get(), "maxUndo", 25ul),
      m_autosaveTime(m_reflected.get(), "autosaveTime", 30.0f),
      m_chainDensityFactor(m_reflected.get(), "chainDensityFactor", 20.0f),
      m_dragToolStrength(m_reflected.get(), "dragToolStrength", 0.25f),
      m_waterColor(m_reflected.get(), "waterColor", math::Vec4(0.1f, 0.1f, 1.0f, 0.7f)),
      m_simpleWater(m_reflected.get(), "simpleWater", false),
      m_waterFanceyFactor(m_reflected.get(), "waterFanceyFactor", 10.0f),
      m_borders(m_reflected.get(), "borders", true), m_guiReflected(QLEX_NEW new script::Reflected("GUI")),
      m_zoomFactor(m_guiReflected.get(), "zoomFactor", Camera::DEFAULT_ZOOM_FACTOR),
      m_freeDrawing(m_guiReflected.get(), "freeDrawing", false),
      m_autoGlue(m_guiReflected.get(), "autoGlue", false),
      m_leftClickMenus(m_guiReflected.get(), "leftClickMenus", false),
      m_drawHingesWhenRunning(m_guiReflected.get(), "drawHingesWhenRunning", true),
      m_trapUser(m_guiReflected.get(), "trapUser", false),
      m_simpleMode(m_guiReflected.get(), "simpleMode", false), m_guiScale([] { return 1.0f; })
{
    m_reflected->AddReflectedChild(m_sky.GetReflected());
    m_reflected->AddReflectedChild(m_guiReflected);
    m_reflected->AddVoidCmd("undo", [] { Undoer::GetInstancePtr()->Undo(); });
    m_reflected->AddVoidCmd("redo", [] { Undoer::GetInstancePtr()->Redo(); });
    // Only a history that exists has stacks to trim.
    m_maxUndo->AddChangeCallback(QLEX_NEW new util::Callback(
        []
        {
            if (Undoer::Exists())
                Undoer::GetInstancePtr()->OnMaxUndoChange();
        },
        this));
}

AppSettings::~AppSettings()
{
    // Scripts that still hold "App" find no settings of a dead application.
    if (!script::Parser::Exists())
        return;
    const script::ClosurePtr root = script::Parser::GetInstancePtr()->GetRootClosure();
    if (root->GetVariableByObject(m_reflected.get()))
        root->RemoveReflectedChild(m_reflected);
}

float AppSettings::GetPixelSize() const
{
    return Scene::GetInstancePtr()->GetCamera()->GUIToWorld()(0, 0) / m_guiScale();
}

float AppSettings::GetScreenCM() const
{
    return GetPixelSize() * m_DPI / CM_PER_INCH;
}

float AppSettings::GetDefaultJointSize() const
{
    return GetScreenCM() * JOINT_SIZE_CM;
}

float AppSettings::GetObjectBorderWidth() const
{
    return GetScreenCM() * m_borderWidth;
}

float AppSettings::GetMinimumPointDist() const
{
    return GetScreenCM() * m_minPointDist;
}

float AppSettings::GetMaximumPointDist() const
{
    return GetScreenCM() * m_maxPointDist;
}

math::Vec3 AppSettings::RandomColor3()
{
    // The cube root spreads lightness evenly by volume; halving and mirroring keeps it off the extremes.
    float lightness = std::pow(m_random.GetUniform(0.0f, 1.0f), 1.0f / 3.0f) * 0.5f;
    if (m_random.GetUniformInt(0, 2) == 1)
        lightness = 1.0f - lightness;
    const math::Vec2 disc = m_random.GetPointInCircle(1.0f);
    const float saturation = disc.Length();
    const float hue = (disc.x == 0 && disc.y == 0) ? 0.0f : std::atan2(disc.y, disc.x) * 180.0f / math::PIf;
    return util::HSL2RGB(hue, saturation, lightness);
}

math::Vec4 AppSettings::RandomEntityColor4()
{
    const math::Vec3 sky = m_sky.GetSkyColor();
    math::Vec3 color;
    do
    {
        color = RandomColor3();
    } while (util::RGBIntensity(color) < MIN_ENTITY_INTENSITY || (color - sky).Length() < MIN_SKY_DISTANCE);
    return math::Vec4(color.x, color.y, color.z, 1.0f);
}

math::Vec4 AppSettings::GetBorderColor(const Entity* entity) const
{
    QLEX_ASSERT(entity);
    const math::Vec4& c = entity->m_color;
    if (entity->m_selectedLook)
        return entity->m_markedLook ? math::Vec4(0.8f, 0.8f, 0.8f, 1) : math::Vec4(1, 1, 1, 1);
    if (entity->m_markedLook)
        return math::Vec4(0.2f, 0.2f, 0.2f, 1);
    return math::Vec4(c.x / 2, c.y / 2, c.z / 2, c.w);
}

void AppSettings::MirrorMe(input::ButtonInput button, EntityPtr entity)
{
    if (!entity)
        return;
    m_mirrorRequests[button].insert(entity);
}

void AppSettings::ServeMirrorRequests()
{
    util::ScopeProfiler profile("Mirror requests");
    // Most frames ask for nothing, and need no map of their own.
    if (m_mirrorRequests.empty())
        return;
    // Taken out first: mirroring may run callbacks that ask again, for the next frame.
    util::HashMap<input::ButtonInput, EntitySet, input::ButtonInput::Hasher> requests;
    requests.swap(m_mirrorRequests);
    Scene& scene = *Scene::GetInstancePtr();
    for (const auto& request : requests)
    {
        util::ScopeProfiler serving("Serving?");
        // Entities that share the key turn about one axis together, as one thing. One that left the scene
        // in this frame (its destroy key, say) is not brought back by being mirrored.
        const GroupPtr group = QLEX_NEW new Group();
        for (const EntityPtr& entity : request.second)
        {
            if (scene.HasEntity(entity))
                group->Add(entity);
        }
        if (!group->IsEmpty())
            scene.MirrorLongestAxis(group);
    }
}

} // namespace app
