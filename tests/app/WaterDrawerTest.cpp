#include "app/WaterDrawer.h"
#include "app/Camera.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{
// The field a pixel should hold, from the rule written out: 1 / r^2 from 0 at r = 4 to 1 at r = 1.
int ExpectedAlpha(int x, int y, int size)
{
    const double u = double(x) / (size - 1) * 8 - 4;
    const double v = double(y) / (size - 1) * 8 - 4;
    const double f = 1.0 / (u * u + v * v);
    const double a = std::min(1.0, std::max(0.0, (f - 1.0 / 16) / (15.0 / 16)));
    return int(std::floor(a * 255 + 0.5));
}
} // namespace

TEST(WaterField, MetaballTextureHoldsTheInverseSquareFieldInAlpha)
{
    const rendering::ImageRGBA32Ptr image = app::CreateMetaBallImage();
    ASSERT_EQ(image->GetWidth(), 64u);
    for (int y = 1; y < 63; y += 3)
    {
        for (int x = 1; x < 63; x += 5)
        {
            const rendering::PixelRGBA p = (*image)(unsigned(x), unsigned(y));
            EXPECT_EQ(int(p.w), ExpectedAlpha(x, y, 64)) << x << ", " << y;
            EXPECT_EQ(p.x, 255);
        }
    }
    // Saturated near the middle, nothing at the corners, a clear border all round.
    EXPECT_EQ((*image)(31, 32).w, 255);
    EXPECT_EQ((*image)(5, 5).w, 0);
    for (unsigned i = 0; i < 64; ++i)
    {
        EXPECT_EQ((*image)(0, i), rendering::PixelRGBA(0, 0, 0, 0));
        EXPECT_EQ((*image)(63, i), rendering::PixelRGBA(0, 0, 0, 0));
        EXPECT_EQ((*image)(i, 0), rendering::PixelRGBA(0, 0, 0, 0));
        EXPECT_EQ((*image)(i, 63), rendering::PixelRGBA(0, 0, 0, 0));
    }
    // Two radii from the centre the field is a quarter: (0.25 - 1/16) / (15/16) = 0.2.
    EXPECT_EQ(int(app::MetaColor(63, 0, 64).w), 0);
    const int twoRadii = int(std::lround(63.0 * 6 / 8)); // u = 2 at x = 47.25
    EXPECT_NEAR(int(app::MetaColor(twoRadii, 31, 64).w), 51, 6);
}

TEST(WaterField, SimpleWaterSpriteFallsSmoothlyToZeroAtItsRim)
{
    const rendering::ImageRGBA32Ptr image = app::CreateSimpleWaterImage();
    ASSERT_EQ(image->GetWidth(), 64u);
    // r = 0 is not a pixel centre; the four central pixels are nearly full and equal in every channel.
    const rendering::PixelRGBA centre = (*image)(31, 31);
    EXPECT_GT(centre.w, 250);
    EXPECT_EQ(centre.x, centre.w);
    EXPECT_EQ((*image)(0, 0).w, 0);
    EXPECT_EQ((*image)(63, 31).w, 0); // just beyond r = 1
    // Halfway out: t = 0.5 gives 3/4 - 1/4 = 0.5.
    const float u = 2.0f * 47 / 63 - 1;
    const float t = 1 - std::sqrt(u * u + (2.0f * 31 / 63 - 1) * (2.0f * 31 / 63 - 1));
    EXPECT_EQ(int((*image)(47, 31).w), int(std::lround((3 * t * t - 2 * t * t * t) * 255)));
    for (unsigned x = 32; x < 63; ++x)
        EXPECT_LE((*image)(x + 1, 31).w, (*image)(x, 31).w) << x;
}

TEST(WaterField, SplatsTurnAlongTheVelocityAndStretchWithinBounds)
{
    const app::Splat still = app::CalcSplat(math::Vec2(0, 0), 0.05f, 2.0f);
    EXPECT_EQ(still.angle, 0.0f);
    EXPECT_EQ(still.stretch, 1.0f);

    const app::Splat up = app::CalcSplat(math::Vec2(0, 4), 0.05f, 2.0f);
    EXPECT_NEAR(up.angle, math::PIf / 2, 1e-6f);
    EXPECT_NEAR(up.stretch, 1.2f, 1e-6f);

    EXPECT_EQ(app::CalcSplat(math::Vec2(-100, 0), 0.05f, 2.0f).stretch, 2.0f);
    EXPECT_NEAR(app::CalcSplat(math::Vec2(-100, 0), 0.05f, 2.0f).angle, math::PIf, 1e-6f);
    // A bound below 1: the stretch lies between it and 1.
    const app::Splat low = app::CalcSplat(math::Vec2(10, 0), 0.05f, 0.5f);
    EXPECT_EQ(low.stretch, 1.0f);
    EXPECT_GE(app::CalcSplat(math::Vec2(0, 0), 0.05f, 0.5f).stretch, 0.5f);
}

TEST(WaterCulling, BoxTestIsInclusiveAndGrowsByTheMargin)
{
    const math::Vec2 min(0, 0), max(10, 5);
    EXPECT_TRUE(app::TestBBCircle(min, max, {0, 0}, 0));
    EXPECT_TRUE(app::TestBBCircle(min, max, {10, 5}, 0));
    EXPECT_FALSE(app::TestBBCircle(min, max, {10.5f, 2}, 0));
    EXPECT_TRUE(app::TestBBCircle(min, max, {10.5f, 2}, 0.5f));
    EXPECT_FALSE(app::TestBBCircle(min, max, {5, -0.6f}, 0.5f));
    EXPECT_FALSE(app::TestBBCircle(min, max, {11, 6}, 0.9f));
}

TEST(WaterCulling, OnlyParticlesNearTheViewAreDrawn)
{
    app::Camera camera;
    camera.SetViewSize(math::Vec2(200, 100));
    camera.SetZoom(100);
    camera.SetPan(math::Vec2(0, 0));
    const app::WorldBox view = app::CalcViewBox(camera, math::Vec2(200, 100));
    EXPECT_NEAR(view.min.x, -1, 1e-5f);
    EXPECT_NEAR(view.max.x, 1, 1e-5f);
    EXPECT_NEAR(view.min.y, -0.5f, 1e-5f);
    EXPECT_NEAR(view.max.y, 0.5f, 1e-5f);

    const std::vector<app::WaterParticle> particles = {
        {{0, 0}, {}}, {{0.95f, 0.45f}, {}}, {{1.05f, 0}, {}}, {{0, -0.7f}, {}}, {{-3, 0}, {}}};
    const std::vector<size_t> tight = app::CullParticles(particles, view, 0);
    EXPECT_EQ(tight, (std::vector<size_t>{0, 1}));
    const std::vector<size_t> loose = app::CullParticles(particles, view, 0.25f);
    EXPECT_EQ(loose, (std::vector<size_t>{0, 1, 2, 3}));
}
