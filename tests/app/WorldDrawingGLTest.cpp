#include "GLTestWindow.h"

#include "app/App.h"
#include "app/Camera.h"
#include "app/Group.h"
#include "app/Scene.h"
#include "app/entities/BoxEntity.h"
#include "gui/GUI.h"
#include "logging/Log.h"
#include "physics/Box.h"
#include "physics/Contact.h"
#include "physics/Particle.h"
#include "physics/Simulation.h"
#include "physics/testing/Scenes.h"
#include "rendering/GLContext.h"
#include "rendering/Shader.h"
#include "rendering/ShaderManager.h"
#include "util/Mentor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace
{
constexpr int WIDTH = 320;
constexpr int HEIGHT = 240;
const math::TVector4<int> SKY(77, 102, 255, 255); // (0.3, 0.4, 1) in bytes

class WorldDrawing : public ::testing::Test
{
protected:
    void SetUp() override
    {
        QLEX_OPEN_GL_WINDOW(s_window, WIDTH, HEIGHT);
        // From the first test on, so that messages of every frame of the run are counted.
        if (!s_warnings)
        {
            s_warnings = QLEX_NEW new logging::FunctionLogger(logging::Warning, [](const std::string& text)
                                                              { s_warningTexts.push_back(text); });
            logging::Logger::GetInstancePtr()->AddLogger(s_warnings);
        }
        physics::Simulation::GetInstancePtr()->EraseWater();
        physics::Simulation::GetInstancePtr()->m_running = false;
        // In the interface's tree, as in the program: it fills the window.
        gui::GUI* gui = gui::GUI::GetInstancePtr();
        if (!gui->GetMainComponent()->HasComponent(app::App::GetInstancePtr()))
            gui->GetMainComponent()->AddComponent(app::App::GetInstancePtr());
        gui->OnNewWindowSize(WIDTH, HEIGHT);
        m_app.GetBackground().SetDrawClouds(false);
        m_app.GetCamera().Reset();
        m_app.GetCamera().SetZoom(100);
        m_app.GetSettings().m_waterColor = math::Vec4(0.1f, 0.1f, 1.0f, 0.7f);
    }
    // The sink writes into this suite's own list, which must not outlive it.
    static void TearDownTestSuite()
    {
        if (s_warnings)
            logging::Logger::GetInstancePtr()->RemoveLogger(s_warnings);
        s_warnings = nullptr;
    }
    void TearDown() override
    {
        physics::Simulation::GetInstancePtr()->EraseWater();
        app::Scene::GetInstancePtr()->ClearScene();
    }

    // A still box of the given colour in the scene.
    static util::SharedPtr<app::BoxEntity> AddBox(math::Vec2 size, math::Vec2 pos, math::Vec4 color)
    {
        util::SharedPtr<app::BoxEntity> box =
            QLEX_NEW new app::BoxEntity(QLEX_NEW new physics::Box(size, pos));
        box->SetColor(color);
        app::Scene::GetInstancePtr()->AddEntity(box);
        return box;
    }
    math::TVector4<int> PixelAtWorld(math::Vec2 world) const
    {
        const math::TVector2<int> p = PixelOf(world);
        return s_window.ReadPixelFromTop(p.x, p.y);
    }

    // One frame as the program makes it: the interface's update, then its drawing.
    void DrawFrame()
    {
        gui::GUI::GetInstancePtr()->Update(0);
        gui::GUI::GetInstancePtr()->Draw();
        CheckForGLError();
    }

    // Fills a world rectangle with still water particles a radius apart.
    static void FillWater(math::Vec2 min, math::Vec2 max)
    {
        const float step = 0.05f;
        for (float y = min.y; y <= max.y; y += step)
        {
            for (float x = min.x; x <= max.x; x += step)
            {
                physics::Simulation::GetInstancePtr()->AddParticle(
                    QLEX_NEW new physics::Particle(math::Vec2(x, y), math::Vec2(0, 0)));
            }
        }
    }

    // Opaque water where the computer can't blend it by a constant, else 70% water over the sky.
    static math::TVector4<int> WaterOverSky()
    {
        const math::Vec4 water(0.1f, 0.1f, 1.0f, 0.7f);
        if (!rendering::HasBlendColor())
            return math::TVector4<int>(26, 26, 255, 255);
        const auto mix = [&](float w, int sky)
        { return int(std::lround(w * 255 * water.w + sky * (1 - water.w))); };
        return math::TVector4<int>(mix(water.x, SKY.x), mix(water.y, SKY.y), mix(water.z, SKY.z), 255);
    }

    // A world point's pixel, counted from the top.
    math::TVector2<int> PixelOf(math::Vec2 world) const
    {
        const math::Vec2 gui = m_app.GetCamera().WorldToGUI(world);
        return math::TVector2<int>(int(gui.x), int(gui.y));
    }

    static GLTestWindow s_window;
    inline static util::SharedPtr<logging::ILogger> s_warnings;
    inline static std::vector<std::string> s_warningTexts;
    app::App& m_app = *app::App::GetInstancePtr();
};
GLTestWindow WorldDrawing::s_window;
} // namespace

