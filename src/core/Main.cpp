#include "core/Main.h"

#include "app/App.h"
#include "app/AppGUI.h"
#include "app/Scene.h"
#include "app/Serializer.h"
#include "core/CommandLine.h"
#include "core/OuterHandlers.h"
#include "core/ProgramFiles.h"
#include "core/ResourceManager.h"
#include "core/Subsystem.h"
#include "gui/GUI.h"
#include "logging/Log.h"
#include "physics/SPH.h"
#include "physics/Simulation.h"
#include "platform/Os.h"
#include "script/Configuration.h"
#include "script/Parser.h"
#include "util/FileSystem.h"

#include <iostream>

namespace
{
const int EXIT_ORDERLY = 0;
// Never seen: the program and its handlers end the process themselves.
const int EXIT_UNREACHED = 2;

std::optional<math::TVector2<int>> DisplaySize()
{
    math::TVector2<int> size;
    if (os::GetDisplaySize(size))
    {
        return size;
    }
    return std::nullopt;
}

std::string ConfigDir()
{
    return util::FileSystem::GetInstancePtr()->ConfigDir();
}

// The singletons that scripts reach by name, and the application root in the interface's tree.
void JoinSubsystems(core::Subsystem& subsystem)
{
    subsystem.GetReflected()->AddToRoot();
    core::ResourceManager::GetInstancePtr()->AddToRoot();
    physics::Simulation::GetInstancePtr()->AddToRoot();
    physics::SPH::GetInstancePtr()->AddToRoot();
    gui::GUI* gui = gui::GUI::GetInstancePtr();
    gui->GetReflected()->AddToRoot();
    gui->AddFontChangeCallback(
        util::MakeCallback(&core::ResourceManager::ReloadFonts, core::ResourceManager::GetInstancePtr()));

    util::SharedPtr<app::App> application = app::App::GetInstancePtr();
    gui->GetMainComponent()->AddComponent(application);
    application->GetReflected()->AddToRoot();
    app::Scene::GetInstancePtr()->AddToRoot();
    // The serializer brings the "Scene.add..." commands and "FileInfo", which scene files need from the
    // start.
    app::Serializer::GetInstancePtr();
    app::Scene::GetInstancePtr()->SetWindowTitleSink([&subsystem](const util::String& title)
                                                     { subsystem.SetTitle(title); });
    Log(logging::Debug, "Application created");
}

// Which configuration to read: a left-over autosave means the last run didn't end in order, and holds the
// newest settings of that run. A first run fits the window to the screen.
void LoadConfiguration(core::Subsystem& subsystem)
{
    if (script::Configuration::LoadAtStart(ConfigDir()) == script::Configuration::FIRST_RUN)
    {
        app::App::GetInstancePtr()->SetFirstTimeRunning();
        subsystem.SetParams(core::FirstRunParams(DisplaySize()));
    }
}

[[noreturn]] void RunProgram(int argc, char** argv)
{
    util::FileSystem* files = util::FileSystem::GetInstancePtr();
    files->CalcWorkDir(argc > 0 ? argv[0] : "");
    logging::SetWorkDirectory(files->WorkDir());
    const std::vector<std::string> arguments = core::ArgumentsOf(argc, argv);
    if (core::AsksForVersion(arguments))
    {
        std::cout << util::FileSystem::NameAndVersion() << std::endl;
        os::ExitProcess(EXIT_ORDERLY);
    }

    core::Subsystem::Create();
    core::Subsystem& subsystem = *core::Subsystem::GetInstancePtr();
    subsystem.SetTitle(util::FileSystem::NameAndVersion());
    JoinSubsystems(subsystem);

    LoadConfiguration(subsystem);
    subsystem.CreateWindow(subsystem.GetRequestedParams());

    if (const GLubyte* extensions = glGetString(GL_EXTENSIONS))
    {
        Log(logging::Debug,
            std::string("Available OpenGL extensions: ") + reinterpret_cast<const char*>(extensions));
    }

    core::ResourceManager::GetInstancePtr()->Prefetch();
    app::App::GetInstancePtr()->CreateGUI();

    if (const std::optional<std::string> scene = core::SceneToOpen(arguments))
    {
        Log(logging::Info, "Loading argument " + *scene);
        app::App::GetInstancePtr()->GetAppGUI().LoadScene(*scene, true);
    }
    else
    {
        LoadScene();
    }

    Log(logging::Info, "Running program...");
    subsystem.Run();

    Log(logging::Debug, "Subsystem::Run returned, saving config...");
    script::Configuration::SaveAtExit(ConfigDir());
    app::App::GetInstancePtr()->OnShutdown();

    Log(logging::Debug, "Destroying subsystem");
    script::Parser::Destroy();
    core::Subsystem::Destroy();
    Log(logging::Debug, "Returning 0 from main");
    logging::Logger::Destroy();
    os::ExitProcess(EXIT_ORDERLY);
}

} // namespace

void LoadScene()
{
    for (const char* name : {app::Scene_Autosave, app::Scene_Last, app::Scene_Welcome})
    {
        if (util::FileSystem::FileExists(util::FileSystem::GetInstancePtr()->SceneDir() + name))
        {
            app::App::GetInstancePtr()->GetAppGUI().LoadScene(name, true);
            return;
        }
    }
}

extern "C" int SDL_main(int argc, char** argv)
{
    core::RunUnderOuterHandlers([argc, argv] { RunProgram(argc, argv); });
    return EXIT_UNREACHED;
}
