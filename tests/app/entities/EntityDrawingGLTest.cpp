// Shapes drawn into a real window and read back by pixels. Runs under Xvfb; without a display it skips.
#include "EntityTestWorld.h"
#include "logging/LogCapture.h"

#include "GLTestWindow.h"
#include "app/App.h"
#include "app/AppSettings.h"
#include "app/Camera.h"
#include "app/entities/FixJointEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/PenEntity.h"
#include "app/entities/SpringEntity.h"
#include "logging/Log.h"
#include "math/MatrixGL.h"
#include "rendering/GLContext.h"
#include "rendering/Shader.h"
#include "rendering/ShaderManager.h"
#include "util/Mentor.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

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
        // The textures die with the window, as they do when the application's window changes.
        for (util::AbstractMentor* mentor : util::AbstractMentor::GetAllClassInstances())
            mentor->Unload();
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
        // The world is drawn with blending and 2D textures on, as the application leaves them for the
        // entities: a shape that left its texture bound would paint the next one with it.
        glEnable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, 0);
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glLineWidth(1);
        app::App& application = *app::App::GetInstancePtr();
        application.GetSettings().m_borders = true;
        application.GetSettings().m_borderWidth = 0.1f;
        // The whole suite runs once more with the shaded pictures, which must pass the same checks.
        rendering::ShaderManager::SetShadersOn(std::getenv("QLEX_TEST_SHADERS") != nullptr);
    }
    void TearDown() override
    {
        app::App& application = *app::App::GetInstancePtr();
        application.GetSettings().m_borders = true;
        application.GetSettings().m_borderWidth = 0.1f;
        application.GetSettings().m_drawOBBs = false;
        application.GetSettings().m_drawMapOBBs = false;
        application.GetSettings().m_drawBCs = false;
        application.GetSettings().m_drawVertices = false;
        rendering::ShaderManager::SetShadersOn(false);
        World::TearDown();
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
        // The frame checks GL's error flag and ends the program on an error.
        EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR)) << typeid(entity).name();
    }
    // World length of `pixels` pixels.
    static float Px(float pixels) { return pixels / ZOOM; }

    inline static GLTestWindow* s_window = nullptr;
    inline static bool s_haveWindow = false;
};

const Rgb BLACK(0, 0, 0, 255);

// A box, a see-through circle (whose shaded picture is used), a polygon and a plane, each with points to
// look at: the inside, the border, the cake slice, and the black just outside.
struct ShapeProbe
{
    std::string shader;
    std::function<util::SharedPtr<app::Entity>()> make;
    std::vector<math::Vec2> points;
};

// Draws each shape alone with shaders off and on and compares the pixels at its points; `shaded` tells
// whether the shaded path was there to be taken.
void CompareShadedWithFixed(const std::vector<ShapeProbe>& probes, float px,
                            const std::function<void(const app::Entity&)>& draw,
                            const std::function<Rgb(math::Vec2)>& pixelAt, bool shaded)
{
    for (const ShapeProbe& probe : probes)
    {
        util::SharedPtr<app::Entity> entity = probe.make();
        std::vector<Rgb> fixed;
        rendering::ShaderManager::SetShadersOn(false);
        glClear(GL_COLOR_BUFFER_BIT);
        draw(*entity);
        for (const math::Vec2& p : probe.points)
            fixed.push_back(pixelAt(p));
        rendering::ShaderManager::SetShadersOn(true);
        EXPECT_EQ(rendering::ShaderManager::IsUsable(
                      rendering::ShaderManager::GetInstancePtr()->Load(probe.shader)),
                  shaded)
            << probe.shader;
        glClear(GL_COLOR_BUFFER_BIT);
        draw(*entity);
        for (size_t i = 0; i < probe.points.size(); ++i)
            EXPECT_TRUE(ColorNear(pixelAt(probe.points[i]), fixed[i], 6))
                << probe.shader << " at (" << probe.points[i].x / px << ", " << probe.points[i].y / px
                << ") pixels";
        rendering::ShaderManager::SetShadersOn(false);
    }
}

