#include "app/tools/MoveTool.h"

#include "app/Scene.h"
#include "app/Undoer.h"
#include "app/entities/GeomEntity.h"
#include "input/Key.h"

namespace app
{

bool SelectForGesture(math::Vec2 p)
{
    Scene& scene = *Scene::GetInstancePtr();
    const EntityPtr under = scene.GetEntityAt(p);
    if (!under)
        return false;
    if (!scene.GetSelection()->Contains(under))
        scene.SelectAt(p);
    return true;
}

GroupPtr SelectionForGesture()
{
    const Scene& scene = *Scene::GetInstancePtr();
    const GroupPtr& selection = scene.GetSelection();
    return scene.IsModifierHeld(input::Alt) ? selection : scene.Widen(selection);
}

void MoveTool::OnDragBegin(const input::DragEvent& event)
{
    Scene& scene = *Scene::GetInstancePtr();
    if (event.IsHandled() || event.button != input::Key::MOUSE_LEFT || scene.IsModifierHeld(input::Ctrl))
        return;
    const math::Vec2 p = scene.GetCamera()->GUIToWorld(event.startPos);
    if (!SelectForGesture(p))
        return;
    m_snapshot = Snapshot::TakeSnapshot();
    const GroupPtr group = SelectionForGesture();
    // A body flung by the simulation would carry its old speed into the place it is put down.
    for (const util::SharedPtr<GeomEntity>& entity : group->GetAllAsSet<GeomEntity>())
    {
        const util::SharedPtr<physics::Body> body = entity->GetBody();
        if (body && !body->IsHeld() && body->GetMassInv() != 0.0f)
        {
            body->SetVelocity(math::Vec2(0, 0));
            body->SetAngularVelocity(0.0f);
        }
    }
    m_transformer = QLEX_NEW new Transformer(group);
    event.SetHandled();
    SetInUse(true);
}

void MoveTool::OnDrag(const input::DragEvent& event)
{
    if (!m_inUse)
        return;
    const math::Vec2 delta = Scene::GetInstancePtr()->GetCamera()->GUIToWorldNormal(event.delta);
    m_transformer->Transform(math::Mat2D::Translation(delta));
    event.SetHandled();
}

void MoveTool::OnDragEnd(const input::DragEvent& event)
{
    if (!m_inUse)
        return;
    m_transformer = nullptr;
    Undoer::GetInstancePtr()->AddUndo(m_snapshot, "UndoMove");
    m_snapshot = nullptr;
    SetInUse(false);
    event.SetHandled();
}

bool MoveTool::Disband()
{
    if (m_inUse)
    {
        SetInUse(false);
        m_transformer = nullptr;
        m_snapshot->Restore();
        m_snapshot = nullptr;
    }
    return false;
}

util::String MoveTool::GetCursorName() const
{
    return m_inUse ? "move" : "";
}

} // namespace app
