#include "AllocationCounter.h"
#include "physics/Particle.h"
#include "physics/Simulation.h"
#include "physics/testing/Scenes.h"

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#else
#define CALLGRIND_START_INSTRUMENTATION
#define CALLGRIND_STOP_INSTRUMENTATION
#endif

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// Steps a water tank outside the benchmark harness, for profilers (callgrind, cachegrind) that would make
// the harness's timing loop far too slow: water_steps <particles> <steps> [settle steps] [rebuilds].
// Prints the time and the heap allocations per measured step, and a digest of the water's final state
// (equal digests: identical results). With a few hundred settle steps the allocations are those of a
// steady state, once the contact pool and the tables have grown to the scene.
int main(int argc, char** argv)
{
    const int count = argc > 1 ? std::atoi(argv[1]) : 4000;
    const int steps = argc > 2 ? std::atoi(argv[2]) : 20;
    const int settle = argc > 3 ? std::atoi(argv[3]) : 100;
    // Scenes built and cleared before the measured one, as a benchmark's repetitions do: the measured
    // scene then lives in a heap that others have used.
    const int rebuilds = argc > 4 ? std::atoi(argv[4]) : 0;
    if (count <= 0 || steps <= 0 || settle < 0 || rebuilds < 0)
    {
        std::fprintf(stderr, "usage: water_steps <particles> <steps> [settle steps] [rebuilds]\n");
        return 1;
    }
    namespace scenes = physics::testing;
    physics::Simulation& sim = *physics::Simulation::GetInstancePtr();
    for (int build = 0; build <= rebuilds; ++build)
    {
        scenes::ResetWorld();
        util::PointeeHandle::Flush();
        scenes::BuildWaterTank(count, 8);
        for (int i = 0; i < settle; ++i)
        {
            sim.Step(true);
            util::PointeeHandle::Flush();
        }
    }
    const std::size_t allocationsBefore = bench::AllocationCount();
    // Only the timed steps are measured when run under callgrind with --instr-atstart=no.
    CALLGRIND_START_INSTRUMENTATION;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < steps; ++i)
    {
        sim.Step(true);
        util::PointeeHandle::Flush();
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    CALLGRIND_STOP_INSTRUMENTATION;
    const double allocations = static_cast<double>(bench::AllocationCount() - allocationsBefore);
    // A digest of every particle's position and velocity bits: equal digests mean identical results.
    std::uint64_t digest = 1469598103934665603ull;
    for (const util::SharedPtr<physics::Particle>& p : sim.GetParticles())
    {
        const float values[4] = {p->GetPosition().x, p->GetPosition().y, p->GetVelocity().x,
                                 p->GetVelocity().y};
        std::uint32_t bits[4];
        std::memcpy(bits, values, sizeof bits);
        for (std::uint32_t b : bits)
            digest = (digest ^ b) * 1099511628211ull;
    }
    std::printf(
        "%d particles: %.3f ms/step, %.3f us/particle, %.3f allocations/step, %zu contacts, digest %016llx\n",
        count, seconds * 1e3 / steps, seconds * 1e6 / steps / count, allocations / steps,
        sim.GetContacts().size(), static_cast<unsigned long long>(digest));
    scenes::ResetWorld();
    return 0;
}