TEST_F(EntityDrawingGLTest, RedBoxHasItsBorderAtTheEdge)
{
    util::SharedPtr<app::BoxEntity> box = AddBox(math::Vec2(0.4f, 0.4f), math::Vec2(-0.6f, 0.3f));
    box->SetColor(math::Vec4(1, 0, 0, 1));
    DrawAlone(*box);
    const float border = app::AppSettings::GetInstancePtr()->GetObjectBorderWidth();
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
    app::AppSettings::GetInstancePtr()->m_borders = false;
    DrawAlone(*box);
    app::AppSettings::GetInstancePtr()->m_borders = true;
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
        std::min(app::AppSettings::GetInstancePtr()->GetObjectBorderWidth(), poly->GetMaxDist() * 127 / 256);
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
        Sim().AdvanceOneStep();
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

TEST_F(EntityDrawingGLTest, ThinBoxIsAllBorderAndASelectedBoxKeepsItsBorderWithBordersOff)
{
    const float border = app::AppSettings::GetInstancePtr()->GetObjectBorderWidth();
    // Thinner than two borders: no room for an inside.
    util::SharedPtr<app::BoxEntity> thin = AddBox(math::Vec2(0.6f, 1.5f * border), math::Vec2(0.2f, 0.4f));
    thin->SetColor(math::Vec4(0, 1, 1, 1));
    DrawAlone(*thin);
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.2f, 0.4f)), Rgb(0, 128, 128, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.0f, 0.4f)), Rgb(0, 128, 128, 255)));

    util::SharedPtr<app::BoxEntity> box = AddBox(math::Vec2(0.4f, 0.4f), math::Vec2(-0.4f, -0.3f));
    box->SetColor(math::Vec4(1, 0, 0, 1));
    app::AppSettings::GetInstancePtr()->m_borders = false;
    box->m_selectedLook = true;
    DrawAlone(*box);
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.6f + Px(1.5f), -0.3f)), Rgb(255, 255, 255, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.4f, -0.3f)), Rgb(255, 0, 0, 255)));
    // Marked only, the border is dark grey.
    box->m_selectedLook = false;
    box->m_markedLook = true;
    DrawAlone(*box);
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.6f + Px(1.5f), -0.3f)), Rgb(51, 51, 51, 255)));
}

TEST_F(EntityDrawingGLTest, TransparentOrHugeCircleIsDrawnAsGeometryWithItsCake)
{
    // Half transparent: the inside is blended over the black behind it, the slice and the rim in the border
    // colour, which has the same alpha. Neither layer shows through the other.
    util::SharedPtr<app::CircleEntity> circle = AddCircle(0.3f, math::Vec2(-0.4f, 0.1f));
    circle->SetColor(math::Vec4(0, 1, 0, 0.5f));
    DrawAlone(*circle);
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.4f - 0.15f, 0.1f)), Rgb(0, 128, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.4f + 0.2f, 0.1f)), Rgb(0, 64, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.4f, 0.1f - 0.3f + Px(1.5f))), Rgb(0, 64, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.4f, 0.1f - 0.3f - Px(2))), BLACK));

    // Wider than 1024 pixels the texture would blur: the same picture comes from geometry, crisp at the rim.
    glClear(GL_COLOR_BUFFER_BIT);
    const float radius = 3.6f;
    ASSERT_TRUE(app::CircleEntity::IsTooBigForTexture(radius, Px(1)));
    util::SharedPtr<app::CircleEntity> huge = AddCircle(radius, math::Vec2(0.6f - radius, 0.0f));
    huge->SetColor(math::Vec4(0, 0, 1, 1));
    DrawAlone(*huge);
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.0f, 0.75f)), Rgb(0, 0, 255, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.3f, 0.0f)), Rgb(0, 0, 128, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.6f - Px(1.5f), 0.0f)), Rgb(0, 0, 128, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.6f + Px(1.5f), 0.0f)), BLACK));
}

