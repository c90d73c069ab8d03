#include "EntityTestWorld.h"

#include "app/App.h"
#include "app/AppSettings.h"
#include "app/Camera.h"
#include "app/EntitySerializer.h"
#include "physics/SPH.h"

#include <cmath>

namespace
{
using entitytest::World;
using GeomEntityTest = World;

TEST_F(GeomEntityTest, NewShapeGetsABodyOfItsOwnAndLeavesWithIt)
{
    util::SharedPtr<app::BoxEntity> box = AddBox(math::Vec2(1, 2), math::Vec2(3, 4));
    const util::SharedPtr<physics::Body> body = box->GetBody();
    ASSERT_TRUE(body);
    EXPECT_TRUE(Sim().HasBody(body));
    EXPECT_TRUE(box->IsAlive());
    EXPECT_FLOAT_EQ(body->GetMass(), box->GetGeom()->Mass());
    EXPECT_TRUE(box->IsOnEntity(math::Vec2(3.4f, 4.9f)));
    EXPECT_FALSE(box->IsOnEntity(math::Vec2(3.6f, 4.0f)));

    TheScene().RemoveEntity(box);
    EXPECT_FALSE(Sim().HasBody(body));
    EXPECT_FALSE(box->IsAlive());
}

TEST_F(GeomEntityTest, GluedShapesShareOneBodyOfSummedMassAndLoosenApart)
{
    util::SharedPtr<app::BoxEntity> a = AddBox(math::Vec2(1, 1), math::Vec2(0, 0));
    util::SharedPtr<app::CircleEntity> b = AddCircle(0.5f, math::Vec2(1, 0));
    util::SharedPtr<app::BoxEntity> c = AddBox(math::Vec2(2, 1), math::Vec2(0, 2));
    const float masses = a->GetGeom()->Mass() + b->GetGeom()->Mass() + c->GetGeom()->Mass();

    a->GetBody()->AddGeom(b->GetGeom());
    a->GetBody()->AddGeom(c->GetGeom());
    Run(1);
    const util::SharedPtr<physics::Body> body = a->GetBody();
    EXPECT_EQ(b->GetBody(), body);
    EXPECT_EQ(c->GetBody(), body);
    EXPECT_NEAR(body->GetMass(), masses, 1e-4f * masses);
    EXPECT_TRUE(a->IsAlive() && b->IsAlive() && c->IsAlive());

    // Loosening one shape: it leaves the shared body and comes back on a body of its own.
    b->RemoveFromSimulation();
    b->AddToSimulation();
    EXPECT_NE(b->GetBody(), body);
    EXPECT_EQ(a->GetBody(), body);
    EXPECT_NEAR(body->GetMass(), masses - b->GetGeom()->Mass(), 1e-4f * masses);
    EXPECT_FLOAT_EQ(b->GetBody()->GetMass(), b->GetGeom()->Mass());

    // Removing one of the two still glued leaves the other on the body.
    TheScene().RemoveEntity(c);
    EXPECT_EQ(a->GetBody(), body);
    EXPECT_TRUE(Sim().HasBody(body));
    EXPECT_FLOAT_EQ(body->GetMass(), a->GetGeom()->Mass());
}

TEST_F(GeomEntityTest, AttributesReachTheGeom)
{
    util::SharedPtr<app::BoxEntity> box = AddBox(math::Vec2(1, 1), math::Vec2(0, 0));
    box->m_friction = 0.125f;
    box->m_restitution = 0.75f;
    box->m_collideWater = false;
    box->m_heteroCollide = true;
    box->m_collideSet = 6;
    box->m_density = 3.0f;
    box->m_airFrictionMult = 0.5f;
    const physics::Geom& geom = *box->GetGeom();
    EXPECT_EQ(geom.GetFriction(), 0.125f);
    EXPECT_EQ(geom.GetRestitution(), 0.75f);
    EXPECT_FALSE(geom.GetWaterCollide());
    EXPECT_TRUE(geom.GetHeteroCollide());
    EXPECT_EQ(geom.GetCollideSet(), 6);
    EXPECT_EQ(geom.GetDensity(), 3.0f);
    EXPECT_EQ(geom.GetAirFrictionMult(), 0.5f);
    EXPECT_FLOAT_EQ(box->m_controllerAcc, Sim().GetGravity().Length() + 1.0f);
    EXPECT_EQ(AddFloor(0)->m_collideSet, app::GeomEntity::COLLIDE_ALL);
}

TEST_F(GeomEntityTest, LiquifyFillsTheShapeFromAGridOfAboutOneDropPerDropArea)
{
    const float r = physics::SPH::GetInstancePtr()->m_radius;
    const std::vector<util::SharedPtr<app::FiniteGeomEntity>> shapes = {
        AddBox(math::Vec2(1, 1), math::Vec2(0, 0)), AddBox(math::Vec2(0.6f, 0.3f), math::Vec2(5, 1)),
        AddCircle(0.4f, math::Vec2(-3, 2))};
    for (const util::SharedPtr<app::FiniteGeomEntity>& shape : shapes)
    {
        const float area = shape->GetGeom()->Area();
        const int perArea = int(std::floor(area / (math::PIf * r * r) + 0.5f));
        const std::vector<math::Vec2> points = shape->GetEquidistantPoints();
        // The grid has one cell per drop over the bounding circle, and stops at one point past the count;
        // the share of its cells that falls inside the shape is never below half for these shapes.
        EXPECT_LE(int(points.size()), perArea + 1) << "area " << area;
        EXPECT_GE(2 * int(points.size()), perArea) << "area " << area;
        for (size_t i = 0; i < points.size(); ++i)
        {
            EXPECT_LT(shape->GetGeom()->DistanceWorld(points[i]), 0.0f);
            for (size_t j = 0; j < i; ++j)
                EXPECT_GT(math::Distance(points[i], points[j]), 0.5f * r);
        }
    }
}

TEST_F(GeomEntityTest, LiquifyOfATinyShapeGivesOneDropAtItsCentre)
{
    util::SharedPtr<app::CircleEntity> tiny = AddCircle(0.005f, math::Vec2(2, 3));
    const std::vector<math::Vec2> points = tiny->GetEquidistantPoints();
    ASSERT_EQ(points.size(), 1u);
    EXPECT_NEAR(points[0].x, 2.0f, 1e-5f);
    EXPECT_NEAR(points[0].y, 3.0f, 1e-5f);
}

TEST_F(GeomEntityTest, LiquifyIsCappedByMaxSPHSpawn)
{
    util::SharedPtr<app::BoxEntity> box = AddBox(math::Vec2(2, 2), math::Vec2(0, 0));
    app::AppSettings::GetInstancePtr()->m_maxSPHSpawn = 20;
    const size_t count = box->GetEquidistantPoints().size();
    app::AppSettings::GetInstancePtr()->m_maxSPHSpawn = 10000;
    EXPECT_LE(count, 21u);
    EXPECT_GE(count, 10u);
}

TEST_F(GeomEntityTest, ScaledBoxStaysABoxUnlessSkewed)
{
    util::SharedPtr<app::BoxEntity> box = AddBox(math::Vec2(2, 1), math::Vec2(1, 1));
    box->SetColor(math::Vec4(0.2f, 0.4f, 0.6f, 1));
    box->m_friction = 0.3f;

    app::GeomEntityPtr mirrored = box->ScaledClone(math::Vec2(-1, 1));
    util::SharedPtr<app::BoxEntity> mirroredBox = util::dynamic_pointer_cast<app::BoxEntity>(mirrored);
    ASSERT_TRUE(mirroredBox);
    EXPECT_NEAR(mirroredBox->GetHalfSize().x * mirroredBox->GetHalfSize().y, 0.5f, 1e-5f);
    EXPECT_NEAR(mirroredBox->GetGeom()->Area(), 2.0f, 1e-4f);

    app::GeomEntityPtr wide = box->ScaledClone(math::Vec2(2, 1));
    ASSERT_TRUE(util::dynamic_pointer_cast<app::BoxEntity>(wide));
    EXPECT_NEAR(wide->GetGeom()->Area(), 4.0f, 1e-4f);

    // Turned by 45 degrees, a stretch along x skews the box into a parallelogram.
    box->Transform(math::Mat2D::Translation(math::Vec2(1, 1)) * math::Mat2D::Rotation(math::PIf / 4) *
                   math::Mat2D::Translation(math::Vec2(-1, -1)));
    app::GeomEntityPtr skewed = box->ScaledClone(math::Vec2(2, 1));
    util::SharedPtr<app::PolyEntity> poly = util::dynamic_pointer_cast<app::PolyEntity>(skewed);
    ASSERT_TRUE(poly);
    EXPECT_NEAR(poly->GetGeom()->Area(), 4.0f, 0.02f);
    EXPECT_EQ(poly->GetColor(), box->GetColor());
    EXPECT_FLOAT_EQ(poly->m_friction, 0.3f);
    EXPECT_NEAR(math::Distance(poly->GetGeom()->GetPosition(), math::Vec2(1, 1)), 0.0f, 1e-3f);
}

TEST_F(GeomEntityTest, ScaledCircleStaysACircleOnlyWhenScaledEvenly)
{
    util::SharedPtr<app::CircleEntity> circle = AddCircle(0.5f, math::Vec2(0, 0));
    circle->Transform(math::Mat2D::Rotation(0.3f));
    util::SharedPtr<app::CircleEntity> doubled =
        util::dynamic_pointer_cast<app::CircleEntity>(circle->ScaledClone(math::Vec2(2, 2)));
    ASSERT_TRUE(doubled);
    EXPECT_FLOAT_EQ(doubled->GetRadius(), 1.0f);

    util::SharedPtr<app::CircleEntity> mirrored =
        util::dynamic_pointer_cast<app::CircleEntity>(circle->ScaledClone(math::Vec2(-1, 1)));
    ASSERT_TRUE(mirrored);
    EXPECT_NEAR(mirrored->GetGeom()->GetAngle(), math::PIf - 0.3f, 1e-5f);

    util::SharedPtr<app::PolyEntity> oval =
        util::dynamic_pointer_cast<app::PolyEntity>(circle->ScaledClone(math::Vec2(2, 3)));
    ASSERT_TRUE(oval);
    EXPECT_EQ(oval->m_polygon->GetVertices().size(), 64u);
    EXPECT_NEAR(oval->GetGeom()->Area(), math::PIf * 0.25f * 6.0f, 0.1f);
}

TEST_F(GeomEntityTest, ErasureAndLassoFollowTheShape)
{
    util::SharedPtr<app::BoxEntity> box = AddBox(math::Vec2(1, 1), math::Vec2(0, 0));
    util::SharedPtr<app::CircleEntity> circle = AddCircle(0.5f, math::Vec2(3, 0));
    util::SharedPtr<app::PlaneEntity> floor = AddFloor(-2);
    const std::vector<physics::Linesegment> through = {
        physics::Linesegment(math::Vec2(-1, 0), math::Vec2(4, 0))};
    const std::vector<physics::Linesegment> endsInside = {
        physics::Linesegment(math::Vec2(-1, 0.1f), math::Vec2(0, 0.1f))};
    EXPECT_TRUE(box->ErasedBy(through));
    EXPECT_TRUE(circle->ErasedBy(through));
    EXPECT_FALSE(box->ErasedBy(endsInside));
    EXPECT_FALSE(floor->ErasedBy(through));
    EXPECT_TRUE(floor->ErasedBy({physics::Linesegment(math::Vec2(0, -1), math::Vec2(0, -3))}));

    const physics::Polygon lasso(physics::testing::RegularPolygonPoints(math::Vec2(0, 0), 1.2f, 24));
    EXPECT_TRUE(box->IsContainedBy(lasso));
    EXPECT_FALSE(circle->IsContainedBy(lasso));
    EXPECT_FALSE(floor->IsContainedBy(lasso));
}

TEST_F(GeomEntityTest, RecordWritesPoseSizeAndSharedBody)
{
    util::SharedPtr<app::BoxEntity> a = AddBox(math::Vec2(1, 2), math::Vec2(3, 4));
    util::SharedPtr<app::BoxEntity> b = AddBox(math::Vec2(1, 1), math::Vec2(5, 4));
    app::EntitySerializer alone;
    a->SerializeTo(alone);
    EXPECT_EQ(alone.Get<math::Vec2>("size"), math::Vec2(1, 2));
    EXPECT_EQ(alone.Get<math::Vec2>("pos"), math::Vec2(3, 4));
    EXPECT_FLOAT_EQ(alone.Get<float>("angle"), 0.0f);
    EXPECT_FALSE(alone.Has("body"));
    EXPECT_TRUE(alone.Has("friction"));

    a->GetBody()->AddGeom(b->GetGeom());
    app::EntitySerializer glued;
    a->SerializeTo(glued);
    EXPECT_EQ(glued.Get<unsigned long>("body"), a->GetBody()->GetId());

    util::SharedPtr<app::BoxEntity> read =
        QLEX_NEW new app::BoxEntity(QLEX_NEW new physics::Box(math::Vec2(1, 1), math::Vec2(0, 0)));
    read->Deserialize(alone);
    EXPECT_EQ(read->GetHalfSize(), math::Vec2(0.5f, 1.0f));
    EXPECT_EQ(read->GetGeom()->GetPosition(), math::Vec2(3, 4));
}
} // namespace

