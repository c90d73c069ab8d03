#include "app/tools/CloneTool.h"

#include "app/Scene.h"
#include "app/Snapshot.h"
#include "app/Undoer.h"
#include "app/tools/MoveTool.h"
#include "input/Key.h"

namespace app
{

void CloneTool::OnDragBegin(const input::DragEvent& event)
{
    Scene& scene = *Scene::GetInstancePtr();
    if (event.IsHandled() || event.button != input::Key::MOUSE_LEFT || !scene.IsModifierHeld(input::Ctrl))
        return;
    if (!SelectForGesture(scene.GetCamera()->GUIToWorld(event.startPos)))
        return;
    m_group = scene.GetSelection();
    m_offset = math::Vec2(0, 0);
    event.SetHandled();
    SetInUse(true);
}

void CloneTool::OnDrag(const input::DragEvent& event)
{
    if (!m_inUse)
        return;
    m_offset += Scene::GetInstancePtr()->GetCamera()->GUIToWorldNormal(event.delta);
    for (const EntityPtr& entity : m_group->GetEntities())
        entity->m_cloneOffset = m_offset;
    event.SetHandled();
}

void CloneTool::OnDragEnd(const input::DragEvent& event)
{
    if (!m_inUse)
        return;
    SetInUse(false);
    Scene& scene = *Scene::GetInstancePtr();
    const SnapshotPtr before = Snapshot::TakeSnapshot();
    const GroupPtr clones = scene.CreateClone(m_group, m_offset);
    ClearOffsets();
    m_group = nullptr;
    // With Ctrl still down the originals stay selected, ready for the next copy.
    if (!scene.IsModifierHeld(input::Ctrl))
        scene.SetSelection(clones);
    Undoer::GetInstancePtr()->AddUndo(before, "UndoClone");
    event.SetHandled();
}

bool CloneTool::Disband()
{
    if (!m_inUse)
        return false;
    SetInUse(false);
    if (m_group)
    {
        ClearOffsets();
        m_group = nullptr;
    }
    return true;
}

void CloneTool::ClearOffsets()
{
    for (const EntityPtr& entity : m_group->GetEntities())
        entity->m_cloneOffset.reset();
}

util::String CloneTool::GetCursorName() const
{
    return m_inUse ? "clone" : "";
}

} // namespace app
