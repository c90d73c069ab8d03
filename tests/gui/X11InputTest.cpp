// Real X input and the X clipboard, under a display (the test runner provides Xvfb). Skipped without one.
#include "GuiTestSupport.h"

#include "gui/GUI.h"
#include "gui/components/SimpleBorder.h"
#include "rendering/GLContext.h"
#include "rendering/Image.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"

#include <gtest/gtest.h>

#include <GL/gl.h>
#include <SDL/SDL.h>

// Xlib's macros (None, Status, ...) collide with names of gtest and of the program: it comes last.
#include <SDL/SDL_syswm.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>

using namespace gui;
using namespace gui::test;

namespace
{

const int WINDOW_WIDTH = 320;
const int WINDOW_HEIGHT = 240;
// Bounds on waiting for the X server, so that a broken display fails the test instead of hanging it.
const int WAIT_MS = 3000;
const int POLL_MS = 10;

bool HasDisplay()
{
    const char* display = std::getenv("DISPLAY");
    return display && *display;
}

Window SDLWindow()
{
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    if (SDL_GetWMInfo(&info) <= 0)
        return 0;
    return info.info.x11.window;
}

class XWindowTest : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        if (!HasDisplay())
            return;
        unsetenv("SDL_VIDEODRIVER");
        ASSERT_EQ(SDL_Init(SDL_INIT_VIDEO), 0) << SDL_GetError();
        ASSERT_NE(SDL_SetVideoMode(WINDOW_WIDTH, WINDOW_HEIGHT, 0, SDL_OPENGL), nullptr) << SDL_GetError();
        input::SetTextInput(true);
        GUI::GetInstancePtr()->OnNewWindowSize(WINDOW_WIDTH, WINDOW_HEIGHT);
        s_up = true;
    }
    static void TearDownTestSuite()
    {
        // Before static destruction, which would take the trackers down under the singletons.
        gui::GUI::Destroy();
        input::Input::Destroy();
        if (s_up)
            SDL_Quit();
    }
    void SetUp() override
    {
        if (!s_up)
            GTEST_SKIP() << "no X display";
    }

    // Pumps events and updates the GUI until done() or the time runs out.
    template <class F> bool PumpUntil(F done)
    {
        for (int waited = 0; waited < WAIT_MS; waited += POLL_MS)
        {
            input::Input::GetInstancePtr()->PumpEvents();
            GUI::GetInstancePtr()->Update(0.0f);
            if (done())
                return true;
            SDL_Delay(POLL_MS);
        }
        return false;
    }

    static bool s_up;
};

bool XWindowTest::s_up = false;

// One frame of the interface on black, finished so that its pixels can be read.
void DrawFrameOnBlack(GUI& gui)
{
    glViewport(0, 0, WINDOW_WIDTH, WINDOW_HEIGHT);
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    gui.Draw();
    glFinish();
}

// The colour at a point of GUI units; GL counts rows from the bottom.
std::array<int, 3> PixelAt(int x, int y)
{
    unsigned char rgba[4] = {};
    glReadPixels(x, WINDOW_HEIGHT - 1 - y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
    return std::array<int, 3>{rgba[0], rgba[1], rgba[2]};
}

} // namespace

TEST_F(XWindowTest, ClickOfTheRealMouseReachesTheComponentUnderIt)
{
    GUI* gui = GUI::GetInstancePtr();
    gui->SetScale(2.0f);
    util::SharedPtr<ClickTarget> target = QLEX_NEW new ClickTarget("target");
    util::SharedPtr<ClickTarget> other = QLEX_NEW new ClickTarget("other");
    target->SetInnerSize(30, 20);
    target->SetOuterPos(math::Vec2(40, 30)); // pixels 80..140, 60..100
    other->SetInnerSize(30, 20);
    other->SetOuterPos(math::Vec2(100, 30));
    gui->GetMainComponent()->AddComponent(target);
    gui->GetMainComponent()->AddComponent(other);

    const Window window = SDLWindow();
    ASSERT_NE(window, 0u);
    const std::string command =
        "xdotool mousemove --sync --window " + std::to_string(window) + " 100 80 click 1 >/dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;

    EXPECT_TRUE(PumpUntil([&] { return !target->clicks.empty(); }));
    ASSERT_EQ(target->clicks.size(), 1u);
    EXPECT_FLOAT_EQ(target->clicks[0].x, 50.0f);
    EXPECT_FLOAT_EQ(target->clicks[0].y, 40.0f);
    EXPECT_TRUE(other->clicks.empty());
    EXPECT_TRUE(target->IsMouseOverInner());

    gui->GetMainComponent()->RemoveAllComponents();
    gui->SetScale(1.0f);
}

