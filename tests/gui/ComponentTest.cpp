#include "GuiTestSupport.h"

#include "gui/LookAndFeel.h"
#include "gui/components/Draggable.h"
#include "gui/components/ListLayout.h"
#include "gui/components/TextBox.h"
#include "gui/components/WobbleComponent.h"
#include "input/Key.h"

#include <gtest/gtest.h>

using namespace gui;
using namespace gui::test;

namespace
{

class Counter : public util::Pointee
{
public:
    void Count() { ++count; }
    int count = 0;
};

void ExpectVec(const math::Vec2& actual, float x, float y, float tolerance = 1e-4f)
{
    EXPECT_NEAR(actual.x, x, tolerance);
    EXPECT_NEAR(actual.y, y, tolerance);
}

} // namespace

TEST(Component, SettersRunFormChangeCallbacksOnlyForANewValue)
{
    auto c = Box(10, 10);
    util::SharedPtr<Counter> counter = QLEX_NEW new Counter();
    c->AddFormChangeCallback(util::MakeCallback(&Counter::Count, counter.get()));
    c->SetInnerSize(10, 10);
    c->SetOuterPos(math::Vec2(0, 0));
    c->SetMaxSize(math::Vec2(math::INF, math::INF));
    EXPECT_EQ(counter->count, 0);
    c->SetOuterPos(math::Vec2(1, 0));
    c->SetInnerSize(10, 11);
    EXPECT_EQ(counter->count, 2);
    // A maximum clips the inner size at once.
    c->SetMaxSize(math::Vec2(5, math::INF));
    ExpectVec(c->GetInnerSize(), 5, 11);
    EXPECT_EQ(counter->count, 3);
    // The outer size is the inner size plus the border.
    c->SetMaxSize(math::Vec2(math::INF, math::INF));
    c->SetBorder(LookAndFeel::GetDefault()->GetWindowBorder());
    c->SetOuterSize(math::Vec2(20, 20));
    ExpectVec(c->GetInnerSize(), 18, 18);
    ExpectVec(c->GetInnerPos(), 2, 1);
}

TEST(Component, WithoutLayoutChildrenStayWhereTheyArePut)
{
    auto owner = Box(100, 100);
    auto child = Box(10, 10);
    child->SetOuterPos(math::Vec2(30, 40));
    owner->AddComponent(child);
    owner->Reorganize();
    ExpectVec(child->GetOuterPos(), 30, 40);
    ExpectVec(owner->GetInnerSize(), 100, 100);
}

TEST(Component, ChildAddedToASecondOwnerLeavesTheFirst)
{
    auto first = Box(10, 10);
    auto second = Box(10, 10);
    auto child = Box(1, 1);
    first->AddComponent(child);
    second->AddComponent(child);
    EXPECT_FALSE(first->HasComponent(child));
    EXPECT_EQ(first->GetListenerCount(), 0u);
    EXPECT_TRUE(second->HasComponent(child));
    EXPECT_EQ(child->GetOwner(), second.get());

    // Removing a stranger only takes it out of the listeners.
    first->AddListener(child);
    first->RemoveComponent(child);
    EXPECT_EQ(first->GetListenerCount(), 0u);
    EXPECT_EQ(child->GetOwner(), second.get());
}

TEST(Component, ChildrenWithoutLayoutAreOrderedByPriorityAndKeepTheirOrderOtherwise)
{
    auto owner = Box(10, 10);
    auto high = Box(1, 1);
    high->SetPriority(60);
    auto low = Box(1, 1);
    owner->AddComponent(high);
    owner->AddComponent(low);
    EXPECT_EQ(owner->GetChildren().front(), low);
    low->SetPriority(70);
    EXPECT_EQ(owner->GetChildren().front(), high);

    util::SharedPtr<Component> list =
        QLEX_NEW new Component(QLEX_NEW new ListLayout(ListLayout::Vertical, 0.0f));
    auto top = Box(1, 1);
    top->SetPriority(60);
    list->AddComponent(top);
    list->AddComponent(Box(1, 1));
    EXPECT_EQ(list->GetChildren().front(), top);
}

