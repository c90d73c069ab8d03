#include "core/JoinSubsystems.h"

#include "app/AppSettings.h"
#include "app/Scene.h"
#include "app/Serializer.h"
#include "core/System.h"
#include "gui/components/ConsoleSettings.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "script/KeyBinder.h"

namespace core
{

void JoinSubsystems(System& system, const std::function<void()>& windowParts)
{
    system.AddToRoot();
    physics::Simulation::GetInstancePtr()->AddToRoot();
    physics::SPH::GetInstancePtr()->AddToRoot();
    if (windowParts)
        windowParts();
    // In both programs: configuration text sets the console's look and binds keys, and reads the same with
    // or without a window. Without one, "Console.clear" has nothing to clear and no key ever fires.
    gui::ConsoleSettings::GetInstancePtr()->AddToRoot();
    util::SharedPtr<script::KeyBinder> keys = QLEX_NEW new script::KeyBinder();
    keys->AddToRoot();
    app::AppSettings::GetInstancePtr()->GetReflected()->AddToRoot();
    app::Scene::GetInstancePtr()->AddToRoot();
    // The serializer brings the "Scene.add..." commands and "FileInfo", which scene files need from the
    // start.
    app::Serializer::GetInstancePtr();
}

} // namespace core
