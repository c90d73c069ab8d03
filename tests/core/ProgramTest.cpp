// The staged program run as a user runs it: start, window, orderly end on SIGTERM, crash recovery and the
// failure path. Each test works in a private copy of the program, since the program's work directory is
// the folder of its executable.
#include "logging/Log.h"

#include <gtest/gtest.h>

#include <X11/Xlib.h>

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
namespace fs = std::filesystem;

// Generous: software GL on a loaded machine of two cores can take seconds to open a window.
constexpr auto PATIENCE = std::chrono::seconds(60);
constexpr auto POLL_STEP = std::chrono::milliseconds(20);

std::string ReadFile(const fs::path& path)
{
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

bool Contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

bool WaitFor(const std::function<bool()>& condition)
{
    const auto deadline = std::chrono::steady_clock::now() + PATIENCE;
    while (!condition())
    {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(POLL_STEP);
    }
    return true;
}

// Whether a top-level window with this title exists on the X display.
bool WindowTitled(Display* display, Window window, const std::string& title)
{
    char* name = nullptr;
    if (XFetchName(display, window, &name) && name)
    {
        const bool match = title == name;
        XFree(name);
        if (match)
            return true;
    }
    Window root, parent;
    Window* children = nullptr;
    unsigned count = 0;
    if (!XQueryTree(display, window, &root, &parent, &children, &count))
        return false;
    bool found = false;
    for (unsigned i = 0; i < count && !found; ++i)
        found = WindowTitled(display, children[i], title);
    if (children)
        XFree(children);
    return found;
}

bool WindowExists(const std::string& title)
{
    Display* display = XOpenDisplay(nullptr);
    if (!display)
        return false;
    const bool found = WindowTitled(display, DefaultRootWindow(display), title);
    XCloseDisplay(display);
    return found;
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
        fs::create_directories(m_dir / "scenes");
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

    void RequireDisplay()
    {
        if (!std::getenv("DISPLAY"))
            GTEST_SKIP() << "needs an X display (scripts/test.sh provides one)";
    }

    // Starts the copy with these arguments; `extraEnv` entries are "NAME=value".
    void Start(const std::vector<std::string>& arguments, const std::vector<std::string>& extraEnv = {})
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
        ASSERT_EQ(posix_spawn(&m_pid, argv[0], &actions, nullptr, argv.data(), envp.data()), 0);
        posix_spawn_file_actions_destroy(&actions);
    }

    // The exit code, or -signal when a signal ended the process.
    int Wait()
    {
        int status = 0;
        const pid_t pid = m_pid;
        m_pid = -1;
        if (waitpid(pid, &status, 0) != pid)
            return -1000;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

    int Signal(int signal)
    {
        kill(m_pid, signal);
        return Wait();
    }

    bool LogSays(const std::string& text) const { return Contains(ReadFile(m_dir / "Logfile.txt"), text); }
    bool WaitForLog(const std::string& text) const
    {
        return WaitFor([&] { return LogSays(text); });
    }
    bool Exists(const std::string& name) const { return fs::exists(m_dir / name); }

    fs::path m_dir;
    pid_t m_pid = -1;
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
        const std::string lastLine = logging::NameAndVersion() + "\n";
        ASSERT_GE(output.size(), lastLine.size());
        EXPECT_EQ(output.substr(output.size() - lastLine.size()), lastLine) << output;
        EXPECT_FALSE(Exists("Logfile.txt"));
        EXPECT_FALSE(Exists("config.cfg"));
    }
}

TEST_F(ProgramTest, WindowFailure_IsReportedAndEndsWithCodeOne)
{
    Start({}, {"SDL_VIDEODRIVER=dummy"});
    EXPECT_EQ(Wait(), 1);
    EXPECT_TRUE(Contains(ReadFile(m_dir / "stderr.txt"), "Exception caught: Couldn't set video mode, SDL-error: "))
        << ReadFile(m_dir / "stderr.txt");
    EXPECT_TRUE(LogSays("Exception caught in main: Couldn't set video mode, SDL-error: "));
    // An error saves no configuration.
    EXPECT_FALSE(Exists("config.cfg"));
    EXPECT_FALSE(LogSays("Returning 0 from main"));
}

TEST_F(ProgramTest, Run_OpensTheWindowAndEndsInOrderOnSigterm)
{
    RequireDisplay();
    Start({});
    ASSERT_TRUE(WaitForLog("Entering game loop")) << ReadFile(m_dir / "Logfile.txt");
    ASSERT_TRUE(WaitFor([&] { return Exists("config.autosave.cfg"); }));
    EXPECT_TRUE(WaitFor([] { return WindowExists(logging::NameAndVersion()); }));
    EXPECT_FALSE(Exists("config.cfg"));

    EXPECT_EQ(Signal(SIGTERM), 0) << ReadFile(m_dir / "stderr.txt");
    EXPECT_FALSE(Exists("config.autosave.cfg"));
    EXPECT_TRUE(Exists("config.cfg"));
    EXPECT_TRUE(LogSays("Subsystem::Run returned, saving config..."));
    EXPECT_TRUE(LogSays("Returning 0 from main"));
    EXPECT_FALSE(LogSays("Recovering"));
}

TEST_F(ProgramTest, Crash_LeavesTheAutosaveAndTheNextRunRecovers)
{
    RequireDisplay();
    Start({});
    ASSERT_TRUE(WaitFor([&] { return Exists("config.autosave.cfg"); }));
    EXPECT_EQ(Signal(SIGKILL), -SIGKILL);
    EXPECT_TRUE(Exists("config.autosave.cfg"));

    Start({});
    EXPECT_TRUE(WaitForLog("Recovering config.autosave.cfg from previous crash"));
    ASSERT_TRUE(WaitForLog("Entering game loop"));
    EXPECT_EQ(Signal(SIGTERM), 0);
    EXPECT_FALSE(Exists("config.autosave.cfg"));
}

TEST_F(ProgramTest, SceneArgument_InPiecesIsJoinedIntoOnePath)
{
    RequireDisplay();
    Start({"/tmp/my", "boat.QLX"});
    EXPECT_TRUE(WaitForLog("Loading argument /tmp/my boat.QLX"));
    ASSERT_TRUE(WaitForLog("Entering game loop"));
    EXPECT_EQ(Signal(SIGTERM), 0);
}
