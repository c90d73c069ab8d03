#pragma once

#include "math/Math.h"

namespace gui
{

// The table of whichever profiler is on, the tree's before the flat one's, in white fixed-width text at the
// top left over a half-dark screen of the given GUI size. Draws nothing while both are off.
void DrawProfilerOutput(math::Vec2 screenSize);

} // namespace gui