TEST_F(EntityDrawingGLTest, CircleSmallerThanItsBorderShowsNothingBeyondItsRim)
{
    // A border of a screen centimetre is wider than the circle: all of it is border.
    app::AppSettings::GetInstancePtr()->m_borderWidth = 1.0f;
    const float border = app::AppSettings::GetInstancePtr()->GetObjectBorderWidth();
    const float radius = 0.06f;
    ASSERT_GT(border, 2.5f * radius);
    util::SharedPtr<app::CircleEntity> circle = AddCircle(radius, math::Vec2(0.1f, 0.1f));
    for (float alpha : {1.0f, 0.5f})
    {
        glClear(GL_COLOR_BUFFER_BIT);
        circle->SetColor(math::Vec4(1, 1, 0, alpha));
        DrawAlone(*circle);
        const int level = int(std::lround(127.5f * alpha));
        EXPECT_TRUE(Near(PixelAt(math::Vec2(0.1f - radius / 2, 0.1f)), Rgb(level, level, 0, 255))) << alpha;
        EXPECT_TRUE(Near(PixelAt(math::Vec2(0.1f - radius - Px(4), 0.1f)), BLACK)) << alpha;
        EXPECT_TRUE(Near(PixelAt(math::Vec2(0.1f, 0.1f + radius + Px(4))), BLACK)) << alpha;
    }
}

TEST_F(EntityDrawingGLTest, PolygonTextureKeepsTheShapesOrientation)
{
    // An L: the distance texture would show a mirrored or turned L in the notch if its corners and
    // texture coordinates disagreed.
    const std::vector<math::Vec2> points = {math::Vec2(-0.6f, -0.6f), math::Vec2(0.6f, -0.6f),
                                            math::Vec2(0.6f, -0.2f),  math::Vec2(-0.2f, -0.2f),
                                            math::Vec2(-0.2f, 0.6f),  math::Vec2(-0.6f, 0.6f)};
    util::SharedPtr<app::PolyEntity> poly =
        QLEX_NEW new app::PolyEntity(QLEX_NEW new physics::Polygon(points));
    TheScene().AddEntity(poly);
    poly->SetColor(math::Vec4(1, 0.5f, 0, 1));
    const Rgb inside(255, 128, 0, 255);
    // Upright, then turned a quarter about the origin: (x, y) goes to (-y, x).
    for (int turn = 0; turn < 2; ++turn)
    {
        glClear(GL_COLOR_BUFFER_BIT);
        DrawAlone(*poly);
        auto at = [turn](float x, float y) { return PixelAt(turn ? math::Vec2(-y, x) : math::Vec2(x, y)); };
        EXPECT_TRUE(Near(at(0.4f, -0.4f), inside)) << turn;
        EXPECT_TRUE(Near(at(-0.4f, 0.4f), inside)) << turn;
        EXPECT_TRUE(Near(at(-0.4f, -0.4f), inside)) << turn;
        EXPECT_TRUE(Near(at(0.3f, 0.3f), BLACK)) << turn;
        EXPECT_TRUE(Near(at(0.0f, 0.0f), BLACK)) << turn;
        poly->Transform(math::Mat2D::Rotation(math::PIf / 2));
    }
}

TEST_F(EntityDrawingGLTest, TransparentPolygonBlendsItsInsideAndKeepsASelectedBorderOpaque)
{
    const math::Vec2 centre(0.1f, 0.0f);
    const float radius = 0.5f;
    util::SharedPtr<app::PolyEntity> poly = QLEX_NEW new app::PolyEntity(
        QLEX_NEW new physics::Polygon(physics::testing::RegularPolygonPoints(centre, radius, 16)));
    TheScene().AddEntity(poly);
    poly->SetColor(math::Vec4(0, 0, 1, 0.5f));
    poly->m_selectedLook = true;
    DrawAlone(*poly);
    // Without the constant blend colour the fixed picture can only be opaque; the shaded one blends.
    const bool shaded =
        rendering::ShaderManager::IsUsable(rendering::ShaderManager::GetInstancePtr()->Load("polygon"));
    const int blue = rendering::HasBlendColor() || shaded ? 128 : 255;
    EXPECT_TRUE(Near(PixelAt(centre), Rgb(0, 0, blue, 255)));
    EXPECT_TRUE(Near(PixelAt(centre + math::Vec2(-radius + Px(1.5f), 0)), Rgb(255, 255, 255, 255)));
    EXPECT_TRUE(Near(PixelAt(centre + math::Vec2(0, radius - Px(1.5f))), Rgb(255, 255, 255, 255)));
    EXPECT_TRUE(Near(PixelAt(centre + math::Vec2(radius + Px(3), 0)), BLACK));
}