TEST_F(XWindowTest, DrawShowsABorderInTheGUIsOpaqueness)
{
    GUI* gui = GUI::GetInstancePtr();
    util::SharedPtr<Component> panel = Box(60, 40);
    panel->SetOuterPos(math::Vec2(20, 30));
    panel->SetBorder(QLEX_NEW new SimpleBorder(4.0f, math::Vec4(0, 1, 0, 1), math::Vec4(1, 0, 0, 1)));
    gui->GetMainComponent()->AddComponent(panel);

    DrawFrameOnBlack(*gui);

    // Fill inside; black outside; on the border the frame over the fill. All at an alpha of 0.9:
    // red over black gives 0.9 red, the green frame over that leaves a tenth of it.
    const auto fill = PixelAt(40, 50);
    EXPECT_NEAR(fill[0], 230, 3);
    EXPECT_EQ(fill[1], 0);
    const auto frame = PixelAt(22, 50);
    EXPECT_NEAR(frame[0], 23, 3);
    EXPECT_NEAR(frame[1], 230, 3);
    const auto outside = PixelAt(10, 10);
    EXPECT_EQ(outside, (std::array<int, 3>{0, 0, 0}));

    gui->GetMainComponent()->RemoveAllComponents();
}

namespace
{
// Notes the renderer's colour at the moment it is drawn: what a picture drawn there would be tinted with.
class ColorProbe : public Component
{
public:
    void DrawComp() const override { m_seen = rendering::Renderer::GetInstancePtr()->GetColor4(); }
    mutable math::Vec4 m_seen{-1, -1, -1, -1};
};
} // namespace

TEST_F(XWindowTest, ComponentColoursReachTheRendererThatChildrenDrawWith)
{
    GUI* gui = GUI::GetInstancePtr();
    util::SharedPtr<Component> panel = Box(60, 40);
    panel->SetColor(math::Vec4(1, 0.5f, 0.25f, 1));
    util::SharedPtr<ColorProbe> probe = QLEX_NEW new ColorProbe();
    probe->SetColor(math::Vec4(0.5f, 1, 1, 0.5f));
    panel->AddComponent(probe);
    gui->GetMainComponent()->AddComponent(panel);

    glViewport(0, 0, WINDOW_WIDTH, WINDOW_HEIGHT);
    gui->Draw();
    // The GUI's opaqueness of 0.9, the panel's colour and the probe's own, multiplied.
    EXPECT_FLOAT_EQ(probe->m_seen.x, 0.5f);
    EXPECT_FLOAT_EQ(probe->m_seen.y, 0.5f);
    EXPECT_FLOAT_EQ(probe->m_seen.z, 0.25f);
    EXPECT_FLOAT_EQ(probe->m_seen.w, 0.45f);

    gui->GetMainComponent()->RemoveAllComponents();
}

TEST_F(XWindowTest, ACursorOfOurOwnIsDrawnCentredOnTheMouseAndANullOneGivesTheSystemsBack)
{
    GUI* gui = GUI::GetInstancePtr();
    EXPECT_EQ(gui->GetCursor(), gui->GetDefaultCursor());
    GLHasLoaded();
    rendering::ImageRGBA32Ptr red = QLEX_NEW new rendering::ImageRGBA32(32, 32, true);
    for (unsigned y = 0; y < 32; ++y)
        for (unsigned x = 0; x < 32; ++x)
            (*red)(x, y) = rendering::PixelRGBA(255, 0, 0, 255);
    gui->SetCursor(rendering::TextureManager::GetInstancePtr()->Load(
        red, rendering::TextureManager::DefaultImageType()));

    SDL_Event motion{};
    motion.type = SDL_MOUSEMOTION;
    motion.motion.x = 100;
    motion.motion.y = 80;
    input::Input::GetInstancePtr()->HandleEvent(motion);
    DrawFrameOnBlack(*gui);
    // 32 units wide about the mouse, in full colour whatever the GUI's opaqueness.
    EXPECT_EQ(PixelAt(100, 80)[0], 255);
    EXPECT_EQ(PixelAt(85, 65)[0], 255);
    EXPECT_EQ(PixelAt(114, 95)[0], 255);
    EXPECT_EQ(PixelAt(82, 80)[0], 0);
    EXPECT_EQ(PixelAt(100, 98)[0], 0);
    EXPECT_EQ(SDL_ShowCursor(SDL_QUERY), SDL_DISABLE);

    gui->SetCursor(rendering::TextureProxy());
    EXPECT_EQ(gui->GetCursor(), gui->GetDefaultCursor());
    DrawFrameOnBlack(*gui);
    EXPECT_EQ(PixelAt(100, 80)[0], 0);
    EXPECT_EQ(SDL_ShowCursor(SDL_QUERY), SDL_ENABLE);
}

