#include "core/interim/StandIns.h"

#include "core/ProgramFiles.h"
#include "logging/Log.h"

#include <GL/glew.h>

namespace core::interim
{
namespace
{
// app::App's default "autosaveTime", in seconds.
constexpr double AUTOSAVE_INTERVAL = 30.0;
} // namespace

void GuiUpdate(double dt)
{
    // The first pass saves at once, so that a crash at any time of a run leaves the sign of it behind.
    static double s_sinceAutosave = AUTOSAVE_INTERVAL;
    s_sinceAutosave += dt;
    if (s_sinceAutosave >= AUTOSAVE_INTERVAL)
    {
        SaveConfig(ConfigDir() + app::CONFIG_AUTOSAVE);
        s_sinceAutosave = 0.0;
    }
}

void GuiDraw()
{
    // A dark blue-grey, so that a running window is told apart from a hung black one.
    glClearColor(0.15f, 0.18f, 0.24f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
}

void GuiOnNewWindowSize(int, int) {}

bool TrapUser() { return false; }

void LoadSceneFile(const std::string& path, bool)
{
    Log(logging::Info, "Scenes can't be loaded yet; " + path + " stays closed");
}
} // namespace core::interim
