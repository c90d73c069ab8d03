#pragma once

#include "math/Mat2D.h"
#include "math/Matrix.h"
#include "math/Vector.h"

namespace math
{

// The normalised direction between the two points farthest apart (the first such pair in index order),
// or the zero vector if all points coincide. Needs at least two points.
Vec2 FindMainAxisSimple(const Vec2* points, int nPoints);

// An oriented box: a centre, two unit axes (the second a quarter turn counter-clockwise of the first) and
// the half-extents along them.
class OBB2D
{
public:
    Vec2 center;
    Vec2 axis[2] = {Vec2(1, 0), Vec2(0, 1)};
    float halfExtent[2] = {0, 0};

    OBB2D() = default;
    OBB2D(const Vec2& center_, const Vec2& axis0, float halfExtent0, float halfExtent1)
        : center(center_), axis{axis0, Rot90CCW(axis0)}, halfExtent{halfExtent0, halfExtent1}
    {
    }

    // Axis-aligned, with both half-extents the radius.
    static OBB2D FromCenterRad(const Vec2& center, float radius);
    // Negative infinite extents: contains nothing.
    static OBB2D Empty();
    static OBB2D Everything();

    // The smallest box around the points whose first axis is the given unit vector.
    static OBB2D Build(const Vec2* points, int nPoints, const Vec2& axis);
    // A near-smallest box around the points, found by searching the orientation: 51 boxes in all.
    static OBB2D Build(const Vec2* points, int nPoints);
    static OBB2D Build(const Vec2List& points) { return Build(points.data(), int(points.size())); }

    float Area() const { return 4 * halfExtent[0] * halfExtent[1]; }
    // The axis of the larger extent; the first on a tie.
    const Vec2& GetLongAxis() const { return halfExtent[1] > halfExtent[0] ? axis[1] : axis[0]; }

    // c + a0 + a1, c + a0 - a1, c - a0 - a1, c - a0 + a1, with the axes scaled by their half-extents:
    // a walk around the border.
    void CalcCorners(Vec2 out[4]) const;

    // Inclusive of the border.
    bool Contains(const Vec2& point) const;
    // Signed distance to the border, negative inside.
    float Distance(const Vec2& point) const;
    // The half-extent of the box along n, times |n|.
    float ProjectedRadius(const Vec2& n) const;

    // Rows are the axes: takes world directions into the box's frame.
    Mat3 RotMat3() const;
    // Takes world points into the box's frame, where the centre is the origin and the axes are x and y.
    Mat3 WorldToOBBmatrix() const;
};

// True when the projections of the boxes onto n are apart.
bool IsSeparatingAxis(const OBB2D& a, const OBB2D& b, const Vec2& n);
// Separating-axis test over the two axes of a, then the two of b.
bool Intersects(const OBB2D& a, const OBB2D& b);
// The box moved by a rigid transform: its extents are unchanged.
OBB2D Transform(const Mat2D& m, const OBB2D& box);

} // namespace math
