#include "rendering/Renderer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

using rendering::Renderer;

namespace
{
void ExpectVertex(const Renderer::Vertex2& v, math::Vec2 pos, math::Vec2 tex)
{
    EXPECT_EQ(v.pos, pos);
    EXPECT_EQ(v.tex, tex);
}
} // namespace

TEST(Renderer, RectGoesRoundFromItsCornerWithTextureUpright)
{
    const Renderer::Quad q = Renderer::RectVertices(10, 20, 30, 40, 0.5f, 0.25f);
    ExpectVertex(q[0], {10, 20}, {0, 0});
    ExpectVertex(q[1], {10, 60}, {0, 0.25f});
    ExpectVertex(q[2], {40, 60}, {0.5f, 0.25f});
    ExpectVertex(q[3], {40, 20}, {0.5f, 0});
}

TEST(Renderer, GUIRectHasTheSameCornersWithTheTextureFlippedOnT)
{
    const Renderer::Quad world = Renderer::RectVertices(1, 2, 3, 4, 0.75f, 0.5f);
    const Renderer::Quad gui = Renderer::RectGUIVertices(1, 2, 3, 4, 0.75f, 0.5f);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(gui[i].pos, world[i].pos) << i;
    EXPECT_EQ(gui[0].tex, math::Vec2(0, 0.5f));
    EXPECT_EQ(gui[1].tex, math::Vec2(0, 0));
    EXPECT_EQ(gui[2].tex, math::Vec2(0.75f, 0));
    EXPECT_EQ(gui[3].tex, math::Vec2(0.75f, 0.5f));
}

TEST(Renderer, FrameStripPairsEachOuterCornerWithItsInnerOneAndCloses)
{
    const float t = 2;
    const Renderer::FrameStrip s = Renderer::FrameVertices({5, 7}, {20, 10}, t);
    const math::Vec2 expected[10] = {{5, 7},   {7, 9},  {25, 7}, {23, 9}, {25, 17},
                                     {23, 15}, {5, 17}, {7, 15}, {5, 7},  {7, 9}};
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(s[i], expected[i]) << i;
}

TEST(Renderer, FrameOfNegativeSizeUsesItsMagnitudeAndStaysOnThePositiveSide)
{
    const Renderer::FrameStrip negative = Renderer::FrameVertices({0, 0}, {-8, -6}, 1);
    const Renderer::FrameStrip positive = Renderer::FrameVertices({0, 0}, {8, 6}, 1);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(negative[i], positive[i]) << i;
}

TEST(Renderer, ScreenshotsTakeTheFirstFreeCounterOfTheirDate)
{
    namespace fs = std::filesystem;
    const fs::path dir = fs::temp_directory_path() / ("qlex-shots-" + std::to_string(::getpid()));
    fs::create_directories(dir);
    const std::string prefix = (dir / "qlex").string();
    EXPECT_EQ(Renderer::ScreenShotName(prefix, "260101"), prefix + "_260101_0000.tga");
    for (const char* taken : {"_260101_0000.tga", "_260101_0001.tga", "_251231_0002.tga"})
        std::ofstream(prefix + taken) << "x";
    EXPECT_EQ(Renderer::ScreenShotName(prefix, "260101"), prefix + "_260101_0002.tga");
    // Another day counts from 0 again.
    EXPECT_EQ(Renderer::ScreenShotName(prefix, "260102"), prefix + "_260102_0000.tga");
    fs::remove_all(dir);
}

TEST(Renderer, ScreenshotHeaderIsUncompressedTrueColourWithLittleEndianSizes)
{
    const std::array<unsigned char, 18> h = Renderer::TGAHeader(0x1234, 300);
    const std::array<unsigned char, 18> expected = {0, 0, 2, 0,    0,    0,  0, 0,  0,
                                                    0, 0, 0, 0x34, 0x12, 44, 1, 24, 0};
    EXPECT_EQ(h, expected);
}
