#include "math/OBB2D.h"

#include "logging/Exception.h"

#include <algorithm>
#include <cmath>

namespace math
{

namespace
{
// A box's two axes repeat every quarter turn, so the coarse search covers a quarter turn in this many steps.
constexpr int COARSE_STEPS = 30;
// The fine search spans one coarse step on each side of the best coarse angle.
constexpr int FINE_STEPS = 20;
} // namespace

Vec2 FindMainAxisSimple(const Vec2* points, int nPoints)
{
    QLEX_ASSERT(nPoints > 1);
    int i, j;
    FindFarthestPair(points, nPoints, i, j);
    return (points[j] - points[i]).GetNormalized();
}

OBB2D OBB2D::FromCenterRad(const Vec2& center, float radius)
{
    return OBB2D(center, Vec2(1, 0), radius, radius);
}

OBB2D OBB2D::Empty()
{
    return FromCenterRad(Vec2(0, 0), -INF);
}

OBB2D OBB2D::Everything()
{
    return FromCenterRad(Vec2(0, 0), INF);
}

OBB2D OBB2D::Build(const Vec2* points, int nPoints, const Vec2& axis)
{
    if (nPoints <= 0)
        return Empty();
    if (nPoints == 1)
        return FromCenterRad(points[0], 0);

    const Vec2 axis2 = Rot90CCW(axis);
    float min1 = INF, max1 = -INF, min2 = INF, max2 = -INF;
    for (int i = 0; i < nPoints; ++i)
    {
        const float p1 = Dot(points[i], axis);
        const float p2 = Dot(points[i], axis2);
        min1 = std::min(min1, p1);
        max1 = std::max(max1, p1);
        min2 = std::min(min2, p2);
        max2 = std::max(max2, p2);
    }
    const Vec2 center = ((min2 + max2) * axis2 + (min1 + max1) * axis) * 0.5f;
    return OBB2D(center, axis, (max1 - min1) * 0.5f, (max2 - min2) * 0.5f);
}

OBB2D OBB2D::Build(const Vec2* points, int nPoints)
{
    if (nPoints <= 1)
        return Build(points, nPoints, Vec2(1, 0));

    const Vec2 mainAxis = FindMainAxisSimple(points, nPoints);
    OBB2D best = Build(points, nPoints, mainAxis);
    float bestAngle = mainAxis == Vec2(0, 0) ? 0.0f : std::atan2(mainAxis.y, mainAxis.x);

    for (int i = 0; i < COARSE_STEPS; ++i)
    {
        const float angle = (PIf / 2) * i / COARSE_STEPS;
        const OBB2D candidate = Build(points, nPoints, Vec2(std::cos(angle), std::sin(angle)));
        if (best.Area() > candidate.Area())
        {
            best = candidate;
            bestAngle = angle;
        }
    }

    const float step = PIf / COARSE_STEPS;
    for (int i = 1; i <= FINE_STEPS; ++i)
    {
        const float angle = i * step / (FINE_STEPS + 1) + bestAngle - step / 2;
        const OBB2D candidate = Build(points, nPoints, Vec2(std::cos(angle), std::sin(angle)));
        if (best.Area() > candidate.Area())
            best = candidate;
    }
    return best;
}

void OBB2D::CalcCorners(Vec2 out[4]) const
{
    const Vec2 a0 = axis[0] * halfExtent[0];
    const Vec2 a1 = axis[1] * halfExtent[1];
    out[0] = center + a0 + a1;
    out[1] = center + a0 - a1;
    out[2] = center - a0 - a1;
    out[3] = center - a0 + a1;
}

bool OBB2D::Contains(const Vec2& point) const
{
    const Vec2 d = point - center;
    return std::fabs(Dot(d, axis[0])) <= halfExtent[0] && std::fabs(Dot(d, axis[1])) <= halfExtent[1];
}

float OBB2D::Distance(const Vec2& point) const
{
    const Vec2 d = point - center;
    const float d0 = std::fabs(Dot(d, axis[0])) - halfExtent[0];
    const float d1 = std::fabs(Dot(d, axis[1])) - halfExtent[1];
    if (d0 > 0 && d1 > 0)
        return Vec2(d0, d1).Length();
    if (d0 > 0)
        return d0;
    if (d1 > 0)
        return d1;
    return std::max(d0, d1);
}

float OBB2D::ProjectedRadius(const Vec2& n) const
{
    return halfExtent[0] * std::fabs(Dot(axis[0], n)) + halfExtent[1] * std::fabs(Dot(axis[1], n));
}

Mat3 OBB2D::RotMat3() const
{
    return Mat3(axis[0].x, axis[0].y, 0, axis[1].x, axis[1].y, 0, 0, 0, 1);
}

Mat3 OBB2D::WorldToOBBmatrix() const
{
    return RotMat3() * Mat3::Translation2D(-center);
}

bool IsSeparatingAxis(const OBB2D& a, const OBB2D& b, const Vec2& n)
{
    return std::fabs(Dot(b.center - a.center, n)) > a.ProjectedRadius(n) + b.ProjectedRadius(n);
}

bool Intersects(const OBB2D& a, const OBB2D& b)
{
    for (const Vec2& n : {a.axis[0], a.axis[1], b.axis[0], b.axis[1]})
        if (IsSeparatingAxis(a, b, n))
            return false;
    return true;
}

OBB2D Transform(const Mat2D& m, const OBB2D& box)
{
    OBB2D r = box;
    r.center = TransformCoordinate(m, box.center);
    r.axis[0] = TransformNormal(m, box.axis[0]);
    r.axis[1] = TransformNormal(m, box.axis[1]);
    return r;
}

} // namespace math
