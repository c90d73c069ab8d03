#include "app/Background.h"
#include "app/Camera.h"

#include <gtest/gtest.h>

#include <algorithm>

TEST(Background, ImageFilesAreKnownByTheirEndingInAnyCase)
{
    EXPECT_TRUE(app::IsImageFile("cloud.png"));
    EXPECT_TRUE(app::IsImageFile("CLOUD.TGA"));
    EXPECT_TRUE(app::IsImageFile("a.b.Bmp"));
    EXPECT_TRUE(app::IsImageFile("x.jpg"));
    EXPECT_FALSE(app::IsImageFile("x.jpeg"));
    EXPECT_FALSE(app::IsImageFile("png"));
    EXPECT_FALSE(app::IsImageFile("notes.txt"));
}

TEST(Background, CloudsComeFromOurTexturesSmallestFirstAcrossTheWrapField)
{
    const util::SharedPtr<app::Background> background = QLEX_NEW new app::Background();
    background->Init();
    // The build stages four cloud pictures in the "background/" folder.
    EXPECT_EQ(background->GetTextureCount(), 4u);
    const std::vector<app::Background::Particle>& clouds = background->GetParticles();
    ASSERT_EQ(clouds.size(), 2500u);
    EXPECT_TRUE(std::is_sorted(clouds.begin(), clouds.end()));
    const math::Vec2 wrap = background->GetWrapSize();
    EXPECT_NEAR(wrap.x, 2048 / 1.5f / 0.7f, 1e-2f);
    EXPECT_NEAR(wrap.y, 1280 / 1.5f / 0.7f, 1e-2f);
    for (const app::Background::Particle& p : clouds)
    {
        ASSERT_GE(p.size, 5.0f);
        ASSERT_LE(p.size, 15.0f);
        ASSERT_GE(p.position.x, 0.0f);
        ASSERT_LE(p.position.x, wrap.x);
        // Big clouds drift faster: 0.1 to 0.2 of their size per second.
        ASSERT_GE(p.velocity.x, 0.1f * p.size - 1e-4f);
        ASSERT_LE(p.velocity.x, 0.2f * p.size + 1e-4f);
        ASSERT_EQ(p.velocity.y, 0.0f);
        ASSERT_LT(p.texture, 4);
    }
}

TEST(Background, CloudsStandStillInAPausedWorldAndAcrossAJumpOfTheClock)
{
    const util::SharedPtr<app::Background> background = QLEX_NEW new app::Background();
    background->Advance(0.0, true);
    const std::vector<app::Background::Particle> start = background->GetParticles();
    ASSERT_FALSE(start.empty());

    background->Advance(0.5, false); // paused
    EXPECT_EQ(background->GetParticles()[7].position, start[7].position);
    background->Advance(10.0, true); // a loaded scene's clock
    EXPECT_EQ(background->GetParticles()[7].position, start[7].position);
    background->Advance(10.0, true); // no time passed
    EXPECT_EQ(background->GetParticles()[7].position, start[7].position);

    background->Advance(10.5, true);
    const app::Background::Particle& moved = background->GetParticles()[7];
    EXPECT_NEAR(moved.position.x, start[7].position.x + 0.5f * start[7].velocity.x, 1e-3f);
    EXPECT_EQ(moved.position.y, start[7].position.y);
}

TEST(Background, WrappingKeepsEveryCloudWithinHalfTheFieldOfTheView)
{
    const util::SharedPtr<app::Background> background = QLEX_NEW new app::Background();
    background->Init();
    const math::Vec2 wrap = background->GetWrapSize();
    const math::Vec2 far(5000.0f, -3000.0f);
    background->Wrap(far);
    for (const app::Background::Particle& p : background->GetParticles())
    {
        ASSERT_LE(std::fabs(p.position.x - far.x), wrap.x * 0.5f + 1e-2f);
        ASSERT_LE(std::fabs(p.position.y - far.y), wrap.y * 0.5f + 1e-2f);
    }
}

TEST(Background, CloudsFollowTheCameraAtSeventyPercent)
{
    const util::SharedPtr<app::Background> background = QLEX_NEW new app::Background();
    app::Camera camera;
    camera.SetViewSize(math::Vec2(400, 200));
    camera.SetZoom(10);
    const math::Vec2 cloud(3, 1);
    const math::Vec2 before = math::TransformCoordinate(background->CloudView(camera), cloud);
    camera.SetPan(math::Vec2(2, 0));
    const math::Vec2 after = math::TransformCoordinate(background->CloudView(camera), cloud);
    // The world moved 20 pixels to the left; the clouds 14.
    EXPECT_NEAR(after.x - before.x, -14.0f, 1e-3f);
    EXPECT_NEAR(after.y, before.y, 1e-3f);
    // The middle of the view stays put.
    EXPECT_NEAR(math::TransformCoordinate(background->CloudView(camera), camera.GetPan()).x, 200.0f, 1e-3f);
}
