#pragma once

#include "core/WindowParams.h"
#include "script/AttribWrapper.h"
#include "script/Reflected.h"

#include <functional>

namespace core
{
// "System" of the scripts: the shell's settings and commands. Both programs make this one object, so that
// the configuration either of them writes reads in the other without an error. The window settings are
// kept without a window too; what the commands do is each program's own.
class System : public script::Reflected
{
public:
    System();

    // What "exit" does.
    void SetExitAction(std::function<void()> action) { m_exit = std::move(action); }
    // What "recreateWindow" does: make the window that m_requestedParams describe.
    void SetRecreateWindowAction(std::function<void()> action) { m_recreateWindow = std::move(action); }

    // Lowest frame rate that the simulation's work may drag the loop down to.
    script::AttribWrapper<float> m_minFPS;
    // Frame-rate ceiling; raised to 1 when set lower.
    script::AttribWrapper<float> m_maxFPS;
    // What "resizable", "fullscreen", "resolution", "antiAlias" and "depth" write.
    WindowParams m_requestedParams;

private:
    // Vertical sync isn't controlled: it reads false, and a set changes nothing.
    script::AttribWrapper<bool> m_vSync;
    std::function<void()> m_exit;
    std::function<void()> m_recreateWindow;
};

} // namespace core
