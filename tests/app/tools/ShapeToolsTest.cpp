// The box, circle, plane and chain tools and the brush, driven by the drag events a window would deliver,
// without a window, and judged by what they leave in the scene and the history.
#include "ToolTestSupport.h"

#include "app/App.h"
#include "app/Camera.h"
#include "app/Chain.h"
#include "app/entities/BoxEntity.h"
#include "app/entities/CircleEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/PlaneEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/tools/BoxTool.h"
#include "app/tools/ChainTool.h"
#include "app/tools/CircleTool.h"
#include "app/tools/PlaneTool.h"
#include "app/tools/Tools.h"
#include "input/Key.h"

#include <cmath>

namespace
{
using math::Vec2;

const SDLKey LEFT = static_cast<SDLKey>(input::Key::MOUSE_LEFT);

class ShapeToolsTest : public tooltest::ToolTest
{
protected:
    size_t UndoSteps() const { return app::Undoer::GetInstancePtr()->GetUndoCount(); }
    const char* LastUndoKey() const { return app::Undoer::GetInstancePtr()->GetNextUndo()->GetKey(); }
    physics::Body* WorldBody() const { return physics::Simulation::GetInstancePtr()->GetWorldBody().get(); }
};
} // namespace

TEST_F(ShapeToolsTest, ABoxSpansTheDragAndAClickMakesNone)
{
    ASSERT_TRUE(Drag(*tools->m_box, {Vec2(-1, 2), Vec2(0.5f, 1)}));
    const auto boxes = All<app::BoxEntity>();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_NEAR(boxes[0]->GetHalfSize().x, 0.75f, 1e-4f);
    EXPECT_NEAR(boxes[0]->GetHalfSize().y, 0.5f, 1e-4f);
    EXPECT_NEAR(boxes[0]->GetGeom()->GetPosition().x, -0.25f, 1e-4f);
    EXPECT_NEAR(boxes[0]->GetGeom()->GetPosition().y, 1.5f, 1e-4f);
    EXPECT_NE(boxes[0]->GetGeom()->GetBody(), WorldBody()) << "without autoGlue the box is free";
    EXPECT_EQ(UndoSteps(), 1u);
    EXPECT_STREQ(LastUndoKey(), "UndoBox");

    const Vec2 at = GUI(Vec2(3, 3));
    const input::DragEvent end(at, Vec2(0, 0), at, LEFT);
    tools->m_box->OnDragBegin(input::DragEvent(at, Vec2(0, 0), at, LEFT));
    tools->m_box->OnDragEnd(end);
    EXPECT_TRUE(end.IsHandled()) << "a click is still the box tool's";
    EXPECT_EQ(All<app::BoxEntity>().size(), 1u);
    EXPECT_FALSE(tools->m_box->Disband()) << "the gesture is over";
}

TEST_F(ShapeToolsTest, ABoxAroundEntitiesSelectsThemUnlessDrawingIsFree)
{
    Run("Scene.addBox {pos = [0.0, 0.0]; size = [0.4, 0.4]}; Scene.addBox {pos = [1.0, 0.0]; size = [0.4, "
        "0.4]}");
    Drag(*tools->m_box, {Vec2(-0.5f, -0.5f), Vec2(1.5f, 0.5f)});
    EXPECT_EQ(All<app::BoxEntity>().size(), 2u) << "a selection rectangle makes no box";
    EXPECT_EQ(scene->GetSelection()->Size(), 2u);
    EXPECT_EQ(UndoSteps(), 0u);

    EXPECT_FALSE(Drag(*tools->m_box, {Vec2(0, 0), Vec2(2, 2)})) << "a drag on a box is left to others";
    EXPECT_FALSE(Drag(*tools->m_circle, {Vec2(0, 0), Vec2(0.5f, 0), Vec2(1, 0)}));
    EXPECT_FALSE(Drag(*tools->m_plane, {Vec2(0, 0), Vec2(0, 0.5f), Vec2(0, 1)}));

    settings->m_freeDrawing = true;
    EXPECT_TRUE(Drag(*tools->m_box, {Vec2(-0.5f, -0.5f), Vec2(1.5f, 0.5f)}));
    EXPECT_EQ(All<app::BoxEntity>().size(), 3u);
}

