// The staged program run as a user runs it: start, window, orderly end on SIGTERM, crash recovery and the
// failure path. Each test works in a private copy of the program, since the program's work directory is
// the folder of its executable.
#include "util/FileSystem.h"

#include <gtest/gtest.h>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

// After gtest: X11 defines names gtest uses.
#include "ProgramWindow.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace
{
using program_window::PATIENCE;
using program_window::WaitFor;
using program_window::WindowTitled;
namespace fs = std::filesystem;

std::string ReadFile(const fs::path& path)
{
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

bool Contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

size_t Count(const std::string& text, const std::string& part)
{
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

// The colour of a pixel of a window as the X server shows it, 8 bits a channel.
bool ReadWindowPixel(Display* display, Window window, int x, int y, int rgb[3])
{
    XImage* image = XGetImage(display, window, x, y, 1, 1, AllPlanes, ZPixmap);
    if (!image)
        return false;
    const unsigned long pixel = XGetPixel(image, 0, 0);
    const unsigned long masks[3] = {image->red_mask, image->green_mask, image->blue_mask};
    for (int c = 0; c < 3; ++c)
    {
        unsigned long mask = masks[c];
        unsigned long value = pixel & mask;
        while (mask && !(mask & 1))
        {
            mask >>= 1;
            value >>= 1;
        }
        rgb[c] = mask ? int(value * 255 / mask) : 0;
    }
    XDestroyImage(image);
    return true;
}

class ProgramTest : public testing::Test
{
protected:
    void SetUp() override
    {
        const char* stage = std::getenv("QLEX_STAGE");
        ASSERT_NE(stage, nullptr) << "QLEX_STAGE names the staged tree";
        char pattern[] = "/tmp/qlex-program-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        m_dir = pattern;
        fs::copy_file(fs::path(stage) / "qlex", m_dir / "qlex");
        fs::copy_file(fs::path(stage) / "Qlex.bmp", m_dir / "Qlex.bmp");
        fs::copy(fs::path(stage) / "data", m_dir / "data", fs::copy_options::recursive);
        fs::create_directories(m_dir / "scenes");
    }

    // The user's own start-up script, run before the configuration.
    void WriteAutoexec(const std::string& text) const
    {
        std::ofstream file(m_dir / "autoexec.cfg");
        file << text;
    }

    void TearDown() override
    {
        if (m_pid > 0)
        {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
        std::error_code ignored;
        fs::remove_all(m_dir, ignored);
    }

    // Starts the copy with these arguments; `extraEnv` entries are "NAME=value". The program starts in
    // `folder`, or in the folder of the test where none is given.
    void Start(const std::vector<std::string>& arguments, const std::vector<std::string>& extraEnv = {},
               const fs::path& folder = {})
    {
        std::vector<std::string> args{(m_dir / "qlex").string()};
        args.insert(args.end(), arguments.begin(), arguments.end());
        std::vector<char*> argv;
        for (std::string& a : args)
            argv.push_back(a.data());
        argv.push_back(nullptr);

        std::vector<std::string> env;
        for (char** e = environ; *e; ++e)
            env.emplace_back(*e);
        env.insert(env.end(), extraEnv.begin(), extraEnv.end());
        std::vector<char*> envp;
        for (std::string& e : env)
            envp.push_back(e.data());
        envp.push_back(nullptr);

        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, (m_dir / "stdout.txt").c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0644);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, (m_dir / "stderr.txt").c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (!folder.empty())
            posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
        ASSERT_EQ(posix_spawn(&m_pid, argv[0], &actions, nullptr, argv.data(), envp.data()), 0);
        posix_spawn_file_actions_destroy(&actions);
    }

    // The exit code, or -signal when a signal ended the process.
    int Wait()
    {
        if (m_pid > 0)
        {
            int status = 0;
            if (waitpid(m_pid, &status, 0) == m_pid)
                m_exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
            m_pid = -1;
        }
        return m_exitCode;
    }

    // Collects the exit code of a program that has ended, without waiting for one that runs.
    bool Running()
    {
        int status = 0;
        if (m_pid > 0 && waitpid(m_pid, &status, WNOHANG) == m_pid)
        {
            m_exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
            m_pid = -1;
        }
        return m_pid > 0;
    }

    // Waits while the program runs; a program that ended early fails the wait at once.
    bool WaitWhileRunning(const std::function<bool()>& condition)
    {
        return WaitFor([&] { return condition() || !Running(); }) && condition();
    }

    // Signals the program if it still runs, and waits for its end.
    int Signal(int signal)
    {
        if (m_pid > 0)
            kill(m_pid, signal);
        return Wait();
    }

    bool LogSays(const std::string& text) const { return Contains(ReadFile(m_dir / "Logfile.txt"), text); }
    bool WaitForLog(const std::string& text)
    {
        return WaitWhileRunning([&] { return LogSays(text); });
    }
    bool Exists(const std::string& name) const { return fs::exists(m_dir / name); }

    // Writes a file of the test's own, making its folders; returns its path.
    fs::path Write(const std::string& name, const std::string& text) const
    {
        const fs::path path = m_dir / name;
        fs::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }

    fs::path m_dir;
    pid_t m_pid = -1;
    int m_exitCode = -1000; // no program has ended yet
};

// Runs that open the window. The test keeps a connection to the X server of its own: a server that resets
// when its last client leaves refuses connections for a moment, and a program starting then would fail.
class WindowedProgramTest : public ProgramTest
{
protected:
    void SetUp() override
    {
        if (!std::getenv("DISPLAY"))
            GTEST_SKIP() << "needs an X display (scripts/test.sh provides one)";
        WaitFor([this] { return (m_display = XOpenDisplay(nullptr)) != nullptr; });
        ASSERT_NE(m_display, nullptr) << "no X server answers at " << std::getenv("DISPLAY");
        ProgramTest::SetUp();
        // The configuration is saved every few tenths of a second instead of every half minute.
        WriteAutoexec("App.autosaveTime = 0.2;\n");
    }

    void TearDown() override
    {
        ProgramTest::TearDown();
        if (m_display)
            XCloseDisplay(m_display);
    }

    Window FindWindow(const std::string& title)
    {
        return WindowTitled(m_display, DefaultRootWindow(m_display), title);
    }
    bool WindowExists(const std::string& title) { return FindWindow(title) != None; }

    Display* m_display = nullptr;
};
} // namespace

TEST_F(ProgramTest, Version_PrintsNameAndVersionAndEndsBeforeAnyLog)
{
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"-version"}, {"/version"}, {"scene.qlx", "--show-version"}})
    {
        Start(arguments);
        EXPECT_EQ(Wait(), 0);
        const std::string output = ReadFile(m_dir / "stdout.txt");
        const std::string lastLine = util::FileSystem::NameAndVersion() + "\n";
        ASSERT_GE(output.size(), lastLine.size());
        EXPECT_EQ(output.substr(output.size() - lastLine.size()), lastLine) << output;
        EXPECT_FALSE(Exists("Logfile.txt"));
        EXPECT_FALSE(Exists("config.cfg"));
    }
}