TEST_F(EntityDrawingGLTest, HingeIsADiscWithARimInTheBorderColour)
{
    util::SharedPtr<app::HingeEntity> hinge = QLEX_NEW new app::HingeEntity(0.3f);
    hinge->m_worldPos[0] = hinge->m_worldPos[1] = math::Vec2(0.2f, -0.1f);
    hinge->SetColor(math::Vec4(1, 0, 0, 1));
    DrawAlone(*hinge);
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.2f, -0.1f)), Rgb(255, 0, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.2f - 0.15f + Px(1.5f), -0.1f)), Rgb(128, 0, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.2f, -0.1f + 0.15f + Px(2))), BLACK));
    hinge->m_selectedLook = true;
    DrawAlone(*hinge);
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.2f - 0.15f + Px(1.5f), -0.1f)), Rgb(255, 255, 255, 255)));
    hinge->m_selectedLook = false;

    // See-through, the inside doesn't mix with the rim behind it.
    glClear(GL_COLOR_BUFFER_BIT);
    hinge->SetColor(math::Vec4(1, 0, 0, 0.5f));
    DrawAlone(*hinge);
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.2f, -0.1f)), Rgb(128, 0, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.2f - 0.15f + Px(1.5f), -0.1f)), Rgb(64, 0, 0, 255)));

    // Zoomed out so far that the rim is wider than the hinge's radius: all rim.
    glClear(GL_COLOR_BUFFER_BIT);
    hinge->SetColor(math::Vec4(1, 0, 0, 1));
    app::AppSettings::GetInstancePtr()->m_borderWidth = 1.0f;
    ASSERT_GT(app::AppSettings::GetInstancePtr()->GetObjectBorderWidth(), 0.15f + Px(8));
    DrawAlone(*hinge);
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.2f, -0.1f)), Rgb(128, 0, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.2f + 0.15f + Px(2), -0.1f)), BLACK));
}

TEST_F(EntityDrawingGLTest, SpringAndFixateShowWhenTheyAreSelectedOrMarked)
{
    glLineWidth(5);
    util::SharedPtr<app::SpringEntity> spring = QLEX_NEW new app::SpringEntity(0.2f);
    spring->m_worldPos[0] = math::Vec2(-0.7f, 0.3f);
    spring->m_worldPos[1] = math::Vec2(0.1f, 0.3f);
    spring->SetColor(math::Vec4(0, 1, 0, 1));
    util::SharedPtr<app::FixJointEntity> fix = QLEX_NEW new app::FixJointEntity(0.2f);
    fix->m_worldPos[0] = fix->m_worldPos[1] = math::Vec2(0.5f, -0.3f);
    fix->SetColor(math::Vec4(0, 1, 0, 1));
    // Half way along the first stroke of the zigzag, which rises a tooth's height over 1/24 of the length.
    const math::Vec2 onSpring = spring->m_worldPos[0] + math::Vec2(0.8f / 48, 0.05f);
    const math::Vec2 onFix = fix->m_worldPos[0];

    DrawAlone(*spring);
    DrawAlone(*fix);
    const Rgb plainSpring = PixelAt(onSpring);
    const Rgb plainFix = PixelAt(onFix);
    EXPECT_TRUE(Near(plainSpring, Rgb(0, 255, 0, 255)));
    EXPECT_TRUE(Near(plainFix, Rgb(0, 255, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.3f, 0.3f + 0.2f)), BLACK));

    spring->m_selectedLook = fix->m_selectedLook = true;
    DrawAlone(*spring);
    DrawAlone(*fix);
    EXPECT_TRUE(Near(PixelAt(onSpring), Rgb(255, 255, 255, 255)));
    EXPECT_TRUE(Near(PixelAt(onFix), Rgb(255, 255, 255, 255)));

    // Marked (under the pointer) looks different again from the plain picture.
    spring->m_selectedLook = fix->m_selectedLook = false;
    spring->m_markedLook = fix->m_markedLook = true;
    DrawAlone(*spring);
    DrawAlone(*fix);
    EXPECT_TRUE(Near(PixelAt(onSpring), Rgb(51, 51, 51, 255)));
    EXPECT_TRUE(Near(PixelAt(onFix), Rgb(51, 51, 51, 255)));
    EXPECT_FALSE(Near(plainFix, Rgb(51, 51, 51, 255)));
}

