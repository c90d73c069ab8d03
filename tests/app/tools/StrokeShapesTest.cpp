// The sketch tools' reading of a stroke, at and just beyond each threshold, without a window.
#include "app/tools/StrokeShapes.h"
#include "app/tools/Line.h"
#include "physics/Polygon.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{
using math::Vec2;

app::Line MakeLine(std::initializer_list<Vec2> points)
{
    return app::Line(std::vector<Vec2>(points));
}

// A zigzag from (0, 0) to (length, 0) whose corners swing `amplitude` to either side.
app::Line Zigzag(float length, float amplitude, int teeth = 6)
{
    app::Line line;
    line.Add(Vec2(0, 0));
    for (int i = 1; i < 2 * teeth; ++i)
        line.Add(Vec2(length * float(i) / float(2 * teeth), i % 2 ? amplitude : -amplitude));
    line.Add(Vec2(length, 0));
    return line;
}

std::vector<Vec2> CirclePoints(Vec2 center, float radius, int count)
{
    std::vector<Vec2> points;
    for (int i = 0; i < count; ++i)
    {
        const float a = 2 * math::PIf * float(i) / float(count);
        points.push_back(center + Vec2(std::cos(a), std::sin(a)) * radius);
    }
    return points;
}
} // namespace

TEST(Line, KeepsOnePointOfARepeatAndMeasuresItsLength)
{
    app::Line line;
    EXPECT_EQ(line.Length(), 0.0f);
    line.Add(Vec2(0, 0));
    line.Add(Vec2(0, 0));
    EXPECT_EQ(line.Size(), 1u);
    EXPECT_EQ(line.Length(), 0.0f);
    line.Add(Vec2(3, 4));
    line.Add(Vec2(3, 5));
    EXPECT_EQ(line.Size(), 3u);
    EXPECT_FLOAT_EQ(line.Length(), 6.0f);
    ASSERT_EQ(line.GetSegments().size(), 2u);
    EXPECT_EQ(line.GetSegments()[1].a, Vec2(3, 4));
}

TEST(Line, AStrokeThatReturnsWithinAnEighthOfItsLengthIsClosed)
{
    // Three sides of a unit square and most of the fourth: the gap g against an eighth of 4 - g, which
    // meet at g = 0.444.
    const auto withGap = [](float gap) {
        return MakeLine({Vec2(0, 0), Vec2(1, 0), Vec2(1, 1), Vec2(0, 1), Vec2(0, gap)});
    };
    app::Line closed = withGap(0.44f);
    EXPECT_EQ(closed.CheckSelfIntersect(), app::Line::CLOSED);
    EXPECT_EQ(closed.GetPoints(), withGap(0.44f).GetPoints()) << "a stroke without crossings stays as it is";
    app::Line open = withGap(0.45f);
    EXPECT_EQ(open.CheckSelfIntersect(), app::Line::OPEN);
    EXPECT_EQ(open.GetPoints(), withGap(0.45f).GetPoints());
}

TEST(Line, AStrokeCrossingItselfAtItsEndsGivesTheLoopWithTheCrossingLast)
{
    app::Line line = MakeLine({Vec2(-0.5f, 0), Vec2(1, 0), Vec2(1, 1), Vec2(0, 1), Vec2(0, -0.5f)});
    EXPECT_EQ(line.CheckSelfIntersect(), app::Line::CLOSED);
    const std::vector<Vec2> loop = {Vec2(1, 0), Vec2(1, 1), Vec2(0, 1), Vec2(0, 0)};
    EXPECT_EQ(line.GetPoints(), loop);
}

TEST(Line, CrossingsThatLeaveNoLoopGiveNone)
{
    // Every segment crosses another.
    app::Line everywhere = MakeLine({Vec2(0, 0), Vec2(2, 0), Vec2(1, 1), Vec2(1, -1), Vec2(2, 1)});
    EXPECT_EQ(everywhere.CheckSelfIntersect(), app::Line::NO_LOOP);
    // A small knot at the end of a long tail: the uncrossed segment nearest the middle is the first one.
    app::Line tail = MakeLine({Vec2(0, 0), Vec2(10, 0), Vec2(11, 0), Vec2(11, 1), Vec2(10.5f, -1)});
    EXPECT_EQ(tail.CheckSelfIntersect(), app::Line::NO_LOOP);
}

TEST(Line, IntersectTestFindsEachCrossingOnce)
{
    const app::Line a = MakeLine({Vec2(-1, -1), Vec2(1, 1)});
    const app::Line b = MakeLine({Vec2(-1, 1), Vec2(1, -1)});
    ASSERT_EQ(app::IntersectTest(a, b).size(), 1u);
    EXPECT_NEAR(app::IntersectTest(a, b)[0].x, 0.0f, 1e-6f);
    // Through a point of both strokes, where two segments of each meet: still one crossing.
    const app::Line a2 = MakeLine({Vec2(-1, -1), Vec2(0, 0), Vec2(1, 1)});
    const app::Line b2 = MakeLine({Vec2(-1, 1), Vec2(0, 0), Vec2(1, -1)});
    EXPECT_EQ(app::IntersectTest(a2, b2).size(), 1u);
    // A zigzag over a line crosses it at each tooth.
    EXPECT_EQ(app::IntersectTest(Zigzag(10, 1, 3), MakeLine({Vec2(-1, 0.1f), Vec2(11, 0.1f)})).size(), 6u);
    EXPECT_TRUE(app::IntersectTest(a, MakeLine({Vec2(5, 5)})).empty());
}

