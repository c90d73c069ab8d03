#include "app/AppGUI.h"
#include "app/SceneFiles.h"

#include "app/AppSettings.h"
#include "app/ProgramFiles.h"
#include "logging/Log.h"
#include "script/Configuration.h"
#include "util/FileSystem.h"
#include "util/Profiler.h"
#include "util/Timer.h"

namespace app
{

AppGUI::AppGUI() : m_lastAutosave(util::Timer::GetCurrentTime())
{
    SetFillOwner(true);
}

void AppGUI::Update(float dt)
{
    util::ScopeProfiler profile("AppGUI::Update");
    gui::Component::Update(dt);
    const double now = util::Timer::GetCurrentTime();
    if (now - m_lastAutosave > AppSettings::GetInstancePtr()->m_autosaveTime)
    {
        script::Configuration::SaveAutosave(util::FileSystem::GetInstancePtr()->ConfigDir());
        SaveSceneAs(Scene_Autosave, true);
        m_lastAutosave = now;
    }
}

bool AppGUI::IsUserTrapped() const
{
    return AppSettings::GetInstancePtr()->m_trapUser;
}

const util::SharedPtr<script::Reflected>& AppGUI::GetReflected() const
{
    return AppSettings::GetInstancePtr()->GetGUIReflected();
}

void AppGUI::LoadScene(const util::String& name, bool automatic)
{
    LoadSceneFile(name, automatic);
}

void AppGUI::SaveSceneAs(const util::String& name, bool automatic)
{
    SaveSceneFile(name, automatic);
}

} // namespace app
