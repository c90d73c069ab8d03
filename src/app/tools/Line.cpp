#include "app/tools/Line.h"

#include <algorithm>
#include <cmath>

namespace app
{

void Line::Add(const math::Vec2& p)
{
    if (!m_points.empty() && m_points.back() == p)
        return;
    m_points.push_back(p);
}

float Line::Length() const
{
    float length = 0;
    for (size_t i = 1; i < m_points.size(); ++i)
        length += (m_points[i] - m_points[i - 1]).Length();
    return length;
}

std::vector<physics::Linesegment> Line::GetSegments() const
{
    std::vector<physics::Linesegment> segments;
    for (size_t i = 1; i < m_points.size(); ++i)
        segments.emplace_back(m_points[i - 1], m_points[i]);
    return segments;
}

Line::Closure Line::CheckSelfIntersect()
{
    // A stroke that comes back within this share of its length of its start is taken as closed.
    constexpr float CLOSING_SHARE = 0.125f;
    const int segments = int(m_points.size()) - 1;
    if (segments < 1)
        return OPEN;
    std::vector<bool> crossed(segments, false);
    for (int i = 0; i < segments; ++i)
    {
        for (int j = i + 1; j < segments; ++j)
        {
            if (physics::LineSegmentIntersectTest(m_points[i], m_points[i + 1], m_points[j], m_points[j + 1]))
                crossed[i] = crossed[j] = true;
        }
    }
    int crossings = 0;
    for (bool c : crossed)
        crossings += c ? 1 : 0;
    const float length = Length();
    if (crossings == 0)
        return (m_points.back() - m_points.front()).Length() < CLOSING_SHARE * length ? CLOSED : OPEN;
    if (crossings == segments)
        return NO_LOOP;

    // The loop is taken around the uncrossed segment nearest the middle of the stroke, so that the tails
    // at either end fall away.
    int chosen = -1;
    float best = 0;
    float walked = 0;
    for (int k = 0; k < segments; ++k)
    {
        const float d = (m_points[k + 1] - m_points[k]).Length();
        const float measure = std::fabs(walked + d / 2 - length / 2);
        if (!crossed[k] && (chosen < 0 || measure < best))
        {
            chosen = k;
            best = measure;
        }
        walked += d;
    }
    if (chosen == 0)
        return NO_LOOP;
    int end = chosen;
    while (end < segments - 1 && !crossed[end])
        ++end;
    int start = chosen;
    while (start > 0 && !crossed[start])
        --start;

    Line loop;
    for (int k = start + 1; k <= end; ++k)
        loop.Add(m_points[k]);
    math::Vec2 crossing;
    if (physics::Intersects(physics::Linesegment(m_points[start], m_points[start + 1]),
                            physics::Linesegment(m_points[end], m_points[end + 1]), &crossing))
        loop.Add(crossing);
    m_points = std::move(loop.m_points);
    return CLOSED;
}

std::vector<math::Vec2> IntersectTest(const Line& a, const Line& b)
{
    std::vector<math::Vec2> crossings;
    const std::vector<math::Vec2>& p = a.GetPoints();
    const std::vector<math::Vec2>& q = b.GetPoints();
    for (size_t i = 1; i < p.size(); ++i)
    {
        for (size_t j = 1; j < q.size(); ++j)
        {
            math::Vec2 crossing;
            // Where the lines cross at a point of a stroke, each segment that meets there finds the same
            // crossing: it counts once.
            if (physics::LineSegmentIntersectTest(p[i - 1], p[i], q[j - 1], q[j], &crossing) &&
                std::find(crossings.begin(), crossings.end(), crossing) == crossings.end())
                crossings.push_back(crossing);
        }
    }
    return crossings;
}

} // namespace app