TEST(Component, FillOwnerTakesTheOwnersInnerSize)
{
    auto owner = Box(100, 50);
    owner->SetBorder(LookAndFeel::GetDefault()->GetWindowBorder());
    auto filler = Box(1, 1);
    filler->SetBorder(LookAndFeel::GetDefault()->GetWindowBorder());
    filler->SetOuterPos(math::Vec2(5, 5));
    filler->SetFillOwner(true);
    owner->AddComponent(filler);
    ExpectVec(filler->GetInnerSize(), 100, 50);
    ExpectVec(filler->GetOuterPos(), 0, 0);
    EXPECT_EQ(filler->GetBorder(), LookAndFeel::GetDefault()->GetEmptyBorder());
    owner->SetInnerSize(80, 40);
    ExpectVec(filler->GetInnerSize(), 80, 40);
}

TEST(Component, LocalCoordinatesFollowTheChainOfInnerPositions)
{
    auto outer = Box(100, 100);
    outer->SetOuterPos(math::Vec2(10, 20));
    outer->SetBorder(LookAndFeel::GetDefault()->GetDefaultBorder());
    auto inner = Box(50, 50);
    inner->SetOuterPos(math::Vec2(5, 5));
    inner->SetBorder(LookAndFeel::GetDefault()->GetDefaultBorder());
    outer->AddComponent(inner);
    // inner's origin in GUI units: 10 + 1 + 5 + 1.
    ExpectVec(inner->GUIToLocal(math::Vec2(17, 27)), 0, 0);
    ExpectVec(inner->LocalToGUI(math::Vec2(3, 4)), 20, 31);
    // The outer rectangle starts at minus the border.
    const math::BoundingBox2f bb = inner->GetOuterBBLocal();
    ExpectVec(bb.GetMin(), -1, -1);
    ExpectVec(bb.GetMax(), 51, 51);
}

TEST(Component, ForwardEventToleratesChildrenRemovedOnTheWay)
{
    auto owner = Box(10, 10);
    auto a = Box(1, 1), b = Box(1, 1), c = Box(1, 1);
    for (auto& child : {a, b, c})
        owner->AddComponent(child);
    std::vector<Component*> visited;
    owner->ForwardEvent(
        [&](Component& child)
        {
            visited.push_back(&child);
            if (&child == c.get())
                owner->RemoveAllComponents();
        });
    EXPECT_EQ(visited, std::vector<Component*>({c.get()}));
}

TEST_F(GuiFixture, ScaleDividesPixelsIntoGUIUnits)
{
    m_gui->SetScale(2.0f);
    m_gui->OnNewWindowSize(1024, 768);
    ExpectVec(m_gui->GetSize(), 512, 384);
    ExpectVec(m_gui->GetRootComponent()->GetInnerSize(), 512, 384);
    ExpectVec(m_main->GetInnerSize(), 512, 384);
    MoveMouseTo(100, 100);
    ExpectVec(input::Input::GetInstancePtr()->GetMousePos(), 50, 50);
}

TEST_F(GuiFixture, OnlyTheTopmostOfOverlappingSiblingsHasTheMouse)
{
    auto under = Box(100, 100);
    auto over = Box(100, 100);
    over->SetOuterPos(math::Vec2(50, 50));
    m_main->AddComponent(under);
    m_main->AddComponent(over);
    MoveMouseTo(75, 75);
    EXPECT_TRUE(over->IsMouseOverOuter());
    EXPECT_FALSE(under->IsMouseOverOuter());
    EXPECT_TRUE(m_main->IsMouseOverOuter()); // the owner holds it together with its child

    under->SetPriority(60);
    m_gui->Update(0.0f);
    EXPECT_TRUE(under->IsMouseOverOuter());
    EXPECT_FALSE(over->IsMouseOverOuter());

    // A child that sticks out of its owner is tested by its own rectangle.
    auto small = Box(10, 10);
    auto sticking = Box(20, 20);
    sticking->SetOuterPos(math::Vec2(15, 0));
    small->SetOuterPos(math::Vec2(300, 0));
    small->AddComponent(sticking);
    m_main->AddComponent(small);
    MoveMouseTo(320, 5);
    EXPECT_TRUE(sticking->IsMouseOverOuter());
    EXPECT_FALSE(small->IsMouseOverOuter());
}

