#include "app/tools/StrokeShapes.h"

#include "math/OBB2D.h"
#include "physics/Polygon.h"

#include <cmath>

namespace app
{
namespace
{
// How far a straight stroke may wander from its chord, as a share of the chord.
constexpr float LINE_TOLERANCE = 0.15f;
// A spring's stroke may overshoot its ends by this share of its length in all.
constexpr float SPRING_OVERSHOOT = 1.05f;
// The zigzag's width, as shares of its length.
constexpr float SPRING_MIN_WIDTH = 0.15f;
constexpr float SPRING_MAX_WIDTH = 0.5f;
constexpr size_t SPRING_MIN_POINTS = 5;
// A loop must be at least this share of the stroke: a stroke that is mostly tail gives nothing.
constexpr float LOOP_MIN_SHARE = 0.5f;
// A hinge's stroke covers at most this share of its body.
constexpr float HINGE_MAX_AREA_SHARE = 0.5f;
// How far the vertices of a hinge's stroke may stray from the circle of the same area, as a factor.
constexpr float HINGE_ROUNDNESS = 1.8f;
} // namespace

bool KeepsToChord(const Line& line, float share)
{
    const std::vector<math::Vec2>& points = line.GetPoints();
    if (points.size() < 2)
        return false;
    const physics::Linesegment chord(points.front(), points.back());
    const float tolerance = share * (points.back() - points.front()).Length();
    // A chord of no length is a point, not the line through it: every point away from it is too far.
    const bool pointChord = points.front() == points.back();
    for (const math::Vec2& p : points)
    {
        const float distance = pointChord ? (p - points.front()).Length() : chord.Distance(p);
        if (distance > tolerance)
            return false;
    }
    return true;
}

bool CrossesItself(const Line& line)
{
    const std::vector<math::Vec2>& points = line.GetPoints();
    for (size_t i = 0; i + 1 < points.size(); ++i)
    {
        for (size_t j = i + 1; j + 1 < points.size(); ++j)
        {
            if (physics::LineSegmentIntersectTest(points[i], points[i + 1], points[j], points[j + 1]))
                return true;
        }
    }
    return false;
}

bool IsStraightStroke(const Line& line)
{
    return KeepsToChord(line, LINE_TOLERANCE) && !CrossesItself(line);
}

std::optional<SpringStroke> FindSpringStroke(const Line& line)
{
    const std::vector<math::Vec2>& points = line.GetPoints();
    if (points.size() < SPRING_MIN_POINTS)
        return std::nullopt;
    const math::Vec2 a = points.front();
    const math::Vec2 b = points.back();
    const float d = (b - a).Length();
    if (!(d > 0))
        return std::nullopt;
    const math::OBB2D box = math::OBB2D::Build(points.data(), int(points.size()), (b - a) / d);
    const float along = 2 * box.halfExtent[0];
    const float across = 2 * box.halfExtent[1];
    if (along > SPRING_OVERSHOOT * d)
        return std::nullopt;
    if (across < SPRING_MIN_WIDTH * d || across > SPRING_MAX_WIDTH * d)
        return std::nullopt;
    return SpringStroke{{a, b}, d, across};
}

std::optional<std::vector<math::Vec2>> FindPolygonOutline(const Line& line, float maxPointDist)
{
    if (line.Size() < 3)
        return std::nullopt;
    Line loop = line;
    if (loop.CheckSelfIntersect() != Line::CLOSED)
        return std::nullopt;
    if (loop.Length() < LOOP_MIN_SHARE * line.Length())
        return std::nullopt;
    return physics::AssertMaxDist(loop.GetPoints(), maxPointDist);
}

std::optional<float> FindHingeRadius(const physics::Polygon& stroke, float bodyArea)
{
    const float area = stroke.Area();
    if (area > HINGE_MAX_AREA_SHARE * bodyArea)
        return std::nullopt;
    const float r = std::sqrt(area / math::PIf);
    const math::Vec2 c = stroke.GetPosition();
    for (const math::Vec2& v : stroke.GetWorldVertices())
    {
        const float distance = (v - c).Length();
        if (distance < r / HINGE_ROUNDNESS || distance > r * HINGE_ROUNDNESS)
            return std::nullopt;
    }
    return r;
}

} // namespace app