TEST_F(WorldDrawing, AStoppedWorldWithoutWaterShowsTheSkyColour)
{
    DrawFrame();
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(10, 10), SKY));
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(WIDTH / 2, HEIGHT / 2), SKY));
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(WIDTH - 1, HEIGHT - 1), SKY));

    m_app.GetBackground().SetSkyColor(math::Vec4(1, 0.5f, 0, 1));
    DrawFrame();
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(100, 50), {255, 128, 0, 255}));
    m_app.GetBackground().ResetToDefaults();
}

TEST_F(WorldDrawing, ABlockOfWaterShowsWaterInsideAndSkyOutsideRightSideUp)
{
    // Above the middle of the window: world y up is screen y down.
    FillWater(math::Vec2(-0.6f, 0.3f), math::Vec2(0.6f, 0.9f));
    DrawFrame();
    const math::TVector2<int> inside = PixelOf(math::Vec2(0, 0.6f));
    ASSERT_LT(inside.y, HEIGHT / 2);
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(inside.x, inside.y), WaterOverSky(), 4));
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(PixelOf({0.4f, 0.4f}).x, PixelOf({0.4f, 0.4f}).y),
                          WaterOverSky(), 4));
    // The same point mirrored about the window's middle is sky: the picture is not upside down.
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(inside.x, HEIGHT - 1 - inside.y), SKY));
    // Beside the block, and well below it.
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(PixelOf({1.2f, 0.6f}).x, PixelOf({1.2f, 0.6f}).y), SKY));
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(PixelOf({0, -0.2f}).x, PixelOf({0, -0.2f}).y), SKY));
}

TEST_F(WorldDrawing, WaterFollowsTheCamera)
{
    FillWater(math::Vec2(-0.3f, -0.3f), math::Vec2(0.3f, 0.3f));
    m_app.GetCamera().SetPan(math::Vec2(1.0f, 0));
    DrawFrame();
    // The block now stands left of the middle.
    const math::TVector2<int> block = PixelOf(math::Vec2(0, 0));
    EXPECT_EQ(block.x, WIDTH / 2 - 100);
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(block.x, block.y), WaterOverSky(), 4));
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(WIDTH / 2, HEIGHT / 2), SKY));
}

TEST_F(WorldDrawing, CloudsDrawOverTheSkyAndStandStillWhileTheWorldIsStopped)
{
    m_app.GetBackground().SetDrawClouds(true);
    m_app.GetCamera().SetZoom(app::Camera::GetMinZoom());
    DrawFrame();
    int cloudy = 0;
    std::vector<math::TVector4<int>> first;
    for (int y = 0; y < HEIGHT; y += 6)
    {
        for (int x = 0; x < WIDTH; x += 6)
        {
            const math::TVector4<int> p = s_window.ReadPixelFromTop(x, y);
            first.push_back(p);
            if (p.x > SKY.x + 40)
                ++cloudy;
        }
    }
    EXPECT_GT(cloudy, 0) << "no cloud in sight";
    EXPECT_LT(cloudy, int(first.size())) << "no sky in sight";

    m_app.Update(0.5f);
    DrawFrame();
    size_t i = 0;
    for (int y = 0; y < HEIGHT; y += 6)
        for (int x = 0; x < WIDTH; x += 6)
            ASSERT_TRUE(ColorNear(s_window.ReadPixelFromTop(x, y), first[i++], 0)) << x << ", " << y;
}