TEST_F(EntityDrawingGLTest, SelectedPenWearsARingInTheBorderColour)
{
    util::SharedPtr<app::BoxEntity> box = AddBox(math::Vec2(0.5f, 0.5f), math::Vec2(0, 0));
    util::SharedPtr<app::PenEntity> pen = QLEX_NEW new app::PenEntity(0.3f);
    pen->AttachTo(box->GetGeom(), math::Vec2(0.1f, 0.1f));
    pen->SetColor(math::Vec4(1, 0, 0, 1));
    TheScene().AddEntity(pen);
    // Between the head's rim at half the size and the ring's outer edge at 0.65 of it.
    const math::Vec2 onRing = pen->GetPos() + math::Vec2(0.3f * 0.58f, 0);
    DrawAlone(*pen);
    EXPECT_TRUE(Near(PixelAt(pen->GetPos()), Rgb(255, 0, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(onRing), BLACK));
    pen->m_selectedLook = true;
    DrawAlone(*pen);
    EXPECT_TRUE(Near(PixelAt(pen->GetPos()), Rgb(255, 0, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(onRing), Rgb(255, 255, 255, 255)));
}

TEST_F(EntityDrawingGLTest, BlackSilhouettesClearColourAndAlphaOfTheWholeShape)
{
    // The water field lives in alpha; the silhouettes are drawn as the water pass draws them, unblended.
    glDisable(GL_BLEND);
    glClearColor(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glClearColor(0, 0, 0, 1);
    util::SharedPtr<app::BoxEntity> box = AddBox(math::Vec2(0.4f, 0.4f), math::Vec2(-0.6f, 0.4f));
    util::SharedPtr<app::CircleEntity> circle = AddCircle(0.2f, math::Vec2(0.0f, 0.4f));
    util::SharedPtr<app::PolyEntity> poly = QLEX_NEW new app::PolyEntity(QLEX_NEW new physics::Polygon(
        physics::testing::RegularPolygonPoints(math::Vec2(0.6f, 0.3f), 0.3f, 12)));
    TheScene().AddEntity(poly);
    util::SharedPtr<app::PlaneEntity> floor = AddFloor(-0.4f);
    for (const app::GeomEntity* e :
         std::initializer_list<const app::GeomEntity*>{box.get(), circle.get(), poly.get(), floor.get()})
        e->DrawBlack();
    glFinish();
    const Rgb none(0, 0, 0, 0);
    const Rgb white(255, 255, 255, 255);
    EXPECT_TRUE(ColorNear(PixelAt(math::Vec2(-0.6f, 0.4f)), none, 3, true));
    EXPECT_TRUE(ColorNear(PixelAt(math::Vec2(-0.8f + Px(1.5f), 0.4f)), none, 3, true));
    // The circle's silhouette has no slice.
    EXPECT_TRUE(ColorNear(PixelAt(math::Vec2(0.15f, 0.4f)), none, 3, true));
    EXPECT_TRUE(ColorNear(PixelAt(math::Vec2(0.6f, 0.3f)), none, 3, true));
    EXPECT_TRUE(ColorNear(PixelAt(math::Vec2(0.3f + Px(2), 0.3f)), Rgb(0, 0, 0, 255), 3, false));
    EXPECT_TRUE(ColorNear(PixelAt(math::Vec2(0.0f, -0.6f)), none, 3, true));
    EXPECT_TRUE(ColorNear(PixelAt(math::Vec2(0.0f, 0.0f)), white, 3, true));
    EXPECT_TRUE(ColorNear(PixelAt(math::Vec2(0.0f, 0.4f + 0.2f + Px(2))), white, 3, true));
    EXPECT_TRUE(ColorNear(PixelAt(math::Vec2(0.6f + 0.3f + Px(3), 0.3f)), white, 3, true));
}

TEST_F(EntityDrawingGLTest, PenTailStaysPutAndWidensUnderAScalePreview)
{
    Sim().m_gravitySwitch = false;
    Sim().m_airSwitch = false;
    util::SharedPtr<app::CircleEntity> ball = AddCircle(0.05f, math::Vec2(-0.3f, -0.2f));
    ball->GetBody()->SetVelocity(math::Vec2(1, 0));
    util::SharedPtr<app::PenEntity> pen = QLEX_NEW new app::PenEntity(0.12f);
    pen->AttachTo(ball->GetGeom(), math::Vec2(0, 0));
    pen->SetColor(math::Vec4(1, 1, 0, 1));
    TheScene().AddEntity(pen);
    for (int i = 0; i < 50; ++i)
        Sim().AdvanceOneStep();
    pen->m_fadeTime = 100.0f;
    const math::Vec2 head = pen->GetPos();
    // On the path, a quarter metre back; and beside it, outside the tail's half width of 0.042.
    const math::Vec2 onPath(head.x - 0.25f, head.y);
    const math::Vec2 beside(head.x - 0.25f, head.y + 0.06f);
    DrawAlone(*pen);
    EXPECT_TRUE(Near(PixelAt(onPath), Rgb(255, 255, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(beside), BLACK));

    // A scale drag of 2 about the origin, as the world drawing applies it: the head goes along, the tail
    // keeps its place and grows as wide as the preview scales.
    glClear(GL_COLOR_BUFFER_BIT);
    pen->m_scaleTransform = math::Mat3::Scale2D(math::Vec2(2, 2));
    glPushMatrix();
    math::Mat4FromMat2D(pen->m_scaleTransform).MultToGL();
    DrawAlone(*pen);
    glPopMatrix();
    pen->ClearScaleTransform();
    EXPECT_TRUE(Near(PixelAt(onPath), Rgb(255, 255, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(beside), Rgb(255, 255, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(head * 2.0f), Rgb(255, 255, 0, 255)));
}

TEST_F(EntityDrawingGLTest, PicturesThatMakeTheirTexturesLeaveNoneBound)
{
    // Each texture is made at its first use, which binds it; the world draws everything else with 2D
    // textures on, so a texture left bound would paint the next shape.
    for (util::AbstractMentor* mentor : util::AbstractMentor::GetAllClassInstances())
        mentor->Unload();
    util::SharedPtr<app::CircleEntity> circle = AddCircle(0.2f, math::Vec2(-0.5f, 0.3f));
    util::SharedPtr<app::PolyEntity> poly = QLEX_NEW new app::PolyEntity(QLEX_NEW new physics::Polygon(
        physics::testing::RegularPolygonPoints(math::Vec2(0.5f, 0.3f), 0.2f, 8)));
    TheScene().AddEntity(poly);
    util::SharedPtr<app::PenEntity> pen = QLEX_NEW new app::PenEntity(0.2f);
    pen->AttachTo(circle->GetGeom(), math::Vec2(0, 0));
    pen->m_selectedLook = true;
    TheScene().AddEntity(pen);
    for (const app::Entity* e :
         std::initializer_list<const app::Entity*>{circle.get(), poly.get(), pen.get()})
    {
        DrawAlone(*e);
        GLint bound = -1;
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
        EXPECT_EQ(bound, 0) << typeid(*e).name();
        glBindTexture(GL_TEXTURE_2D, 0);
    }
    poly->DrawBlack();
    GLint bound = -1;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(bound, 0);

    // A box drawn after them is plain.
    util::SharedPtr<app::BoxEntity> box = AddBox(math::Vec2(0.4f, 0.4f), math::Vec2(0, -0.4f));
    box->SetColor(math::Vec4(0, 0, 1, 1));
    for (util::AbstractMentor* mentor : util::AbstractMentor::GetAllClassInstances())
        mentor->Unload();
    DrawAlone(*pen);
    DrawAlone(*box);
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.1f, -0.3f)), Rgb(0, 0, 255, 255)));
}

TEST_F(EntityDrawingGLTest, APreviewFlattenedToALineDrawsWithoutFailing)
{
    util::SharedPtr<app::CircleEntity> ball = AddCircle(0.05f, math::Vec2(-0.3f, -0.2f));
    ball->GetBody()->SetVelocity(math::Vec2(1, 0));
    util::SharedPtr<app::PenEntity> pen = QLEX_NEW new app::PenEntity(0.12f);
    pen->AttachTo(ball->GetGeom(), math::Vec2(0, 0));
    TheScene().AddEntity(pen);
    for (int i = 0; i < 20; ++i)
        Sim().AdvanceOneStep();
    ASSERT_GE(pen->GetTail().size(), 2u);
    util::SharedPtr<app::PlaneEntity> floor = AddFloor(-0.5f);
    floor->SetColor(math::Vec4(1, 1, 0, 1));
    // A scale drag through zero: everything lies on the y axis.
    const math::Mat3 flat = math::Mat3::Scale2D(math::Vec2(0, 1));
    pen->m_scaleTransform = flat;
    floor->m_scaleTransform = flat;
    EXPECT_NO_THROW(DrawAlone(*pen));
    EXPECT_NO_THROW(DrawAlone(*floor));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.5f, -0.7f)), BLACK));
    floor->ClearScaleTransform();
    DrawAlone(*floor);
    EXPECT_TRUE(Near(PixelAt(math::Vec2(-0.5f, -0.7f)), Rgb(255, 255, 0, 255)));
}

