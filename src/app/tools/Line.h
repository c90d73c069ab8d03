#pragma once
// A recorded stroke: the points of one gesture in world coordinates, in the order they were drawn.

#include "math/Math.h"
#include "physics/Linesegment.h"

#include <vector>

namespace app
{

class Line
{
public:
    // What CheckSelfIntersect found.
    enum Closure
    {
        OPEN = 0,
        CLOSED = 1,
        NO_LOOP = 2,
    };

    Line() = default;
    explicit Line(std::vector<math::Vec2> points) : m_points(std::move(points)) {}

    // Appends p unless it repeats the last point exactly; callers filter by distance themselves.
    void Add(const math::Vec2& p);
    float Length() const;
    std::vector<physics::Linesegment> GetSegments() const;

    // CLOSED where the stroke holds a loop, which then replaces the line: the loop cut out at a crossing,
    // or the whole stroke if it comes back near its start without crossing itself. OPEN for a stroke
    // that neither crosses itself nor returns, NO_LOOP where the crossings leave no loop to cut.
    Closure CheckSelfIntersect();

    const std::vector<math::Vec2>& GetPoints() const { return m_points; }
    size_t Size() const { return m_points.size(); }
    bool IsEmpty() const { return m_points.empty(); }
    const math::Vec2& Back() const { return m_points.back(); }

private:
    std::vector<math::Vec2> m_points;
};

// The points where segments of `a` cross segments of `b`, for each segment of a in order, each of b in
// order, each point once; empty if either has fewer than two points.
std::vector<math::Vec2> IntersectTest(const Line& a, const Line& b);

} // namespace app
