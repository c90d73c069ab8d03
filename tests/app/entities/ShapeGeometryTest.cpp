#include "app/entities/ShapeGeometry.h"
#include "app/entities/CircleEntity.h"
#include "physics/Polygon.h"
#include "physics/testing/Scenes.h"

#include <gtest/gtest.h>

#include <cmath>

namespace
{
TEST(ShapeGeometry, CircleTextureIsADiscWithASmoothEdgeAndACake)
{
    const int size = 240;
    const std::vector<float> plain = app::CircleTexture(size, false);
    const std::vector<float> cake = app::CircleTexture(size, true);
    auto at = [size](const std::vector<float>& t, float x, float y)
    {
        // Texel under the point (x, y) of the unit circle's frame.
        const int i = int((x + app::SquareScale) / (2 * app::SquareScale) * size);
        const int j = int((y + app::SquareScale) / (2 * app::SquareScale) * size);
        return t[size_t(j) * size + i];
    };
    EXPECT_FLOAT_EQ(at(plain, 0.5f, 0.0f), 1.0f);
    EXPECT_FLOAT_EQ(at(plain, 1.1f, 0.0f), 0.0f);
    EXPECT_FLOAT_EQ(at(plain, -0.7f, 0.7f), 1.0f);
    EXPECT_FLOAT_EQ(at(cake, 0.5f, 0.0f), 0.0f);
    EXPECT_FLOAT_EQ(at(cake, -0.5f, 0.0f), 1.0f);
    EXPECT_FLOAT_EQ(at(cake, 0.5f, 0.3f), 1.0f);
    // At full size the rim is smoothed: some texel of the middle row lies between in and out.
    const int full = app::CIRCLE_TEXTURE_SIZE;
    const std::vector<float> big = app::CircleTexture(full, false);
    int partial = 0;
    for (int i = 0; i < full; ++i)
    {
        const float a = big[size_t(full / 2) * full + i];
        partial += a > 0.0f && a < 1.0f;
    }
    EXPECT_GE(partial, 2);
    EXPECT_LE(partial, 4);
}

TEST(ShapeGeometry, PlaneSegmentClipsTheViewToTheBand)
{
    const math::Vec2 corners[4] = {math::Vec2(0, 0), math::Vec2(0, 4), math::Vec2(4, 4), math::Vec2(4, 0)};
    // A floor at y = 1: distance is y - 1.
    float dists[4];
    for (int i = 0; i < 4; ++i)
        dists[i] = corners[i].y - 1.0f;
    const std::vector<math::Vec2> below = app::PlaneSegment(corners, dists, -math::INF, 0.0f);
    ASSERT_EQ(below.size(), 4u);
    float area = 0;
    for (size_t i = 0; i < below.size(); ++i)
        area += math::Cross(below[i], below[(i + 1) % below.size()]);
    EXPECT_NEAR(std::fabs(area) / 2, 4.0f, 1e-5f);

    const std::vector<math::Vec2> band = app::PlaneSegment(corners, dists, -0.5f, 0.5f);
    ASSERT_EQ(band.size(), 4u);
    for (const math::Vec2& p : band)
        EXPECT_TRUE(std::fabs(p.y - 1.0f) == 0.5f) << p.y;

    // Wholly out of view: an empty fan.
    for (float& d : dists)
        d += 10;
    EXPECT_TRUE(app::PlaneSegment(corners, dists, -math::INF, 0.0f).empty());
    for (float& d : dists)
        d -= 20;
    EXPECT_EQ(app::PlaneSegment(corners, dists, -math::INF, 0.0f).size(), 4u);
}

TEST(ShapeGeometry, PolygonTextureHasItsOutlineAtOneHalf)
{
    const physics::Polygon polygon(physics::testing::RegularPolygonPoints(math::Vec2(0, 0), 1.0f, 12));
    const float maxDist = app::PolygonMaxDist(polygon);
    const std::vector<float> texels = app::PolygonDistanceTexture(polygon, maxDist);
    const util::Array2D<float>& map = polygon.GetDistanceMap();
    ASSERT_EQ(texels.size(), size_t(map.GetWidth()) * map.GetHeight());
    // The centre texel is deep inside, a corner texel far outside.
    const unsigned w = map.GetWidth(), h = map.GetHeight();
    EXPECT_FLOAT_EQ(texels[size_t(h / 2) * w + w / 2], 0.0f);
    EXPECT_FLOAT_EQ(texels[0], 1.0f);
    for (unsigned j = 0; j < h; ++j)
        for (unsigned i = 0; i < w; ++i)
        {
            if (std::fabs(map(i, j)) < maxDist)
            {
                EXPECT_NEAR(texels[size_t(j) * w + i], (map(i, j) / maxDist + 1) / 2, 1e-6f);
            }
        }

    math::Vec2 corners[4];
    app::PolygonMapCorners(polygon, corners);
    for (const math::Vec2& v : polygon.GetVertices())
        EXPECT_TRUE(polygon.GetMapBox().Contains(v));
    EXPECT_NEAR(math::Distance(corners[0], corners[2]),
                2 * polygon.GetMapBox().halfExtent[0] * std::sqrt(2.0f), 0.2f);
    EXPECT_LT(app::PolygonInsideThreshold(0.01f, maxDist), 0.5f);
}

TEST(ShapeGeometry, PolygonMapCornersCarryTheTextureCoordinatesOfTheirTexels)
{
    // An L turned and moved off the origin, so that no symmetry hides a mirrored or turned texture.
    std::vector<math::Vec2> points = {math::Vec2(0, 0), math::Vec2(3, 0), math::Vec2(3, 1),
                                      math::Vec2(1, 1), math::Vec2(1, 2), math::Vec2(0, 2)};
    const math::Mat2D pose = math::Mat2D::TranslationRotation(math::Vec2(0.7f, -0.3f), 0.4f);
    for (math::Vec2& p : points)
        p = math::TransformCoordinate(pose, p);
    const physics::Polygon polygon(points);
    const util::Array2D<float>& map = polygon.GetDistanceMap();
    const float w = float(map.GetWidth());
    const float h = float(map.GetHeight());
    // Texel (i, j) has its centre at texture coordinate ((i + 0.5) / w, (j + 0.5) / h) and at
    // MapToWorld(i, j) in the polygon's frame; the map is affine in (i, j).
    const math::Vec2 origin = polygon.MapToWorld(0, 0);
    const math::Vec2 di = polygon.MapToWorld(1, 0) - origin;
    const math::Vec2 dj = polygon.MapToWorld(0, 1) - origin;
    math::Vec2 corners[4];
    app::PolygonMapCorners(polygon, corners);
    for (int k = 0; k < 4; ++k)
    {
        const math::Vec2 st = app::PolygonMapTexCoord(k);
        const math::Vec2 local = origin + di * (st.x * w - 0.5f) + dj * (st.y * h - 0.5f);
        EXPECT_NEAR(local.x, corners[k].x, 1e-3f) << k;
        EXPECT_NEAR(local.y, corners[k].y, 1e-3f) << k;
    }
    // The texture is the map itself: a texel of the notch is outside, one of the foot inside.
    const std::vector<float> texels = app::PolygonDistanceTexture(polygon, app::PolygonMaxDist(polygon));
    auto texelAt = [&](math::Vec2 world)
    {
        const math::Vec2 local = math::TransformCoordinate(polygon.GetWorldToGeom(), world);
        // Solve local = origin + di * i + dj * j for the nearest texel.
        const math::Vec2 d = local - origin;
        const float det = math::Cross(di, dj);
        const int i = int(std::lround(math::Cross(d, dj) / det));
        const int j = int(std::lround(math::Cross(di, d) / det));
        return texels[size_t(j) * map.GetWidth() + i];
    };
    EXPECT_LT(texelAt(math::TransformCoordinate(pose, math::Vec2(2.5f, 0.5f))), 0.5f);
    EXPECT_LT(texelAt(math::TransformCoordinate(pose, math::Vec2(0.5f, 1.5f))), 0.5f);
    EXPECT_GT(texelAt(math::TransformCoordinate(pose, math::Vec2(2.0f, 1.6f))), 0.5f);
}

TEST(ShapeGeometry, PlaneSegmentOfANarrowBandIsAConvexFan)
{
    // A steep line across a square: the top and bottom edges each cross both sides of the band, in
    // opposite directions; out of order, the fan would cross itself.
    const math::Vec2 corners[4] = {math::Vec2(0, 0), math::Vec2(0, 4), math::Vec2(4, 4), math::Vec2(4, 0)};
    const math::Vec2 n = math::Vec2(1.0f, 0.2f) / math::Vec2(1.0f, 0.2f).Length();
    float dists[4];
    for (int i = 0; i < 4; ++i)
        dists[i] = math::Dot(n, corners[i]) - 2.0f;
    const std::vector<math::Vec2> fan = app::PlaneSegment(corners, dists, -0.3f, 0.3f);
    ASSERT_EQ(fan.size(), 4u);
    float area = 0;
    for (size_t i = 0; i < fan.size(); ++i)
    {
        const math::Vec2& a = fan[i];
        const math::Vec2& b = fan[(i + 1) % fan.size()];
        const math::Vec2& c = fan[(i + 2) % fan.size()];
        EXPECT_LT(math::Cross(b - a, c - b), 0.0f) << i;
        EXPECT_NEAR(math::Dot(n, a) - 2.0f, std::copysign(0.3f, math::Dot(n, a) - 2.0f), 1e-5f);
        area += math::Cross(a, b);
    }
    // A band 0.6 wide across the square, measured along the normal: its length along the line is 4 / n.x.
    EXPECT_NEAR(std::fabs(area) / 2, 0.6f * 4.0f / n.x, 1e-3f);
}

TEST(ShapeGeometry, CircleWiderThanItsTextureIsTooBigForIt)
{
    // 1024 texels across: a circle of more than 1024 pixels would magnify them.
    const float pixel = 0.01f;
    EXPECT_FALSE(app::CircleEntity::IsTooBigForTexture(5.11f, pixel));
    EXPECT_FALSE(app::CircleEntity::IsTooBigForTexture(5.12f, pixel));
    EXPECT_TRUE(app::CircleEntity::IsTooBigForTexture(5.13f, pixel));
    EXPECT_TRUE(app::CircleEntity::IsTooBigForTexture(0.1f, 0.0001f));
}
} // namespace