TEST_F(GuiFixture, PanelOpenedAboveTakesTheMouseAtTheNextFrameWithoutMotion)
{
    auto below = Box(100, 100);
    m_main->AddComponent(below);
    MoveMouseTo(20, 20);
    EXPECT_TRUE(below->IsMouseOverOuter());
    auto panel = Box(50, 50);
    m_main->AddComponent(panel);
    m_gui->Update(0.016f);
    EXPECT_FALSE(below->IsMouseOverOuter());
    EXPECT_TRUE(panel->IsMouseOverOuter());
}

TEST_F(GuiFixture, ClickReachesOnlyTheComponentUnderTheMouse)
{
    util::SharedPtr<ClickTarget> left = QLEX_NEW new ClickTarget("left");
    util::SharedPtr<ClickTarget> right = QLEX_NEW new ClickTarget("right");
    util::SharedPtr<ClickTarget> cover = QLEX_NEW new ClickTarget("cover");
    left->SetInnerSize(50, 50);
    right->SetInnerSize(50, 50);
    right->SetOuterPos(math::Vec2(100, 0));
    cover->SetInnerSize(20, 20);
    cover->SetOuterPos(math::Vec2(110, 10));
    m_main->AddComponent(left);
    m_main->AddComponent(right);
    m_main->AddComponent(cover);
    MoveMouseTo(130, 40);
    ClickAt(130, 40);
    MoveMouseTo(120, 20);
    m_clock.now += 1.0;
    ClickAt(120, 20);
    EXPECT_TRUE(left->clicks.empty());
    ASSERT_EQ(right->clicks.size(), 1u);
    ExpectVec(right->clicks[0], 130, 40);
    ASSERT_EQ(cover->clicks.size(), 1u);
    ExpectVec(cover->clicks[0], 120, 20);
}

TEST_F(GuiFixture, DraggableTakesALeftDragThatBeginsOverIt)
{
    util::SharedPtr<Draggable> handle = QLEX_NEW new Draggable();
    handle->SetInnerSize(30, 30);
    handle->SetOuterPos(math::Vec2(10, 10));
    m_main->AddComponent(handle);
    MoveMouseTo(20, 20);
    input::DragEvent begin(math::Vec2(20, 20), math::Vec2(0, 0), math::Vec2(20, 20),
                           static_cast<SDLKey>(input::Key::MOUSE_LEFT));
    input::Input::GetInstancePtr()->OnDragBegin(begin);
    EXPECT_TRUE(handle->IsDragging());
    EXPECT_TRUE(begin.IsHandled());
    input::Input::GetInstancePtr()->OnDragEnd(begin);
    EXPECT_FALSE(handle->IsDragging());

    input::DragEvent right(math::Vec2(20, 20), math::Vec2(0, 0), math::Vec2(20, 20),
                           static_cast<SDLKey>(input::Key::MOUSE_RIGHT));
    input::Input::GetInstancePtr()->OnDragBegin(right);
    EXPECT_FALSE(handle->IsDragging());
}

TEST_F(GuiFixture, TooltipShowsAfterTheMouseRestsAndFadesAfterItLeaves)
{
    auto target = Box(50, 50);
    target->SetTooltipText("Help text");
    m_main->AddComponent(target);
    const auto layer = m_gui->GetTooltipLayer();
    const auto tooltip = target->GetTooltip();

    m_clock.now = 200.0;
    MoveMouseTo(10, 10);
    m_clock.now = 200.39;
    m_gui->Update(0.0f);
    EXPECT_FALSE(layer->HasComponent(tooltip));

    m_clock.now = 200.5;
    m_gui->Update(0.0f);
    ASSERT_TRUE(layer->HasComponent(tooltip));
    ExpectVec(tooltip->GetOuterPos(), 18, 22);
    EXPECT_NEAR(tooltip->GetColor().w, 0.5f, 1e-4f);
    m_clock.now = 200.61;
    m_gui->Update(0.0f);
    EXPECT_FLOAT_EQ(tooltip->GetColor().w, 1.0f);
    // The tooltip layer stands above the application, and the tooltip does not take the mouse from the
    // component: it stands beside the cursor.
    EXPECT_TRUE(target->IsMouseOverOuter());

    m_clock.now = 201.0;
    MoveMouseTo(300, 200);
    m_clock.now = 201.1;
    m_gui->Update(0.0f);
    EXPECT_NEAR(tooltip->GetColor().w, 0.5f, 1e-4f);
    m_clock.now = 201.21;
    m_gui->Update(0.0f);
    EXPECT_FALSE(layer->HasComponent(tooltip));
}

