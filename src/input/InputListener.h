#pragma once

#include "input/Events.h"
#include "util/Callback.h"
#include "util/SharedPtr.h"

#include <map>

namespace input
{

// Receives every event that its delegator delivers and decides itself whether to act: it tests the
// handled flag and whether the mouse is over it. The priority orders delivery (highest first) and, for
// components, drawing (highest last, on top).
class InputListener : public util::Pointee
{
public:
    explicit InputListener(int priority);
    virtual ~InputListener();

    int GetPriority() const { return m_priority; }
    // Runs the priority-change callbacks after the new value is stored, so that delegators re-sort.
    void SetPriority(int priority);
    void AddPriorityChangeCallback(util::SharedPtr<util::Callback> callback);

    virtual void OnMouseMove(const MouseEvent&) {}
    // Records the key in this listener's own table unless somebody else handled the event first;
    // overrides call this to keep IsKeyDown working.
    virtual void OnKeyEvent(const KeyEvent& event);
    virtual void OnOtherEvent(const InputEvent&) {}
    virtual void OnDragBegin(const DragEvent&) {}
    virtual void OnDrag(const DragEvent&) {}
    virtual void OnDragEnd(const DragEvent&) {}
    virtual void OnClick(const ClickEvent&) {}
    virtual void OnJoyAxisEvent(const JoyAxisEvent&) {}

    // True only while the key is down and its press reached this listener unhandled.
    bool IsKeyDown(SDLKey key) const;

protected:
    int m_priority;
    util::CallbackSet m_priorityChangeCallbacks;
    std::map<SDLKey, bool> m_keysPressed;
};

} // namespace input
