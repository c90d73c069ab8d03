#include "cli/World.h"

#include "app/Scene.h"
#include "app/SceneFiles.h"
#include "physics/Simulation.h"
#include "util/FileSystem.h"

#include <filesystem>

namespace cli
{

World MakeWorld()
{
    World world;
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
    return world;
}

} // namespace cli
