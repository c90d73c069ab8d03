#pragma once

#include <functional>

namespace input
{

// The one clock of the event pump and the GUI: seconds since SDL started (SDL_GetTicks / 1000). A test
// replaces the source so that click and hover timing can be driven without waiting.
class Clock
{
public:
    using Source = std::function<double()>;

    static double Now();
    // An empty source goes back to SDL's ticks.
    static void SetSource(Source source);

private:
    static Source s_source;
};

} // namespace input
