#pragma once

#include "math/Math.h"
#include "physics/Body.h"
#include "physics/Particle.h"
#include "util/SharedPtr.h"

#include <vector>

// The physics scenes shared by the outcome tests and the benchmarks: each is built once, here. The sample
// scenes a user opens are scene files of their own, under scenes/.
namespace physics::testing
{
// An empty world with every setting at its default and the real-time clock.
void ResetWorld();

// A new body holding the shape, in the simulation.
util::SharedPtr<Body> AddDynamic(const util::SharedPtr<Geom>& geom);
// Fixes the shape to the world body: it never moves.
void AddStatic(const util::SharedPtr<Geom>& geom);
// The ground: a plane through (0, height) facing up, fixed to the world.
util::SharedPtr<Geom> AddGround(float height = 0.0f);

enum class Shape
{
    Box,
    Polygon
};

// A box of the given size centred at the position, as a Box or as a sixteen-point Polygon.
util::SharedPtr<Geom> MakeBox(Shape shape, const math::Vec2& size, const math::Vec2& centre);
// A regular polygon's points, counter-clockwise.
std::vector<math::Vec2> RegularPolygonPoints(const math::Vec2& centre, float radius, int vertices);

// Rows of boxes of side `size` on the ground, rows - i boxes in row i, each row centred on x = 0 and the
// boxes a tenth of their size apart. Bodies bottom row first.
std::vector<util::SharedPtr<Body>> BuildPyramid(int rows, Shape shape, float size = 1.0f);
// A column of boxes standing on the ground, bottom first.
std::vector<util::SharedPtr<Body>> BuildColumn(int count, Shape shape, float size = 1.0f);
// A static open box (floor and two walls) of the given inner width and wall height, floor top at y = 0.
void BuildContainer(float innerWidth, float wallHeight);
// Circles of the given radius on a grid above a container that holds them all; returns the bodies.
std::vector<util::SharedPtr<Body>> BuildCirclesInContainer(int count, float radius);
// A block of water particles, `rows` deep and count / rows wide, at rest spacing, in a container that
// fits it snugly. Returns the particles.
std::vector<util::SharedPtr<Particle>> BuildWaterTank(int count, int rows);
// Light boxes (density 0.5, a quarter metre) in a row just above a tank of that many rows, spread over its
// width; the tank is the last one BuildWaterTank made.
std::vector<util::SharedPtr<Body>> AddFloatingBoxes(int count, int rows);
// A drum of boxes glued on one body, hinged to the world at its centre and turned by the hinge's motor, with
// `count` circles of the given radius on a grid inside it. Returns the circles' bodies.
std::vector<util::SharedPtr<Body>> BuildRotatingDrum(int count, float radius);
// `count` shapes, boxes, circles and polygons in turn, on a grid above a container that holds them all.
std::vector<util::SharedPtr<Body>> BuildMixedHeap(int count);
// The spacing of particles in a water block as it is built.
float WaterSpacing();
// A chain of `links` boxes hinged end to end, hanging from the world at `anchor`, extending along +x.
std::vector<util::SharedPtr<Body>> BuildHingeChain(int links, const math::Vec2& anchor, float linkLength);

} // namespace physics::testing
