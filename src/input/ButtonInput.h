#pragma once

#include "input/InputListener.h"
#include "util/Callback.h"
#include "util/SharedPtr.h"
#include "util/VectorPOD.h"

#include <SDL/SDL.h>

#include <cstddef>
#include <set>
#include <string>

namespace input
{
class InputDelegator;

// A combination of keys of the one numbering that acts as one button: held (on while all are down) or
// toggled (each completed press flips it). A value: entities, hinges and key bindings hold it by copy. It
// watches key events by itself through a relay listener, which stands in the host's listener list exactly
// while the button has keys. The text form ("left_ctrl a", "toggle mouse_middle", "on toggle joy_0_b1")
// stands in scene and configuration files.
class ButtonInput
{
public:
    class InputRelay : public InputListener
    {
    public:
        // Made at the priority of an ordinary component; the button then moves it.
        explicit InputRelay(ButtonInput* button);
        void OnKeyEvent(const KeyEvent& event) override;
        // The button is going: a delivery under way must not reach it any more.
        void Detach() { m_button = nullptr; }
        bool IsAttached() const { return m_button != nullptr; }

    private:
        ButtonInput* m_button;
    };

    // Behind a focused text box (75) and the console (76), which take what they consume, and ahead of
    // ordinary components (50).
    static const int RELAY_PRIORITY = 74;

    ButtonInput();
    ButtonInput(const ButtonInput& other);
    ~ButtonInput();
    ButtonInput& operator=(const ButtonInput& other);

    // Where relays listen: the root component of the interface, which passes every key event on. Relays
    // of buttons bound before the host stood join it now; null takes them all out.
    static void SetHost(InputDelegator* host);

    void AssignKeys(const ButtonInput& other);
    // Exactly a plain button on this one key.
    void Assign(SDLKey key);
    void AddKey(SDLKey key);
    bool HasKey(SDLKey key) const;
    bool IsBound() const { return !m_keys.empty(); }
    std::set<SDLKey> GetKeySet() const;
    bool GetToggle() const { return m_toggle; }
    void SetToggle(bool toggle) { m_toggle = toggle; }

    bool IsOn() const { return IsBound() && m_on; }
    // The press callbacks run when this turns the button on.
    void SetOn(bool on);
    void AddOnPressCallback(util::SharedPtr<util::Callback> callback);
    bool AreAllMykeysDown() const;

    std::string AsString() const;
    std::string Serialize() const;
    // A name that is no key logs "Unknown name of key" and adds nothing; the rest of the text still counts.
    void Deserialize(const std::string& text);

    void OnKeyEvent(const KeyEvent& event);

    // The exclusive or of the codes: the order of the keys doesn't matter, as for equality.
    static size_t Hash(const ButtonInput& button);
    struct Hasher
    {
        size_t operator()(const ButtonInput& button) const { return Hash(button); }
    };

private:
    void Register();
    void Unregister();
    // Registers or unregisters after the keys changed from `wasBound`.
    void UpdateRegistration(bool wasBound);

    util::SharedPtr<InputRelay> m_relay;
    util::VectorPOD<SDLKey> m_keys;
    bool m_toggle;
    bool m_on;
    util::CallbackSet m_pressCallbacks;
};

// The same keys and the same toggle flag; the state and the callbacks don't count.
bool operator==(const ButtonInput& a, const ButtonInput& b);
inline bool operator!=(const ButtonInput& a, const ButtonInput& b)
{
    return !(a == b);
}

} // namespace input