namespace
{

// Another X client, on a connection of its own.
class OtherClient
{
public:
    OtherClient() : m_display(XOpenDisplay(nullptr))
    {
        if (!m_display)
            return;
        m_window = XCreateSimpleWindow(m_display, DefaultRootWindow(m_display), 0, 0, 1, 1, 0, 0, 0);
        m_clipboard = XInternAtom(m_display, "CLIPBOARD", False);
        m_utf8 = XInternAtom(m_display, "UTF8_STRING", False);
        m_property = XInternAtom(m_display, "TEST_PASTE", False);
    }
    ~OtherClient()
    {
        if (m_display)
            XCloseDisplay(m_display);
    }

    Display* m_display;
    Window m_window = 0;
    Atom m_clipboard = 0;
    Atom m_utf8 = 0;
    Atom m_property = 0;
};

} // namespace

TEST_F(XWindowTest, ClipboardTextReachesAnotherProgram)
{
    input::Input* input = input::Input::GetInstancePtr();
    input->SetClipboardText("copied in qlex");
    EXPECT_EQ(input->GetClipboardText(), "copied in qlex");

    OtherClient other;
    ASSERT_NE(other.m_display, nullptr);
    EXPECT_EQ(XGetSelectionOwner(other.m_display, other.m_clipboard), SDLWindow());
    XConvertSelection(other.m_display, other.m_clipboard, other.m_utf8, other.m_property, other.m_window,
                      CurrentTime);
    XFlush(other.m_display);

    // Our answer comes from the event pump.
    XEvent event;
    const bool answered = PumpUntil(
        [&]
        { return XCheckTypedWindowEvent(other.m_display, other.m_window, SelectionNotify, &event) == True; });
    ASSERT_TRUE(answered);
    ASSERT_NE(event.xselection.property, static_cast<Atom>(None));
    Atom type;
    int format;
    unsigned long count, remaining;
    unsigned char* data = nullptr;
    ASSERT_EQ(XGetWindowProperty(other.m_display, other.m_window, other.m_property, 0, 1024, True,
                                 AnyPropertyType, &type, &format, &count, &remaining, &data),
              Success);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(data), count), "copied in qlex");
    XFree(data);
}

TEST_F(XWindowTest, ClipboardTextOfAnotherProgramIsPasted)
{
    OtherClient other;
    ASSERT_NE(other.m_display, nullptr);
    XSetSelectionOwner(other.m_display, other.m_clipboard, other.m_window, CurrentTime);
    XSync(other.m_display, False);
    ASSERT_EQ(XGetSelectionOwner(other.m_display, other.m_clipboard), other.m_window);

    // The other program answers requests on a thread of its own while this one waits for the answer.
    std::atomic<bool> stop(false);
    std::thread server(
        [&]
        {
            const std::string text = "copied elsewhere";
            while (!stop)
            {
                XEvent event;
                if (!XCheckTypedWindowEvent(other.m_display, other.m_window, SelectionRequest, &event))
                {
                    SDL_Delay(2);
                    continue;
                }
                const XSelectionRequestEvent& request = event.xselectionrequest;
                XEvent reply = {};
                reply.xselection.type = SelectionNotify;
                reply.xselection.requestor = request.requestor;
                reply.xselection.selection = request.selection;
                reply.xselection.target = request.target;
                reply.xselection.time = request.time;
                reply.xselection.property = None;
                if (request.target == other.m_utf8)
                {
                    XChangeProperty(other.m_display, request.requestor, request.property, other.m_utf8, 8,
                                    PropModeReplace, reinterpret_cast<const unsigned char*>(text.data()),
                                    static_cast<int>(text.size()));
                    reply.xselection.property = request.property;
                }
                XSendEvent(other.m_display, request.requestor, False, NoEventMask, &reply);
                XFlush(other.m_display);
            }
        });
    const std::string pasted = input::Input::GetInstancePtr()->GetClipboardText();
    stop = true;
    server.join();
    EXPECT_EQ(pasted, "copied elsewhere");
}
