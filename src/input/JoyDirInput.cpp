#include "input/JoyDirInput.h"

#include "input/Input.h"
#include "input/Key.h"
#include "logging/Log.h"
#include "util/StringUtil.h"

#include <SDL/SDL.h>

namespace input
{

JoyAxisInput::JoyAxisInput(util::SharedPtr<Joystick> joystick, int xAxis, int yAxis)
    : m_joystick(std::move(joystick)), m_xAxis(xAxis), m_yAxis(yAxis)
{
}

math::TVector2<float> JoyAxisInput::GetDir() const
{
    return m_joystick->GetAxis(m_xAxis, m_yAxis);
}

util::String JoyAxisInput::Serialize() const
{
    return "joy " + std::to_string(m_joystick->GetId()) + " axis " + std::to_string(m_xAxis) + " " +
           std::to_string(m_yAxis);
}

JoyHatInput::JoyHatInput(util::SharedPtr<Joystick> joystick, int hat)
    : KeyDirInput(Key::GetJoystickHatKey(joystick->GetId(), hat, SDL_HAT_UP),
                  Key::GetJoystickHatKey(joystick->GetId(), hat, SDL_HAT_RIGHT),
                  Key::GetJoystickHatKey(joystick->GetId(), hat, SDL_HAT_DOWN),
                  Key::GetJoystickHatKey(joystick->GetId(), hat, SDL_HAT_LEFT)),
      m_joystick(std::move(joystick)), m_hat(hat)
{
}

util::String JoyHatInput::Serialize() const
{
    return "joy " + std::to_string(m_joystick->GetId()) + " hat " + std::to_string(m_hat);
}

DirInputPtr MakeJoystickDirInput(const std::vector<util::String>& words, const util::String& text)
{
    util::SharedPtr<Joystick> joystick;
    if (Input::IsUp() && words.size() >= 2)
    {
        const Input& input = *Input::GetInstancePtr();
        joystick = input.GetJoystick(util::FromString<int>(words[1]));
        // A scene made on a machine with more joysticks steers with the first one here.
        for (int id = 0; !joystick && id < Key::MAX_JOYSTICKS; ++id)
            joystick = input.GetJoystick(id);
    }
    if (!joystick)
    {
        Log(logging::Error, "No joystick connected, cannot find DirInput \"" + text + "\"");
        return nullptr;
    }
    if (words.size() >= 5 && words[2] == "axis")
        return QLEX_NEW new JoyAxisInput(joystick, util::FromString<int>(words[3]),
                                         util::FromString<int>(words[4]));
    if (words.size() >= 4 && words[2] == "hat")
        return QLEX_NEW new JoyHatInput(joystick, util::FromString<int>(words[3]));
    Log(logging::Error, "Failed to find DirInput \"" + text + "\"");
    return nullptr;
}

} // namespace input
