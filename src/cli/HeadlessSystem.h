#pragma once
// "System" of the headless program: the settings and commands of the application shell that make sense
// without a window. The window settings are kept, so that configuration text written by the windowed
// program reads here without errors, but nothing applies them.

#include "math/Math.h"
#include "script/AttribWrapper.h"
#include "script/Reflected.h"
#include "util/Singleton.h"

namespace cli
{

class HeadlessSystem : public script::Reflected, public util::Singleton<HeadlessSystem>
{
public:
    HeadlessSystem();

    // Set by the script command "exit": the program stops after the command that gave it.
    bool IsExitRequested() const { return m_exitRequested; }

private:
    void Exit();
    bool GetVSync() const { return false; }
    void SetVSync(bool) {}

    script::AttribWrapper<float> m_minFPS;
    script::AttribWrapper<float> m_maxFPS;
    script::AttribWrapper<bool> m_vSync;
    script::AttribWrapper<bool> m_resizable;
    script::AttribWrapper<bool> m_fullscreen;
    script::AttribWrapper<math::TVector2<int>> m_resolution;
    script::AttribWrapper<int> m_antiAlias;
    script::AttribWrapper<int> m_depth;
    bool m_exitRequested = false;
};

} // namespace cli
