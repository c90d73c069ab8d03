// The shell with the application root in its interface: the window that CreateWindow makes shows the world
// where the camera puts it, a resize makes everything again, and the script members of "System" reach the
// shell. One subsystem for the whole executable, as in a run.
#include "app/App.h"
#include "app/AppSettings.h"
#include "app/Camera.h"
#include "app/Scene.h"
#include "core/ResourceManager.h"
#include "core/Subsystem.h"
#include "gui/GUI.h"
#include "input/Input.h"
#include "physics/Particle.h"
#include "physics/Simulation.h"
#include "script/Parser.h"
#include "util/FileSystem.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{
const math::TVector4<int> SKY(77, 102, 255, 255); // (0.3, 0.4, 1) in bytes
// Water that the computer can't blend by a constant colour is drawn opaque.
const math::TVector4<int> OPAQUE_WATER(26, 26, 255, 255);

bool Near(const math::TVector4<int>& a, const math::TVector4<int>& b, int tolerance = 4)
{
    return std::abs(a.x - b.x) <= tolerance && std::abs(a.y - b.y) <= tolerance &&
           std::abs(a.z - b.z) <= tolerance;
}

class FrameTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        // The staged tree holds the textures of the sky and the water.
        const char* stage = std::getenv("QLEX_STAGE");
        util::FileSystem::GetInstancePtr()->SetWorkDir(stage ? stage : ".");
        core::Subsystem::Create();
        core::Subsystem::GetInstancePtr()->GetReflected()->AddToRoot();
        core::ResourceManager::GetInstancePtr()->AddToRoot();
        gui::GUI::GetInstancePtr()->GetMainComponent()->AddComponent(app::App::GetInstancePtr());
        app::AppSettings::GetInstancePtr()->GetReflected()->AddToRoot();
    }

    static void TearDownTestSuite()
    {
        physics::Simulation::GetInstancePtr()->EraseWater();
        script::Parser::Destroy();
        core::Subsystem::Destroy();
        app::App::Destroy();
        app::Scene::Destroy();
        logging::Logger::Destroy();
    }

    void SetUp() override
    {
        if (!std::getenv("DISPLAY"))
            GTEST_SKIP() << "needs an X display (scripts/test.sh provides one)";
        app::App& app = *app::App::GetInstancePtr();
        app.GetBackground().SetDrawClouds(false);
        // Opaque water: the same colour whether or not the computer blends by a constant.
        app.GetSettings().m_waterColor = math::Vec4(0.1f, 0.1f, 1.0f, 1.0f);
        physics::Simulation::GetInstancePtr()->m_running = false;
    }
    void TearDown() override { physics::Simulation::GetInstancePtr()->EraseWater(); }

    static core::Subsystem& System() { return *core::Subsystem::GetInstancePtr(); }
    static app::Camera& Camera() { return app::App::GetInstancePtr()->GetCamera(); }

    // What Subsystem::Draw draws before the swap, read back from the frame behind it.
    static void DrawWorld()
    {
        gui::GUI::GetInstancePtr()->Update(0);
        gui::GUI::GetInstancePtr()->Draw();
        CheckForGLError();
    }

    static math::TVector4<int> PixelAtWorld(const math::Vec2& world)
    {
        const math::Vec2 gui = Camera().WorldToGUI(world);
        unsigned char rgba[4] = {};
        glReadPixels(int(gui.x), System().GetHeight() - 1 - int(gui.y), 1, 1, GL_RGBA, GL_UNSIGNED_BYTE,
                     rgba);
        return math::TVector4<int>(rgba[0], rgba[1], rgba[2], rgba[3]);
    }

    static void OpenWindow(int width, int height)
    {
        core::WindowParams params;
        params.width = width;
        params.height = height;
        System().CreateWindow(params);
    }

    // A block of still water in a view of 100 pixels a metre around the origin.
    static void ShowWater(const math::Vec2& min, const math::Vec2& max)
    {
        physics::Simulation::GetInstancePtr()->EraseWater();
        FillWater(min, max);
        Camera().Reset();
        Camera().SetZoom(100);
    }

    static void FillWater(const math::Vec2& min, const math::Vec2& max)
    {
        const float step = 0.05f;
        for (float y = min.y; y <= max.y; y += step)
            for (float x = min.x; x <= max.x; x += step)
                physics::Simulation::GetInstancePtr()->AddParticle(
                    QLEX_NEW new physics::Particle(math::Vec2(x, y), math::Vec2(0, 0)));
    }
};
} // namespace

TEST_F(FrameTest, TheWindowShowsTheSkyAndTheWaterWhereTheCameraPutsIt)
{
    OpenWindow(320, 240);
    ShowWater(math::Vec2(1.2f, 0.2f), math::Vec2(1.8f, 0.8f));
    Camera().SetPan(math::Vec2(1, 0.5f));

    DrawWorld();
    // The block stands right of the middle and above its own mirror image in the window.
    EXPECT_EQ(Camera().WorldToGUI(math::Vec2(1.5f, 0.5f)), math::Vec2(210, 120));
    EXPECT_TRUE(Near(PixelAtWorld(math::Vec2(1.5f, 0.5f)), OPAQUE_WATER));
    EXPECT_TRUE(Near(PixelAtWorld(math::Vec2(1.5f, 0.75f)), OPAQUE_WATER));
    EXPECT_TRUE(Near(PixelAtWorld(math::Vec2(0.5f, 0.5f)), SKY));
    EXPECT_TRUE(Near(PixelAtWorld(math::Vec2(1.5f, -0.3f)), SKY));
    EXPECT_TRUE(Near(PixelAtWorld(math::Vec2(-0.5f, 1.5f)), SKY));

    // The whole frame with its swap and check of GL errors.
    EXPECT_NO_THROW(System().Draw());
}

