// A person works the controls of a panel over the running application: real X clicks and drags through
// xdotool on a real window, read back from the settings and the history. No panel of the program shows
// controls yet, so the panel here is put together as the option panels will be.
#include "GLTestWindow.h"

#include "app/App.h"
#include "app/AppGUI.h"
#include "app/AppSettings.h"
#include "app/Scene.h"
#include "app/Serializer.h"
#include "app/Settings.h"
#include "app/Undoer.h"
#include "gui/GUI.h"
#include "gui/components/Checkbox.h"
#include "gui/components/Icon.h"
#include "gui/components/LabeledSlider.h"
#include "gui/components/ListLayout.h"
#include "input/Input.h"
#include "physics/Simulation.h"
#include "rendering/Renderer.h"
#include "script/Reflected.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <string>

// Xlib's macros collide with names of gtest and of the program: it comes last.
#include <SDL/SDL_syswm.h>

namespace
{
constexpr int WIDTH = 320;
constexpr int HEIGHT = 240;
// Bounds on waiting for the X server, so that a broken display fails the test instead of hanging it.
constexpr int WAIT_MS = 5000;
constexpr int POLL_MS = 10;
// The slider's scale: simulation speed from a tenth to ten times, a power of ten each third of the bar.
constexpr float SPEED_MIN = 0.1f;
constexpr float SPEED_MAX = 10.0f;

unsigned long SDLWindow()
{
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (SDL_GetWMInfo(&info) <= 0)
        return 0;
    return info.info.x11.window;
}

class ControlsX11 : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QLEX_OPEN_GL_WINDOW(s_window, WIDTH, HEIGHT);
        ASSERT_EQ(std::system("command -v xdotool >/dev/null"), 0) << "xdotool is needed";
        // The scene's settings as the programs have them, so that the history keeps them.
        if (!app::FindSetting("Sim"))
            physics::Simulation::GetInstancePtr()->AddToRoot();
        if (!app::FindSetting("App"))
            app::AppSettings::GetInstancePtr()->GetReflected()->AddToRoot();
        if (!app::FindSetting("Scene"))
            app::Scene::GetInstancePtr()->AddToRoot();
        app::Serializer::GetInstancePtr();
        gui::GUI* gui = gui::GUI::GetInstancePtr();
        gui->SetScale(1.0f);
        if (!gui->GetMainComponent()->HasComponent(app::App::GetInstancePtr()))
            gui->GetMainComponent()->AddComponent(app::App::GetInstancePtr());
        gui->OnNewWindowSize(WIDTH, HEIGHT);
        app::Undoer::GetInstancePtr()->Clear();

        m_panel = QLEX_NEW new gui::Component(QLEX_NEW new gui::ListLayout(gui::ListLayout::Vertical, 4.0f));
        m_panel->SetOuterPos(math::Vec2(20.0f, 20.0f));
        m_checkbox = QLEX_NEW new gui::AttribCheckbox("Borders", Settings().m_borders.GetAttrib());
        m_panel->AddComponent(m_checkbox);
        m_slider = QLEX_NEW new gui::AttribSlider(SPEED_MIN, SPEED_MAX, Sim().m_timeFactor.GetAttrib());
        m_slider->SetLogarithmic(true);
        m_labeled = QLEX_NEW new gui::LabeledSlider("Speed", m_slider, "x");
        m_panel->AddComponent(m_labeled);
        app::App::GetInstancePtr()->GetAppGUI().RegisterSlider(m_labeled);
        gui->GetMainComponent()->AddComponent(m_panel);
        Frame();
    }
    void TearDown() override
    {
        if (m_panel)
            gui::GUI::GetInstancePtr()->GetMainComponent()->RemoveComponent(m_panel);
        Sim().m_timeFactor = 1.0f;
        Settings().m_borders = true;
    }

    static app::AppSettings& Settings() { return *app::AppSettings::GetInstancePtr(); }
    static physics::Simulation& Sim() { return *physics::Simulation::GetInstancePtr(); }

    void Frame()
    {
        input::Input::GetInstancePtr()->PumpEvents();
        gui::GUI::GetInstancePtr()->Update(0.0f);
        gui::GUI::GetInstancePtr()->Draw();
    }
    bool PumpUntil(const std::function<bool()>& done)
    {
        for (int waited = 0; waited < WAIT_MS; waited += POLL_MS)
        {
            Frame();
            if (done())
                return true;
            SDL_Delay(POLL_MS);
        }
        return false;
    }
    // xdotool verbs on the test's window; coordinates are pixels of the window, which are GUI units here.
    static void Xdo(const std::string& verbs)
    {
        const std::string command = "xdotool " + verbs + " >/dev/null 2>&1";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
    }
    // xdotool's --sync waits for the pointer to move, so a move to where it is already would wait: it goes
    // to the window's corner first.
    static std::string MoveTo(int x, int y) { return MoveToDirectly(0, 0) + MoveToDirectly(x, y); }
    static std::string MoveToDirectly(int x, int y)
    {
        return "mousemove --sync --window " + std::to_string(SDLWindow()) + " " + std::to_string(x) + " " +
               std::to_string(y) + " ";
    }
    math::TVector2<int> PixelOf(const gui::Component& c, math::Vec2 local) const
    {
        const math::Vec2 gui = c.LocalToGUI(local);
        return math::TVector2<int>(int(std::lround(gui.x)), int(std::lround(gui.y)));
    }

    static GLTestWindow s_window;
    util::SharedPtr<gui::Component> m_panel;
    util::SharedPtr<gui::AttribCheckbox> m_checkbox;
    util::SharedPtr<gui::AttribSlider> m_slider;
    util::SharedPtr<gui::LabeledSlider> m_labeled;
};

