#pragma once

#include "math/Math.h"

namespace input
{

// What the event pump needs from the interface above it: the coordinate scale of the GUI and its click
// tolerances. gui::GUI provides them; without a provider, a pixel is a GUI unit and the tolerances keep
// their defaults. Kept as an interface so that input does not depend on the GUI library.
class InputSettings
{
public:
    static constexpr float DEFAULT_CLICK_TOLERANCE = 3.5f;      // GUI units
    static constexpr float DEFAULT_CLICK_TIME_TOLERANCE = 0.3f; // seconds

    virtual ~InputSettings() = default;
    virtual math::Vec2 PosFromPixel(int x, int y) const = 0;
    virtual float GetClickTolerance() const = 0;
    virtual float GetClickTimeTolerance() const = 0;
};

} // namespace input
