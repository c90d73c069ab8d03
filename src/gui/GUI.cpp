#include "gui/GUI.h"

#include "gui/LookAndFeel.h"
#include "gui/ProfilerOutput.h"
#include "gui/TextProbe.h"
#include "input/ButtonInput.h"
#include "input/Input.h"
#include "rendering/AttribPusher.h"
#include "rendering/Renderer.h"
#include "rendering/TextureManager.h"
#include "util/FileSystem.h"
#include "util/Profiler.h"

#include <GL/gl.h>

#include <cmath>

namespace gui
{

namespace
{
// Every attribute group GL has: the interface leaves GL as it found it.
const GLbitfield ALL_ATTRIB_BITS = 0xFFFFF;
// The side of the cursor's picture in GUI units; its centre is the hot spot.
const float CURSOR_SIZE = 32.0f;
// Errors, warnings and information; the debugging messages stay in the log file.
const unsigned CONSOLE_LOG_MASK = 23;

// Hands unhandled key presses to the two profilers, which switch their tables and walk the tree with the
// numeric pad, so that they work in any state of the application.
class ProfilerKeyRelay : public input::InputListener
{
public:
    ProfilerKeyRelay() : InputListener(50) {}
    void OnKeyEvent(const input::KeyEvent& event) override
    {
        InputListener::OnKeyEvent(event);
        if (event.IsHandled() || !event.pressed)
            return;
        if (util::Profiler::GetInstancePtr()->OnKeyPress(event.key) ||
            util::Profiler2::GetInstancePtr()->OnKeyPress(event.key))
            event.SetHandled();
    }
};

} // namespace

GUI::GUI()
    : InputListener(50), m_reflected(QLEX_NEW new script::Reflected("GUI")),
      m_clickTolerance(m_reflected.get(), "clickTolerance", DEFAULT_CLICK_TOLERANCE),
      m_clickTimeTolerance(m_reflected.get(), "clickTimeTolerance", DEFAULT_CLICK_TIME_TOLERANCE),
      m_forceOSCursor(m_reflected.get(), "forceOSCursor", false),
      m_font(m_reflected.get(), "font", util::String("arial_black")),
      m_crispFonts(m_reflected.get(), "crispFonts", false),
      m_crispFontFactor(m_reflected.get(), "crispFontFactor", 0.5f),
      m_fontShadow(m_reflected.get(), "fontShadow", true),
      m_fontShadowOffset(m_reflected.get(), "fontShadowOffset", math::Vec2(0.0625f, 0.0625f)),
      m_scale(m_reflected.get(), "scale", 1.0f), m_opaqueness(m_reflected.get(), "opaqueness", 0.9f)
{
    m_font->AddChangeCallback(util::MakeCallback(&GUI::OnFontChange, this));
    m_scale->AddChangeCallback(util::MakeCallback(&GUI::OnScaleChange, this));

    input::Input* input = input::Input::GetInstancePtr();
    m_rootComponent = QLEX_NEW new Component();
    m_profilerKeys = QLEX_NEW new ProfilerKeyRelay();
    input->AddListener(m_profilerKeys);
    // Added after the profiler at the same priority, the root gets events first.
    input->AddListener(m_rootComponent);
    input::ButtonInput::SetHost(m_rootComponent.get());
    SetPriority(PRIORITY);
    input->AddListener(this);
    input::Input::SetSettings(this);
    m_defaultCursor = rendering::TextureManager::GetInstancePtr()->Load(
        util::FileSystem::GetInstancePtr()->CursorDir() + "mouse",
        rendering::TextureManager::DefaultImageType());
    m_cursor = m_defaultCursor;

    m_mainComponent = QLEX_NEW new Component();
    m_tooltipLayer = QLEX_NEW new Component();
    m_console = QLEX_NEW new Console();
    m_mainComponent->SetFillOwner(true);
    m_rootComponent->AddComponent(m_mainComponent);
    m_rootComponent->AddComponent(m_tooltipLayer);
    m_rootComponent->AddComponent(m_console);
    m_consoleLogger = QLEX_NEW new logging::FunctionLogger(CONSOLE_LOG_MASK, &PrintConsole);
    logging::Logger::GetInstancePtr()->AddLogger(m_consoleLogger);
}

GUI::~GUI() noexcept
{
    if (logging::Logger::Exists())
        logging::Logger::GetInstancePtr()->RemoveLogger(m_consoleLogger);
    input::ButtonInput::SetHost(nullptr);
    if (input::Input::IsUp())
    {
        input::Input* input = input::Input::GetInstancePtr();
        input->RemoveListener(m_rootComponent);
        input->RemoveListener(m_profilerKeys);
        input::Input::SetSettings(nullptr);
    }
    LookAndFeel::ResetDefault();
    DropFallbackFont();
}

void GUI::AddFontChangeCallback(util::CallbackPtr callback)
{
    m_fontChangeCallbacks.Add(callback);
}

void GUI::OnFontChange()
{
    m_fontChangeCallbacks.CallAll();
}

math::Vec2 GUI::GetSize() const
{
    return PosFromPixel(m_windowWidth, m_windowHeight);
}

math::Vec2 GUI::PosFromPixel(int x, int y) const
{
    const float scale = GetScale();
    return math::Vec2(static_cast<float>(x) / scale, static_cast<float>(y) / scale);
}

void GUI::OnNewWindowSize(int width, int height)
{
    m_windowWidth = width;
    m_windowHeight = height;
    m_rootComponent->SetOuterSize(GetSize());
}

float GUI::GetScale() const
{
    const float scale = m_scale;
    return std::isfinite(scale) && scale > 0.0f ? scale : 1.0f;
}

void GUI::OnScaleChange()
{
    const float scale = m_scale;
    // Dividing by such a scale would put the whole interface and the mouse at infinity.
    if (!(std::isfinite(scale) && scale > 0.0f))
        Log(logging::Warning,
            "GUI.scale must be a number above 0; the interface keeps to a scale of 1 until it is");
    OnNewWindowSize(m_windowWidth, m_windowHeight);
}

void GUI::Update(float dt)
{
    // A focused field joins the GUI's root as a listener, which it can't while the GUI is being made.
    if (!m_textProbeChecked)
    {
        m_textProbeChecked = true;
        AddTextProbe(*m_rootComponent);
    }
    UpdateMouseOverComp();
    m_rootComponent->Update(dt);
}

void GUI::OnMouseMove(const input::MouseEvent& event)
{
    UpdateMouseOverComp();
    InputListener::OnMouseMove(event);
}

void GUI::UpdateMouseOverComp()
{
    static util::StaticProfilerData s_timing("GUI::UpdateMouseOverComp");
    util::StaticProfilerScope timing(s_timing);
    // The root's outer position is its local origin when it has no border, as the root never has.
    const math::Vec2 mouse = input::Input::GetInstancePtr()->GetMousePos();
    UpdateMouseOver(*m_rootComponent, true, m_rootComponent->GUIToLocal(mouse));
}

void GUI::SetCursor(rendering::TextureProxy cursor)
{
    m_cursor = cursor.GetMentor() ? cursor : m_defaultCursor;
}

void GUI::Begin()
{
    const math::Vec2 size = GetSize();
    glPushAttrib(ALL_ATTRIB_BITS);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    // GUI units, y down.
    glOrtho(0.0, size.x, size.y, 0.0, -1.0, 0.0);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glEnable(GL_TEXTURE_2D);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
    // Whatever was drawn before set GL's colour without telling the renderer.
    renderer.InvalidateColor();
    renderer.SetColor4(math::Vec4(1.0f, 1.0f, 1.0f, m_opaqueness));
}

void GUI::End()
{
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopAttrib();
    // The pop brought back GL's colour of before, behind the renderer's shadow.
    rendering::Renderer::GetInstancePtr()->InvalidateColor();
}

void GUI::Draw()
{
    util::ScopeProfiler profiler("GUI::Draw");
    Begin();
    {
        util::ScopeProfiler tree("GUI");
        rendering::AttribPusher attribs(ALL_ATTRIB_BITS);
        glPushMatrix();
        // Borders are flat colour; a component that shows a picture binds and enables its texture.
        glDisable(GL_TEXTURE_2D);
        m_rootComponent->DrawCompAndChildren();
        glPopMatrix();
    }
    if (m_cursor == m_defaultCursor)
        SDL_ShowCursor(SDL_ENABLE);
    else
    {
        // In full screen the system's cursor is hidden anyway, and hiding it again can move it.
        const SDL_Surface* screen = SDL_GetVideoSurface();
        if (!screen || !(screen->flags & SDL_FULLSCREEN))
            SDL_ShowCursor(SDL_DISABLE);
        util::ScopeProfiler cursor("Drawing cursor");
        rendering::Renderer& renderer = *rendering::Renderer::GetInstancePtr();
        renderer.SetColor4(1, 1, 1, 1);
        glEnable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, m_cursor->GetName());
        const math::Vec2 size(CURSOR_SIZE, CURSOR_SIZE);
        renderer.DrawRectGUI(input::Input::GetInstancePtr()->GetMousePos() - size * 0.5f, size);
        glBindTexture(GL_TEXTURE_2D, 0);
    }
    DrawProfilerOutput(GetSize());
    End();
}

bool UpdateMouseOver(Component& c, bool mayBeOver, math::Vec2 pos)
{
    const bool inside = mayBeOver && c.GetOuterBBLocal().Contains(pos);
    c.SetMouseOverOuter(inside);
    bool stillFree = mayBeOver;
    bool hit = false;
    // Topmost first: the children are drawn first to last.
    c.ForwardEvent(
        [&](Component& child)
        {
            if (stillFree)
            {
                if (UpdateMouseOver(child, true, pos - child.GetInnerPos()))
                {
                    stillFree = false;
                    hit = true;
                }
            }
            else
                SetMouseNotOver(child);
        });
    return inside || hit;
}

void SetMouseNotOver(Component& c)
{
    c.SetMouseOverOuter(false);
    c.ForwardEvent([](Component& child) { SetMouseNotOver(child); });
}

} // namespace gui
