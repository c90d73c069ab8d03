#include "MathTestUtil.h"

#include <vector>

using namespace math;
using mathtest::Near;

TEST(BoundingBox, EmptyContainsNothingAndBecomesAPointAtFirstInclude)
{
    BoundingBox2 box = BoundingBox2::Empty();
    EXPECT_FALSE(box.Contains(Vec2(0, 0)));
    EXPECT_FALSE(box.IsFinite());
    EXPECT_TRUE(box.IsEmpty());

    box.Include(Vec2(2, -3));
    EXPECT_EQ(Vec2(2, -3), box.min);
    EXPECT_EQ(Vec2(2, -3), box.max);
    EXPECT_TRUE(box.IsFinite());
    EXPECT_TRUE(box.Contains(Vec2(2, -3)));
    EXPECT_EQ(0, box.GetArea());

    box.Include(Vec2(-1, 1));
    box.Include(BoundingBox2(Vec2(0, 0), Vec2(3, 0.5f)));
    EXPECT_EQ(BoundingBox2(Vec2(-1, -3), Vec2(3, 1)), box);
    EXPECT_EQ(Vec2(1, -1), box.GetCenter());
    EXPECT_EQ(Vec2(4, 4), box.GetSize());
    EXPECT_EQ(16, box.GetArea());

    // An empty box included changes nothing.
    box.Include(BoundingBox2::Empty());
    EXPECT_EQ(BoundingBox2(Vec2(-1, -3), Vec2(3, 1)), box);

    EXPECT_TRUE(BoundingBox2::Everything().Contains(Vec2(1e30f, -1e30f)));
    EXPECT_FALSE(BoundingBox2::Everything().IsFinite());
    EXPECT_FALSE(BoundingBox2(Vec2(0, 0), Vec2(1, INF)).IsFinite());
}

TEST(BoundingBox, CornersSizeAndTranslation)
{
    BoundingBox2 box(Vec2(1, 2), Vec2(5, 4));
    const std::vector<Vec2> corners = box.GetCorners();
    ASSERT_EQ(4u, corners.size());
    EXPECT_EQ(Vec2(1, 2), corners[0]);
    EXPECT_EQ(Vec2(5, 2), corners[1]);
    EXPECT_EQ(Vec2(1, 4), corners[2]);
    EXPECT_EQ(Vec2(5, 4), corners[3]);

    box.SetSize(Vec2(2, 6));
    EXPECT_EQ(BoundingBox2(Vec2(2, 0), Vec2(4, 6)), box);
    EXPECT_EQ(BoundingBox2(Vec2(1, 1), Vec2(3, 7)), BoundingBox2::Translate(box, Vec2(-1, 1)));
    // Half sizes (1, 3) weighted by |n|.
    EXPECT_FLOAT_EQ(1 * 0.5f + 3 * 2, box.ProjectedRadius(Vec2(-0.5f, 2)));
}

TEST(BoundingBox, ContainsAndIntersectsIncludeTheBorder)
{
    const BoundingBox2 box(Vec2(0, 0), Vec2(2, 1));
    EXPECT_TRUE(box.Contains(Vec2(2, 1)));
    EXPECT_TRUE(box.Contains(Vec2(0, 0.5f)));
    EXPECT_FALSE(box.Contains(Vec2(2.0001f, 0.5f)));
    EXPECT_FALSE(box.Contains(Vec2(1, -0.0001f)));
    EXPECT_TRUE(box.Contains(box));
    EXPECT_TRUE(box.Contains(BoundingBox2(Vec2(0.5f, 0), Vec2(2, 0.5f))));
    EXPECT_FALSE(box.Contains(BoundingBox2(Vec2(0.5f, 0), Vec2(2.5f, 0.5f))));

    EXPECT_TRUE(Intersects(box, BoundingBox2(Vec2(2, 1), Vec2(3, 3))));
    EXPECT_TRUE(Intersects(BoundingBox2(Vec2(-1, -1), Vec2(0, 0)), box));
    EXPECT_FALSE(Intersects(box, BoundingBox2(Vec2(2.001f, 0), Vec2(3, 1))));
    EXPECT_FALSE(Intersects(box, BoundingBox2(Vec2(0, 1.001f), Vec2(1, 2))));
}

