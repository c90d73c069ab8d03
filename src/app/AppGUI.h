#pragma once

#include "app/Group.h"
#include "app/Snapshot.h"
#include "app/entities/Entity.h"
#include "gui/components/Component.h"
#include "gui/components/LabeledSlider.h"
#include "script/Objects.h"
#include "script/Reflected.h"
#include "util/String.h"

#include <functional>
#include <vector>

namespace app
{

// The component over the whole scene that turns what no panel took into actions on the scene: clicks
// select and open the popup menu, drags go to the current tool or pan the view, the wheel zooms about the
// mouse, and the keyboard shortcuts edit, copy, paste, undo, save and quit. It also autosaves. Its
// settings ("App.GUI") live in app::AppSettings, so that the headless program reads them as well.
// The mouse reaches the world through the current tool of app::Tools; where the tool takes no drag, a
// temporary tool of that one gesture is picked by the button and by what lies under the start.
class AppGUI : public gui::Component
{
public:
    // What only the shell above can do. It fills these at start; empty ones do nothing.
    struct ShellActions
    {
        std::function<void()> exit;
        std::function<void()> toggleFullscreen;
    };
    static void SetShellActions(ShellActions actions);

    AppGUI();

    void OnClick(const input::ClickEvent& event) override;
    void OnDragBegin(const input::DragEvent& event) override;
    void OnDrag(const input::DragEvent& event) override;
    void OnDragEnd(const input::DragEvent& event) override;
    void OnKeyEvent(const input::KeyEvent& event) override;

    // The base, then the configuration's and the scene's autosave once App's "autosaveTime" has passed.
    void Update(float dt) override;
    void DrawCompAndChildren() const override;

    // The settings as an expression; the panels that belong to no group join them with the widgets.
    script::ExpressionPtr ToExpression() const;
    // "GUI" of the scripts, below "App": its settings are the document's, in app::AppSettings.
    const util::SharedPtr<script::Reflected>& GetReflected() const;

    // No way out of the program while set: the shell neither asks for nor honours a quit.
    bool IsUserTrapped() const;

    void Rebuild() {}
    void SetUpDefaults() {}

    GroupPtr GetSelection() const;
    const std::vector<EntityPtr>& GetAppEntities() const;
    // The mouse in world coordinates.
    math::Vec2 GetMousePos() const;

    // The name of the menu the last OpenMenu chose: "EntityMenu", "WaterMenu" or "BackgroundMenu".
    const util::String& GetOpenMenu() const { return m_openMenu; }
    void OpenMenu();
    // At most one popup is open; the new one comes to the front.
    void SetPopup(util::SharedPtr<gui::Component> popup);
    void ClosePopup();
    bool IsPopupOpen() const;

    // `automatic` marks the autosave, the recovery and the scene named at start.
    void LoadScene(const util::String& name, bool automatic);
    void SaveSceneAs(const util::String& name, bool automatic);

    // A change of the slider by the user, from press to release, becomes one step of the history.
    void RegisterSlider(util::SharedPtr<gui::LabeledSlider> slider);
    void OnSliderBegin();
    void OnSliderEnd(std::string name);

    // A mark in the history.
    void TakeSnapshot();
    void AssignToEmptyGroup(const EntitySet& entities);
    void InvertSelection();
    void EraseWater();
    void ToggleFullscreen();
    bool DrawFixJointsAndHinges() const;

    // Zooms in (or out) by one notch of the wheel, keeping the world point under `guiPos` where it is.
    // False where the zoom is at its limit already.
    bool ZoomAt(const math::Vec2& guiPos, bool in);
    // Runs `text` as scene text and moves what it made to the world point `at`, as one step of the history.
    // False, with nothing changed in the history, when the text made nothing.
    bool Paste(const util::String& text, const math::Vec2& at);
    // Copies the selection to the clipboard as a qlexlet; with `cut`, the selection leaves the scene.
    void CopySelection(bool cut);

private:
    // The steps of OnKeyEvent: the first table (wheel and space), then the shortcuts.
    bool OnWheelOrSpace(const input::KeyEvent& event);
    void OnShortcut(const input::KeyEvent& event);
    void OnEditingKey(const input::KeyEvent& event);
    void GroupSelection();
    void UngroupSelection();
    math::Vec2 ToWorld(const math::Vec2& guiPos) const;

    util::SharedPtr<gui::Component> m_popupHolder;
    // Seconds of the frame clock.
    double m_lastAutosave;
    util::String m_openMenu;
    // The scene as it was when a slider's change began.
    SnapshotPtr m_sliderSnapshot;
};

} // namespace app
