#pragma once

#include "core/WindowParams.h"
#include "core/interim/StandIns.h"
#include "util/Callback.h"
#include "util/SharedPtr.h"
#include "util/Singleton.h"

#include <memory>
#include <string>

namespace core
{
// Owns the window and the frame loop, the only loop of the program. Made first by SDL_main; its
// destructor takes the other services down and closes SDL.
class Subsystem : public util::Pointee, public util::Singleton<Subsystem>
{
public:
    Subsystem();
    ~Subsystem() override;

    // The frame loop; returns once a quit has been asked for and may be honoured.
    void Run();
    // One frame's drawing and the buffer swap.
    void Draw();
    // Asks the loop to stop, unless the user is trapped in the program.
    void Exit();
    // Runs `callback` once, after the interface update of the current pass: for work that mustn't run
    // inside an event or interface handler.
    void DoLater(util::CallbackPtr callback);

    // Makes the window, or a new one in place of the old. Every GL object dies with the old context.
    void CreateWindow(WindowParams params);
    // Makes the window that the script variables ask for.
    void ApplyParserConfig();
    void OnOtherEvent(const interim::InputEvent& event);

    void SetTitle(const std::string& title);
    int GetWidth() const;
    int GetHeight() const;
    // Vertical sync isn't controlled: reads false, and a set stores false.
    bool GetVSync() const;
    void SetVSync(bool vSync);

    // Frames per second as last measured; 0 until the first frame.
    double GetFPS() const { return m_fps; }
    bool IsQuitRequested() const { return m_quit; }
    const WindowParams& GetCurrentParams() const { return m_currentParams; }
    // What "resizable", "fullscreen", "resolution", "antiAlias" and "depth" write; ApplyParserConfig
    // applies it.
    WindowParams& GetRequestedParams() { return m_requestedParams; }
    void SetParams(const WindowParams& params);

    // Lowest frame rate that the simulation's work may drag the loop down to.
    float m_minFPS = 10.0f;
    // Frame-rate ceiling; raised to 1 when set lower.
    float m_maxFPS = 60.0f;

private:
    bool MayQuit() const;
    void RunDueCallbacks();

    bool m_firstWindow = false;
    unsigned m_frameCount = 0;    // frames since the last measurement
    double m_measureStart = 0.0;  // seconds
    double m_fps = 0.0;
    bool m_quit = false;
    WindowParams m_currentParams;
    WindowParams m_requestedParams;
    std::unique_ptr<util::CallbackSet> m_doLater;
};
} // namespace core

// Whether a GL context exists: resources and GL checks do nothing before it does.
void GLHasLoaded();
bool HasGLLoaded();
