#pragma once
// "Console" of the scripts: how the console panel looks and moves, and its "clear" command. The settings
// stand apart from the panel and need no GL, so that configuration text that sets them reads the same in
// every program, the headless one included; the panel of the windowed program reads them here.

#include "math/Math.h"
#include "script/AttribWrapper.h"
#include "script/Reflected.h"
#include "util/Singleton.h"

#include <functional>

namespace gui
{

class ConsoleSettings : public script::Reflected, public util::Singleton<ConsoleSettings>
{
public:
    static constexpr float DEFAULT_DELAY = 0.3f;
    static constexpr float DEFAULT_SCREEN_SIZE = 0.35f;

    ConsoleSettings();
    ~ConsoleSettings() override;

    // What "clear" does: the panel's Clear where one stands, else nothing.
    void SetClearAction(std::function<void()> action) { m_clearAction = std::move(action); }
    void Clear();

    // Seconds of the slide; a value that is no number above 0 makes the panel open and shut at once.
    float GetDelay() const;
    // The part of the window's height the open panel covers, kept between 0 and 1; the default for a
    // value that is no number.
    float GetScreenSize() const;

    // The panel's alpha follows the slide.
    script::AttribWrapper<bool> m_fade;
    // The panel's height follows the slide.
    script::AttribWrapper<bool> m_scroll;
    script::AttribWrapper<float> m_delay;
    script::AttribWrapper<float> m_screenSize;
    // Of the background.
    script::AttribWrapper<math::Vec4> m_color;

private:
    std::function<void()> m_clearAction;
};

} // namespace gui