TEST_F(ShapeToolsTest, ShiftMakesASquareOnTheLargerSideAndSnapsAPlaneTo15Degrees)
{
    const Vec2 o(1, 1);
    EXPECT_EQ(app::BoxTool::SquareCorner(o, o + Vec2(2, -0.5f)), o + Vec2(2, -2));
    EXPECT_EQ(app::BoxTool::SquareCorner(o, o + Vec2(-0.5f, 3)), o + Vec2(-3, 3));
    EXPECT_EQ(app::BoxTool::SquareCorner(o, o + Vec2(0, -2)), o + Vec2(0, -2)) << "along an axis: flat";

    const auto at = [](float deg)
    { return Vec2(std::cos(deg * math::PIf / 180), std::sin(deg * math::PIf / 180)); };
    const std::pair<float, float> snaps[] = {{22, 15}, {23, 30}, {-98, -105}, {179, 180}, {-7, 0}};
    for (const auto& [drawn, snapped] : snaps)
        EXPECT_LT((app::PlaneTool::SnapDirection(at(drawn)) - at(snapped)).Length(), 1e-5f)
            << drawn << " degrees";
}

TEST_F(ShapeToolsTest, ACircleIsCentredAtTheStartTurnedToTheMouseAndKeepsOneColourThroughTheDrag)
{
    app::CircleTool& tool = *tools->m_circle;
    const Vec2 start = GUI(Vec2(1, 1));
    tool.OnDragBegin(input::DragEvent(start, Vec2(0, 0), start, LEFT));
    ASSERT_TRUE(tool.IsInUse());
    tool.OnDrag(input::DragEvent(start, Vec2(0, 0), GUI(Vec2(1.5f, 1)), LEFT));
    ASSERT_TRUE(tool.GetPreview());
    const math::Vec4 color = tool.GetPreview()->GetColor();
    const Vec2 end = GUI(Vec2(1, 0));
    tool.OnDrag(input::DragEvent(start, Vec2(0, 0), end, LEFT));
    EXPECT_EQ(tool.GetPreview()->GetColor(), color);
    EXPECT_TRUE(scene->GetEntities().empty()) << "the preview is not in the scene";
    tool.OnDragEnd(input::DragEvent(start, Vec2(0, 0), end, LEFT));

    const auto circles = All<app::CircleEntity>();
    ASSERT_EQ(circles.size(), 1u);
    EXPECT_EQ(circles[0]->GetColor(), color);
    EXPECT_NEAR(circles[0]->GetRadius(), 1.0f, 1e-3f);
    EXPECT_NEAR((circles[0]->GetGeom()->GetPosition() - Vec2(1, 1)).Length(), 0, 1e-4f);
    EXPECT_NEAR(circles[0]->GetGeom()->GetAngle(), -math::PIf / 2, 1e-4f) << "the slice points at the mouse";
    EXPECT_STREQ(LastUndoKey(), "UndoCircle");
    EXPECT_FALSE(tool.IsInUse());

    // A click never drags: no circle.
    tool.OnDragBegin(input::DragEvent(GUI(Vec2(-3, -3)), Vec2(0, 0), GUI(Vec2(-3, -3)), LEFT));
    tool.OnDragEnd(input::DragEvent(GUI(Vec2(-3, -3)), Vec2(0, 0), GUI(Vec2(-3, -3)), LEFT));
    EXPECT_EQ(All<app::CircleEntity>().size(), 1u);
}