TEST(StrokeShapes, AStraightStrokeKeepsWithinFifteenPercentOfItsChord)
{
    EXPECT_TRUE(app::IsStraightStroke(MakeLine({Vec2(0, 0), Vec2(1, 7)})));
    EXPECT_TRUE(app::IsStraightStroke(MakeLine({Vec2(0, 0), Vec2(5, 1.49f), Vec2(10, 0)})));
    EXPECT_FALSE(app::IsStraightStroke(MakeLine({Vec2(0, 0), Vec2(5, 1.51f), Vec2(10, 0)})));
    // Within the band but crossing itself: a scribble, not a line.
    EXPECT_FALSE(app::IsStraightStroke(
        MakeLine({Vec2(0, 0), Vec2(6, 0.5f), Vec2(6, -0.5f), Vec2(4, 0.5f), Vec2(10, 0)})));
    // A closed stroke has a chord of no length: nothing of it is near enough.
    app::Line circle(CirclePoints(Vec2(0, 0), 1, 16));
    circle.Add(circle.GetPoints().front());
    EXPECT_FALSE(app::IsStraightStroke(circle));
    EXPECT_FALSE(app::IsStraightStroke(MakeLine({Vec2(1, 1)})));
}

TEST(StrokeShapes, ASpringIsAZigzagFromFifteenToFiftyPercentWide)
{
    const auto spring = app::FindSpringStroke(Zigzag(10, 0.76f));
    ASSERT_TRUE(spring);
    EXPECT_FLOAT_EQ(spring->length, 10.0f);
    EXPECT_NEAR(spring->width, 1.52f, 1e-4f);
    EXPECT_EQ(spring->ends[0], Vec2(0, 0));
    EXPECT_EQ(spring->ends[1], Vec2(10, 0));
    EXPECT_FALSE(app::FindSpringStroke(Zigzag(10, 0.74f)));
    EXPECT_TRUE(app::FindSpringStroke(Zigzag(10, 2.49f)));
    EXPECT_FALSE(app::FindSpringStroke(Zigzag(10, 2.51f)));
    EXPECT_FALSE(app::FindSpringStroke(Zigzag(10, 1, 1))) << "three points are too few";
}

TEST(StrokeShapes, ASpringMayOvershootItsEndsByFivePercentInAll)
{
    const auto withOvershoot = [](float overshoot)
    {
        app::Line line;
        line.Add(Vec2(0, 0));
        line.Add(Vec2(-overshoot, 1));
        const app::Line zigzag = Zigzag(10, 1);
        for (const Vec2& p : zigzag.GetPoints())
            line.Add(p);
        return line;
    };
    EXPECT_TRUE(app::FindSpringStroke(withOvershoot(0.45f)));
    EXPECT_FALSE(app::FindSpringStroke(withOvershoot(0.55f)));
}

TEST(StrokeShapes, AClosedStrokeGivesADenseOutline)
{
    const app::Line square = MakeLine({Vec2(0, 0), Vec2(2, 0), Vec2(2, 2), Vec2(0, 2), Vec2(0, 0.1f)});
    const auto outline = app::FindPolygonOutline(square, 0.25f);
    ASSERT_TRUE(outline);
    for (size_t i = 0; i < outline->size(); ++i)
    {
        const Vec2 gap = (*outline)[(i + 1) % outline->size()] - (*outline)[i];
        EXPECT_LE(gap.Length(), 0.25f + 1e-5f);
    }
    EXPECT_GE(outline->size(), 32u);
    EXPECT_NO_THROW(physics::Polygon{*outline});

    EXPECT_FALSE(app::FindPolygonOutline(MakeLine({Vec2(0, 0), Vec2(2, 0), Vec2(2, 2)}), 0.25f)) << "open";
    EXPECT_FALSE(app::FindPolygonOutline(MakeLine({Vec2(0, 0), Vec2(2, 0)}), 0.25f));
}

TEST(StrokeShapes, ALoopOfLessThanHalfTheStrokeGivesNoOutline)
{
    // The loop cut out at (0, 0) runs 3 along the stroke (its closing crossing adds no length); the
    // stroke runs 4 + 2t with tails of t: the loop is half of it at t = 1.
    const auto withTails = [](float tail) {
        return MakeLine({Vec2(-tail, 0), Vec2(1, 0), Vec2(1, 1), Vec2(0, 1), Vec2(0, -tail)});
    };
    EXPECT_TRUE(app::FindPolygonOutline(withTails(0.95f), 10.0f));
    EXPECT_FALSE(app::FindPolygonOutline(withTails(1.05f), 10.0f));
}

TEST(StrokeShapes, ASmallRoundStrokeOnABodyIsAHinge)
{
    const physics::Polygon circle(CirclePoints(Vec2(3, 1), 0.2f, 24));
    const auto radius = app::FindHingeRadius(circle, 4.0f);
    ASSERT_TRUE(radius);
    EXPECT_NEAR(*radius, 0.2f, 0.01f);
    // The body's half against the stroke's area of about 0.125.
    EXPECT_TRUE(app::FindHingeRadius(circle, 2.02f * circle.Area()));
    EXPECT_FALSE(app::FindHingeRadius(circle, 1.98f * circle.Area()));
}

TEST(StrokeShapes, AnElongatedStrokeIsNoHinge)
{
    // The corners of a long thin rectangle lie beyond 1.8 times the radius of its area's circle.
    const physics::Polygon thin({Vec2(0, 0), Vec2(1, 0), Vec2(1, 0.2f), Vec2(0, 0.2f)});
    EXPECT_FALSE(app::FindHingeRadius(thin, 100.0f));
    // A square's corners lie at 1.25 times that radius: round enough.
    const physics::Polygon square({Vec2(0, 0), Vec2(1, 0), Vec2(1, 1), Vec2(0, 1)});
    EXPECT_TRUE(app::FindHingeRadius(square, 100.0f));
}
