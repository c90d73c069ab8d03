#pragma once

#include "input/InputDelegator.h"
#include "input/InputSettings.h"
#include "input/Joystick.h"
#include "util/Singleton.h"

#include <map>
#include <string>
#include <vector>

namespace input
{

// The root of event delivery. Once a frame PumpEvents empties SDL's queue, turns each SDL event into the
// program's own events, keeps the table of keys that are down, recognises clicks, multi-clicks and drags
// of the three main mouse buttons, and offers every event to every listener by priority.
class Input : public InputDelegator, public util::Singleton<Input>
{
public:
    enum ClickState
    {
        Idle = 0,
        Pressed = 1,
        Dragging = 2,
    };

    static const int PRIORITY = 50;

    Input();
    ~Input() override;

    // Whether the singleton stands, without making it.
    static bool IsUp();

    // Once, after SDL_Init: text input and key repeat on, joysticks opened and calibrated, no grab.
    void InitializeSDL();
    // Once a frame: every pending SDL event, then the hold that turns a press into a drag.
    void PumpEvents();
    void HandleEvent(const SDL_Event& event);

    math::Vec2 GetMousePos() const { return m_mousePos; }
    bool IsKeyDown(int key) const;
    // A modifier counts only when SDL's modifier state and the key table agree.
    bool CheckModifier(Modifier modifier) const;

    // The "clickTimeTolerance" of the GUI, in seconds.
    double MaxClickTime() const;
    // The "clickTolerance" of the GUI, in GUI units.
    float MaxClickDistance() const;
    // Clicks beyond the second count on to three and then start anew.
    int MaxClickCount() const { return 2; }

    std::string GetClipboardText() const;
    void SetClipboardText(const std::string& text);

    void SetGrabInput(bool grab);
    void SetShowCursor(bool show);

    void LookForJoysticks();
    void CalibrateJoysticks();
    // The opened joystick with that index, or null.
    util::SharedPtr<Joystick> GetJoystick(int index) const;

    ClickState GetClickState() const { return m_clickState; }

    // The interface above (gui::GUI) registers its scale and tolerances here; null unregisters.
    static void SetSettings(const InputSettings* settings);
    // A pixel position in GUI units.
    static math::Vec2 PosFromPixel(int x, int y);

    void OnKeyEvent(const KeyEvent& event) override;
    void OnMouseMove(const MouseEvent& event) override;

private:
    std::vector<util::SharedPtr<Joystick>> m_joysticks;
    std::map<int, bool> m_keyTable;
    math::Vec2 m_mousePos;
    ClickState m_clickState;
    double m_pressTime;
    math::Vec2 m_pressPos;
    SDLKey m_pressButton;
    int m_clickCount;

    static const InputSettings* s_settings;
};

// Unicode translation and key repeat (500 ms delay, 30 ms interval) on, or both off.
void SetTextInput(bool on);

// A key event of a raw SDL key event. Where SDL gives no character, one is made up from the key.
KeyEvent BuildKeyEvent(const SDL_Event& event, bool pressed);

// The word with an "s" behind it for two or more.
std::string Plural(std::string word, int count);

} // namespace input
