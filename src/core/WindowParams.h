#pragma once

#include "math/Math.h"

#include <optional>

namespace core
{
// How the window is to be made. A plain value: the subsystem keeps one copy for the window that exists and
// one that scripts write into until the window is recreated.
struct WindowParams
{
    // Beyond this, drivers refuse or misbehave; below 1, SDL has nothing to draw into.
    static constexpr int MAX_SIZE = 4096;

    bool resizable = true;
    bool framed = true;
    bool fullscreen = false;
    int width = 1024;
    int height = 768;
    int depth = 32;       // colour buffer bits
    int zDepth = 24;      // depth buffer bits
    int stencilDepth = 8; // 0 leaves the stencil buffer to the driver
    bool vSync = false;
    int antiAlias = 1; // multisample count; 1 and below mean no multisampling

    math::TVector2<int> GetResolution() const { return math::TVector2<int>(width, height); }
    void SetResolution(const math::TVector2<int>& size)
    {
        width = size.x;
        height = size.y;
    }
};

// The size brought into 1..MAX_SIZE and, when the display's size is known, no larger than the display.
WindowParams ClampWindowSize(WindowParams params, const std::optional<math::TVector2<int>>& display);

// The other of full screen and window: full screen takes the display's size (1024 x 768 where it tells
// nothing); a window is resizable and no larger than 1024 x 768 or the display.
WindowParams FullscreenToggled(WindowParams params, const std::optional<math::TVector2<int>>& display);

// The size for a first run: the default window, kept off the screen's edges (and task bars) by a margin.
WindowParams FirstRunParams(const std::optional<math::TVector2<int>>& display);
} // namespace core