TEST_F(ShapeToolsTest, EscapeDropsTheCirclesPreviewAndTheNextMoveStartsANewOne)
{
    app::CircleTool& tool = *tools->m_circle;
    const Vec2 start = GUI(Vec2(0, 0));
    tool.OnDragBegin(input::DragEvent(start, Vec2(0, 0), start, LEFT));
    tool.OnDrag(input::DragEvent(start, Vec2(0, 0), GUI(Vec2(1, 0)), LEFT));
    const input::KeyEvent escape(SDLK_ESCAPE, 0, true, Vec2(0, 0));
    tool.OnKeyEvent(escape);
    EXPECT_TRUE(escape.IsHandled());
    EXPECT_FALSE(tool.GetPreview());
    tool.OnDrag(input::DragEvent(start, Vec2(0, 0), GUI(Vec2(0.5f, 0)), LEFT));
    tool.OnDragEnd(input::DragEvent(start, Vec2(0, 0), GUI(Vec2(0.5f, 0)), LEFT));
    const auto circles = All<app::CircleEntity>();
    ASSERT_EQ(circles.size(), 1u);
    EXPECT_NEAR(circles[0]->GetRadius(), 0.5f, 1e-3f);
}

TEST_F(ShapeToolsTest, APlaneFacesTheDragAndBelongsToTheBackgroundWithoutAutoGlue)
{
    ASSERT_TRUE(Drag(*tools->m_plane, {Vec2(0, -1), Vec2(0.5f, -0.5f), Vec2(1, 0)}));
    const auto planes = All<app::PlaneEntity>();
    ASSERT_EQ(planes.size(), 1u);
    const math::Plane2D& plane = planes[0]->m_plane->GetPlane();
    EXPECT_NEAR(plane.normal.x, std::sqrt(0.5f), 1e-4f);
    EXPECT_NEAR(plane.normal.y, std::sqrt(0.5f), 1e-4f);
    EXPECT_NEAR(plane.Distance(Vec2(0, -1)), 0, 1e-4f) << "through the drag's start";
    EXPECT_EQ(planes[0]->GetGeom()->GetBody(), WorldBody());
    EXPECT_STREQ(LastUndoKey(), "UndoPlane");
}

TEST_F(ShapeToolsTest, AChainLaysALinkEveryTwoRadiiAndHangsFreeFromNothingToNothing)
{
    const float r = settings->GetScreenCM() * app::ChainTool::LINK_RADIUS_CM;
    const float length = 13.5f * r;
    Drag(*tools->m_chain, {Vec2(-1, 2), Vec2(-1 + length / 2, 2), Vec2(-1 + length, 2)});
    const auto links = All<app::CircleEntity>();
    const auto hinges = All<app::HingeEntity>();
    ASSERT_EQ(links.size(), 6u) << "13.5 radii hold six links of two";
    EXPECT_EQ(hinges.size(), 6u) << "one before each link; the head's pin is gone";
    EXPECT_NEAR(links[0]->GetRadius(), r, 1e-5f);
    EXPECT_NEAR(links[5]->GetGeom()->GetPosition().x, -1 + 11 * r, 1e-4f);
    const physics::Geom* world = physics::Simulation::GetInstancePtr()->GetWorldGeom().get();
    EXPECT_EQ(hinges[0]->m_geoms[0].get(), world) << "fixed at the start";
    for (size_t i = 1; i < hinges.size(); ++i)
        EXPECT_EQ(hinges[i]->m_geoms[0], links[i - 1]->GetGeom()) << "hinge " << i << " joins two links";
    const app::ChainPtr chain = links[0]->GetChain();
    ASSERT_TRUE(chain);
    EXPECT_EQ(chain->GetEntities().size(), 12u);
    EXPECT_EQ(UndoSteps(), 1u);
    EXPECT_STREQ(LastUndoKey(), "UndoChain");

    Drag(*tools->m_chain, {Vec2(-1, -2), Vec2(-1 + 1.9f * r, -2)});
    EXPECT_EQ(All<app::CircleEntity>().size(), 6u) << "shorter than a link: nothing";
    EXPECT_EQ(UndoSteps(), 1u);
}

