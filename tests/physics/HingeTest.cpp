#include "WorldTest.h"

#include "physics/Box.h"
#include "physics/Circle.h"
#include "physics/Hinge.h"
#include "physics/SpringJoint.h"

#include <algorithm>
#include <cmath>

namespace physics
{
namespace
{
class JointTest : public WorldTest
{
protected:
    void SetUp() override
    {
        WorldTest::SetUp();
        Sim().m_airSwitch = false;
        Sim().SetClock([] { return 0.0; });
    }

    // A bar from (0, 2) to (1, 2), pinned to the world at its left end.
    util::SharedPtr<Hinge> MakePendulum(util::SharedPtr<Body>& bar)
    {
        util::SharedPtr<Box> shape = QLEX_NEW new Box(math::Vec2(1.0f, 0.2f), math::Vec2(0.5f, 2.0f));
        bar = testing::AddDynamic(shape);
        util::SharedPtr<Hinge> hinge =
            QLEX_NEW new Hinge(Sim().GetWorldGeom(), shape, math::Vec2(0.0f, 2.0f));
        Sim().AddConstraint(hinge);
        return hinge;
    }

    std::vector<util::SharedPtr<Hinge>> Hinges()
    {
        std::vector<util::SharedPtr<Hinge>> hinges;
        for (const util::SharedPtr<Hinge>& hinge : Sim().GetConstraints())
            hinges.push_back(hinge);
        return hinges;
    }

    float AnchorGap(const Hinge& hinge)
    {
        math::Vec2 points[2];
        hinge.GetWorldPoints(points);
        return math::Distance(points[0], points[1]);
    }
};
} // namespace

TEST_F(JointTest, Motor_ReachesItsSpeedAtTheRateStrengthAllows)
{
    util::SharedPtr<Circle> wheel = QLEX_NEW new Circle(math::Vec2(0.0f, 2.0f), 0.5f);
    util::SharedPtr<Body> body = testing::AddDynamic(wheel);
    util::SharedPtr<Hinge> motor = QLEX_NEW new Hinge(Sim().GetWorldGeom(), wheel, math::Vec2(0.0f, 2.0f));
    motor->SetMotorOn(true);
    motor->SetMotorSpeed(10.0f);
    motor->SetMotorStrength(2.0f);
    Sim().AddConstraint(motor);

    // Strength caps the angular acceleration: 2 rad/s^2 here, so 2 rad/s after one second.
    float previous = 0.0f;
    for (int i = 0; i < 100; ++i)
    {
        RunSteps(1);
        const float w = body->GetAngularVelocity();
        EXPECT_LE(w - previous, 2.0f * 0.01f * 1.001f);
        previous = w;
    }
    EXPECT_NEAR(body->GetAngularVelocity(), 2.0f, 0.1f);
    RunSeconds(5.0f);
    EXPECT_NEAR(body->GetAngularVelocity(), 10.0f, 0.05f);
    EXPECT_LT(AnchorGap(*motor), 0.01f);

    // A motor of strength 0 is neither motor nor brake.
    motor->SetMotorStrength(0.0f);
    RunSeconds(1.0f);
    EXPECT_NEAR(body->GetAngularVelocity(), 10.0f, 0.05f);
}

TEST_F(JointTest, Pendulum_KeepsItsAnchorTogether)
{
    util::SharedPtr<Body> bar;
    util::SharedPtr<Hinge> hinge = MakePendulum(bar);
    float lowest = 2.0f;
    for (int i = 0; i < 500; ++i)
    {
        RunSteps(1);
        ASSERT_LT(AnchorGap(*hinge), 0.01f) << "step " << i;
        lowest = std::min(lowest, bar->GetPosition().y);
    }
    // It swung down through the bottom, half a bar below the pin.
    EXPECT_NEAR(lowest, 1.5f, 0.02f);
    EXPECT_TRUE(hinge->IsGood());
    // Hinged shapes don't collide with each other.
    EXPECT_TRUE(bar->GetParts()[0].geom->HasNoCollide(Sim().GetWorldGeom().get()));
}

TEST_F(JointTest, Chain_HangsTogether)
{
    const std::vector<util::SharedPtr<Body>> links =
        testing::BuildHingeChain(8, math::Vec2(0.0f, 5.0f), 0.5f);
    float widest = 0.0f;
    float lowest = 5.0f;
    for (int i = 0; i < 600; ++i)
    {
        RunSteps(1);
        for (const util::SharedPtr<Hinge>& hinge : Hinges())
            widest = std::max(widest, AnchorGap(*hinge));
        lowest = std::min(lowest, links.back()->GetPosition().y);
        // The last link's centre never gets farther from the pin than 3.75 m of chain and a centimetre per
        // hinge.
        ASSERT_LT(math::Distance(links.back()->GetPosition(), math::Vec2(0.0f, 5.0f)), 3.75f + 8 * 0.01f);
    }
    EXPECT_EQ(Hinges().size(), 8u);
    // The whip of the free end stretches the hinges a little while it is fast.
    EXPECT_LT(widest, 0.06f);
    float widestAfter = 0.0f;
    for (const util::SharedPtr<Hinge>& hinge : Hinges())
        widestAfter = std::max(widestAfter, AnchorGap(*hinge));
    EXPECT_LT(widestAfter, 0.01f);
    // It swung down through the bottom.
    EXPECT_LT(lowest, 5.0f - 3.5f);
    for (const util::SharedPtr<Body>& link : links)
        EXPECT_FALSE(link->IsBad());
}

TEST_F(JointTest, Limits_BreakTheHinge)
{
    util::SharedPtr<Body> bar;
    util::SharedPtr<Hinge> hinge = MakePendulum(bar);
    hinge->SetImpulseLimit(0.0f);
    Sim().Update(0.01);
    EXPECT_TRUE(hinge->IsBroken());
    EXPECT_FALSE(Sim().HasConstraint(hinge));
    EXPECT_NE(Sim().GetStatistics().find("0 hinges\n"), std::string::npos);
    // The bar falls free.
    for (int frame = 0; frame < 20; ++frame)
        Sim().Update(0.01);
    EXPECT_LT(bar->GetPosition().y, 1.9f);
    EXPECT_FALSE(bar->GetParts()[0].geom->HasNoCollide(Sim().GetWorldGeom().get()));

    testing::ResetWorld();
    Sim().m_airSwitch = false;
    util::SharedPtr<Box> a = QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(0.0f, 0.0f));
    util::SharedPtr<Box> b = QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(3.0f, 0.0f));
    testing::AddDynamic(a);
    testing::AddDynamic(b);
    util::SharedPtr<Hinge> stretched =
        QLEX_NEW new Hinge(a, b, math::Vec2(0.5f, 0.0f), math::Vec2(-0.5f, 0.0f));
    stretched->SetDistanceLimit(0.5f);
    Sim().AddConstraint(stretched);
    Sim().Update(0.01);
    EXPECT_TRUE(stretched->IsBroken());
    EXPECT_EQ(Sim().GetBodies().size(), 3u);
}

