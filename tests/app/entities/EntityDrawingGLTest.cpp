// Shapes drawn into a real window and read back by pixels. Runs under Xvfb; without a display it skips.
#include "EntityTestWorld.h"

#include "GLTestWindow.h"
#include "app/App.h"
#include "app/Camera.h"
#include "app/entities/PenEntity.h"
#include "math/MatrixGL.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>

namespace
{
const int WIDTH = 320;
const int HEIGHT = 240;
// Pixels per metre, and the world point at the middle of the window: the camera of the test.
const float ZOOM = 150.0f;
const math::Vec2 PAN(0.05f, -0.02f);

using Rgb = math::TVector4<int>;

::testing::AssertionResult Near(const Rgb& actual, const Rgb& expected)
{
    return ColorNear(actual, expected, 4);
}

class EntityDrawingGLTest : public entitytest::World
{
protected:
    // One window for all the tests.
    static void SetUpTestSuite()
    {
        s_window = new GLTestWindow();
        s_haveWindow = s_window->Open(WIDTH, HEIGHT);
    }
    static void TearDownTestSuite()
    {
        s_window->Close();
        delete s_window;
        s_window = nullptr;
    }

    void SetUp() override
    {
        World::SetUp();
        if (!s_haveWindow)
            GTEST_SKIP() << "No GL window: " << s_window->GetError();
        // The application root resets the camera when it comes up: it must be up before the camera is set.
        app::App::GetInstancePtr();
        app::Camera& camera = *TheScene().GetCamera();
        camera.SetViewSize(math::Vec2(WIDTH, HEIGHT));
        camera.SetZoom(ZOOM);
        camera.SetPan(PAN);
        s_window->SetGUIProjection();
        math::Mat4FromMat2D(camera.WorldToGUI()).MultToGL();
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glDisable(GL_BLEND);
    }

    // The colour where the camera puts a world point.
    static Rgb PixelAt(math::Vec2 world)
    {
        const math::Vec2 gui = TheScene().GetCamera()->WorldToGUI(world);
        return s_window->ReadPixelFromTop(int(gui.x), int(gui.y));
    }
    // Each shape's two layers share depth 0, so each starts on a clear depth buffer.
    static void DrawAlone(const app::Entity& entity)
    {
        glClear(GL_DEPTH_BUFFER_BIT);
        entity.Draw();
        glFinish();
    }
    // World length of `pixels` pixels.
    static float Px(float pixels) { return pixels / ZOOM; }

    inline static GLTestWindow* s_window = nullptr;
    inline static bool s_haveWindow = false;
};

const Rgb BLACK(0, 0, 0, 255);

TEST_F(EntityDrawingGLTest, RedBoxHasItsBorderAtTheEdge)
{
    util::SharedPtr<app::BoxEntity> box = AddBox(math::Vec2(0.4f, 0.4f), math::Vec2(-0.6f, 0.3f));
    box->SetColor(math::Vec4(1, 0, 0, 1));
    DrawAlone(*box);
    const float border = app::App::GetInstancePtr()->GetObjectBorderWidth();
    ASSERT_GT(border, Px(2.5f));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.6f, 0.3f)), Rgb(255, 0, 0, 255)));
    // Just inside each side: the border, half the colour.
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.8f + Px(1.5f), 0.3f)), Rgb(128, 0, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.4f - Px(1.5f), 0.3f)), Rgb(128, 0, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.6f, 0.5f - Px(1.5f))), Rgb(128, 0, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.6f, 0.1f + Px(1.5f))), Rgb(128, 0, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.8f + border + Px(2), 0.3f)), Rgb(255, 0, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.8f - Px(2), 0.3f)), BLACK));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.6f, 0.5f + Px(2))), BLACK));

    // Selected, the border is white; without borders, the inside reaches the edge.
    box->m_selectedLook = true;
    DrawAlone(*box);
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.8f + Px(1.5f), 0.3f)), Rgb(255, 255, 255, 255)));
    box->m_selectedLook = false;
    app::App::GetInstancePtr()->m_borders = false;
    DrawAlone(*box);
    app::App::GetInstancePtr()->m_borders = true;
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.8f + Px(1.5f), 0.3f)), Rgb(255, 0, 0, 255)));
}

TEST_F(EntityDrawingGLTest, CircleShowsItsBorderAndTheCakeSliceOfItsRotation)
{
    util::SharedPtr<app::CircleEntity> circle = AddCircle(0.3f, math::Vec2(0.4f, 0.2f));
    circle->SetColor(math::Vec4(0, 1, 0, 1));
    DrawAlone(*circle);
    const Rgb green(0, 255, 0, 255);
    const Rgb half(0, 128, 0, 255);
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.4f - 0.15f, 0.2f)), green));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.4f, 0.2f + 0.15f)), green));
    // The rim, on three sides.
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.4f - 0.3f + Px(1.5f), 0.2f)), half));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.4f, 0.2f - 0.3f + Px(1.5f))), half));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.4f, 0.2f + 0.3f - Px(1.5f))), half));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.4f - 0.3f - Px(2), 0.2f)), BLACK));
    // The slice along the local x axis is in the border colour, and turns with the circle.
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.4f + 0.2f, 0.2f)), half));
    circle->Transform(math::Mat2D::Translation(math::Vec2(0.4f, 0.2f)) *
                      math::Mat2D::Rotation(math::PIf / 2) *
                      math::Mat2D::Translation(math::Vec2(-0.4f, -0.2f)));
    glClear(GL_COLOR_BUFFER_BIT);
    DrawAlone(*circle);
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.4f + 0.2f, 0.2f)), green));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.4f, 0.2f + 0.2f)), half));
}

