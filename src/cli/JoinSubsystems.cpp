#include "cli/HeadlessSystem.h"
#include "cli/World.h"

namespace cli
{

void JoinSubsystems(World& world)
{
    HeadlessSystem::GetInstancePtr()->AddToRoot();

    // The simulation joins here once it is part of the build:
    //   physics::Simulation::GetInstancePtr()->AddToRoot();            // "Sim"
    //   physics::SPH::GetInstancePtr()->AddToRoot();                   // "SPH"
    //   world.step = [] { physics::Simulation& sim = ...; sim.Step(sim.running); /* then Scene */ };
    //   world.timeDelta = [] { return double(physics::Simulation::GetInstancePtr()->timeDelta); };
    //   world.stats = [] { return physics::Simulation::GetInstancePtr()->GetStatistics(); };
    // and the scene after it: world.load, world.save.
    (void)world;
}

} // namespace cli