TEST_F(JointTest, HingeWithinOneBody_TakesNoPartButStaysGood)
{
    util::SharedPtr<Box> a = QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(0.0f, 5.0f));
    util::SharedPtr<Box> b = QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(1.0f, 5.0f));
    util::SharedPtr<Body> body = QLEX_NEW new Body();
    Body::GeomSet both;
    both.insert(a);
    both.insert(b);
    body->SetGeoms(both);
    Sim().AddBody(body);
    util::SharedPtr<Hinge> hinge = QLEX_NEW new Hinge(a, b, math::Vec2(0.5f, 5.0f));
    Sim().AddConstraint(hinge);
    RunSteps(10);
    EXPECT_TRUE(hinge->IsGood());
    EXPECT_TRUE(Sim().HasConstraint(hinge));
    EXPECT_EQ(hinge->GetSum(), math::Vec2(0.0f, 0.0f));
    Sim().RemoveConstraint(hinge);
    EXPECT_FALSE(a->HasNoCollide(b.get()));
}

TEST_F(JointTest, Spring_StretchesByGravityOverStiffnessWhateverTheMass)
{
    for (float density : {1.0f, 8.0f})
        for (float strength : {1.0f, 0.5f})
        {
            testing::ResetWorld();
            Sim().m_airSwitch = false;
            util::SharedPtr<Circle> weight = QLEX_NEW new Circle(math::Vec2(0.0f, 4.0f), 0.2f);
            weight->SetDensity(density);
            util::SharedPtr<Body> body = testing::AddDynamic(weight);
            util::SharedPtr<SpringJoint> spring = QLEX_NEW new SpringJoint(
                Sim().GetWorldGeom(), math::Vec2(0.0f, 5.0f), weight, math::Vec2(0.0f, 4.0f));
            spring->SetStrengthFactor(strength);
            Sim().AddJoint(spring);

            // springForce * strength is an acceleration per metre of stretch: the weight's mass cancels.
            const float expected = 9.8f / (1000.0f * strength);
            float deepest = 0.0f;
            for (int i = 0; i < 300; ++i)
            {
                RunSteps(1);
                deepest = std::max(deepest, 4.0f - body->GetPosition().y);
            }
            EXPECT_NEAR(4.0f - body->GetPosition().y, expected, 0.02f * expected)
                << "density " << density << " strength " << strength;
            // Damping 1 is critical: no overshoot.
            EXPECT_LE(deepest, expected * 1.02f);
            EXPECT_GT(spring->CalcEnergy(), 0.0f);
        }
}

