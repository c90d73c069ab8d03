#include "WorldTest.h"

#include "physics/Box.h"
#include "physics/Circle.h"
#include "physics/Linesegment.h"
#include "physics/Plane.h"
#include "physics/Polygon.h"

#include <cmath>

namespace physics
{
TEST_F(WorldTest, MassProperties_CircleBoxAndPolygon)
{
    util::SharedPtr<Circle> circle = QLEX_NEW new Circle(math::Vec2(3.0f, 4.0f), 1.0f);
    util::SharedPtr<Body> body = testing::AddDynamic(circle);
    // Density 2: mass 2 pi, inertia r^2 / 2 * mass = pi.
    EXPECT_NEAR(body->GetMass(), 2.0f * math::PIf, 1e-5f);
    EXPECT_NEAR(body->GetInertia(), math::PIf, 1e-5f);
    EXPECT_EQ(body->GetPosition(), math::Vec2(3.0f, 4.0f));
    EXPECT_EQ(body->GetAngle(), 0.0f);
    EXPECT_NEAR(body->GetArea(), math::PIf, 1e-5f);

    util::SharedPtr<Box> box = QLEX_NEW new Box(math::Vec2(2.0f, 1.0f), math::Vec2(0.0f, 0.0f));
    box->SetDensity(3.0f);
    util::SharedPtr<Body> boxBody = testing::AddDynamic(box);
    EXPECT_FLOAT_EQ(boxBody->GetMass(), 6.0f);
    EXPECT_FLOAT_EQ(boxBody->GetInertia(), 6.0f * (4.0f + 1.0f) / 12.0f);
    // A change of density reaches the body's mass at once.
    box->SetDensity(1.0f);
    EXPECT_FLOAT_EQ(boxBody->GetMass(), 2.0f);

    util::SharedPtr<Polygon> square = Polygon::CreateBox(math::Vec2(-1.0f, -1.0f), math::Vec2(1.0f, 1.0f));
    util::SharedPtr<Body> polyBody = testing::AddDynamic(square);
    EXPECT_NEAR(polyBody->GetMass(), 8.0f, 1e-4f);
    // A square of side 2: (4 + 4) / 12 per unit mass.
    EXPECT_NEAR(polyBody->GetInertia(), 8.0f * 8.0f / 12.0f, 1e-3f);
    EXPECT_NEAR(polyBody->GetPosition().x, 0.0f, 1e-5f);
}

TEST_F(WorldTest, MassProperties_TwoBoxesUseTheParallelAxisTheorem)
{
    util::SharedPtr<Body> body = QLEX_NEW new Body();
    Body::GeomSet geoms;
    geoms.insert(QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(1.0f, 2.0f)));
    geoms.insert(QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(3.0f, 2.0f)));
    body->SetGeoms(geoms);
    EXPECT_NEAR(body->GetPosition().x, 2.0f, 1e-6f);
    EXPECT_NEAR(body->GetPosition().y, 2.0f, 1e-6f);
    EXPECT_FLOAT_EQ(body->GetMass(), 4.0f);
    // Each box: 2 * (1 + 1) / 12 about its centre, plus 2 * 1^2 for the offset.
    EXPECT_NEAR(body->GetInertia(), 2.0f * (2.0f / 12.0f * 2.0f + 2.0f), 1e-5f);

    // Turning the body carries both shapes along about the common centre.
    body->SetAngle(math::PIf / 2.0f);
    body->ApplyPoseChange();
    for (const Body::BodyPart& part : body->GetParts())
    {
        EXPECT_NEAR(part.geom->GetPosition().x, 2.0f, 1e-5f);
        EXPECT_NEAR(std::fabs(part.geom->GetPosition().y - 2.0f), 1.0f, 1e-5f);
    }
}

