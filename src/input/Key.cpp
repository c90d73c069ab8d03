#include "input/Key.h"

#include "logging/Exception.h"
#include "logging/Log.h"

#include <algorithm>
#include <cctype>

namespace input
{

std::string Key::s_keyToName[Key::KEYBUFFERSIZE];
std::map<std::string, SDLKey> Key::s_nameToKey;
bool Key::s_isInitialized = false;

namespace
{

SDLKey ToKey(int code)
{
    return static_cast<SDLKey>(code);
}

void NameRange(std::string* table, int first, const char* const* names, int count)
{
    for (int i = 0; i < count; ++i)
        table[first + i] = names[i];
}

} // namespace

void Key::Init()
{
    if (s_isInitialized)
        return;
    std::string* t = s_keyToName;

    t[8] = "backspace";
    t[9] = "tab";
    t[12] = "clear";
    t[13] = "return";
    t[19] = "pause";
    t[27] = "escape";
    t[32] = "space";
    // Printable ASCII keys are named by their own character; 37 ('%') has no key, and neither have the
    // capitals, as a key symbol is always the unshifted one.
    for (int c = 33; c <= 64; ++c)
        if (c != 37)
            t[c] = std::string(1, static_cast<char>(c));
    for (int c = 91; c <= 122; ++c)
        t[c] = std::string(1, static_cast<char>(c));
    t[127] = "delete";
    for (int i = 0; i < 96; ++i)
        t[160 + i] = "world_" + std::to_string(i);
    for (int i = 0; i < 10; ++i)
        t[256 + i] = "[" + std::to_string(i) + "]";

    static const char* const keypad[] = {"[.]", "[/]", "[*]", "[-]", "[+]", "enter", "equals"};
    NameRange(t, 266, keypad, 7);
    static const char* const arrows[] = {"up",   "down", "right",   "left",     "insert",
                                         "home", "end",  "page_up", "page_down"};
    NameRange(t, 273, arrows, 9);
    for (int i = 0; i < 15; ++i)
        t[282 + i] = "f" + std::to_string(i + 1);
    static const char* const mods[] = {
        "numlock",     "caps_lock", "scroll_lock", "right_shift", "left_shift",   "right_ctrl",
        "left_ctrl",   "right_alt", "left_alt",    "right_meta",  "left_meta",    "left_super",
        "right_super", "alt_graph", "compose",     "help",        "print_screen", "sys_req",
        "break",       "menu",      "power",       "euro",        "undo"};
    NameRange(t, 300, mods, 23);

    static const char* const mouse[] = {"mouse_left", "mouse_middle", "mouse_right", "mouse_wheel_up",
                                        "mouse_wheel_down"};
    NameRange(t, MOUSE_LEFT, mouse, 5);
    for (int b = 6; b <= 255; ++b)
        t[FIRST_MOUSE_KEY + b] = "mouse_" + std::to_string(b);

    static const char* const directions[] = {"_up", "_right", "_down", "_left"};
    int destIndex = FIRST_JOYSTICK_KEY;
    for (int j = 0; j < MAX_JOYSTICKS; ++j)
    {
        const std::string joy = "joy_" + std::to_string(j);
        for (int b = 0; b < JOYSTICK_BUTTONS; ++b)
            t[destIndex++] = joy + "_b" + std::to_string(b);
        for (int h = 0; h < MAX_HATS; ++h)
            for (const char* direction : directions)
                t[destIndex++] = joy + "_h" + std::to_string(h) + direction;
    }
    QLEX_ASSERT(destIndex == KEYBUFFERSIZE);

    for (int code = 0; code < KEYBUFFERSIZE; ++code)
        if (!t[code].empty())
            s_nameToKey[t[code]] = ToKey(code);
    s_isInitialized = true;
}

std::string Key::GetKeyName(SDLKey key)
{
    Init();
    const int code = static_cast<int>(key);
    if (code < 0 || code >= KEYBUFFERSIZE || s_keyToName[code].empty())
        QLEX_THROW(BadDataException("Unknown key"));
    return s_keyToName[code];
}

SDLKey Key::GetKeyFromName(std::string name)
{
    Init();
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    auto found = s_nameToKey.find(name);
    if (found == s_nameToKey.end())
        QLEX_THROW(BadDataException("Unknown name of key \"" + name + "\""));
    return found->second;
}

bool Key::IsMouseButton(SDLKey key)
{
    const int code = static_cast<int>(key);
    return code >= FIRST_MOUSE_KEY && code < FIRST_JOYSTICK_KEY;
}

SDLKey Key::GetMouseKey(int sdlButton)
{
    return ToKey(FIRST_MOUSE_KEY + sdlButton);
}

SDLKey Key::GetJoystickKey(int joystick, int button)
{
    return ToKey(joystick * JOYSTICK_BLOCK + button + FIRST_JOYSTICK_KEY);
}

SDLKey Key::GetJoystickHatKey(int joystick, int hat, int mask)
{
    int direction;
    switch (mask)
    {
    case SDL_HAT_UP:
        direction = 0;
        break;
    case SDL_HAT_RIGHT:
        direction = 1;
        break;
    case SDL_HAT_DOWN:
        direction = 2;
        break;
    case SDL_HAT_LEFT:
        direction = 3;
        break;
    default:
        Log(logging::Warning, "Bad hat-mask in Key::GetJoystickHatKey");
        return ToKey(0);
    }
    // Joystick j's block starts at 579 + 384 j; its hats follow its 256 buttons, four codes each.
    return ToKey(joystick * JOYSTICK_BLOCK + FIRST_JOYSTICK_KEY + JOYSTICK_BUTTONS + hat * 4 + direction);
}

int Key::GetJoystickFromKey(SDLKey key)
{
    return (static_cast<int>(key) - FIRST_JOYSTICK_KEY) / JOYSTICK_BLOCK;
}

int Key::GetJoystickButtonFromKey(SDLKey key)
{
    return (static_cast<int>(key) - FIRST_JOYSTICK_KEY) % JOYSTICK_BLOCK;
}

bool Key::IsJoystickHatKey(SDLKey key)
{
    const int code = static_cast<int>(key);
    return code >= FIRST_JOYSTICK_KEY && code < KEYBUFFERSIZE &&
           GetJoystickButtonFromKey(key) >= JOYSTICK_BUTTONS;
}

int Key::GetJoystickHatFromKey(SDLKey key)
{
    if (!IsJoystickHatKey(key))
        return -1;
    return (GetJoystickButtonFromKey(key) - JOYSTICK_BUTTONS) / 4;
}

} // namespace input