TEST_F(JointTest, Springs_AddUpAndLeaveCollisionAlone)
{
    util::SharedPtr<Circle> a = QLEX_NEW new Circle(math::Vec2(0.0f, 0.0f), 0.5f);
    util::SharedPtr<Circle> b = QLEX_NEW new Circle(math::Vec2(2.0f, 0.0f), 0.5f);
    testing::AddDynamic(a);
    util::SharedPtr<Body> moving = testing::AddDynamic(b);
    Sim().m_gravitySwitch = false;
    for (int i = 0; i < 2; ++i)
    {
        util::SharedPtr<SpringJoint> spring =
            QLEX_NEW new SpringJoint(a, math::Vec2(0.0f, 0.0f), b, math::Vec2(2.0f, 0.0f));
        spring->SetTargetLength(0.0f);
        Sim().AddJoint(spring);
    }
    EXPECT_FALSE(a->HasNoCollide(b.get()));
    RunSeconds(2.0f);
    // Pulled together until the circles touch, and held apart by their contact (a spring of a metre's
    // stretch presses hard, so the contact gives a little).
    const float gap = math::Distance(a->GetPosition(), b->GetPosition());
    EXPECT_GT(gap, 0.9f);
    EXPECT_LT(gap, 1.0f);
    EXPECT_FALSE(moving->IsBad());
}

TEST_F(JointTest, SpringDamper_ZeroLengthPointsAlongX)
{
    const SpringDamper spring{10.0f, 0.0f, 1.0f};
    const math::Vec2 f = spring.CalculateForces(math::Vec2(1.0f, 1.0f), math::Vec2(1.0f, 1.0f),
                                                math::Vec2(0.0f, 0.0f), math::Vec2(0.0f, 0.0f));
    EXPECT_EQ(f.y, 0.0f);
    EXPECT_NEAR(f.x, -10.0f, 1e-4f);
}

TEST_F(JointTest, Joints_GoWhenTheirBodiesGo)
{
    util::SharedPtr<Body> bar;
    util::SharedPtr<Hinge> hinge = MakePendulum(bar);
    util::SharedPtr<Circle> c = QLEX_NEW new Circle(math::Vec2(5.0f, 5.0f), 0.5f);
    util::SharedPtr<Body> ball = testing::AddDynamic(c);
    util::SharedPtr<SpringJoint> spring =
        QLEX_NEW new SpringJoint(Sim().GetWorldGeom(), math::Vec2(5.0f, 6.0f), c, math::Vec2(5.0f, 5.0f));
    Sim().AddJoint(spring);
    Sim().RemoveBody(bar);
    Sim().RemoveBody(ball);
    Sim().Update(0.01);
    EXPECT_FALSE(Sim().HasConstraint(hinge));
    EXPECT_FALSE(Sim().HasJoint(spring));
}

// No stiffness makes the hinge infinitely soft: it gives way, and nothing goes NaN.
TEST_F(JointTest, StiffnessOfZero_LetsTheChainFallApartWithoutNaN)
{
    Sim().m_solveConstant = 0.0f;
    const std::vector<util::SharedPtr<Body>> links =
        testing::BuildHingeChain(4, math::Vec2(0.0f, 5.0f), 0.5f);
    const float top = links.front()->GetPosition().y;
    RunSteps(100);
    EXPECT_EQ(Hinges().size(), 4u);
    for (const util::SharedPtr<Body>& link : links)
    {
        EXPECT_TRUE(Sim().HasBody(link));
        EXPECT_FALSE(link->IsBad());
    }
    // Nothing holds the links: they fall freely, about 4.9 m in a second.
    EXPECT_LT(links.front()->GetPosition().y, top - 4.0f);
    EXPECT_FALSE(Logged("Removing bad object"));
}
TEST_F(JointTest, SingularHinge_SitsTheStepOutWithAWarningAndTheRunGoesOn)
{
    // Without regularisation, bodies of vast mass make the hinge's matrix vanish in float.
    Sim().m_adHocSolver = true;
    util::SharedPtr<Box> a = QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(0.0f, 3.0f));
    util::SharedPtr<Box> b = QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(1.0f, 3.0f));
    a->SetDensity(1e25f);
    b->SetDensity(1e25f);
    testing::AddDynamic(a);
    testing::AddDynamic(b);
    util::SharedPtr<Hinge> hinge = QLEX_NEW new Hinge(a, b, math::Vec2(0.5f, 3.0f));
    Sim().AddConstraint(hinge);
    RunSteps(5);
    EXPECT_TRUE(Logged("A hinge whose bodies are too heavy to solve is skipped"));
    EXPECT_TRUE(Sim().HasConstraint(hinge));
    EXPECT_EQ(hinge->GetSum(), math::Vec2(0.0f, 0.0f));
    // Both fall freely, and stay sound.
    EXPECT_LT(a->GetBody()->GetPosition().y, 3.0f);
    EXPECT_FALSE(a->GetBody()->IsBad());

    // Once is enough to tell.
    const size_t warnings = std::count_if(m_log.begin(), m_log.end(),
                                          [](const std::string& line)
                                          { return line.find("too heavy to solve") != std::string::npos; });
    EXPECT_EQ(warnings, 1u);
}

} // namespace physics
