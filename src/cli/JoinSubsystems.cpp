#include "cli/HeadlessSystem.h"
#include "cli/PhysicsReflection.h"
#include "cli/World.h"
#include "physics/Simulation.h"

namespace cli
{

void JoinSubsystems(World& world)
{
    HeadlessSystem::GetInstancePtr()->AddToRoot();

    // The simulation and its water. When physics::Simulation and physics::SPH are script::Reflected
    // themselves, these two lines become their own AddToRoot() calls.
    util::SharedPtr<script::Reflected>(QLEX_NEW new SimulationReflection())->AddToRoot();
    util::SharedPtr<script::Reflected>(QLEX_NEW new SPHReflection())->AddToRoot();

    world.step = []
    {
        physics::Simulation* sim = physics::Simulation::GetInstancePtr();
        sim->Step(sim->m_running);
        // The scene's own update follows here once the scene is part of qlex-cli.
    };
    world.timeDelta = [] { return static_cast<double>(physics::Simulation::GetInstancePtr()->m_timeDelta); };
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
