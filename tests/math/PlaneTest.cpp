#include "MathTestUtil.h"

using namespace math;
using mathtest::Near;

TEST(Plane, ConstructionNormalisesAndMeasuresSignedDistance)
{
    const Plane p(Vec3(0, 0, 2), -4);
    EXPECT_EQ(Vec3(0, 0, 1), p.normal);
    EXPECT_FLOAT_EQ(-2, p.distance);
    EXPECT_FLOAT_EQ(3, p.Distance(Vec3(7, -1, 5)));

    const Plane q = Plane::FromPointNormal(Vec3(1, 2, 3), Vec3(0, 3, 0));
    EXPECT_TRUE(Near(Vec3(0, 1, 0), q.normal));
    EXPECT_FLOAT_EQ(-2, q.distance);

    // The normal is cross(a - b, c - b): x cross y, so +z; all three points lie on the plane.
    const Vec3 a(1, 0, 1), b(0, 0, 1), c(0, 1, 1);
    const Plane r = Plane::FromPoints(a, b, c);
    EXPECT_TRUE(Near(Vec3(0, 0, 1), r.normal));
    EXPECT_FLOAT_EQ(-1, r.distance);
    for (const Vec3& point : {a, b, c})
        EXPECT_NEAR(0, r.Distance(point), 1e-6f);
}

TEST(Plane, ThreePlanesMeetAtOnePoint)
{
    const Vec3 target(1.5f, -2, 4);
    const Plane a = Plane::FromPointNormal(target, Vec3(1, 0.2f, 0));
    const Plane b = Plane::FromPointNormal(target, Vec3(-0.3f, 1, 0.5f));
    const Plane c = Plane::FromPointNormal(target, Vec3(0.1f, -0.4f, 1));
    EXPECT_TRUE(Near(target, Plane3Intersection(a, b, c), 1e-5f));
    EXPECT_TRUE(Near(target, Plane3Intersection(c, a, b), 1e-5f));

    // Parallel planes do not meet: no guard, the result is not finite.
    const Plane d = Plane::FromPointNormal(Vec3(0, 0, 1), Vec3(1, 0, 0));
    EXPECT_FALSE(IsFinite(Plane3Intersection(a, d, d)));
}

TEST(Plane2D, KeepsItsScaleUntilNormalised)
{
    Plane2D line = Plane2D::FromPointNormal(Vec2(1, 1), Vec2(0, 2));
    EXPECT_EQ(Vec2(0, 2), line.normal);
    EXPECT_FLOAT_EQ(-2, line.distance);
    EXPECT_FLOAT_EQ(0, line.Distance(Vec2(5, 1)));
    line.Normalize();
    EXPECT_EQ(Vec2(0, 1), line.normal);
    EXPECT_FLOAT_EQ(-1, line.distance);
    EXPECT_FLOAT_EQ(2, line.Distance(Vec2(-4, 3)));
}
