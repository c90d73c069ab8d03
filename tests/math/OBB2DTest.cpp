#include "MathTestUtil.h"

#include <cmath>
#include <cstdint>
#include <vector>

using namespace math;
using mathtest::FailedAssertionText;
using mathtest::Near;

namespace
{
// Corners and a few inner points of a w x h rectangle centred at c, its long side along the angle.
std::vector<Vec2> RotatedRectangle(const Vec2& c, float w, float h, float angle)
{
    const Vec2 u(std::cos(angle), std::sin(angle));
    const Vec2 v = Rot90CCW(u);
    std::vector<Vec2> points;
    for (const Vec2& local : {Vec2(0.5f, 0.5f), Vec2(-0.5f, 0.5f), Vec2(0.1f, -0.2f), Vec2(-0.5f, -0.5f),
                              Vec2(0.5f, -0.5f), Vec2(0, 0)})
        points.push_back(c + u * (local.x * w) + v * (local.y * h));
    return points;
}
} // namespace

TEST(OBB2D, EmptyAndEverythingHaveInfiniteExtents)
{
    const OBB2D empty = OBB2D::Empty();
    EXPECT_EQ(-INF, empty.halfExtent[0]);
    EXPECT_EQ(-INF, empty.halfExtent[1]);
    EXPECT_FALSE(empty.Contains(Vec2(0, 0)));
    const OBB2D everything = OBB2D::Everything();
    EXPECT_EQ(INF, everything.halfExtent[0]);
    EXPECT_EQ(INF, everything.halfExtent[1]);
    EXPECT_TRUE(everything.Contains(Vec2(-1e30f, 1e30f)));

    EXPECT_EQ(OBB2D::Empty().halfExtent[0], OBB2D::Build(nullptr, 0).halfExtent[0]);
    const Vec2 p(3, -2);
    const OBB2D point = OBB2D::Build(&p, 1);
    EXPECT_EQ(p, point.center);
    EXPECT_EQ(0, point.Area());
    EXPECT_EQ(Vec2(1, 0), point.axis[0]);
}

TEST(OBB2D, BuildWithAGivenAxisFitsTheProjections)
{
    const Vec2 points[] = {Vec2(1, 1), Vec2(5, 2), Vec2(3, 4)};
    const OBB2D box = OBB2D::Build(points, 3, Vec2(1, 0));
    EXPECT_EQ(Vec2(3, 2.5f), box.center);
    EXPECT_EQ(2, box.halfExtent[0]);
    EXPECT_EQ(1.5f, box.halfExtent[1]);
    EXPECT_EQ(Vec2(0, 1), box.axis[1]);
    EXPECT_EQ(12, box.Area());

    // With the axis turned a quarter, the extents swap and the second axis points to -x.
    const OBB2D turned = OBB2D::Build(points, 3, Vec2(0, 1));
    EXPECT_TRUE(Near(box.center, turned.center));
    EXPECT_EQ(1.5f, turned.halfExtent[0]);
    EXPECT_EQ(2, turned.halfExtent[1]);
    EXPECT_EQ(Vec2(-1, 0), turned.axis[1]);
}

TEST(OBB2D, BuildOfTwoPointsIsASegment)
{
    const Vec2 points[] = {Vec2(1, 1), Vec2(4, 5)};
    const OBB2D box = OBB2D::Build(points, 2);
    EXPECT_NEAR(0, box.Area(), 1e-6f);
    EXPECT_NEAR(2.5f, std::max(box.halfExtent[0], box.halfExtent[1]), 1e-5f);
    EXPECT_NEAR(0, Cross(box.GetLongAxis(), Vec2(0.6f, 0.8f)), 1e-5f);
    EXPECT_TRUE(Near(Vec2(2.5f, 3), box.center));
}

