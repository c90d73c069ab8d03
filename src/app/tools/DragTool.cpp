#include "app/tools/DragTool.h"

#include "app/AppSettings.h"
#include "app/Scene.h"
#include "app/Undoer.h"
#include "input/Key.h"
#include "physics/Simulation.h"
#include "rendering/GLContext.h"
#include "rendering/Renderer.h"

namespace app
{

DragTool::DragTool()
    : m_mouseBody(QLEX_NEW new physics::Body()), m_mouseGeom(QLEX_NEW new physics::WorldGeom())
{
    m_mouseBody->SetGeom(m_mouseGeom);
}

void DragTool::OnDragBegin(const input::DragEvent& event)
{
    Scene& scene = *Scene::GetInstancePtr();
    if (event.IsHandled() || event.button != input::Key::MOUSE_LEFT || scene.IsModifierHeld(input::Ctrl))
        return;
    const math::Vec2 p = scene.GetCamera()->GUIToWorld(event.startPos);
    const util::SharedPtr<physics::Geom> geom = scene.GetGeomAt(p, math::INF);
    const physics::AbstractBody* body = geom ? geom->GetBody() : nullptr;
    // The background and bodies held by another gesture can't be pulled.
    if (!body || body->GetMassInv() == 0.0f || body->IsHeld())
        return;

    m_snapshot = Snapshot::TakeSnapshot();
    physics::Simulation& sim = *physics::Simulation::GetInstancePtr();
    m_mouseBody->SetGeom(m_mouseGeom);
    sim.AddBody(m_mouseBody);
    m_mouseBody->SetPosition(p);
    m_mouseBody->ApplyPoseChange();
    m_mousePos = p;

    m_hinge = QLEX_NEW new physics::Hinge(m_mouseGeom, geom, p);
    const float strength = AppSettings::GetInstancePtr()->m_dragToolStrength;
    m_hinge->SetDistanceWeight(strength);
    m_hinge->SetWarmStartWeight(strength);
    sim.AddConstraint(m_hinge);
    m_moved = false;
    SetInUse(true);
    event.SetHandled();
}

void DragTool::OnDrag(const input::DragEvent& event)
{
    if (event.button != input::Key::MOUSE_LEFT || !m_inUse)
        return;
    m_moved = true;
    event.SetHandled();
}

void DragTool::OnDragEnd(const input::DragEvent& event)
{
    if (event.button == input::Key::MOUSE_LEFT && Disband())
        event.SetHandled();
}

void DragTool::Update(float)
{
    if (!m_hinge)
        return;
    // The pulled body can leave the world under the pin (Delete, undo, a destroy key): the pin goes too.
    if (!physics::Simulation::GetInstancePtr()->HasBody(m_hinge->GetGeom(1)->GetBodyBody()))
    {
        Disband();
        return;
    }
    m_mousePos = Scene::GetInstancePtr()->GetMousePos();
    m_mouseBody->SetPosition(m_mousePos);
    m_mouseBody->ApplyPoseChange();
}

void DragTool::Draw() const
{
    if (!m_hinge)
        return;
    math::Vec2 ends[2];
    m_hinge->GetWorldPoints(ends);
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    glBegin(GL_LINES);
    renderer.Vertex(ends[0]);
    renderer.Vertex(ends[1]);
    glEnd();
}

bool DragTool::Disband()
{
    if (!m_hinge)
        return false;
    SetInUse(false);
    physics::Simulation& sim = *physics::Simulation::GetInstancePtr();
    sim.RemoveConstraint(m_hinge);
    sim.RemoveBody(m_mouseBody);
    m_hinge = nullptr;
    if (m_moved)
        Undoer::GetInstancePtr()->AddUndo(m_snapshot, "UndoDrag");
    m_snapshot = nullptr;
    return true;
}

util::String DragTool::GetCursorName() const
{
    return m_inUse ? "drag" : "";
}

} // namespace app
