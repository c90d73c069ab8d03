#include "core/Main.h"

#include "app/App.h"
#include "app/AppGUI.h"
#include "app/ProgramFiles.h"
#include "app/Scene.h"
#include "core/CommandLine.h"
#include "core/JoinSubsystems.h"
#include "core/OuterHandlers.h"
#include "core/ResourceManager.h"
#include "core/Subsystem.h"
#include "gui/GUI.h"
#include "logging/Log.h"
#include "platform/Os.h"
#include "script/Configuration.h"
#include "script/Parser.h"
#include "util/FileSystem.h"

#include <filesystem>
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
    gui::GUI* gui = gui::GUI::GetInstancePtr();
    core::JoinSubsystems(subsystem.GetSystem(),
                         [gui]
                         {
                             core::ResourceManager::GetInstancePtr()->AddToRoot();
                             gui->GetReflected()->AddToRoot();
                         });
    gui->AddFontChangeCallback(
        util::MakeCallback(&core::ResourceManager::ReloadFonts, core::ResourceManager::GetInstancePtr()));
    gui->GetMainComponent()->AddComponent(app::App::GetInstancePtr());
    app::Scene::GetInstancePtr()->SetWindowTitleSink([&subsystem](const util::String& title)
                                                     { subsystem.SetTitle(title); });
    app::AppGUI::ShellActions shell;
    shell.exit = [&subsystem] { subsystem.Exit(); };
    // Recreated later, outside the event delivery that asked for it: a new window reloads every resource.
    shell.toggleFullscreen = [&subsystem]
    {
        subsystem.DoLater(QLEX_NEW new util::Callback(
            [&subsystem]
            { subsystem.CreateWindow(core::FullscreenToggled(subsystem.GetCurrentParams(), DisplaySize())); },
            app::App::GetInstancePtr()));
    };
    app::AppGUI::SetShellActions(std::move(shell));
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

// A scene from the command line, wherever it lies; one that can't be opened leaves the welcome scene in
// its place, so that the user sees both the program and, in the log, why.
void OpenSceneArgument(const std::string& argument)
{
    std::error_code error;
    const std::string path = core::ResolveScenePath(argument, std::filesystem::current_path(error).string(),
                                                    util::FileSystem::GetInstancePtr()->SceneDir());
    if (const std::optional<std::string> problem = core::WhyNoScene(path))
    {
        Log(logging::Error,
            "Can't open the scene \"" + path + "\": " + *problem + ". Opening the welcome scene instead.");
        if (util::FileSystem::FileExists(util::FileSystem::GetInstancePtr()->SceneDir() + app::Scene_Welcome))
        {
            app::App::GetInstancePtr()->GetAppGUI().LoadScene(app::Scene_Welcome, true);
        }
        return;
    }
    app::App::GetInstancePtr()->GetAppGUI().LoadScene(path, true);
}

[[noreturn]] void RunProgram(int argc, char** argv)
{
    const std::vector<std::string> arguments = core::ArgumentsOf(argc, argv);
    // Help is all that is printed: it comes before the work directory, which reports itself.
    if (core::AsksForHelp(arguments))
    {
        std::cout << core::HelpText() << std::flush;
        os::ExitProcess(EXIT_ORDERLY);
    }
    util::FileSystem* files = util::FileSystem::GetInstancePtr();
    files->CalcWorkDir(argc > 0 ? argv[0] : "");
    logging::SetWorkDirectory(files->WorkDir());
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
        OpenSceneArgument(*scene);
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
