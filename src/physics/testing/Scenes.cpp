#include "physics/testing/Scenes.h"

#include "physics/Box.h"
#include "physics/Circle.h"
#include "physics/Hinge.h"
#include "physics/Plane.h"
#include "physics/Polygon.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "physics/WorldGeom.h"

#include <cmath>

namespace physics::testing
{
namespace
{
// Gap between neighbouring boxes of a row, as a fraction of their size: touching sides would make
// contacts that only add work.
const float ROW_GAP = 0.1f;
// Walls of containers, in metres.
const float WALL_THICKNESS = 0.5f;
// Rest spacing of water particles, in particle radii.
const float WATER_SPACING_RADII = 1.9f;

float s_lastTankWidth = 0.0f;

template <class T> bool ResetIfOfType(const script::VariablePtr& variable)
{
    const util::SharedPtr<script::TAttrib<T>> attrib =
        util::dynamic_pointer_cast<script::TAttrib<T>>(variable);
    // Through the script's path, so that a bound expression goes too.
    if (attrib)
        attrib->SetObject(script::ValueToObject(attrib->GetDefault()));
    return bool(attrib);
}

// Every attribute back to its default.
void ResetAttributes(script::Reflected& object)
{
    for (const script::VariablePtr& variable : object.GetVariables())
        ResetIfOfType<bool>(variable) || ResetIfOfType<int>(variable) || ResetIfOfType<float>(variable) ||
            ResetIfOfType<math::Vec2>(variable);
}
} // namespace

void ResetWorld()
{
    Simulation& sim = *Simulation::GetInstancePtr();
    sim.Clear();
    sim.SetClock(nullptr);
    sim.SetUpdateBudget(0.05f);
    ResetAttributes(sim);
    ResetAttributes(*SPH::GetInstancePtr());
}

util::SharedPtr<Body> AddDynamic(const util::SharedPtr<Geom>& geom)
{
    util::SharedPtr<Body> body = QLEX_NEW new Body();
    body->SetGeom(geom);
    Simulation::GetInstancePtr()->AddBody(body);
    return body;
}

void AddStatic(const util::SharedPtr<Geom>& geom)
{
    Simulation::GetInstancePtr()->GetWorldBody()->AddGeom(geom);
}

util::SharedPtr<Geom> AddGround(float height)
{
    util::SharedPtr<Geom> plane =
        QLEX_NEW new Plane(math::Plane2D::FromPointNormal(math::Vec2(0.0f, height), math::Vec2(0.0f, 1.0f)));
    AddStatic(plane);
    return plane;
}

util::SharedPtr<Geom> MakeBox(Shape shape, const math::Vec2& size, const math::Vec2& centre)
{
    if (shape == Shape::Box)
        return QLEX_NEW new Box(size, centre);
    const math::Vec2 half = size * 0.5f;
    return Polygon::CreateBox(centre - half, centre + half);
}

std::vector<math::Vec2> RegularPolygonPoints(const math::Vec2& centre, float radius, int vertices)
{
    std::vector<math::Vec2> points;
    points.reserve(vertices);
    for (int i = 0; i < vertices; ++i)
    {
        const float a = 2.0f * math::PIf * static_cast<float>(i) / static_cast<float>(vertices);
        points.push_back(centre + math::Vec2(std::cos(a), std::sin(a)) * radius);
    }
    return points;
}

std::vector<util::SharedPtr<Body>> BuildPyramid(int rows, Shape shape, float size)
{
    AddGround();
    std::vector<util::SharedPtr<Body>> bodies;
    const float pitch = size * (1.0f + ROW_GAP);
    for (int row = 0; row < rows; ++row)
    {
        const int count = rows - row;
        const float y = size * (0.5f + static_cast<float>(row));
        for (int i = 0; i < count; ++i)
        {
            const float x = (static_cast<float>(i) - 0.5f * static_cast<float>(count - 1)) * pitch;
            bodies.push_back(AddDynamic(MakeBox(shape, math::Vec2(size, size), math::Vec2(x, y))));
        }
    }
    return bodies;
}

std::vector<util::SharedPtr<Body>> BuildColumn(int count, Shape shape, float size)
{
    AddGround();
    std::vector<util::SharedPtr<Body>> bodies;
    for (int i = 0; i < count; ++i)
        bodies.push_back(AddDynamic(
            MakeBox(shape, math::Vec2(size, size), math::Vec2(0.0f, size * (0.5f + static_cast<float>(i))))));
    return bodies;
}

void BuildContainer(float innerWidth, float wallHeight)
{
    const float outer = innerWidth + 2.0f * WALL_THICKNESS;
    AddStatic(QLEX_NEW new Box(math::Vec2(outer, WALL_THICKNESS), math::Vec2(0.0f, -WALL_THICKNESS / 2.0f)));
    // The walls reach down through the floor: a seam where a wall merely stands on the floor would let
    // water particles, which meet shapes as tiny circles, squeeze in under the wall.
    const float wallX = innerWidth / 2.0f + WALL_THICKNESS / 2.0f;
    const float wallLength = wallHeight + WALL_THICKNESS;
    for (float side : {-1.0f, 1.0f})
        AddStatic(QLEX_NEW new Box(math::Vec2(WALL_THICKNESS, wallLength),
                                   math::Vec2(side * wallX, wallHeight - wallLength / 2.0f)));
}

std::vector<util::SharedPtr<Body>> BuildCirclesInContainer(int count, float radius)
{
    const int columns = static_cast<int>(std::ceil(std::sqrt(static_cast<float>(count))));
    const float pitch = 2.2f * radius;
    const float width = columns * pitch + 2.0f * radius;
    BuildContainer(width, width);
    std::vector<util::SharedPtr<Body>> bodies;
    for (int i = 0; i < count; ++i)
    {
        const int column = i % columns;
        const int row = i / columns;
        const math::Vec2 centre((static_cast<float>(column) - 0.5f * static_cast<float>(columns - 1)) * pitch,
                                radius * 2.0f + static_cast<float>(row) * pitch);
        bodies.push_back(AddDynamic(QLEX_NEW new Circle(centre, radius)));
    }
    return bodies;
}

std::vector<util::SharedPtr<Body>> BuildRotatingDrum(int count, float radius)
{
    const int columns = static_cast<int>(std::ceil(std::sqrt(static_cast<float>(count))));
    const float pitch = 2.2f * radius;
    // The grid of circles fits inside the drum with room to tumble.
    const float drumRadius = 0.75f * columns * pitch + 1.0f;
    const int staves = 48;
    const float stave = 2.0f * math::PIf * drumRadius / static_cast<float>(staves);
    util::SharedPtr<Body> drum;
    util::SharedPtr<Geom> first;
    for (int i = 0; i < staves; ++i)
    {
        const float angle = 2.0f * math::PIf * static_cast<float>(i) / static_cast<float>(staves);
        const math::Vec2 centre(drumRadius * std::cos(angle), drumRadius * std::sin(angle));
        // Each stave as a polygon: a box turned to face the centre.
        const math::Vec2 along(-std::sin(angle), std::cos(angle));
        const math::Vec2 out(std::cos(angle), std::sin(angle));
        const float half = 0.55f * stave;
        const float thick = 0.25f;
        util::SharedPtr<Geom> piece = QLEX_NEW new Polygon(std::vector<math::Vec2>{
            centre - along * half - out * thick, centre + along * half - out * thick,
            centre + along * half + out * thick, centre - along * half + out * thick});
        if (!drum)
        {
            drum = AddDynamic(piece);
            first = piece;
        }
        else
            drum->AddGeom(piece);
    }
    const util::SharedPtr<Hinge> axle =
        QLEX_NEW new Hinge(Simulation::GetInstancePtr()->GetWorldGeom(), first, math::Vec2(0.0f, 0.0f));
    axle->SetMotorOn(true);
    axle->SetMotorSpeed(0.5f);
    axle->SetMotorStrength(1e6f);
    Simulation::GetInstancePtr()->AddConstraint(axle);
    std::vector<util::SharedPtr<Body>> bodies;
    for (int i = 0; i < count; ++i)
    {
        const int column = i % columns;
        const int row = i / columns;
        const math::Vec2 centre((static_cast<float>(column) - 0.5f * static_cast<float>(columns - 1)) * pitch,
                                (static_cast<float>(row) - 0.5f * static_cast<float>(columns - 1)) * pitch);
        bodies.push_back(AddDynamic(QLEX_NEW new Circle(centre, radius)));
    }
    return bodies;
}

std::vector<util::SharedPtr<Body>> BuildMixedHeap(int count)
{
    const float size = 0.5f;
    const int columns = static_cast<int>(std::ceil(std::sqrt(static_cast<float>(count))));
    const float pitch = 1.3f * size;
    const float width = columns * pitch + size;
    BuildContainer(width, width);
    std::vector<util::SharedPtr<Body>> bodies;
    for (int i = 0; i < count; ++i)
    {
        const int column = i % columns;
        const int row = i / columns;
        const math::Vec2 centre((static_cast<float>(column) - 0.5f * static_cast<float>(columns - 1)) * pitch,
                                size + static_cast<float>(row) * pitch);
        switch (i % 3)
        {
        case 0:
            bodies.push_back(AddDynamic(QLEX_NEW new Box(math::Vec2(size, size), centre)));
            break;
        case 1:
            bodies.push_back(AddDynamic(QLEX_NEW new Circle(centre, 0.5f * size)));
            break;
        default:
            bodies.push_back(AddDynamic(QLEX_NEW new Polygon(RegularPolygonPoints(centre, 0.5f * size, 6))));
            break;
        }
    }
    return bodies;
}

float WaterSpacing()
{
    return WATER_SPACING_RADII * SPH::GetInstancePtr()->m_radius;
}

std::vector<util::SharedPtr<Particle>> BuildWaterTank(int count, int rows)
{
    const int columns = (count + rows - 1) / rows;
    const float spacing = WaterSpacing();
    const float width = static_cast<float>(columns) * spacing;
    s_lastTankWidth = width;
    BuildContainer(width, static_cast<float>(rows) * spacing * 2.0f + 1.0f);
    std::vector<util::SharedPtr<Particle>> particles;
    Simulation& sim = *Simulation::GetInstancePtr();
    for (int i = 0; i < count; ++i)
    {
        // Column by column: particles that are neighbours in the water are neighbours in memory too.
        const int column = i / rows;
        const int row = i % rows;
        const math::Vec2 p(-width / 2.0f + (static_cast<float>(column) + 0.5f) * spacing,
                           (static_cast<float>(row) + 0.5f) * spacing);
        util::SharedPtr<Particle> particle = QLEX_NEW new Particle(p, math::Vec2(0.0f, 0.0f));
        sim.AddParticle(particle);
        particles.push_back(particle);
    }
    return particles;
}

std::vector<util::SharedPtr<Body>> AddFloatingBoxes(int count, int rows)
{
    const float size = 0.25f;
    const float spacing = WaterSpacing();
    // The water settles lower than it is built; the boxes start just above the block.
    const float y = static_cast<float>(rows) * spacing + size;
    const float width = s_lastTankWidth - size;
    std::vector<util::SharedPtr<Body>> bodies;
    for (int i = 0; i < count; ++i)
    {
        const float x = -width / 2.0f + width * (static_cast<float>(i) + 0.5f) / static_cast<float>(count);
        util::SharedPtr<Box> box = QLEX_NEW new Box(math::Vec2(size, size), math::Vec2(x, y));
        box->SetDensity(0.5f);
        bodies.push_back(AddDynamic(box));
    }
    return bodies;
}

std::vector<util::SharedPtr<Body>> BuildHingeChain(int links, const math::Vec2& anchor, float linkLength)
{
    Simulation& sim = *Simulation::GetInstancePtr();
    std::vector<util::SharedPtr<Body>> bodies;
    util::SharedPtr<Geom> previous = sim.GetWorldGeom();
    const float thickness = linkLength * 0.2f;
    for (int i = 0; i < links; ++i)
    {
        const math::Vec2 start = anchor + math::Vec2(linkLength * static_cast<float>(i), 0.0f);
        util::SharedPtr<Geom> link =
            QLEX_NEW new Box(math::Vec2(linkLength, thickness), start + math::Vec2(linkLength / 2.0f, 0.0f));
        bodies.push_back(AddDynamic(link));
        sim.AddConstraint(QLEX_NEW new Hinge(previous, link, start));
        previous = link;
    }
    return bodies;
}

} // namespace physics::testing