TEST(OBB2D, BuildFindsTheOrientationAndAreaOfARotatedRectangle)
{
    for (float angle : {0.3f, 1.0f, -0.45f, 2.2f})
    {
        const std::vector<Vec2> points = RotatedRectangle(Vec2(-2, 7), 4, 1, angle);
        const OBB2D box = OBB2D::Build(points);
        // The farthest pair is a diagonal, whose box has area 8; the search must find the true one, to
        // within half its fine step of about 0.005 rad.
        EXPECT_NEAR(4, box.Area(), 0.1f) << angle;
        EXPECT_NEAR(0, Cross(box.GetLongAxis(), Vec2(std::cos(angle), std::sin(angle))), 0.01f) << angle;
        EXPECT_TRUE(Near(Vec2(-2, 7), box.center, 0.05f)) << angle;
        EXPECT_NEAR(0, Cross(box.axis[0], box.axis[1]) - 1, 1e-5f);
        for (const Vec2& p : points)
            EXPECT_LE(box.Distance(p), 1e-5f) << angle;
    }
}

TEST(OBB2D, ContainsDistanceAndCornersOfARotatedBox)
{
    const Vec2 axis(0.6f, 0.8f);
    const OBB2D box(Vec2(1, 1), axis, 2, 1);
    const Vec2 a1 = Rot90CCW(axis);

    EXPECT_TRUE(box.Contains(Vec2(1, 1) + axis * 1.999f));
    EXPECT_FALSE(box.Contains(Vec2(1, 1) + axis * 2.001f));
    EXPECT_TRUE(box.Contains(Vec2(1, 1) + a1 * 0.999f + axis * 1.999f));
    // Exactly on the border of an axis-aligned box, where no rounding intervenes.
    EXPECT_TRUE(OBB2D::FromCenterRad(Vec2(0, 0), 1).Contains(Vec2(1, -1)));
    EXPECT_FALSE(OBB2D::FromCenterRad(Vec2(0, 0), 1).Contains(Vec2(1, -1.0001f)));

    EXPECT_NEAR(-1, box.Distance(Vec2(1, 1)), 1e-5f);
    EXPECT_NEAR(-0.5f, box.Distance(Vec2(1, 1) + axis * 1.5f), 1e-5f);
    EXPECT_NEAR(3, box.Distance(Vec2(1, 1) + a1 * 4), 1e-5f);
    EXPECT_NEAR(5, box.Distance(Vec2(1, 1) + axis * 5 + a1 * 5), 1e-5f);

    Vec2 corners[4];
    box.CalcCorners(corners);
    EXPECT_TRUE(Near(Vec2(1, 1) + axis * 2 + a1, corners[0]));
    EXPECT_TRUE(Near(Vec2(1, 1) + axis * 2 - a1, corners[1]));
    EXPECT_TRUE(Near(Vec2(1, 1) - axis * 2 - a1, corners[2]));
    EXPECT_TRUE(Near(Vec2(1, 1) - axis * 2 + a1, corners[3]));
    for (const Vec2& corner : corners)
        EXPECT_NEAR(0, box.Distance(corner), 1e-5f);

    // Projected onto its own axes the radius is the half-extent; onto x, the sum of the parts.
    EXPECT_NEAR(2, box.ProjectedRadius(axis), 1e-6f);
    EXPECT_NEAR(2 * 0.6f + 1 * 0.8f, box.ProjectedRadius(Vec2(1, 0)), 1e-6f);
}

TEST(OBB2D, IntersectsUsesAllFourAxes)
{
    const OBB2D a = OBB2D::FromCenterRad(Vec2(0, 0), 1);
    EXPECT_TRUE(Intersects(a, OBB2D::FromCenterRad(Vec2(2, 0), 1)));
    EXPECT_FALSE(Intersects(a, OBB2D::FromCenterRad(Vec2(2.01f, 0), 1)));

    // A diamond off the corner of a: the axis-aligned boxes overlap, and only the diamond's own axes
    // separate the two.
    const float s = std::sqrt(0.5f);
    const OBB2D diamond(Vec2(2.2f, 2.2f), Vec2(s, s), 1, 1);
    EXPECT_FALSE(IsSeparatingAxis(a, diamond, Vec2(1, 0)));
    EXPECT_FALSE(IsSeparatingAxis(a, diamond, Vec2(0, 1)));
    EXPECT_TRUE(IsSeparatingAxis(a, diamond, Vec2(s, s)));
    EXPECT_FALSE(Intersects(a, diamond));
    EXPECT_FALSE(Intersects(diamond, a));
    const OBB2D closer(Vec2(1.6f, 1.6f), Vec2(s, s), 1, 1);
    EXPECT_TRUE(Intersects(a, closer));
}

