#include "rendering/Renderer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

using rendering::Renderer;

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
