#include "app/WaterDrawer.h"
#include "app/Camera.h"

#include <gtest/gtest.h>

#include <cmath>

TEST(WaterField, MetaballTextureHoldsTheInverseSquareFieldInAlpha)
{
    const rendering::ImageRGBA32Ptr image = app::CreateMetaBallImage();
    ASSERT_EQ(image->GetWidth(), 64u);
    // Falling away from the middle along a row, white wherever there is any field.
    for (unsigned x = 32; x < 62; ++x)
    {
        EXPECT_LE((*image)(x + 1, 31).w, (*image)(x, 31).w) << x;
        EXPECT_EQ((*image)(x, 31).x, 255) << x;
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
