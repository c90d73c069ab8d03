#pragma once

#include "core/System.h"
#include "core/WindowParams.h"
#include "input/InputListener.h"
#include "rendering/GLContext.h"
#include "script/AttribWrapper.h"
#include "script/Reflected.h"
#include "util/Callback.h"
#include "util/SharedPtr.h"
#include "util/Singleton.h"

#include <memory>
#include <string>

namespace core
{
// Owns the window and the frame loop, the only loop of the program. Made first by SDL_main; its
// destructor takes the other services down and closes SDL. It listens to the event pump for the close
// button and for new window sizes.
class Subsystem : public input::InputListener, public util::Singleton<Subsystem>
{
public:
    static const int PRIORITY = 50;

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
    void OnOtherEvent(const input::InputEvent& event) override;

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
    WindowParams& GetRequestedParams() { return m_system->m_requestedParams; }
    void SetParams(const WindowParams& params);

    // "System" of the scripts: the frame-rate settings, the requested window and the commands of the shell.
    util::SharedPtr<script::Reflected> GetReflected() const { return m_system; }
    System& GetSystem() const { return *m_system; }

private:
    util::SharedPtr<System> m_system;

    // Whether a quit may end the loop now.
    bool MayQuit() const;
    static bool IsUserTrapped();
    void RunDueCallbacks();
    void ScreenShot() const;

    bool m_firstWindow = false;
    unsigned m_frameCount = 0;   // frames since the last measurement
    double m_measureStart = 0.0; // seconds
    double m_fps = 0.0;
    bool m_quit = false;
    WindowParams m_currentParams;
    std::unique_ptr<util::CallbackSet> m_doLater;
};
} // namespace core
