#include "util/Timer.h"

#include <chrono>

namespace util
{

double Timer::GetCurrentTime()
{
    static const std::chrono::steady_clock::time_point s_start = std::chrono::steady_clock::now();
    auto elapsed = std::chrono::steady_clock::now() - s_start;
    unsigned ticks =
        static_cast<unsigned>(std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count());
    return ticks / 1000.0;
}

} // namespace util

namespace
{
// The clock counts from the program's start, not from the first reading: a script's first "System.time"
// would otherwise always say 0.
[[maybe_unused]] const double s_startOfProgram = util::Timer::GetCurrentTime();
} // namespace
