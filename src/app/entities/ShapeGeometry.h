#pragma once
// What a shape draws, apart from the GL calls that draw it: corners, fans, clip points and the pictures
// of textures. Kept free of GL so that it can be checked without a window.

#include "math/Math.h"

#include <vector>

namespace physics
{
class Polygon;
}

namespace app
{
// The textured square of a circle has this side over the diameter: the picture's smooth edge needs room.
extern const float SquareScale;
// The share of the circle's turn that the cake slice (the rotation marker) takes.
extern const float CakeSize;
// Segments of a drawn circle.
const int CIRCLE_SEGMENTS = 128;
// Side of the circle textures, in texels.
const int CIRCLE_TEXTURE_SIZE = 1024;

// n + 1 points on the unit circle from (1, 0) clockwise back to (1, 0).
std::vector<math::Vec2> CalcVecs(int n);
// The static table of CalcVecs(CIRCLE_SEGMENTS).
const std::vector<math::Vec2>& CircleVecs();
// The part of CircleVecs that a circle's fan runs over: all of it, or without the slice round the x axis.
void CircleFanRange(bool cake, int& first, int& last);

// The corners of a box of half-extents `half` about the origin, in drawing order:
// (-x, -y), (-x, y), (x, y), (x, -y).
std::vector<math::Vec2> BoxQuad(math::Vec2 half);
// The half-extents of the inside of a bordered box; false when the border leaves no inside.
bool BoxInside(math::Vec2 half, float borderWidth, math::Vec2& inside);

// clamp(v / s + 0.5, 0, 1): a step of width s about v = 0.
float Smooth(float s, float v);
// The alpha texels, row by row, of the circle picture: the unit disc in a square of side 2 * SquareScale,
// with or without the cake slice cut out.
std::vector<float> CircleTexture(int size, bool cake);

// The pen's head, a disc filling the square, and the ring that marks a selected pen: alpha texels, row by
// row, smoothed over one texel at the rim.
std::vector<float> PenTexture(int size);
std::vector<float> RingTexture(int size);
// Side of the pen textures, in texels.
const int PEN_TEXTURE_SIZE = 64;

// The fan of the part of a convex quad (the view) where the signed distance lies within lo..hi: the
// corners inside, and on each edge the crossings of hi and lo in order along the edge.
std::vector<math::Vec2> PlaneSegment(const math::Vec2 corners[4], const float dists[4], float lo, float hi);

// The polygon's distance map as alpha texels: 0.5 on the outline, lower inside, cut off at maxDist.
std::vector<float> PolygonDistanceTexture(const physics::Polygon& polygon, float maxDist);
// The cut-off distance of a polygon's texture: 0.04 of the longest side of its map box.
float PolygonMaxDist(const physics::Polygon& polygon);
// The corners of the map box in the polygon's frame, in the order of the texture coordinates
// (1, 1), (1, 0), (0, 0), (0, 1).
void PolygonMapCorners(const physics::Polygon& polygon, math::Vec2 corners[4]);
// The texture coordinate of the distance texture at each of those corners.
math::Vec2 PolygonMapTexCoord(int corner);
// The alpha threshold below which the fixed-function picture of a polygon keeps a texel.
float PolygonInsideThreshold(float borderWidth, float maxDist);

} // namespace app
