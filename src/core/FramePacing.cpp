#include "core/FramePacing.h"

#include <cmath>

namespace core
{
namespace
{
constexpr float LOWEST_MAX_FPS = 1.0f;
}

unsigned FrameSleepMilliseconds(float& maxFPS, double dt)
{
    if (!(maxFPS >= LOWEST_MAX_FPS))
    {
        maxFPS = LOWEST_MAX_FPS;
    }
    const double period = 1.0 / maxFPS;
    if (period <= dt)
    {
        return 0;
    }
    return static_cast<unsigned>(std::floor((period - dt) * 1000.0 + 0.5));
}
} // namespace core