TEST_F(ProgramTest, Help_ListsEveryArgumentAndEndsBeforeAnyLog)
{
    Start({"boat.qlx", "--help"});
    EXPECT_EQ(Wait(), 0);
    const std::string output = ReadFile(m_dir / "stdout.txt");
    // Nothing comes before the help, so that it reads as the answer it is.
    EXPECT_EQ(output.rfind("Usage: qlex ", 0), 0u) << output;
    for (const char* argument : {"SCENE.qlx", "file:///", "-version", "/version", "--help", "-h"})
        EXPECT_TRUE(Contains(output, argument)) << argument << " in:\n" << output;
    EXPECT_FALSE(Exists("Logfile.txt"));
    EXPECT_FALSE(Exists("config.cfg"));
}

TEST_F(ProgramTest, WindowFailure_IsReportedAndEndsWithCodeOne)
{
    Start({}, {"SDL_VIDEODRIVER=dummy"});
    EXPECT_EQ(Wait(), 1);
    EXPECT_TRUE(
        Contains(ReadFile(m_dir / "stderr.txt"), "Exception caught: Couldn't set video mode, SDL-error: "))
        << ReadFile(m_dir / "stderr.txt");
    EXPECT_TRUE(LogSays("Exception caught in main: Couldn't set video mode, SDL-error: "));
    // An error saves no configuration.
    EXPECT_FALSE(Exists("config.cfg"));
    EXPECT_FALSE(LogSays("Returning 0 from main"));
}

TEST_F(WindowedProgramTest, Run_OpensTheWindowAndEndsInOrderOnSigterm)
{
    Start({});
    ASSERT_TRUE(WaitForLog("Entering game loop")) << ReadFile(m_dir / "stderr.txt");
    ASSERT_TRUE(WaitWhileRunning([&] { return Exists("config.autosave.cfg"); }));
    EXPECT_TRUE(WaitWhileRunning([this] { return WindowExists(util::FileSystem::NameAndVersion()); }));
    EXPECT_FALSE(Exists("config.cfg"));

    EXPECT_EQ(Signal(SIGTERM), 0) << ReadFile(m_dir / "stderr.txt");
    EXPECT_FALSE(Exists("config.autosave.cfg"));
    EXPECT_TRUE(Exists("config.cfg"));
    // Every part that scripts reach by name is saved with its settings.
    const std::string config = ReadFile(m_dir / "config.cfg");
    for (const char* setting :
         {"System.maxFPS = ", "Resources.shaders = ", "Sim.timeDelta = ", "SPH.radius = ", "GUI.scale = ",
          "App.lineWidth = ", "App.Background.skyColor = ", "App.autosaveTime = 0.2", "Scene.Camera.zoom = "})
        EXPECT_TRUE(Contains(config, setting)) << setting;
    EXPECT_TRUE(LogSays("Subsystem::Run returned, saving config..."));
    EXPECT_TRUE(LogSays("Returning 0 from main"));
    EXPECT_FALSE(LogSays("Recovering"));
}

