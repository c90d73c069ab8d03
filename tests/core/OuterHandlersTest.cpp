#include "core/OuterHandlers.h"

#include "logging/Log.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <new>
#include <stdexcept>

#include <unistd.h>

namespace
{

// Where a log without a logger writes "Unlogged.txt": not the staged tree.
std::filesystem::path ScratchDir()
{
    return std::filesystem::temp_directory_path() / "qlex_outer_handlers_test";
}

// In the child process of a death test: the log reaches standard error, where the test reads it. The
// logger may have gone for good in an earlier test; the log then writes to standard output, which is
// joined to standard error here.
void RunWithLogOnStandardError(const std::function<void()>& program)
{
    std::filesystem::create_directories(ScratchDir());
    logging::SetWorkDirectory(ScratchDir().string() + "/");
    std::cout.flush();
    dup2(STDERR_FILENO, STDOUT_FILENO);
    if (logging::Logger::Exists())
        logging::Logger::GetInstancePtr()->AddLogger(QLEX_NEW new logging::StreamLogger(31, std::cout));
    core::RunUnderOuterHandlers(program);
    std::exit(100); // the handlers must not return
}

const char* const OUT_OF_MEMORY = "Out of memory! Install more RAM, or try decreasing App.maxUndo in "
                                  "config.autosave.cfg and config.cfg and restart Qlex.";

// Each run in a child process; the parent clears up what the children wrote.
class OuterHandlers : public testing::Test
{
protected:
    void TearDown() override { std::filesystem::remove_all(ScratchDir()); }
};

} // namespace

TEST_F(OuterHandlers, RunningOutOfMemoryTellsTheUserAndEndsWithOne)
{
    const auto program = [] { throw std::bad_alloc(); };
    EXPECT_EXIT(RunWithLogOnStandardError(program), testing::ExitedWithCode(1),
                std::string("-- Warning: std::bad_alloc caught - ") + OUT_OF_MEMORY);
    EXPECT_EXIT(RunWithLogOnStandardError(program), testing::ExitedWithCode(1),
                std::string("Out of memory!: ") + OUT_OF_MEMORY);
}

TEST_F(OuterHandlers, AnExceptionIsReportedWithItsTextAndEndsWithOne)
{
    const auto program = [] { throw std::runtime_error("disk on fire"); };
    EXPECT_EXIT(RunWithLogOnStandardError(program), testing::ExitedWithCode(1),
                "Caught exception: disk on fire, .*OuterHandlers");
    EXPECT_EXIT(RunWithLogOnStandardError(program), testing::ExitedWithCode(1),
                "-- Warning: Exception caught in main: disk on fire");
    EXPECT_EXIT(RunWithLogOnStandardError(program), testing::ExitedWithCode(1),
                "Exception caught: disk on fire");
}

TEST_F(OuterHandlers, AnythingElseIsBadnessAndEndsWithTwo)
{
    const auto program = [] { throw 42; };
    EXPECT_EXIT(RunWithLogOnStandardError(program), testing::ExitedWithCode(2),
                "-- Warning: Unknown exception caught in main\\.");
    EXPECT_EXIT(RunWithLogOnStandardError(program), testing::ExitedWithCode(2),
                "Badness: Unknown exception caught");
}

TEST_F(OuterHandlers, AProgramThatEndsByItselfIsLeftAlone)
{
    EXPECT_EXIT(RunWithLogOnStandardError([] { std::exit(0); }), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(RunWithLogOnStandardError([] {}), testing::ExitedWithCode(100), "");
}
