#include "core/System.h"

#include "logging/Log.h"
#include "script/SystemCommands.h"

namespace core
{

System::System()
    : script::Reflected("System"), m_minFPS(this, "minFPS", 10.0f), m_maxFPS(this, "maxFPS", 60.0f),
      m_vSync(
          this, "vSync", [] { return false; }, [](const bool&) {}),
      m_recreateWindow([] { Log(logging::Info, "There is no window to recreate"); })
{
    // The requested window: read by "recreateWindow", and by the next start through the configuration.
    script::AttribWrapper<bool>(this, "resizable", &m_requestedParams.resizable);
    script::AttribWrapper<bool>(this, "fullscreen", &m_requestedParams.fullscreen);
    script::AttribWrapper<math::TVector2<int>>(
        this, "resolution", [this] { return m_requestedParams.GetResolution(); },
        [this](const math::TVector2<int>& size) { m_requestedParams.SetResolution(size); });
    script::AttribWrapper<int>(this, "antiAlias", &m_requestedParams.antiAlias);
    script::AttribWrapper<int>(this, "depth", &m_requestedParams.depth);

    AddVoidCmd("exit",
               [this]
               {
                   if (m_exit)
                       m_exit();
               });
    script::AddClockAndObjectCountCommands(*this);
    script::AddRandomSeedAttribute(*this);
    AddVoidCmd("recreateWindow", [this] { m_recreateWindow(); });
}

} // namespace core