TEST_F(WindowedProgramTest, Crash_LeavesTheAutosaveAndTheNextRunRecovers)
{
    // The user's scene: what the crash must not lose.
    {
        std::ofstream scene(m_dir / "scenes" / "boat.qlx");
        scene << "FileInfo.title = \"Boat before the crash\";\n"
                 "Scene.addBox {pos = [2.5, 1.5]; size = [3.0, 0.5]; color = [0.25, 0.5, 0.75, 1.0]}\n";
    }
    Start({(m_dir / "scenes" / "boat.qlx").string()});
    ASSERT_TRUE(WaitForLog("Entering game loop")) << ReadFile(m_dir / "stderr.txt");
    ASSERT_TRUE(WaitWhileRunning(
        [&]
        {
            return Exists("config.autosave.cfg") &&
                   Contains(ReadFile(m_dir / "scenes" / "_AUTOSAVE.qlx"), "Boat before the crash");
        }));
    EXPECT_EQ(Signal(SIGKILL), -SIGKILL);
    EXPECT_TRUE(Exists("config.autosave.cfg"));
    EXPECT_TRUE(Exists("scenes/_AUTOSAVE.qlx"));
    EXPECT_FALSE(Exists("scenes/_ONEXITSAVE.qlx"));

    // The next start reads the autosaved settings and scene, without being told.
    Start({});
    EXPECT_TRUE(WaitForLog("config.autosave.cfg from previous crash"));
    EXPECT_TRUE(LogSays("Recovering "));
    // The log goes on from the first run: its own lines tell that this one got going.
    ASSERT_TRUE(WaitForLog("Loaded scene " + (m_dir / "scenes" / "_AUTOSAVE.qlx").string()))
        << ReadFile(m_dir / "Logfile.txt");
    ASSERT_TRUE(
        WaitWhileRunning([&] { return Count(ReadFile(m_dir / "Logfile.txt"), "Entering game loop") == 2; }));

    // An orderly end keeps the scene in the exit save and leaves no sign of a crash.
    EXPECT_EQ(Signal(SIGTERM), 0);
    EXPECT_FALSE(Exists("config.autosave.cfg"));
    EXPECT_FALSE(Exists("scenes/_AUTOSAVE.qlx"));
    const std::string saved = ReadFile(m_dir / "scenes" / "_ONEXITSAVE.qlx");
    EXPECT_TRUE(Contains(saved, "FileInfo.title = \"Boat before the crash\";")) << saved;
    EXPECT_TRUE(Contains(saved, "size = [3.0, 0.5];")) << saved;
}

TEST_F(WindowedProgramTest, SceneArgument_InPiecesIsJoinedIntoOnePath)
{
    Start({"/tmp/my", "boat.QLX"});
    EXPECT_TRUE(WaitForLog("Loading argument /tmp/my boat.QLX"));
    ASSERT_TRUE(WaitForLog("Entering game loop"));
    EXPECT_EQ(Signal(SIGTERM), 0);
}

TEST_F(WindowedProgramTest, Run_DrawsTheSkyThatTheConfigurationAsksFor)
{
    // A sky of its own colour and no clouds: the whole world shows that colour, which nothing else draws.
    WriteAutoexec("App.autosaveTime = 0.2;\n"
                  "App.Background.drawClouds = false;\n"
                  "App.Background.skyColor = [1.0, 0.5, 0.0, 1.0];\n");
    Start({});
    ASSERT_TRUE(WaitForLog("Entering game loop")) << ReadFile(m_dir / "stderr.txt");
    Window window = None;
    ASSERT_TRUE(
        WaitWhileRunning([&] { return (window = FindWindow(util::FileSystem::NameAndVersion())) != None; }));

    std::string seen;
    const auto showsSky = [&](int x, int y)
    {
        int rgb[3] = {};
        const bool read = ReadWindowPixel(m_display, window, x, y, rgb);
        seen = "(" + std::to_string(x) + ", " + std::to_string(y) + ") shows " + std::to_string(rgb[0]) +
               " " + std::to_string(rgb[1]) + " " + std::to_string(rgb[2]);
        return read && std::abs(rgb[0] - 255) <= 3 && std::abs(rgb[1] - 128) <= 3 && std::abs(rgb[2]) <= 3;
    };
    // The first frame may come a little after the window.
    EXPECT_TRUE(WaitWhileRunning([&] { return showsSky(512, 384); })) << seen;
    EXPECT_TRUE(showsSky(5, 5)) << seen;
    EXPECT_TRUE(showsSky(1000, 700)) << seen;
    EXPECT_EQ(Signal(SIGTERM), 0);
}

