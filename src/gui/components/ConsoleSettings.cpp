#include "gui/components/ConsoleSettings.h"

#include <algorithm>
#include <cmath>

namespace gui
{

ConsoleSettings::ConsoleSettings()
    : Reflected("Console"), m_fade(this, "fade", false), m_scroll(this, "scroll", true),
      m_delay(this, "delay", DEFAULT_DELAY), m_screenSize(this, "screenSize", DEFAULT_SCREEN_SIZE),
      m_color(this, "color", math::Vec4(0.1f, 0.1f, 0.1f, 0.8f))
{
    AddMemberCmd("clear", &ConsoleSettings::Clear);
}

ConsoleSettings::~ConsoleSettings() = default;

void ConsoleSettings::Clear()
{
    if (m_clearAction)
        m_clearAction();
}

float ConsoleSettings::GetDelay() const
{
    const float delay = m_delay;
    return std::isfinite(delay) && delay > 0.0f ? delay : 0.0f;
}

float ConsoleSettings::GetScreenSize() const
{
    const float size = m_screenSize;
    return std::isfinite(size) ? std::clamp(size, 0.0f, 1.0f) : DEFAULT_SCREEN_SIZE;
}

} // namespace gui
