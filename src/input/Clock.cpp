#include "input/Clock.h"

#include <SDL/SDL.h>

namespace input
{

Clock::Source Clock::s_source;

double Clock::Now()
{
    if (s_source)
        return s_source();
    return SDL_GetTicks() / 1000.0;
}

void Clock::SetSource(Source source)
{
    s_source = std::move(source);
}

} // namespace input
