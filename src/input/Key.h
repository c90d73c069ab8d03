#pragma once

#include <SDL/SDL.h>

#include <map>
#include <string>

namespace input
{

// The one numbering of every button of the program, with one lower-case name each:
//   0..322      keyboard (SDL 1.2 key symbols)
//   323         unnamed, above the last SDL key symbol
//   324..578    mouse: SDL button b is key 323 + b
//   579..12866  joysticks: 32 blocks of 384 codes; offsets 0..255 buttons, 256..383 are 32 hats of four
//               directions (up, right, down, left for the SDL hat masks 1, 2, 4, 8)
class Key
{
public:
    static const int KEYBUFFERSIZE = 12867;
    static const int FIRST_MOUSE_KEY = 323;
    static const int FIRST_JOYSTICK_KEY = 579;
    static const int JOYSTICK_BLOCK = 384;
    static const int JOYSTICK_BUTTONS = 256;
    static const int MAX_JOYSTICKS = 32;
    static const int MAX_HATS = 32;

    static const int MOUSE_LEFT = 324;
    static const int MOUSE_MIDDLE = 325;
    static const int MOUSE_RIGHT = 326;
    static const int MOUSE_WHEEL_UP = 327;
    static const int MOUSE_WHEEL_DOWN = 328;

    static void Init();

    // Throws BadDataException "Unknown key" for a code without a name.
    static std::string GetKeyName(SDLKey key);
    // Matched without regard to case. Throws BadDataException for an unknown name.
    static SDLKey GetKeyFromName(std::string name);

    static bool IsMouseButton(SDLKey key);
    static SDLKey GetMouseKey(int sdlButton);

    static SDLKey GetJoystickKey(int joystick, int button);
    static SDLKey GetJoystickHatKey(int joystick, int hat, int mask);
    static int GetJoystickFromKey(SDLKey key);
    static int GetJoystickButtonFromKey(SDLKey key);
    static bool IsJoystickHatKey(SDLKey key);
    static int GetJoystickHatFromKey(SDLKey key);

private:
    static std::string s_keyToName[KEYBUFFERSIZE];
    static std::map<std::string, SDLKey> s_nameToKey;
    static bool s_isInitialized;
};

} // namespace input
