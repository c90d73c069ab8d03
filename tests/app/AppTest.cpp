#include "app/App.h"
#include "app/Camera.h"
#include "app/Scene.h"
#include "app/entities/BoxEntity.h"
#include "input/Input.h"
#include "physics/Box.h"
#include "physics/Simulation.h"
#include "physics/testing/Scenes.h"
#include "script/Parser.h"
#include "util/ColorUtil.h"

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

namespace
{
// A key of the keyboard pressed or released as the event pump delivers it.
void Key(SDLKey key, bool down)
{
    SDL_Event event{};
    event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.type = event.type;
    event.key.keysym.sym = key;
    input::Input::GetInstancePtr()->HandleEvent(event);
}
} // namespace

TEST(App, ScriptsSeeTheSettingsTheBackgroundAndTheInterfaceUnderApp)
{
    app::App& app = TheApp();
    script::Parser& parser = *script::Parser::GetInstancePtr();
    if (!parser.GetRootClosure()->GetVariableByObject(app.GetSettings().GetReflected().get()))
        app.GetSettings().GetReflected()->AddToRoot();

    parser.ExecuteToString("App.lineWidth = 2.5");
    EXPECT_EQ(float(app.GetSettings().m_lineWidth), 2.5f);
    app.GetSettings().m_DPI = 96.0f;
    EXPECT_EQ(parser.ExecuteToString("App.DPI"), "96");
    parser.ExecuteToString("App.Background.skyColor = [0.5, 0.25, 0.0, 1.0]");
    EXPECT_EQ(app.GetBackground().GetSkyColor(), math::Vec3(0.5f, 0.25f, 0.0f));
    EXPECT_EQ(parser.ExecuteToString("App.GUI.trapUser"), "false");

    app.GetSettings().m_lineWidth = 4.0f;
    app.GetSettings().m_DPI = 86.0f;
    app.GetBackground().ResetToDefaults();
}

TEST(App, ArrowKeysPanAtFourHundredGUIUnitsASecondButNotInAFrameOfNoTime)
{
    app::App& app = TheApp();
    app::Camera& camera = app.GetCamera();
    camera.Reset();
    camera.SetZoom(100);

    Key(SDLK_LEFT, true);
    app.Update(0);
    EXPECT_EQ(camera.GetPan(), math::Vec2(0, 0));
    app.Update(0.25f);
    // 100 GUI units at 100 per metre: the view moves one metre left.
    EXPECT_NEAR(camera.GetPan().x, -1.0f, 1e-4f);
    EXPECT_NEAR(camera.GetPan().y, 0.0f, 1e-4f);

    // Up and down together cancel; up alone moves the view up the world.
    Key(SDLK_LEFT, false);
    Key(SDLK_UP, true);
    Key(SDLK_DOWN, true);
    app.Update(0.25f);
    EXPECT_NEAR(camera.GetPan().x, -1.0f, 1e-4f);
    EXPECT_NEAR(camera.GetPan().y, 0.0f, 1e-4f);
    Key(SDLK_DOWN, false);
    app.Update(0.5f);
    EXPECT_NEAR(camera.GetPan().y, 2.0f, 1e-4f);
    Key(SDLK_UP, false);
    camera.Reset();
}

TEST(App, UpdateStepsTheWorldAndKeepsItsContactsForDrawing)
{
    app::App& app = TheApp();
    physics::testing::ResetWorld();
    physics::Simulation& sim = *physics::Simulation::GetInstancePtr();
    sim.SetUpdateBudget(10.0f);
    // The scene keeps only the bodies that its entities stand for: the box is one.
    for (const util::SharedPtr<physics::Body>& body :
         physics::testing::BuildColumn(1, physics::testing::Shape::Box))
        app::Scene::GetInstancePtr()->AddEntity(
            QLEX_NEW new app::BoxEntity(util::dynamic_pointer_cast<physics::Box>(*body->GetGeoms().begin())));

    // A frame of no time steps nothing and leaves no debt.
    app.Update(0);
    EXPECT_EQ(sim.GetSimulatedTime(), 0.0);
    EXPECT_EQ(sim.GetTimeDebt(), 0.0);

    app.Update(0.1f);
    EXPECT_NEAR(sim.GetSimulatedTime(), 0.1, 0.011);
    ASSERT_FALSE(sim.GetContacts().empty()) << "a box on the ground touches it";
    EXPECT_EQ(app.GetContacts(), sim.GetContacts());

    app::Scene::GetInstancePtr()->ClearScene();
    physics::testing::ResetWorld();
    app.Update(0);
    EXPECT_TRUE(app.GetContacts().empty());
}

