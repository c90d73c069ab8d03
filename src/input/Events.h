#pragma once

#include "math/Math.h"
#include "util/SharedPtr.h"

#include <SDL/SDL.h>

namespace input
{

class Joystick;

// Events are values made on the stack for one delivery and handed on by const reference. Every listener
// sees every event; one that acts on it marks it handled, and the others stand back.
struct GeneralEvent
{
    bool IsHandled() const { return handled; }
    // Writes through a const event: listeners only ever receive const references.
    void SetHandled(bool value = true) const { handled = value; }

    mutable bool handled = false;
};

// Any SDL event without a type of its own (quit, resize, expose, activation, window-manager events).
struct InputEvent : public GeneralEvent
{
    explicit InputEvent(const SDL_Event& raw) : event(raw) {}
    virtual ~InputEvent() = default;

    SDL_Event event;
};

// A motion of the mouse, in GUI coordinates.
struct MouseEvent : public GeneralEvent
{
    explicit MouseEvent(const SDL_Event& raw);
    MouseEvent(const math::Vec2& position, const math::Vec2& delta) : position(position), delta(delta) {}

    math::Vec2 position;
    math::Vec2 delta;
};

// A press or release of any key of the one numbering (keyboard, mouse buttons, joystick buttons). The
// modifier flags are read when the event is made.
struct KeyEvent : public GeneralEvent
{
    KeyEvent(SDLKey key, char character, bool pressed, const math::Vec2& position);

    SDLKey key;
    char character;
    bool pressed;
    bool alt;
    bool ctrl;
    bool shift;
    math::Vec2 position;
};

struct DragEvent : public GeneralEvent
{
    DragEvent(const math::Vec2& startPos, const math::Vec2& delta, const math::Vec2& position, SDLKey button)
        : startPos(startPos), delta(delta), position(position), button(button)
    {
    }

    math::Vec2 startPos;
    math::Vec2 delta;
    math::Vec2 position;
    SDLKey button;
};

struct ClickEvent : public GeneralEvent
{
    ClickEvent(const math::Vec2& position, SDLKey button, int clickCount)
        : position(position), button(button), clickCount(clickCount)
    {
    }

    // Where the press was, not the release.
    math::Vec2 position;
    SDLKey button;
    int clickCount;
};

struct JoyAxisEvent : public GeneralEvent
{
    JoyAxisEvent(util::SharedPtr<Joystick> joystick, int axis);

    util::SharedPtr<Joystick> joystick;
    int axis;
};

// The arguments of Input::CheckModifier. Ctrl stands for Control or Command (Meta), so that a shortcut
// written for Ctrl works with either.
enum Modifier
{
    None = 0,
    Shift,
    LeftShift,
    RightShift,
    Ctrl,
    LeftCtrl,
    RightCtrl,
    Alt,
    LeftAlt,
    RightAlt,
    Meta,
    LeftMeta,
    RightMeta,
    Num,
    Caps,
    Mode,
};

} // namespace input