TEST_F(EntityDrawingGLTest, PolygonDebugPicturesDrawOverItsShape)
{
    app::App& application = *app::App::GetInstancePtr();
    util::SharedPtr<app::PolyEntity> poly = QLEX_NEW new app::PolyEntity(
        QLEX_NEW new physics::Polygon(physics::testing::RegularPolygonPoints(math::Vec2(0, 0), 0.5f, 6)));
    TheScene().AddEntity(poly);
    poly->SetColor(math::Vec4(1, 0, 0, 1));
    glPointSize(5);
    application.GetSettings().m_drawOBBs = true;
    application.GetSettings().m_drawMapOBBs = true;
    application.GetSettings().m_drawBCs = true;
    application.GetSettings().m_drawVertices = true;
    DrawAlone(*poly);
    glPointSize(1);
    // The vertices in green, the centre in light blue; the bounding circle adds its colour to the black
    // around the shape, whatever its alpha.
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0.5f, 0)), Rgb(0, 255, 0, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0, 0)), Rgb(128, 128, 255, 255)));
    EXPECT_TRUE(Near(PixelAt(math::Vec2(0, 0.48f)), Rgb(51, 51, 128, 255)));
}
} // namespace

class ShadedDrawingGLTest : public EntityDrawingGLTest
{
protected:
    std::vector<ShapeProbe> Probes()
    {
        const float bw = app::AppSettings::GetInstancePtr()->GetObjectBorderWidth();
        std::vector<ShapeProbe> probes;
        probes.push_back({"box",
                          [this]
                          {
                              util::SharedPtr<app::BoxEntity> box =
                                  AddBox(math::Vec2(0.4f, 0.3f), math::Vec2(-0.6f, 0.3f));
                              box->SetColor(math::Vec4(1, 0.5f, 0, 1));
                              return util::SharedPtr<app::Entity>(box);
                          },
                          {{-0.6f, 0.3f},
                           {-0.8f + Px(1.5f), 0.3f},
                           {-0.6f, 0.45f - Px(1.5f)},
                           {-0.8f + bw + Px(2), 0.3f},
                           {-0.8f - Px(2), 0.3f},
                           {-0.6f, 0.45f + Px(2)}}});
        probes.push_back({"circle",
                          [this]
                          {
                              util::SharedPtr<app::CircleEntity> circle =
                                  AddCircle(0.3f, math::Vec2(0.4f, 0.2f));
                              circle->SetColor(math::Vec4(0.2f, 1, 0.4f, 0.6f));
                              return util::SharedPtr<app::Entity>(circle);
                          },
                          {{0.25f, 0.2f},
                           {0.4f, 0.35f},
                           {0.6f, 0.2f},
                           {0.1f + Px(1.5f), 0.2f},
                           {0.4f, 0.5f - Px(1.5f)},
                           {0.1f - Px(2), 0.2f}}});
        probes.push_back({"polygon",
                          [this]
                          {
                              util::SharedPtr<app::PolyEntity> poly = QLEX_NEW new app::PolyEntity(
                                  QLEX_NEW new physics::Polygon(physics::testing::RegularPolygonPoints(
                                      math::Vec2(0.1f, -0.05f), 0.5f, 16)));
                              TheScene().AddEntity(poly);
                              poly->SetColor(math::Vec4(0.3f, 0.3f, 1, 1));
                              return util::SharedPtr<app::Entity>(poly);
                          },
                          {{0.1f, -0.05f},
                           {0.4f, 0.05f},
                           {-0.4f + Px(1.5f), -0.05f},
                           {0.1f, 0.45f - Px(1.5f)},
                           {0.6f + Px(3), -0.05f}}});
        probes.push_back(
            {"plane",
             [this]
             {
                 util::SharedPtr<app::PlaneEntity> floor = AddFloor(-0.5f);
                 floor->SetColor(math::Vec4(1, 1, 0, 1));
                 return util::SharedPtr<app::Entity>(floor);
             },
             {{-0.9f, -0.7f}, {0.9f, -0.5f - Px(1.5f)}, {0.0f, -0.5f - bw - Px(2)}, {0.0f, -0.5f + Px(2)}}});
        return probes;
    }
};

