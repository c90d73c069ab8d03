#include "WorldTest.h"

#include "physics/Box.h"
#include "physics/Circle.h"
#include "util/Callback.h"

#include <cmath>
#include <limits>

namespace physics
{
namespace
{
// A clock that advances only when told, so that Update's budget decisions are exact.
struct FakeClock
{
    double now = 100.0;
    // Real seconds each step appears to take.
    double stepCost = 0.0;
};

class StepCounter : public util::Pointee
{
public:
    void OnStep(float dt)
    {
        ++steps;
        lastDt = dt;
        if (clock)
            clock->now += clock->stepCost;
    }

    int steps = 0;
    float lastDt = -1.0f;
    FakeClock* clock = nullptr;
};

class SimulationUpdateTest : public WorldTest
{
protected:
    void SetUp() override
    {
        WorldTest::SetUp();
        m_counter = QLEX_NEW new StepCounter();
        m_counter->clock = &m_clock;
        Sim().AddStepCallback(util::MakeCallbackArg<float>(&StepCounter::OnStep, m_counter.get()));
        Sim().SetClock([this] { return m_clock.now; });
    }

    int Frame(double dt)
    {
        const int before = m_counter->steps;
        Sim().Update(dt);
        m_clock.now += dt;
        return m_counter->steps - before;
    }

    FakeClock m_clock;
    util::SharedPtr<StepCounter> m_counter;
};
} // namespace

TEST_F(SimulationUpdateTest, Update_FramesOf16msTakeOneOrTwoStepsAndKeepRealTime)
{
    int total = 0;
    bool sawOne = false;
    bool sawTwo = false;
    for (int frame = 0; frame < 100; ++frame)
    {
        const int steps = Frame(0.016);
        EXPECT_TRUE(steps == 1 || steps == 2) << "frame " << frame << " took " << steps;
        sawOne |= steps == 1;
        sawTwo |= steps == 2;
        total += steps;
        EXPECT_LE(Sim().GetTimeDebt(), 0.0);
        EXPECT_GT(Sim().GetTimeDebt(), -0.01 - 1e-9);
        EXPECT_NE(Sim().GetStatistics().find("100% realtime.\n"), std::string::npos);
    }
    EXPECT_TRUE(sawOne && sawTwo);
    // 1.6 s of real time in steps of 0.01 s.
    EXPECT_NEAR(total, 160, 1);
    EXPECT_NEAR(Sim().GetSimulatedTime(), 1.6, 0.011);
    EXPECT_FLOAT_EQ(Sim().GetRealtimeRatio(), 1.0f);
}

TEST_F(SimulationUpdateTest, Update_SlowFrameTakesOneStepAndDropsTheDebt)
{
    Sim().SetUpdateBudget(0.05f);
    EXPECT_EQ(Frame(0.2), 1);
    EXPECT_EQ(Sim().GetTimeDebt(), 0.0);
    EXPECT_NEAR(Sim().GetRealtimeRatio(), 0.05f, 1e-4f);
    // The float step is a hair under 0.01 s, so the share delivered is a hair under 5%.
    EXPECT_EQ(Sim().GetStatistics().substr(0, 14), "  4% realtime\n");
    // The dropped time is not made up by the next frame.
    EXPECT_LE(Frame(0.01), 2);
}

TEST_F(SimulationUpdateTest, Update_StepsStopWhenTheirCostExceedsTheBudget)
{
    m_clock.stepCost = 0.015;
    Sim().SetUpdateBudget(0.05f);
    Sim().m_timeFactor = 10.0f;
    // 0.1 s of simulated time is owed. Each step costs 0.015 s of real time, and the frame's own 0.01 s
    // counts too: after the second step 0.015 + 0.03 + 0.01 exceeds the budget.
    EXPECT_EQ(Frame(0.01), 2);
    EXPECT_NEAR(Sim().GetRealtimeRatio(), 0.2f, 1e-4f);
    EXPECT_EQ(Sim().GetStatistics().substr(0, 14), " 19% realtime\n");
}

TEST_F(SimulationUpdateTest, Update_TimeFactorZeroOrNotRunningIsFrozen)
{
    Sim().m_timeFactor = 0.0f;
    EXPECT_EQ(Frame(0.016), 1);
    EXPECT_EQ(m_counter->lastDt, 0.0f);
    EXPECT_EQ(Sim().GetStatistics().substr(0, 7), "Frozen\n");
    EXPECT_EQ(Sim().GetSimulatedTime(), 0.0);

    Sim().m_timeFactor = -2.0f;
    Frame(0.016);
    EXPECT_EQ(Sim().m_timeFactor, 0.0f);
    EXPECT_EQ(Sim().GetStatistics().substr(0, 7), "Frozen\n");

    Sim().m_timeFactor = 1.0f;
    Sim().m_running = false;
    util::SharedPtr<Body> body = testing::AddDynamic(QLEX_NEW new Circle(math::Vec2(0.0f, 5.0f), 0.5f));
    Frame(0.016);
    EXPECT_EQ(m_counter->lastDt, 0.0f);
    EXPECT_EQ(body->GetPosition().y, 5.0f);
}

TEST_F(SimulationUpdateTest, Statistics_ListCountsInTheirFormat)
{
    testing::AddGround();
    testing::AddDynamic(QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(0.0f, 0.4f)));
    util::SharedPtr<Body> two = QLEX_NEW new Body();
    Body::GeomSet geoms;
    geoms.insert(QLEX_NEW new Circle(math::Vec2(5.0f, 0.3f), 0.5f));
    geoms.insert(QLEX_NEW new Circle(math::Vec2(6.0f, 0.3f), 0.5f));
    two->SetGeoms(geoms);
    Sim().AddBody(two);
    Frame(0.01);
    // The world body holds the ground as well, so it counts as a body.
    EXPECT_EQ(Sim().GetStatistics(), "100% realtime.\n"
                                     "3 bodies\n"
                                     "4 geometries\n"
                                     "0 particles\n"
                                     "4 contacts\n"
                                     "0 springs\n"
                                     "0 hinges\n"
                                     "Running at 100 Hz\n");
}

