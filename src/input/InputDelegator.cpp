#include "input/InputDelegator.h"

#include <algorithm>

namespace input
{

InputDelegator::InputDelegator(int priority)
    : InputListener(priority), m_iterationLock(0),
      m_sortCallback(util::MakeCallback(&InputDelegator::Sort, this)), m_sortPending(false)
{
}

InputDelegator::~InputDelegator() = default;

void InputDelegator::AddListener(const util::WeakPtr<InputListener>& listener)
{
    if (m_iterationLock > 0)
        m_pendingChanges.emplace_back(true, listener);
    else
        AddImpl(listener);
}

void InputDelegator::AddListener(InputListener* listener)
{
    AddListener(util::WeakPtr<InputListener>(listener));
}

void InputDelegator::RemoveListener(const util::WeakPtr<InputListener>& listener)
{
    if (m_iterationLock > 0)
        m_pendingChanges.emplace_back(false, listener);
    else
        RemoveImpl(listener);
}

void InputDelegator::AddImpl(const util::WeakPtr<InputListener>& listener)
{
    QLEX_ASSERT(m_iterationLock == 0);
    if (!listener)
        return;
    RemoveImpl(listener);
    listener->AddPriorityChangeCallback(m_sortCallback);
    m_listeners.push_front(listener);
    // Bubble to the right past every higher priority: equal priorities keep the newcomer in front.
    const int priority = PriorityOf(listener);
    for (size_t i = 0; i + 1 < m_listeners.size() && priority < PriorityOf(m_listeners[i + 1]); ++i)
        std::swap(m_listeners[i], m_listeners[i + 1]);
}

bool InputDelegator::RemoveImpl(const util::WeakPtr<InputListener>& listener)
{
    QLEX_ASSERT(m_iterationLock == 0);
    auto found = std::find(m_listeners.begin(), m_listeners.end(), listener);
    if (found == m_listeners.end())
        return false;
    m_listeners.erase(found);
    return true;
}

int InputDelegator::PriorityOf(const util::WeakPtr<InputListener>& listener)
{
    InputListener* p = listener.get();
    return p ? p->GetPriority() : -1;
}

void InputDelegator::Sort()
{
    if (m_iterationLock > 0)
    {
        m_sortPending = true;
        return;
    }
    if (m_listeners.size() < 2)
        return;
    for (size_t i = 0; i + 1 < m_listeners.size(); ++i)
        if (PriorityOf(m_listeners[i]) < PriorityOf(m_listeners[i + 1]))
            std::swap(m_listeners[i], m_listeners[i + 1]);
    for (size_t i = m_listeners.size() - 1; i > 0; --i)
        if (PriorityOf(m_listeners[i - 1]) < PriorityOf(m_listeners[i]))
            std::swap(m_listeners[i - 1], m_listeners[i]);
}

void InputDelegator::EndDelivery()
{
    // A change made by one of these may itself add changes; take the list before working through it.
    while (!m_pendingChanges.empty())
    {
        std::vector<std::pair<bool, util::WeakPtr<InputListener>>> changes;
        changes.swap(m_pendingChanges);
        for (const auto& change : changes)
        {
            if (change.first)
                AddImpl(change.second);
            else
                RemoveImpl(change.second);
        }
    }
    if (m_sortPending)
    {
        // Several priorities may have changed during the delivery, more than two passes can mend.
        m_sortPending = false;
        std::stable_sort(m_listeners.begin(), m_listeners.end(),
                         [](const util::WeakPtr<InputListener>& a, const util::WeakPtr<InputListener>& b)
                         { return PriorityOf(a) > PriorityOf(b); });
    }
}

void InputDelegator::OnMouseMove(const MouseEvent& event)
{
    FireEvent(event, &InputListener::OnMouseMove);
}
void InputDelegator::OnKeyEvent(const KeyEvent& event)
{
    FireEvent(event, &InputListener::OnKeyEvent);
}
void InputDelegator::OnOtherEvent(const InputEvent& event)
{
    FireEvent(event, &InputListener::OnOtherEvent);
}
void InputDelegator::OnDragBegin(const DragEvent& event)
{
    FireEvent(event, &InputListener::OnDragBegin);
}
void InputDelegator::OnDrag(const DragEvent& event)
{
    FireEvent(event, &InputListener::OnDrag);
}
void InputDelegator::OnDragEnd(const DragEvent& event)
{
    FireEvent(event, &InputListener::OnDragEnd);
}
void InputDelegator::OnClick(const ClickEvent& event)
{
    FireEvent(event, &InputListener::OnClick);
}
void InputDelegator::OnJoyAxisEvent(const JoyAxisEvent& event)
{
    FireEvent(event, &InputListener::OnJoyAxisEvent);
}

} // namespace input
