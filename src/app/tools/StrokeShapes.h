#pragma once
// What a finished stroke looks like, decided from its points alone: the sketch tools ask these before
// they look at the scene, so that every threshold can be tried without a window.

#include "app/tools/Line.h"

#include <optional>
#include <vector>

namespace physics
{
class Polygon;
}

namespace app
{

// Whether no point of the stroke lies further from its chord, the segment from its first point to its
// last, than `share` times the chord's length. A chord of no length admits no point away from it.
bool KeepsToChord(const Line& line, float share);
// Whether any two of the stroke's segments cross; segments that join end to start don't.
bool CrossesItself(const Line& line);
// The sketch tool's straight line: it keeps within 15% of its chord and never crosses itself. Two points
// always make one.
bool IsStraightStroke(const Line& line);

// A zigzag taken as a spring: from its first point to its last, with the width across it.
struct SpringStroke
{
    math::Vec2 ends[2];
    float length;
    float width;
};
// At least five points that stay between the ends (their box along the chord is at most 5% longer than
// the chord) and swing to each side: the box across the chord is from 15% to 50% of the chord's length.
std::optional<SpringStroke> FindSpringStroke(const Line& line);

// The outline of a closed stroke, with points filled in so that no gap exceeds `maxPointDist`; nothing
// for an open stroke, one without a loop, or one whose loop is less than half of the stroke.
std::optional<std::vector<math::Vec2>> FindPolygonOutline(const Line& line, float maxPointDist);

// The radius of the circle of the same area as a closed stroke drawn on a body of area `bodyArea`, when
// the stroke is small (at most half the body) and round (every vertex from r / 1.8 to 1.8 r from its
// centre): such a stroke means a hinge.
std::optional<float> FindHingeRadius(const physics::Polygon& stroke, float bodyArea);

} // namespace app
