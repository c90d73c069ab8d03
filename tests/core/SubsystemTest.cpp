#include "core/Subsystem.h"

#include "logging/Log.h"
#include "platform/Os.h"
#include "util/FileSystem.h"

#include <gtest/gtest.h>

#include <GL/gl.h>

#include <algorithm>
#include <cstdlib>

namespace
{
// Counts the passes of the frame loop through work deferred with DoLater, and after a given number of
// passes asks to close the window as the window manager would.
class PassCounter : public util::Pointee
{
public:
    explicit PassCounter(int closeAfter) : m_closeAfter(closeAfter) {}

    void OnPass()
    {
        ++m_passes;
        if (m_passes < m_closeAfter)
        {
            core::Subsystem::GetInstancePtr()->DoLater(util::MakeCallback(&PassCounter::OnPass, this));
        }
        else
        {
            SDL_Event quit{};
            quit.type = SDL_QUIT;
            SDL_PushEvent(&quit);
        }
    }

    int m_passes = 0;

private:
    int m_closeAfter;
};

// One subsystem for the whole program, as in a run: it can't be made twice.
class SubsystemTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        util::FileSystem::GetInstancePtr()->SetWorkDir(util::FileSystem::ExecutableDir(""));
        core::Subsystem::Create();
    }

    // In the order of an orderly end, so that no singleton is left to static destruction.
    static void TearDownTestSuite()
    {
        core::Subsystem::Destroy();
        logging::Logger::Destroy();
    }

    void SetUp() override
    {
        if (!std::getenv("DISPLAY"))
        {
            GTEST_SKIP() << "needs an X display (scripts/test.sh provides one)";
        }
    }

    core::Subsystem& System() { return *core::Subsystem::GetInstancePtr(); }
};
} // namespace

TEST_F(SubsystemTest, CreateWindow_ClampsTheSizeAndRecordsIt)
{
    math::TVector2<int> display;
    ASSERT_TRUE(os::GetDisplaySize(display));

    core::WindowParams params;
    params.width = 5000;
    params.height = 0;
    System().CreateWindow(params);
    EXPECT_EQ(System().GetWidth(), std::min(4096, display.x));
    EXPECT_EQ(System().GetHeight(), 1);
    EXPECT_EQ(System().GetCurrentParams().width, System().GetWidth());
    EXPECT_EQ(System().GetRequestedParams().height, 1);
    EXPECT_TRUE(HasGLLoaded());

    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(viewport[2], System().GetWidth());
    EXPECT_EQ(viewport[3], 1);
}

// Last of the suite: the quit flag stays set for the rest of the run.
TEST_F(SubsystemTest, Run_DoesDeferredWorkOncePerPassAndStopsOnTheCloseEvent)
{
    util::SharedPtr<PassCounter> counter = QLEX_NEW new PassCounter(3);
    System().DoLater(util::MakeCallback(&PassCounter::OnPass, counter.get()));
    System().Run();

    // The close event arrives in the pass after the third, which stops before any deferred work.
    EXPECT_EQ(counter->m_passes, 3);
    EXPECT_TRUE(System().IsQuitRequested());
    EXPECT_GT(System().GetFPS(), 0.0);
}
