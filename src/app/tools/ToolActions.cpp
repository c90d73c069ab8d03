#include "app/tools/ToolActions.h"

#include "app/AppSettings.h"
#include "app/Camera.h"
#include "app/Scene.h"
#include "app/Snapshot.h"
#include "app/Undoer.h"
#include "input/Key.h"
#include "rendering/GLContext.h"
#include "rendering/Renderer.h"
#include "util/Profiler.h"

namespace app
{

void AddUndoable(const EntityPtr& entity, const char* undoKey)
{
    const SnapshotPtr before = Snapshot::TakeSnapshot();
    Scene::GetInstancePtr()->AddEntity(entity);
    Undoer::GetInstancePtr()->AddUndo(before, undoKey);
}

void DrawLine(const Line& line)
{
    if (line.Size() < 2)
        return;
    util::ScopeProfiler profile("Line::Draw");
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    glBegin(GL_LINE_STRIP);
    for (const math::Vec2& p : line.GetPoints())
        renderer.Vertex(p);
    glEnd();
}

bool IsShiftHeld()
{
    return Scene::GetInstancePtr()->IsModifierHeld(input::Shift);
}

math::Vec2 ToWorld(const math::Vec2& guiPos)
{
    return Scene::GetInstancePtr()->GetCamera()->GUIToWorld(guiPos);
}

bool MayStartShape(const input::DragEvent& event)
{
    if (event.IsHandled() || event.button != input::Key::MOUSE_LEFT)
        return false;
    return AppSettings::GetInstancePtr()->m_freeDrawing ||
           !Scene::GetInstancePtr()->GetEntityAt(ToWorld(event.startPos));
}

} // namespace app
