#include "EntityTestWorld.h"

#include "app/EntitySerializer.h"
#include "app/entities/FixJointEntity.h"
#include "app/entities/HingeEntity.h"
#include "app/entities/SpringEntity.h"

#include <cmath>

namespace
{
using JointEntityTest = entitytest::World;

const float JOINT_SIZE = 0.1f;

util::SharedPtr<app::FixJointEntity> Weld(const app::GeomPtr& a, const app::GeomPtr& b, math::Vec2 at)
{
    util::SharedPtr<app::FixJointEntity> fix = QLEX_NEW new app::FixJointEntity(JOINT_SIZE);
    fix->AttachToWorld(a, at, b, at);
    app::Scene::GetInstancePtr()->AddEntity(fix);
    return fix;
}

TEST_F(JointEntityTest, FixateWeldsTwoShapesIntoOneBodyAndItsRemovalSplitsThem)
{
    util::SharedPtr<app::BoxEntity> a = AddBox(math::Vec2(1, 1), math::Vec2(0, 0));
    util::SharedPtr<app::BoxEntity> b = AddBox(math::Vec2(1, 1), math::Vec2(1, 0));
    const float mass = a->GetGeom()->Mass() + b->GetGeom()->Mass();
    util::SharedPtr<app::FixJointEntity> fix = Weld(a->GetGeom(), b->GetGeom(), math::Vec2(0.5f, 0));

    EXPECT_EQ(a->GetBody(), b->GetBody());
    EXPECT_NEAR(a->GetBody()->GetMass(), mass, 1e-4f * mass);
    EXPECT_TRUE(fix->IsAlive());
    Run(10);
    EXPECT_TRUE(fix->IsAlive());
    const math::Vec2 velocity = a->GetBody()->GetVelocity();
    EXPECT_LT(velocity.y, 0.0f);

    TheScene().RemoveEntity(fix);
    ASSERT_TRUE(a->GetBody() && b->GetBody());
    EXPECT_NE(a->GetBody(), b->GetBody());
    EXPECT_TRUE(Sim().HasBody(a->GetBody()));
    EXPECT_TRUE(Sim().HasBody(b->GetBody()));
    EXPECT_FLOAT_EQ(a->GetBody()->GetMass(), a->GetGeom()->Mass());
    // The side that leaves keeps the motion of the welded body.
    EXPECT_NEAR(b->GetBody()->GetVelocity().y, velocity.y, 1e-5f);
    Run(1);
    EXPECT_TRUE(a->IsAlive() && b->IsAlive());
}

TEST_F(JointEntityTest, RemovingAFixateSplitsOnlyWhereNothingElseHolds)
{
    util::SharedPtr<app::BoxEntity> a = AddBox(math::Vec2(1, 1), math::Vec2(0, 0));
    util::SharedPtr<app::BoxEntity> b = AddBox(math::Vec2(1, 1), math::Vec2(1, 0));
    util::SharedPtr<app::BoxEntity> c = AddBox(math::Vec2(1, 1), math::Vec2(2, 0));
    util::SharedPtr<app::FixJointEntity> ab = Weld(a->GetGeom(), b->GetGeom(), math::Vec2(0.5f, 0));
    util::SharedPtr<app::FixJointEntity> bc = Weld(b->GetGeom(), c->GetGeom(), math::Vec2(1.5f, 0));
    util::SharedPtr<app::FixJointEntity> abAgain = Weld(a->GetGeom(), b->GetGeom(), math::Vec2(0.5f, 0.2f));
    const util::SharedPtr<physics::Body> body = a->GetBody();
    EXPECT_EQ(b->GetBody(), body);
    EXPECT_EQ(c->GetBody(), body);

    // A second fixate still joins A and B: nothing changes.
    TheScene().RemoveEntity(abAgain);
    EXPECT_EQ(a->GetBody(), body);
    EXPECT_EQ(c->GetBody(), body);

    // Now A alone splits off; B and C stay together.
    TheScene().RemoveEntity(ab);
    EXPECT_NE(a->GetBody(), b->GetBody());
    EXPECT_EQ(b->GetBody(), c->GetBody());
    EXPECT_TRUE(bc->IsAlive());
    EXPECT_FALSE(ab->IsAlive());
}

TEST_F(JointEntityTest, FixateToTheBackgroundKeepsWhatReachesTheWorldStatic)
{
    util::SharedPtr<app::BoxEntity> a = AddBox(math::Vec2(1, 1), math::Vec2(0, 0));
    util::SharedPtr<app::BoxEntity> b = AddBox(math::Vec2(1, 1), math::Vec2(1, 0));
    const app::GeomPtr world = Sim().GetWorldGeom();
    util::SharedPtr<app::FixJointEntity> toWorld = Weld(a->GetGeom(), world, math::Vec2(-0.3f, 0));
    util::SharedPtr<app::FixJointEntity> ab = Weld(a->GetGeom(), b->GetGeom(), math::Vec2(0.5f, 0));
    EXPECT_EQ(a->GetBody(), Sim().GetWorldBody());
    EXPECT_EQ(b->GetBody(), Sim().GetWorldBody());
    Run(20);
    EXPECT_EQ(b->GetGeom()->GetPosition(), math::Vec2(1, 0));

    // B no longer reaches the world: it falls as a body of its own.
    TheScene().RemoveEntity(ab);
    EXPECT_EQ(a->GetBody(), Sim().GetWorldBody());
    EXPECT_NE(b->GetBody(), Sim().GetWorldBody());
    Run(20);
    EXPECT_LT(b->GetGeom()->GetPosition().y, -0.01f);

    // The last fixate to the background frees A too.
    TheScene().RemoveEntity(toWorld);
    EXPECT_NE(a->GetBody(), Sim().GetWorldBody());
    EXPECT_TRUE(Sim().HasBody(a->GetBody()));
}

TEST_F(JointEntityTest, FixateAddGeomAndConnectedFloodsTheGraph)
{
    physics::Geom* g[5];
    std::vector<util::SharedPtr<physics::Box>> boxes;
    for (int i = 0; i < 5; ++i)
    {
        boxes.push_back(QLEX_NEW new physics::Box(math::Vec2(1, 1), math::Vec2(float(i), 0)));
        g[i] = boxes.back().get();
    }
    app::GeomGraph graph;
    graph[g[0]] = {g[1]};
    graph[g[1]] = {g[0], g[2]};
    graph[g[2]] = {g[1]};
    graph[g[3]] = {g[4]};
    std::set<physics::Geom*> out;
    app::AddGeomAndConnected(g[1], graph, out);
    EXPECT_EQ(out, (std::set<physics::Geom*>{g[0], g[1], g[2]}));
    physics::Body::GeomSet some;
    some.insert(boxes[0]);
    some.insert(boxes[3]);
    EXPECT_EQ(app::Intersection(out, some), (std::set<physics::Geom*>{g[0]}));
}

TEST_F(JointEntityTest, HingeMotorTurnsItsBody)
{
    Sim().m_gravitySwitch = false;
    util::SharedPtr<app::BoxEntity> wheel = AddBox(math::Vec2(1, 0.2f), math::Vec2(2, 3));
    util::SharedPtr<app::HingeEntity> hinge = QLEX_NEW new app::HingeEntity(JOINT_SIZE);
    const math::Vec2 points[2] = {math::Vec2(2, 3), math::Vec2(2, 3)};
    hinge->m_zDepth = 10;
    hinge->AttachAt(points);
    TheScene().AddEntity(hinge);
    ASSERT_EQ(hinge->m_geoms[0], wheel->GetGeom());
    ASSERT_EQ(hinge->m_geoms[1], app::GeomPtr(Sim().GetWorldGeom()));
    EXPECT_TRUE(hinge->IsAlive());

    Run(50);
    EXPECT_NEAR(wheel->GetBody()->GetAngularVelocity(), 0.0f, 1e-4f);

    hinge->m_motor = true;
    Run(100);
    // The wheel turns at the motor's speed relative to the background, about the pin.
    EXPECT_NEAR(std::fabs(wheel->GetBody()->GetAngularVelocity()), app::DefaultMotorSpeed, 0.05f);
    EXPECT_GT(std::fabs(wheel->GetGeom()->GetAngle()), 0.5f);
    EXPECT_NEAR(math::Distance(wheel->GetGeom()->GetPosition(), math::Vec2(2, 3)), 0.0f, 0.01f);

    // Reversed through a negative speed, which folds into the direction flag.
    const float before = wheel->GetBody()->GetAngularVelocity();
    hinge->m_motorSpeed = -2.0f;
    Run(100);
    EXPECT_FLOAT_EQ(hinge->m_motorSpeed, 2.0f);
    EXPECT_TRUE(hinge->m_ccw);
    EXPECT_NEAR(wheel->GetBody()->GetAngularVelocity(), -before / app::DefaultMotorSpeed * 2.0f, 0.05f);
}

TEST_F(JointEntityTest, HingeDiesWithItsShapeAndWhenItBreaks)
{
    util::SharedPtr<app::BoxEntity> box = AddBox(math::Vec2(1, 1), math::Vec2(0, 0));
    util::SharedPtr<app::HingeEntity> hinge = QLEX_NEW new app::HingeEntity(JOINT_SIZE);
    hinge->AttachToWorld(box->GetGeom(), math::Vec2(0.4f, 0.4f), Sim().GetWorldGeom(),
                         math::Vec2(0.4f, 0.4f));
    TheScene().AddEntity(hinge);
    hinge->m_impulseLimit = 0.01f;
    Run(5);
    EXPECT_FALSE(TheScene().HasEntity(hinge));
    EXPECT_TRUE(TheScene().HasEntity(box));

    util::SharedPtr<app::HingeEntity> second = QLEX_NEW new app::HingeEntity(JOINT_SIZE);
    second->AttachToWorld(box->GetGeom(), math::Vec2(0, 0), Sim().GetWorldGeom(), math::Vec2(0, 0));
    TheScene().AddEntity(second);
    Run(1);
    EXPECT_TRUE(TheScene().HasEntity(second));
    TheScene().RemoveEntity(box);
    Run(0);
    EXPECT_FALSE(TheScene().HasEntity(second));
}

TEST_F(JointEntityTest, HingeReadsTheArrowKeyControllerOfOldScenes)
{
    util::SharedPtr<app::HingeEntity> hinge = QLEX_NEW new app::HingeEntity(JOINT_SIZE);
    hinge->m_motor = true;
    app::EntitySerializer record;
    record.Set("controller", util::String("arrowkeys"));
    record.Set("buttonBreak", util::String("space"));
    hinge->Deserialize(record);
    EXPECT_FALSE(hinge->m_motor);
    EXPECT_TRUE(hinge->m_buttonForward.HasKey(SDLK_RIGHT));
    EXPECT_TRUE(hinge->m_buttonBack.HasKey(SDLK_LEFT));
    EXPECT_TRUE(hinge->m_buttonBrake.HasKey(SDLK_SPACE));
    EXPECT_FALSE(hinge->m_buttonBrake.HasKey(SDLK_DOWN));
}

TEST_F(JointEntityTest, SpringKeepsItsSettingsWithAndWithoutAJoint)
{
    util::SharedPtr<app::BoxEntity> a = AddBox(math::Vec2(0.5f, 0.5f), math::Vec2(0, 0));
    util::SharedPtr<app::BoxEntity> b = AddBox(math::Vec2(0.5f, 0.5f), math::Vec2(2, 0));
    util::SharedPtr<app::SpringEntity> spring = QLEX_NEW new app::SpringEntity(JOINT_SIZE);
    spring->LengthAttrib() = 1.0f;
    spring->StrengthAttrib() = 0.2f;
    EXPECT_FLOAT_EQ(spring->DampingAttrib(), 0.1f);
    spring->AttachToWorld(a->GetGeom(), math::Vec2(0, 0), b->GetGeom(), math::Vec2(2, 0));
    TheScene().AddEntity(spring);
    ASSERT_TRUE(spring->m_joint);
    EXPECT_FLOAT_EQ(spring->m_joint->GetTargetLength(), 1.0f);
    EXPECT_FLOAT_EQ(spring->m_joint->GetStrengthFactor(), 0.2f);
    EXPECT_TRUE(spring->IsOnEntity(math::Vec2(1, 0.01f)));
    EXPECT_FALSE(spring->IsOnEntity(math::Vec2(-0.1f, 0)));

    // Without gravity the two ends pull together towards the rest length.
    Sim().m_gravitySwitch = false;
    Run(200);
    const float gap = math::Distance(a->GetGeom()->GetPosition(), b->GetGeom()->GetPosition());
    EXPECT_LT(gap, 1.9f);

    TheScene().RemoveEntity(b);
    Run(0);
    EXPECT_FALSE(TheScene().HasEntity(spring));
}
} // namespace
