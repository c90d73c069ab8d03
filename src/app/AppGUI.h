#pragma once

// STAND-IN for the application's interface (menus, panels, tools), which a later piece of work builds under
// these names. What stands here is what the shell and the application root call: the periodic autosave of
// the configuration and the scene, the "trapUser" setting, and loading and saving scene files.

#include "gui/components/Component.h"
#include "script/AttribWrapper.h"
#include "script/Reflected.h"
#include "util/String.h"

namespace app
{

class AppGUI : public gui::Component
{
public:
    AppGUI();

    // The base, then the configuration's autosave once App's "autosaveTime" has passed.
    void Update(float dt) override;
    // Of the shortcut table only Ctrl+Z (undo) and Ctrl+Y (redo) stand here so far.
    void OnKeyEvent(const input::KeyEvent& event) override;

    // No way out of the program while set: the shell neither asks for nor honours a quit.
    bool IsUserTrapped() const { return m_trapUser; }

    // `automatic` marks the autosave, the recovery and the scene named at start.
    void LoadScene(const util::String& name, bool automatic);
    void SaveSceneAs(const util::String& name, bool automatic);
    void Rebuild() {}
    void SetUpDefaults() {}

    const util::SharedPtr<script::Reflected>& GetReflected() const { return m_reflected; }

private:
    util::SharedPtr<script::Reflected> m_reflected;
    script::AttribWrapper<bool> m_trapUser;
    // Seconds of the frame clock.
    double m_lastAutosave;
};

} // namespace app
