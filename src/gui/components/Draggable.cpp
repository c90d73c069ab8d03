#include "gui/components/Draggable.h"

#include "input/Key.h"

namespace gui
{

void Draggable::OnDragBegin(const input::DragEvent& event)
{
    if (IsMouseOverInner() && event.button == input::Key::MOUSE_LEFT && !event.IsHandled())
    {
        m_dragging = true;
        event.SetHandled();
    }
    Component::OnDragBegin(event);
}

void Draggable::OnDrag(const input::DragEvent& event)
{
    Component::OnDrag(event);
}

void Draggable::OnDragEnd(const input::DragEvent& event)
{
    m_dragging = false;
    Component::OnDragEnd(event);
}

} // namespace gui