TEST_F(SimulationUpdateTest, FallLimit_BodyPastItIsRemovedInThatFrame)
{
    Sim().m_fallLimit = 10.0f;
    util::SharedPtr<Body> body = testing::AddDynamic(QLEX_NEW new Circle(math::Vec2(0.0f, -9.995f), 0.5f));
    body->SetVelocity(math::Vec2(0.0f, -1.0f));
    Frame(0.01);
    EXPECT_FALSE(Sim().HasBody(body));
    EXPECT_TRUE(body->GetGeoms().empty());
    EXPECT_TRUE(Logged("Removing bad object"));

    // Also while frozen: a body moved out of range goes at the next frame.
    Sim().m_running = false;
    util::SharedPtr<Body> moved = testing::AddDynamic(QLEX_NEW new Circle(math::Vec2(0.0f, 0.0f), 0.5f));
    moved->SetPosition(math::Vec2(0.0f, -20.0f));
    Frame(0.01);
    EXPECT_FALSE(Sim().HasBody(moved));
}

TEST_F(SimulationUpdateTest, NaN_BodyIsFlushedAndTheRestGoesOn)
{
    testing::AddGround();
    util::SharedPtr<Body> good = testing::AddDynamic(QLEX_NEW new Circle(math::Vec2(0.0f, 1.0f), 0.5f));
    util::SharedPtr<Body> bad = testing::AddDynamic(QLEX_NEW new Circle(math::Vec2(3.0f, 1.0f), 0.5f));
    bad->SetVelocity(math::Vec2(std::numeric_limits<float>::quiet_NaN(), 0.0f));
    Frame(0.01);
    EXPECT_FALSE(Sim().HasBody(bad));
    EXPECT_TRUE(Sim().HasBody(good));
    EXPECT_TRUE(Logged("Removing bad object"));
    for (int i = 0; i < 50; ++i)
        Frame(0.01);
    EXPECT_FALSE(good->IsBad());
}

