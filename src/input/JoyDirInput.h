#pragma once

#include "input/DirInput.h"
#include "input/Joystick.h"

namespace input
{

// A joystick's axis pair.
class JoyAxisInput : public DirInput
{
public:
    JoyAxisInput(util::SharedPtr<Joystick> joystick, int xAxis, int yAxis);
    math::TVector2<float> GetDir() const override;
    util::String Serialize() const override;

private:
    util::SharedPtr<Joystick> m_joystick;
    int m_xAxis;
    int m_yAxis;
};

// A joystick's hat: the four keys of its directions.
class JoyHatInput : public KeyDirInput
{
public:
    JoyHatInput(util::SharedPtr<Joystick> joystick, int hat);
    util::String Serialize() const override;

private:
    util::SharedPtr<Joystick> m_joystick;
    int m_hat;
};

// The maker of the "joy" forms of DirInput::Deserialize, over the joysticks of input::Input.
DirInputPtr MakeJoystickDirInput(const std::vector<util::String>& words, const util::String& text);

} // namespace input