TEST_F(ShapeToolsTest, AChainFromBoxToBoxHoldsBothRims)
{
    Run("Scene.addBox {pos = [-2.0, 0.0]; size = [1.0, 1.0]}; Scene.addBox {pos = [2.0, 0.0]; size = [1.0, "
        "1.0]}");
    const auto boxes = All<app::BoxEntity>();
    Drag(*tools->m_chain, {Vec2(-1.7f, 0), Vec2(0, 0), Vec2(1.7f, 0)});
    const auto hinges = All<app::HingeEntity>();
    ASSERT_GE(hinges.size(), 2u);
    EXPECT_EQ(hinges.front()->m_geoms[0], boxes[0]->GetGeom());
    EXPECT_NEAR(hinges.front()->m_worldPos[0].x, -1.5f, 1e-4f) << "on the first box's rim";
    EXPECT_EQ(hinges.back()->m_geoms[1], boxes[1]->GetGeom());
    EXPECT_NEAR(hinges.back()->m_worldPos[1].x, 1.5f, 1e-4f) << "on the second box's rim";
}

TEST_F(ShapeToolsTest, EscapeDuringAChainKeepsTheLinksWithoutAnUndoStep)
{
    app::ChainTool& tool = *tools->m_chain;
    const Vec2 start = GUI(Vec2(0, 0));
    tool.OnDragBegin(input::DragEvent(start, Vec2(0, 0), start, LEFT));
    tool.OnDrag(input::DragEvent(start, Vec2(0, 0), GUI(Vec2(2, 0)), LEFT));
    const size_t laid = All<app::CircleEntity>().size();
    ASSERT_GT(laid, 0u);
    const input::KeyEvent escape(SDLK_ESCAPE, 0, true, Vec2(0, 0));
    tool.OnKeyEvent(escape);
    EXPECT_TRUE(escape.IsHandled());
    tool.OnDrag(input::DragEvent(start, Vec2(0, 0), GUI(Vec2(4, 0)), LEFT));
    tool.OnDragEnd(input::DragEvent(start, Vec2(0, 0), GUI(Vec2(4, 0)), LEFT));
    EXPECT_EQ(All<app::CircleEntity>().size(), laid);
    EXPECT_EQ(UndoSteps(), 0u);
    Step(2);
    EXPECT_EQ(All<app::HingeEntity>().size(), laid + 1) << "the head stays pinned";
}

TEST_F(ShapeToolsTest, TheBrushErasesWithAWavyLineSelectsWithALoopAndLeavesDragsOnEntities)
{
    Run("Scene.addBox {pos = [0.0, 0.0]; size = [0.4, 0.4]}; Scene.addBox {pos = [3.0, 0.0]; size = [0.4, "
        "0.4]}");
    app::Tool& brush = *tools->m_brush;
    EXPECT_FALSE(Drag(brush, {Vec2(0, 0), Vec2(0, 1), Vec2(1, 1), Vec2(1, 0), Vec2(0.1f, 0)}));
    EXPECT_TRUE(All<app::PolyEntity>().empty());

    // A loop around the first box selects it.
    const std::vector<Vec2> loop = {Vec2(-0.5f, -0.5f), Vec2(0.5f, -0.5f),  Vec2(0.5f, 0.5f),
                                    Vec2(-0.5f, 0.5f),  Vec2(-0.5f, -0.4f), Vec2(-0.2f, -0.6f)};
    ASSERT_TRUE(Drag(brush, loop));
    EXPECT_TRUE(All<app::PolyEntity>().empty());
    EXPECT_EQ(scene->GetSelection()->Size(), 1u);

    // Within a fifth of its chord but crossing itself: the sketch tool's line it is not, the brush's it is.
    Drag(brush, {Vec2(2.5f, 0), Vec2(3.1f, 0.1f), Vec2(3.0f, -0.1f), Vec2(2.9f, 0.1f), Vec2(3.5f, 0)});
    ASSERT_EQ(All<app::BoxEntity>().size(), 1u);
    EXPECT_NEAR(All<app::BoxEntity>()[0]->GetGeom()->GetPosition().x, 0, 1e-4f) << "the struck box went";

    // A closed stroke on empty ground is a polygon.
    std::vector<Vec2> elsewhere;
    for (const Vec2& p : loop)
        elsewhere.push_back(p + Vec2(0, 3));
    Drag(brush, elsewhere);
    EXPECT_EQ(All<app::PolyEntity>().size(), 1u);
    EXPECT_STREQ(LastUndoKey(), "UndoPolygon");
}
