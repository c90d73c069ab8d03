#pragma once
// What the headless program can do to the world.

#include "util/String.h"

#include <functional>

namespace cli
{

struct World
{
    // Each returns false when the file can't be read or written.
    std::function<bool(const util::String& path)> load;
    std::function<bool(const util::String& path)> save;
    // One fixed step of the simulation with `running` as it stands, then the scene's own update.
    std::function<void()> step;
    // Seconds of simulated time per step.
    std::function<double()> timeDelta;
    // The simulation's statistics text.
    std::function<util::String()> stats;
};

World MakeWorld();

} // namespace cli
