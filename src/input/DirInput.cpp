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
} // namespace

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
        // A name that is no key leaves a direction without a key: the source is not made, and the
        // entity has no controller, as for a joystick that isn't there.
        try
        {
            return QLEX_NEW new KeyDirInput(Key::GetKeyFromName(words[1]), Key::GetKeyFromName(words[2]),
                                            Key::GetKeyFromName(words[3]), Key::GetKeyFromName(words[4]));
        }
        catch (const BadDataException& e)
        {
            Log(logging::Error, util::String(e.what()) + " in DirInput \"" + text + "\"");
            return nullptr;
        }
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
    if (dir.Length() > 1.0f)
        dir = dir / dir.Length();
    return dir;
}

util::String KeyDirInput::Serialize() const
{
    return "keys " + Key::GetKeyName(m_up) + " " + Key::GetKeyName(m_right) + " " + Key::GetKeyName(m_down) +
           " " + Key::GetKeyName(m_left);
}

} // namespace input
