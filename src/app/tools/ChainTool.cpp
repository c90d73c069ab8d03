#include "app/tools/ChainTool.h"

#include "app/App.h"
#include "app/AppSettings.h"
#include "app/Scene.h"
#include "app/Undoer.h"
#include "app/entities/CircleEntity.h"
#include "app/tools/ToolActions.h"
#include "input/Key.h"
#include "physics/Circle.h"
#include "physics/Simulation.h"
#include "rendering/Renderer.h"

#include <cmath>

namespace app
{
namespace
{
Scene& TheScene()
{
    return *Scene::GetInstancePtr();
}

// The topmost geom under p other than `except`; the world geom where nothing else is.
util::SharedPtr<physics::Geom> GeomUnder(const math::Vec2& p, const physics::Geom* except)
{
    for (const util::SharedPtr<physics::Geom>& geom : TheScene().GetGeomsAt(p, math::INF))
    {
        if (geom.get() != except)
            return geom;
    }
    return physics::Simulation::GetInstancePtr()->GetWorldGeom();
}

float Angle(const math::Vec2& d)
{
    return d.x == 0 && d.y == 0 ? 0.0f : std::atan2(d.y, d.x);
}
} // namespace

void ChainTool::OnDragBegin(const input::DragEvent& event)
{
    if (event.IsHandled() || event.button != input::Key::MOUSE_LEFT)
        return;
    SetInUse(true);
    const math::Vec2 p = ToWorld(event.startPos);
    m_startGeom = TheScene().GetGeomAt(p, math::INF);
    m_lastPos = m_startGeom->GetClosestEdge(p);
    AppSettings& settings = *AppSettings::GetInstancePtr();
    m_linkColor = settings.RandomEntityColor4();
    m_hingeColor = settings.RandomEntityColor4();
    m_chain = QLEX_NEW new Chain();
    m_lastHinge = nullptr;
    event.SetHandled();
}

void ChainTool::OnDrag(const input::DragEvent& event)
{
    if (event.button != input::Key::MOUSE_LEFT || !m_inUse || IsShiftHeld())
        return;
    AppendChain(ToWorld(event.position));
    event.SetHandled();
}

void ChainTool::AppendChain(const math::Vec2& target)
{
    const AppSettings& settings = *AppSettings::GetInstancePtr();
    const physics::Simulation& sim = *physics::Simulation::GetInstancePtr();
    const float r = settings.GetScreenCM() * LINK_RADIUS_CM;
    const float hingeSize = HINGE_SIZE_SHARE * r;
    const float density = settings.m_chainDensityFactor * sim.m_defaultBodyDensity;
    Scene& scene = TheScene();
    while ((target - m_lastPos).Length() >= 2 * r)
    {
        if (!m_snapshot)
            m_snapshot = Snapshot::TakeSnapshot();
        const math::Vec2 d = (target - m_lastPos).GetNormalized();
        const math::Vec2 c = m_lastPos + d * r;
        util::SharedPtr<physics::Circle> link = QLEX_NEW new physics::Circle(c, r);
        link->SetDensity(density);
        link->OnGeomChange();
        link->SetWorldPose(math::Mat2D::TranslationRotation(c, Angle(d)));
        if (settings.m_autoGlue)
            sim.GetWorldBody()->AddGeom(link);

        // The link's back holds on to the previous link's front, or to where the chain starts.
        const math::Vec2 back(-r, 0);
        if (!m_lastHinge)
        {
            util::SharedPtr<HingeEntity> first = QLEX_NEW new HingeEntity(hingeSize);
            first->AttachToLocal(
                m_startGeom, math::TransformCoordinate(m_startGeom->GetWorldToGeom(), m_lastPos), link, back);
            first->SetColor(m_hingeColor);
            m_chain->AddEntity(first);
            scene.AddEntity(first);
        }
        else
            m_lastHinge->AttachToLocal(m_lastHinge->m_geoms[0], m_lastHinge->m_localPos[0], link, back);

        util::SharedPtr<CircleEntity> linkEntity = QLEX_NEW new CircleEntity(link);
        linkEntity->SetColor(m_linkColor);
        m_chain->AddEntity(linkEntity);
        scene.AddEntity(linkEntity);

        // Between events the head is pinned to what lies under the mouse, so that it doesn't fall while
        // it is drawn, also with the simulation running.
        m_lastPos += d * (2 * r);
        m_lastHinge = QLEX_NEW new HingeEntity(hingeSize);
        m_lastHinge->AttachToWorld(link, m_lastPos, GeomUnder(target, link.get()), m_lastPos);
        m_lastHinge->SetColor(m_hingeColor);
        m_chain->AddEntity(m_lastHinge);
        scene.AddEntity(m_lastHinge);
    }
}

void ChainTool::OnDragEnd(const input::DragEvent& event)
{
    if (event.IsHandled() || event.button != input::Key::MOUSE_LEFT || !m_inUse)
        return;
    const math::Vec2 p = ToWorld(event.position);
    AppendChain(p);
    if (m_lastHinge)
    {
        const util::SharedPtr<physics::Geom> head = m_lastHinge->m_geoms[0];
        const util::SharedPtr<physics::Geom> g = GeomUnder(p, head.get());
        const util::SharedPtr<physics::Geom> world = physics::Simulation::GetInstancePtr()->GetWorldGeom();
        // A chain from nothing to nothing is fixed at its start only: its head hangs free.
        if (g == m_startGeom && g == world)
            TheScene().RemoveEntity(m_lastHinge);
        else
            m_lastHinge->AttachToLocal(head, m_lastHinge->m_localPos[0], g,
                                       math::TransformCoordinate(g->GetWorldToGeom(), g->GetClosestEdge(p)));
    }
    if (m_snapshot)
        Undoer::GetInstancePtr()->AddUndo(m_snapshot, "UndoChain");
    m_snapshot = nullptr;
    Disband();
    event.SetHandled();
}

bool ChainTool::Disband()
{
    if (!m_inUse)
        return false;
    SetInUse(false);
    m_snapshot = nullptr;
    m_chain = nullptr;
    m_lastHinge = nullptr;
    return true;
}

void ChainTool::Draw() const
{
    if (m_inUse)
        DrawLine(Line({m_lastPos, App::GetInstancePtr()->GetMousePos()}));
}

} // namespace app
