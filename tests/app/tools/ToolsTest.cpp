// The choice of the current tool by keys, and the sketch tool's strokes acting on a scene, driven by the
// events a window would deliver, without a window.
#include "ToolTestSupport.h"

#include "app/App.h"
#include "app/Camera.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/PolyEntity.h"
#include "app/tools/CircleTool.h"
#include "app/tools/PanTool.h"
#include "app/tools/SketchTool.h"
#include "app/tools/Tools.h"
#include "gui/GUI.h"
#include "input/Key.h"

#include <chrono>
#include <thread>

namespace
{
using math::Vec2;

input::KeyEvent Key(SDLKey key, bool pressed, bool ctrl = false)
{
    input::KeyEvent event(key, 0, pressed, Vec2(0, 0));
    event.ctrl = ctrl;
    event.alt = event.shift = false;
    return event;
}

void HoldLongerThanAClick()
{
    const double tolerance = gui::GUI::GetInstancePtr()->GetClickTimeTolerance();
    std::this_thread::sleep_for(std::chrono::milliseconds(int(tolerance * 1000) + 80));
}

class ToolsTest : public tooltest::ToolTest
{
protected:
    // The stroke through the world points, as the sketch tool gets it from a left drag.
    void Stroke(const std::vector<Vec2>& world) { Drag(*tools->m_sketch, world); }

    // A closed square stroke around the centre, with its corners and a point every tenth of a side.
    static std::vector<Vec2> Square(Vec2 center, float half)
    {
        const Vec2 corners[] = {Vec2(-half, -half), Vec2(half, -half), Vec2(half, half), Vec2(-half, half)};
        std::vector<Vec2> points;
        for (int side = 0; side < 4; ++side)
            for (int k = 0; k < 10; ++k)
                points.push_back(center + corners[side] +
                                 (corners[(side + 1) % 4] - corners[side]) * (k / 10.0f));
        points.push_back(center + corners[0] + Vec2(0.05f, 0));
        return points;
    }

    template <class T> std::vector<util::SharedPtr<T>> All() const
    {
        std::vector<util::SharedPtr<T>> found;
        for (const app::EntityPtr& entity : scene->GetEntities())
            if (const util::SharedPtr<T> t = util::dynamic_pointer_cast<T>(entity))
                found.push_back(t);
        return found;
    }
};
} // namespace

TEST_F(ToolsTest, ATapOfAToolKeySelectsTheToolForGood)
{
    const input::KeyEvent press = Key(SDLK_c, true);
    tools->OnKeyEvent(press);
    EXPECT_TRUE(press.IsHandled());
    EXPECT_EQ(tools->GetTool(), app::Tools::ToolPtr(tools->m_circle)) << "while the key is down";
    tools->OnKeyEvent(Key(SDLK_c, false));
    EXPECT_EQ(tools->GetSelected(), app::Tools::ToolPtr(tools->m_circle));
    EXPECT_EQ(tools->GetTool(), app::Tools::ToolPtr(tools->m_circle));
    tools->OnKeyEvent(Key(SDLK_k, true));
    tools->OnKeyEvent(Key(SDLK_k, false));
    EXPECT_EQ(tools->GetTool(), app::Tools::ToolPtr(tools->m_sketch));
}

TEST_F(ToolsTest, AToolKeyHeldSwitchesOnlyWhileItIsDownAndOverridesTheGesturesTool)
{
    tools->SetActive(tools->m_move);
    tools->OnKeyEvent(Key(SDLK_c, true));
    EXPECT_EQ(tools->GetTool(), app::Tools::ToolPtr(tools->m_circle));
    HoldLongerThanAClick();
    const input::KeyEvent release = Key(SDLK_c, false);
    tools->OnKeyEvent(release);
    EXPECT_TRUE(release.IsHandled());
    EXPECT_EQ(tools->GetSelected(), app::Tools::ToolPtr(tools->m_sketch));
    EXPECT_EQ(tools->GetTool(), tools->m_move) << "back to the gesture's tool";
}

TEST_F(ToolsTest, TheCurrentToolsKeyAndKeysWithCtrlAreLeftToOthers)
{
    const input::KeyEvent own = Key(SDLK_k, true);
    tools->OnKeyEvent(own);
    EXPECT_FALSE(own.IsHandled());
    const input::KeyEvent withCtrl = Key(SDLK_c, true, true);
    tools->OnKeyEvent(withCtrl);
    EXPECT_FALSE(withCtrl.IsHandled());
    EXPECT_EQ(tools->GetTool(), app::Tools::ToolPtr(tools->m_sketch));
    const input::KeyEvent none = Key(SDLK_z, true);
    tools->OnKeyEvent(none);
    EXPECT_FALSE(none.IsHandled());
    EXPECT_EQ(tools->KeyFromTool(tools->m_hinge), SDLK_h);
    EXPECT_EQ(tools->ToolFromKey(SDLK_r), tools->m_scale);
    EXPECT_EQ(tools->KeyFromTool(tools->m_move), SDLK_UNKNOWN);
}

TEST_F(ToolsTest, EscapeAbandonsTheStrokeAndTheRememberedLine)
{
    app::SketchTool& sketch = *tools->m_sketch;
    Stroke({Vec2(-1, 2), Vec2(1, 2)});
    EXPECT_EQ(sketch.GetLastLine().Size(), 2u) << "a straight line through nothing is remembered";
    const SDLKey left = static_cast<SDLKey>(input::Key::MOUSE_LEFT);
    sketch.OnDragBegin(input::DragEvent(Vec2(10, 10), Vec2(0, 0), Vec2(10, 10), left));
    EXPECT_TRUE(sketch.IsInUse());
    const input::KeyEvent escape = Key(SDLK_ESCAPE, true);
    sketch.OnKeyEvent(escape);
    EXPECT_TRUE(escape.IsHandled());
    EXPECT_FALSE(sketch.IsInUse());
    EXPECT_TRUE(sketch.GetLastLine().IsEmpty());
    const input::KeyEvent again = Key(SDLK_ESCAPE, true);
    sketch.OnKeyEvent(again);
    EXPECT_FALSE(again.IsHandled()) << "no gesture left to abandon";
}

