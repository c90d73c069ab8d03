#include "WorldTest.h"

#include "physics/Box.h"
#include "physics/Circle.h"
#include "physics/Contact.h"
#include "physics/Plane.h"
#include "physics/Polygon.h"

#include <algorithm>
#include <cmath>

namespace physics
{
namespace
{
class StackTest : public WorldTest
{
protected:
    void SetUp() override
    {
        WorldTest::SetUp();
        Sim().m_airSwitch = false;
    }

    static std::vector<math::Vec2> Positions(const std::vector<util::SharedPtr<Body>>& bodies)
    {
        std::vector<math::Vec2> positions;
        for (const util::SharedPtr<Body>& body : bodies)
            positions.push_back(body->GetPosition());
        return positions;
    }

    // The largest distance of any body from where it started.
    static float MaxDrift(const std::vector<util::SharedPtr<Body>>& bodies,
                          const std::vector<math::Vec2>& start)
    {
        float drift = 0.0f;
        for (size_t i = 0; i < bodies.size(); ++i)
            drift = std::max(drift, math::Distance(bodies[i]->GetPosition(), start[i]));
        return drift;
    }

    void ExpectAllGood(const std::vector<util::SharedPtr<Body>>& bodies)
    {
        for (const util::SharedPtr<Body>& body : bodies)
        {
            EXPECT_TRUE(Sim().HasBody(body));
            EXPECT_FALSE(body->IsBad());
        }
        EXPECT_FALSE(Logged("Removing bad object"));
    }
};

// Drops a circle of the given restitution onto the ground from rest, and returns the height (of its lowest
// point) at the top of its first bounce.
float BounceHeight(float restitution, float dropHeight, float radius)
{
    Simulation& sim = *Simulation::GetInstancePtr();
    util::SharedPtr<Geom> ground = testing::AddGround();
    ground->SetRestitution(restitution);
    util::SharedPtr<Circle> circle = QLEX_NEW new Circle(math::Vec2(0.0f, dropHeight + radius), radius);
    circle->SetRestitution(restitution);
    util::SharedPtr<Body> body = testing::AddDynamic(circle);
    bool bounced = false;
    float apex = 0.0f;
    for (int i = 0; i < 600; ++i)
    {
        sim.Step(true);
        util::PointeeHandle::Flush();
        if (!bounced && body->GetVelocity().y > 0.0f)
            bounced = true;
        if (bounced)
        {
            apex = std::max(apex, body->GetPosition().y - radius);
            if (body->GetVelocity().y < 0.0f)
                break;
        }
    }
    return apex;
}
} // namespace

TEST_F(StackTest, Pyramid_StaysStanding)
{
    const std::vector<util::SharedPtr<Body>> boxes = testing::BuildPyramid(10, testing::Shape::Box);
    ASSERT_EQ(boxes.size(), 55u);
    const std::vector<math::Vec2> start = Positions(boxes);
    RunSeconds(10.0f);
    ExpectAllGood(boxes);
    EXPECT_LT(MaxDrift(boxes, start), 0.05f);
    for (const util::SharedPtr<Body>& box : boxes)
        EXPECT_LT(std::fabs(math::WrapAngle(box->GetAngle())), 0.02f);
}

TEST_F(StackTest, Pyramid_OfPolygonsStaysStanding)
{
    const std::vector<util::SharedPtr<Body>> boxes = testing::BuildPyramid(6, testing::Shape::Polygon);
    const std::vector<math::Vec2> start = Positions(boxes);
    RunSeconds(5.0f);
    ExpectAllGood(boxes);
    EXPECT_LT(MaxDrift(boxes, start), 0.05f);
}

TEST_F(StackTest, Column_StaysUprightWithEitherSolver)
{
    for (bool prioritized : {false, true})
    {
        testing::ResetWorld();
        Sim().m_airSwitch = false;
        Sim().m_prioritizedSolver = prioritized;
        const std::vector<util::SharedPtr<Body>> boxes = testing::BuildColumn(10, testing::Shape::Box);
        const std::vector<math::Vec2> start = Positions(boxes);
        RunSeconds(5.0f);
        ExpectAllGood(boxes);
        // Thirty sweeps don't fully converge a ten-box stack, and the rest creeps sideways by millimetres a
        // second; upright means no box has turned and the column has not walked a tenth of a box.
        EXPECT_LT(MaxDrift(boxes, start), 0.1f) << (prioritized ? "prioritized" : "Gauss-Seidel");
        for (const util::SharedPtr<Body>& box : boxes)
            EXPECT_LT(std::fabs(box->GetAngle()), 0.01f);
        for (size_t i = 1; i < boxes.size(); ++i)
            EXPECT_LT(std::fabs(boxes[i]->GetPosition().x - boxes[i - 1]->GetPosition().x), 0.05f);
    }
}

TEST_F(StackTest, RestingContacts_AreFoundInTheCacheAndKeepTheirAge)
{
    const std::vector<util::SharedPtr<Body>> boxes = testing::BuildPyramid(5, testing::Shape::Box);
    // Frames of one step each, so that the simulated time advances.
    Sim().SetClock([] { return 0.0; });
    for (int frame = 0; frame < 200; ++frame)
    {
        Sim().Update(0.01);
        util::PointeeHandle::Flush();
    }
    const size_t contacts = Sim().GetContacts().size();
    ASSERT_GT(contacts, 20u);
    EXPECT_GE(Sim().GetMatchedCount(), contacts * 95 / 100);
    size_t old = 0;
    for (const util::SharedPtr<Contact>& c : Sim().GetContacts())
        if (!c->IsNew() && c->GetBirthTime() < Sim().GetSimulatedTime() - 1.0)
            ++old;
    EXPECT_GE(old, contacts * 95 / 100);
}

TEST_F(StackTest, WarmStartOff_StackStillSettles)
{
    Sim().m_warmStart = false;
    const std::vector<util::SharedPtr<Body>> boxes = testing::BuildColumn(4, testing::Shape::Box);
    const std::vector<math::Vec2> start = Positions(boxes);
    RunSeconds(3.0f);
    ExpectAllGood(boxes);
    EXPECT_LT(MaxDrift(boxes, start), 0.05f);
    for (const util::SharedPtr<Contact>& c : Sim().GetContacts())
        EXPECT_GE(c->GetSumN(), 0.0f);
}

TEST_F(StackTest, Restitution_BounceReachesTheHeightItAllows)
{
    const float drop = 2.0f;
    for (float e : {0.5f, 0.8f})
    {
        testing::ResetWorld();
        Sim().m_airSwitch = false;
        // Speed after the bounce is e times the speed before, so the height is e^2 times the drop.
        EXPECT_NEAR(BounceHeight(e, drop, 0.25f), e * e * drop, 0.1f * e * e * drop) << "restitution " << e;
    }
    testing::ResetWorld();
    Sim().m_airSwitch = false;
    EXPECT_LT(BounceHeight(0.0f, drop, 0.25f), 0.01f);
}

TEST_F(StackTest, Restitution_NewContactReversesTheApproachSpeed)
{
    Sim().m_gravitySwitch = false;
    util::SharedPtr<Geom> ground = testing::AddGround();
    util::SharedPtr<Circle> circle = QLEX_NEW new Circle(math::Vec2(0.0f, 0.499f), 0.5f);
    ground->SetRestitution(0.5f);
    circle->SetRestitution(0.5f);
    util::SharedPtr<Body> body = testing::AddDynamic(circle);
    body->SetVelocity(math::Vec2(0.0f, -1.0f));
    RunSteps(1);
    EXPECT_NEAR(body->GetVelocity().y, 0.5f, 1e-4f);
}

TEST_F(StackTest, Friction_HoldsOnAGentleSlopeAndSlidesOnASteepOne)
{
    const float mu = 0.5f;
    const float g = 9.8f;
    for (float degrees : {20.0f, 35.0f})
    {
        testing::ResetWorld();
        Sim().m_airSwitch = false;
        const float angle = degrees * math::PIf / 180.0f;
        const math::Vec2 normal(-std::sin(angle), std::cos(angle));
        util::SharedPtr<Geom> slope = QLEX_NEW new Plane(math::Plane2D(normal, 0.0f));
        slope->SetFriction(mu);
        slope->SetRestitution(0.0f);
        testing::AddStatic(slope);
        util::SharedPtr<Box> box = QLEX_NEW new Box(math::Vec2(0.5f, 0.5f), normal * 0.2495f);
        box->SetFriction(mu);
        box->SetRestitution(0.0f);
        util::SharedPtr<Body> body = testing::AddDynamic(box);
        body->SetAngle(angle);
        body->ApplyPoseChange();
        const math::Vec2 start = body->GetPosition();
        const math::Vec2 downhill(-std::cos(angle), -std::sin(angle));
        RunSeconds(2.0f);
        const float travelled = math::Dot(body->GetPosition() - start, downhill);
        if (degrees < 30.0f)
        {
            // tan 20 degrees is below the friction coefficient: static friction holds.
            EXPECT_LT(std::fabs(travelled), 0.01f);
        }
        else
        {
            const float expected = 0.5f * g * (std::sin(angle) - mu * std::cos(angle)) * 2.0f * 2.0f;
            EXPECT_NEAR(travelled, expected, 0.1f * expected);
        }
        EXPECT_LT(std::fabs(body->GetAngle() - angle), 0.01f);
    }
}

TEST_F(StackTest, Friction_ZeroOnOneSideLetsABoxSlide)
{
    util::SharedPtr<Geom> ground = testing::AddGround();
    ground->SetFriction(0.0f);
    util::SharedPtr<Body> body =
        testing::AddDynamic(QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(0.0f, 0.4999f)));
    body->SetVelocity(math::Vec2(2.0f, 0.0f));
    RunSeconds(1.0f);
    EXPECT_NEAR(body->GetVelocity().x, 2.0f, 0.01f);
    EXPECT_NEAR(body->GetPosition().x, 2.0f, 0.05f);
}