namespace
{
// A direction source that holds still at one direction.
class FixedDir : public input::DirInput
{
public:
    explicit FixedDir(math::Vec2 dir) : m_dir(dir) {}
    math::TVector2<float> GetDir() const override { return m_dir; }
    util::String Serialize() const override { return "fixed"; }

private:
    math::Vec2 m_dir;
};

TEST_F(GeomEntityTest, ControllerPushesOnlyInRunningStepsAndLeavesWithTheSimulation)
{
    Sim().m_gravitySwitch = false;
    Sim().m_airSwitch = false;
    util::SharedPtr<app::BoxEntity> box = AddBox(math::Vec2(1, 1), math::Vec2(0, 0));
    box->m_forceController = QLEX_NEW new FixedDir(math::Vec2(1, 0));
    box->m_controllerAcc = 2.0f;
    Run(50);
    // 2 m/s^2 for 49 steps of 0.01 s: a push given after a step acts in the next one.
    EXPECT_NEAR(box->GetBody()->GetVelocity().x, 0.98f, 0.002f);

    // Frozen steps push nothing.
    const math::Vec2 before = box->GetBody()->GetVelocity();
    for (int i = 0; i < 10; ++i)
        Sim().Step(false);
    EXPECT_EQ(box->GetBody()->GetVelocity(), before);

    // Out of the simulation, the step callback is gone with its adder.
    TheScene().RemoveEntity(box);
    EXPECT_FALSE(box->m_forceAdder);
}

TEST_F(GeomEntityTest, PolygonTurnsIntoACircleOfItsAreaOnItsBody)
{
    AddFloor(-5);
    util::SharedPtr<app::PolyEntity> poly = QLEX_NEW new app::PolyEntity(
        QLEX_NEW new physics::Polygon(physics::testing::RegularPolygonPoints(math::Vec2(1, 1), 0.5f, 5)));
    TheScene().AddEntity(poly);
    poly->m_density = 3.0f;
    poly->m_friction = 0.7f;
    poly->SetColor(math::Vec4(0.3f, 0.2f, 0.1f, 1));
    util::SharedPtr<app::BoxEntity> glued = AddBox(math::Vec2(0.2f, 0.2f), math::Vec2(1.6f, 1));
    poly->GetBody()->AddGeom(glued->GetGeom());

    util::SharedPtr<app::CircleEntity> circle = app::TransformIntoCircle(poly);
    EXPECT_FALSE(TheScene().HasEntity(poly));
    EXPECT_TRUE(TheScene().HasEntity(circle));
    EXPECT_NEAR(circle->GetGeom()->Area(), poly->GetGeom()->Area(), 1e-4f);
    EXPECT_NEAR(math::Distance(circle->GetGeom()->GetPosition(), poly->GetGeom()->GetPosition()), 0.0f,
                1e-5f);
    EXPECT_FLOAT_EQ(circle->GetGeom()->GetDensity(), 3.0f);
    EXPECT_FLOAT_EQ(circle->m_friction, 0.7f);
    EXPECT_EQ(circle->GetColor(), poly->GetColor());
    EXPECT_EQ(circle->GetBody(), glued->GetBody());
    Run(1);
    EXPECT_TRUE(circle->IsAlive() && glued->IsAlive());
}

TEST_F(GeomEntityTest, EnergyCountsMotionAndHeight)
{
    Sim().m_airSwitch = false;
    util::SharedPtr<app::BoxEntity> box = AddBox(math::Vec2(1, 1), math::Vec2(0, 2));
    const float m = box->GetGeom()->Mass();
    const float g = Sim().GetGravity().Length();
    EXPECT_NEAR(box->CalcEnergy(), m * g * 2.0f, 1e-3f * m);
    // Falling turns height into motion: the sum stays.
    const float before = box->CalcEnergy();
    Run(30);
    EXPECT_NEAR(box->CalcEnergy(), before, 0.01f * before);
    EXPECT_LT(box->GetGeom()->GetPosition().y, 1.9f);
}
} // namespace

namespace
{
TEST_F(GeomEntityTest, TrackedRecordMakesTheCameraFollowTheShapeUntilItLeaves)
{
    app::Camera& camera = *TheScene().GetCamera();
    camera.SetTracked(nullptr);
    util::SharedPtr<app::BoxEntity> box =
        QLEX_NEW new app::BoxEntity(QLEX_NEW new physics::Box(math::Vec2(1, 1), math::Vec2(0, 5)));
    app::EntitySerializer record;
    record.Set("tracked", true);
    box->Deserialize(record);
    TheScene().AddEntity(box);
    EXPECT_TRUE(camera.IsTracking());
    const math::Vec2 pan = camera.GetPan();
    Run(20);
    camera.Update(0.2f);
    EXPECT_LT(camera.GetPan().y, pan.y);

    TheScene().RemoveEntity(box);
    TheScene().Update(0.01f);
    camera.Update(0.01f);
    EXPECT_FALSE(camera.IsTracking());
    TheScene().Update(0.01f);
    EXPECT_FALSE(TheScene().GetTrackedGroup());
}
} // namespace
