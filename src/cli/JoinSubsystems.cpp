#include "app/App.h"
#include "app/Scene.h"
#include "app/SceneFiles.h"
#include "app/Serializer.h"
#include "cli/HeadlessSystem.h"
#include "cli/World.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "util/FileSystem.h"

#include <filesystem>

namespace cli
{

namespace
{
// The scene with its file commands, the application's settings and the history, without any window.
void JoinScene(World& world)
{
    app::Scene::GetInstancePtr()->AddToRoot();
    app::Serializer::GetInstancePtr();
    const util::SharedPtr<script::Reflected>& application = app::App::GetInstancePtr()->GetReflected();
    application->AddToRoot();

    world.load = [](const util::String& path)
    {
        // A name without a folder is one of the scenes of the work directory, as in the application.
        const util::String file = path.find('/') == util::String::npos
                                      ? util::FileSystem::GetInstancePtr()->SceneDir() + path
                                      : path;
        // A folder opens like a file and reads as nothing: it would pass for an empty scene.
        std::error_code error;
        if (!util::FileSystem::FileExists(file) || std::filesystem::is_directory(file, error))
            return false;
        app::LoadSceneFile(file, true);
        return true;
    };
    world.save = [](const util::String& path) { return app::SaveSceneFile(path, true); };
}
} // namespace

void JoinSubsystems(World& world)
{
    HeadlessSystem::GetInstancePtr()->AddToRoot();

    physics::Simulation::GetInstancePtr()->AddToRoot();
    physics::SPH::GetInstancePtr()->AddToRoot();

    world.step = []
    {
        physics::Simulation* sim = physics::Simulation::GetInstancePtr();
        sim->AdvanceOneStep();
        app::Scene::GetInstancePtr()->Update(sim->m_timeDelta);
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

    JoinScene(world);
}

} // namespace cli
