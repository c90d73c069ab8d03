#include "app/App.h"
#include "app/Camera.h"

#include <gtest/gtest.h>

namespace
{
app::App& TheApp()
{
    app::App& app = *app::App::GetInstancePtr();
    app.SetOuterSize(math::Vec2(800, 600));
    return app;
}
} // namespace

TEST(App, SettingsStartAtTheirDefaults)
{
    app::App& app = TheApp();
    EXPECT_EQ(util::String(app.m_language), "English");
    EXPECT_EQ(float(app.m_lineWidth), 4.0f);
    EXPECT_EQ(float(app.m_DPI), 86.0f);
    EXPECT_EQ(math::Vec3(app.m_fadeColor), math::Vec3(0, 0, 0));
    EXPECT_EQ(math::Vec2(app.m_fadeScale), math::Vec2(0.95f, 0.95f));
    EXPECT_EQ(math::Vec4(app.m_waterColor), math::Vec4(0.1f, 0.1f, 1.0f, 0.7f));
    EXPECT_EQ((unsigned long)app.m_maxUndo, 25ul);
    EXPECT_EQ(int(app.m_maxSPHSpawn), 10000);
    EXPECT_FALSE(bool(app.m_simpleWater));
    EXPECT_TRUE(bool(app.m_borders));
}

TEST(App, ScreenMeasuresFollowTheZoomAndTheDensity)
{
    app::App& app = TheApp();
    app::Camera& camera = app.GetCamera();
    camera.SetZoom(150);
    EXPECT_NEAR(app.GetPixelSize(), 1.0f / 150, 1e-6f);
    // 86 pixels to the inch: a centimetre is 33.86 pixels.
    EXPECT_NEAR(app.GetScreenCM(), 86.0f / 2.54f / 150, 1e-5f);
    EXPECT_NEAR(app.GetDefaultJointSize(), app.GetScreenCM() * 0.66667f, 1e-6f);
    EXPECT_NEAR(app.GetMinimumPointDist(), app.GetScreenCM() * 0.2f, 1e-6f);
    EXPECT_NEAR(app.GetMaximumPointDist(), app.GetScreenCM() * 0.5f, 1e-6f);
    EXPECT_NEAR(app.GetObjectBorderWidth(), app.GetScreenCM() * 0.1f, 1e-6f);

    camera.SetZoom(1.5f);
    app.m_DPI = 172.0f;
    EXPECT_NEAR(app.GetScreenCM(), 172.0f / 2.54f / 1.5f, 1e-3f);
    app.m_DPI = 86.0f;
    camera.Reset();
}

TEST(App, TheViewIsTheWindowCentredOnThePan)
{
    app::App& app = TheApp();
    app::Camera& camera = app.GetCamera();
    camera.Reset();
    camera.SetZoom(100);
    camera.SetPan(math::Vec2(1, 2));
    app.Update(0);
    EXPECT_EQ(camera.GetViewSize(), math::Vec2(800, 600));
    const app::WorldBox view = app.CalcViewBox();
    EXPECT_NEAR(view.min.x, -3, 1e-4f);
    EXPECT_NEAR(view.max.x, 5, 1e-4f);
    EXPECT_NEAR(view.min.y, -1, 1e-4f);
    EXPECT_NEAR(view.max.y, 5, 1e-4f);
    camera.Reset();
}