TEST_F(WorldDrawing, AResizedWindowKeepsDrawing)
{
    FillWater(math::Vec2(-0.6f, 0.3f), math::Vec2(0.6f, 0.9f));
    DrawFrame();
    // A new window is a new context: every resource is dropped first and made again on its next use.
    for (util::AbstractMentor* mentor : util::AbstractMentor::GetAllClassInstances())
        mentor->Unload();
    const int width = 400, height = 300;
    ASSERT_TRUE(s_window.Resize(width, height)) << s_window.GetError();
    gui::GUI::GetInstancePtr()->OnNewWindowSize(width, height);
    DrawFrame();
    const math::TVector2<int> inside = PixelOf(math::Vec2(0, 0.6f));
    EXPECT_EQ(inside.x, width / 2);
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(inside.x, inside.y), WaterOverSky(), 4));
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(inside.x, height - 1 - inside.y), SKY));
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(width - 2, height - 2), SKY));

    for (util::AbstractMentor* mentor : util::AbstractMentor::GetAllClassInstances())
        mentor->Unload();
    ASSERT_TRUE(s_window.Resize(WIDTH, HEIGHT));
}

TEST_F(WorldDrawing, AFadeColourLeavesATrailOfTheLastFrameBehindAClearSky)
{
    // A sky of alpha 0 lets the trail show through.
    m_app.GetBackground().SetSkyColor(math::Vec4(0, 0, 0, 0));
    m_app.GetSettings().m_fadeColor = math::Vec3(1, 1, 1);
    FillWater(math::Vec2(-0.5f, -0.5f), math::Vec2(0.5f, 0.5f));
    DrawFrame();
    const math::TVector4<int> water = s_window.ReadPixelFromTop(WIDTH / 2, HEIGHT / 2);
    ASSERT_GT(water.z, 200);

    physics::Simulation::GetInstancePtr()->EraseWater();
    DrawFrame();
    // The centre keeps the water of the last frame; a corner, never water, stays black.
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(WIDTH / 2, HEIGHT / 2), water, 4));
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(3, 3), {0, 0, 0, 0}));

    // Without a fade colour nothing of the last frame remains.
    m_app.GetSettings().m_fadeColor = math::Vec3(0, 0, 0);
    DrawFrame();
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(WIDTH / 2, HEIGHT / 2), {0, 0, 0, 0}));
    m_app.GetBackground().ResetToDefaults();
}

TEST_F(WorldDrawing, CollisionsShowTheirContactPointsWhenAskedFor)
{
    physics::testing::ResetWorld();
    physics::Simulation& sim = *physics::Simulation::GetInstancePtr();
    sim.SetUpdateBudget(10.0f);
    physics::testing::BuildColumn(1, physics::testing::Shape::Box, 0.5f);
    m_app.Update(0.1f);
    sim.m_running = false;
    ASSERT_FALSE(m_app.GetContacts().empty());
    const math::Vec2 point = m_app.GetContacts().front()->GetPoint();
    const math::TVector2<int> pixel = PixelOf(point);

    DrawFrame();
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(pixel.x, pixel.y), SKY));
    m_app.GetSettings().m_drawCollisions = true;
    DrawFrame();
    // A contact younger than half a simulated second is white.
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(pixel.x, pixel.y), {255, 255, 255, 255}));
    m_app.GetSettings().m_drawCollisions = false;
    physics::testing::ResetWorld();
}

