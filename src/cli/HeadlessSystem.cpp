#include "cli/HeadlessSystem.h"

#include "logging/Log.h"
#include "script/SystemCommands.h"

namespace cli
{

namespace
{
// The defaults of the windowed program's parameters.
const float DEFAULT_MIN_FPS = 10.0f;
const float DEFAULT_MAX_FPS = 60.0f;
const int DEFAULT_WIDTH = 1024;
const int DEFAULT_HEIGHT = 768;
const int DEFAULT_DEPTH = 32;
} // namespace

HeadlessSystem::HeadlessSystem()
    : script::Reflected("System"), m_minFPS(this, "minFPS", DEFAULT_MIN_FPS),
      m_maxFPS(this, "maxFPS", DEFAULT_MAX_FPS),
      m_vSync(this, "vSync", this, &HeadlessSystem::GetVSync, &HeadlessSystem::SetVSync),
      m_resizable(this, "resizable", true), m_fullscreen(this, "fullscreen", false),
      m_resolution(this, "resolution", math::TVector2<int>(DEFAULT_WIDTH, DEFAULT_HEIGHT)),
      m_antiAlias(this, "antiAlias", 1), m_depth(this, "depth", DEFAULT_DEPTH)
{
    AddMemberCmd("exit", &HeadlessSystem::Exit);
    script::AddClockAndObjectCountCommands(*this);
    script::AddRandomSeedAttribute(*this);
    AddVoidCmd("recreateWindow", [] { Log(logging::Info, "There is no window to recreate in qlex-cli"); });
}

void HeadlessSystem::Exit()
{
    m_exitRequested = true;
}

} // namespace cli
