#pragma once

namespace util
{

class Timer
{
public:
    // Seconds since the first call in this process, in whole milliseconds as the frame clock counts
    // them. Kept free of the windowing library so that headless programs and tests use the same clock.
    static double GetCurrentTime();
};

} // namespace util