TEST_F(WorldTest, MassProperties_PlaneMakesABodyImmovable)
{
    util::SharedPtr<Body> body = QLEX_NEW new Body();
    Body::GeomSet geoms;
    geoms.insert(QLEX_NEW new Plane(math::Plane2D(math::Vec2(0.0f, 1.0f), 0.0f)));
    geoms.insert(QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(5.0f, 5.0f)));
    body->SetGeoms(geoms);
    EXPECT_EQ(body->GetMassInv(), 0.0f);
    EXPECT_EQ(body->GetInertiaInv(), 0.0f);
    EXPECT_EQ(body->GetPosition(), math::Vec2(0.0f, 0.0f));
    EXPECT_TRUE(body->IsImmovable());
    // The box stays where it stood.
    for (const Body::BodyPart& part : body->GetParts())
    {
        if (part.geom->GetKind() == Geom::Kind::Box)
        {
            EXPECT_EQ(part.geom->GetPosition(), math::Vec2(5.0f, 5.0f));
        }
    }
}

TEST_F(WorldTest, MassProperties_BadGeometryIsRefused)
{
    util::SharedPtr<Box> box = QLEX_NEW new Box(math::Vec2(1.0f, 1.0f), math::Vec2(0.0f, 0.0f));
    box->SetDensity(0.0f);
    util::SharedPtr<Body> body = QLEX_NEW new Body();
    body->SetGeom(box);
    EXPECT_TRUE(Logged("Bad geometry in Body::AddGeoms"));
    EXPECT_EQ(body->GetMass(), 1.0f);
    EXPECT_TRUE(body->GetGeoms().empty());
    EXPECT_TRUE(body->IsBad());
}

TEST_F(WorldTest, Geoms_MoveBetweenBodiesAndKeepVelocity)
{
    util::SharedPtr<Circle> a = QLEX_NEW new Circle(math::Vec2(0.0f, 0.0f), 1.0f);
    util::SharedPtr<Circle> b = QLEX_NEW new Circle(math::Vec2(4.0f, 0.0f), 1.0f);
    util::SharedPtr<Body> first = testing::AddDynamic(a);
    util::SharedPtr<Body> second = testing::AddDynamic(b);
    first->SetVelocity(math::Vec2(1.0f, 2.0f));
    first->AddGeom(b);
    EXPECT_EQ(first->GetGeoms().size(), 2u);
    EXPECT_TRUE(second->GetGeoms().empty());
    EXPECT_EQ(b->GetBody(), first.get());
    EXPECT_EQ(first->GetVelocity(), math::Vec2(1.0f, 2.0f));
    EXPECT_NEAR(first->GetPosition().x, 2.0f, 1e-6f);

    first->RemoveGeom(a);
    EXPECT_EQ(a->GetBody(), nullptr);
    EXPECT_EQ(first->GetPosition(), math::Vec2(4.0f, 0.0f));
    // Removing a shape the body doesn't hold changes nothing.
    first->RemoveGeom(a);
    EXPECT_EQ(first->GetGeoms().size(), 1u);
}

TEST_F(WorldTest, NoCollide_IsACountPerPartner)
{
    util::SharedPtr<Circle> a = QLEX_NEW new Circle(math::Vec2(0.0f, 0.0f), 1.0f);
    util::SharedPtr<Circle> b = QLEX_NEW new Circle(math::Vec2(1.0f, 0.0f), 1.0f);
    a->AddNoCollide(b.get());
    a->AddNoCollide(b.get());
    a->RemoveNoCollide(b.get());
    EXPECT_TRUE(a->HasNoCollide(b.get()));
    EXPECT_FALSE(b->HasNoCollide(a.get()));
    a->RemoveNoCollide(b.get());
    EXPECT_FALSE(a->HasNoCollide(b.get()));
}

