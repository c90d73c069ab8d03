#include "core/Subsystem.h"

#include "app/App.h"
#include "app/AppGUI.h"
#include "core/FramePacing.h"
#include "core/ResourceManager.h"
#include "gui/GUI.h"
#include "input/Input.h"
#include "logging/Log.h"
#include "physics/Simulation.h"
#include "platform/Os.h"
#include "rendering/Renderer.h"
#include "rendering/ShaderManager.h"
#include "rendering/TextureManager.h"
#include "script/Parser.h"
#include "util/FileSystem.h"
#include "util/Interpolator.h"
#include "util/Profiler.h"
#include "util/Timer.h"

#include <iostream>
#include <stdexcept>

namespace core
{
namespace
{
// Log masks of the three sinks: errors and failed checks, information, everything.
constexpr unsigned STDERR_LOG_MASK = 7;
constexpr unsigned STDOUT_LOG_MASK = 16;
constexpr unsigned FILE_LOG_MASK = 31;

// The frames-per-second value is measured over at least this many seconds.
constexpr double FPS_MEASURE_PERIOD = 1.0;
// Every this many passes plus one, dead callbacks are swept from all callback sets.
constexpr unsigned CALLBACK_FLUSH_PERIOD = 10;
// A buffer of 32 bits is asked for as four channels of 8.
constexpr int FULL_COLOUR_DEPTH = 32;
constexpr int CHANNEL_BITS = 8;

// Seconds since SDL started; the tick count is unsigned and wraps after 49 days.
double Now()
{
    return static_cast<unsigned>(SDL_GetTicks()) / 1000.0;
}

std::optional<math::TVector2<int>> DisplaySize()
{
    math::TVector2<int> size;
    if (os::GetDisplaySize(size))
    {
        return size;
    }
    return std::nullopt;
}

void SetGLAttribute(SDL_GLattr attribute, int value, const char* failure)
{
    if (SDL_GL_SetAttribute(attribute, value) != 0)
    {
        throw std::runtime_error(failure);
    }
}

void SetWindowIcon(const std::string& path)
{
    SDL_Surface* icon = SDL_LoadBMP_RW(SDL_RWFromFile(path.c_str(), "rb"), 1);
    if (!icon)
    {
        Log(logging::Warning, "Couldn't load the window icon " + path + ": " + SDL_GetError());
        return;
    }
    SDL_WM_SetIcon(icon, nullptr);
    SDL_FreeSurface(icon);
}

// How long SDL_Delay(1) really sleeps, and the smallest step of the clock, both in milliseconds.
void LogTimerPrecision()
{
    const Uint32 beforeSleep = SDL_GetTicks();
    SDL_Delay(1);
    const Uint32 sleep = SDL_GetTicks() - beforeSleep;
    const Uint32 start = SDL_GetTicks();
    Uint32 tick = start;
    while (tick == start)
    {
        tick = SDL_GetTicks();
    }
    Log(logging::Debug, "sleep precision=" + std::to_string(sleep) +
                            "ms, timer precision: " + std::to_string(tick - start) + "ms");
}
} // namespace

Subsystem::Subsystem()
    : InputListener(PRIORITY), m_system(QLEX_NEW new System()),
      m_doLater(std::make_unique<util::CallbackSet>())
{
    m_measureStart = Now();

    const std::string workDir = util::FileSystem::GetInstancePtr()->WorkDir();
    logging::Logger* logger = logging::Logger::GetInstancePtr();
    logger->AddLogger(QLEX_NEW new logging::StreamLogger(STDERR_LOG_MASK, std::cerr));
    logger->AddLogger(QLEX_NEW new logging::StreamLogger(STDOUT_LOG_MASK, std::cout));
    logger->AddLogger(QLEX_NEW new logging::FileLogger(FILE_LOG_MASK, workDir + "Logfile.txt", true));

    Log(logging::Info, "Init SDL...");
    if (SDL_Init(SDL_INIT_TIMER | SDL_INIT_VIDEO | SDL_INIT_JOYSTICK | SDL_INIT_NOPARACHUTE) != 0)
    {
        throw std::runtime_error(std::string("Couldn't init SDL: ") + SDL_GetError());
    }
    input::Input* input = input::Input::GetInstancePtr();
    input->InitializeSDL();
    input->AddListener(this);
    SetWindowIcon(workDir + "Qlex.bmp");
    m_system->SetExitAction([this] { Exit(); });
    m_system->SetRecreateWindowAction([this] { ApplyParserConfig(); });
}

Subsystem::~Subsystem()
{
    GLHasUnloaded();
    rendering::Renderer::Destroy();
    input::Input::Destroy();
    gui::GUI::Destroy();
    rendering::ShaderManager::Destroy();
    rendering::TextureManager::Destroy();
    util::FileSystem::Destroy();
    script::Parser::Destroy();
    SDL_Quit();
}

bool Subsystem::IsUserTrapped()
{
    return app::App::Exists() && app::App::GetInstancePtr()->GetAppGUI().IsUserTrapped();
}

bool Subsystem::MayQuit() const
{
    return m_quit && !IsUserTrapped();
}

void Subsystem::Run()
{
    double lastFrame = Now();
    m_measureStart = lastFrame;
    LogTimerPrecision();
    util::Profiler::GetInstancePtr()->Reset();
    input::Input* input = input::Input::GetInstancePtr();
    input->PumpEvents();
    input->CalibrateJoysticks();
    Log(logging::Debug, "Entering game loop");

    unsigned flushCounter = 0;
    while (true)
    {
        if (MayQuit())
        {
            break;
        }
        {
            util::ScopeProfiler stage("Events");
            input->PumpEvents();
        }
        physics::Simulation::GetInstancePtr()->SetUpdateBudget(1.0f / m_system->m_minFPS);
        if (MayQuit())
        {
            break;
        }
        const double now = Now();
        const double dt = now - lastFrame;
        if (++flushCounter > CALLBACK_FLUSH_PERIOD)
        {
            util::ScopeProfiler stage("FlushCallbackSets");
            util::AbstractCallbackSet::FlushCallbackSets();
            flushCounter = 0;
        }
        {
            util::ScopeProfiler stage("GC");
            util::PointeeHandle::Flush();
        }
        {
            util::ScopeProfiler stage("Parser::Update");
            script::Parser::GetInstancePtr()->Update();
        }
        {
            util::ScopeProfiler stage("Interp::Update");
            util::InterpolatorBase::UpdateAll();
        }
        {
            util::ScopeProfiler stage("GUI::Update");
            gui::GUI::GetInstancePtr()->Update(static_cast<float>(dt));
        }
        RunDueCallbacks();
        if (MayQuit())
        {
            break;
        }
        {
            util::ScopeProfiler stage("Draw");
            Draw();
        }
        util::Profiler::GetInstancePtr()->Update();
        util::Profiler2::GetInstancePtr()->Update(dt);
        {
            util::ScopeProfiler stage("Logger::Update");
            logging::Logger::GetInstancePtr()->Update();
        }
        float maxFPS = m_system->m_maxFPS;
        const unsigned sleep = FrameSleepMilliseconds(maxFPS, dt);
        if (maxFPS != m_system->m_maxFPS)
        {
            m_system->m_maxFPS = maxFPS;
        }
        if (sleep > 0)
        {
            SDL_Delay(sleep);
        }
        lastFrame = now;
    }
    // The GL objects go while their context still exists.
    ResourceManager::GetInstancePtr()->UnloadAll();
}

void Subsystem::RunDueCallbacks()
{
    // Callbacks that ask for more later work while running get a fresh set, so they run next pass.
    std::unique_ptr<util::CallbackSet> due = std::move(m_doLater);
    m_doLater = std::make_unique<util::CallbackSet>();
    due->CallAll();
}

void Subsystem::Draw()
{
    gui::GUI::GetInstancePtr()->Draw();
    {
        util::ScopeProfiler stage("SDL_GL_SwapBuffers");
        SDL_GL_SwapBuffers();
    }
    ++m_frameCount;
    const double now = Now();
    const double elapsed = now - m_measureStart;
    // A first value as soon as any time has passed, rather than a zero for the first second.
    if (m_fps == 0.0 && elapsed > 0.0)
    {
        m_fps = m_frameCount / elapsed;
    }
    if (elapsed > FPS_MEASURE_PERIOD)
    {
        m_fps = m_frameCount / elapsed;
        m_frameCount = 0;
        m_measureStart = now;
    }
    CheckForGLError();
}

void Subsystem::Exit()
{
    if (!IsUserTrapped())
    {
        m_quit = true;
    }
}

void Subsystem::DoLater(util::CallbackPtr callback)
{
    m_doLater->Add(callback);
}

void Subsystem::CreateWindow(WindowParams params)
{
    Log(logging::Info, "Creating window...");
    ResourceManager* resources = ResourceManager::GetInstancePtr();
    resources->UnloadAll();

    params = ClampWindowSize(params, DisplaySize());

    Log(logging::Debug, "Setting up SDL");
    SetGLAttribute(SDL_GL_BUFFER_SIZE, params.depth, "Couldn't set buffer depth");
    if (params.depth == FULL_COLOUR_DEPTH)
    {
        SetGLAttribute(SDL_GL_RED_SIZE, CHANNEL_BITS, "Couldn't set buffer red depth");
        SetGLAttribute(SDL_GL_GREEN_SIZE, CHANNEL_BITS, "Couldn't set buffer green depth");
        SetGLAttribute(SDL_GL_BLUE_SIZE, CHANNEL_BITS, "Couldn't set buffer blue depth");
        SetGLAttribute(SDL_GL_ALPHA_SIZE, CHANNEL_BITS, "Couldn't set buffer alpha depth");
    }
    SetGLAttribute(SDL_GL_DEPTH_SIZE, params.zDepth, "Couldn't set z-buffer depth");
    if (params.stencilDepth != 0)
    {
        SetGLAttribute(SDL_GL_STENCIL_SIZE, params.stencilDepth, "Couldn't set stencil-buffer depth");
    }
    if (params.antiAlias > 1)
    {
        SetGLAttribute(SDL_GL_MULTISAMPLEBUFFERS, 1, "Couldn't set the AA buffer");
        SetGLAttribute(SDL_GL_MULTISAMPLESAMPLES, params.antiAlias, "Couldn't set the AA samples");
    }

    Uint32 flags = SDL_OPENGL;
    if (params.fullscreen)
    {
        flags |= SDL_FULLSCREEN;
    }
    if (params.resizable)
    {
        flags |= SDL_RESIZABLE;
    }
    if (!params.framed)
    {
        flags |= SDL_NOFRAME;
    }
    Log(logging::Debug, "Setting video mode");
    if (!SDL_SetVideoMode(params.width, params.height, 0, flags))
    {
        throw std::runtime_error(std::string("Couldn't set video mode, SDL-error: ") + SDL_GetError());
    }

    Log(logging::Debug, "Init GLEW...");
    const GLenum glewError = glewInit();
    if (glewError != GLEW_OK)
    {
        throw std::runtime_error(std::string("GLEW Error: ") +
                                 reinterpret_cast<const char*>(glewGetErrorString(glewError)));
    }

    Log(logging::Debug, "Setting vsync");
    SetVSync(params.vSync);
    m_system->m_requestedParams = params;
    m_currentParams = params;

    Log(logging::Debug, "Setting viewport");
    // Software GL takes a new window size into its buffers at a swap: one swap of a cleared frame lets
    // the first true frame cover the whole window.
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    SDL_GL_SwapBuffers();
    glViewport(0, 0, GetWidth(), GetHeight());
    GLHasLoaded();

    Log(logging::Debug, "Checking for alpha framebuffer");
    int alphaBits = 0;
    if (SDL_GL_GetAttribute(SDL_GL_ALPHA_SIZE, &alphaBits) != 0)
    {
        throw std::runtime_error("Your computer won't let me query the alpha bit depth");
    }
    if (alphaBits != CHANNEL_BITS)
    {
        Log(logging::Error,
            "Your computer doesn't support alpha framebuffers; water may not be rendered correctly.");
    }

    Log(logging::Debug, "Loading all resources...");
    resources->LoadAll(false);
    Log(logging::Debug, "Done loading resources.");

    gui::GUI::GetInstancePtr()->OnNewWindowSize(GetWidth(), GetHeight());
    CheckForGLError();

    if (!m_firstWindow)
    {
        m_system->AddVoidCmd("screenshot", [this] { ScreenShot(); });
        m_firstWindow = true;
    }
    Log(logging::Info, "Window created.");
}

void Subsystem::ApplyParserConfig()
{
    CreateWindow(m_system->m_requestedParams);
}

void Subsystem::OnOtherEvent(const input::InputEvent& input)
{
    switch (input.event.type)
    {
    case SDL_QUIT:
        if (!IsUserTrapped())
        {
            Exit();
            input.SetHandled();
        }
        break;
    case SDL_VIDEORESIZE:
    {
        WindowParams params = m_currentParams;
        params.width = input.event.resize.w;
        params.height = input.event.resize.h;
        CreateWindow(params);
        input.SetHandled();
        break;
    }
    default:
        break;
    }
}

void Subsystem::ScreenShot() const
{
    rendering::Renderer::GetInstancePtr()->ScreenShot(util::FileSystem::GetInstancePtr()->WorkDir() +
                                                      "screenshots/qlex");
}

void Subsystem::SetTitle(const std::string& title)
{
    SDL_WM_SetCaption(title.c_str(), title.c_str());
}

int Subsystem::GetWidth() const
{
    const SDL_Surface* screen = SDL_GetVideoSurface();
    return screen ? screen->w : m_currentParams.width;
}

int Subsystem::GetHeight() const
{
    const SDL_Surface* screen = SDL_GetVideoSurface();
    return screen ? screen->h : m_currentParams.height;
}

bool Subsystem::GetVSync() const
{
    return false;
}

void Subsystem::SetVSync(bool)
{
    m_currentParams.vSync = false;
}

void Subsystem::SetParams(const WindowParams& params)
{
    m_currentParams = params;
    m_system->m_requestedParams = params;
}
} // namespace core
