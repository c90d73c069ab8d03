#include "input/Joystick.h"

#include "input/DirInput.h"
#include "logging/Exception.h"

#include <algorithm>

namespace input
{

Joystick::Joystick(int id) : m_id(id), m_handle(SDL_JoystickOpen(id))
{
    if (!m_handle)
        QLEX_THROW(BadDataException(std::string("Failed to open joystick ") + SDL_GetError()));
    m_offsets.assign(SDL_JoystickNumAxes(m_handle), 0.0f);
}

Joystick::~Joystick()
{
    if (m_handle)
        SDL_JoystickClose(m_handle);
}

void Joystick::Calibrate()
{
    m_offsets.assign(GetNumAxes(), 0.0f);
    for (size_t i = 0; i < m_offsets.size(); ++i)
        m_offsets[i] = GetAxis(static_cast<int>(i));
}

std::string Joystick::GetName() const
{
    const char* name = SDL_JoystickName(m_id);
    return name ? name : "";
}

float Joystick::AxisValue(int raw, float offset)
{
    // SDL's range is -32768 to 32767, 65535 steps.
    const float value = 2.0f * (static_cast<float>(raw) + 32768.0f) / 65535.0f - 1.0f;
    return std::clamp(value - offset, -1.0f, 1.0f);
}

float Joystick::GetAxis(int axis) const
{
    const bool calibrated = axis >= 0 && axis < static_cast<int>(m_offsets.size());
    return AxisValue(SDL_JoystickGetAxis(m_handle, axis), calibrated ? m_offsets[axis] : 0.0f);
}

math::Vec2 Joystick::GetAxis(int xAxis, int yAxis) const
{
    return IntoUnitDisc(math::Vec2(GetAxis(xAxis), GetAxis(yAxis)));
}

int Joystick::GetNumAxes() const
{
    return SDL_JoystickNumAxes(m_handle);
}
int Joystick::GetNumButtons() const
{
    return SDL_JoystickNumButtons(m_handle);
}
int Joystick::GetNumBalls() const
{
    return SDL_JoystickNumBalls(m_handle);
}
int Joystick::GetNumHats() const
{
    return SDL_JoystickNumHats(m_handle);
}

} // namespace input