TEST_F(WorldDrawing, EntitiesInViewAreDrawnOverTheSkyInSceneOrderAndTheListEmptiesAfterTheFrame)
{
    AddBox(math::Vec2(1.0f, 0.6f), math::Vec2(-0.3f, 0), math::Vec4(1, 0, 0, 1));
    // Added later, so on top where the two overlap.
    AddBox(math::Vec2(1.0f, 0.6f), math::Vec2(0.3f, 0), math::Vec4(0, 1, 0, 1));
    DrawFrame();
    EXPECT_TRUE(ColorNear(PixelAtWorld({-0.6f, 0}), {255, 0, 0, 255}));
    EXPECT_TRUE(ColorNear(PixelAtWorld({0.6f, 0}), {0, 255, 0, 255}));
    EXPECT_TRUE(ColorNear(PixelAtWorld({0, 0}), {0, 255, 0, 255}));
    EXPECT_TRUE(ColorNear(PixelAtWorld({0, 0.6f}), SKY));
    EXPECT_TRUE(m_app.GetDrawList().empty());

    // The same boxes seen from far away are out of view: only sky.
    m_app.GetCamera().SetPan(math::Vec2(50, 0));
    DrawFrame();
    EXPECT_TRUE(ColorNear(s_window.ReadPixelFromTop(WIDTH / 2, HEIGHT / 2), SKY));
}

TEST_F(WorldDrawing, AClonePreviewIsDrawnAtItsOffsetAsWellAsAtTheOriginal)
{
    util::SharedPtr<app::BoxEntity> box =
        AddBox(math::Vec2(0.4f, 0.4f), math::Vec2(0, 0), math::Vec4(1, 0, 0, 1));
    box->m_cloneOffset = math::Vec2(-0.8f, 0);
    DrawFrame();
    EXPECT_TRUE(ColorNear(PixelAtWorld({0, 0}), {255, 0, 0, 255}));
    EXPECT_TRUE(ColorNear(PixelAtWorld({-0.8f, 0}), {255, 0, 0, 255}));
    EXPECT_TRUE(ColorNear(PixelAtWorld({-0.4f, 0}), SKY));
    // The preview always looks selected, with a white outline; the original, as nothing is selected,
    // keeps the outline of half its colour.
    const float inBorder = 0.015f;
    EXPECT_TRUE(ColorNear(PixelAtWorld({-1.0f + inBorder, 0}), {255, 255, 255, 255}));
    EXPECT_TRUE(ColorNear(PixelAtWorld({-0.2f + inBorder, 0}), {128, 0, 0, 255}));
}

TEST_F(WorldDrawing, WaterBehindASeeThroughBodyIsErasedOnlyIfTheBodyKeepsWaterOut)
{
    FillWater(math::Vec2(-0.6f, -0.6f), math::Vec2(0.6f, 0.6f));
    // Fully transparent fills: only the water (or the lack of it) shows inside them.
    AddBox(math::Vec2(0.5f, 0.5f), math::Vec2(-0.3f, 0), math::Vec4(1, 0, 0, 0));
    util::SharedPtr<app::BoxEntity> wet =
        AddBox(math::Vec2(0.5f, 0.5f), math::Vec2(0.3f, 0), math::Vec4(1, 0, 0, 0));
    wet->GetGeom()->SetWaterCollide(false);
    DrawFrame();
    EXPECT_TRUE(ColorNear(PixelAtWorld({-0.3f, 0}), SKY, 4));
    EXPECT_TRUE(ColorNear(PixelAtWorld({0.3f, 0}), WaterOverSky(), 4));
    EXPECT_TRUE(ColorNear(PixelAtWorld({0, 0.5f}), WaterOverSky(), 4));
}

TEST_F(WorldDrawing, TheSelectionsBoxIsOutlinedInHalfBlueWhenAskedFor)
{
    util::SharedPtr<app::BoxEntity> box =
        AddBox(math::Vec2(0.4f, 0.4f), math::Vec2(0, 0), math::Vec4(1, 0, 0, 1));
    app::Scene::GetInstancePtr()->SetSelection(QLEX_NEW new app::Group(app::EntityPtr(box)));
    m_app.GetSettings().m_drawSelectionOBB = true;
    DrawFrame();
    m_app.GetSettings().m_drawSelectionOBB = false;
    // Half blue over the red fill, drawn after the entities.
    EXPECT_TRUE(ColorNear(PixelAtWorld({0, 0}), {128, 0, 128, 255}, 4));
    EXPECT_TRUE(box->m_selectedLook);
    EXPECT_TRUE(ColorNear(PixelAtWorld({0, 0.6f}), SKY));
}

