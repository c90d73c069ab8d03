#pragma once

#include "gui/components/Component.h"

namespace gui
{

// A component that the left mouse button drags: it takes the drag that begins over its inner rectangle
// and remembers that it is dragging, as the delegators have no capture of the mouse.
class Draggable : public Component
{
public:
    Draggable() = default;

    void OnDragBegin(const input::DragEvent& event) override;
    void OnDrag(const input::DragEvent& event) override;
    void OnDragEnd(const input::DragEvent& event) override;

    bool IsDragging() const { return m_dragging; }

protected:
    bool m_dragging = false;
};

} // namespace gui