TEST_F(EntityDrawingGLTest, PolygonIsCutOutOfItsDistanceTextureWithABorder)
{
    const math::Vec2 centre(0.1f, -0.05f);
    const float radius = 0.5f;
    util::SharedPtr<app::PolyEntity> poly = QLEX_NEW new app::PolyEntity(
        QLEX_NEW new physics::Polygon(physics::testing::RegularPolygonPoints(centre, radius, 16)));
    TheScene().AddEntity(poly);
    poly->SetColor(math::Vec4(0, 0, 1, 1));
    DrawAlone(*poly);
    // Vertices lie on the axes; the border is as wide as the texture allows, up to the object border.
    const float border =
        std::min(app::App::GetInstancePtr()->GetObjectBorderWidth(), poly->GetMaxDist() * 127 / 256);
    ASSERT_GT(border, Px(2.5f));
    EXPECT_TRUE(Near(PixelAt(centre), Rgb(0, 0, 255, 255)));
    EXPECT_TRUE(Near(PixelAt(centre + math::Vec2(0.3f, 0.1f)), Rgb(0, 0, 255, 255)));
    EXPECT_TRUE(Near(PixelAt(centre + math::Vec2(-radius + Px(1.5f), 0)), Rgb(0, 0, 128, 255)));
    EXPECT_TRUE(Near(PixelAt(centre + math::Vec2(0, radius - Px(1.5f))), Rgb(0, 0, 128, 255)));
    EXPECT_TRUE(Near(PixelAt(centre + math::Vec2(radius - Px(1.5f), 0)), Rgb(0, 0, 128, 255)));
    EXPECT_TRUE(Near(PixelAt(centre + math::Vec2(-radius + border + Px(2), 0)), Rgb(0, 0, 255, 255)));
    EXPECT_TRUE(Near(PixelAt(centre + math::Vec2(radius + Px(3), 0)), BLACK));
    EXPECT_TRUE(Near(PixelAt(centre + math::Vec2(0, -radius - Px(3))), BLACK));
}

TEST_F(EntityDrawingGLTest, PlaneFillsTheViewBehindItsLine)
{
    util::SharedPtr<app::PlaneEntity> floor = AddFloor(-0.5f);
    floor->SetColor(math::Vec4(1, 1, 0, 1));
    DrawAlone(*floor);
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.9f, -0.7f)), Rgb(255, 255, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.9f, -0.5f - Px(1.5f))), Rgb(128, 128, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.0f, -0.5f + Px(2))), BLACK));
}
TEST_F(EntityDrawingGLTest, PenShowsItsHeadAndAFadingTail)
{
    Sim().m_gravitySwitch = false;
    Sim().m_airSwitch = false;
    util::SharedPtr<app::CircleEntity> ball = AddCircle(0.05f, math::Vec2(-0.7f, -0.2f));
    ball->GetBody()->SetVelocity(math::Vec2(1, 0));
    util::SharedPtr<app::PenEntity> pen = QLEX_NEW new app::PenEntity(0.12f);
    pen->AttachTo(ball->GetGeom(), math::Vec2(0, 0));
    pen->SetColor(math::Vec4(1, 0, 1, 1));
    TheScene().AddEntity(pen);
    // A second of simulated time: the head moves a metre to the right, the tail follows the path.
    for (int i = 0; i < 100; ++i)
        Sim().Update(0.01);
    ASSERT_GT(pen->GetTail().size(), 10u);
    pen->m_fadeTime = 1.0f;
    DrawAlone(*pen);
    const math::Vec2 head = pen->GetPos();
    EXPECT_NEAR(head.x, 0.3f, 0.02f);
    EXPECT_TRUE(Near(PixelAt(head), Rgb(255, 0, 255, 255)));
    // Half the fade time back, the tail is mixed half way with the black behind it; further back than the
    // fade time, nothing is left.
    EXPECT_TRUE(Near(PixelAt(math::Vec2(head.x - 0.5f, head.y)), Rgb(128, 0, 128, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(head.x - 0.75f, head.y)), Rgb(64, 0, 64, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(head.x - 1.0f + 0.05f, head.y)), Rgb(13, 0, 13, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(head.x - 0.5f, head.y + 0.1f)), BLACK));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(head.x + 0.1f, head.y)), BLACK));

    pen->m_fadeTime = 0.0f;
    glClear(GL_COLOR_BUFFER_BIT);
    DrawAlone(*pen);
    EXPECT_TRUE(Near(PixelAt(head), Rgb(255, 0, 255, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(head.x - 0.5f, head.y)), BLACK));
}
} // namespace
