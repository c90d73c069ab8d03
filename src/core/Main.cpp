#include "core/Main.h"

#include "core/CommandLine.h"
#include "core/ProgramFiles.h"
#include "core/Subsystem.h"
#include "logging/Log.h"
#include "platform/Os.h"

#include <GL/glew.h>

#include <iostream>
#include <new>

namespace
{
const char* const OUT_OF_MEMORY_TEXT = "Out of memory! Install more RAM, or try decreasing App.maxUndo in "
                                       "config.autosave.cfg and config.cfg and restart Qlex.";

enum ExitCode
{
    EXIT_ORDERLY = 0,
    EXIT_ERROR = 1,
    EXIT_UNKNOWN_FAILURE = 2,
};

std::optional<math::TVector2<int>> DisplaySize()
{
    math::TVector2<int> size;
    if (os::GetDisplaySize(size))
    {
        return size;
    }
    return std::nullopt;
}

// Which configuration to read. A left-over autosave means the last run didn't end in order, and holds the
// newest settings of that run.
void LoadConfiguration(core::Subsystem& subsystem)
{
    using namespace core::interim;
    LoadConfig(ConfigDir() + app::CONFIG_AUTOEXEC);
    const std::string autosave = ConfigDir() + app::CONFIG_AUTOSAVE;
    const std::string config = ConfigDir() + app::CONFIG_FILE;
    if (FileExists(autosave))
    {
        Log(logging::Info, std::string("Recovering ") + app::CONFIG_AUTOSAVE + " from previous crash");
        LoadConfig(autosave);
    }
    else if (FileExists(config))
    {
        LoadConfig(config);
    }
    else
    {
        subsystem.SetParams(core::FirstRunParams(DisplaySize()));
    }
}

[[noreturn]] void RunProgram(int argc, char** argv)
{
    core::interim::CalcWorkDir(argc > 0 ? argv[0] : "");
    const std::vector<std::string> arguments = core::ArgumentsOf(argc, argv);
    if (core::AsksForVersion(arguments))
    {
        std::cout << logging::NameAndVersion() << std::endl;
        os::ExitProcess(EXIT_ORDERLY);
    }

    core::Subsystem::Create();
    core::Subsystem& subsystem = *core::Subsystem::GetInstancePtr();
    subsystem.SetTitle(logging::NameAndVersion());

    LoadConfiguration(subsystem);
    subsystem.CreateWindow(subsystem.GetRequestedParams());

    if (const GLubyte* extensions = glGetString(GL_EXTENSIONS))
    {
        Log(logging::Debug,
            std::string("Available OpenGL extensions: ") + reinterpret_cast<const char*>(extensions));
    }

    if (const std::optional<std::string> scene = core::SceneToOpen(arguments))
    {
        Log(logging::Info, "Loading argument " + *scene);
        core::interim::LoadSceneFile(*scene, true);
    }
    else
    {
        LoadScene();
    }

    Log(logging::Info, "Running program...");
    subsystem.Run();

    Log(logging::Debug, "Subsystem::Run returned, saving config...");
    core::interim::SaveConfig(core::interim::ConfigDir() + app::CONFIG_FILE);
    core::interim::EraseFile(core::interim::ConfigDir() + app::CONFIG_AUTOSAVE);

    Log(logging::Debug, "Destroying subsystem");
    core::Subsystem::Destroy();
    Log(logging::Debug, "Returning 0 from main");
    logging::Logger::Destroy();
    os::ExitProcess(EXIT_ORDERLY);
}

// Tells the user, and ends the process unless the desktop wants the error for a crash report.
void Fail(const char* title, const std::string& text, int code)
{
    if (os::ShowErrorPopup(title, text))
    {
        throw;
    }
    os::ExitProcess(code);
}
} // namespace

void LoadScene()
{
    for (const char* name : {app::Scene_Autosave, app::Scene_Last, app::Scene_Welcome})
    {
        if (core::interim::FileExists(core::interim::SceneDir() + name))
        {
            core::interim::LoadSceneFile(name, true);
            return;
        }
    }
}

extern "C" int SDL_main(int argc, char** argv)
{
    try
    {
        RunProgram(argc, argv);
    }
    catch (std::bad_alloc&)
    {
        Log(logging::Warning, std::string("std::bad_alloc caught - ") + OUT_OF_MEMORY_TEXT);
        Fail("Out of memory!", OUT_OF_MEMORY_TEXT, EXIT_ERROR);
    }
    catch (std::exception& e)
    {
        CatchException(e, QLEX_SITE);
        Log(logging::Warning, std::string("Exception caught in main: ") + e.what());
        Fail("Exception caught", e.what(), EXIT_ERROR);
    }
    catch (...)
    {
        CatchException(QLEX_SITE);
        Log(logging::Warning, "Unknown exception caught in main.");
        Fail("Badness", "Unknown exception caught", EXIT_UNKNOWN_FAILURE);
    }
    return EXIT_UNKNOWN_FAILURE;
}
