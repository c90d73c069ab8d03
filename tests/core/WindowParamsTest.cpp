#include "core/WindowParams.h"

#include <gtest/gtest.h>

using core::ClampWindowSize;
using core::WindowParams;

namespace
{
WindowParams Sized(int width, int height)
{
    WindowParams params;
    params.width = width;
    params.height = height;
    return params;
}
} // namespace

TEST(WindowParams, SizeIsClampedToWhatADriverTakes)
{
    const WindowParams tiny = ClampWindowSize(Sized(0, -20), std::nullopt);
    EXPECT_EQ(tiny.width, 1);
    EXPECT_EQ(tiny.height, 1);
    const WindowParams huge = ClampWindowSize(Sized(5000, 4097), std::nullopt);
    EXPECT_EQ(huge.width, 4096);
    EXPECT_EQ(huge.height, 4096);
    const WindowParams fine = ClampWindowSize(Sized(640, 480), std::nullopt);
    EXPECT_EQ(fine.width, 640);
    EXPECT_EQ(fine.height, 480);
}

TEST(WindowParams, SizeIsNeverLargerThanTheDisplay)
{
    const math::TVector2<int> display(1280, 1024);
    const WindowParams clamped = ClampWindowSize(Sized(5000, 900), display);
    EXPECT_EQ(clamped.width, 1280);
    EXPECT_EQ(clamped.height, 900);
    const WindowParams bigDisplay = ClampWindowSize(Sized(5000, 0), math::TVector2<int>(8000, 8000));
    EXPECT_EQ(bigDisplay.width, 4096);
    EXPECT_EQ(bigDisplay.height, 1);
}

TEST(WindowParams, ClampingLeavesEverythingButTheSizeAlone)
{
    WindowParams params = Sized(9000, 9000);
    params.fullscreen = true;
    params.framed = false;
    params.antiAlias = 4;
    params.depth = 16;
    const WindowParams clamped = ClampWindowSize(params, std::nullopt);
    EXPECT_TRUE(clamped.fullscreen);
    EXPECT_FALSE(clamped.framed);
    EXPECT_EQ(clamped.antiAlias, 4);
    EXPECT_EQ(clamped.depth, 16);
}

TEST(WindowParams, FirstRunKeepsAMarginToTheScreenEdges)
{
    const WindowParams small = core::FirstRunParams(math::TVector2<int>(800, 600));
    EXPECT_EQ(small.width, 800 - 64);
    EXPECT_EQ(small.height, 600 - 64);
    const WindowParams large = core::FirstRunParams(math::TVector2<int>(1920, 1080));
    EXPECT_EQ(large.width, 1024);
    EXPECT_EQ(large.height, 768);
    const WindowParams unknown = core::FirstRunParams(std::nullopt);
    EXPECT_EQ(unknown.width, 1024);
    EXPECT_EQ(unknown.height, 768);
}

TEST(WindowParams, FullscreenToggleTakesTheDisplayAndComesBackToAWindowThatFits)
{
    core::WindowParams window;
    window.width = 800;
    window.height = 600;
    window.vSync = true;
    const core::WindowParams full = core::FullscreenToggled(window, math::TVector2<int>(1920, 1080));
    EXPECT_TRUE(full.fullscreen);
    EXPECT_FALSE(full.resizable);
    EXPECT_EQ(full.GetResolution(), math::TVector2<int>(1920, 1080));
    EXPECT_TRUE(full.vSync);

    const core::WindowParams back = core::FullscreenToggled(full, math::TVector2<int>(1920, 1080));
    EXPECT_FALSE(back.fullscreen);
    EXPECT_TRUE(back.resizable);
    EXPECT_EQ(back.GetResolution(), math::TVector2<int>(1024, 768));
    // A small display bounds the window; one that tells nothing counts as 1024 x 768.
    EXPECT_EQ(core::FullscreenToggled(full, math::TVector2<int>(800, 600)).GetResolution(),
              math::TVector2<int>(800, 600));
    EXPECT_EQ(core::FullscreenToggled(window, std::nullopt).GetResolution(), math::TVector2<int>(1024, 768));
}