TEST_F(StackTest, Pile_OfMixedShapesNeverGoesNaN)
{
    testing::BuildContainer(6.0f, 6.0f);
    std::vector<util::SharedPtr<Body>> bodies;
    for (int i = 0; i < 30; ++i)
    {
        const float x = -2.5f + static_cast<float>(i % 6);
        const float y = 1.0f + 1.2f * static_cast<float>(i / 6);
        util::SharedPtr<Geom> shape;
        switch (i % 3)
        {
        case 0:
            shape = QLEX_NEW new Circle(math::Vec2(x, y), 0.45f);
            break;
        case 1:
            shape = QLEX_NEW new Box(math::Vec2(0.8f, 0.5f), math::Vec2(x, y));
            break;
        default:
            shape = QLEX_NEW new Polygon(testing::RegularPolygonPoints(math::Vec2(x, y), 0.45f, 7));
            break;
        }
        bodies.push_back(testing::AddDynamic(shape));
        bodies.back()->SetAngularVelocity(static_cast<float>(i % 5) - 2.0f);
    }
    RunSeconds(6.0f);
    ExpectAllGood(bodies);
    for (const util::SharedPtr<Body>& body : bodies)
    {
        // Everything stays in the container and comes to rest.
        EXPECT_LT(std::fabs(body->GetPosition().x), 3.0f);
        EXPECT_GT(body->GetPosition().y, 0.0f);
        EXPECT_LT(body->GetVelocity().Length(), 0.2f);
    }
}

} // namespace physics
