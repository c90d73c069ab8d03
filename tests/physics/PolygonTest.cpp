#include "WorldTest.h"

#include "physics/Polygon.h"
#include "physics/SPH.h"

#include <cmath>

namespace physics
{
namespace
{
std::vector<math::Vec2> Square(float side, bool clockwise)
{
    std::vector<math::Vec2> points = {math::Vec2(0.0f, 0.0f), math::Vec2(side, 0.0f), math::Vec2(side, side),
                                      math::Vec2(0.0f, side)};
    if (clockwise)
        std::reverse(points.begin(), points.end());
    return points;
}

float SignedArea(const std::vector<math::Vec2>& v)
{
    float twice = 0.0f;
    for (size_t i = 0; i < v.size(); ++i)
        twice += math::Cross(v[i], v[(i + 1) % v.size()]);
    return twice / 2.0f;
}

// Signed distance to a simple polygon by brute force: the nearest edge, negative where a ray to the right
// crosses the outline an odd number of times.
float ExactDistance(const std::vector<math::Vec2>& v, const math::Vec2& p)
{
    float nearest = math::INF;
    bool inside = false;
    for (size_t i = 0, j = v.size() - 1; i < v.size(); j = i++)
    {
        nearest = std::min(nearest, Linesegment(v[j], v[i]).Distance(p));
        if ((v[i].y > p.y) != (v[j].y > p.y) &&
            p.x < (v[j].x - v[i].x) * (p.y - v[i].y) / (v[j].y - v[i].y) + v[i].x)
            inside = !inside;
    }
    return inside ? -nearest : nearest;
}

std::string ConstructionError(const std::vector<math::Vec2>& points)
{
    try
    {
        Polygon polygon(points);
    }
    catch (const BadDataException& e)
    {
        return e.what();
    }
    return "";
}
} // namespace

TEST_F(WorldTest, Polygon_ClockwiseSquareBecomesCounterClockwiseAboutItsCentroid)
{
    Polygon polygon(Square(1.0f, true));
    EXPECT_FLOAT_EQ(polygon.Area(), 1.0f);
    EXPECT_GT(SignedArea(polygon.GetVertices()), 0.0f);
    EXPECT_NEAR(polygon.InertiaSansMass(), 2.0f / 12.0f, 1e-5f);
    // The frame's origin is the centroid, and the shape stands where its points stood.
    EXPECT_NEAR(polygon.GetPosition().x, 0.5f, 1e-6f);
    EXPECT_NEAR(polygon.GetPosition().y, 0.5f, 1e-6f);
    for (const math::Vec2& v : polygon.GetWorldVertices())
    {
        EXPECT_NEAR(std::fabs(v.x - 0.5f), 0.5f, 1e-6f);
        EXPECT_NEAR(std::fabs(v.y - 0.5f), 0.5f, 1e-6f);
    }
    EXPECT_NEAR(polygon.GetPerimeter(), 4.0f, 1e-5f);
}

TEST_F(WorldTest, Polygon_RefusesBadInput)
{
    EXPECT_EQ(ConstructionError({math::Vec2(0.0f, 0.0f), math::Vec2(1.0f, 0.0f)}), "Bad polygon");
    EXPECT_EQ(ConstructionError({math::Vec2(1.0f, 1.0f), math::Vec2(1.0f, 1.0f), math::Vec2(1.0f, 1.0f)}),
              "Bad polygon");
    EXPECT_EQ(ConstructionError({math::Vec2(0.0f, 0.0f), math::Vec2(1.0f, 0.0f), math::Vec2(2.0f, 0.0f)}),
              "Bad polygon");
    // A bow-tie.
    EXPECT_EQ(ConstructionError({math::Vec2(0.0f, 0.0f), math::Vec2(1.0f, 1.0f), math::Vec2(1.0f, 0.0f),
                                 math::Vec2(0.0f, 1.0f)}),
              "Self-intersecting polygon");
    // A point that is no number, as a damaged file may hold.
    EXPECT_EQ(ConstructionError({math::Vec2(0.0f, 0.0f), math::Vec2(std::nanf(""), 0.0f),
                                 math::Vec2(1.0f, 1.0f), math::Vec2(0.0f, 1.0f)}),
              "Bad polygon");
    EXPECT_EQ(ConstructionError({math::Vec2(0.0f, 0.0f), math::Vec2(math::INF, 0.0f), math::Vec2(1.0f, 1.0f),
                                 math::Vec2(0.0f, 1.0f)}),
              "Bad polygon");
    // Without water there is no margin around the grid, and a sliver far thinner than float resolves leaves
    // it no height.
    SPH::GetInstancePtr()->m_radius = 0.0f;
    EXPECT_EQ(ConstructionError({math::Vec2(0.0f, 0.0f), math::Vec2(1.0f, 0.0f), math::Vec2(0.5f, 1e-38f)}),
              "Bad polygon");
    EXPECT_EQ(ConstructionError({math::Vec2(0.0f, 0.0f), math::Vec2(1.0f, 0.0f), math::Vec2(0.5f, 1e-3f)}),
              "");
    // Water of endless size asks for an endless margin: the shape gets its grid all the same.
    SPH::GetInstancePtr()->m_radius = math::INF;
    Polygon unpadded(Square(1.0f, false));
    EXPECT_NEAR(unpadded.DistanceWorld(math::Vec2(0.5f, 0.5f)), -0.5f, 0.05f);
    EXPECT_NEAR(unpadded.DistanceWorld(math::Vec2(0.5f, 1.01f)), 0.01f, 0.01f);
    testing::ResetWorld();
    // A closed sketch repeats its first point: that is no extra vertex.
    std::vector<math::Vec2> closed = Square(1.0f, false);
    closed.push_back(closed.front());
    EXPECT_EQ(Polygon(closed).GetVertices().size(), 4u);
    // Two points closer than float can tell apart beside the centroid are one point too: an edge of no
    // length would have emptied the whole field, and the shape would have met nothing.
    std::vector<math::Vec2> nearTwin = Square(1.0f, false);
    nearTwin.insert(nearTwin.begin() + 1, math::Vec2(1e-30f, 0.0f));
    Polygon square(nearTwin);
    EXPECT_EQ(square.GetVertices().size(), 4u);
    EXPECT_NEAR(square.DistanceWorld(math::Vec2(0.5f, 0.5f)), -0.5f, 0.05f);
    EXPECT_NEAR(square.DistanceWorld(math::Vec2(0.5f, 1.01f)), 0.01f, 0.01f);
}

TEST_F(WorldTest, Polygon_MassPropertiesFarFromTheOrigin)
{
    // The same unit square wherever it is drawn: its centre of mass must not drift with the distance.
    for (float offset : {100.0f, 1000.0f, 10000.0f})
    {
        const std::vector<math::Vec2> square = {math::Vec2(offset, offset), math::Vec2(offset + 1.0f, offset),
                                                math::Vec2(offset + 1.0f, offset + 1.0f),
                                                math::Vec2(offset, offset + 1.0f)};
        Polygon polygon(AssertMaxDist(square, 0.1f));
        SCOPED_TRACE(offset);
        EXPECT_NEAR(polygon.Area(), 1.0f, 1e-3f);
        EXPECT_NEAR(polygon.InertiaSansMass(), 1.0f / 6.0f, 1e-3f);
        EXPECT_NEAR(polygon.GetPosition().x, offset + 0.5f, 2e-3f);
        EXPECT_NEAR(polygon.GetPosition().y, offset + 0.5f, 2e-3f);
    }
}

TEST_F(WorldTest, Polygon_FieldOfAConcaveShapeMatchesItsTrueDistance)
{
    // An L: a concave corner, and cells that are not square.
    const std::vector<math::Vec2> l = {math::Vec2(0.0f, 0.0f), math::Vec2(3.0f, 0.0f),
                                       math::Vec2(3.0f, 1.0f), math::Vec2(1.0f, 1.0f),
                                       math::Vec2(1.0f, 2.0f), math::Vec2(0.0f, 2.0f)};
    Polygon polygon(l);
    const math::OBB2D& map = polygon.GetMapBox();
    const float cell = 2.0f * std::max(map.halfExtent[0], map.halfExtent[1]) / polygon.GetMapSize().x;
    EXPECT_EQ(polygon.GetMapSize(), math::TVector2<unsigned int>(64, 64));
    // Everywhere on the grid, up to its outer half cell, the field is within half a cell of the truth.
    float worst = 0.0f;
    for (int i = 0; i <= 40; ++i)
        for (int j = 0; j <= 40; ++j)
        {
            const math::Vec2 local = map.center +
                                     map.axis[0] * (map.halfExtent[0] * 0.97f * (i / 20.0f - 1.0f)) +
                                     map.axis[1] * (map.halfExtent[1] * 0.97f * (j / 20.0f - 1.0f));
            const math::Vec2 p = math::TransformCoordinate(polygon.GetPose(), local);
            worst = std::max(worst, std::fabs(polygon.DistanceWorld(p) - ExactDistance(l, p)));
        }
    EXPECT_LT(worst, 0.5f * cell);

    // Normals point out of the nearest side, also out of the notch's walls.
    const math::Vec2 wall = polygon.NormalWorld(math::Vec2(1.02f, 1.6f));
    EXPECT_NEAR(wall.x, 1.0f, 0.02f);
    const math::Vec2 floor = polygon.NormalWorld(math::Vec2(2.0f, 0.98f));
    EXPECT_NEAR(floor.y, 1.0f, 0.02f);
    const math::Vec2 bottom = polygon.NormalWorld(math::Vec2(2.0f, -0.02f));
    EXPECT_NEAR(bottom.y, -1.0f, 0.02f);

    // The perimeter map holds the arc length from the first vertex of the nearest outline point: the sides
    // of the outline meet it at cells just off their middles, in the order of the counter-clockwise walk.
    const util::Array2D<float>& arc = polygon.GetPerimeterMap();
    EXPECT_NEAR(polygon.GetPerimeter(), 10.0f, 1e-4f);
    auto arcAt = [&](const math::Vec2& p)
    {
        const math::Vec2 local = math::TransformCoordinate(polygon.GetWorldToGeom(), p);
        for (unsigned int x = 0; x < arc.GetWidth(); ++x)
            for (unsigned int y = 0; y < arc.GetHeight(); ++y)
                if (math::Distance(polygon.MapToWorld(x, y), local) < cell)
                    return arc(x, y);
        return -1.0f;
    };
    const float start = arcAt(math::Vec2(1.5f, -0.01f));
    const float right = arcAt(math::Vec2(3.01f, 0.5f));
    const float top = arcAt(math::Vec2(2.0f, 1.01f));
    ASSERT_GE(start, 0.0f);
    // Half a side further along the outline each time, modulo the whole length.
    EXPECT_NEAR(std::fmod(right - start + 10.0f, 10.0f), 2.0f, 2.0f * cell);
    EXPECT_NEAR(std::fmod(top - right + 10.0f, 10.0f), 1.5f, 2.0f * cell);
}

TEST_F(WorldTest, Polygon_NormalOfASlantedSideOnAnElongatedGrid)
{
    // A 4 by 1 bar with a chamfered corner: its cells are four times as wide as they are high, and still the
    // normal of the chamfer is perpendicular to it, as the field's true gradient is.
    const std::vector<math::Vec2> bar = {math::Vec2(0.0f, 0.0f), math::Vec2(4.0f, 0.0f),
                                         math::Vec2(4.0f, 0.5f), math::Vec2(3.5f, 1.0f),
                                         math::Vec2(0.0f, 1.0f)};
    Polygon polygon(AssertMaxDist(bar, 0.1f));
    const math::Vec2 out = math::Vec2(1.0f, 1.0f) / std::sqrt(2.0f);
    for (float offset : {-0.03f, 0.0f, 0.02f})
    {
        const math::Vec2 p = math::Vec2(3.75f, 0.75f) + out * offset;
        const math::Vec2 n = polygon.NormalWorld(p);
        EXPECT_NEAR(n.x, out.x, 0.02f) << offset;
        EXPECT_NEAR(n.y, out.y, 0.02f) << offset;
        EXPECT_NEAR(polygon.DistanceWorld(p), offset, 0.01f);
    }
}

TEST_F(WorldTest, Polygon_DistanceFieldInsideOnTheEdgeAndOutside)
{
    // A 4 by 2 rectangle centred at (10, 0).
    util::SharedPtr<Polygon> rect = Polygon::CreateBox(math::Vec2(8.0f, -1.0f), math::Vec2(12.0f, 1.0f));
    EXPECT_EQ(rect->GetVertices().size(), 16u);
    EXPECT_NEAR(rect->DistanceWorld(math::Vec2(10.0f, 0.0f)), -1.0f, 0.05f);
    EXPECT_NEAR(rect->DistanceWorld(math::Vec2(10.0f, 1.0f)), 0.0f, 0.02f);
    EXPECT_NEAR(rect->DistanceWorld(math::Vec2(9.0f, -0.8f)), -0.2f, 0.02f);
    EXPECT_GT(rect->DistanceWorld(math::Vec2(10.0f, 1.1f)), 0.0f);

    const math::Vec2 up = rect->NormalWorld(math::Vec2(10.0f, 0.9f));
    EXPECT_NEAR(up.x, 0.0f, 0.02f);
    EXPECT_NEAR(up.y, 1.0f, 0.02f);
    const math::Vec2 left = rect->NormalWorld(math::Vec2(8.05f, 0.0f));
    EXPECT_NEAR(left.x, -1.0f, 0.02f);

    // Far outside the grid: no normal, a positive distance.
    EXPECT_EQ(rect->NormalWorld(math::Vec2(30.0f, 0.0f)), math::Vec2(0.0f, 0.0f));
    EXPECT_GT(rect->DistanceWorld(math::Vec2(30.0f, 0.0f)), 10.0f);

    // The field turns with the shape.
    rect->SetWorldPose(math::Mat2D::TranslationRotation(math::Vec2(0.0f, 0.0f), math::PIf / 2.0f));
    EXPECT_NEAR(rect->DistanceWorld(math::Vec2(0.0f, 1.9f)), -0.1f, 0.02f);
    EXPECT_NEAR(rect->DistanceWorld(math::Vec2(0.9f, 0.0f)), -0.1f, 0.02f);
}

TEST_F(WorldTest, Polygon_ConcaveShapeHasItsNotchOutside)
{
    // A U shape: the notch between the arms is outside.
    const std::vector<math::Vec2> u = {math::Vec2(0.0f, 0.0f), math::Vec2(3.0f, 0.0f), math::Vec2(3.0f, 3.0f),
                                       math::Vec2(2.0f, 3.0f), math::Vec2(2.0f, 1.0f), math::Vec2(1.0f, 1.0f),
                                       math::Vec2(1.0f, 3.0f), math::Vec2(0.0f, 3.0f)};
    Polygon polygon(AssertMaxDist(u, 0.25f));
    EXPECT_GT(polygon.DistanceWorld(math::Vec2(1.5f, 2.0f)), 0.3f);
    EXPECT_LT(polygon.DistanceWorld(math::Vec2(0.5f, 2.0f)), -0.3f);
    EXPECT_LT(polygon.DistanceWorld(math::Vec2(1.5f, 0.5f)), -0.3f);
    EXPECT_FLOAT_EQ(polygon.Area(), 7.0f);
    const math::Vec2 closest = polygon.GetClosestEdge(math::Vec2(1.5f, 2.0f));
    EXPECT_NEAR(std::fabs(closest.x - 1.5f), 0.5f, 1e-5f);
}

TEST_F(WorldTest, Polygon_BoundsFollowThePose)
{
    // An L, turned and moved: each of its three world bounds holds every world vertex, and each is tight.
    const std::vector<math::Vec2> l = {math::Vec2(0.0f, 0.0f), math::Vec2(3.0f, 0.0f),
                                       math::Vec2(3.0f, 1.0f), math::Vec2(1.0f, 1.0f),
                                       math::Vec2(1.0f, 2.0f), math::Vec2(0.0f, 2.0f)};
    Polygon polygon(l);
    polygon.SetWorldPose(math::Mat2D::TranslationRotation(math::Vec2(-4.0f, 7.0f), 0.7f));
    const BoundingBox2 aabb = polygon.GetAABBWorld();
    const BoundingCircle bc = polygon.GetBCWorld();
    const math::OBB2D obb = polygon.GetOBBWorld();
    const float slack = 1e-4f;
    float farthest = 0.0f;
    BoundingBox2 tight = BoundingBox2::Empty();
    for (const math::Vec2& v : polygon.GetWorldVertices())
    {
        tight.Include(v);
        EXPECT_GE(v.x, aabb.min.x - slack);
        EXPECT_LE(v.x, aabb.max.x + slack);
        EXPECT_GE(v.y, aabb.min.y - slack);
        EXPECT_LE(v.y, aabb.max.y + slack);
        farthest = std::max(farthest, math::Distance(v, bc.center));
        EXPECT_LE(obb.Distance(v), slack);
    }
    EXPECT_NEAR(farthest, bc.radius, slack);
    EXPECT_EQ(aabb.min, tight.min);
    EXPECT_EQ(aabb.max, tight.max);
    // The L's smallest box is its 3 by 2 frame; the circle spans its diagonal.
    EXPECT_NEAR(obb.Area(), 6.0f, 0.05f);
    EXPECT_NEAR(bc.radius, 0.5f * std::sqrt(13.0f), 0.05f);
    // The polygon stands where the pose puts it.
    EXPECT_NEAR(polygon.DistanceWorld(polygon.GetPosition()), polygon.DistancePolygon(math::Vec2(0.0f, 0.0f)),
                1e-5f);
    // Without a number there is no closest point on the outline.
    EXPECT_EQ(polygon.GetClosestEdge(math::Vec2(std::nanf(""), 0.0f)), math::Vec2(0.0f, 0.0f));
    EXPECT_EQ(polygon.GetClosestEdge(math::Vec2(math::INF, 0.0f)), math::Vec2(0.0f, 0.0f));
}

TEST_F(WorldTest, Polygon_ScaleMirrorsAndKeepsCounterClockwise)
{
    const std::vector<math::Vec2> l = {math::Vec2(0.0f, 0.0f), math::Vec2(2.0f, 0.0f),
                                       math::Vec2(2.0f, 1.0f), math::Vec2(1.0f, 1.0f),
                                       math::Vec2(1.0f, 3.0f), math::Vec2(0.0f, 3.0f)};
    util::SharedPtr<Polygon> polygon = QLEX_NEW new Polygon(l);
    polygon->SetFriction(0.25f);
    util::SharedPtr<Polygon> mirrored = polygon->Scale(math::Vec2(-1.0f, 1.0f));
    EXPECT_GT(SignedArea(mirrored->GetVertices()), 0.0f);
    EXPECT_NEAR(mirrored->Area(), polygon->Area(), 1e-4f);
    EXPECT_EQ(mirrored->GetFriction(), 0.25f);
    for (size_t i = 0; i < polygon->GetVertices().size(); ++i)
    {
        const math::Vec2 v = polygon->GetWorldVertices()[i];
        const math::Vec2 mirror(2.0f * polygon->GetPosition().x - v.x, v.y);
        EXPECT_LT(std::fabs(mirrored->DistanceWorld(mirror)), 0.05f);
    }

    util::SharedPtr<Polygon> twice = polygon->Scale(math::Vec2(2.0f, 2.0f));
    EXPECT_NEAR(twice->Area(), 4.0f * polygon->Area(), 1e-3f);

    // The scale axes are the world's, whatever the polygon's turn: a 2 by 1 bar standing upright, stretched
    // along x, becomes 2 by 2 in the world and keeps its pose.
    util::SharedPtr<Polygon> bar = Polygon::CreateBox(math::Vec2(-1.0f, -0.5f), math::Vec2(1.0f, 0.5f));
    bar->SetWorldPose(math::Mat2D::TranslationRotation(math::Vec2(5.0f, 0.0f), math::PIf / 2.0f));
    util::SharedPtr<Polygon> wide = bar->Scale(math::Vec2(2.0f, 1.0f));
    const BoundingBox2 bounds = wide->GetAABBWorld();
    EXPECT_NEAR(bounds.min.x, 4.0f, 1e-4f);
    EXPECT_NEAR(bounds.max.x, 6.0f, 1e-4f);
    EXPECT_NEAR(bounds.min.y, -1.0f, 1e-4f);
    EXPECT_NEAR(bounds.max.y, 1.0f, 1e-4f);
    EXPECT_NEAR(wide->GetAngle(), math::PIf / 2.0f, 1e-6f);

    util::SharedPtr<Polygon> same = polygon->Scale(math::Vec2(1.0f, 1.0f));
    EXPECT_EQ(same->GetVertices(), polygon->GetVertices());
    EXPECT_EQ(same->GetPose(), polygon->GetPose());
    EXPECT_NE(same->GetId(), polygon->GetId());
}

TEST_F(WorldTest, Polygon_PointSpacingHelpers)
{
    const std::vector<math::Vec2> square = Square(1.0f, false);
    // Three segments per side of length 1 at a spacing of at most 0.4.
    const std::vector<math::Vec2> dense = AssertMaxDist(square, 0.4f);
    EXPECT_EQ(dense.size(), 12u);
    for (size_t i = 0; i < dense.size(); ++i)
        EXPECT_LE(math::Distance(dense[i], dense[(i + 1) % dense.size()]), 0.4f + 1e-6f);

    // A spacing that can't be met adds nothing rather than running away.
    EXPECT_EQ(AssertMaxDist(square, 0.0f).size(), 4u);
    EXPECT_EQ(AssertMaxDist(square, std::nanf("")).size(), 4u);
    EXPECT_EQ(AssertMaxDist(square, -1.0f).size(), 4u);

    EXPECT_EQ(AssertMinDist(square, 5.0f).size(), 1u);
    const std::vector<math::Vec2> sparse = AssertMinDist(dense, 0.5f);
    EXPECT_LT(sparse.size(), dense.size());
    for (size_t i = 0; i < sparse.size(); ++i)
        EXPECT_GE(math::Distance(sparse[i], sparse[(i + 1) % sparse.size()]), 0.5f);

    std::vector<math::Vec2> side;
    AddPolygonSide(side, math::Vec2(0.0f, 0.0f), math::Vec2(32.0f, 0.0f));
    ASSERT_EQ(side.size(), 4u);
    EXPECT_EQ(side[1], math::Vec2(1.0f, 0.0f));
    EXPECT_EQ(side[3], math::Vec2(31.0f, 0.0f));
}

TEST_F(WorldTest, Polygon_ContainsAndCopies)
{
    util::SharedPtr<Polygon> big = Polygon::CreateBox(math::Vec2(-2.0f, -2.0f), math::Vec2(2.0f, 2.0f));
    util::SharedPtr<Polygon> small = Polygon::CreateBox(math::Vec2(-0.5f, -0.5f), math::Vec2(0.5f, 0.5f));
    util::SharedPtr<Polygon> apart = Polygon::CreateBox(math::Vec2(5.0f, 5.0f), math::Vec2(6.0f, 6.0f));
    EXPECT_TRUE(big->Contains(*small));
    EXPECT_FALSE(small->Contains(*big));
    EXPECT_FALSE(big->Contains(*apart));

    util::SharedPtr<Polygon> copy = big->Clone();
    EXPECT_EQ(copy->DistanceWorld(math::Vec2(0.3f, 0.1f)), big->DistanceWorld(math::Vec2(0.3f, 0.1f)));
    EXPECT_EQ(copy->GetBody(), nullptr);
}

} // namespace physics