TEST_F(WorldDrawing, WaterThatCannotBeBlendedByAConstantIsOpaqueAndSaysSoOnceARun)
{
    FillWater(math::Vec2(-0.3f, -0.3f), math::Vec2(0.3f, 0.3f));
    DrawFrame();
    DrawFrame();
    logging::Logger::GetInstancePtr()->Update();
    const std::string message = "Water transparency not supported by your computer. Try switching on shaders "
                                "(anti-aliasing in the options menu), or upgrade your graphics drivers.";
    const size_t count = size_t(std::count_if(s_warningTexts.begin(), s_warningTexts.end(),
                                              [&](const std::string& text)
                                              { return text.find(message) != std::string::npos; }));
    EXPECT_EQ(count, rendering::HasBlendColor() ? 0u : 1u);

    // Opaque water needs no constant: no message, whatever the computer.
    m_app.GetSettings().m_waterColor = math::Vec4(0.1f, 0.1f, 1.0f, 1.0f);
    DrawFrame();
    EXPECT_TRUE(ColorNear(PixelAtWorld({0, 0}), {26, 26, 255, 255}, 4));
}

TEST_F(WorldDrawing, LineAndPointSizesThatGLRefusesDrawThinInsteadOfFailingTheFrame)
{
    AddBox(math::Vec2(0.4f, 0.4f), math::Vec2(0, 0), math::Vec4(1, 0, 0, 1));
    m_app.GetSettings().m_lineWidth = 0.0f;
    m_app.GetSettings().m_pointSize = -3.0f;
    EXPECT_NO_THROW(DrawFrame());
    m_app.GetSettings().m_lineWidth = 4.0f;
    m_app.GetSettings().m_pointSize = 4.0f;
    EXPECT_TRUE(ColorNear(PixelAtWorld({0, 0}), {255, 0, 0, 255}));
}

TEST_F(WorldDrawing, WithShadersHalfTransparentWaterShowsTheSkyBehindItWhateverTheBlendConstant)
{
    if (!rendering::HasShaderSupport())
        GTEST_SKIP() << "this GL runs no shaders";
    FillWater(math::Vec2(-0.6f, -0.6f), math::Vec2(0.6f, 0.6f));
    const math::Vec4 water(0.1f, 0.8f, 0.2f, 0.5f);
    m_app.GetSettings().m_waterColor = water;
    const size_t warningsBefore = s_warningTexts.size();
    rendering::ShaderManager::SetShadersOn(true);
    DrawFrame();
    DrawFrame();
    const bool shaded =
        rendering::ShaderManager::IsUsable(rendering::ShaderManager::GetInstancePtr()->Load("water"));
    rendering::ShaderManager::SetShadersOn(false);
    ASSERT_TRUE(shaded);
    // Deep in the water: half water, half sky.
    const auto mix = [](float w, int sky) { return int(std::lround(w * 255 * 0.5f + sky * 0.5f)); };
    const math::TVector4<int> expected(mix(water.x, SKY.x), mix(water.y, SKY.y), mix(water.z, SKY.z), 255);
    EXPECT_TRUE(ColorNear(PixelAtWorld({0, 0}), expected, 4));
    EXPECT_TRUE(ColorNear(PixelAtWorld({0.3f, -0.3f}), expected, 4));
    // Outside it, the sky alone; and nothing to warn of.
    EXPECT_TRUE(ColorNear(PixelAtWorld({1.2f, 0}), SKY));
    logging::Logger::GetInstancePtr()->Update();
    EXPECT_EQ(s_warningTexts.size(), warningsBefore) << s_warningTexts.back();

    // Switched off, the fixed picture is back: blended by the constant where GL has it, opaque otherwise.
    DrawFrame();
    const math::TVector4<int> fixed =
        rendering::HasBlendColor() ? expected : math::TVector4<int>(26, 204, 51, 255);
    EXPECT_TRUE(ColorNear(PixelAtWorld({0, 0}), fixed, 4));
}
