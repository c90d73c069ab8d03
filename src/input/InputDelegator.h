#pragma once

#include "input/InputListener.h"
#include "logging/Log.h"

#include <deque>
#include <utility>
#include <vector>

namespace input
{

// Passes every event to all of its listeners, highest priority first; among equal priorities the one
// added last comes first. Listeners are held weakly, so that they may die, or add and remove listeners,
// in the middle of a delivery: list changes wait until the outermost delivery through this delegator ends.
class InputDelegator : public InputListener
{
public:
    explicit InputDelegator(int priority);
    ~InputDelegator() override;

    void AddListener(const util::WeakPtr<InputListener>& listener);
    template <class T> void AddListener(const util::SharedPtr<T>& listener)
    {
        AddListener(util::WeakPtr<InputListener>(static_cast<InputListener*>(listener.get())));
    }
    void AddListener(InputListener* listener);
    void RemoveListener(const util::WeakPtr<InputListener>& listener);
    template <class T> void RemoveListener(const util::SharedPtr<T>& listener)
    {
        RemoveListener(util::WeakPtr<InputListener>(static_cast<InputListener*>(listener.get())));
    }

    void OnMouseMove(const MouseEvent& event) override;
    void OnKeyEvent(const KeyEvent& event) override;
    void OnOtherEvent(const InputEvent& event) override;
    void OnDragBegin(const DragEvent& event) override;
    void OnDrag(const DragEvent& event) override;
    void OnDragEnd(const DragEvent& event) override;
    void OnClick(const ClickEvent& event) override;
    void OnJoyAxisEvent(const JoyAxisEvent& event) override;

    template <class Event> void FireEvent(const Event& event, void (InputListener::*member)(const Event&));

    // Restores the order after one listener's priority changed: one forward and one backward pass of
    // neighbour exchanges move that one listener to its place.
    void Sort();

    size_t GetListenerCount() const { return m_listeners.size(); }
    bool IsDelivering() const { return m_iterationLock > 0; }

protected:
    unsigned m_iterationLock;
    std::deque<util::WeakPtr<InputListener>> m_listeners;
    // true for an add, false for a remove; collected while a delivery runs.
    std::vector<std::pair<bool, util::WeakPtr<InputListener>>> m_pendingChanges;

private:
    void AddImpl(const util::WeakPtr<InputListener>& listener);
    bool RemoveImpl(const util::WeakPtr<InputListener>& listener);
    static int PriorityOf(const util::WeakPtr<InputListener>& listener);
    void EndDelivery();

    // One callback object for all listeners, so that adding a listener again does not pile up callbacks.
    util::CallbackPtr m_sortCallback;
    bool m_sortPending;
};

template <class Event>
void InputDelegator::FireEvent(const Event& event, void (InputListener::*member)(const Event&))
{
    ++m_iterationLock;
    try
    {
        // Nothing changes the deque while the lock is held: adds, removes and re-sorts wait.
        for (size_t i = 0; i < m_listeners.size(); ++i)
        {
            util::LockPtr<InputListener> listener(m_listeners[i]);
            if (!listener)
                RemoveListener(m_listeners[i]);
            else
                (listener.get()->*member)(event);
        }
    }
    catch (...)
    {
        Log(logging::Warning, "Exception caught in InputDelegator::FireEvent");
        // The pending changes stay for the next delivery: the state of the caller is unknown here.
        --m_iterationLock;
        throw;
    }
    --m_iterationLock;
    if (m_iterationLock == 0)
        EndDelivery();
}

} // namespace input
