#include "cli/HeadlessSystem.h"
#include "cli/World.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"

namespace cli
{

void JoinSubsystems(World& world)
{
    HeadlessSystem::GetInstancePtr()->AddToRoot();

    physics::Simulation::GetInstancePtr()->AddToRoot();
    physics::SPH::GetInstancePtr()->AddToRoot();

    world.step = []
    {
        physics::Simulation::GetInstancePtr()->AdvanceOneStep();
        // The scene's own update follows here once the scene is part of qlex-cli.
    };
    world.timeDelta = []
    { return static_cast<double>(physics::Simulation::GetInstancePtr()->m_timeDelta.Get()); };
    world.stats = []
    {
        // The statistics text is written by a frame's update; one of no real time takes no step.
        physics::Simulation* sim = physics::Simulation::GetInstancePtr();
        sim->Update(0.0);
        return sim->GetStatistics();
    };
    // world.load and world.save come with the scene.
}

} // namespace cli
