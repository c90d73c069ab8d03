#include "input/ButtonInput.h"

#include "input/InputDelegator.h"
#include "input/Key.h"
#include "input/KeyState.h"
#include "logging/Exception.h"
#include "logging/Log.h"
#include "util/StringUtil.h"

#include <algorithm>

namespace input
{
namespace
{
InputDelegator* s_host = nullptr;

// The relays of all bound buttons, so that a host that comes later, or goes, takes them all. Never
// destroyed: buttons of singletons (a scene's hinges) let go of their relays after static destruction has
// begun, and must find the set still there.
std::set<ButtonInput::InputRelay*>& BoundRelays()
{
    static auto* relays = new std::set<ButtonInput::InputRelay*>();
    return *relays;
}

// A callback may delete the button, and the set with it: the calls run over a copy, which keeps the
// callbacks alive until they return.
void CallEach(const util::CallbackSet& callbacks)
{
    const util::CallbackSet held = callbacks;
    held.CallAll();
}

const char* const TOGGLE_WORD = "toggle";
const char* const ON_WORD = "on";
} // namespace

ButtonInput::InputRelay::InputRelay(ButtonInput* button) : InputListener(50), m_button(button) {}

void ButtonInput::InputRelay::OnKeyEvent(const KeyEvent& event)
{
    InputListener::OnKeyEvent(event);
    if (m_button)
        m_button->OnKeyEvent(event);
}

ButtonInput::ButtonInput() : m_relay(QLEX_NEW new InputRelay(this)), m_toggle(false), m_on(false)
{
    m_relay->SetPriority(RELAY_PRIORITY);
}

ButtonInput::ButtonInput(const ButtonInput& other) : ButtonInput()
{
    *this = other;
}

ButtonInput::~ButtonInput()
{
    if (IsBound())
        Unregister();
    m_relay->Detach();
}

ButtonInput& ButtonInput::operator=(const ButtonInput& other)
{
    if (this == &other)
        return *this;
    const bool wasBound = IsBound();
    m_keys = other.m_keys;
    m_toggle = other.m_toggle;
    m_on = other.m_on;
    m_pressCallbacks = other.m_pressCallbacks;
    UpdateRegistration(wasBound);
    return *this;
}

void ButtonInput::SetHost(InputDelegator* host)
{
    if (host == s_host)
        return;
    for (InputRelay* relay : BoundRelays())
    {
        if (s_host)
            s_host->RemoveListener(util::WeakPtr<InputListener>(relay));
        if (host)
            host->AddListener(relay);
    }
    s_host = host;
}

void ButtonInput::Register()
{
    BoundRelays().insert(m_relay.get());
    if (s_host)
        s_host->AddListener(m_relay);
}

void ButtonInput::Unregister()
{
    BoundRelays().erase(m_relay.get());
    if (s_host)
        s_host->RemoveListener(m_relay);
}

void ButtonInput::UpdateRegistration(bool wasBound)
{
    if (!wasBound && IsBound())
        Register();
    else if (wasBound && !IsBound())
        Unregister();
}

void ButtonInput::AssignKeys(const ButtonInput& other)
{
    if (this == &other)
        return;
    const bool wasBound = IsBound();
    m_keys = other.m_keys;
    UpdateRegistration(wasBound);
}

void ButtonInput::Assign(SDLKey key)
{
    const bool wasBound = IsBound();
    m_keys.clear();
    m_keys.push_back(key);
    m_toggle = false;
    m_on = false;
    UpdateRegistration(wasBound);
}

void ButtonInput::AddKey(SDLKey key)
{
    if (HasKey(key))
        return;
    const bool wasBound = IsBound();
    m_keys.push_back(key);
    UpdateRegistration(wasBound);
}

bool ButtonInput::HasKey(SDLKey key) const
{
    return std::find(m_keys.begin(), m_keys.end(), key) != m_keys.end();
}

std::set<SDLKey> ButtonInput::GetKeySet() const
{
    return std::set<SDLKey>(m_keys.begin(), m_keys.end());
}

void ButtonInput::SetOn(bool on)
{
    if (on && !m_on)
    {
        m_on = true;
        m_pressCallbacks.CallAll();
    }
    m_on = on;
}

void ButtonInput::AddOnPressCallback(util::SharedPtr<util::Callback> callback)
{
    m_pressCallbacks.Add(callback);
}

bool ButtonInput::AreAllMykeysDown() const
{
    return std::all_of(m_keys.begin(), m_keys.end(), [](SDLKey key) { return KeyState::IsDown(key); });
}

std::string ButtonInput::AsString() const
{
    std::string text;
    for (SDLKey key : m_keys)
    {
        if (!text.empty())
            text += ' ';
        text += Key::GetKeyName(key);
    }
    return text;
}

std::string ButtonInput::Serialize() const
{
    if (!IsBound())
        return "";
    if (!m_toggle)
        return AsString();
    return std::string(m_on ? "on " : "") + "toggle " + AsString();
}

void ButtonInput::Deserialize(const std::string& text)
{
    const bool wasBound = IsBound();
    if (wasBound)
        Unregister();
    m_keys.clear();
    m_toggle = false;
    m_on = false;
    for (const std::string& token : util::Split(text, ' '))
    {
        if (token == TOGGLE_WORD)
            m_toggle = true;
        else if (token == ON_WORD)
            SetOn(true);
        else
        {
            // A file is bad input: the name is reported and the button keeps the keys it could read.
            try
            {
                const SDLKey key = Key::GetKeyFromName(token);
                if (!HasKey(key))
                    m_keys.push_back(key);
            }
            catch (const BadDataException& e)
            {
                Log(logging::Error, e.what());
            }
        }
    }
    if (IsBound())
        Register();
}

void ButtonInput::OnKeyEvent(const KeyEvent& event)
{
    if (!HasKey(event.key))
        return;
    // A handled release still counts, so that a button never sticks on.
    if (event.pressed && event.IsHandled())
        return;
    // The key that completes the combination triggers it, whatever the order of pressing; a release
    // counts only while the combination stood complete.
    for (SDLKey key : m_keys)
    {
        if (key != event.key && !KeyState::IsDown(key))
            return;
    }
    // A callback may take the button's owner away (a destroy key): the relay outlives the call.
    const util::SharedPtr<InputRelay> relay = m_relay;
    if (!m_toggle)
    {
        if (event.pressed && !m_on)
        {
            m_on = true;
            CallEach(m_pressCallbacks);
        }
        else
            m_on = event.pressed;
        return;
    }
    if (!event.pressed)
        return;
    m_on = !m_on;
    if (m_on)
        CallEach(m_pressCallbacks);
}

size_t ButtonInput::Hash(const ButtonInput& button)
{
    size_t hash = 0;
    for (SDLKey key : button.m_keys)
        hash ^= size_t(key);
    return hash;
}

bool operator==(const ButtonInput& a, const ButtonInput& b)
{
    return a.GetKeySet() == b.GetKeySet() && a.GetToggle() == b.GetToggle();
}

} // namespace input
