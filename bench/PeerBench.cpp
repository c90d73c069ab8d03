// The pyramids of boxes in our world and in Box2D 2.4, a general physics library, timed in one run so that
// the ratio of the two holds on whatever machine and load it runs. Only this benchmark links Box2D.
#include "physics/Simulation.h"
#include "physics/testing/Scenes.h"

#include <benchmark/benchmark.h>
#include <box2d/box2d.h>

#include <memory>

namespace
{
namespace scenes = physics::testing;

const int SETTLE_STEPS = 100;
// Our world's defaults, given to Box2D too: step, gravity, density, friction and restitution of a box.
const float TIME_STEP = 0.01f;
const float GRAVITY = -9.8f;
const float DENSITY = 2.0f;
const float FRICTION = 0.5f;
const float RESTITUTION = 0.5f;
// As in scenes::BuildPyramid: boxes of 1 m, a tenth of their size apart within a row.
const float BOX_SIZE = 1.0f;
const float ROW_GAP = 0.1f;
// Box2D's own default number of position iterations.
const int POSITION_ITERATIONS = 3;

void Pyramid_Qlex(benchmark::State& state)
{
    scenes::ResetWorld();
    physics::Simulation& sim = *physics::Simulation::GetInstancePtr();
    sim.m_airSwitch = false;
    scenes::BuildPyramid(static_cast<int>(state.range(0)), scenes::Shape::Box, BOX_SIZE);
    for (int i = 0; i < SETTLE_STEPS; ++i)
    {
        sim.Step(true);
        util::PointeeHandle::Flush();
    }
    for (auto _ : state)
    {
        sim.Step(true);
        util::PointeeHandle::Flush();
    }
    state.counters["iterations"] = static_cast<double>(sim.m_solveIter.Get());
    scenes::ResetWorld();
}

std::unique_ptr<b2World> MakeBox2DPyramid(int rows)
{
    auto world = std::make_unique<b2World>(b2Vec2(0.0f, GRAVITY));
    // Our world has no sleep: a resting pyramid costs every step, so Box2D's must too.
    world->SetAllowSleeping(false);
    b2BodyDef groundDef;
    b2Body* ground = world->CreateBody(&groundDef);
    b2EdgeShape floor;
    floor.SetTwoSided(b2Vec2(-1000.0f, 0.0f), b2Vec2(1000.0f, 0.0f));
    ground->CreateFixture(&floor, 0.0f);

    b2PolygonShape box;
    box.SetAsBox(BOX_SIZE / 2.0f, BOX_SIZE / 2.0f);
    b2FixtureDef fixture;
    fixture.shape = &box;
    fixture.density = DENSITY;
    fixture.friction = FRICTION;
    fixture.restitution = RESTITUTION;
    const float pitch = BOX_SIZE * (1.0f + ROW_GAP);
    for (int row = 0; row < rows; ++row)
    {
        const int count = rows - row;
        for (int i = 0; i < count; ++i)
        {
            b2BodyDef def;
            def.type = b2_dynamicBody;
            def.position.Set((static_cast<float>(i) - 0.5f * static_cast<float>(count - 1)) * pitch,
                             BOX_SIZE * (0.5f + static_cast<float>(row)));
            world->CreateBody(&def)->CreateFixture(&fixture);
        }
    }
    return world;
}

// Arguments: rows, velocity iterations.
void Pyramid_Box2D(benchmark::State& state)
{
    const std::unique_ptr<b2World> world = MakeBox2DPyramid(static_cast<int>(state.range(0)));
    const int iterations = static_cast<int>(state.range(1));
    for (int i = 0; i < SETTLE_STEPS; ++i)
        world->Step(TIME_STEP, iterations, POSITION_ITERATIONS);
    for (auto _ : state)
        world->Step(TIME_STEP, iterations, POSITION_ITERATIONS);
    state.counters["iterations"] = iterations;
}
} // namespace

BENCHMARK(Pyramid_Qlex)->Arg(20)->Arg(50)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK(Pyramid_Box2D)->ArgsProduct({{20, 50, 100}, {30, 8}})->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