TEST(App, NewColoursStandOutFromTheSky)
{
    app::App& app = TheApp();
    app.GetBackground().SetSkyColor(math::Vec4(0.5f, 0.5f, 0.5f, 1.0f));
    const math::Vec3 sky = app.GetBackground().GetSkyColor();
    bool light = false, dark = false;
    for (int i = 0; i < 2000; ++i)
    {
        const math::Vec4 c = app.GetSettings().RandomEntityColor4();
        ASSERT_EQ(c.w, 1.0f);
        const math::Vec3 rgb(c.x, c.y, c.z);
        ASSERT_GE((rgb - sky).Length(), 0.1f) << i;
        ASSERT_GE(util::RGBIntensity(rgb), 0.05f) << i;
        for (float channel : {c.x, c.y, c.z})
        {
            ASSERT_GE(channel, 0.0f);
            ASSERT_LE(channel, 1.0f);
        }
        const float lightness = util::RGB2HSL(rgb).z;
        light = light || lightness > 0.6f;
        dark = dark || lightness < 0.4f;
    }
    // Both halves of the lightness come up.
    EXPECT_TRUE(light);
    EXPECT_TRUE(dark);
    app.GetBackground().ResetToDefaults();
}

TEST(App, EntitiesSharingAMirrorKeyTurnAsOneGroupInThatFramesUpdate)
{
    app::App& app = TheApp();
    physics::testing::ResetWorld();
    app::Scene& scene = *app::Scene::GetInstancePtr();
    auto addSquare = [&](float size, float x)
    {
        util::SharedPtr<app::BoxEntity> square =
            QLEX_NEW new app::BoxEntity(QLEX_NEW new physics::Box(math::Vec2(size, size), math::Vec2(x, 0)));
        scene.AddEntity(square);
        return square;
    };
    // Each square alone would mirror onto itself; together they change sides along their long axis.
    util::SharedPtr<app::BoxEntity> small = addSquare(0.2f, -1.0f);
    util::SharedPtr<app::BoxEntity> large = addSquare(0.6f, 1.0f);
    input::ButtonInput key;
    key.AddKey(SDLK_m);
    app.GetSettings().MirrorMe(key, small);
    app.GetSettings().MirrorMe(key, large);
    app.GetSettings().MirrorMe(key, large);
    // Mirroring puts new entities in the place of the old: they are told apart by their size.
    auto centreOf = [&](bool wantSmall)
    {
        for (const app::EntityPtr& entity : scene.GetEntities())
            if ((entity->GetAABB().GetSize().x < 0.4f) == wantSmall)
                return entity->GetAABB().GetCenter().x;
        return math::INF;
    };
    app.Update(0);
    ASSERT_EQ(scene.GetEntities().size(), 2u);
    const float smallX = centreOf(true);
    const float largeX = centreOf(false);
    EXPECT_GT(smallX, 0.5f);
    EXPECT_LT(largeX, -0.5f);

    // Served once: the next frame has no request left.
    app.Update(0);
    EXPECT_NEAR(centreOf(true), smallX, 1e-5f);
    EXPECT_NEAR(centreOf(false), largeX, 1e-5f);
    // One that has left the scene stays out of it.
    util::SharedPtr<app::BoxEntity> gone = addSquare(0.2f, 3.0f);
    scene.RemoveEntity(gone);
    app.GetSettings().MirrorMe(key, gone);
    app.Update(0);
    EXPECT_EQ(scene.GetEntities().size(), 2u);
    EXPECT_FALSE(scene.HasEntity(gone));

    scene.ClearScene();
    physics::testing::ResetWorld();
}

TEST(App, OutlinesShowTheSelectedAndMarkedLooks)
{
    app::App& app = TheApp();
    util::SharedPtr<app::BoxEntity> box =
        QLEX_NEW new app::BoxEntity(QLEX_NEW new physics::Box(math::Vec2(1, 1), math::Vec2(0, 0)));
    box->SetColor(math::Vec4(0.6f, 0.4f, 0.2f, 0.5f));
    EXPECT_EQ(app.GetSettings().GetBorderColor(box.get()), math::Vec4(0.3f, 0.2f, 0.1f, 0.5f));
    box->m_markedLook = true;
    EXPECT_EQ(app.GetSettings().GetBorderColor(box.get()), math::Vec4(0.2f, 0.2f, 0.2f, 1));
    box->m_selectedLook = true;
    EXPECT_EQ(app.GetSettings().GetBorderColor(box.get()), math::Vec4(0.8f, 0.8f, 0.8f, 1));
    box->m_markedLook = false;
    EXPECT_EQ(app.GetSettings().GetBorderColor(box.get()), math::Vec4(1, 1, 1, 1));
}
