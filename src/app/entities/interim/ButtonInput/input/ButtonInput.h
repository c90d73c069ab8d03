#pragma once

// INTERIM STAND-IN for input::ButtonInput, which the input subsystem builds: the value part only (keys,
// toggle, on state, press callbacks, text form, equality and hash). It does not listen to key events, so
// a bound key never turns it on by itself. The build uses this folder only while src/input/ButtonInput.h
// does not exist; delete it when it does.

#include "input/Key.h"
#include "util/Callback.h"
#include "util/StringUtil.h"
#include "util/VectorPOD.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>

namespace input
{
class ButtonInput
{
public:
    ButtonInput() = default;
    ButtonInput(const ButtonInput& other) { *this = other; }
    ButtonInput& operator=(const ButtonInput& other)
    {
        m_keys = other.m_keys;
        m_toggle = other.m_toggle;
        m_on = other.m_on;
        m_pressCallbacks = other.m_pressCallbacks;
        return *this;
    }

    void AssignKeys(const ButtonInput& other) { m_keys = other.m_keys; }
    void Assign(SDLKey key)
    {
        m_keys.clear();
        m_keys.push_back(key);
        m_toggle = false;
        m_on = false;
    }
    void AddKey(SDLKey key)
    {
        if (!HasKey(key))
            m_keys.push_back(key);
    }
    bool HasKey(SDLKey key) const { return std::find(m_keys.begin(), m_keys.end(), key) != m_keys.end(); }
    bool IsBound() const { return !m_keys.empty(); }
    std::set<SDLKey> GetKeySet() const { return std::set<SDLKey>(m_keys.begin(), m_keys.end()); }
    bool GetToggle() const { return m_toggle; }
    void SetToggle(bool toggle) { m_toggle = toggle; }

    bool IsOn() const { return IsBound() && m_on; }
    void SetOn(bool on)
    {
        if (on && !m_on)
        {
            m_on = true;
            m_pressCallbacks.CallAll();
        }
        m_on = on;
    }
    void AddOnPressCallback(util::SharedPtr<util::Callback> callback) { m_pressCallbacks.Add(callback); }

    std::string AsString() const
    {
        std::string text;
        for (SDLKey key : m_keys)
            text += (text.empty() ? "" : " ") + Key::GetKeyName(key);
        return text;
    }
    std::string Serialize() const
    {
        if (!IsBound())
            return "";
        if (!m_toggle)
            return AsString();
        return std::string(m_on ? "on " : "") + "toggle " + AsString();
    }
    void Deserialize(const std::string& text)
    {
        m_keys.clear();
        m_toggle = false;
        m_on = false;
        for (const std::string& token : util::Split(text, ' '))
        {
            if (token == "toggle")
                m_toggle = true;
            else if (token == "on")
                SetOn(true);
            else
                AddKey(Key::GetKeyFromName(token));
        }
    }

    static size_t Hash(const ButtonInput& button)
    {
        size_t hash = 0;
        for (SDLKey key : button.m_keys)
            hash ^= size_t(key);
        return hash;
    }
    struct Hasher
    {
        size_t operator()(const ButtonInput& button) const { return Hash(button); }
    };

    friend bool operator==(const ButtonInput& a, const ButtonInput& b)
    {
        return a.GetKeySet() == b.GetKeySet() && a.m_toggle == b.m_toggle;
    }
    friend bool operator!=(const ButtonInput& a, const ButtonInput& b) { return !(a == b); }

private:
    util::VectorPOD<SDLKey> m_keys;
    bool m_toggle = false;
    bool m_on = false;
    util::CallbackSet m_pressCallbacks;
};
} // namespace input
