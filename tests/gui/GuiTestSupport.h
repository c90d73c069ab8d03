#pragma once

#include "gui/Font.h"
#include "gui/GUI.h"
#include "gui/components/Component.h"
#include "input/Clock.h"
#include "input/Input.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace gui::test
{

// A clock the test sets by hand.
struct ManualClock
{
    ManualClock()
    {
        input::Clock::SetSource([this] { return now; });
    }
    ~ManualClock() { input::Clock::SetSource(nullptr); }
    double now = 100.0;
};

// A font whose every character is one cell wide, as a font is before its widths file is read: text
// measures the same whatever the fonts on disk look like.
inline FontProxy FixedWidthFont()
{
    return FontProxy(
        QLEX_NEW new util::Mentor<Font>([] { return new Font(rendering::TextureProxy(), 256); }));
}

// A plain component of a given inner size.
inline util::SharedPtr<Component> Box(float w, float h)
{
    util::SharedPtr<Component> c = QLEX_NEW new Component();
    c->SetInnerSize(w, h);
    return c;
}

// Takes clicks over its inner rectangle that nobody took before, as controls do.
class ClickTarget : public Component
{
public:
    explicit ClickTarget(std::string name) : m_name(std::move(name)) {}
    void OnClick(const input::ClickEvent& event) override
    {
        Component::OnClick(event);
        if (event.IsHandled() || !IsMouseOverInner())
            return;
        clicks.push_back(event.position);
        event.SetHandled();
    }
    std::vector<math::Vec2> clicks;

private:
    std::string m_name;
};

inline void MoveMouseTo(int x, int y)
{
    SDL_Event e = {};
    e.type = SDL_MOUSEMOTION;
    e.motion.type = SDL_MOUSEMOTION;
    e.motion.x = static_cast<Uint16>(x);
    e.motion.y = static_cast<Uint16>(y);
    input::Input::GetInstancePtr()->HandleEvent(e);
}

inline void MouseButton(Uint8 button, bool down, int x, int y)
{
    SDL_Event e = {};
    e.type = down ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
    e.button.type = e.type;
    e.button.button = button;
    e.button.x = static_cast<Uint16>(x);
    e.button.y = static_cast<Uint16>(y);
    input::Input::GetInstancePtr()->HandleEvent(e);
}

inline void ClickAt(int x, int y)
{
    MouseButton(SDL_BUTTON_LEFT, true, x, y);
    MouseButton(SDL_BUTTON_LEFT, false, x, y);
}

// The interface at scale 1 in a window of 400 by 300, with a clock of the test's; what a test adds to the
// main component goes again afterwards.
class GuiFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_gui = GUI::GetInstancePtr();
        m_gui->SetScale(1.0f);
        m_gui->OnNewWindowSize(400, 300);
        m_main = m_gui->GetMainComponent();
    }
    void TearDown() override
    {
        m_main->RemoveAllComponents();
        m_gui->SetScale(1.0f);
        MoveMouseTo(0, 0);
        m_gui->Update(0.0f);
    }

    ManualClock m_clock;
    GUI* m_gui = nullptr;
    util::SharedPtr<Component> m_main;
};

} // namespace gui::test
