#include "core/WindowParams.h"

#include <algorithm>

namespace core
{
namespace
{
// Room left around a first window for the desktop's panels and the window frame, in pixels.
constexpr int FIRST_RUN_MARGIN = 64;
} // namespace

WindowParams ClampWindowSize(WindowParams params, const std::optional<math::TVector2<int>>& display)
{
    params.width = std::clamp(params.width, 1, WindowParams::MAX_SIZE);
    params.height = std::clamp(params.height, 1, WindowParams::MAX_SIZE);
    if (display)
    {
        params.width = std::min(params.width, display->x);
        params.height = std::min(params.height, display->y);
    }
    return params;
}

WindowParams FirstRunParams(const std::optional<math::TVector2<int>>& display)
{
    WindowParams params;
    if (display)
    {
        params.width = std::min(params.width, display->x - FIRST_RUN_MARGIN);
        params.height = std::min(params.height, display->y - FIRST_RUN_MARGIN);
    }
    return params;
}
WindowParams FullscreenToggled(WindowParams params, const std::optional<math::TVector2<int>>& display)
{
    const WindowParams standard;
    const math::TVector2<int> size = display ? *display : standard.GetResolution();
    if (params.fullscreen)
    {
        params.fullscreen = false;
        params.resizable = true;
        params.width = std::min(standard.width, size.x);
        params.height = std::min(standard.height, size.y);
    }
    else
    {
        params.fullscreen = true;
        params.resizable = false;
        params.SetResolution(size);
    }
    return params;
}

} // namespace core
