// qlex-cli: the headless entry of the system, for batch work and tests. Arguments run left to right;
// standard output carries only results, the log goes to standard error and to Logfile.txt.

#include "cli/World.h"
#include "core/JoinSubsystems.h"
#include "core/System.h"
#include "logging/Log.h"
#include "script/Parser.h"
#include "util/FileSystem.h"
#include "util/StringUtil.h"

#include <cmath>
#include <cstdio>
#include <iostream>
#include <limits>
#include <unistd.h>
#include <vector>

namespace
{

const int EXIT_OK = 0;
const int EXIT_UNREADABLE_FILE = 1;
const int EXIT_BAD_ARGUMENT = 2;
// Everything ran, but some statement or record failed: the log holds its error.
const int EXIT_ERRORS_LOGGED = 3;
const unsigned ALL_LEVELS = 31;
const char* const LOG_FILE = "Logfile.txt";

// Errors logged during the run, counted by a sink of their own.
unsigned long s_errorCount = 0;

class CommandLine
{
public:
    explicit CommandLine(std::vector<util::String> args) : m_args(std::move(args)) {}

    int Run();

private:
    bool Next(util::String& value);
    int Fail(int code, const util::String& message);
    void RunCommand(const util::String& text);
    void RunStandardInput();
    int Steps(long count);

