#include "app/tools/SpringTool.h"

#include "app/AppSettings.h"
#include "app/Scene.h"
#include "app/tools/ToolActions.h"
#include "input/Key.h"
#include "physics/Simulation.h"

namespace app
{

math::Vec2 SpringTool::StartPoint() const
{
    return math::TransformCoordinate(m_geom->GetPose(), m_local);
}

void SpringTool::OnDragBegin(const input::DragEvent& event)
{
    if (event.IsHandled() || event.button != input::Key::MOUSE_LEFT)
        return;
    const Scene& scene = *Scene::GetInstancePtr();
    const math::Vec2 p = scene.GetCamera()->GUIToWorld(event.startPos);
    m_geom = scene.GetGeomAt(p, math::INF);
    m_local = math::TransformCoordinate(m_geom->GetWorldToGeom(), p);
    m_spring = QLEX_NEW new SpringEntity(AppSettings::GetInstancePtr()->GetDefaultJointSize());
    m_spring->AttachToWorld(m_geom, p, physics::Simulation::GetInstancePtr()->GetWorldGeom(), p);
    SetInUse(true);
    event.SetHandled();
}

void SpringTool::Update(float)
{
    if (!m_spring)
        return;
    const Scene& scene = *Scene::GetInstancePtr();
    const math::Vec2 a = StartPoint();
    const math::Vec2 b = scene.GetMousePos();
    m_spring->AttachToWorld(m_geom, a, scene.GetGeomAtMousePos(), b);
    const math::real length = (b - a).Length();
    m_spring->LengthAttrib() = length;
    m_spring->LengthAttrib()->SetDefault(length);
}

void SpringTool::Draw() const
{
    if (m_spring)
        m_spring->Draw();
}

void SpringTool::OnDragEnd(const input::DragEvent& event)
{
    if (event.button != input::Key::MOUSE_LEFT || !m_spring)
        return;
    Scene& scene = *Scene::GetInstancePtr();
    const math::Vec2 p = scene.GetCamera()->GUIToWorld(event.position);
    const GeomPtr end = scene.GetGeomAt(p, math::INF);
    // A spring needs two geoms; from the background to the background is no spring either.
    if (end == m_geom)
    {
        Disband();
        return;
    }
    m_spring->AttachToWorld(m_geom, StartPoint(), end, p);
    AddUndoable(m_spring, "UndoSpring");
    m_spring = nullptr;
    SetInUse(false);
    event.SetHandled();
}

bool SpringTool::Disband()
{
    if (!m_spring)
        return false;
    SetInUse(false);
    m_spring->RemoveFromSimulation();
    m_spring = nullptr;
    return true;
}

} // namespace app