TEST_F(FrameTest, AResizeMakesTheWindowAndItsResourcesAgainAndTheWorldFillsIt)
{
    OpenWindow(320, 240);
    ShowWater(math::Vec2(-0.3f, -0.3f), math::Vec2(0.3f, 0.3f));
    DrawWorld();
    ASSERT_TRUE(Near(PixelAtWorld(math::Vec2(0, 0)), OPAQUE_WATER));
    const size_t vram = core::ResourceManager::GetInstancePtr()->CalcVRamUsage();
    EXPECT_GT(vram, 0u);

    SDL_Event resize{};
    resize.type = SDL_VIDEORESIZE;
    resize.resize.w = 500;
    resize.resize.h = 300;
    ASSERT_EQ(SDL_PushEvent(&resize), 0);
    input::Input::GetInstancePtr()->PumpEvents();
    ASSERT_EQ(System().GetWidth(), 500);
    EXPECT_EQ(app::App::GetInstancePtr()->GetInnerSize(), math::Vec2(500, 300));

    DrawWorld();
    EXPECT_EQ(Camera().WorldToGUI(math::Vec2(0, 0)), math::Vec2(250, 150));
    EXPECT_TRUE(Near(PixelAtWorld(math::Vec2(0, 0)), OPAQUE_WATER));
    EXPECT_TRUE(Near(PixelAtWorld(math::Vec2(2.3f, 1.3f)), SKY));
    EXPECT_TRUE(Near(PixelAtWorld(math::Vec2(-0.6f, 0)), SKY));
    // The same resources live again in the new context.
    EXPECT_EQ(core::ResourceManager::GetInstancePtr()->CalcVRamUsage(), vram);
}

TEST_F(FrameTest, ScriptsSetTheRequestedWindowAndRecreateIt)
{
    script::Parser& parser = *script::Parser::GetInstancePtr();
    parser.ExecuteToString("System.resolution = [400, 200]");
    parser.ExecuteToString("System.resizable = false");
    EXPECT_EQ(System().GetRequestedParams().width, 400);
    EXPECT_FALSE(System().GetRequestedParams().resizable);
    EXPECT_NE(System().GetWidth(), 400);

    parser.ExecuteToString("System.recreateWindow");
    EXPECT_EQ(System().GetWidth(), 400);
    EXPECT_EQ(System().GetHeight(), 200);
    EXPECT_FALSE(System().GetCurrentParams().resizable);
    EXPECT_EQ(parser.ExecuteToString("System.vSync"), "false");
    parser.ExecuteToString("System.resizable = true");
}

TEST_F(FrameTest, ScreenshotsAreNumberedFilesOfTheWindow)
{
    OpenWindow(64, 32);
    DrawWorld();
    const std::string dir = util::FileSystem::GetInstancePtr()->WorkDir() + "screenshots/";
    const size_t before = util::FileSystem::FilesInDir(dir, "qlex_*.tga").size();
    script::Parser::GetInstancePtr()->ExecuteToString("System.screenshot");
    script::Parser::GetInstancePtr()->ExecuteToString("System.screenshot");
    const std::vector<std::string> shots = util::FileSystem::FilesInDir(dir, "qlex_*.tga");
    ASSERT_EQ(shots.size(), before + 2);
    for (const std::string& shot : shots)
    {
        // A header of 18 bytes, then three bytes a pixel.
        EXPECT_EQ(util::FileSystem::GetFileSize(dir + shot), 18 + 64 * 32 * 3);
        util::FileSystem::EraseFile(dir + shot);
    }
}

TEST_F(FrameTest, UnloadedResourcesComeBackAtTheirNextUse)
{
    OpenWindow(320, 240);
    ShowWater(math::Vec2(-0.3f, -0.3f), math::Vec2(0.3f, 0.3f));
    DrawWorld();
    const size_t vram = core::ResourceManager::GetInstancePtr()->CalcVRamUsage();

    script::Parser& parser = *script::Parser::GetInstancePtr();
    parser.ExecuteToString("Resources.unloadAll");
    EXPECT_EQ(parser.ExecuteToString("Resources.vramUsage"), "0");
    DrawWorld();
    EXPECT_TRUE(Near(PixelAtWorld(math::Vec2(0, 0)), OPAQUE_WATER));
    // Only what the frame used came back.
    const size_t used = core::ResourceManager::GetInstancePtr()->CalcVRamUsage();
    EXPECT_GT(used, 0u);
    EXPECT_LT(used, vram);
}

// Last: the quit flag stays set for the rest of the run.
TEST_F(FrameTest, ExitIsIgnoredWhileTheUserIsTrapped)
{
    script::Parser& parser = *script::Parser::GetInstancePtr();
    parser.ExecuteToString("App.GUI.trapUser = true");
    parser.ExecuteToString("System.exit");
    EXPECT_FALSE(System().IsQuitRequested());

    SDL_Event quit{};
    quit.type = SDL_QUIT;
    ASSERT_EQ(SDL_PushEvent(&quit), 0);
    input::Input::GetInstancePtr()->PumpEvents();
    EXPECT_FALSE(System().IsQuitRequested());

    parser.ExecuteToString("App.GUI.trapUser = false");
    parser.ExecuteToString("System.exit");
    EXPECT_TRUE(System().IsQuitRequested());
}
