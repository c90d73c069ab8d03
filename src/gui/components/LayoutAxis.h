#pragma once

#include "math/Math.h"

namespace gui::layout_axis
{

// Layouts work along a running axis and across it; these pick a coordinate by its index (0 x, 1 y).
inline float Get(const math::Vec2& v, int axis)
{
    return axis == 0 ? v.x : v.y;
}
inline void Set(math::Vec2& v, int axis, float value)
{
    (axis == 0 ? v.x : v.y) = value;
}

} // namespace gui::layout_axis
