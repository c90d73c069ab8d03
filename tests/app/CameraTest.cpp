#include "app/Camera.h"
#include "app/Group.h"
#include "app/Scene.h"
#include "app/entities/BoxEntity.h"
#include "physics/Box.h"

#include <gtest/gtest.h>

#include <cmath>

using app::Camera;

namespace
{
constexpr float EPS = 1e-3f;

void ExpectNear(const math::Vec2& a, const math::Vec2& b, float eps = EPS)
{
    EXPECT_NEAR(a.x, b.x, eps) << "x";
    EXPECT_NEAR(a.y, b.y, eps) << "y";
}

// Cameras hold attributes and are never copied: they are set up in place.
void Place(Camera& camera, math::Vec2 pan, float zoom, math::Vec2 view = math::Vec2(800, 600))
{
    camera.SetViewSize(view);
    camera.SetZoom(zoom);
    camera.SetPan(pan);
}
} // namespace

TEST(Camera, WorldMapsToGUIWithThePanAtTheCentreAndYDown)
{
    Camera camera;
    Place(camera, {0, 0}, 150);
    ExpectNear(camera.WorldToGUI(math::Vec2(0, 0)), {400, 300});
    ExpectNear(camera.WorldToGUI(math::Vec2(1, 1)), {550, 150});
    ExpectNear(camera.WorldToGUI(math::Vec2(-2, -1)), {100, 450});

    Camera panned;
    Place(panned, {3, -2}, 10);
    ExpectNear(panned.WorldToGUI(math::Vec2(3, -2)), {400, 300});
    ExpectNear(panned.WorldToGUI(math::Vec2(4, -1)), {410, 290});
}

TEST(Camera, GUIToWorldUndoesWorldToGUIAtManyZoomsAndPans)
{
    const float zooms[] = {1.5f, 7.25f, 150.0f, 2999.0f};
    const math::Vec2 pans[] = {{0, 0}, {12.5f, -3.0f}, {-400.0f, 250.0f}};
    const math::Vec2 points[] = {{0, 0}, {1, 2}, {-37.5f, 0.125f}, {800, 600}};
    for (float zoom : zooms)
    {
        for (const math::Vec2& pan : pans)
        {
            Camera camera;
            Place(camera, pan, zoom);
            for (const math::Vec2& gui : points)
            {
                const math::Vec2 world = camera.GUIToWorld(gui);
                ExpectNear(camera.WorldToGUI(world), gui, 2e-2f);
                // The matrix and the point form agree.
                ExpectNear(math::TransformCoordinate(camera.GUIToWorld(), gui), world,
                           1e-3f * (1 + pan.Length()));
            }
            ExpectNear(camera.GUIToWorld(math::Vec2(400, 300)), pan, 1e-4f * (1 + pan.Length()));
        }
    }
}

TEST(Camera, ZoomIsClampedToItsLimits)
{
    Camera camera;
    camera.SetZoom(0);
    EXPECT_EQ(camera.GetZoom(), 1.5f);
    camera.SetZoom(5000);
    EXPECT_EQ(camera.GetZoom(), 3000.0f);
    camera.SetZoom(std::nanf(""));
    EXPECT_EQ(camera.GetZoom(), Camera::DEFAULT_ZOOM);
}

TEST(Camera, APanThatIsNotFiniteReturnsTheViewToTheMiddle)
{
    Camera camera;
    camera.SetPan({std::nanf(""), 2});
    ExpectNear(camera.GetPan(), {0, 0}, 0);
    camera.SetPan({3, INFINITY});
    ExpectNear(camera.GetPan(), {0, 0}, 0);
    // A matrix that maps everything to one point has no pan to give.
    camera.SetPan({3, 4});
    camera.SetWorldToGUI(math::TMatrix3<float>::Scale2D(math::Vec2(0, 0)));
    EXPECT_EQ(camera.GetZoom(), 1.5f);
    EXPECT_TRUE(math::IsFinite(camera.GetPan()));
    EXPECT_TRUE(math::IsFinite(camera.GUIToWorld(math::Vec2(10, 10))));
}