TEST_F(SimulationUpdateTest, NaN_MaterialSpoilsOnlyItsOwnContacts)
{
    // The ground is shared: an impulse of NaN on it would reach every body that rests there.
    testing::AddGround();
    std::vector<util::SharedPtr<Body>> boxes;
    for (float x : {-3.0f, 0.0f, 3.0f})
        boxes.push_back(testing::AddDynamic(QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(x, 0.49f))));
    boxes[1]->GetParts()[0].geom->SetRestitution(std::numeric_limits<float>::quiet_NaN());
    for (int i = 0; i < 100; ++i)
        Frame(0.01);
    for (const util::SharedPtr<Body>& box : {boxes[0], boxes[2]})
    {
        EXPECT_TRUE(Sim().HasBody(box));
        EXPECT_FALSE(box->IsBad());
        EXPECT_NEAR(box->GetPosition().y, 0.5f, 0.02f);
    }
    EXPECT_FALSE(Logged("Removing bad object"));
}

TEST_F(SimulationUpdateTest, Clear_LeavesOnlyTheWorldBody)
{
    testing::BuildPyramid(3, testing::Shape::Box);
    Frame(0.05);
    Sim().Clear();
    EXPECT_EQ(Sim().GetBodies().size(), 1u);
    EXPECT_EQ(Sim().GetWorldBody()->GetGeoms().size(), 1u);
    EXPECT_TRUE(Sim().GetContacts().empty());
    EXPECT_EQ(Sim().GetSimulatedTime(), 0.0);
    Frame(0.01);
    EXPECT_NE(Sim().GetStatistics().find("0 bodies\n0 geometries\n0 particles\n0 contacts\n"),
              std::string::npos);
}

TEST_F(WorldTest, Bodies_AddRemoveAndMembership)
{
    util::SharedPtr<Body> body = testing::AddDynamic(QLEX_NEW new Circle(math::Vec2(0.0f, 0.0f), 1.0f));
    EXPECT_TRUE(Sim().HasBody(body));
    Sim().AddBody(body);
    EXPECT_EQ(Sim().GetBodies().size(), 2u);
    EXPECT_FALSE(Sim().HasBody(util::SharedPtr<Body>()));
    EXPECT_TRUE(Sim().HasBody(util::SharedPtr<AbstractBody>(body)));

    Sim().RemoveBody(Sim().GetWorldBody());
    EXPECT_TRUE(Sim().HasBody(Sim().GetWorldBody()));
    Sim().RemoveBody(body);
    EXPECT_FALSE(Sim().HasBody(body));
    EXPECT_TRUE(body->IsBad());
}

TEST_F(WorldTest, Gravity_SwitchOffMeansNoFallAndNoFallLimit)
{
    Sim().m_gravitySwitch = false;
    EXPECT_EQ(Sim().GetGravity(), math::Vec2(0.0f, 0.0f));
    util::SharedPtr<Body> body = testing::AddDynamic(QLEX_NEW new Circle(math::Vec2(0.0f, -5000.0f), 1.0f));
    RunSteps(10);
    EXPECT_TRUE(Sim().HasBody(body));
    EXPECT_EQ(body->GetVelocity(), math::Vec2(0.0f, 0.0f));
}

TEST_F(WorldTest, Air_DragSlowsAFallingBodyBelowFreeFall)
{
    util::SharedPtr<Body> free = testing::AddDynamic(QLEX_NEW new Circle(math::Vec2(0.0f, 100.0f), 0.5f));
    Sim().m_airSwitch = false;
    RunSeconds(1.0f);
    const float freeSpeed = -free->GetVelocity().y;
    EXPECT_NEAR(freeSpeed, 9.8f, 0.01f);

    testing::ResetWorld();
    Sim().m_airFrictionLinear = 1.0f;
    util::SharedPtr<Body> dragged = testing::AddDynamic(QLEX_NEW new Circle(math::Vec2(0.0f, 100.0f), 0.5f));
    RunSeconds(1.0f);
    EXPECT_LT(-dragged->GetVelocity().y, 0.9f * freeSpeed);
    EXPECT_GT(-dragged->GetVelocity().y, 0.0f);
}

} // namespace physics
