// The tools that act on what is there (drag, move, rotate, scale, clone) and those that join it (the click
// tools and the spring), driven by the events a window would deliver, with the mouse and the modifier keys
// given to the scene as the window would give them.
#include "../scene/SceneTestSupport.h"

#include "app/App.h"
#include "app/Camera.h"
#include "app/entities/BoxEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/PenEntity.h"
#include "app/entities/SpringEntity.h"
#include "app/tools/CloneTool.h"
#include "app/tools/DragTool.h"
#include "app/tools/JointTools.h"
#include "app/tools/MoveTool.h"
#include "app/tools/RotateTool.h"
#include "app/tools/ScaleTool.h"
#include "app/tools/SketchTool.h"
#include "app/tools/SpringTool.h"
#include "app/tools/Tools.h"
#include "input/Key.h"

#include <cmath>
#include <set>

namespace
{
using math::Vec2;

testing::AssertionResult VecNear(Vec2 a, Vec2 b, float tolerance)
{
    if (std::fabs(a.x - b.x) <= tolerance && std::fabs(a.y - b.y) <= tolerance)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "(" << a.x << ", " << a.y << ") is not within " << tolerance
                                       << " of (" << b.x << ", " << b.y << ")";
}
#define EXPECT_VEC_NEAR(a, b, tolerance) EXPECT_TRUE(VecNear(a, b, tolerance))

const SDLKey LEFT = static_cast<SDLKey>(input::Key::MOUSE_LEFT);
const SDLKey RIGHT = static_cast<SDLKey>(input::Key::MOUSE_RIGHT);

class ManipulationToolsTest : public scenetest::SceneTest
{
protected:
    void SetUp() override
    {
        scenetest::SceneTest::SetUp();
        physics::Simulation::GetInstancePtr()->m_running = false;
        app::App& app = *app::App::GetInstancePtr();
        app.SetOuterSize(Vec2(800, 600));
        app.GetCamera().Reset();
        app.GetCamera().SetZoom(100);
        tools = app::Tools::GetInstancePtr();
        tools->Select(tools->m_sketch);
        tools->SetActive(nullptr);
        app::Scene::PointerSource pointer;
        pointer.isModifierHeld = [this](input::Modifier m) { return held.count(m) > 0; };
        pointer.position = [this]() -> std::optional<Vec2> { return Gui(mouse); };
        scene->SetPointerSource(pointer);
    }

    void TearDown() override { scene->SetPointerSource(app::Scene::PointerSource()); }

    Vec2 Gui(Vec2 world) const { return scene->GetCamera()->WorldToGUI(world); }

    // A drag along the world points with the button; the mouse follows, and the tool updates each step.
    void Drag(app::Tool& tool, const std::vector<Vec2>& world, SDLKey button = LEFT)
    {
        mouse = world.front();
        const Vec2 start = Gui(world.front());
        tool.OnDragBegin(input::DragEvent(start, Vec2(0, 0), start, button));
        Vec2 last = start;
        for (size_t i = 1; i < world.size(); ++i)
        {
            mouse = world[i];
            const Vec2 p = Gui(world[i]);
            tool.OnDrag(input::DragEvent(start, p - last, p, button));
            tool.Update(0.01f);
            last = p;
        }
        tool.OnDragEnd(input::DragEvent(start, Vec2(0, 0), last, button));
    }

    util::SharedPtr<app::BoxEntity> AddBox(Vec2 pos, float size)
    {
        Run("Scene.addBox {pos = [" + std::to_string(pos.x) + ", " + std::to_string(pos.y) + "]; size = [" +
            std::to_string(size) + ", " + std::to_string(size) + "]}");
        return All<app::BoxEntity>().back();
    }

    static Vec2 SizeOf(const util::SharedPtr<app::BoxEntity>& box)
    {
        const math::OBB2D& obb = box->m_box->GetLocalOBB();
        return Vec2(2 * obb.halfExtent[0], 2 * obb.halfExtent[1]);
    }
    static Vec2 PosOf(const util::SharedPtr<app::BoxEntity>& box) { return box->GetGeom()->GetPosition(); }

    size_t UndoCount() const { return app::Undoer::GetInstancePtr()->GetUndoCount(); }
    std::string LastUndo() const { return app::Undoer::GetInstancePtr()->GetNextUndo()->GetKey(); }

