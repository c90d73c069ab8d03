#include "input/InputListener.h"

#include "input/KeyState.h"

namespace input
{

InputListener::InputListener(int priority) : m_priority(priority) {}

InputListener::~InputListener() = default;

void InputListener::SetPriority(int priority)
{
    m_priority = priority;
    m_priorityChangeCallbacks.CallAll();
}

void InputListener::AddPriorityChangeCallback(util::SharedPtr<util::Callback> callback)
{
    m_priorityChangeCallbacks.Add(callback);
}

void InputListener::OnKeyEvent(const KeyEvent& event)
{
    if (!event.IsHandled())
        m_keysPressed[event.key] = event.pressed;
}

bool InputListener::IsKeyDown(SDLKey key) const
{
    auto found = m_keysPressed.find(key);
    if (found == m_keysPressed.end() || !found->second)
        return false;
    return KeyState::IsDown(key);
}

} // namespace input