TEST(WobbleComponent, SwingsOpenFromItsTopEdgeAsTheIntegrationGives)
{
    util::SharedPtr<WobbleComponent> panel = QLEX_NEW new WobbleComponent();
    panel->SetInnerSize(100, 50);
    panel->SetOuterPos(math::Vec2(10, 20));
    // Folded up onto its top edge at first.
    ExpectVec(panel->GetWobblePoint(), 10, -30);

    // One step of 0.05 s: a = 300 * 50 = 15000, v = 750, y = -30 + 37.5.
    panel->Update(0.05f);
    ExpectVec(panel->GetWobblePoint(), 10, 7.5f);
    ExpectVec(panel->GetWobbleVelocity(), 0, 750);
    EXPECT_NEAR(panel->GetMatrix()(1, 1), 0.75f, 1e-5f);
    EXPECT_NEAR(panel->GetMatrix()(0, 1), 0.0f, 1e-6f);

    // 0.12 s is three steps of 0.04 s:
    //   a = 300 * 12.5 - 20 * 750 = -11250, v = 300,    y = 19.5
    //   a = 300 * 0.5 - 20 * 300 = -5850,   v = 66,     y = 22.14
    //   a = 300 * -2.14 - 20 * 66 = -1962,  v = -12.48, y = 21.6408
    panel->Update(0.12f);
    ExpectVec(panel->GetWobblePoint(), 10, 21.6408f, 1e-3f);
    ExpectVec(panel->GetWobbleVelocity(), 0, -12.48f, 1e-3f);
    EXPECT_NEAR(panel->GetMatrix()(1, 1), 1.0f + 1.6408f / 50.0f, 1e-4f);

    // A sideways move shears: the far edge lags behind, and a frame of 0 is one step of 0.
    panel->SetOuterPos(math::Vec2(30, 20));
    panel->Update(0.0f);
    ExpectVec(panel->GetWobblePoint(), 10, 21.6408f, 1e-3f);
    EXPECT_NEAR(panel->GetMatrix()(0, 1), -20.0f / 50.0f, 1e-5f);
    EXPECT_NEAR(panel->GetMatrix()(1, 1), 1.0f + 1.6408f / 50.0f, 1e-4f);
    // Positions and mouse tests use the plain rectangle.
    ExpectVec(panel->GetOuterBB().GetMin(), 30, 20);
}

TEST(WobbleComponent, APanelWithoutExtentStaysUnsheared)
{
    for (bool horizontal : {false, true})
    {
        util::SharedPtr<WobbleComponent> panel = QLEX_NEW new WobbleComponent();
        panel->SetHorizontal(horizontal);
        panel->SetOuterPos(math::Vec2(10, 20));
        panel->SetOuterPos(math::Vec2(40, 20));
        panel->Update(0.05f);
        for (int row = 0; row < 4; ++row)
            for (int column = 0; column < 4; ++column)
                EXPECT_EQ(panel->GetMatrix()(row, column), row == column ? 1.0f : 0.0f) << horizontal;
    }
}

TEST(WobbleComponent, OffFollowsAtOnce)
{
    util::SharedPtr<WobbleComponent> panel = QLEX_NEW new WobbleComponent();
    panel->SetInnerSize(40, 40);
    panel->SetWobble(false);
    panel->SetOuterPos(math::Vec2(5, 5));
    panel->Update(0.1f);
    ExpectVec(panel->GetWobblePoint(), 5, 5);
    ExpectVec(panel->GetWobbleVelocity(), 0, 0);
}