TEST(Camera, SettingItsOwnMatrixChangesNothingAndAForeignOneIsReadBack)
{
    Camera camera;
    Place(camera, {-4.5f, 2.25f}, 37.0f);
    camera.SetWorldToGUI(camera.WorldToGUI());
    EXPECT_NEAR(camera.GetZoom(), 37.0f, 1e-4f);
    ExpectNear(camera.GetPan(), {-4.5f, 2.25f}, 1e-4f);

    Camera other;
    Place(other, {10, 20}, 80.0f);
    camera.SetGUIToWorld(other.GUIToWorld());
    EXPECT_NEAR(camera.GetZoom(), 80.0f, 1e-3f);
    ExpectNear(camera.GetPan(), {10, 20}, 1e-3f);
}

TEST(Camera, PanningDragsTheWorldAlongWithTheMouse)
{
    Camera camera;
    Place(camera, {0, 0}, 100);
    const math::Vec2 grabbed = camera.GUIToWorld(math::Vec2(200, 100));
    camera.PanView(math::Vec2(50, -30));
    // The world point under the mouse moved with it.
    ExpectNear(camera.WorldToGUI(grabbed), {250, 70});
    ExpectNear(camera.GUIToWorldNormal(math::Vec2(100, 100)), {1, -1});
}

TEST(Camera, FiveZoomStepsDoubleTheZoomAndResetRestores)
{
    Camera camera;
    Place(camera, {5, 5}, 100);
    for (int i = 0; i < 5; ++i)
        camera.ZoomView(1);
    EXPECT_NEAR(camera.GetZoom(), 200.0f, 1e-2f);
    camera.ZoomView(-10);
    EXPECT_NEAR(camera.GetZoom(), 50.0f, 1e-2f);
    camera.SetTracked([] { return math::Vec2(1, 1); });
    camera.Reset();
    EXPECT_EQ(camera.GetZoom(), 150.0f);
    EXPECT_EQ(camera.GetPan(), math::Vec2(0, 0));
    EXPECT_FALSE(camera.IsTracking());
}

TEST(Camera, FollowingKeepsTheOffsetAndEndsWhenTheTargetIsGone)
{
    Camera camera;
    Place(camera, {1, 1}, 100);
    math::Vec2 target(3, 4);
    camera.SetTracked([&target] { return target; });
    ASSERT_TRUE(camera.IsTracking());
    target = math::Vec2(5, 3);
    camera.Update(0.01f);
    ExpectNear(camera.GetPan(), {3, 0});

    // With the pan tool in use the target doesn't move the view, and the offset the user makes stays.
    camera.SetPanToolActive(true);
    target = math::Vec2(9, 9);
    camera.Update(0.01f);
    ExpectNear(camera.GetPan(), {3, 0});
    camera.SetPanToolActive(false);
    target = math::Vec2(10, 9);
    camera.Update(0.01f);
    ExpectNear(camera.GetPan(), {4, 0});

    target = math::Vec2(math::INF, 0);
    camera.Update(0.01f);
    EXPECT_FALSE(camera.IsTracking());
    ExpectNear(camera.GetPan(), {4, 0});

    camera.SetTracked([] { return math::Vec2(std::nanf(""), 0); });
    EXPECT_FALSE(camera.IsTracking());
}

TEST(Camera, AGroupIsFollowedByItsLoneShapesPositionOrTheMiddleOfItsBox)
{
    auto box = [](math::Vec2 size, math::Vec2 pos) -> app::EntityPtr
    { return QLEX_NEW new app::BoxEntity(QLEX_NEW new physics::Box(size, pos)); };
    const app::EntityPtr small = box({0.2f, 0.2f}, {-1, 0});
    const app::EntityPtr large = box({2.0f, 2.0f}, {3, 0});
    ExpectNear(Camera::GetGroupCenter(QLEX_NEW new app::Group(small)), {-1, 0}, 1e-6f);

    // The middle of the box around both, not their centre of mass, which the large one would pull over.
    app::GroupPtr both = QLEX_NEW new app::Group(small);
    both->Add(large);
    ExpectNear(Camera::GetGroupCenter(both), {(-1.1f + 4.0f) / 2, 0}, 1e-5f);

    const math::Vec2 none = Camera::GetGroupCenter(QLEX_NEW new app::Group());
    EXPECT_TRUE(std::isnan(none.x) && std::isnan(none.y));
    EXPECT_TRUE(std::isnan(Camera::GetGroupCenter(nullptr).x));
}