GLTestWindow ControlsX11::s_window;

TEST_F(ControlsX11, ClickedCheckboxFlipsItsSettingBothWays)
{
    ASSERT_TRUE(Settings().m_borders);
    const auto box = PixelOf(*m_checkbox, math::Vec2(8.0f, 8.0f));
    Xdo(MoveTo(box.x, box.y) + "click 1");
    EXPECT_TRUE(PumpUntil([] { return !Settings().m_borders; }));
    EXPECT_EQ(m_checkbox->GetState(), gui::AbstractToggleButton::Off);
    SDL_Delay(500); // past the time in which a second click would make a double click
    Xdo(MoveTo(box.x, box.y) + "click 1");
    EXPECT_TRUE(PumpUntil([] { return bool(Settings().m_borders); }));
    // A middle click brings the default back.
    Settings().m_borders = false;
    SDL_Delay(500);
    Xdo(MoveTo(box.x, box.y) + "click 2");
    EXPECT_TRUE(PumpUntil([] { return bool(Settings().m_borders); }));
}

TEST_F(ControlsX11, DraggedSliderSetsTheValueOfItsScaleAndLeavesOneUndoStep)
{
    ASSERT_FLOAT_EQ(Sim().m_timeFactor, 1.0f);
    // 1 is the middle of the logarithmic bar, which runs from 5 to 155 inside the slider.
    const auto start = PixelOf(*m_slider, math::Vec2(80.0f, 8.0f));
    const auto end = PixelOf(*m_slider, math::Vec2(130.0f, 8.0f));
    std::string verbs = MoveTo(start.x, start.y) + "mousedown 1 ";
    for (int x = start.x + 10; x < end.x; x += 10)
        verbs += MoveToDirectly(x, start.y);
    verbs += MoveToDirectly(end.x, end.y) + "mouseup 1";
    Xdo(verbs);
    ASSERT_TRUE(PumpUntil([this] { return !m_slider->IsDragging() && Sim().m_timeFactor > 1.0f; }));
    // Five sixths along the bar: log10 of the value five sixths of the way from -1 to 1.
    const double t = (130.0 - 5.0) / 150.0;
    const double expected = std::pow(10.0, (1.0 - t) * std::log10(SPEED_MIN) + t * std::log10(SPEED_MAX));
    EXPECT_NEAR(Sim().m_timeFactor, expected, expected * 1e-4);
    EXPECT_EQ(m_labeled->GetTextField()->GetText(),
              gui::LabeledSlider::FormatValue(expected, 0.1, 10.0, 1.0));
    // The whole drag is one step, named by the language table.
    app::Undoer* undoer = app::Undoer::GetInstancePtr();
    ASSERT_EQ(undoer->GetUndoCount(), 1u);
    EXPECT_EQ(undoer->GetNextUndo()->Name(), "slider change");
    undoer->Undo();
    EXPECT_FLOAT_EQ(Sim().m_timeFactor, 1.0f);
    EXPECT_EQ(m_slider->GetValue(), 1.0);

    // What a person sees: the marker stands where the value is.
    Frame();
    const auto marker = PixelOf(*m_slider, math::Vec2(m_slider->CalcMarkerPos(), 8.0f));
    const auto off = PixelOf(*m_slider, math::Vec2(130.0f, 8.0f));
    const math::TVector4<int> onMarker = s_window.ReadPixelFromTop(marker.x, marker.y);
    const math::TVector4<int> onBar = s_window.ReadPixelFromTop(off.x, off.y);
    EXPECT_GT(onMarker.x + onMarker.y + onMarker.z, onBar.x + onBar.y + onBar.z + 100);
    if (const char* shot = std::getenv("QLEX_CONTROLS_SHOT"))
        rendering::Renderer::GetInstancePtr()->ScreenShotToFile(shot);
}

TEST_F(ControlsX11, IconTakesThePicturesSizeAndDrawsIt)
{
    gui::Icon icon(gui::Checkbox::ON_TEXTURE);
    // The pictures of the toolkit are drawn 32 pixels square.
    EXPECT_EQ(icon.GetInnerSize(), math::Vec2(32.0f, 32.0f));
    // A sized icon keeps its size.
    gui::Icon sized;
    sized.SetInnerSize(16.0f, 16.0f);
    sized.SetTexture(icon.GetTexture());
    EXPECT_EQ(sized.GetInnerSize(), math::Vec2(16.0f, 16.0f));
    // The check box shows the picture of its state: its tick is green, the empty box is not.
    const auto tick = PixelOf(*m_checkbox->GetIcon(), math::Vec2(8.0f, 9.0f));
    const math::TVector4<int> on = s_window.ReadPixelFromTop(tick.x, tick.y);
    EXPECT_GT(on.y, on.x + 40);
    Settings().m_borders = false;
    Frame();
    const math::TVector4<int> off = s_window.ReadPixelFromTop(tick.x, tick.y);
    EXPECT_LT(off.y, off.x + 20);
}

} // namespace
