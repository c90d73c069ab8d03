// A person types into a text field of the running program: real key presses and clicks through xdotool,
// read back from the log, where the field reports its text, and from the pixels of the window. The field
// is the one the program shows when QLEX_TEXT_PROBE is set.
#include "util/FileSystem.h"

#include <gtest/gtest.h>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

// After gtest: X11 defines names gtest uses.
#include "../core/ProgramWindow.h"

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

// Generous: software GL on a loaded machine of two cores can take seconds to open a window.
const char* const PROBE_LINE = "Text probe: ";
// The field's inner rectangle in pixels at a GUI scale of 1: it stands at (8, 8) with a border of 1, a
// row of text high.
const int FIELD_LEFT = 9;
const int FIELD_TOP = 9;
const int FIELD_BOTTOM = 25;
// What counts as a lit pixel of white text, on a channel of 255: the thin stems of the fixed font at a
// scale of 1 are a little below full white.
const unsigned long BRIGHT = 170;

std::string ReadFile(const fs::path& path)
{
    std::ifstream file(path);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

// The near-white pixels of a part of the window, as the X server shows it.
struct WhitePixels
{
    int count = 0;
    int right = -1; // the rightmost column that has one
};

WhitePixels CountWhite(Display* display, Window window, int x0, int y0, int x1, int y1)
{
    WhitePixels white;
    // A window that isn't shown yet, or is smaller than asked, gives what there is.
    XWindowAttributes attributes;
    if (!window || !XGetWindowAttributes(display, window, &attributes) || attributes.map_state != IsViewable)
        return white;
    x1 = std::min(x1, attributes.width);
    y1 = std::min(y1, attributes.height);
    if (x1 <= x0 || y1 <= y0)
        return white;
    XImage* image =
        XGetImage(display, window, x0, y0, unsigned(x1 - x0), unsigned(y1 - y0), AllPlanes, ZPixmap);
    if (!image)
        return white;
    for (int y = 0; y < y1 - y0; ++y)
        for (int x = 0; x < x1 - x0; ++x)
        {
            const unsigned long pixel = XGetPixel(image, x, y);
            const unsigned long masks[3] = {image->red_mask, image->green_mask, image->blue_mask};
            bool bright = true;
            for (unsigned long mask : masks)
            {
                unsigned long value = pixel & mask;
                while (mask && !(mask & 1))
                {
                    mask >>= 1;
                    value >>= 1;
                }
                bright = bright && mask && value * 255 / mask >= BRIGHT;
            }
            if (bright)
            {
                ++white.count;
                white.right = std::max(white.right, x0 + x);
            }
        }
    XDestroyImage(image);
    return white;
}

// The program's window can change between a look at its size and the grab of its pixels: such a grab
// fails and is tried again, instead of ending the test.
int IgnoreXErrors(Display*, XErrorEvent*)
{
    return 0;
}

class TextFieldE2ETest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!std::getenv("DISPLAY"))
            GTEST_SKIP() << "needs an X display (scripts/test.sh provides one)";
        WaitFor([this] { return (m_display = XOpenDisplay(nullptr)) != nullptr; });
        ASSERT_NE(m_display, nullptr);
        XSetErrorHandler(&IgnoreXErrors);
        const char* stage = std::getenv("QLEX_STAGE");
        ASSERT_NE(stage, nullptr) << "QLEX_STAGE names the staged tree";
        char pattern[] = "/tmp/qlex-e2e-text-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        m_dir = pattern;
        fs::copy_file(fs::path(stage) / "qlex", m_dir / "qlex");
        fs::copy_file(fs::path(stage) / "Qlex.bmp", m_dir / "Qlex.bmp");
        fs::copy(fs::path(stage) / "data", m_dir / "data", fs::copy_options::recursive);
        fs::create_directories(m_dir / "scenes");
        // The field's place in pixels is its place in GUI units.
        std::ofstream(m_dir / "autoexec.cfg") << "GUI.scale = 1.0;\n";
    }

    void TearDown() override
    {
        if (m_pid > 0)
        {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
        if (m_display)
            XCloseDisplay(m_display);
        std::error_code ignored;
        if (!m_dir.empty())
            fs::remove_all(m_dir, ignored);
    }

    void Start(const std::string& probeText)
    {
        std::string program = (m_dir / "qlex").string();
        std::vector<char*> argv{program.data(), nullptr};
        std::vector<std::string> env;
        for (char** e = environ; *e; ++e)
            env.emplace_back(*e);
        env.push_back("QLEX_TEXT_PROBE=" + probeText);
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

    int Stop()
    {
        if (m_pid > 0)
        {
            kill(m_pid, SIGTERM);
            int status = 0;
            if (waitpid(m_pid, &status, 0) == m_pid)
                m_exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
            m_pid = -1;
        }
        return m_exitCode;
    }

    // The text the field reported last.
    std::string FieldText() const
    {
        const std::string log = ReadFile(m_dir / "Logfile.txt");
        const size_t at = log.rfind(PROBE_LINE);
        if (at == std::string::npos)
            return "<no report>";
        const size_t begin = at + std::string(PROBE_LINE).size();
        return log.substr(begin, log.find('\n', begin) - begin);
    }

    bool WaitForField(const std::string& text)
    {
        return WaitFor([&] { return FieldText() == text || !Running(); }) && FieldText() == text;
    }

    // Ctrl with a key, held over several frames as a person holds it: the program reads the modifiers
    // when it handles a key, and a release that came in the same frame would already count.
    void CtrlKey(const std::string& key) const
    {
        Xdotool("keydown ctrl sleep 0.3 key " + key + " sleep 0.3 keyup ctrl");
    }

    // Real input: xdotool talks to the X server as a keyboard and a mouse would.
    void Xdotool(const std::string& arguments) const
    {
        const std::string command = "xdotool " + arguments + " >/dev/null 2>&1";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
    }

    // Runs the program with these lines in its autoexec.cfg and the field holding `text`, and measures the
    // white pixels of the field's row once the text is drawn.
    WhitePixels RunAndMeasure(const std::string& autoexec, const std::string& text)
    {
        // Each run starts afresh: the settings a run saves would be read after autoexec.cfg, and the scene
        // it saves at its end would open and name the window.
        fs::remove(m_dir / "config.cfg");
        fs::remove(m_dir / "Logfile.txt");
        fs::remove_all(m_dir / "scenes");
        fs::create_directories(m_dir / "scenes");
        std::ofstream(m_dir / "autoexec.cfg") << "GUI.scale = 1.0;\n" << autoexec << "\n";
        Start(text);
        EXPECT_TRUE(WaitForField(text)) << ReadFile(m_dir / "stderr.txt");
        WhitePixels white;
        WhitePixels last;
        // Two equal measures in a row: the frame with the text has been drawn and stays. The window is
        // looked up each time, since the last run's may not have gone from the server yet.
        EXPECT_TRUE(WaitFor(
            [&]
            {
                const Window window =
                    WindowTitled(m_display, DefaultRootWindow(m_display), util::FileSystem::NameAndVersion());
                last = white;
                white = CountWhite(m_display, window, 0, FIELD_TOP, 600, FIELD_BOTTOM);
                std::this_thread::sleep_for(std::chrono::milliseconds(100));
                return white.count > 20 && white.count == last.count && white.right == last.right;
            }));
        EXPECT_EQ(Stop(), 0);
        return white;
    }

    Display* m_display = nullptr;
    fs::path m_dir;
    pid_t m_pid = -1;
    int m_exitCode = -1000;
};

} // namespace

