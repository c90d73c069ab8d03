#include "core/JoinSubsystems.h"

#include "app/AppSettings.h"
#include "app/Scene.h"
#include "app/Serializer.h"
#include "core/System.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"

namespace core
{

void JoinSubsystems(System& system, const std::function<void()>& windowParts)
{
    system.AddToRoot();
    physics::Simulation::GetInstancePtr()->AddToRoot();
    physics::SPH::GetInstancePtr()->AddToRoot();
    if (windowParts)
        windowParts();
    app::AppSettings::GetInstancePtr()->GetReflected()->AddToRoot();
    app::Scene::GetInstancePtr()->AddToRoot();
    // The serializer brings the "Scene.add..." commands and "FileInfo", which scene files need from the
    // start.
    app::Serializer::GetInstancePtr();
}

} // namespace core