namespace
{
// A scene as a user keeps one: a box of a colour that no sample scene has, under a title of its own.
const char* const BOAT_SCENE = "// Qlex scene created by Qlex beta 4.21\n"
                               "FileInfo.title = \"Boat trip\";\n"
                               "Scene.addBox {\n"
                               "    pos = [1.5, 2.5];\n"
                               "    size = [0.75, 0.25];\n"
                               "    color = [0.25, 0.75, 0.5, 1.0]\n"
                               "};\n";

// A scene of the program's own folder: the one opened when the command line names none that can be opened.
const char* const WELCOME_SCENE = "// Qlex scene created by Qlex beta 4.21\n"
                                  "FileInfo.title = \"Welcome of the test\";\n";
} // namespace

TEST_F(WindowedProgramTest, SceneArgument_WithBlanksOutsideTheScenesFolderOpens)
{
    const fs::path scene = Write("my documents/boat trip.qlx", BOAT_SCENE);
    Write("scenes/welcome.qlx", WELCOME_SCENE);
    // As a desktop hands it over: the whole path as one argument.
    Start({scene.string()});
    ASSERT_TRUE(WaitForLog("Loaded scene " + scene.string())) << ReadFile(m_dir / "Logfile.txt");
    EXPECT_EQ(Signal(SIGTERM), 0);

    // The scene the program holds at its end is the one it was given.
    const std::string saved = ReadFile(m_dir / "scenes" / "_ONEXITSAVE.qlx");
    EXPECT_TRUE(Contains(saved, "\"Boat trip\"")) << saved;
    EXPECT_TRUE(Contains(saved, "color = [0.25, 0.75, 0.5, 1.0]")) << saved;
    EXPECT_FALSE(LogSays("Welcome of the test"));
}

TEST_F(WindowedProgramTest, SceneArgument_RelativeToTheFolderItWasStartedIn)
{
    Write("my documents/boat trip.qlx", BOAT_SCENE);
    // A scene of the same name in the scenes folder must not be taken instead.
    Write("scenes/boat trip.qlx", WELCOME_SCENE);
    // A bare name, in two pieces as a path with a blank may arrive.
    Start({"boat", "trip.qlx"}, {}, m_dir / "my documents");
    ASSERT_TRUE(WaitForLog("Loaded scene " + (m_dir / "my documents" / "boat trip.qlx").string()))
        << ReadFile(m_dir / "Logfile.txt");
    EXPECT_EQ(Signal(SIGTERM), 0);
    EXPECT_TRUE(Contains(ReadFile(m_dir / "scenes" / "_ONEXITSAVE.qlx"), "\"Boat trip\""));
}

TEST_F(WindowedProgramTest, SceneArgument_ThatIsNoSceneSaysWhyAndOpensTheWelcomeScene)
{
    Write("scenes/welcome.qlx", WELCOME_SCENE);
    // A scene autosaved by an earlier run is no stand-in: the user asked for a scene of their own.
    Write("scenes/_AUTOSAVE.qlx", BOAT_SCENE);
    const fs::path picture = Write("pictures/holiday.qlx", std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16));
    const fs::path missing = m_dir / "nowhere" / "lost boat.qlx";
    const std::string welcome = "Loaded scene " + (m_dir / "scenes" / "welcome.qlx").string();
    for (const auto& [path, reason] :
         {std::pair{picture, "it is not text"}, {missing, "there is no such file"}})
    {
        // Each run is read from its own log.
        fs::remove(m_dir / "Logfile.txt");
        Start({path.string()});
        ASSERT_TRUE(WaitForLog(welcome)) << ReadFile(m_dir / "Logfile.txt");
        EXPECT_TRUE(LogSays("!! ERROR: Can't open the scene \"" + path.string() + "\": " + reason +
                            ". Opening the welcome scene instead."))
            << ReadFile(m_dir / "Logfile.txt");
        EXPECT_FALSE(LogSays("Loaded scene " + path.string()));
        EXPECT_EQ(Signal(SIGTERM), 0);
        EXPECT_TRUE(Contains(ReadFile(m_dir / "scenes" / "_ONEXITSAVE.qlx"), "\"Welcome of the test\""));
    }
}