TEST_F(WorldTest, Shapes_DistanceNormalAndClosestEdge)
{
    Box box(math::Vec2(4.0f, 2.0f), math::Vec2(0.0f, 0.0f));
    EXPECT_FLOAT_EQ(box.DistanceWorld(math::Vec2(0.0f, 0.0f)), -1.0f);
    EXPECT_FLOAT_EQ(box.DistanceWorld(math::Vec2(3.0f, 0.0f)), 1.0f);
    // Outside within the x range: measured to the face; beyond a corner: to the corner.
    EXPECT_FLOAT_EQ(box.DistanceWorld(math::Vec2(5.0f, 5.0f)), 5.0f);
    const math::Vec2 inside(1.5f, 0.2f);
    EXPECT_EQ(box.NormalWorld(inside), math::Vec2(1.0f, 0.0f));
    const math::Vec2 edge = box.GetClosestEdge(inside);
    EXPECT_NEAR(edge.x, 2.0f, 1e-6f);
    EXPECT_NEAR(edge.y, 0.2f, 1e-6f);

    Circle circle(math::Vec2(1.0f, 1.0f), 2.0f);
    EXPECT_FLOAT_EQ(circle.DistanceWorld(math::Vec2(1.0f, 5.0f)), 2.0f);
    EXPECT_EQ(circle.GetClosestEdge(math::Vec2(1.0f, 1.0f)), math::Vec2(3.0f, 1.0f));
    EXPECT_EQ(circle.IntersectCountWorld(Linesegment(math::Vec2(-5.0f, 1.0f), math::Vec2(5.0f, 1.0f))), 2);
    EXPECT_EQ(circle.IntersectCountWorld(Linesegment(math::Vec2(1.0f, 1.0f), math::Vec2(5.0f, 1.0f))), 1);
    EXPECT_EQ(circle.IntersectCountWorld(Linesegment(math::Vec2(-5.0f, 4.0f), math::Vec2(5.0f, 4.0f))), 0);

    Plane plane(math::Plane2D(math::Vec2(0.0f, 1.0f), -2.0f));
    EXPECT_FLOAT_EQ(plane.DistanceWorld(math::Vec2(7.0f, 5.0f)), 3.0f);
    EXPECT_EQ(plane.GetClosestEdge(math::Vec2(7.0f, 5.0f)), math::Vec2(7.0f, 2.0f));
    // Moving the plane's pose moves the plane.
    plane.SetPos(math::Vec2(0.0f, 4.0f));
    EXPECT_FLOAT_EQ(plane.DistanceWorld(math::Vec2(7.0f, 5.0f)), 1.0f);
}

TEST_F(WorldTest, Linesegments_IntersectionRules)
{
    const math::Vec2 o(0.0f, 0.0f);
    // Joined end to start: no crossing. Sharing the first point: a crossing.
    EXPECT_FALSE(
        LineSegmentIntersectTest(o, math::Vec2(1.0f, 1.0f), math::Vec2(1.0f, 1.0f), math::Vec2(2.0f, 0.0f)));
    EXPECT_TRUE(LineSegmentIntersectTest(o, math::Vec2(1.0f, 1.0f), o, math::Vec2(1.0f, 0.0f)));
    math::Vec2 at;
    EXPECT_TRUE(LineSegmentIntersectTest(math::Vec2(-1.0f, 0.0f), math::Vec2(1.0f, 0.0f),
                                         math::Vec2(0.0f, -1.0f), math::Vec2(0.0f, 1.0f), &at));
    EXPECT_NEAR(at.x, 0.0f, 1e-6f);
    EXPECT_FALSE(
        LineSegmentIntersectTest(o, math::Vec2(1.0f, 0.0f), math::Vec2(0.0f, 1.0f), math::Vec2(1.0f, 1.0f)));

    float t;
    const Linesegment degenerate(math::Vec2(1.0f, 1.0f), math::Vec2(1.0f, 1.0f));
    EXPECT_EQ(degenerate.ClosestPoint(math::Vec2(5.0f, 5.0f), t), math::Vec2(5.0f, 5.0f));
    const Linesegment s(o, math::Vec2(2.0f, 0.0f));
    EXPECT_EQ(s.ClosestPoint(math::Vec2(-1.0f, 1.0f), t), o);
    EXPECT_EQ(t, 0.0f);
    EXPECT_TRUE(s.IsPointOnTheLeft(math::Vec2(1.0f, 1.0f)));
    EXPECT_FALSE(s.IsPointOnTheLeft(math::Vec2(1.0f, -1.0f)));
}

} // namespace physics