TEST(BoundingBox, DistanceIsNegativeInsideAndMeasuredToACornerOutside)
{
    const BoundingBox2 box(Vec2(0, 0), Vec2(4, 2));
    // Inside: minus the smallest gap to the nearer borders.
    EXPECT_FLOAT_EQ(-0.5f, box.Distance(Vec2(1, 1.5f)));
    EXPECT_FLOAT_EQ(-1, box.Distance(Vec2(2, 1)));
    EXPECT_FLOAT_EQ(0, box.Distance(Vec2(4, 1)));
    // Outside beside the top edge, within the x-range: to the corner (4, 2), not the edge.
    EXPECT_FLOAT_EQ(std::sqrt(1.0f + 1.0f), box.Distance(Vec2(3, 3)));
    // Above the middle of the top edge: still a corner, at either end.
    EXPECT_FLOAT_EQ(std::sqrt(4.0f + 1.0f), box.Distance(Vec2(2, 3)));
    // Beyond a corner: the true distance.
    EXPECT_FLOAT_EQ(5, box.Distance(Vec2(-3, -4)));
}

TEST(BoundingBox, OneDimensionalRange)
{
    BoundingBox1<float> range = BoundingBox1<float>::Empty();
    EXPECT_FALSE(range.Contains(0.0f));
    for (float length : {3.0f, -1.0f, 2.0f})
        range.Include(length);
    EXPECT_EQ(-1, range.min);
    EXPECT_EQ(3, range.max);
    EXPECT_EQ(1, range.GetCenter());
    EXPECT_EQ(4, range.GetArea());
    EXPECT_TRUE(range.Contains(3.0f));
    EXPECT_FALSE(range.Contains(3.5f));
    const std::vector<float> ends = range.GetCorners();
    ASSERT_EQ(2u, ends.size());
    EXPECT_EQ(-1, ends[0]);
    EXPECT_EQ(3, ends[1]);
}

TEST(BoundingSphere, BuildBestCoversAllPoints)
{
    EXPECT_EQ(-1, BoundingCircle::BuildBest(0, nullptr).radius);
    const Vec2 one(3, 4);
    const BoundingCircle single = BoundingCircle::BuildBest(1, &one);
    EXPECT_EQ(one, single.center);
    EXPECT_EQ(0, single.radius);

    // The farthest pair is (0, 0) - (4, 0); the third point lies farther from its midpoint than the pair.
    const Vec2 points[] = {Vec2(0, 0), Vec2(4, 0), Vec2(2, 2.5f), Vec2(1, 0)};
    const BoundingCircle c = BoundingCircle::BuildBest(4, points);
    EXPECT_EQ(Vec2(2, 0), c.center);
    EXPECT_FLOAT_EQ(2.5f, c.radius);
    for (const Vec2& p : points)
        EXPECT_TRUE(c.Contains(p));

    const BoundingCircle fixed = BoundingCircle::BuildFromCenterAndPoints(Vec2(0, 0), 4, points);
    EXPECT_FLOAT_EQ(4, fixed.radius);

    const BoundingCircle moved = c.Transform(Mat2D::TranslationRotation(Vec2(1, 1), PIf / 2));
    EXPECT_TRUE(Near(Vec2(1, 3), moved.center));
    EXPECT_EQ(c.radius, moved.radius);

    EXPECT_TRUE(Intersects(BoundingCircle(Vec2(0, 0), 1), BoundingCircle(Vec2(3, 0), 2)));
    EXPECT_FALSE(Intersects(BoundingCircle(Vec2(0, 0), 1), BoundingCircle(Vec2(3.01f, 0), 2)));
    EXPECT_FALSE(Intersects(BoundingCircle::Empty(), BoundingCircle::Everything()));
    EXPECT_TRUE(Intersects(BoundingCircle(Vec2(1e20f, 0), 0), BoundingCircle::Everything()));
}
