#include "input/DirInput.h"

#include "input/Key.h"
#include "input/KeyState.h"
#include "logging/Exception.h"
#include "logging/Log.h"
#include "util/StringUtil.h"

namespace input
{
namespace
{
DirInput::JoystickMaker s_joystickMaker;
const size_t KEY_FORM_WORDS = 5;

// A name that is no key leaves that direction without a key; the other three still steer.
SDLKey KeyOrNone(const util::String& name, const util::String& text)
{
    try
    {
        return Key::GetKeyFromName(name);
    }
    catch (const BadDataException& e)
    {
        Log(logging::Error, util::String(e.what()) + " in DirInput \"" + text + "\"");
        return SDLK_UNKNOWN;
    }
}

util::String NameOrEmpty(SDLKey key)
{
    return key == SDLK_UNKNOWN ? util::String() : Key::GetKeyName(key);
}
} // namespace

math::TVector2<float> IntoUnitDisc(math::TVector2<float> dir)
{
    const float length = dir.Length();
    return length > 1.0f ? dir / length : dir;
}

void DirInput::SetJoystickMaker(JoystickMaker maker)
{
    s_joystickMaker = std::move(maker);
}

DirInputPtr DirInput::Deserialize(const util::String& text)
{
    const std::vector<util::String> words = util::Split(text, ' ');
    if (!words.empty() && words[0] == "joy")
    {
        if (!s_joystickMaker)
        {
            Log(logging::Error, "No joystick connected, cannot find DirInput \"" + text + "\"");
            return nullptr;
        }
        return s_joystickMaker(words, text);
    }
    if (words.size() >= KEY_FORM_WORDS && words[0] == "keys")
    {
        SDLKey keys[4];
        for (int i = 0; i < 4; ++i)
            keys[i] = KeyOrNone(words[i + 1], text);
        return QLEX_NEW new KeyDirInput(keys[0], keys[1], keys[2], keys[3]);
    }
    Log(logging::Error, "Failed to find DirInput \"" + text + "\"");
    return nullptr;
}

KeyDirInput::KeyDirInput(SDLKey up, SDLKey right, SDLKey down, SDLKey left)
    : m_up(up), m_right(right), m_down(down), m_left(left)
{
}

math::TVector2<float> KeyDirInput::GetDir() const
{
    math::TVector2<float> dir(0.0f, 0.0f);
    if (KeyState::IsDown(m_up))
        dir.y += 1;
    if (KeyState::IsDown(m_right))
        dir.x += 1;
    if (KeyState::IsDown(m_down))
        dir.y -= 1;
    if (KeyState::IsDown(m_left))
        dir.x -= 1;
    return IntoUnitDisc(dir);
}

util::String KeyDirInput::Serialize() const
{
    return "keys " + NameOrEmpty(m_up) + " " + NameOrEmpty(m_right) + " " + NameOrEmpty(m_down) + " " +
           NameOrEmpty(m_left);
}

} // namespace input
