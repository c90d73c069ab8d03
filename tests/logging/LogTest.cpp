#include "logging/Log.h"
#include "logging/Exception.h"
#include "logging/LogCapture.h"
#include "util/FileSystem.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <vector>

namespace
{

using logtest::LogCapture;

void NextFrame()
{
    logging::Logger::GetInstancePtr()->Update();
}

} // namespace

TEST(Logger, RepeatedWarningsShowOnceUntilAFrameWithoutThem)
{
    LogCapture capture(31);
    for (int frame = 0; frame < 10; ++frame)
    {
        Log(logging::Warning, "low on water");
        Log(logging::Warning, "low on water");
        Log(logging::Error, "other");
        NextFrame();
    }
    EXPECT_EQ(capture.lines, (std::vector<std::string>{"-- Warning: low on water", "!! ERROR: other"}));
    NextFrame(); // a frame without them
    Log(logging::Warning, "low on water");
    EXPECT_EQ(capture.lines.back(), "-- Warning: low on water");
    EXPECT_EQ(capture.lines.size(), 3u);
}

TEST(Logger, InfoAndDebugRepeatEveryTimeAndMasksSelect)
{
    LogCapture infoOnly(logging::Info);
    for (int i = 0; i < 3; ++i)
    {
        Log(logging::Info, "tick");
        Log(logging::Debug, "trace");
    }
    EXPECT_EQ(infoOnly.lines, (std::vector<std::string>{"tick", "tick", "tick"}));
    NextFrame();
}

TEST(Logger, AFailingSinkIsSkipped)
{
    auto thrower = util::SharedPtr<logging::ILogger>(QLEX_NEW new logging::FunctionLogger(
        logging::Info, [](const std::string&) { throw std::runtime_error("sink broke"); }));
    logging::Logger::GetInstancePtr()->AddLogger(thrower);
    LogCapture capture(logging::Info | logging::Error);
    Log(logging::Info, "still arrives");
    EXPECT_EQ(capture.lines, (std::vector<std::string>{"still arrives"}));
    logging::Logger::GetInstancePtr()->RemoveLogger(thrower);
}

TEST(FileLogger, AppendingAddsTwoLineFeedsAndANewHeader)
{
    const std::string path = (std::filesystem::temp_directory_path() / "qlex_filelogger_test.txt").string();
    std::filesystem::remove(path);
    {
        logging::FileLogger first(31, path, true);
        first.Log("one");
    }
    {
        logging::FileLogger second(31, path, true);
    }
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    const std::string all = text.str();
    EXPECT_EQ(all.rfind("-----------------------------\n  " + util::FileSystem::NameAndVersion() + "\n", 0),
              0u);
    EXPECT_NE(all.find(": one\n\n\n-----------------------------\n"), std::string::npos);
    std::filesystem::remove(path);
}

TEST(Assertions, AssertionsThrowAndChecksGoOn)
{
    int reached = 0;
    EXPECT_THROW(QLEX_ASSERT(reached == 1), BadCoderException);
    EXPECT_THROW(QLEX_DATA_ASSERT(reached == 1), BadDataException);
    QLEX_CHECK(reached == 1);
    ++reached;
    EXPECT_EQ(reached, 1);
    try
    {
        QLEX_ASSERT(1 + 1 == 3);
    }
    catch (BadCoderException& e)
    {
        EXPECT_EQ(std::string(e.what()).rfind("Code assertion failed: \"1 + 1 == 3\" in function ", 0), 0u);
    }
}

TEST(Singleton, DestroyedServiceDoesNotComeBack)
{
    struct Service : util::Pointee, util::Singleton<Service>
    {
    };
    Service::GetInstancePtr();
    EXPECT_TRUE(Service::Exists());
    Service::Destroy();
    EXPECT_FALSE(Service::Exists());
    try
    {
        Service::GetInstancePtr();
        FAIL();
    }
    catch (BadCoderException& e)
    {
        EXPECT_EQ(std::string(e.what()).rfind("Phoenix singleton detected: ", 0), 0u);
    }
}

TEST(FileLogger, StampsEachLineWithTheTimeAfterADatedHeader)
{
    const std::string path = (std::filesystem::temp_directory_path() / "qlex_filelogger_stamp.txt").string();
    {
        logging::FileLogger logger(31, path, false);
        logger.Log("hello");
    }
    std::ifstream in(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    ASSERT_EQ(lines.size(), 5u);
    EXPECT_EQ(lines[0], "-----------------------------");
    EXPECT_TRUE(
        std::regex_match(lines[2], std::regex("  [A-Z][a-z]+ [0-9]{2} [0-9]{4}, [0-9]{2}:[0-9]{2}:[0-9]{2}")))
        << lines[2];
    EXPECT_EQ(lines[3], lines[0]);
    EXPECT_TRUE(std::regex_match(lines[4], std::regex("[0-9]{2}:[0-9]{2}:[0-9]{2}: hello"))) << lines[4];
    std::filesystem::remove(path);
}

TEST(Assertions, FailedChecksLogAtTheirOwnLevelWithoutPrefix)
{
    LogCapture codeChecks(logging::CodeCheck);
    LogCapture dataChecks(logging::DataCheck);
    const int value = 2;
    QLEX_DATA_CHECK(value == 3);
    QLEX_CHECK(value == 4);
    ASSERT_EQ(dataChecks.lines.size(), 1u);
    EXPECT_EQ(dataChecks.lines[0].rfind("Data check failed: \"value == 3\" in function ", 0), 0u);
    EXPECT_NE(dataChecks.lines[0].find(" inf "), std::string::npos);
    ASSERT_EQ(codeChecks.lines.size(), 1u);
    EXPECT_EQ(codeChecks.lines[0].rfind("Code check failed: \"value == 4\"", 0), 0u);
    NextFrame();
}

TEST(Log, WithoutALoggerTextGoesToUnloggedTxt)
{
    const std::filesystem::path dir = std::filesystem::temp_directory_path() / "qlex_unlogged_test";
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    // In a child process: the logger of this one goes for good once destroyed.
    EXPECT_EXIT(
        {
            logging::Logger::GetInstancePtr();
            logging::Logger::Destroy();
            logging::SetWorkDirectory(dir.string() + "/");
            Log(logging::Warning, "no sink yet");
            Log(logging::Info, "plain");
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
    std::ifstream in(dir / "Unlogged.txt");
    std::stringstream text;
    text << in.rdbuf();
    EXPECT_EQ(text.str(), "-- Warning: no sink yet\nplain\n");
    std::filesystem::remove_all(dir);
}
