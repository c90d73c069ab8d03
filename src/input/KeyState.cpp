#include "input/KeyState.h"

namespace input
{

KeyState::Source KeyState::s_source;

bool KeyState::IsDown(SDLKey key)
{
    return s_source && s_source(key);
}

void KeyState::SetSource(Source source)
{
    s_source = std::move(source);
}

} // namespace input