TEST_F(TextFieldE2ETest, TypingChangesTheFieldAndCtrlZTakesTheTypingBack)
{
    Start("abc");
    ASSERT_TRUE(WaitForField("abc")) << ReadFile(m_dir / "stderr.txt");
    Window window = 0;
    ASSERT_TRUE(WaitFor(
        [&]
        {
            return (window = WindowTitled(m_display, DefaultRootWindow(m_display),
                                          util::FileSystem::NameAndVersion())) != 0;
        }));
    // Keys go to the window under the mouse: the display has no window manager.
    Xdotool("mousemove --sync --window " + std::to_string(window) + " 400 300");

    // The field's text is drawn white inside it, and nothing white lies below it.
    WhitePixels before;
    ASSERT_TRUE(WaitFor(
        [&]
        {
            before = CountWhite(m_display, window, 0, FIELD_TOP, 400, FIELD_BOTTOM);
            return before.count > 20;
        }));
    EXPECT_GE(before.right, FIELD_LEFT);
    EXPECT_EQ(CountWhite(m_display, window, 0, FIELD_BOTTOM + 2, 400, 120).count, 0);

    Xdotool("type --delay 40 'xyz q'");
    ASSERT_TRUE(WaitForField("abcxyz q")) << FieldText();
    // The longer text reaches further right.
    EXPECT_TRUE(WaitFor(
        [&] {
            return CountWhite(m_display, window, 0, FIELD_TOP, 400, FIELD_BOTTOM).right > before.right + 20;
        }));

    // One undo takes the whole run of typing back; redo brings it again.
    CtrlKey("z");
    ASSERT_TRUE(WaitForField("abc")) << FieldText();
    CtrlKey("y");
    ASSERT_TRUE(WaitForField("abcxyz q")) << FieldText();

    // A click at the field's left end puts the cursor in front of the text.
    Xdotool("mousemove --sync --window " + std::to_string(window) + " " + std::to_string(FIELD_LEFT + 1) +
            " " + std::to_string((FIELD_TOP + FIELD_BOTTOM) / 2) + " click 1");
    Xdotool("mousemove --sync --window " + std::to_string(window) + " 400 300");
    Xdotool("type --delay 40 '>'");
    ASSERT_TRUE(WaitForField(">abcxyz q")) << FieldText();
    // Backspace erases it, and undo brings it back.
    Xdotool("key BackSpace");
    ASSERT_TRUE(WaitForField("abcxyz q")) << FieldText();
    CtrlKey("z");
    ASSERT_TRUE(WaitForField(">abcxyz q")) << FieldText();

    EXPECT_EQ(Stop(), 0) << ReadFile(m_dir / "stderr.txt");
}

TEST_F(TextFieldE2ETest, TheFontSettingChoosesTheFontAndABadFontLeavesTextReadable)
{
    const std::string text = "iiiiiiiiiiiiiiii";
    const WhitePixels bold = RunAndMeasure("", text);
    // The fixed font gives an i the width of an m.
    const WhitePixels fixed = RunAndMeasure("GUI.font = \"fixedsys\";", text);
    EXPECT_GT(fixed.right - FIELD_LEFT, 3 * (bold.right - FIELD_LEFT) / 2)
        << bold.right << " " << fixed.right;

    const WhitePixels standIn = RunAndMeasure("GUI.font = \"no_such_font\";", text);
    const std::string log = ReadFile(m_dir / "Logfile.txt");
    EXPECT_NE(log.find("no_such_font.raw\" can't be read; the built-in font stands in"), std::string::npos)
        << log;
    EXPECT_GT(standIn.right, FIELD_LEFT + 20);
}
