#include "input/Events.h"

#include "input/Input.h"
#include "input/Joystick.h"

namespace input
{

MouseEvent::MouseEvent(const SDL_Event& raw)
    : position(Input::PosFromPixel(raw.motion.x, raw.motion.y)),
      delta(Input::PosFromPixel(static_cast<Sint16>(raw.motion.xrel), static_cast<Sint16>(raw.motion.yrel)))
{
}

KeyEvent::KeyEvent(SDLKey key, char character, bool pressed, const math::Vec2& position)
    : key(key), character(character), pressed(pressed), alt(false), ctrl(false), shift(false),
      position(position)
{
    if (Input::IsUp())
    {
        const Input& input = *Input::GetInstancePtr();
        alt = input.CheckModifier(Alt);
        ctrl = input.CheckModifier(Ctrl);
        shift = input.CheckModifier(Shift);
    }
}

JoyAxisEvent::JoyAxisEvent(util::SharedPtr<Joystick> joystick, int axis)
    : joystick(std::move(joystick)), axis(axis)
{
}

} // namespace input