TEST_F(ShadedDrawingGLTest, ShadedShapesShowTheColoursOfTheFixedFunctionPictures)
{
    if (!rendering::HasShaderSupport())
        GTEST_SKIP() << "this GL runs no shaders";
    CompareShadedWithFixed(Probes(), Px(1), DrawAlone, PixelAt, true);
}

// Run by its own test entry with the shader objects hidden from GL.
TEST_F(ShadedDrawingGLTest, WithoutShaderSupportTheFixedPicturesStandInAfterOneWarning)
{
    if (rendering::HasShaderSupport())
        GTEST_SKIP() << "this GL runs shaders: hide GL_ARB_vertex_program with MESA_EXTENSION_OVERRIDE";
    logtest::LogCapture log(logging::Warning);
    const std::vector<std::string>& warnings = log.lines;
    // Twice over: the second round neither tries the programs again nor says anything.
    CompareShadedWithFixed(Probes(), Px(1), DrawAlone, PixelAt, false);
    CompareShadedWithFixed(Probes(), Px(1), DrawAlone, PixelAt, false);
    ASSERT_EQ(warnings.size(), 1u) << (warnings.empty() ? "" : warnings.back());
    EXPECT_NE(warnings[0].find("This system doesn't support shaders"), std::string::npos) << warnings[0];
}
