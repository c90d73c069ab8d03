#include "AllocationCounter.h"
#include "physics/Polygon.h"
#include "physics/Simulation.h"
#include "physics/testing/Scenes.h"

#include <benchmark/benchmark.h>

namespace
{
using physics::Simulation;
namespace scenes = physics::testing;

// Steps taken before timing starts, so that the scene is measured at rest or in steady motion rather than
// while it first falls into place.
const int SETTLE_STEPS = 100;

// One step as a frame takes it, with the handle collection of the main loop.
void StepOnce(Simulation& sim)
{
    sim.Step(true);
    util::PointeeHandle::Flush();
}

// Times steps of the scene that `build` made; reports contacts and heap allocations per step.
template <class Build> void RunScene(benchmark::State& state, Build build)
{
    scenes::ResetWorld();
    Simulation& sim = *Simulation::GetInstancePtr();
    build();
    for (int i = 0; i < SETTLE_STEPS; ++i)
        StepOnce(sim);
    const std::size_t allocationsBefore = bench::AllocationCount();
    double contacts = 0.0;
    for (auto _ : state)
    {
        StepOnce(sim);
        contacts += static_cast<double>(sim.GetContacts().size());
    }
    const double steps = static_cast<double>(state.iterations());
    state.counters["contacts"] = contacts / steps;
    state.counters["allocs/step"] = static_cast<double>(bench::AllocationCount() - allocationsBefore) / steps;
    state.counters["bodies"] = static_cast<double>(sim.GetBodies().size() - 1);
    scenes::ResetWorld();
}

// The second argument switches the broadphase: 1 on, 0 every pair.
void Pyramid_Boxes(benchmark::State& state)
{
    const int rows = static_cast<int>(state.range(0));
    const bool broadphase = state.range(1) != 0;
    RunScene(state,
             [rows, broadphase]
             {
                 Simulation::GetInstancePtr()->m_airSwitch = false;
                 Simulation::GetInstancePtr()->m_broadphase = broadphase;
                 scenes::BuildPyramid(rows, scenes::Shape::Box);
             });
}

void Pyramid_Polygons(benchmark::State& state)
{
    const int rows = static_cast<int>(state.range(0));
    RunScene(state,
             [rows]
             {
                 Simulation::GetInstancePtr()->m_airSwitch = false;
                 scenes::BuildPyramid(rows, scenes::Shape::Polygon);
             });
}

void Circles_InContainer(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    RunScene(state, [count] { scenes::BuildCirclesInContainer(count, 0.25f); });
}

// The second argument switches the broadphase: 1 on, 0 every pair.
void Circles_RotatingDrum(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    const bool broadphase = state.range(1) != 0;
    RunScene(state,
             [count, broadphase]
             {
                 Simulation::GetInstancePtr()->m_broadphase = broadphase;
                 scenes::BuildRotatingDrum(count, 0.1f);
             });
}

void Mixed_Heap(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    const bool broadphase = state.range(1) != 0;
    RunScene(state,
             [count, broadphase]
             {
                 Simulation::GetInstancePtr()->m_broadphase = broadphase;
                 scenes::BuildMixedHeap(count);
             });
}

// Water in a tank of this many rows: deep enough to press on the bottom, shallow enough to stay calm at the
// default step.
const int WATER_ROWS = 8;

void Water_Tank(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    RunScene(state, [count] { scenes::BuildWaterTank(count, WATER_ROWS); });
    state.counters["particles"] = static_cast<double>(count);
}

void Water_FloatingBoxes(benchmark::State& state)
{
    const int boxes = static_cast<int>(state.range(0));
    RunScene(state,
             [boxes]
             {
                 scenes::BuildWaterTank(2000, WATER_ROWS);
                 scenes::AddFloatingBoxes(boxes, WATER_ROWS);
             });
}

void Polygon_Construction(benchmark::State& state)
{
    scenes::ResetWorld();
    const std::vector<math::Vec2> points =
        scenes::RegularPolygonPoints(math::Vec2(0.0f, 0.0f), 1.0f, static_cast<int>(state.range(0)));
    for (auto _ : state)
    {
        physics::Polygon polygon(points);
        benchmark::DoNotOptimize(polygon.Area());
    }
}
} // namespace

BENCHMARK(Pyramid_Boxes)
    ->ArgsProduct({{10, 20, 30, 50, 100}, {0, 1}})
    ->ArgNames({"rows", "broadphase"})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Pyramid_Polygons)->Arg(10)->Arg(20)->Arg(30)->Unit(benchmark::kMillisecond);
BENCHMARK(Circles_InContainer)->Arg(500)->Unit(benchmark::kMillisecond);
BENCHMARK(Circles_RotatingDrum)->ArgsProduct({{2000}, {0, 1}})->Unit(benchmark::kMillisecond);
BENCHMARK(Mixed_Heap)->ArgsProduct({{500}, {0, 1}})->Unit(benchmark::kMillisecond);
BENCHMARK(Water_Tank)->Arg(1000)->Arg(4000)->Arg(16000)->Unit(benchmark::kMillisecond);
BENCHMARK(Water_FloatingBoxes)->Arg(20)->Unit(benchmark::kMillisecond);
BENCHMARK(Polygon_Construction)->Arg(16)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