    std::vector<util::String> m_args;
    size_t m_index = 0;
    cli::World m_world;
    bool m_exitRequested = false;
};

bool CommandLine::Next(util::String& value)
{
    if (m_index >= m_args.size())
        return false;
    value = m_args[m_index++];
    return true;
}

int CommandLine::Fail(int code, const util::String& message)
{
    Log(logging::Error, message);
    return code;
}

void CommandLine::RunCommand(const util::String& text)
{
    std::cout << script::Parser::GetInstancePtr()->ExecuteToString(text) << '\n';
    std::cout.flush();
    // Each command is a frame of its own: an error that repeats the last command's still shows.
    logging::Logger::GetInstancePtr()->Update();
    logging::Logger::GetInstancePtr()->Update();
}

void CommandLine::RunStandardInput()
{
    util::String line;
    while (!m_exitRequested && std::getline(std::cin, line))
        RunCommand(line);
}

int CommandLine::Steps(long count)
{
    for (long i = 0; i < count; ++i)
    {
        // A step that fails is reported and the next one runs: no scene ends the run.
        try
        {
            m_world.step();
        }
        catch (std::exception& e)
        {
            CatchException(e, QLEX_SITE);
            Log(logging::Error, util::String("A step of the simulation failed: ") + e.what());
        }
        script::Parser::GetInstancePtr()->Update();
    }
    return EXIT_OK;
}

int CommandLine::Run()
{
    // "exit" stops the program after the command that gave it.
    const util::SharedPtr<core::System> system = QLEX_NEW new core::System();
    system->SetExitAction([this] { m_exitRequested = true; });
    core::JoinSubsystems(*system);
    m_world = cli::MakeWorld();
    if (m_args.empty())
    {
        RunStandardInput();
        return EXIT_OK;
    }

    util::String arg;
    while (!m_exitRequested && Next(arg))
    {
        util::String value;
        if (arg == "-")
        {
            RunStandardInput();
        }
        else if (arg == "--workdir")
        {
            if (!Next(value))
                return Fail(EXIT_BAD_ARGUMENT, "--workdir needs a directory");
            util::FileSystem::GetInstancePtr()->SetWorkDir(value);
        }
        else if (arg == "-e" || arg == "--exec")
        {
            if (!Next(value))
                return Fail(EXIT_BAD_ARGUMENT, arg + " needs a text to run");
            RunCommand(value);
        }
        else if (arg == "--load" || arg == "--save")
        {
            if (!Next(value))
                return Fail(EXIT_BAD_ARGUMENT, arg + " needs a file");
            const auto& action = arg == "--load" ? m_world.load : m_world.save;
            if (!action(value))
                return Fail(EXIT_UNREADABLE_FILE, "Can't " + arg.substr(2) + " \"" + value + "\"");
        }
        else if (arg == "--steps" || arg == "--seconds")
        {
            if (!Next(value))
                return Fail(EXIT_BAD_ARGUMENT, arg + " needs a number");
            long count = 0;
            try
            {
                if (arg == "--steps")
                {
                    count = util::FromString<int>(value);
                    if (count < 0)
                        return Fail(EXIT_BAD_ARGUMENT, arg + " " + value + " is no number of steps");
                }
                else
                {
                    double seconds = util::FromString<double>(value);
                    const double steps = seconds / m_world.timeDelta();
                    // A script may have set any step length; a count that isn't a number of steps is refused.
                    if (!(steps >= 0.0 && steps <= double(std::numeric_limits<int>::max())))
                        return Fail(EXIT_BAD_ARGUMENT,
                                    arg + " " + value + " is no number of steps of " +
                                        util::ToString(static_cast<float>(m_world.timeDelta())) + " seconds");
                    count = std::lround(steps);
                }
            }
            catch (std::exception& e)
            {
                return Fail(EXIT_BAD_ARGUMENT, arg + ": " + e.what());
            }
            int code = Steps(count);
            if (code != EXIT_OK)
                return code;
        }
        else if (arg == "--seed")
        {
            if (!Next(value))
                return Fail(EXIT_BAD_ARGUMENT, "--seed needs a number");
            long seed = 0;
            try
            {
                seed = util::FromString<long>(value);
            }
            catch (std::exception& e)
            {
                return Fail(EXIT_BAD_ARGUMENT, "--seed: " + util::String(e.what()));
            }
            // Through the setting, as a script would set it: the setting then knows its value, and its poll
            // doesn't start the sequence a second time.
            const int bits = static_cast<int>(static_cast<unsigned>(seed));
            script::Parser::GetInstancePtr()->Execute("System.randomSeed = " + util::ToString(bits));
        }
        else if (arg == "--stats")
        {
            std::cout << m_world.stats();
            std::cout.flush();
        }
        else
        {
            return Fail(EXIT_BAD_ARGUMENT, "Unknown argument: " + arg);
        }
    }
    return EXIT_OK;
}

// What --help prints: one line for each argument, then the exit codes.
const char* const HELP_TEXT =
    "Usage: qlex-cli [ARGUMENT...]: the arguments run left to right; standard output carries only results\n"
    "  --workdir DIR    work directory of scenes, configuration and Logfile.txt (default: the program's "
    "folder)\n"
    "  -e, --exec TEXT  runs TEXT as script and prints what it returns on one line\n"
    "  --load FILE      loads a scene as the application does\n"
    "  --save FILE      saves the scene\n"
    "  --steps N        advances the world N fixed steps, each followed by the scene's update, as a frame\n"
    "  --seconds S      as --steps, for S simulated seconds\n"
    "  --seed N         makes every random choice repeatable from N (System.randomSeed)\n"
    "  --stats          prints the simulation's statistics\n"
    "  -                reads standard input, each line as -e; no argument at all does the same\n"
    "  --help, -h       prints these lines and ends\n"
    "Exit codes:\n"
    "  0  every argument ran\n"
    "  1  a file can't be read\n"
    "  2  a bad argument\n"
    "  3  every argument ran, but a statement or record failed (errors in the log)\n";

// Whether --help stands among the arguments as one of its own, not as the text or file of another.
bool AsksForHelp(const std::vector<util::String>& args)
{
    for (size_t i = 0; i < args.size(); ++i)
    {
        const util::String& arg = args[i];
        if (arg == "--help" || arg == "-h")
            return true;
        if (arg == "--workdir" || arg == "-e" || arg == "--exec" || arg == "--load" || arg == "--save" ||
            arg == "--steps" || arg == "--seconds" || arg == "--seed")
            ++i;
    }
    return false;
}

// The log and the work directory come first, so that everything after may log; a --workdir anywhere
// on the line also decides where Logfile.txt goes.
void SetUp(const std::vector<util::String>& args, const char* argv0)
{
    util::String workDir = util::FileSystem::ExecutableDir(argv0);
    for (size_t i = 0; i + 1 < args.size(); ++i)
    {
        if (args[i] == "--workdir")
        {
            workDir = args[i + 1];
            break;
        }
    }
    util::FileSystem* fileSystem = util::FileSystem::GetInstancePtr();
    fileSystem->SetWorkDir(workDir);
    logging::SetWorkDirectory(fileSystem->WorkDir());

    logging::Logger* logger = logging::Logger::GetInstancePtr();
    logger->AddLogger(QLEX_NEW new logging::StreamLogger(ALL_LEVELS, std::cerr));
    logger->AddLogger(QLEX_NEW new logging::FileLogger(ALL_LEVELS, fileSystem->WorkDir() + LOG_FILE, true));
    logger->AddLogger(
        QLEX_NEW new logging::FunctionLogger(logging::Error, [](const std::string&) { ++s_errorCount; }));

    script::Parser* parser = script::Parser::GetInstancePtr();
    parser->SetOutputFunction([](const util::String& text) { std::cout << text << '\n'; });
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<util::String> args(argv + 1, argv + argc);
    if (AsksForHelp(args))
    {
        std::cout << HELP_TEXT << std::flush;
        _exit(EXIT_OK);
    }
    int code = EXIT_OK;
    try
    {
        SetUp(args, argv[0]);
        code = CommandLine(args).Run();
    }
    catch (std::exception& e)
    {
        CatchException(e, QLEX_SITE);
        Log(logging::Error, util::String("Exception caught in qlex-cli: ") + e.what());
        code = EXIT_UNREADABLE_FILE;
    }
    if (code == EXIT_OK && s_errorCount > 0)
        code = EXIT_ERRORS_LOGGED;
    // No static destructors: the singletons die with the process, once the output is out.
    std::cout.flush();
    std::cerr.flush();
    std::fflush(nullptr);
    _exit(code);
}