    template <class T> T& Tool(const app::Tools::ToolPtr& tool) { return dynamic_cast<T&>(*tool); }

    app::Tools* tools = nullptr;
    Vec2 mouse;
    std::set<int> held;
};

// --- scale ----------------------------------------------------------------------------------------------

TEST_F(ManipulationToolsTest, RingsLieOnTheBoxAndNeverOverlap)
{
    const math::BoundingBox2 thin(Vec2(0, 0), Vec2(4, 0.2f));
    const std::vector<app::Ring> rings = app::CalcRingList(thin);
    ASSERT_EQ(rings.size(), 8u);
    for (size_t i = 0; i < rings.size(); ++i)
    {
        EXPECT_NEAR(thin.Distance(rings[i].position), 0.0f, 1e-6f) << "ring " << i << " on the outline";
        EXPECT_VEC_NEAR((rings[i].position + rings[i].opposite) * 0.5f, thin.GetCenter(), 1e-6f);
        for (size_t j = i + 1; j < rings.size(); ++j)
            EXPECT_GT((rings[i].position - rings[j].position).Length(), rings[i].radius + rings[j].radius);
    }
    const auto corner = app::GetRingAt(thin, Vec2(4.0f, 0.21f));
    ASSERT_TRUE(corner);
    EXPECT_EQ(corner->name, "north-east");
    EXPECT_TRUE(corner->axes.x && corner->axes.y);
    const auto side = app::GetRingAt(thin, Vec2(2.0f, 0.0f));
    ASSERT_TRUE(side);
    EXPECT_TRUE(!side->axes.x && side->axes.y) << "the bottom middle scales y only";
    EXPECT_FALSE(app::GetRingAt(thin, Vec2(1.0f, 0.1f))) << "between the handles";
}

TEST_F(ManipulationToolsTest, ScaleCentreIsWhereTheGroupHangsUnlessThatIsNearTheHandle)
{
    const auto free = AddBox(Vec2(0, 0), 1.0f);
    const app::GroupPtr group = QLEX_NEW new app::Group(app::EntityPtr(free));
    const math::BoundingBox2 box = group->CalcFiniteAABB();
    const app::Ring topRight = *app::GetRingAt(box, Vec2(0.5f, 0.5f));
    EXPECT_VEC_NEAR(app::CalcScaleCenter(box, group, topRight), Vec2(-0.5f, -0.5f), 1e-5f) << "a free box";

    Run("Scene.addHinge {pos = [0.0, 0.0]; size = 0.1}");
    EXPECT_VEC_NEAR(app::CalcScaleCenter(box, group, topRight), Vec2(0, 0), 1e-5f) << "hinged in the middle";

    scene->NewScene();
    const auto pinned = AddBox(Vec2(0, 0), 1.0f);
    Run("Scene.addHinge {pos = [0.4, -0.3]; size = 0.1}");
    const app::GroupPtr pinnedGroup = QLEX_NEW new app::Group(app::EntityPtr(pinned));
    EXPECT_VEC_NEAR(app::CalcScaleCenter(box, pinnedGroup, topRight), Vec2(-0.5f, -0.5f), 1e-5f)
        << "a hinge below the handle's x would make the scale jump";
    const app::Ring topMiddle = *app::GetRingAt(box, Vec2(0.0f, 0.5f));
    EXPECT_VEC_NEAR(app::CalcScaleCenter(box, pinnedGroup, topMiddle), Vec2(0.4f, -0.3f), 1e-5f)
        << "the top handle scales y only, and in y the hinge is far from it";
    const app::Ring bottomMiddle = *app::GetRingAt(box, Vec2(0.0f, -0.5f));
    EXPECT_VEC_NEAR(app::CalcScaleCenter(box, pinnedGroup, bottomMiddle), Vec2(0.0f, 0.5f), 1e-5f);
}

TEST_F(ManipulationToolsTest, ScaleFactorFollowsTheMouseWithShiftAndCtrl)
{
    const auto box = AddBox(Vec2(0, 0), 1.0f);
    scene->SetSelection(QLEX_NEW new app::Group(app::EntityPtr(box)));
    app::ScaleTool& scale = Tool<app::ScaleTool>(tools->m_scale);
    mouse = Vec2(0.5f, 0.5f);
    const Vec2 ring = Gui(mouse);
    scale.OnDragBegin(input::DragEvent(ring, Vec2(0, 0), ring, LEFT));
    ASSERT_TRUE(scale.IsInUse());
    EXPECT_EQ(scale.GetCursorName(), "arrow_north-east");

    // About the opposite corner (-0.5, -0.5): the handle is (1, 1) from it.
    mouse = Vec2(1.0f, 0.75f);
    EXPECT_VEC_NEAR(scale.GetCurrentScaleFactor(), Vec2(1.5f, 1.25f), 1e-5f);
    held = {input::Shift};
    const float uniform = std::sqrt(1.5f * 1.25f);
    EXPECT_VEC_NEAR(scale.GetCurrentScaleFactor(), Vec2(uniform, uniform), 1e-5f);
    mouse = Vec2(-1.0f, 0.75f);
    EXPECT_VEC_NEAR(scale.GetCurrentScaleFactor(), Vec2(-std::sqrt(0.625f), std::sqrt(0.625f)), 1e-5f)
        << "a mirror keeps its sign";
    held = {input::Ctrl};
    mouse = Vec2(1.0f, -0.1f);
    EXPECT_VEC_NEAR(scale.GetCurrentScaleFactor(), Vec2(2.0f, 1.0f / 3.0f), 1e-5f) << "1.5 and 0.4 snap";
    mouse = Vec2(-0.5f, 0.5f);
    EXPECT_VEC_NEAR(scale.GetCurrentScaleFactor(), Vec2(1, 1), 1e-5f) << "a factor of 0 changes nothing";
    held.clear();
    EXPECT_TRUE(scale.Disband());
    EXPECT_EQ(UndoCount(), 0u) << "nothing was applied";

    // A side handle scales its own axis only, and Shift has no aspect to keep there.
    mouse = Vec2(0.5f, 0.0f);
    scale.OnDragBegin(input::DragEvent(Gui(mouse), Vec2(0, 0), Gui(mouse), LEFT));
    ASSERT_TRUE(scale.IsInUse());
    mouse = Vec2(1.5f, 3.0f);
    EXPECT_VEC_NEAR(scale.GetCurrentScaleFactor(), Vec2(2.0f, 1.0f), 1e-5f);
    held = {input::Shift};
    EXPECT_VEC_NEAR(scale.GetCurrentScaleFactor(), Vec2(1, 1), 1e-5f);
    EXPECT_TRUE(scale.Disband());
}

TEST_F(ManipulationToolsTest, ScaleDragPreviewsThenAppliesInOneUndoStep)
{
    const auto box = AddBox(Vec2(0, 0), 1.0f);
    scene->SetSelection(QLEX_NEW new app::Group(app::EntityPtr(box)));
    app::ScaleTool& scale = Tool<app::ScaleTool>(tools->m_scale);
    mouse = Vec2(0.5f, 0.5f);
    scale.OnDragBegin(input::DragEvent(Gui(mouse), Vec2(0, 0), Gui(mouse), LEFT));
    mouse = Vec2(1.5f, 1.5f);
    scale.Update(0.01f);
    EXPECT_TRUE(box->HasScaleTransform()) << "a preview while the drag runs";
    EXPECT_VEC_NEAR(SizeOf(box), Vec2(1, 1), 1e-5f) << "nothing changed yet";
    scale.OnDragEnd(input::DragEvent(Vec2(0, 0), Vec2(0, 0), Gui(mouse), LEFT));
    ASSERT_EQ(All<app::BoxEntity>().size(), 1u);
    const auto scaled = All<app::BoxEntity>().front();
    EXPECT_VEC_NEAR(SizeOf(scaled), Vec2(2, 2), 1e-4f);
    EXPECT_VEC_NEAR(PosOf(scaled), Vec2(0.5f, 0.5f), 1e-4f);
    EXPECT_FALSE(scaled->HasScaleTransform());
    EXPECT_TRUE(scene->GetSelection()->Contains(scaled)) << "the scaled box stays selected";
    EXPECT_EQ(UndoCount(), 1u);
    EXPECT_EQ(LastUndo(), "UndoScale");
    app::Undoer::GetInstancePtr()->Undo();
    EXPECT_VEC_NEAR(SizeOf(All<app::BoxEntity>().front()), Vec2(1, 1), 1e-5f);
}

TEST_F(ManipulationToolsTest, WithAltEachFrameAppliesAndEscapeKeepsItAsOneStep)
{
    const auto box = AddBox(Vec2(0, 0), 1.0f);
    scene->SetSelection(QLEX_NEW new app::Group(app::EntityPtr(box)));
    app::ScaleTool& scale = Tool<app::ScaleTool>(tools->m_scale);
    mouse = Vec2(0.5f, 0.5f);
    scale.OnDragBegin(input::DragEvent(Gui(mouse), Vec2(0, 0), Gui(mouse), LEFT));
    held = {input::Alt};
    for (const float x : {1.0f, 1.5f, 2.5f})
    {
        mouse = Vec2(x, x);
        scale.Update(0.01f);
        EXPECT_NEAR(SizeOf(All<app::BoxEntity>().front()).x, x + 0.5f, 1e-4f);
    }
    scale.OnKeyEvent(input::KeyEvent(SDLK_ESCAPE, 0, true, Vec2(0, 0)));
    EXPECT_FALSE(scale.IsInUse());
    EXPECT_NEAR(SizeOf(All<app::BoxEntity>().front()).x, 3.0f, 1e-4f) << "what Alt applied stays";
    EXPECT_EQ(UndoCount(), 1u);
    app::Undoer::GetInstancePtr()->Undo();
    EXPECT_NEAR(SizeOf(All<app::BoxEntity>().front()).x, 1.0f, 1e-4f);
}

TEST_F(ManipulationToolsTest, ScaleHandlesFollowTheHoveredGroupWhileNothingIsSelected)
{
    AddBox(Vec2(0, 0), 1.0f);
    AddBox(Vec2(5, 0), 1.0f);
    app::ScaleTool& scale = Tool<app::ScaleTool>(tools->m_scale);
    mouse = Vec2(0, 0);
    scale.Update(0.01f);
    ASSERT_TRUE(scale.GetGroup());
    EXPECT_VEC_NEAR(scale.GetGroup()->CalcFiniteAABB().GetCenter(), Vec2(0, 0), 1e-5f);
    mouse = Vec2(0.8f, 0.8f);
    scale.Update(0.01f);
    EXPECT_TRUE(scale.GetGroup()) << "near the box the handles stay";
    mouse = Vec2(2.5f, 0);
    scale.Update(0.01f);
    EXPECT_FALSE(scale.GetGroup()) << "far from it they go";
    mouse = Vec2(5, 0);
    scale.Update(0.01f);
    ASSERT_TRUE(scale.GetGroup());
    EXPECT_VEC_NEAR(scale.GetGroup()->CalcFiniteAABB().GetCenter(), Vec2(5, 0), 1e-5f);
}

// --- move, rotate, clone ----------------------------------------------------------------------------------

TEST_F(ManipulationToolsTest, MoveIsOneStepAndEscapeRestoresButReportsNothing)
{
    const auto box = AddBox(Vec2(0, 0), 1.0f);
    Run("Scene.addHinge {pos = [0.3, 0.3]; size = 0.1}");
    app::MoveTool& move = Tool<app::MoveTool>(tools->m_move);
    Drag(move, {Vec2(0, 0), Vec2(1, 0), Vec2(2, 1)});
    EXPECT_VEC_NEAR(PosOf(box), Vec2(2, 1), 1e-4f);
    EXPECT_VEC_NEAR(All<app::HingeEntity>().front()->GetMidpoint(), Vec2(2.3f, 1.3f), 1e-4f)
        << "the hinge that pins the box goes along";
    EXPECT_TRUE(scene->GetSelection()->Contains(box)) << "a press on an unselected entity selects it";
    EXPECT_EQ(UndoCount(), 1u);
    EXPECT_EQ(LastUndo(), "UndoMove");

    mouse = Vec2(2, 1);
    move.OnDragBegin(input::DragEvent(Gui(mouse), Vec2(0, 0), Gui(mouse), LEFT));
    move.OnDrag(input::DragEvent(Gui(mouse), Vec2(100, 0), Gui(mouse) + Vec2(100, 0), LEFT));
    const input::KeyEvent escape(SDLK_ESCAPE, 0, true, Vec2(0, 0));
    move.OnKeyEvent(escape);
    EXPECT_FALSE(escape.IsHandled()) << "Escape goes on, as if no move had run";
    EXPECT_FALSE(move.IsInUse());
    EXPECT_VEC_NEAR(All<app::BoxEntity>().front()->GetGeom()->GetPosition(), Vec2(2, 1), 1e-4f);
    EXPECT_EQ(UndoCount(), 1u);

    const input::DragEvent elsewhere(Gui(Vec2(0, 3)), Vec2(0, 0), Gui(Vec2(0, 3)), LEFT);
    move.OnDragBegin(elsewhere);
    EXPECT_FALSE(elsewhere.IsHandled()) << "nothing to move on empty space";
}

TEST_F(ManipulationToolsTest, RotationFollowsTheSweptAngleAndSnapsWithShift)
{
    const auto box = AddBox(Vec2(0, 0), 1.0f);
    app::RotateTool& rotate = Tool<app::RotateTool>(tools->m_rotate);
    std::vector<Vec2> arc;
    for (int i = 0; i <= 20; ++i)
        arc.push_back(Vec2(std::cos(i * 0.05f), std::sin(i * 0.05f)) * 0.45f);
    Drag(rotate, arc, RIGHT);
    // The first motion out of the press only starts the turn.
    EXPECT_NEAR(box->GetGeom()->GetAngle(), 0.95f, 1e-3f);
    EXPECT_VEC_NEAR(PosOf(box), Vec2(0, 0), 1e-4f);
    EXPECT_EQ(UndoCount(), 1u);
    EXPECT_EQ(LastUndo(), "UndoRotate");

    held = {input::Shift};
    std::vector<Vec2> more;
    for (int i = 0; i <= 20; ++i)
        more.push_back(Vec2(std::cos(1.0f + i * 0.02f), std::sin(1.0f + i * 0.02f)) * 0.45f);
    Drag(rotate, more, RIGHT);
    const float angle = All<app::BoxEntity>().front()->GetGeom()->GetAngle();
    const float steps = angle / app::RotateTool::SNAP_STEP;
    EXPECT_NEAR(steps, std::round(steps), 1e-3f) << "a whole number of 15 degree steps: " << angle;
    EXPECT_NEAR(angle, 5 * app::RotateTool::SNAP_STEP, 1e-3f);
}

TEST_F(ManipulationToolsTest, EscapeDuringARotationRestoresAndReportsIt)
{
    const auto box = AddBox(Vec2(0, 0), 1.0f);
    app::RotateTool& rotate = Tool<app::RotateTool>(tools->m_rotate);
    mouse = Vec2(0.45f, 0);
    rotate.OnDragBegin(input::DragEvent(Gui(mouse), Vec2(0, 0), Gui(mouse), RIGHT));
    ASSERT_TRUE(rotate.IsInUse());
    for (const Vec2 p : {Vec2(0.45f, 0.01f), Vec2(0.3f, 0.3f), Vec2(0.0f, 0.45f)})
    {
        const Vec2 delta = Gui(p) - Gui(mouse);
        mouse = p;
        rotate.OnDrag(input::DragEvent(Vec2(0, 0), delta, Gui(p), RIGHT));
    }
    ASSERT_GT(std::fabs(box->GetGeom()->GetAngle()), 0.5f);
    const input::KeyEvent escape(SDLK_ESCAPE, 0, true, Vec2(0, 0));
    rotate.OnKeyEvent(escape);
    EXPECT_TRUE(escape.IsHandled());
    EXPECT_NEAR(All<app::BoxEntity>().front()->GetGeom()->GetAngle(), 0.0f, 1e-5f);
    EXPECT_EQ(UndoCount(), 0u);
}

TEST_F(ManipulationToolsTest, CloneShowsAGhostThenDropsACopyInOneStep)
{
    const auto box = AddBox(Vec2(0, 0), 1.0f);
    app::CloneTool& clone = Tool<app::CloneTool>(tools->m_clone);
    const input::DragEvent withoutCtrl(Gui(Vec2(0, 0)), Vec2(0, 0), Gui(Vec2(0, 0)), LEFT);
    clone.OnDragBegin(withoutCtrl);
    EXPECT_FALSE(withoutCtrl.IsHandled());

    held = {input::Ctrl};
    mouse = Vec2(0, 0);
    clone.OnDragBegin(input::DragEvent(Gui(mouse), Vec2(0, 0), Gui(mouse), LEFT));
    clone.OnDrag(input::DragEvent(Gui(mouse), Gui(Vec2(2, 1)) - Gui(mouse), Gui(Vec2(2, 1)), LEFT));
    ASSERT_TRUE(box->m_cloneOffset);
    EXPECT_VEC_NEAR(*box->m_cloneOffset, Vec2(2, 1), 1e-4f);
    EXPECT_EQ(scene->GetEntities().size(), 1u) << "only a ghost so far";
    held.clear();
    clone.OnDragEnd(input::DragEvent(Gui(Vec2(0, 0)), Vec2(0, 0), Gui(Vec2(2, 1)), LEFT));
    ASSERT_EQ(All<app::BoxEntity>().size(), 2u);
    EXPECT_FALSE(box->m_cloneOffset);
    EXPECT_VEC_NEAR(PosOf(box), Vec2(0, 0), 1e-5f);
    const auto copy = All<app::BoxEntity>()[0] == box ? All<app::BoxEntity>()[1] : All<app::BoxEntity>()[0];
    EXPECT_VEC_NEAR(PosOf(copy), Vec2(2, 1), 1e-4f);
    EXPECT_TRUE(scene->GetSelection()->Contains(copy) && !scene->GetSelection()->Contains(box))
        << "with Ctrl up, the copy is the selection";
    EXPECT_EQ(UndoCount(), 1u);
    EXPECT_EQ(LastUndo(), "UndoClone");
}

// --- drag -----------------------------------------------------------------------------------------------

TEST_F(ManipulationToolsTest, DraggedBodyFollowsTheMouseAndOnlyAMovedDragIsAStep)
{
    const auto box = AddBox(Vec2(0, 0), 0.5f);
    Run("Sim.gravitySwitch = false");
    physics::Simulation::GetInstancePtr()->m_running = true;
    app::DragTool& drag = Tool<app::DragTool>(tools->m_drag);

    const input::DragEvent onBackground(Gui(Vec2(0, 3)), Vec2(0, 0), Gui(Vec2(0, 3)), LEFT);
    drag.OnDragBegin(onBackground);
    EXPECT_FALSE(onBackground.IsHandled()) << "the background can't be pulled";

    mouse = Vec2(0.1f, 0.1f);
    drag.OnDragBegin(input::DragEvent(Gui(mouse), Vec2(0, 0), Gui(mouse), LEFT));
    ASSERT_TRUE(drag.GetHinge());
    drag.OnDragEnd(input::DragEvent(Gui(mouse), Vec2(0, 0), Gui(mouse), LEFT));
    EXPECT_FALSE(drag.GetHinge());
    EXPECT_EQ(UndoCount(), 0u) << "a press without motion";

    drag.OnDragBegin(input::DragEvent(Gui(mouse), Vec2(0, 0), Gui(mouse), LEFT));
    mouse = Vec2(2.1f, 1.1f);
    drag.OnDrag(input::DragEvent(Gui(Vec2(0.1f, 0.1f)), Vec2(1, 0), Gui(mouse), LEFT));
    for (int i = 0; i < 300; ++i)
    {
        drag.Update(0.01f);
        Step(1);
    }
    math::Vec2 ends[2];
    drag.GetHinge()->GetWorldPoints(ends);
    EXPECT_VEC_NEAR(ends[0], mouse, 1e-5f) << "the pin's mouse end is at the mouse";
    EXPECT_VEC_NEAR(ends[1], mouse, 0.05f) << "the grabbed point came to it";
    drag.OnDragEnd(input::DragEvent(Gui(Vec2(0.1f, 0.1f)), Vec2(0, 0), Gui(mouse), LEFT));
    EXPECT_VEC_NEAR(PosOf(box), mouse, 0.15f) << "the box hangs on the point that was grabbed";
    EXPECT_EQ(UndoCount(), 1u);
    EXPECT_EQ(LastUndo(), "UndoDrag");

    // A body erased under the pin takes the pin with it at the next frame.
    drag.OnDragBegin(input::DragEvent(Gui(mouse), Vec2(0, 0), Gui(mouse), LEFT));
    ASSERT_TRUE(drag.GetHinge());
    scene->RemoveEntity(box);
    drag.Update(0.01f);
    EXPECT_FALSE(drag.GetHinge());
    EXPECT_FALSE(drag.IsInUse());
    Step(10);
}

// --- joints ---------------------------------------------------------------------------------------------

TEST_F(ManipulationToolsTest, ClickToolsJoinOnlyWhatIsClickedOnce)
{
    AddBox(Vec2(0, 0), 1.0f);
    const auto click = [this](app::Tools::ToolPtr tool, Vec2 p, int count)
    {
        const input::ClickEvent event(Gui(p), LEFT, count);
        tool->OnClick(event);
        return event.IsHandled();
    };
    EXPECT_FALSE(click(tools->m_hinge, Vec2(0, 3), 1)) << "nothing to join on empty space";
    EXPECT_FALSE(click(tools->m_hinge, Vec2(0.2f, 0.1f), 2)) << "the second click of a double click";
    EXPECT_EQ(scene->GetEntities().size(), 1u);
    EXPECT_EQ(UndoCount(), 0u);

    EXPECT_TRUE(click(tools->m_hinge, Vec2(0.2f, 0.1f), 1));
    ASSERT_EQ(All<app::HingeEntity>().size(), 1u);
    EXPECT_VEC_NEAR(All<app::HingeEntity>().front()->GetMidpoint(), Vec2(0.2f, 0.1f), 1e-5f);
    EXPECT_EQ(LastUndo(), "UndoHinge");
    EXPECT_TRUE(click(tools->m_pen, Vec2(-0.2f, 0.1f), 1));
    ASSERT_EQ(All<app::PenEntity>().size(), 1u);
    EXPECT_VEC_NEAR(All<app::PenEntity>().front()->GetPos(), Vec2(-0.2f, 0.1f), 1e-5f);
    EXPECT_EQ(LastUndo(), "UndoPen");
    EXPECT_TRUE(click(tools->m_fixJoint, Vec2(0.0f, -0.3f), 1));
    EXPECT_EQ(LastUndo(), "UndoFixate");
    EXPECT_EQ(scene->GetEntities().size(), 4u);
    EXPECT_EQ(UndoCount(), 3u);
}

TEST_F(ManipulationToolsTest, SpringIsDrawnAtRestAndJoinsTheSceneOnlyBetweenTwoGeoms)
{
    AddBox(Vec2(-1.5f, 0), 1.0f);
    AddBox(Vec2(1.5f, 0), 1.0f);
    app::SpringTool& spring = Tool<app::SpringTool>(tools->m_spring);

    mouse = Vec2(-1.5f, 0.2f);
    spring.OnDragBegin(input::DragEvent(Gui(mouse), Vec2(0, 0), Gui(mouse), LEFT));
    const util::SharedPtr<app::SpringEntity> drawn = spring.GetSpring();
    ASSERT_TRUE(drawn);
    mouse = Vec2(0.0f, 0.2f);
    spring.Update(0.01f);
    EXPECT_NEAR(drawn->GetTargetLength(), 1.5f, 1e-4f) << "at rest at the length it is drawn";
    EXPECT_TRUE(drawn->LengthAttrib()->IsDefaultValue()) << "which is its default too";
    EXPECT_TRUE(drawn->IsAlive()) << "working while it is drawn";
    EXPECT_FALSE(scene->HasEntity(drawn));
    mouse = Vec2(-1.5f, -0.2f);
    spring.OnDragEnd(input::DragEvent(Vec2(0, 0), Vec2(0, 0), Gui(mouse), LEFT));
    EXPECT_FALSE(spring.GetSpring());
    EXPECT_FALSE(drawn->IsAlive()) << "a spring back to its own box is taken out of the simulation";
    EXPECT_TRUE(All<app::SpringEntity>().empty());
    EXPECT_EQ(UndoCount(), 0u);

    Drag(spring, {Vec2(-1.5f, 0), Vec2(0, 0.5f), Vec2(1.5f, 0)});
    ASSERT_EQ(All<app::SpringEntity>().size(), 1u);
    const auto made = All<app::SpringEntity>().front();
    EXPECT_NEAR(made->GetTargetLength(), 3.0f, 1e-3f);
    EXPECT_NE(made->m_geoms[0], made->m_geoms[1]);
    EXPECT_EQ(UndoCount(), 1u);
    EXPECT_EQ(LastUndo(), "UndoSpring");
}

} // namespace
