#include "app/AppGUI.h"
#include "app/SceneFiles.h"

#include "app/App.h"
#include "app/Undoer.h"
#include "core/ProgramFiles.h"
#include "logging/Log.h"
#include "script/Configuration.h"
#include "util/FileSystem.h"
#include "util/Profiler.h"
#include "util/Timer.h"

namespace app
{

AppGUI::AppGUI()
    : m_reflected(QLEX_NEW new script::Reflected("GUI")), m_trapUser(m_reflected.get(), "trapUser", false),
      m_lastAutosave(util::Timer::GetCurrentTime())
{
    SetFillOwner(true);
}

void AppGUI::Update(float dt)
{
    util::ScopeProfiler profile("AppGUI::Update");
    gui::Component::Update(dt);
    const double now = util::Timer::GetCurrentTime();
    if (now - m_lastAutosave > App::GetInstancePtr()->m_autosaveTime)
    {
        script::Configuration::SaveAutosave(util::FileSystem::GetInstancePtr()->ConfigDir());
        SaveSceneAs(Scene_Autosave, true);
        m_lastAutosave = now;
    }
}

void AppGUI::OnKeyEvent(const input::KeyEvent& event)
{
    gui::Component::OnKeyEvent(event);
    if (event.IsHandled() || !event.pressed || !event.ctrl)
        return;
    if (event.key == SDLK_z)
        Undoer::GetInstancePtr()->Undo();
    else if (event.key == SDLK_y)
        Undoer::GetInstancePtr()->Redo();
    else
        return;
    event.SetHandled();
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
