#pragma once
// What the mouse does in the world. Tools work in world coordinates; a gesture runs from the begin of a
// drag to its end, and Disband can break it at any moment (Escape, a tool switch, a key held).

#include "input/InputListener.h"
#include "util/String.h"

namespace app
{

class Tool : public input::InputListener
{
public:
    static constexpr int PRIORITY = 50;

    Tool() : input::InputListener(PRIORITY) {}

    virtual void Update(float) {}
    // Inside the world's transform, after the entities.
    virtual void Draw() const {}
    // Abandons the gesture in progress; false when none was running.
    virtual bool Disband() { return false; }
    // A texture under "cursors/"; empty for the default cursor.
    virtual util::String GetCursorName() const { return util::String(); }
    virtual void SetInUse(bool inUse) { m_inUse = inUse; }
    bool IsInUse() const { return m_inUse; }

    // Escape disbands the gesture.
    void OnKeyEvent(const input::KeyEvent& event) override;

protected:
    bool m_inUse = false;
};

} // namespace app
