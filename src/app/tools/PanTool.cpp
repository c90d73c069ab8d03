#include "app/tools/PanTool.h"

#include "app/Camera.h"
#include "app/Scene.h"
#include "input/Key.h"

namespace app
{

void PanTool::OnDragBegin(const input::DragEvent& event)
{
    if (event.IsHandled())
        return;
    SetInUse(true);
    event.SetHandled();
}

void PanTool::OnDrag(const input::DragEvent& event)
{
    if (!m_inUse)
        return;
    Scene::GetInstancePtr()->GetCamera()->PanView(event.delta);
    event.SetHandled();
}

void PanTool::OnDragEnd(const input::DragEvent& event)
{
    if (event.IsHandled() || event.button != input::Key::MOUSE_RIGHT)
        return;
    if (Disband())
        event.SetHandled();
}

bool PanTool::Disband()
{
    if (!m_inUse)
        return false;
    SetInUse(false);
    return true;
}

util::String PanTool::GetCursorName() const
{
    return m_inUse ? "pan" : "";
}

} // namespace app