TEST_F(ToolsTest, AHingeOnTheBackgroundInsideANewPolygonHoldsThePolygon)
{
    // The hinge pins the edge of a box to the background; the stroke takes in the hinge, not the box.
    Run("Scene.addBox {pos = [1.0, 0.0]; size = [1.0, 1.0]}; Scene.addHinge {pos = [0.55, 0.0]; size = 0.1}");
    ASSERT_EQ(All<app::HingeEntity>().size(), 1u);
    const physics::Geom* world = physics::Simulation::GetInstancePtr()->GetWorldGeom().get();
    ASSERT_EQ(All<app::HingeEntity>().front()->m_geoms[1].get(), world);
    Stroke(Square(Vec2(0.2f, 0), 0.6f));
    const auto polygons = All<app::PolyEntity>();
    ASSERT_EQ(polygons.size(), 1u) << "a joint on the background is no content of a lasso";
    const auto hinge = All<app::HingeEntity>().front();
    EXPECT_EQ(hinge->m_geoms[1], polygons[0]->GetGeom());
    EXPECT_NE(hinge->m_geoms[0].get(), world);
    EXPECT_EQ(scene->GetEntities().back(), app::EntityPtr(hinge)) << "the hinge stays on top";
    EXPECT_TRUE(scene->GetSelection()->IsEmpty());
}

TEST_F(ToolsTest, AClosedStrokeAroundABoxAndAHingeSelectsBoth)
{
    Run("Scene.addBox {pos = [0.0, 0.0]; size = [0.5, 0.5]}; Scene.addHinge {pos = [0.0, 0.0]; size = 0.1}");
    ASSERT_EQ(scene->GetEntities().size(), 2u);
    Stroke(Square(Vec2(0, 0), 0.6f));
    EXPECT_TRUE(All<app::PolyEntity>().empty());
    EXPECT_EQ(scene->GetSelection()->Size(), 2u);
}

TEST_F(ToolsTest, WithFreeDrawingAClosedStrokeAroundBoxesMakesAPolygonOverThem)
{
    app::AppSettings::GetInstancePtr()->m_freeDrawing = true;
    Run("Scene.addBox {pos = [0.2, 0.0]; size = [0.3, 0.3]}; Scene.addBox {pos = [-0.2, 0.0]; size = [0.3, "
        "0.3]}");
    Stroke(Square(Vec2(0, 0), 0.6f));
    EXPECT_EQ(All<app::PolyEntity>().size(), 1u);
    EXPECT_TRUE(scene->GetSelection()->IsEmpty());
    EXPECT_EQ(app::Undoer::GetInstancePtr()->GetNextUndo()->GetKey(), std::string("UndoPolygon"));
}

TEST_F(ToolsTest, StrikingThroughOneSelectedEntityErasesTheSelectionInOneStep)
{
    for (int i = 0; i < 10; ++i)
        Run("Scene.addBox {pos = [" + std::to_string(i * 0.5f) + ", 3.0]; size = [0.3, 0.3]}");
    Run("Scene.addBox {pos = [0.0, -3.0]; size = [0.3, 0.3]}");
    for (size_t i = 0; i < 10; ++i)
        scene->GetSelection()->Add(scene->GetEntities()[i]);
    const size_t steps = app::Undoer::GetInstancePtr()->GetUndoCount();
    Stroke({Vec2(0.5f, 2.5f), Vec2(0.5f, 3.5f)});
    ASSERT_EQ(scene->GetEntities().size(), 1u);
    EXPECT_EQ(app::Undoer::GetInstancePtr()->GetUndoCount(), steps + 1);
    app::Undoer::GetInstancePtr()->Undo();
    EXPECT_EQ(scene->GetEntities().size(), 11u);
}

TEST_F(ToolsTest, TwoLinesThatCrossTwiceAreNoFixate)
{
    Stroke({Vec2(-2, 0), Vec2(2, 0)});
    // Within 15% of its chord, this one crosses the first line twice.
    Stroke({Vec2(-2, 0.2f), Vec2(-0.5f, -0.2f), Vec2(0.5f, -0.2f), Vec2(2, 0.2f)});
    EXPECT_TRUE(scene->GetEntities().empty());
    EXPECT_EQ(tools->m_sketch->GetLastLine().Size(), 4u) << "the second is remembered in turn";
}

TEST_F(ToolsTest, WithAutoGlueANewPolygonIsGluedToTheBackground)
{
    app::AppSettings& settings = *app::AppSettings::GetInstancePtr();
    settings.m_autoGlue = true;
    Stroke(Square(Vec2(0, 3), 0.5f));
    settings.m_autoGlue = false;
    const auto polygons = All<app::PolyEntity>();
    ASSERT_EQ(polygons.size(), 1u);
    EXPECT_EQ(polygons[0]->GetGeom()->GetBody(), physics::Simulation::GetInstancePtr()->GetWorldBody().get());
    Stroke(Square(Vec2(3, 3), 0.5f));
    ASSERT_EQ(All<app::PolyEntity>().size(), 2u);
    EXPECT_NE(All<app::PolyEntity>()[1]->GetGeom()->GetBody(),
              physics::Simulation::GetInstancePtr()->GetWorldBody().get());
}