TEST(OBB2D, FramesAndTransform)
{
    const OBB2D box(Vec2(3, -1), Vec2(0, 1), 2, 0.5f);
    const Mat3 toBox = box.WorldToOBBmatrix();
    EXPECT_TRUE(Near(Vec2(0, 0), TransformCoordinate(toBox, box.center)));
    EXPECT_TRUE(Near(Vec2(2, 0), TransformCoordinate(toBox, Vec2(3, 1))));
    EXPECT_TRUE(Near(Vec2(0, 0.5f), TransformCoordinate(toBox, Vec2(2.5f, -1))));
    EXPECT_TRUE(Near(Vec2(1, 0), TransformDirection(box.RotMat3(), box.axis[0])));

    const Mat2D m = Mat2D::TranslationRotation(Vec2(1, 2), PIf / 2);
    const OBB2D moved = Transform(m, box);
    EXPECT_TRUE(Near(Vec2(2, 5), moved.center));
    EXPECT_TRUE(Near(Vec2(-1, 0), moved.axis[0]));
    EXPECT_TRUE(Near(Vec2(0, -1), moved.axis[1]));
    EXPECT_EQ(2, moved.halfExtent[0]);
    EXPECT_EQ(0.5f, moved.halfExtent[1]);
}

TEST(OBB2D, FindMainAxisSimpleTakesTheFirstFarthestPair)
{
    const Vec2 points[] = {Vec2(0, 0), Vec2(1, 0), Vec2(0, 1), Vec2(1, 1)};
    // Both diagonals are longest; (0, 3) comes first, so not (1, 2).
    EXPECT_TRUE(Near(Vec2(std::sqrt(0.5f), std::sqrt(0.5f)), FindMainAxisSimple(points, 4)));

    const Vec2 same[] = {Vec2(2, 2), Vec2(2, 2), Vec2(2, 2)};
    EXPECT_EQ(Vec2(0, 0), FindMainAxisSimple(same, 3));
    EXPECT_EQ(0, OBB2D::Build(same, 3).Area());

    EXPECT_NE(std::string::npos,
              FailedAssertionText([&] { FindMainAxisSimple(points, 1); }).find("nPoints > 1"));
}

// Beyond a few hundred points the pair is found on the convex hull; it must be the very pair that the walk
// over all pairs finds, ties and repeated points included, or bounding shapes would change with the count.
TEST(FarthestPair, HullSearchFindsThePairOfTheWalkOverAllPairs)
{
    std::uint32_t state = 12345u;
    auto next = [&state]
    {
        state = state * 1664525u + 1013904223u;
        return static_cast<float>(state >> 8) / 16777216.0f;
    };
    auto check = [](const std::vector<Vec2>& points, const char* what)
    {
        int i = -1, j = -1, ei = -1, ej = -1;
        FindFarthestPair(points.data(), static_cast<int>(points.size()), i, j);
        FindFarthestPairAllPairs(points.data(), static_cast<int>(points.size()), ei, ej);
        EXPECT_EQ(ei, i) << what;
        EXPECT_EQ(ej, j) << what;
    };

    for (int round = 0; round < 20; ++round)
    {
        std::vector<Vec2> cloud;
        for (int k = 0; k < 600; ++k)
            cloud.push_back(Vec2(next() * 10 - 5, next() * 3 - 1));
        check(cloud, "random cloud");
    }

    // A square grid: both diagonals tie, and corners repeat at higher indices.
    std::vector<Vec2> grid;
    for (int x = 0; x < 20; ++x)
        for (int y = 0; y < 20; ++y)
            grid.push_back(Vec2(float(x), float(y)));
    grid.push_back(Vec2(19, 19));
    grid.push_back(Vec2(0, 0));
    check(grid, "grid");

    std::vector<Vec2> line;
    for (int k = 0; k < 400; ++k)
        line.push_back(Vec2(float(k % 37), float(k % 37) * 2));
    check(line, "collinear points");

    const std::vector<Vec2> same(300, Vec2(2, 2));
    check(same, "one place");

    // A regular polygon of many vertices: every vertex is on the hull.
    std::vector<Vec2> circle;
    for (int k = 0; k < 1000; ++k)
        circle.push_back(Vec2(std::cos(k * 2 * PIf / 1000), std::sin(k * 2 * PIf / 1000)));
    check(circle, "circle");
}
