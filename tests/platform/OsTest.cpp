#include "platform/Os.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
std::string ExecutableFolder()
{
    return std::filesystem::read_symlink("/proc/self/exe").parent_path().string() + "/";
}

// Runs `body` in a child process and returns its exit status and what it wrote to standard output.
template <class F> std::pair<int, std::string> RunInChild(F body)
{
    int pipeEnds[2];
    EXPECT_EQ(pipe(pipeEnds), 0);
    std::cout.flush();
    const pid_t child = fork();
    if (child == 0)
    {
        dup2(pipeEnds[1], STDOUT_FILENO);
        close(pipeEnds[0]);
        body();
        _exit(99);
    }
    close(pipeEnds[1]);
    std::string output;
    char buffer[256];
    ssize_t n;
    while ((n = read(pipeEnds[0], buffer, sizeof(buffer))) > 0)
    {
        output.append(buffer, size_t(n));
    }
    close(pipeEnds[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}
} // namespace

TEST(CalcDataDir, NamesTheExecutablesFolderWhateverArgv0Says)
{
    const std::string expected = ExecutableFolder();
    EXPECT_EQ(os::CalcDataDir("qlex"), expected);
    EXPECT_EQ(os::CalcDataDir("/somewhere/else/qlex"), expected);
    EXPECT_EQ(os::CalcDataDir(""), expected);
    EXPECT_EQ(expected.back(), '/');
    EXPECT_TRUE(std::filesystem::is_directory(expected));
}

TEST(GetDisplaySize, ReportsTheScreenAndFailsWithoutOne)
{
    const char* display = std::getenv("DISPLAY");
    if (display)
    {
        math::TVector2<int> size(-1, -1);
        ASSERT_TRUE(os::GetDisplaySize(size));
        EXPECT_GT(size.x, 0);
        EXPECT_GT(size.y, 0);
    }

    const std::string saved = display ? display : "";
    setenv("DISPLAY", ":4097", 1); // no server listens there
    math::TVector2<int> untouched(7, 9);
    EXPECT_FALSE(os::GetDisplaySize(untouched));
    EXPECT_EQ(untouched.x, 7);
    EXPECT_EQ(untouched.y, 9);
    if (display)
        setenv("DISPLAY", saved.c_str(), 1);
    else
        unsetenv("DISPLAY");
}

TEST(ShowErrorPopup, WritesToStandardErrorAndNeverAsksForCrashHandling)
{
    testing::internal::CaptureStderr();
    const bool goOn = os::ShowErrorPopup("Exception caught", "Couldn't set video mode");
    const std::string text = testing::internal::GetCapturedStderr();
    EXPECT_FALSE(goOn);
    EXPECT_NE(text.find("Exception caught"), std::string::npos);
    EXPECT_NE(text.find("Couldn't set video mode"), std::string::npos);
}

TEST(ExitProcess, FlushesBufferedOutputAndKeepsTheCode)
{
    const auto [code, output] = RunInChild([] {
        std::cout << "C++ stream, ";
        std::printf("C stream");
        os::ExitProcess(3);
    });
    EXPECT_EQ(code, 3);
    EXPECT_EQ(output, "C++ stream, C stream");
}

TEST(ExitProcess, SkipsStaticDestructors)
{
    struct SaysGoodbye
    {
        ~SaysGoodbye()
        {
            std::cout << "static destructor ran";
            std::cout.flush();
        }
    };
    const auto [code, output] = RunInChild([] {
        static SaysGoodbye s_goodbye;
        os::ExitProcess(0);
    });
    EXPECT_EQ(code, 0);
    EXPECT_EQ(output, "");
}
