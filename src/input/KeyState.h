#pragma once

#include <SDL/SDL.h>

#include <functional>

namespace input
{

// Whether a key of the one numbering is down now. The event pump (input::Input) is the source while it
// stands; without one, as in the headless program, no key is down. Combinations and listeners ask here, so
// that they need no event pump to be linked.
class KeyState
{
public:
    using Source = std::function<bool(SDLKey)>;

    static bool IsDown(SDLKey key);
    // An empty source means no key is down.
    static void SetSource(Source source);

private:
    static Source s_source;
};

} // namespace input
