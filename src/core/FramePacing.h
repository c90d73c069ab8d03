#pragma once

namespace core
{
// Milliseconds to sleep after a pass so that passes come no faster than `maxFPS`, when the last pass took
// `dt` seconds. A ceiling below one frame per second makes no sense (a script may well set 0), so
// `maxFPS` is raised to 1 in place and the caller writes it back to its setting.
unsigned FrameSleepMilliseconds(float& maxFPS, double dt);
} // namespace core
